// Files that are cut, empty, no media at all, or that lie: a failed open or what is really there,
// in bounded time.

#include "flac_bytes.h"
#include "odd_sounds.h"
#include "platform/backends/sound/readers/flac_length.h"

#include <chrono>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr auto openLimit = std::chrono::seconds(2); // usually a few milliseconds

class Damaged : public testing::Test {
protected:
    std::unique_ptr<Reader> open(const std::string &path) {
        const auto start = std::chrono::steady_clock::now();
        auto reader = openReader(path, libraries_, {}, false);
        EXPECT_LT(std::chrono::steady_clock::now() - start, openLimit) << path;
        return reader;
    }
    std::unique_ptr<Reader> open(const Bytes &bytes) { return open(folder_.write("file", bytes)); }

    // Decodes everything; never more than the length says.
    static std::int64_t decodeAll(Reader &reader) {
        std::vector<float> buffer(static_cast<std::size_t>(4096 * reader.channels()));
        std::int64_t frames = 0;
        while (const std::size_t got = reader.read(buffer.data(), 4096))
            frames += static_cast<std::int64_t>(got);
        EXPECT_LE(frames, reader.frames());
        return frames;
    }

    TemporaryFolder folder_;
    DecoderLibraries libraries_{LibraryNames{}};
};

struct CutCase {
    const char *file;
    double part;
    double seconds; // of 10.123 that are left, as another decoder has it
    double tolerance;
};

std::ostream &operator<<(std::ostream &out, const CutCase &test) { return out << test.file; }

class CutShort : public Damaged, public testing::WithParamInterface<CutCase> {};

TEST_P(CutShort, PlaysWhatItHasAndHasThatLength) {
    const CutCase &test = GetParam();
    Bytes bytes = readFile(mediaFile(test.file));
    bytes.resize(static_cast<std::size_t>(static_cast<double>(bytes.size()) * test.part));
    const auto reader = open(bytes);
    ASSERT_TRUE(reader) << test.file;
    EXPECT_NEAR(lengthMs(*reader), test.seconds * 1000, test.tolerance * 1000) << test.file;
    const double decoded = static_cast<double>(decodeAll(*reader)) / reader->rate();
    EXPECT_NEAR(decoded * 1000, lengthMs(*reader), 50) << test.file;
}

INSTANTIATE_TEST_SUITE_P(
    Files, CutShort,
    testing::Values(CutCase{"chirp.wav", 0.5, 5.06, 0.01}, CutCase{"s24.wav", 0.25, 2.53, 0.01},
                    CutCase{"chirp.aiff", 0.5, 5.06, 0.01}, CutCase{"chirp.au", 0.5, 5.06, 0.01},
                    CutCase{"cbr.mp3", 0.5, 5.06, 0.1}, CutCase{"cbr_bare.mp3", 0.5, 5.06, 0.1},
                    CutCase{"vbr.mp3", 0.5, 5.06, 0.1}, CutCase{"cbr.mp3", 0.01, 0.05, 0.06},
                    CutCase{"chirp.flac", 0.5, 4.91, 0.1}, CutCase{"chirp.ogg", 0.5, 4.07, 0.1},
                    CutCase{"chirp.opus", 0.5, 4.99, 0.1}));

TEST_P(CutShort, SeeksWithinWhatItHas) {
    const CutCase &test = GetParam();
    Bytes bytes = readFile(mediaFile(test.file));
    bytes.resize(static_cast<std::size_t>(static_cast<double>(bytes.size()) * test.part));
    const auto reader = open(bytes);
    ASSERT_TRUE(reader) << test.file;
    ASSERT_TRUE(reader->seek(reader->frames() / 2));
    const auto left = std::min<std::size_t>(
        static_cast<std::size_t>(reader->frames() - reader->frames() / 2), 1000);
    std::vector<float> buffer(left * static_cast<std::size_t>(reader->channels()));
    EXPECT_EQ(reader->read(buffer.data(), left), left) << test.file;
}

TEST_F(Damaged, WhatIsNoMediumIsRefused) {
    EXPECT_FALSE(open(Bytes{}));
    EXPECT_FALSE(open(Bytes{0}));
    EXPECT_FALSE(open(Bytes(100000, 0)));
    EXPECT_FALSE(open(Bytes(100000, 0xFF)));
    const std::string text = "This is a text, and it goes on and on.\r\n";
    Bytes words;
    while (words.size() < 100000)
        words.insert(words.end(), text.begin(), text.end());
    EXPECT_FALSE(open(words));
    std::mt19937 random(5);
    Bytes noise(300000);
    for (auto &byte : noise)
        byte = static_cast<std::uint8_t>(random());
    EXPECT_FALSE(open(noise));
}

TEST_F(Damaged, OnlyRegularFilesAreOpenedAndNothingBlocks) {
    const std::string pipe = folder_.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(open(pipe));
    EXPECT_FALSE(open(folder_.path("")));
    EXPECT_FALSE(open(folder_.path("missing")));
    EXPECT_FALSE(open(std::string("/dev/zero")));
    EXPECT_FALSE(open(std::string("/dev/null")));
    EXPECT_FALSE(open(std::string("/proc/self/mem")));
    EXPECT_FALSE(open(std::string()));
    EXPECT_FALSE(open(mediaFile("chirp.wav") + std::string("\0x", 2)));
}

TEST_F(Damaged, ALinkToAFileIsTheFile) {
    const std::string link = folder_.path("link");
    ASSERT_EQ(symlink(mediaFile("chirp.wav").c_str(), link.c_str()), 0);
    EXPECT_TRUE(open(link));
    const std::string loop = folder_.path("loop");
    ASSERT_EQ(symlink(loop.c_str(), loop.c_str()), 0);
    EXPECT_FALSE(open(loop));
}

TEST_F(Damaged, ABeginningAloneIsRefused) {
    for (const char *name : {"chirp.wav", "chirp.aiff", "chirp.au", "chirp.flac", "chirp.ogg",
                             "chirp.opus", "cbr.mp3", "chirp.caf"}) {
        const Bytes whole = readFile(mediaFile(name));
        for (const std::size_t size : {1U, 4U, 12U, 20U, 30U}) {
            const Bytes bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_FALSE(open(bytes)) << name << " " << size;
        }
    }
}

TEST_F(Damaged, AWaveHeaderThatPromisesGigabytesGetsWhatIsThere) {
    Bytes bytes = readFile(mediaFile("chirp.wav"));
    for (const std::size_t at : {4U, 74U}) {
        if (at == 74U) {
            const std::string mark = "data";
            const auto data = std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end());
            ASSERT_NE(data, bytes.end());
            std::fill_n(data + 4, 4, std::uint8_t{0xFF});
        } else {
            std::fill_n(bytes.begin() + 4, 4, std::uint8_t{0xFF});
        }
        const auto reader = open(bytes);
        ASSERT_TRUE(reader);
        EXPECT_NEAR(lengthMs(*reader), 10123, 10);
        EXPECT_EQ(decodeAll(*reader), reader->frames());
    }
}

TEST_F(Damaged, RatesAndChannelCountsThatNoServerTakesAreRefused) {
    const Bytes sound = readFile(mediaFile("chirp.wav"));
    for (const std::uint32_t rate : {0U, 1U, 99U, 384001U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        Bytes bytes = sound;
        for (int i = 0; i < 4; ++i)
            bytes[24 + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(rate >> (8 * i));
        EXPECT_FALSE(open(bytes)) << rate;
    }
    for (const int channels : {0, 65, 255, 1000, 65535}) {
        Bytes bytes = sound;
        bytes[22] = static_cast<std::uint8_t>(channels);
        bytes[23] = static_cast<std::uint8_t>(channels >> 8);
        EXPECT_FALSE(open(bytes)) << channels;
    }
}

// Sound of any values; near its end some that read as the header of the sixth frame.
std::vector<std::int16_t> noiseWithAChanceHeader(std::size_t samples) {
    std::mt19937 random(3);
    std::vector<std::int16_t> noise(samples);
    for (auto &sample : noise)
        sample = static_cast<std::int16_t>(random());
    const auto chance = soundLikeAFlacHeader(5);
    std::copy(chance.begin(), chance.end(), noise.end() - 2000);
    return noise;
}

TEST_F(Damaged, AFlacWithAHeaderByChanceInItsLastFrameIsPlayedToItsEnd) {
    const auto noise = noiseWithAChanceHeader(400000);
    for (const std::size_t junk : {0U, 700U}) {
        Bytes file = flacFile(noise);
        file.resize(file.size() + junk, 0x33);
        const auto reader = open(file);
        ASSERT_TRUE(reader);
        EXPECT_EQ(reader->frames(), 400000);
        ASSERT_TRUE(reader->seek(399000));
        std::vector<float> end(1000);
        ASSERT_EQ(reader->read(end.data(), 1000), 1000U) << junk;
        for (std::size_t i = 0; i < end.size(); ++i)
            ASSERT_EQ(end[i], static_cast<float>(noise[399000 + i]) / 32768) << i;
    }
}

TEST_F(Damaged, AFlacWhoseHeaderTellsNoTotalOrAWrongOneIsPlayedToItsEnd) {
    const auto noise = noiseWithAChanceHeader(400000);
    for (const int told : {0, 1000, 500000}) {
        Bytes file = flacFile(noise);
        const Bytes lying = flacHeader(told);
        std::copy(lying.begin(), lying.end(), file.begin());
        const auto reader = open(file);
        ASSERT_TRUE(reader) << told;
        EXPECT_EQ(reader->frames(), 400000) << told;
        EXPECT_EQ(decodeAll(*reader), 400000) << told;
        EXPECT_TRUE(reader->seek(200000)) << told;
    }
}

// Frames as a coder makes them, where a cut leaves three bytes of the next.
TEST_F(Damaged, AFlacCutInTheHeaderOfAFrameHasAllFramesAheadOfIt) {
    for (const char *name : {"chirp.flac", "other.flac"}) {
        const Bytes whole = readFile(mediaFile(name));
        const auto present = [&](std::size_t size) {
            return flacSamplesPresent(
                MemorySource({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}));
        };
        int frames = 0;
        for (std::size_t at = whole.size() / 4; at + 5 < whole.size(); ++at) {
            if (whole[at] != 0xFF || whole[at + 1] != 0xF8 ||
                flacCrc8({&whole[at], &whole[at + 6]}))
                continue;
            EXPECT_EQ(present(at + 3), present(at)) << at;
            ++frames;
        }
        EXPECT_GT(frames, 10) << name;
    }
}

// A few old forms can only be read from their beginning to their end.
TEST_F(Damaged, SoundThatCannotBeSoughtInIsLeftToTheOtherDevice) {
    Bytes adpcm = {'.', 's', 'n', 'd', 0, 0, 0,    24,   0, 0, 0x9C, 0x40,
                   0,   0,   0,   23,  0, 0, 0x1F, 0x40, 0, 0, 0,    1}; // 8 kHz, mono
    adpcm.resize(24 + 40000, 0x53);
    EXPECT_FALSE(open(adpcm));
    adpcm[15] = 1; // a form that can
    EXPECT_TRUE(open(adpcm));
}

TEST_F(Damaged, WhatStandsBehindJunkIsPlayedWhereItsBeginningIsCertain) {
    const auto behindJunk = [](const char *name, std::size_t junk) {
        Bytes bytes(junk, 0x33);
        append(bytes, readFile(mediaFile(name)));
        return bytes;
    };
    for (const char *name : {"chirp.flac", "chirp.ogg", "chirp.opus"}) {
        for (const std::size_t junk : {1U, 5000U, 60000U}) {
            const auto reader = open(behindJunk(name, junk));
            ASSERT_TRUE(reader) << name << " " << junk;
            EXPECT_NEAR(lengthMs(*reader), 10123, 50) << name << " " << junk;
            EXPECT_EQ(decodeAll(*reader), reader->frames()) << name << " " << junk;
        }
    }
    EXPECT_FALSE(open(behindJunk("film.ogv", 5000)));
}

TEST_F(Damaged, ALastPageThatTellsAnyEndIsBelievedNoFurtherThanItsPacketsReach) {
    for (const char *name : {"chirp.ogg", "chirp.opus"}) {
        Bytes bytes = readFile(mediaFile(name));
        const std::size_t last = pagesOf(bytes).back();
        for (const std::size_t byteOfEnd : {2U, 3U, 7U}) {
            Bytes lying = bytes;
            lying.at(last + 6 + byteOfEnd) = 0x40; // 87 s, 6 h, longer than anything
            sealPage(lying, last, lying.size());
            const auto reader = open(lying);
            ASSERT_TRUE(reader) << name << " " << byteOfEnd;
            EXPECT_NEAR(lengthMs(*reader), 10123, 50) << name << " " << byteOfEnd;
            EXPECT_EQ(decodeAll(*reader), reader->frames()) << name << " " << byteOfEnd;
        }
    }
}

// Its pages count at 48 kHz, whatever rate it is decoded at.
TEST_F(Damaged, AnOpusOfALowRateIsBelievedNoFurtherEither) {
    Bytes bytes = readFile(mediaFile("chirp.opus"));
    const auto pages = pagesOf(bytes);
    constexpr std::size_t rateAt = 28 + 12;
    const Bytes rate = {0xC0, 0x5D, 0, 0}; // 24000
    std::copy(rate.begin(), rate.end(), bytes.begin() + rateAt);
    sealPage(bytes, 0, pages[1]);
    bytes.at(pages.back() + 9) = 0x40;
    sealPage(bytes, pages.back(), bytes.size());
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->rate(), 24000);
    EXPECT_NEAR(lengthMs(*reader), 10123, 50);
    EXPECT_EQ(decodeAll(*reader), reader->frames());
}

TEST_F(Damaged, JoinedMp3FilesHaveTheLengthOfBoth) {
    Bytes bytes = readFile(mediaFile("cbr.mp3"));
    append(bytes, readFile(mediaFile("cbr.mp3")));
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    EXPECT_NEAR(lengthMs(*reader), 2 * 10123, 150); // two coders' delays are in it
    EXPECT_NEAR(static_cast<double>(decodeAll(*reader)), static_cast<double>(reader->frames()),
                1200);
}

TEST_F(Damaged, AnMp3CutAtItsFrontPlaysTheRest) {
    const Bytes whole = readFile(mediaFile("cbr_bare.mp3"));
    for (const int cut : {1, 100, 333}) {
        const auto reader = open(Bytes(whole.begin() + cut, whole.end()));
        ASSERT_TRUE(reader) << cut;
        EXPECT_NEAR(lengthMs(*reader), 10123, 90) << cut;
    }
}

TEST_F(Damaged, AnMp3WithGarbageInsideHasTheLengthOfItsFrames) {
    Bytes bytes = readFile(mediaFile("cbr_bare.mp3"));
    std::mt19937 random(11);
    for (std::size_t i = bytes.size() / 2; i < bytes.size() / 2 + 5000; ++i)
        bytes[i] = static_cast<std::uint8_t>(random() & 0x7F);
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    EXPECT_NEAR(lengthMs(*reader), 10123 - 5000.0 / 16, 150); // 16 bytes a millisecond
    decodeAll(*reader);
}

TEST_F(Damaged, AnyDamageToAnyKindIsSurvived) {
    std::mt19937 random(2);
    for (const char *name :
         {"chirp.wav", "adpcm.wav", "f32.wav", "chirp.aiff", "chirp.au", "chirp.caf", "chirp.flac",
          "chirp.ogg", "chirp.opus", "cbr.mp3", "vbr_bare.mp3", "free.mp3", "layer2.mp2"}) {
        Bytes whole = readFile(mediaFile(name));
        whole.resize(std::min<std::size_t>(whole.size(), 60000));
        for (int round = 0; round < 40; ++round) {
            Bytes bytes = whole;
            // The headers more often than the rest.
            for (int i = 0; i < 4; ++i)
                bytes[random() % 200] = static_cast<std::uint8_t>(random());
            for (int i = 0; i < 20; ++i)
                bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
            const auto reader = open(bytes);
            if (!reader)
                continue;
            EXPECT_GE(reader->frames(), 1);
            std::vector<float> buffer(static_cast<std::size_t>(4096 * reader->channels()));
            reader->read(buffer.data(), 4096);
            reader->seek(reader->frames() / 2);
            reader->read(buffer.data(), 4096);
            reader->seek(reader->frames() - 1);
            EXPECT_LE(reader->read(buffer.data(), 4096), 1U) << name;
        }
    }
}

} // namespace
} // namespace velmora::platform::sound
