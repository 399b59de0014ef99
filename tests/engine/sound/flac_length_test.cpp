#include "platform/sound/flac_length.h"

#include "sound_testing.h"

#include <gtest/gtest.h>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

std::uint8_t crc8(const Bytes &bytes) {
    unsigned crc = 0;
    for (const auto byte : bytes) {
        crc ^= byte;
        for (int i = 0; i < 8; ++i)
            crc = (crc & 0x80) != 0 ? ((crc << 1) ^ 0x07) & 0xFF : (crc << 1) & 0xFF;
    }
    return static_cast<std::uint8_t>(crc);
}

std::uint16_t crc16(const Bytes &bytes) {
    unsigned crc = 0;
    for (const auto byte : bytes) {
        crc ^= unsigned{byte} << 8;
        for (int i = 0; i < 8; ++i)
            crc = (crc & 0x8000) != 0 ? ((crc << 1) ^ 0x8005) & 0xFFFF : (crc << 1) & 0xFFFF;
    }
    return static_cast<std::uint16_t>(crc);
}

// Frames of 4096 samples with a body of the same bytes; the last may be shorter.
Bytes flac(int frames, int lastSamples = 4096) {
    Bytes file = {'f', 'L', 'a', 'C', 0x80, 0, 0, 34, 0x10, 0, 0x10, 0};
    file.resize(42);
    for (int i = 0; i < frames; ++i) {
        const bool shorter = i + 1 == frames && lastSamples != 4096;
        Bytes frame = {0xFF, 0xF8, static_cast<std::uint8_t>(shorter ? 0x79 : 0xC9), 0x18};
        if (i < 0x80) {
            frame.push_back(static_cast<std::uint8_t>(i));
        } else { // up to 0x7FF
            frame.push_back(static_cast<std::uint8_t>(0xC0 | i >> 6));
            frame.push_back(static_cast<std::uint8_t>(0x80 | (i & 0x3F)));
        }
        if (shorter) {
            frame.push_back(static_cast<std::uint8_t>((lastSamples - 1) >> 8));
            frame.push_back(static_cast<std::uint8_t>(lastSamples - 1));
        }
        frame.push_back(crc8(frame));
        frame.insert(frame.end(), 700, 0x55);
        const std::uint16_t crc = crc16(frame);
        frame.push_back(static_cast<std::uint8_t>(crc >> 8));
        frame.push_back(static_cast<std::uint8_t>(crc));
        file.insert(file.end(), frame.begin(), frame.end());
    }
    return file;
}

TEST(FlacLength, AWholeFileCountsItsLastFrame) {
    EXPECT_EQ(flacSamplesPresent(MemorySource(flac(3))), 3 * 4096);
    EXPECT_EQ(flacSamplesPresent(MemorySource(flac(300))), 300 * 4096);
    EXPECT_EQ(flacSamplesPresent(MemorySource(flac(3, 1000))), 2 * 4096 + 1000);
}

TEST(FlacLength, ACutFrameDoesNotCount) {
    Bytes file = flac(10);
    file.resize(file.size() - 1);
    EXPECT_EQ(flacSamplesPresent(MemorySource(file)), 9 * 4096);
    file.resize(file.size() - 1500);
    EXPECT_EQ(flacSamplesPresent(MemorySource(file)), 7 * 4096);
}

TEST(FlacLength, ATagBehindTheMusicDoesNotCount) {
    Bytes file = flac(10);
    const std::size_t music = file.size();
    file.resize(music + 128, 0x20);
    file[music] = 'T';
    file[music + 1] = 'A';
    file[music + 2] = 'G';
    EXPECT_EQ(flacSamplesPresent(MemorySource(file)), 10 * 4096);
}

TEST(FlacLength, WithoutAFrameThereIsNoAnswer) {
    EXPECT_FALSE(flacSamplesPresent(MemorySource(flac(0))));
    EXPECT_FALSE(flacSamplesPresent(MemorySource({})));
    EXPECT_FALSE(flacSamplesPresent(MemorySource(Bytes(5000, 0xFF))));
}

TEST(FlacLength, AFrameFarFromTheEndIsFoundToo) {
    Bytes file = flac(5);
    file.resize(file.size() + 300000, 0x55);
    EXPECT_EQ(flacSamplesPresent(MemorySource(file)), 4 * 4096); // its end cannot be proved
    file = flac(5);
    file.resize(file.size() + 300000); // zeros leave the check sum as it is
    EXPECT_EQ(flacSamplesPresent(MemorySource(file)), 5 * 4096);
}

} // namespace
} // namespace velmora::platform::sound
