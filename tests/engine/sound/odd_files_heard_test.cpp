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
        const std::size_t begin = recorder().waitForLoud(0.05F, from, startLimitMs);
        EXPECT_TRUE(waitFor(limitMs, [&] { return device->mode() == Mode::Stopped; }));
        const std::size_t end = recorder().waitForSilence(silent, 200, begin, 5000);
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

} // namespace
} // namespace velmora::platform::sound
