// MPEG audio on slow disks, joined of parts and with headers that lie: an open takes a short time
// and what it could only reckon is put right by and by.

#include "midi_bytes.h"
#include "platform/backends/sound/readers/mpeg_index.h"
#include "sound_testing.h"

#include <gtest/gtest.h>

#include <random>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;
using Time = std::chrono::steady_clock::time_point;
using Ms = std::chrono::milliseconds;

constexpr double slowDisk = 5e6;
constexpr double fastDisk = 1e9;

class CountedSource final : public ByteSource {
public:
    CountedSource(const Bytes &bytes, int &reads) : whole_(bytes), reads_(reads) {}
    std::int64_t size() const override { return whole_.size(); }
    std::size_t read(std::int64_t offset, std::span<std::uint8_t> out) const override {
        ++reads_;
        return whole_.read(offset, out);
    }

private:
    MemorySource whole_;
    int &reads_;
};

TEST(AheadSource, GivesTheBytesOfTheWholeWhereverAndHowManyAreRead) {
    Bytes bytes(3 * AheadSource::pieceBytes + 100);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 31 / 7);
    int reads = 0;
    const CountedSource whole(bytes, reads);
    const AheadSource ahead(whole);
    EXPECT_EQ(ahead.size(), whole.size());
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        const auto offset = static_cast<std::int64_t>(random() % (bytes.size() + 200));
        Bytes expected(random() % (i % 10 == 0 ? 2 * AheadSource::pieceBytes : 700));
        Bytes got(expected.size());
        const std::size_t count = whole.read(offset, expected);
        ASSERT_EQ(ahead.read(offset, got), count) << offset;
        ASSERT_EQ(got, expected) << offset;
    }
    EXPECT_EQ(ahead.read(-1, std::span(bytes).first(4)), 0U);
    reads = 0;
    Bytes step(500);
    for (std::size_t at = 0; at < bytes.size(); at += step.size())
        ahead.read(static_cast<std::int64_t>(at), step);
    EXPECT_LE(reads, 5);
}

class MpegFile : public testing::Test {
protected:
    std::unique_ptr<Reader> open(std::unique_ptr<ByteSource> source) {
        return openMpegReader(
            std::move(source), libraries_.mpg123(), [this] { return now_; });
    }
    // The whole frames of a file, so often.
    std::unique_ptr<Reader> open(const char *name, std::int64_t times, double bytesPerSecond) {
        piece_ = readFile(mediaFile(name));
        piece_.resize(static_cast<std::size_t>(indexOf(piece_).reached()));
        return open(std::make_unique<LongFile>(piece_, times, bytesPerSecond, now_));
    }
    std::unique_ptr<Reader> open(const Bytes &bytes) {
        return open(std::make_unique<LongFile>(bytes, 1, fastDisk, now_));
    }
    static MpegIndex indexOf(const Bytes &bytes) {
        const MemorySource source(bytes);
        MpegIndex index(source, 0);
        while (index.countOn()) {
        }
        return index;
    }
    double opened() const {
        return std::chrono::duration<double, std::milli>(now_ - begin_).count();
    }
    static std::size_t framesOf(const Reader &reader, double seconds) {
        return static_cast<std::size_t>(seconds * reader.rate());
    }

    Time now_;
    Time begin_ = now_;
    Bytes piece_;
    DecoderLibraries libraries_{LibraryNames{}};
};

TEST_F(MpegFile, ALongFileOnASlowDiskOpensSoonWithItsLengthReckoned) {
    const auto reader = open("cbr_bare.mp3", 1000, slowDisk); // 160 MB: 32 s of reading
    ASSERT_TRUE(reader);
    EXPECT_LT(opened(), 600);
    const double exact = static_cast<double>(indexOf(piece_).frames()) * 1000 * 1152 / 44.1;
    EXPECT_NEAR(lengthMs(*reader), exact, 50);
}

TEST_F(MpegFile, SoDoesOneWithAHeaderThatDoesNotFit) {
    const auto reader = open("vbr.mp3", 1000, slowDisk);
    ASSERT_TRUE(reader);
    EXPECT_LT(opened(), 600);
    EXPECT_NEAR(lengthMs(*reader), 10123e3, 200e3); // reckoned
}

TEST_F(MpegFile, IsReadInFewLargePiecesWhileItPlays) {
    const Bytes bytes = readFile(mediaFile("cbr_bare.mp3"));
    int reads = 0;
    const auto reader = open(std::make_unique<CountedSource>(bytes, reads));
    ASSERT_TRUE(reader);
    reads = 0;
    EXPECT_EQ(decodeAll(*reader), reader->frames());
    EXPECT_LE(reads, static_cast<int>(bytes.size() / AheadSource::pieceBytes * 5 / 4 + 4));
}

TEST_F(MpegFile, AShortFileIsCountedWhole) {
    const auto reader = open("vbr_bare.mp3", 1, slowDisk);
    ASSERT_TRUE(reader);
    EXPECT_EQ(decodeAll(*reader), reader->frames());
    EXPECT_NEAR(lengthMs(*reader), 10000, 60);
}

// Its first half is as quiet as its second is loud: what is reckoned from the beginning is wrong.
TEST_F(MpegFile, AReckonedLengthIsPutRightWhileItPlays) {
    const auto reader = open("vbr_bare.mp3", 1, 2e5);
    ASSERT_TRUE(reader);
    const auto told = reader->changingFrames();
    ASSERT_TRUE(told);
    const double exact = static_cast<double>(indexOf(piece_).frames()) * 1152 / 44.1;
    EXPECT_GT(std::abs(lengthMs(*reader) - exact), 1000);
    readChannel(*reader, framesOf(*reader, 7));
    EXPECT_NEAR(lengthMs(*reader), exact, 1);
    EXPECT_EQ(*told, reader->frames());
    ASSERT_TRUE(reader->seek(0));
    EXPECT_EQ(decodeAll(*reader), reader->frames());
}

TEST_F(MpegFile, NothingIsLostBehindAnEndThatWasReckonedTooEarly) {
    // From loud to quiet: fewer frames to the byte than there will be.
    Bytes bytes = readFile(mediaFile("vbr_bare.mp3"));
    const MpegIndex index = indexOf(bytes);
    std::int64_t middle = index.frames() / 2;
    const auto cut = static_cast<std::ptrdiff_t>(index.placeOf(middle).offset);
    Bytes turned(bytes.begin() + cut, bytes.end());
    turned.insert(turned.end(), bytes.begin(), bytes.begin() + cut);
    const auto reader = open(std::make_unique<LongFile>(turned, 1, 1.2e5, now_));
    ASSERT_TRUE(reader);
    EXPECT_LT(lengthMs(*reader), 9000);
    EXPECT_NEAR(static_cast<double>(decodeAll(*reader)) / 44.1, 10000, 60);
    EXPECT_NEAR(lengthMs(*reader), 10000, 60);
}

TEST_F(MpegFile, ASeekFarIntoALongFileOnASlowDiskIsShortAndLands) {
    const auto reader = open("cbr_bare.mp3", 1000, slowDisk);
    ASSERT_TRUE(reader);
    const double once = static_cast<double>(piece_.size()) * 8 / 128000; // each of the parts
    for (const double part : {900.0, 400.0, 999.0}) {
        begin_ = now_;
        const double seconds = part * once + 5;
        ASSERT_TRUE(reader->seek(static_cast<std::int64_t>(seconds * reader->rate())));
        const double place = placeInChirp(readChannel(*reader, 4410), reader->rate());
        EXPECT_NEAR(place, 5.05, 0.05 + 0.03) << part;
        EXPECT_LT(opened(), 600) << part;
    }
    decodeAll(*reader); // from the last place: ten seconds
    EXPECT_NEAR(lengthMs(*reader), 1000 * once * 1000, 50);
}

TEST_F(MpegFile, ASeekIntoWhatWasCountedIsExact) {
    const auto reader = open("cbr_bare.mp3", 100, fastDisk);
    ASSERT_TRUE(reader);
    const auto frames =
        static_cast<std::int64_t>(static_cast<double>(piece_.size()) * 8 / 128000 * reader->rate());
    ASSERT_TRUE(reader->seek(90 * frames + 5 * reader->rate()));
    EXPECT_NEAR(placeInChirp(readChannel(*reader, 4410), reader->rate()), 5.05, 0.03);
}

// Writes another number of frames into the header of an encoder.
Bytes withHeaderFrames(Bytes bytes, double part) {
    const std::string mark = "Xing";
    auto at = std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end());
    EXPECT_LT(at - bytes.begin(), 100);
    at += 8;
    double frames = 0;
    for (int i = 0; i < 4; ++i)
        frames = frames * 256 + at[i];
    const auto other = static_cast<std::uint32_t>(frames * part);
    for (int i = 0; i < 4; ++i)
        at[i] = static_cast<std::uint8_t>(other >> (24 - 8 * i));
    return bytes;
}

TEST_F(MpegFile, AHeaderThatTellsTooFewFramesCutsNothingOff) {
    for (const double part : {0.0, 0.1, 0.5, 0.9}) {
        const auto reader = open(withHeaderFrames(readFile(mediaFile("vbr.mp3")), part));
        ASSERT_TRUE(reader) << part;
        EXPECT_NEAR(static_cast<double>(decodeAll(*reader)) / reader->rate(), 10.123, 0.05) << part;
        EXPECT_NEAR(lengthMs(*reader), 10123, 50) << part;
    }
}

TEST_F(MpegFile, AHeaderThatTellsTooManyFramesIsPutRight) {
    for (const double part : {1.1, 2.0, 1000.0}) {
        const auto reader = open(withHeaderFrames(readFile(mediaFile("vbr.mp3")), part));
        ASSERT_TRUE(reader) << part;
        readChannel(*reader, framesOf(*reader, 2));
        EXPECT_NEAR(lengthMs(*reader), 10123, 50) << part;
    }
}

TEST_F(MpegFile, AHeaderThatTellsHalfOrTwiceTheFramesIsNotBelievedEvenAtFirst) {
    for (const double part : {0.5, 2.0}) {
        const auto reader = open(withHeaderFrames(readFile(mediaFile("vbr.mp3")), part));
        ASSERT_TRUE(reader) << part;
        EXPECT_NEAR(lengthMs(*reader), 10123, 50) << part;
    }
}

TEST_F(MpegFile, AFileThatIsCutByAFewFramesHasTheLengthThatIsLeft) {
    Bytes bytes = readFile(mediaFile("vbr.mp3"));
    bytes.resize(bytes.size() - 1800);
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    const double told = lengthMs(*reader);
    EXPECT_LT(told, 10123 - 50);
    EXPECT_NEAR(told, static_cast<double>(decodeAll(*reader)) * 1000 / reader->rate(), 50);
}

struct Joint {
    const char *first;
    const char *second;
};
std::ostream &operator<<(std::ostream &out, const Joint &test) {
    return out << test.first << "+" << test.second;
}

class JoinedParts : public MpegFile, public testing::WithParamInterface<Joint> {};

// Each lasts 10.123 s and its coder's lead.
TEST_P(JoinedParts, SoundToTheirEnd) {
    Bytes bytes = readFile(mediaFile(GetParam().first));
    const auto alone = open(bytes);
    ASSERT_TRUE(alone);
    const double firstMs = lengthMs(*alone);
    append(bytes, readFile(mediaFile(GetParam().second)));
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->rate(), alone->rate());
    EXPECT_NEAR(lengthMs(*reader), 2 * 10123, 200);
    ASSERT_EQ(decodeAll(*reader), reader->frames());
    // The second part is heard at its own pitch, at its own time.
    for (const double seconds : {1.0, 9.0}) {
        const double at = firstMs / 1000 + seconds;
        ASSERT_TRUE(reader->seek(static_cast<std::int64_t>(at * reader->rate())));
        const double place =
            placeInChirp(readChannel(*reader, framesOf(*reader, 0.1)), reader->rate());
        EXPECT_NEAR(place, seconds + 0.05, 0.15) << seconds; // the leads of two coders
    }
    ASSERT_TRUE(reader->seek(static_cast<std::int64_t>(firstMs / 1000 * reader->rate())));
    const auto rest = readChannel(*reader, framesOf(*reader, 30));
    const std::vector<float> end(rest.end() - reader->rate(), rest.end());
    EXPECT_GT(rms(end), 0.3);
}

INSTANTIATE_TEST_SUITE_P(
    Rates, JoinedParts,
    testing::Values(Joint{"cbr_bare.mp3", "cbr_bare.mp3"}, Joint{"cbr.mp3", "rate_48.mp3"},
                    Joint{"cbr_bare.mp3", "rate_48.mp3"}, Joint{"rate_48.mp3", "cbr_bare.mp3"},
                    Joint{"rate_32.mp3", "rate_22.05.mp3"}, Joint{"cbr_bare.mp3", "mono.mp3"},
                    Joint{"mono.mp3", "cbr_bare.mp3"}, Joint{"id3v2.mp3", "id3v2.mp3"},
                    Joint{"cbr_bare.mp3", "layer2.mp2"}, Joint{"free.mp3", "cbr_bare.mp3"}));

// It stands in a frame of its own, which would be heard as a gap.
TEST_F(MpegFile, TheHeaderOfAJoinedPartIsNoSound) {
    constexpr int decoderDelay = 529;
    for (const char *name : {"cbr.mp3", "vbr.mp3", "id3v2.mp3", "rate_22.05.mp3"}) {
        const Bytes one = readFile(mediaFile(name));
        const auto start = static_cast<std::size_t>(id3v2Size(MemorySource(one), 0));
        const Bytes part(one.begin() + static_cast<std::ptrdiff_t>(start), one.end());
        const auto header = readMpegSeekHeader(MemorySource(part), 0);
        ASSERT_TRUE(header && header->delay) << name;
        const int samples = parseMpegFrame(part)->samples;
        Bytes joined = part;
        append(joined, one);
        append(joined, one);
        const auto reader = open(joined);
        ASSERT_TRUE(reader) << name;
        EXPECT_EQ(reader->frames(), 3 * header->frames * samples - *header->delay - decoderDelay)
            << name;
        EXPECT_EQ(decodeAll(*reader), reader->frames()) << name;
    }
}

TEST_F(MpegFile, ManyPartsOfManyFormsAreOneAfterTheOther) {
    Bytes bytes;
    const std::vector<const char *> names = {"rate_48.mp3", "cbr_bare.mp3", "rate_32.mp3",
                                             "mono.mp3",    "rate_24.mp3",  "layer2.mp2"};
    for (const char *name : names)
        append(bytes, readFile(mediaFile(name)));
    const auto reader = open(bytes);
    ASSERT_TRUE(reader);
    EXPECT_NEAR(lengthMs(*reader), 6 * 10123, 600);
    EXPECT_EQ(decodeAll(*reader), reader->frames());
    double last = 0;
    for (std::size_t part = 0; part < names.size(); ++part) {
        const double at = 10.123 * static_cast<double>(part) + 5;
        ASSERT_TRUE(reader->seek(static_cast<std::int64_t>(at * reader->rate())));
        const double place =
            placeInChirp(readChannel(*reader, framesOf(*reader, 0.1)), reader->rate());
        EXPECT_NEAR(place, 5.05, 0.5) << names[part];
        EXPECT_LT(place, 5.1) << names[part];
        last = place;
    }
    EXPECT_LT(last, 5.05); // the leads add up
}

} // namespace
} // namespace velmora::platform::sound
