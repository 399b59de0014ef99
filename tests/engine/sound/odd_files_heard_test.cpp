// Files that are odd and yet whole, listened to up to their ends.

#include "device_fixture.h"
#include "flac_bytes.h"

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr float silent = 0.0005F;
constexpr auto none = MonitorRecorder::frameNone;

class OddFiles : public Listened {
protected:
    // From the first to the last sample that is heard of the file, in seconds; 0: nothing was.
    double heardSeconds(const std::string &path, int limitMs) {
        auto device = opener_->open({path, "MPEGVideo"});
        EXPECT_TRUE(device) << path;
        if (!device)
            return 0;
        const std::size_t from = recorder().frames();
        device->play();
        const std::size_t begin = recorder().waitForLoud(0.05F, from, comesLimitMs);
        EXPECT_TRUE(waitFor(limitMs, [&] { return device->mode() == Mode::Stopped; }));
        const std::size_t end = recorder().waitForSilence(silent, 200, begin, comesLimitMs);
        if (begin == none || end == none)
            return 0;
        return static_cast<double>(end - begin) / rate();
    }

    TemporaryFolder folder_;
};

TEST_F(OddFiles, AFlacWithAHeaderByChanceIsHeardWhole) {
    std::vector<std::int16_t> tone(66150); // 1.5 s
    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] = static_cast<std::int16_t>(16000 * std::sin(static_cast<double>(i) * 0.07));
    const auto chance = soundLikeAFlacHeader(5);
    std::copy(chance.begin(), chance.end(), tone.end() - 300);
    EXPECT_NEAR(heardSeconds(folder_.write("file", flacFile(tone)), 15000), 1.5, 0.05);
}

TEST_F(OddFiles, PartsOfTwoRatesAreHeardToTheEndOfTheSecond) {
    Bytes joined;
    double expected = 0; // each by itself
    for (const char *name : {"cbr_bare.mp3", "rate_48.mp3"}) {
        Bytes part = readFile(mediaFile(name));
        part.resize(20000);
        const auto device = opener_->open({folder_.write("part", part), "MPEGVideo"});
        ASSERT_TRUE(device);
        expected += device->lengthMs() / 1000.0;
        append(joined, part);
    }
    ASSERT_GT(expected, 2);
    const auto from = recorder().frames();
    EXPECT_NEAR(heardSeconds(folder_.write("file", joined), comesLimitMs), expected, 0.1);
    // The second begins again where the sine is lowest.
    const auto all = recorder().channel(0, from, recorder().frames() - from);
    const std::size_t tenth = static_cast<std::size_t>(rate()) / 10;
    double highest = 0;
    bool fellBack = false;
    for (std::size_t at = 0; at + tenth < all.size(); at += tenth) {
        const std::vector<float> piece(all.begin() + static_cast<std::ptrdiff_t>(at),
                                       all.begin() + static_cast<std::ptrdiff_t>(at + tenth));
        const double pitch = rms(piece) > 0.3 ? frequencyOf(piece, rate()) : 0;
        fellBack = fellBack || (pitch > 0 && pitch < highest - 100);
        highest = std::max(highest, pitch);
    }
    EXPECT_TRUE(fellBack);
}

} // namespace
} // namespace velmora::platform::sound
