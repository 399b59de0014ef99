#include "platform/backends/sound/readers/mpeg_frame.h"
#include "platform/backends/sound/readers/mpeg_index.h"

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

std::int64_t countedFrames(const Bytes &bytes) {
    const MemorySource source(bytes);
    MpegIndex index(source, 0);
    while (index.countOn()) {
    }
    return index.frames();
}

TEST(MpegIndex, CountsWholeFramesOnly) {
    EXPECT_EQ(countedFrames(frames(100)), 100);
    Bytes cut = frames(100);
    cut.resize(cut.size() - 1);
    EXPECT_EQ(countedFrames(cut), 99);
}

TEST(MpegIndex, PassesOverGarbageAndTags) {
    const Bytes bytes = joined(joined(frames(10), Bytes(777, 3)), frames(20));
    EXPECT_EQ(countedFrames(bytes), 30);
    EXPECT_EQ(countedFrames(joined(bytes, Bytes(200000, 7))), 30);
    EXPECT_EQ(countedFrames(joined(Bytes(200000, 7), bytes)), 30);
}

TEST(MpegIndex, AHeaderByChanceInGarbageIsNoFrame) {
    for (const int distance : {0, 1, 200, 416}) {
        Bytes garbage(1000, 3);
        const Bytes header = {0xFF, 0xFB, 0x90, 0x64};
        std::copy(header.begin(), header.end(), garbage.begin() + 1000 - 5 - distance);
        EXPECT_EQ(countedFrames(joined(joined(frames(10), garbage), frames(20))), 30) << distance;
    }
}

TEST(MpegIndex, ATagInTheMiddleIsPassedOverWhateverItHolds) {
    Bytes tag = {'I', 'D', '3', 4, 0, 0, 0, 0, 0x20, 0}; // 4096 bytes
    tag.resize(10 + 4096, 9);
    const Bytes inside = frames(3);
    std::copy(inside.begin(), inside.end(), tag.begin() + 500);
    EXPECT_EQ(countedFrames(joined(joined(frames(10), tag), frames(20))), 30);
    tag[8] = 0x7F; // it lies about its size: it is garbage
    EXPECT_EQ(countedFrames(joined(joined(frames(10), tag), frames(20))), 33);
}

TEST(MpegIndex, AWindowsEdgeInsideAHeaderLosesNoFrame) {
    EXPECT_EQ(countedFrames(frames(5000)), 5000); // 2 MB
}

TEST(MpegIndex, PartsOfOtherFormsAreRuns) {
    Bytes other = frames(30);
    for (std::size_t at = 0; at < other.size(); at += 417)
        other[at + 2] = 0x94; // 48 kHz: 384 bytes to the frame
    Bytes shorter;
    for (std::size_t at = 0; at < other.size(); at += 417)
        shorter.insert(shorter.end(), other.begin() + static_cast<std::ptrdiff_t>(at),
                       other.begin() + static_cast<std::ptrdiff_t>(at + 384));
    const Bytes bytes = joined(joined(frames(50), shorter), frames(40));
    const MemorySource source(bytes);
    MpegIndex index(source, 0);
    while (index.countOn()) {
    }
    EXPECT_EQ(index.frames(), 120);
    ASSERT_EQ(index.runs().size(), 3U);
    EXPECT_EQ(index.runs()[0].firstFrame, 0);
    EXPECT_EQ(index.runs()[0].form.rate, 44100);
    EXPECT_EQ(index.runs()[1].firstFrame, 50);
    EXPECT_EQ(index.runs()[1].form.rate, 48000);
    EXPECT_EQ(index.runs()[2].firstFrame, 80);
    EXPECT_EQ(index.runOf(79), 1U);
    EXPECT_EQ(index.runOf(80), 2U);
    std::int64_t frame = 70;
    const MpegPlace place = index.placeOf(frame);
    EXPECT_EQ(frame, 64);
    EXPECT_EQ(place.offset, 50 * 417 + 14 * 384);
    EXPECT_EQ(place.form.rate, 48000);
}

TEST(MpegIndex, CountsAPieceAtATime) {
    const Bytes bytes = frames(5000);
    const MemorySource source(bytes);
    MpegIndex index(source, 0);
    ASSERT_TRUE(index.countOn());
    EXPECT_GT(index.frames(), 100);
    EXPECT_LT(index.frames(), 1000);
    EXPECT_EQ(index.reached(), index.frames() * 417);
    EXPECT_FALSE(index.isComplete());
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

// Wherever in a stream it stands; bytes of sound may be any.
TEST(MpegSeekHeader, AFrameThatHoldsOneIsNoneOfSoundButSoundThatReadsLikeOneIs) {
    constexpr std::size_t size = 417;
    const auto counted = [](const Bytes &bytes) {
        const MemorySource source(bytes);
        MpegIndex index(source, 0);
        while (index.countOn()) {
        }
        return index.frames();
    };
    for (const char *mark : {"Xing", "Info", "VBRI"}) {
        Bytes bytes = frames(10);
        std::copy_n(mark, 4, bytes.begin() + 4 * size + 36);
        EXPECT_EQ(counted(bytes), 9) << mark;
        bytes[4 * size + 20] = 1; // something is told of its sound
        EXPECT_EQ(counted(bytes), 10) << mark;
    }
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
