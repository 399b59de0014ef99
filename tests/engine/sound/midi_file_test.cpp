#include "platform/backends/sound/readers/midi_file.h"

#include "midi_bytes.h"

#include <gtest/gtest.h>
#include <random>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

std::vector<MidiEvent> eventsOf(const MidiFile &file) {
    std::vector<MidiEvent> all;
    MidiFile::Events events(file);
    while (const auto event = events.next())
        all.push_back(*event);
    return all;
}

// 480 ticks to the quarter, 120 quarters a minute unless the file says otherwise.
constexpr int quarter = 480;

TEST(MidiFile, LastsUntilTheEndOfItsTrackAtTheDefaultTempo) {
    const auto file = MidiFile::parse(midiFile(
        0, quarter, {MidiTrack().event(0, {0x90, 60, 100}).event(960, {0x80, 60, 0}).end(480)}));
    ASSERT_TRUE(file);
    EXPECT_DOUBLE_EQ(file->seconds(), 1.5);
    const auto events = eventsOf(*file);
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].status, 0x90);
    EXPECT_EQ(events[0].first, 60);
    EXPECT_EQ(events[0].second, 100);
    EXPECT_DOUBLE_EQ(events[1].seconds, 1.0);
}

TEST(MidiFile, TempoChangesHoldFromTheirPlaceOn) {
    const auto file = MidiFile::parse(midiFile(0, quarter,
                                               {MidiTrack()
                                                    .tempo(0, 1000000)
                                                    .event(480, {0x90, 60, 100}) // 1 s
                                                    .tempo(240, 250000)          // 1.5 s
                                                    .event(480, {0x80, 60, 0})   // 1.75 s
                                                    .tempo(0, 2000000)
                                                    .end(120)})); // 2.25 s
    ASSERT_TRUE(file);
    const auto events = eventsOf(*file);
    ASSERT_EQ(events.size(), 2U);
    EXPECT_NEAR(events[0].seconds, 1.0, 1e-9);
    EXPECT_NEAR(events[1].seconds, 1.75, 1e-9);
    EXPECT_NEAR(file->seconds(), 2.25, 1e-9);
}

TEST(MidiFile, TheTempoTrackGovernsTheOthers) {
    const auto file = MidiFile::parse(
        midiFile(1, quarter,
                 {MidiTrack().tempo(0, 500000).tempo(480, 1000000).end(0),
                  MidiTrack().event(480, {0x91, 64, 90}).event(480, {0x81, 64, 0}).end(0),
                  MidiTrack().event(240, {0x92, 67, 80}).end(1200)}));
    ASSERT_TRUE(file);
    const auto events = eventsOf(*file);
    ASSERT_EQ(events.size(), 3U);
    EXPECT_EQ(events[0].status, 0x92);
    EXPECT_NEAR(events[0].seconds, 0.25, 1e-9);
    EXPECT_NEAR(events[1].seconds, 0.5, 1e-9);
    EXPECT_NEAR(events[2].seconds, 1.5, 1e-9);
    EXPECT_NEAR(file->seconds(), 2.5, 1e-9); // the longest track ends last
}

TEST(MidiFile, EventsOfOneTickKeepTheOrderOfTheirTracks) {
    std::vector<MidiTrack> tracks;
    for (int i = 0; i < 8; ++i)
        tracks.push_back(
            MidiTrack().event(100, {0x90 + i, 60, 1}).event(0, {0x90 + i, 61, 1}).end(100));
    const auto file = MidiFile::parse(midiFile(1, quarter, tracks));
    ASSERT_TRUE(file);
    const auto events = eventsOf(*file);
    ASSERT_EQ(events.size(), 16U);
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(events[i].status, 0x90 + static_cast<int>(i / 2));
        EXPECT_EQ(events[i].first, 60 + static_cast<int>(i % 2));
    }
}

struct SmpteCase {
    int framesCode;
    int ticks;
    double seconds; // of 3000 ticks
};

class SmpteDivision : public testing::TestWithParam<SmpteCase> {};

TEST_P(SmpteDivision, CountsTicksOfTheFrameAndKnowsNoTempo) {
    const auto [code, ticks, seconds] = GetParam();
    const int division = ((256 - code) << 8) | ticks;
    const auto file = MidiFile::parse(
        midiFile(0, division, {MidiTrack().tempo(0, 100000).event(0, {0x90, 60, 100}).end(3000)}));
    ASSERT_TRUE(file);
    EXPECT_NEAR(file->seconds(), seconds, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Rates, SmpteDivision,
                         testing::Values(SmpteCase{24, 40, 3.125}, SmpteCase{25, 40, 3.0},
                                         SmpteCase{30, 100, 1.0}, SmpteCase{29, 100, 1.001}));

TEST(MidiFile, RunningStatusIsCarriedOn) {
    const auto file = MidiFile::parse(midiFile(0, quarter,
                                               {MidiTrack()
                                                    .event(0, {0x90, 60, 100})
                                                    .event(10, {62, 100})
                                                    .event(10, {64, 100})
                                                    .end(480)}));
    ASSERT_TRUE(file);
    const auto events = eventsOf(*file);
    ASSERT_EQ(events.size(), 3U);
    EXPECT_EQ(events[2].status, 0x90);
    EXPECT_EQ(events[2].first, 64);
}

TEST(MidiFile, ExclusiveMessagesComeWithoutTheirFrame) {
    const auto file = MidiFile::parse(midiFile(
        0, quarter, {MidiTrack().event(0, {0xF0, 5, 0x7E, 0x7F, 0x09, 0x01, 0xF7}).end(480)}));
    ASSERT_TRUE(file);
    const auto events = eventsOf(*file);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].status, 0xF0);
    EXPECT_EQ(Bytes(events[0].exclusive.begin(), events[0].exclusive.end()),
              (Bytes{0x7E, 0x7F, 0x09, 0x01}));
}

TEST(MidiFile, TextsAndOtherMarksAreNoEvents) {
    const auto file = MidiFile::parse(midiFile(0, quarter,
                                               {MidiTrack()
                                                    .event(0, {0xFF, 0x03, 3, 'a', 'b', 'c'})
                                                    .event(0, {0xFF, 0x58, 4, 4, 2, 24, 8})
                                                    .event(480, {0x90, 60, 1})
                                                    .end(0)}));
    ASSERT_TRUE(file);
    EXPECT_EQ(eventsOf(*file).size(), 1U);
    EXPECT_DOUBLE_EQ(file->seconds(), 0.5);
}

TEST(MidiFile, ACutTrackPlaysWhatItHas) {
    Bytes bytes = midiFile(0, quarter,
                           {MidiTrack()
                                .event(0, {0x90, 60, 100})
                                .event(480, {0x80, 60, 0})
                                .event(480, {0x90, 62, 100})
                                .end(480)});
    bytes.resize(bytes.size() - 6);
    const auto file = MidiFile::parse(bytes);
    ASSERT_TRUE(file);
    EXPECT_EQ(eventsOf(*file).size(), 2U);
    EXPECT_DOUBLE_EQ(file->seconds(), 1.0);
}

TEST(MidiFile, ADamagedTrackEndsWhereItIsDamagedAndTheOthersGoOn) {
    const auto file = MidiFile::parse(
        midiFile(1, quarter,
                 {MidiTrack().event(0, {0x90, 60, 0x85}).event(480, {0x80, 60, 0}).end(9000),
                  MidiTrack().event(480, {0x91, 64, 90}).end(480)}));
    ASSERT_TRUE(file);
    const auto events = eventsOf(*file);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].status, 0x91);
    EXPECT_DOUBLE_EQ(file->seconds(), 1.0);
}

TEST(MidiFile, UnknownChunksAndALongerHeaderArePassedOver) {
    Bytes bytes = {'M', 'T', 'h', 'd', 0, 0, 0, 8, 0, 0, 0, 1, 0x01, 0xE0, 9, 9};
    append(bytes, {'X', 'Y', 'Z', 'W', 0, 0, 0, 3, 1, 2, 3});
    const Bytes track = MidiTrack().event(480, {0x90, 60, 1}).end(0).bytes();
    append(bytes, {'M', 'T', 'r', 'k', 0, 0, 0, static_cast<int>(track.size())});
    append(bytes, track);
    const auto file = MidiFile::parse(bytes);
    ASSERT_TRUE(file);
    EXPECT_DOUBLE_EQ(file->seconds(), 0.5);
}

TEST(MidiFile, WhatTakesNoTimeIsNoMedium) {
    EXPECT_FALSE(MidiFile::parse({}));
    EXPECT_FALSE(MidiFile::parse(midiFile(0, quarter, {})));
    EXPECT_FALSE(MidiFile::parse(midiFile(0, quarter, {MidiTrack().end(0)})));
    EXPECT_FALSE(
        MidiFile::parse(midiFile(0, quarter, {MidiTrack().event(0, {0x90, 1, 1}).end(0)})));
}

TEST(MidiFile, ADivisionOfZeroIsRefused) {
    const MidiTrack track = MidiTrack().event(0, {0x90, 1, 1}).end(480);
    EXPECT_FALSE(MidiFile::parse(midiFile(0, 0, {track})));
    EXPECT_FALSE(MidiFile::parse(midiFile(0, 0xE700, {track})));
}

TEST(MidiFile, HeadersThatClaimMoreThanThereIsAreHarmless) {
    Bytes bytes = midiFile(1, quarter, {MidiTrack().event(0, {0x90, 1, 1}).end(480)});
    bytes[10] = bytes[11] = 0xFF;                         // 65535 tracks
    bytes[18] = bytes[19] = bytes[20] = bytes[21] = 0xFF; // four gigabytes
    const auto file = MidiFile::parse(bytes);
    ASSERT_TRUE(file);
    EXPECT_DOUBLE_EQ(file->seconds(), 0.5);
    bytes[4] = 0xFF; // a header of four gigabytes
    EXPECT_FALSE(MidiFile::parse(bytes));
}

TEST(MidiFile, TheLongestDeltasGiveAFiniteLength) {
    MidiTrack track;
    track.tempo(0, 0xFFFFFF);
    for (int i = 0; i < 1000; ++i)
        track.event(0x0FFFFFFF, {0x90, 1, 1});
    const auto file = MidiFile::parse(midiFile(0, 1, {track.end(0)}));
    ASSERT_TRUE(file);
    EXPECT_TRUE(std::isfinite(file->seconds()));
    EXPECT_GT(file->seconds(), 1e12);
}

TEST(MidiFile, AnyDamageIsSurvived) {
    const Bytes sound = midiFile(1, quarter,
                                 {MidiTrack().tempo(0, 400000).tempo(960, 700000).end(0),
                                  MidiTrack()
                                      .event(0, {0xC0, 5})
                                      .event(0, {0xF0, 5, 0x7E, 0x7F, 9, 1, 0xF7})
                                      .event(10, {0x90, 60, 100})
                                      .event(480, {62, 100})
                                      .event(10, {0xE0, 0, 64})
                                      .event(10, {0xFF, 1, 4, 't', 'e', 'x', 't'})
                                      .end(480)});
    std::mt19937 random(1);
    int opened = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes bytes = sound;
        for (unsigned i = random() % 6 + 1; i > 0; --i)
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        if (random() % 4 == 0)
            bytes.resize(random() % bytes.size());
        const auto file = MidiFile::parse(bytes);
        if (!file)
            continue;
        ++opened;
        EXPECT_GT(file->seconds(), 0);
        double last = 0;
        for (const MidiEvent &event : eventsOf(*file)) {
            EXPECT_GE(event.seconds, last);
            EXPECT_GE(event.status, 0x80);
            EXPECT_LT(event.first, 0x80);
            EXPECT_LT(event.second, 0x80);
            last = event.seconds;
        }
        EXPECT_LE(last, file->seconds());
    }
    EXPECT_GT(opened, 1000); // the damage leaves something to read
}

} // namespace
} // namespace velmora::platform::sound
