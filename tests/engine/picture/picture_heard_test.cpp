// What the null sink's monitor records while the picture device plays.

#include "picture_testing.h"

#include "pulse_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace velmora::tests {
namespace {

using Clock = MonitorRecorder::Clock;

constexpr float loud = 0.01F;

class PictureHeard : public testing::Test {
protected:
    static void SetUpTestSuite() {
        server_ = new PulseServer;
        server_->exportToEnvironment();
        recorder_ = new MonitorRecorder(*server_);
        source_ = new SourceSound;
        // A sink that was idle has rendered two seconds of silence ahead.
        recorder_->waitForFrames(recorder_->framesOf(2200), 10'000);
    }
    static void TearDownTestSuite() {
        delete source_;
        delete recorder_;
        delete server_;
    }

    void SetUp() override { ASSERT_TRUE(server_->running()); }

    static std::unique_ptr<Device> open(const std::string &file) {
        return platform::makePictureOpener()->open({mediaFile(file), "MPEGVideo", false, 0});
    }

    // A piece of the record that begins at a frame, once it is there.
    static std::vector<float> heard(int channel, std::size_t from, int ms) {
        const std::size_t count = recorder_->framesOf(ms);
        recorder_->waitForFrames(from + count, 5000);
        return recorder_->channel(channel, from, count);
    }

    // The frame being recorded at a moment. The record arrives in blocks: the one that came with
    // the least delay tells when its last frame was heard.
    static std::size_t frameAt(Clock::time_point when) {
        double least = 1e9;
        const double rate = recorder_->rate();
        for (std::size_t frame = 0; frame + 1 < recorder_->frames(); frame += 441) {
            const std::chrono::duration<double> arrived =
                recorder_->arrivalOf(frame).time_since_epoch();
            least = std::min(least, arrived.count() - static_cast<double>(frame) / rate);
        }
        const std::chrono::duration<double> moment = when.time_since_epoch();
        return static_cast<std::size_t>(std::max(0.0, (moment.count() - least) * rate));
    }

    static std::size_t waitForSound(std::size_t from) {
        return recorder_->waitForLoud(loud, from, 5000);
    }

    // Milliseconds from `when` to a frame.
    static double delay(std::size_t frame, Clock::time_point when) {
        return (static_cast<double>(frame) - static_cast<double>(frameAt(when))) * 1000.0 /
               recorder_->rate();
    }

    inline static PulseServer *server_ = nullptr;
    inline static MonitorRecorder *recorder_ = nullptr;
    inline static SourceSound *source_ = nullptr;
};

class EveryContainer : public PictureHeard, public testing::WithParamInterface<const char *> {};

TEST_P(EveryContainer, ASeekIsHeardWithin50MsOfItsPlace) {
    const auto device = open(GetParam());
    ASSERT_TRUE(device);
    for (const int target : {3200, 9650, 700, 5555}) {
        ASSERT_TRUE(device->seek(target));
        const std::size_t from = recorder_->frames() + recorder_->framesOf(60);
        ASSERT_TRUE(recorder_->waitForFrames(from, 5000));
        ASSERT_TRUE(device->play());
        const std::size_t first = waitForSound(from);
        ASSERT_NE(first, MonitorRecorder::frameNone);
        const auto match = source_->find(heard(0, first, 400), 0, target / 1000.0, 0.4);
        EXPECT_GT(match.correlation, 0.7) << target;
        EXPECT_NEAR(match.seconds * 1000.0, target, 50.0);
    }
}

TEST_P(EveryContainer, ThePositionToldIsThePositionHeard) {
    const auto device = open(GetParam());
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->seek(2000));
    ASSERT_TRUE(playUpTo(*device, 2600));
    const auto when = Clock::now();
    const double told = device->positionMs();
    const std::size_t frame = frameAt(when);
    const auto match = source_->find(heard(0, frame, 400), 0, told / 1000.0, 0.5);
    EXPECT_GT(match.correlation, 0.7);
    EXPECT_NEAR(match.seconds * 1000.0, told, 60.0);
}

TEST_P(EveryContainer, OneSideIsHeardOnBothSpeakersAndInItsPlace) {
    const auto device = open(GetParam());
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 500));
    for (const auto &[channel, side] :
         {std::pair{Channel::Right, 1}, std::pair{Channel::Left, 0}}) {
        ASSERT_TRUE(device->setChannel(channel));
        const int begun = device->positionMs();
        ASSERT_TRUE(waitUntil([&] { return device->positionMs() >= begun + 700; }));
        const auto when = Clock::now();
        const double told = device->positionMs() / 1000.0;
        const std::size_t frame = frameAt(when);
        for (const int speaker : {0, 1}) {
            const auto match = source_->find(heard(speaker, frame, 300), side, told, 0.5);
            EXPECT_GT(match.correlation, 0.7) << "speaker " << speaker << " side " << side;
            EXPECT_NEAR(match.seconds, told, 0.06);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Files, EveryContainer,
                         testing::Values("film.mp4", "film.flv", "film.avi", "vbr.avi", "film.mpg",
                                         "film2.mpg", "film.wmv", "film.mkv", "film.ts", "film.ogv",
                                         "film.webm", "film.mov", "sound.wma", "sound.tta",
                                         "sound.m4a", "sound.aac", "sound.wv", "sound.ac3",
                                         "sound_live.mka", "cover.m4a"),
                         [](const auto &info) {
                             std::string name = info.param;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

} // namespace
} // namespace velmora::tests
