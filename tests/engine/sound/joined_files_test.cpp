// Files that were joined to one: they sound to their end, at their own pitch and for their own
// time, and a file that is whole is not read through to find out.

#include "flac_bytes.h"
#include "odd_sounds.h"
#include "platform/backends/sound/readers/joined_parts.h"

#include <gtest/gtest.h>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;
using Time = LongFile::Time;

constexpr double seconds = 10.123; // of each file
constexpr double fastDisk = 1e12;

Bytes joined(const std::vector<std::string> &names) {
    Bytes all;
    for (const auto &name : names)
        append(all, readFile(mediaFile(name)));
    return all;
}

class JoinedFiles : public testing::Test {
protected:
    std::unique_ptr<Reader> open(const Bytes &bytes, double bytesPerSecond = fastDisk) {
        return openSoundFileReader(
            std::make_unique<LongFile>(bytes, 1, bytesPerSecond, now_), libraries_.sndfile(),
            [this] { return now_; });
    }
    // Where in its own file the next sound lies.
    static double placeHere(Reader &reader) {
        const auto piece = static_cast<std::size_t>(reader.rate() / 10);
        return placeInChirp(readChannel(reader, piece), reader.rate()) - 0.05;
    }

    Time now_;
    DecoderLibraries libraries_{LibraryNames{}};
};

class JoinedForm : public JoinedFiles, public testing::WithParamInterface<const char *> {
protected:
    const std::string form_ = GetParam();
    const std::string chirp_ = "chirp." + form_;
    const std::string other_ = "other." + form_;
};

TEST_P(JoinedForm, FilesOfDifferentRatesAndChannelsSoundToTheirEnd) {
    const auto reader = open(joined({chirp_, other_, chirp_}));
    ASSERT_TRUE(reader);
    EXPECT_NEAR(lengthMs(*reader), 3 * seconds * 1000, 50);
    EXPECT_EQ(reader->channels(), 2);
    EXPECT_EQ(decodeAll(*reader), reader->frames());
}

TEST_P(JoinedForm, TheSameFileOftenSoundsAsOften) {
    for (const int times : {2, 3, 5}) {
        const auto reader = open(joined(std::vector<std::string>(times, chirp_)));
        ASSERT_TRUE(reader) << times;
        EXPECT_NEAR(lengthMs(*reader), times * seconds * 1000, 50);
        EXPECT_EQ(decodeAll(*reader), reader->frames()) << times;
    }
}

TEST_P(JoinedForm, SeeksLandInTheRightPart) {
    const auto reader = open(joined({chirp_, other_, chirp_}));
    ASSERT_TRUE(reader);
    for (const double place : {25.0, 3.0, 14.0, 11.0, 29.0, 20.5, 0.5}) {
        ASSERT_TRUE(reader->seek(static_cast<std::int64_t>(place * reader->rate()))) << place;
        EXPECT_NEAR(placeHere(*reader), std::fmod(place, seconds), 0.03) << place;
    }
    EXPECT_TRUE(reader->seek(reader->frames()));
    EXPECT_TRUE(readChannel(*reader, 10).empty());
}

TEST_P(JoinedForm, TheNextPartFollowsWithoutAGap) {
    const auto reader = open(joined({chirp_, other_}));
    ASSERT_TRUE(reader);
    const auto ahead = static_cast<std::int64_t>(0.3 * reader->rate());
    ASSERT_TRUE(reader->seek(static_cast<std::int64_t>(seconds * reader->rate()) - ahead));
    const auto around = readChannel(*reader, static_cast<std::size_t>(2 * ahead));
    ASSERT_EQ(around.size(), static_cast<std::size_t>(2 * ahead));
    // No moment is silent: of neither the end of the one nor the beginning of the other.
    const auto piece = reader->rate() / 50;
    for (std::int64_t at = 0; at + piece <= 2 * ahead; at += piece) {
        const std::vector<float> moment(around.begin() + at, around.begin() + at + piece);
        EXPECT_GT(rms(moment), 0.1) << at;
    }
    EXPECT_NEAR(placeHere(*reader), 0.3, 0.03);
}

TEST_P(JoinedForm, AFileThatIsWholeIsNotReadThroughToFindOut) {
    const Bytes whole = readFile(mediaFile(chirp_));
    Time now;
    const LongFile source(whole, 1, 1e9, now); // a nanosecond for each byte
    EXPECT_TRUE(isOnePiece(source));
    EXPECT_LT(now.time_since_epoch().count(), 200'000);
}

TEST_P(JoinedForm, ACutLastPartPlaysWhatItHas) {
    Bytes bytes = joined({chirp_, chirp_});
    bytes.resize(bytes.size() - readFile(mediaFile(chirp_)).size() / 4);
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    EXPECT_GT(lengthMs(*reader), 1.2 * seconds * 1000);
    EXPECT_LT(lengthMs(*reader), 1.95 * seconds * 1000);
    EXPECT_EQ(decodeAll(*reader), reader->frames());
}

TEST_P(JoinedForm, ATagBetweenPartsCostsNothing) {
    Bytes bytes = readFile(mediaFile(chirp_));
    append(bytes, id3Tag(1000));
    append(bytes, readFile(mediaFile(other_)));
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    EXPECT_NEAR(lengthMs(*reader), 2 * seconds * 1000, 50);
    EXPECT_EQ(decodeAll(*reader), reader->frames());
}

INSTANTIATE_TEST_SUITE_P(Forms, JoinedForm,
                         testing::Values("wav", "aiff", "au", "flac", "ogg", "opus"),
                         [](const auto &form) { return std::string(form.param); });

// On a disk of 1 MB a second the parts cannot all be found in the time of an open.
TEST_F(JoinedFiles, OnASlowDiskTheLengthGrowsAsThePartsAreFoundAndAllIsHeard) {
    const auto reader =
        open(joined({"chirp.flac", "other.flac", "chirp.flac", "other.flac", "chirp.flac"}), 1e6);
    ASSERT_TRUE(reader);
    EXPECT_LT(now_.time_since_epoch(), std::chrono::seconds(2));
    const auto changing = reader->changingFrames();
    ASSERT_TRUE(changing);
    EXPECT_LT(lengthMs(*reader), 4.5 * seconds * 1000);
    const std::int64_t heard = decodeAll(*reader);
    EXPECT_NEAR(static_cast<double>(heard) / reader->rate(), 5 * seconds, 0.05);
    EXPECT_EQ(changing->load(), heard);
}

// What is told of a piece may hold anything, a whole file, too.
TEST_F(JoinedFiles, AFlacInsideTheTagsOfAnotherIsNoPartOfIt) {
    const std::vector<std::int16_t> sound(100000, 500);
    const Bytes inner = flacFile(std::vector<std::int16_t>(5000, 300));
    Bytes file = flacFile(sound);
    Bytes block = {0x82, 0, static_cast<std::uint8_t>(inner.size() >> 8),
                   static_cast<std::uint8_t>(inner.size())};
    append(block, inner);
    file[4] = 0; // it is not the last block
    file.insert(file.begin() + 42, block.begin(), block.end());
    append(file, flacFile(sound));
    const auto reader = open(file);
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->frames(), 200000);
    EXPECT_EQ(decodeAll(*reader), 200000);
}

// Bytes of sound may be any.
TEST_F(JoinedFiles, WhatLooksLikeTheBeginningOfAStreamIsNoneUnlessItsPageIsWhole) {
    Bytes bytes = joined({"chirp.ogg", "other.ogg"});
    const Bytes mark = {'O', 'g', 'g', 'S', 0, 2};
    std::copy(mark.begin(), mark.end(), bytes.begin() + 30000);
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    EXPECT_NEAR(lengthMs(*reader), 2 * seconds * 1000, 50);
}

// However many begin in it, a piece of the file is read once for them all.
TEST_F(JoinedFiles, ManyShortPartsAreFoundWithoutReadingTheFileManyTimes) {
    class Counting final : public ByteSource {
    public:
        explicit Counting(const Bytes &bytes) : bytes_(bytes) {}
        std::int64_t size() const override { return bytes_.size(); }
        std::size_t read(std::int64_t offset, std::span<std::uint8_t> out) const override {
            const std::size_t got = bytes_.read(offset, out);
            readBytes += static_cast<std::int64_t>(got);
            return got;
        }
        mutable std::int64_t readBytes = 0;

    private:
        MemorySource bytes_;
    };
    Bytes file;
    for (int i = 0; i < 200; ++i)
        append(file, flacFile(std::vector<std::int16_t>(500, 1000)));
    const Counting source(file);
    platform::sound::JoinedParts parts(source);
    while (parts.searchOn()) {
    }
    EXPECT_EQ(parts.starts().size(), 200U);
    EXPECT_LT(source.readBytes, 2 * source.size());
}

TEST_F(JoinedFiles, AThousandPartsOpenSoonAndSoundToTheEnd) {
    Bytes file;
    const Bytes part = flacFile(std::vector<std::int16_t>(500, 1000));
    for (int i = 0; i < 1000; ++i)
        append(file, part);
    const auto start = std::chrono::steady_clock::now();
    const auto reader = open(file);
    ASSERT_TRUE(reader);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)); // usually 0.1
    EXPECT_EQ(reader->frames(), 500'000);
    EXPECT_EQ(decodeAll(*reader), 500'000);
}

} // namespace
} // namespace velmora::platform::sound
