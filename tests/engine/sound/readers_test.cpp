// Real files: the reader is chosen by content, lengths are exact, seeks land where they should.

#include "sound_testing.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

std::unique_ptr<Reader> open(const std::string &path) {
    DecoderLibraries libraries{LibraryNames{}};
    return openReader(path, libraries, {}, false);
}

struct Case {
    const char *file;
    int rate;
    int channels;
};
std::ostream &operator<<(std::ostream &out, const Case &test) { return out << test.file; }

class RisingSine : public testing::TestWithParam<Case> {};

TEST_P(RisingSine, HasItsExactLength) {
    const auto reader = open(mediaFile(GetParam().file));
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->rate(), GetParam().rate);
    EXPECT_EQ(reader->channels(), GetParam().channels);
    EXPECT_NEAR(lengthMs(*reader), 10123, 50);
}

TEST_P(RisingSine, DecodesToTheEndAndNoFurther) {
    const auto reader = open(mediaFile(GetParam().file));
    ASSERT_TRUE(reader);
    EXPECT_EQ(decodeAll(*reader), reader->frames());
}

TEST_P(RisingSine, SeeksToTheExactPlace) {
    const auto reader = open(mediaFile(GetParam().file));
    ASSERT_TRUE(reader);
    const int rate = reader->rate();
    const auto piece = static_cast<std::size_t>(rate / 10);
    for (const double seconds : {5.0, 9.5, 1.0, 0.3, 7.321, 2.5, 9.9}) {
        ASSERT_TRUE(reader->seek(static_cast<std::int64_t>(seconds * rate)));
        const double place = placeInChirp(readChannel(*reader, piece), rate);
        // Without its header an mp3 begins with the 25 ms that the coder itself takes.
        EXPECT_NEAR(place, seconds + 0.05, 0.03) << "at " << seconds;
    }
}

TEST_P(RisingSine, ReadsOnFromASeekAsWithoutIt) {
    const auto whole = open(mediaFile(GetParam().file));
    const auto part = open(mediaFile(GetParam().file));
    ASSERT_TRUE(whole && part);
    const std::int64_t target = whole->rate() * 4 + 77;
    readChannel(*whole, static_cast<std::size_t>(target));
    ASSERT_TRUE(part->seek(target));
    const auto expected = readChannel(*whole, 4000);
    const auto found = readChannel(*part, 4000);
    ASSERT_EQ(found.size(), expected.size());
    // A decoder that begins in the middle needs a moment to find its exact samples again.
    double difference = 0;
    for (std::size_t i = 2000; i < found.size(); ++i)
        difference = std::max(difference, std::abs(double{found[i]} - expected[i]));
    EXPECT_LT(difference, 0.02);
}

TEST_P(RisingSine, BeginsAgainAfterItsEnd) {
    const auto reader = open(mediaFile(GetParam().file));
    ASSERT_TRUE(reader);
    ASSERT_TRUE(reader->seek(reader->frames()));
    EXPECT_TRUE(readChannel(*reader, 100).empty());
    ASSERT_TRUE(reader->seek(0));
    readChannel(*reader, static_cast<std::size_t>(reader->rate() / 5));
    const auto piece = static_cast<std::size_t>(reader->rate() / 10);
    EXPECT_NEAR(placeInChirp(readChannel(*reader, piece), reader->rate()), 0.25, 0.03);
}

TEST_P(RisingSine, HasItsAmplitude) {
    const auto reader = open(mediaFile(GetParam().file));
    ASSERT_TRUE(reader);
    ASSERT_TRUE(reader->seek(reader->rate() * 2));
    const double expected = 0.5 / std::sqrt(2.0);
    EXPECT_NEAR(rms(readChannel(*reader, static_cast<std::size_t>(reader->rate()))), expected,
                0.06);
}

INSTANTIATE_TEST_SUITE_P(
    Mpeg, RisingSine,
    testing::Values(Case{"cbr.mp3", 44100, 2}, Case{"vbr.mp3", 44100, 2},
                    Case{"cbr_bare.mp3", 44100, 2}, Case{"mono.mp3", 44100, 1},
                    Case{"free.mp3", 44100, 2}, Case{"id3v2.mp3", 44100, 2},
                    Case{"id3v1.mp3", 24000, 2}, Case{"rate_8.mp3", 8000, 2},
                    Case{"rate_11.025.mp3", 11025, 2}, Case{"rate_12.mp3", 12000, 2},
                    Case{"rate_16.mp3", 16000, 2}, Case{"rate_22.05.mp3", 22050, 2},
                    Case{"rate_24.mp3", 24000, 2}, Case{"rate_32.mp3", 32000, 2},
                    Case{"rate_48.mp3", 48000, 2}, Case{"layer2.mp2", 44100, 2},
                    Case{"mp3_inside.wav", 44100, 2}));

INSTANTIATE_TEST_SUITE_P(
    Wave, RisingSine,
    testing::Values(Case{"chirp.wav", 44100, 2}, Case{"mono.wav", 44100, 1},
                    Case{"u8.wav", 44100, 2}, Case{"s24.wav", 44100, 2}, Case{"s32.wav", 44100, 2},
                    Case{"f32.wav", 44100, 2}, Case{"f64.wav", 44100, 2},
                    Case{"alaw.wav", 44100, 2}, Case{"adpcm.wav", 44100, 2},
                    Case{"rate_8000.wav", 8000, 2}, Case{"rate_11025.wav", 11025, 2},
                    Case{"rate_22050.wav", 22050, 2}, Case{"rate_48000.wav", 48000, 2},
                    Case{"rate_96000.wav", 96000, 2}, Case{"six.wav", 48000, 6}));

INSTANTIATE_TEST_SUITE_P(Others, RisingSine,
                         testing::Values(Case{"chirp.aiff", 44100, 2}, Case{"chirp.au", 44100, 2},
                                         Case{"chirp.caf", 44100, 2}, Case{"chirp.flac", 44100, 2},
                                         Case{"chirp.ogg", 44100, 2},
                                         Case{"chirp.opus", 48000, 2}));

TEST(Readers, AnUnevenVariableRateIsExactWithItsHeaderAndWithout) {
    for (const char *name : {"vbr_uneven.mp3", "vbr_bare.mp3"}) {
        const auto reader = open(mediaFile(name));
        ASSERT_TRUE(reader) << name;
        EXPECT_NEAR(lengthMs(*reader), 10000, 50) << name;
        EXPECT_EQ(decodeAll(*reader), reader->frames()) << name;
    }
}

TEST(Readers, ContentDecidesWhateverTheExtensionSays) {
    const TemporaryFolder folder;
    struct {
        const char *content, *name;
        int rate;
    } const cases[] = {{"rate_8.mp3", "a.wav", 8000},
                       {"rate_8000.wav", "b.mp3", 8000},
                       {"chirp.opus", "c.mid", 48000},
                       {"chirp.flac", "d", 44100},
                       {"rate_96000.wav", "e.avi", 96000}};
    for (const auto &test : cases) {
        const auto reader = open(folder.write(test.name, readFile(mediaFile(test.content))));
        ASSERT_TRUE(reader) << test.content;
        EXPECT_EQ(reader->rate(), test.rate);
    }
}

TEST(Readers, SoundWithPicturesAndSoundOfOtherKindsIsLeftAlone) {
    for (const char *name :
         {"film.mp4", "film.avi", "film.mpg", "film.ts", "film.flv", "film.wmv", "film.ogv",
          "film.mkv", "sound.wma", "sound.m4a", "sound.aac", "sound.tta"})
        EXPECT_FALSE(open(mediaFile(name))) << name;
}

TEST(Readers, TheDurationThatSoxCountsIsTheSame) {
    // An opinion from outside on the same files.
    for (const char *name : {"chirp.wav", "chirp.flac", "chirp.aiff", "chirp.ogg", "u8.wav"}) {
        const std::string command = "soxi -D '" + mediaFile(name) + "' 2>/dev/null";
        FILE *pipe = popen(command.c_str(), "r");
        ASSERT_NE(pipe, nullptr);
        char text[64] = {};
        const bool any = fgets(text, sizeof text, pipe) != nullptr;
        pclose(pipe);
        ASSERT_TRUE(any) << name;
        const auto reader = open(mediaFile(name));
        ASSERT_TRUE(reader) << name;
        EXPECT_NEAR(lengthMs(*reader), std::atof(text) * 1000, 2) << name;
    }
}

TEST(Readers, AMissingLibraryLeavesItsKindUnplayableAndNoOther) {
    LibraryNames names;
    names.mpg123 = "libthere-is-no-such-thing.so.0";
    DecoderLibraries without(names);
    EXPECT_FALSE(openReader(mediaFile("cbr.mp3"), without, {}, false));
    EXPECT_TRUE(openReader(mediaFile("chirp.wav"), without, {}, false));
    names = {};
    names.sndfile = "libthere-is-no-such-thing.so.0";
    DecoderLibraries other(names);
    EXPECT_TRUE(openReader(mediaFile("cbr.mp3"), other, {}, false));
    EXPECT_FALSE(openReader(mediaFile("chirp.wav"), other, {}, false));
    // A library of another kind lacks the functions.
    names.sndfile = "libm.so.6";
    DecoderLibraries wrong(names);
    EXPECT_FALSE(openReader(mediaFile("chirp.wav"), wrong, {}, false));
}

TEST(Readers, NothingIsWrittenToStandardError) {
    testing::internal::CaptureStderr();
    for (const char *name : {"cbr.mp3", "vbr_bare.mp3", "chirp.ogg", "film.mp4", "sound.aac"})
        if (const auto reader = open(mediaFile(name)))
            decodeAll(*reader);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace velmora::platform::sound
