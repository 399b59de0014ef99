#include "platform/sound/mpeg_frame.h"

#include "sound_testing.h"

#include <gtest/gtest.h>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

struct HeaderCase {
    Bytes bytes;
    int version, layer, rate, channels, samples, size;
};

class MpegHeader : public testing::TestWithParam<HeaderCase> {};

TEST_P(MpegHeader, IsRead) {
    const HeaderCase &test = GetParam();
    const auto frame = parseMpegFrame(test.bytes);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->version, test.version);
    EXPECT_EQ(frame->layer, test.layer);
    EXPECT_EQ(frame->rate, test.rate);
    EXPECT_EQ(frame->channels, test.channels);
    EXPECT_EQ(frame->samples, test.samples);
    EXPECT_EQ(frame->size, test.size);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, MpegHeader,
    testing::Values(HeaderCase{{0xFF, 0xFB, 0x90, 0x64}, 1, 3, 44100, 2, 1152, 417},
                    HeaderCase{{0xFF, 0xFB, 0x92, 0x64}, 1, 3, 44100, 2, 1152, 418}, // padded
                    HeaderCase{{0xFF, 0xFB, 0x94, 0xC4}, 1, 3, 48000, 1, 1152, 384},
                    HeaderCase{{0xFF, 0xFB, 0x98, 0x64}, 1, 3, 32000, 2, 1152, 576},
                    HeaderCase{{0xFF, 0xFB, 0xE4, 0x64}, 1, 3, 48000, 2, 1152, 960}, // 320 kbit/s
                    HeaderCase{{0xFF, 0xF3, 0x84, 0x64}, 2, 3, 24000, 2, 576, 192},
                    HeaderCase{{0xFF, 0xE3, 0x18, 0xC4}, 3, 3, 8000, 1, 576, 72},
                    HeaderCase{{0xFF, 0xFD, 0xA4, 0x04}, 1, 2, 48000, 2, 1152, 576},
                    HeaderCase{{0xFF, 0xFF, 0xC4, 0x04}, 1, 1, 48000, 2, 384, 384},
                    HeaderCase{{0xFF, 0xFB, 0x00, 0x64}, 1, 3, 44100, 2, 1152, 0})); // free

TEST(MpegFrame, WhatCannotBeAHeaderIsRefused) {
    for (const Bytes &bytes : {Bytes{0xFF, 0xEB, 0x90, 0x64}, // reserved version
                               Bytes{0xFF, 0xF9, 0x90, 0x64}, // no layer: AAC
                               Bytes{0xFF, 0xFB, 0xF0, 0x64}, // bad bit rate
                               Bytes{0xFF, 0xFB, 0x9C, 0x64}, // reserved sample rate
                               Bytes{0xFF, 0xFB, 0x90, 0x66}, // reserved emphasis
                               Bytes{0xFF, 0xE5, 0x90, 0x64}, // 2.5 knows layer III alone
                               Bytes{0xFE, 0xFB, 0x90, 0x64}, Bytes{0xFF, 0x7B, 0x90, 0x64},
                               Bytes{0xFF, 0xFB, 0x90}, Bytes{}})
        EXPECT_FALSE(parseMpegFrame(bytes));
}

// Frames of 417 bytes of silence.
Bytes frames(int count) {
    Bytes bytes;
    for (int i = 0; i < count; ++i) {
        Bytes frame(417, 0);
        frame[0] = 0xFF;
        frame[1] = 0xFB;
        frame[2] = 0x90;
        frame[3] = 0x64;
        bytes.insert(bytes.end(), frame.begin(), frame.end());
    }
    return bytes;
}

Bytes joined(const Bytes &a, const Bytes &b) {
    Bytes all = a;
    all.insert(all.end(), b.begin(), b.end());
    return all;
}

TEST(FindMpegStream, AtOnceOrBehindJunk) {
    EXPECT_EQ(findMpegStream(MemorySource(frames(5)), 0, 4096), 0);
    const Bytes late = joined(Bytes(1000, 7), frames(5));
    EXPECT_EQ(findMpegStream(MemorySource(late), 0, 4096), 1000);
    EXPECT_FALSE(findMpegStream(MemorySource(late), 0, 999));
}

TEST(FindMpegStream, AHeaderByChanceInsideJunkIsPassedOver) {
    Bytes junk(1000, 7);
    junk[100] = 0xFF;
    junk[101] = 0xFB;
    junk[102] = 0x90;
    junk[103] = 0x64;
    EXPECT_EQ(findMpegStream(MemorySource(joined(junk, frames(5))), 0, 4096), 1000);
}

TEST(FindMpegStream, FewFramesCountOnlyWhereTheFileEndsWithThem) {
    const Bytes two = frames(2);
    EXPECT_EQ(findMpegStream(MemorySource(two), 0, 4096), 0);
    EXPECT_FALSE(findMpegStream(MemorySource(joined(two, Bytes(600, 7))), 0, 4096));
    EXPECT_FALSE(findMpegStream(MemorySource(frames(1)), 0, 4096));
    Bytes cut = frames(3);
    cut.resize(cut.size() - 200);
    EXPECT_EQ(findMpegStream(MemorySource(cut), 0, 4096), 0);
}

TEST(CountMpegFrames, CountsWholeFramesOnly) {
    EXPECT_EQ(countMpegFrames(MemorySource(frames(100)), 0), 100);
    Bytes cut = frames(100);
    cut.resize(cut.size() - 1);
    EXPECT_EQ(countMpegFrames(MemorySource(cut), 0), 99);
}

TEST(CountMpegFrames, PassesOverGarbageAndTags) {
    Bytes bytes = joined(frames(10), Bytes(777, 3));
    bytes = joined(bytes, frames(20));
    Bytes tag(128, 0);
    tag[0] = 'T';
    tag[1] = 'A';
    tag[2] = 'G';
    EXPECT_EQ(countMpegFrames(MemorySource(joined(bytes, tag)), 0), 30);
}

TEST(CountMpegFrames, AWindowsEdgeInsideAHeaderLosesNoFrame) {
    EXPECT_EQ(countMpegFrames(MemorySource(frames(5000)), 0), 5000); // 2 MB
}

TEST(Id3v2Size, CountsTheWholeTag) {
    const Bytes tag = {'I', 'D', '3', 4, 0, 0, 0, 0, 1, 5};
    EXPECT_EQ(id3v2Size(MemorySource(tag), 0), 10 + 133);
    Bytes footer = tag;
    footer[5] = 0x10;
    EXPECT_EQ(id3v2Size(MemorySource(footer), 0), 20 + 133);
    Bytes wrong = tag;
    wrong[8] = 0x80; // seven bits to the byte
    EXPECT_EQ(id3v2Size(MemorySource(wrong), 0), 0);
    EXPECT_EQ(id3v2Size(MemorySource(Bytes{'I', 'D', '3'}), 0), 0);
}

TEST(EndBeforeTags, BothTagsAreLeftOut) {
    Bytes ape(32 + 100, 0);
    const std::string mark = "APETAGEX";
    std::copy(mark.begin(), mark.end(), ape.begin() + 100);
    ape[108] = 0xD0;
    ape[109] = 0x07; // version 2000
    ape[112] = 132;  // items and footer
    Bytes id3(128, 0);
    id3[0] = 'T';
    id3[1] = 'A';
    id3[2] = 'G';
    const Bytes sound = frames(4);
    const auto size = static_cast<std::int64_t>(sound.size());
    EXPECT_EQ(endBeforeTags(MemorySource(sound)), size);
    EXPECT_EQ(endBeforeTags(MemorySource(joined(sound, id3))), size);
    EXPECT_EQ(endBeforeTags(MemorySource(joined(sound, ape))), size);
    EXPECT_EQ(endBeforeTags(MemorySource(joined(joined(sound, ape), id3))), size);
    Bytes lying = ape;
    lying[115] = 0x7F; // longer than the file
    EXPECT_EQ(endBeforeTags(MemorySource(joined(sound, lying))),
              size + static_cast<std::int64_t>(lying.size()));
}

TEST(MpegSeekHeader, TellsFramesAndBytesOfAnyChannelLayout) {
    for (const bool mono : {false, true}) {
        for (const bool low : {false, true}) {
            Bytes bytes(417, 0);
            bytes[0] = 0xFF;
            bytes[1] = low ? 0xF3 : 0xFB;
            bytes[2] = 0x90;
            bytes[3] = mono ? 0xC4 : 0x64;
            const std::size_t at = 4U + (low ? (mono ? 9U : 17U) : (mono ? 17U : 32U));
            const Bytes header = {'X', 'i', 'n', 'g', 0, 0, 0, 3, 0, 0, 1, 2, 0, 3, 4, 5};
            std::copy(header.begin(), header.end(),
                      bytes.begin() + static_cast<std::ptrdiff_t>(at));
            const auto found = readMpegSeekHeader(MemorySource(bytes), 0);
            ASSERT_TRUE(found);
            EXPECT_EQ(found->frames, 0x102);
            EXPECT_EQ(found->bytes, 0x30405);
        }
    }
    EXPECT_FALSE(readMpegSeekHeader(MemorySource(frames(1)), 0));
}

TEST(MpegSeekHeader, TheOtherKindStandsAtAFixedPlace) {
    Bytes bytes = frames(1);
    const Bytes header = {'V', 'B', 'R', 'I', 0, 1, 0, 0, 0, 0, 0, 0, 9, 8, 0, 0, 7, 6};
    std::copy(header.begin(), header.end(), bytes.begin() + 36);
    const auto found = readMpegSeekHeader(MemorySource(bytes), 0);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->bytes, 0x908);
    EXPECT_EQ(found->frames, 0x706);
}

} // namespace
} // namespace velmora::platform::sound
