// MIDI through the real synthesizer and a real sound font.

#include "platform/backends/sound/device/sound.h"

#include "midi_bytes.h"
#include "sound_testing.h"

#include <gtest/gtest.h>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr int quarter = 480;

// A note of half a second at each full second, on an organ (it does not die away).
Bytes ticking(int seconds, int format = 0) {
    MidiTrack tempo;
    tempo.tempo(0, 1000000);
    MidiTrack notes;
    notes.event(0, {0xC0, 16});
    for (int i = 0; i < seconds; ++i)
        notes.event(i == 0 ? 0 : 240, {0x90, 69, 127}).event(240, {0x80, 69, 0});
    notes.end(240);
    if (format == 1)
        return midiFile(1, quarter, {tempo.end(0), notes});
    MidiTrack all;
    all.tempo(0, 1000000).event(0, {0xC0, 16});
    for (int i = 0; i < seconds; ++i)
        all.event(i == 0 ? 0 : 240, {0x90, 69, 127}).event(240, {0x80, 69, 0});
    return midiFile(0, quarter, {all.end(240)});
}

class MidiReaderTest : public testing::Test {
protected:
    std::unique_ptr<Reader> open(const Bytes &bytes, bool midiOnly = true) {
        return openReader(folder_.write("file.mid", bytes), libraries_, defaultSoundFonts(),
                          midiOnly);
    }
    static std::vector<float> read(Reader &reader, double seconds) {
        const auto frames = static_cast<std::size_t>(seconds * reader.rate());
        std::vector<float> both(frames * 2);
        both.resize(reader.read(both.data(), frames) * 2);
        std::vector<float> left;
        for (std::size_t i = 0; i < both.size(); i += 2)
            left.push_back(both[i]);
        return left;
    }

    TemporaryFolder folder_;
    DecoderLibraries libraries_{LibraryNames{}};
};

TEST_F(MidiReaderTest, HasTheExactLengthOfItsTempoMap) {
    for (const int format : {0, 1}) {
        const auto reader = open(ticking(10, format));
        ASSERT_TRUE(reader);
        EXPECT_EQ(reader->frames(), std::int64_t{10} * reader->rate());
    }
    const auto slow = open(midiFile(0, quarter,
                                    {MidiTrack()
                                         .tempo(0, 2000000)
                                         .event(0, {0x90, 60, 100})
                                         .tempo(480, 250000)
                                         .event(480, {0x80, 60, 0})
                                         .end(0)}));
    ASSERT_TRUE(slow);
    EXPECT_NEAR(static_cast<double>(slow->frames()) / slow->rate(), 2.25, 0.001);
}

TEST_F(MidiReaderTest, SmpteTimeIsPlayedToo) {
    const auto reader = open(midiFile(
        0, 0xE728, {MidiTrack().event(0, {0x90, 69, 127}).event(2000, {0x80, 69, 0}).end(1000)}));
    ASSERT_TRUE(reader); // 25 frames of 40 ticks: a tick is a millisecond
    EXPECT_NEAR(static_cast<double>(reader->frames()) / reader->rate(), 3.0, 0.001);
    const auto sound = read(*reader, 1);
    EXPECT_GT(rms(sound), 0.001);
}

TEST_F(MidiReaderTest, NotesSoundWhereTheyStand) {
    const auto reader = open(ticking(5));
    ASSERT_TRUE(reader);
    for (int second = 0; second < 5; ++second) {
        const auto loud = read(*reader, 0.45);
        read(*reader, 0.45);
        const auto quiet = read(*reader, 0.1); // release and reverberation are over
        EXPECT_GT(rms(loud), 0.01) << second;
        EXPECT_LT(rms(quiet), rms(loud) / 10) << second;
    }
}

TEST_F(MidiReaderTest, ASeekLandsAtItsPlaceWithTheRightInstrument) {
    const auto reader = open(ticking(30));
    ASSERT_TRUE(reader);
    for (const int second : {20, 3, 29, 7}) {
        ASSERT_TRUE(reader->seek(std::int64_t{reader->rate()} * second - reader->rate() / 10));
        const auto before = read(*reader, 0.1);
        const auto note = read(*reader, 0.4);
        EXPECT_LT(rms(before), 0.002) << second;
        EXPECT_GT(rms(note), 0.01) << second;
        // The attack is where the file says, to a few milliseconds.
        std::size_t first = 0;
        while (first < note.size() && std::abs(note[first]) < 0.005F)
            ++first;
        EXPECT_LT(first, static_cast<std::size_t>(reader->rate() / 50)) << second;
        // An organ holds its tone; the piano that a fresh synthesizer has would fade.
        const std::vector<float> early(note.begin() + 4410, note.begin() + 8820);
        const std::vector<float> late(note.end() - 4410, note.end());
        EXPECT_GT(rms(late), rms(early) * 0.7) << second;
    }
}

TEST_F(MidiReaderTest, PlaysAgainFromTheBeginningAfterItsEnd) {
    const auto reader = open(ticking(2));
    ASSERT_TRUE(reader);
    read(*reader, 5);
    EXPECT_TRUE(read(*reader, 1).empty());
    ASSERT_TRUE(reader->seek(0));
    EXPECT_GT(rms(read(*reader, 0.4)), 0.01);
}

TEST_F(MidiReaderTest, RiffMidiIsMidi) {
    const auto reader = open(riffMidi(ticking(4)));
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->frames(), std::int64_t{4} * reader->rate());
    EXPECT_GT(rms(read(*reader, 0.4)), 0.01);
}

TEST_F(MidiReaderTest, ACutFilePlaysWhatItHas) {
    Bytes bytes = ticking(10);
    bytes.resize(bytes.size() / 2);
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    EXPECT_LT(reader->frames(), std::int64_t{6} * reader->rate());
    EXPECT_GT(rms(read(*reader, 0.4)), 0.01);
}

TEST_F(MidiReaderTest, WithoutASoundFontItDoesNotOpen) {
    const std::string path = folder_.write("file.mid", ticking(2));
    EXPECT_FALSE(openReader(path, libraries_, {}, true));
    EXPECT_FALSE(openReader(path, libraries_, {"/nowhere/font.sf2"}, true));
    // Neither a folder nor what is no font is one.
    EXPECT_FALSE(openReader(path, libraries_, {"/tmp", path}, true));
    // The next of the list is tried.
    std::vector<std::string> fonts = {"/nowhere/font.sf2", path};
    for (const std::string &font : defaultSoundFonts())
        fonts.push_back(font);
    EXPECT_TRUE(openReader(path, libraries_, fonts, true));
}

TEST_F(MidiReaderTest, WithoutItsLibraryItDoesNotOpen) {
    LibraryNames names;
    names.fluidsynth = "libthere-is-no-such-thing.so.0";
    DecoderLibraries without(names);
    EXPECT_FALSE(
        openReader(folder_.write("file.mid", ticking(2)), without, defaultSoundFonts(), true));
}

TEST_F(MidiReaderTest, SequencerTakesNothingElse) {
    EXPECT_FALSE(openReader(mediaFile("chirp.wav"), libraries_, defaultSoundFonts(), true));
    EXPECT_TRUE(openReader(mediaFile("chirp.wav"), libraries_, defaultSoundFonts(), false));
    EXPECT_TRUE(open(ticking(1), false));
}

TEST_F(MidiReaderTest, ThousandsOfNotesAtOnceAreSurvived) {
    MidiTrack track;
    for (int i = 0; i < 20000; ++i)
        track.event(0, {0x90 + i % 16, i % 128, 127});
    track.event(10, {0xF0, 5, 0x7E, 0x7F, 0x09, 0x01, 0xF7});
    for (int i = 0; i < 5000; ++i)
        track.event(0, {0xB0 + i % 16, i % 128, i % 100});
    const auto reader = open(midiFile(0, quarter, {track.end(480)}));
    ASSERT_TRUE(reader);
    for (const float sample : read(*reader, 1))
        ASSERT_TRUE(std::isfinite(sample));
}

} // namespace
} // namespace velmora::platform::sound
