#include "platform/backends/sound/readers/flac_length.h"

#include "flac_bytes.h"

#include <gtest/gtest.h>

#include <ctime>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr std::int16_t steady = 0x5555;
constexpr std::size_t frameBytes = 9 + 2 * flacBlock; // with a number below 128

Bytes flac(int frames, int lastSamples = flacBlock) {
    const int samples = std::max(frames - 1, 0) * flacBlock + (frames > 0 ? lastSamples : 0);
    return flacFile(std::vector<std::int16_t>(static_cast<std::size_t>(samples), steady));
}

// A file whose last frame has sound in its middle that reads as the header of another frame.
Bytes flacWithChance(int frames, int number) {
    std::vector<std::int16_t> samples(static_cast<std::size_t>(frames * flacBlock), steady);
    const auto chance = soundLikeAFlacHeader(number);
    std::copy(chance.begin(), chance.end(), samples.end() - flacBlock / 2);
    return flacFile(samples);
}

std::optional<std::int64_t> present(const Bytes &file) {
    return flacSamplesPresent(MemorySource(file));
}

TEST(FlacLength, AWholeFileCountsItsLastFrame) {
    EXPECT_EQ(present(flac(3)), 3 * flacBlock);
    EXPECT_EQ(present(flac(150)), 150 * flacBlock);
    EXPECT_EQ(present(flac(3, 1000)), 2 * flacBlock + 1000);
}

TEST(FlacLength, ACutFrameDoesNotCount) {
    Bytes file = flac(10);
    file.resize(file.size() - 1);
    EXPECT_EQ(present(file), 9 * flacBlock);
    file.resize(file.size() - 2 * frameBytes);
    EXPECT_EQ(present(file), 7 * flacBlock);
}

TEST(FlacLength, WhatIsThereOfTheNextFrameCostsNothing) {
    for (const std::size_t there : {1U, 4U, 5U, 300U}) {
        Bytes file = flac(10);
        file.resize(file.size() - frameBytes + there);
        EXPECT_EQ(present(file), 9 * flacBlock) << there;
    }
}

TEST(FlacLength, ACheckSumByChanceInsideTheCutLastFrameIsNoEnd) {
    constexpr std::size_t chance = 600; // bytes of the frame, the sum included
    std::vector<std::int16_t> samples(flacBlock, steady);
    Bytes frame = flacFrame(9, samples);
    frame.resize(chance - 2);
    const std::uint16_t crc = flacCrc16(frame);
    Bytes file = flac(10);
    file.resize(file.size() - frameBytes);
    append(file, frame);
    append(file, {crc >> 8, crc});
    file.resize(file.size() + 300, 0x55);
    EXPECT_EQ(present(file), 9 * flacBlock);
}

TEST(FlacLength, ATagBehindTheMusicDoesNotCount) {
    Bytes file = flac(10);
    const std::size_t music = file.size();
    file.resize(music + 128, 0x20);
    file[music] = 'T';
    file[music + 1] = 'A';
    file[music + 2] = 'G';
    EXPECT_EQ(present(file), 10 * flacBlock);
}

TEST(FlacLength, WithoutAFrameThereIsNoAnswer) {
    EXPECT_FALSE(present(flac(0)));
    EXPECT_FALSE(present({}));
    EXPECT_FALSE(present(Bytes(5000, 0xFF)));
}

TEST(FlacLength, JunkOfAnyKindBehindTheLastFrameCostsNothing) {
    for (const std::uint8_t junk : {0x55, 0x00, 0xFF}) {
        for (const std::size_t size : {1U, 300U, 300000U}) {
            Bytes file = flac(5, 1000);
            file.resize(file.size() + size, junk);
            EXPECT_EQ(present(file), 4 * flacBlock + 1000) << size;
        }
    }
}

TEST(FlacLength, AHeaderByChanceInsideTheLastFrameIsNoEnd) {
    for (const int number : {0, 5}) {
        Bytes file = flacWithChance(150, number);
        EXPECT_EQ(present(file), 150 * flacBlock) << number;
        file.resize(file.size() + 50, 0x55); // with junk behind it, too
        EXPECT_EQ(present(file), 150 * flacBlock) << number;
    }
}

TEST(FlacLength, AHeaderByChanceInsideACutFrameIsNoEnd) {
    Bytes file = flacWithChance(150, 5);
    file.resize(file.size() - 100);
    EXPECT_EQ(present(file), 149 * flacBlock);
}

TEST(FlacLength, AHeaderOfAnotherFormIsNoEnd) {
    Bytes file = flac(10);
    file.resize(file.size() - 1);
    Bytes other = {0xFF, 0xF8, 0xC8, 0x08, 3}; // 32 kHz
    other.push_back(flacCrc8(other));
    other.insert(other.end(), 100, 0x55);
    const std::uint16_t crc = flacCrc16(other);
    append(other, {crc >> 8, crc});
    append(file, other);
    EXPECT_EQ(present(file), 9 * flacBlock);
}

TEST(FlacLength, AnotherPieceJoinedToItDoesNotShortenIt) {
    for (const int second : {1, 50, 140}) {
        Bytes file = flac(150);
        append(file, flac(second));
        EXPECT_EQ(present(file).value_or(150 * flacBlock), 150 * flacBlock) << second;
    }
}

TEST(FlacLength, WhatIsThereCountsWhateverTheTotalSays) {
    for (const int told : {0, 5 * flacBlock, 1000 * flacBlock}) {
        Bytes file = flac(150);
        const Bytes lying = flacHeader(told);
        std::copy(lying.begin(), lying.end(), file.begin());
        EXPECT_EQ(present(file), 150 * flacBlock) << told;
    }
}

// Its frames are counted, and as long as the first.
TEST(FlacLength, AWrongSizeOfBlocksInTheHeaderChangesNothing) {
    for (const std::size_t byte : {8U, 9U, 10U, 11U}) {
        for (const int turned : {0x01, 0x10, 0xFF}) {
            Bytes file = flac(150);
            file[byte] = static_cast<std::uint8_t>(file[byte] ^ turned);
            EXPECT_EQ(present(file), 150 * flacBlock) << byte << " " << turned;
        }
    }
}

// Nothing but headers: each may lead to each.
TEST(FlacLength, AFileMadeOfHeadersIsGivenUpSoon) {
    Bytes file = flacHeader(1000 * flacBlock);
    while (file.size() < (std::size_t{9} << 20)) {
        Bytes header = {0xFF, 0xF8, 0xC9, 0x08, static_cast<std::uint8_t>(file.size() % 97)};
        header.push_back(flacCrc8(header));
        append(file, header);
    }
    const std::clock_t start = std::clock();
    present(file);
    // Of processor time: usually 1 or 2, and 10 under the sanitizers.
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 120);
}

TEST(FlacTotal, IsWhatTheHeaderTells) {
    EXPECT_EQ(flacTotal(MemorySource(flac(3))), 3 * flacBlock);
    EXPECT_EQ(flacTotal(MemorySource(flacHeader(0))), 0);
    EXPECT_EQ(flacTotal(MemorySource(Bytes(100, 1))), 0);
}

TEST(FlacTotal, AnotherOneChangesNothingElse) {
    const Bytes file = flac(3);
    const auto other = withFlacTotal(std::make_unique<MemorySource>(file), 0x912345678);
    EXPECT_EQ(flacTotal(*other), 0x912345678);
    Bytes whole(file.size());
    ASSERT_EQ(other->read(0, whole), file.size());
    for (std::size_t from = 0; from < 40; ++from) { // read in any pieces
        Bytes piece(7);
        ASSERT_EQ(other->read(static_cast<std::int64_t>(from), piece), piece.size());
        EXPECT_TRUE(std::equal(piece.begin(), piece.end(),
                               whole.begin() + static_cast<std::ptrdiff_t>(from)));
    }
    for (std::size_t at = 0; at < file.size(); ++at)
        if (at < 21 || at > 25)
            ASSERT_EQ(whole[at], file[at]) << at;
    EXPECT_EQ(whole[21] >> 4, file[21] >> 4);
}

} // namespace
} // namespace velmora::platform::sound
