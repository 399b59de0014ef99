// Sound servers that are not there, go away or hang: the medium plays on in time, and no call of
// the program waits for long.

#include "picture_testing.h"

#include "platform/backends/sound/device/sound.h"
#include "pulse_server.h"
#include "xvfb_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace velmora::tests {
namespace {

using std::chrono::steady_clock;

std::unique_ptr<Device> openHeard(const std::string &file) {
    return platform::makePictureOpener()->open({mediaFile(file), "MPEGVideo", false, 0});
}

// The longest that any of the usual calls took.
std::chrono::milliseconds slowestCall(Device &device) {
    steady_clock::duration slowest{};
    const auto call = [&](auto &&work) {
        const auto begun = steady_clock::now();
        work();
        slowest = std::max(slowest, steady_clock::now() - begun);
    };
    for (int round = 0; round < 10; ++round) {
        call([&] { device.mode(); });
        call([&] { device.positionMs(); });
        call([&] { device.setVolume(round * 100); });
        call([&] { device.setChannel(round % 2 == 0 ? Channel::Left : Channel::Stereo); });
        call([&] { device.seek(round * 100); });
        call([&] { device.play(); });
    }
    return std::chrono::duration_cast<std::chrono::milliseconds>(slowest);
}

TEST(SoundServer, WithoutOneAMediumPlaysSilentlyInTime) {
    setenv("PULSE_SERVER", "unix:/nonexistent/velmora", 1);
    const auto device = openHeard("sound.m4a");
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 300));
    const auto begun = steady_clock::now();
    const int first = device->positionMs();
    ASSERT_TRUE(waitUntil([&] { return device->positionMs() >= first + 1000; }));
    const auto passed =
        std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - begun);
    EXPECT_NEAR(static_cast<double>(passed.count()), 1000.0, 200.0);
}

TEST(SoundServer, OneThatDiesLeavesTheMediumPlaying) {
    PulseServer server;
    ASSERT_TRUE(server.running());
    server.exportToEnvironment();
    const auto device = openHeard("sound.m4a");
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 300));
    server.kill();
    const int first = device->positionMs();
    EXPECT_TRUE(waitUntil([&] { return device->positionMs() >= first + 1500; }));
    EXPECT_EQ(device->mode(), Mode::Playing);
    ASSERT_TRUE(device->seek(11'500));
    ASSERT_TRUE(device->play());
    EXPECT_TRUE(waitUntil([&] { return device->mode() == Mode::Stopped; }));
}

class LateServer : public testing::TestWithParam<const char *> {
protected:
    void SetUp() override {
        ASSERT_TRUE(screen_.running());
        ASSERT_TRUE(server_.running());
        screen_.exportToEnvironment();
        server_.exportToEnvironment();
        server_.kill();
        platform::PictureOptions options;
        options.videoOutput = "x11";
        options.soundServerAnswers = [] { return platform::sound::soundServerAnswers(); };
        device_ = platform::makePictureOpener(options)->open(
            {mediaFile(GetParam()), "MPEGVideo", true, 0});
        ASSERT_TRUE(device_);
        ASSERT_EQ(device_->windowHandle() != 0, std::string(GetParam()) == "film.mp4");
    }
    // Whoever asks where it is, as the program does all the time, has the server looked for.
    bool playUntil(const std::function<bool()> &condition) {
        return waitUntil([&] {
            const auto passed =
                std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - begun_);
            const auto off = device_->positionMs() - first_ - static_cast<int>(passed.count());
            mostOff_ = std::max(mostOff_, std::abs(off));
            return condition();
        });
    }

    XvfbServer screen_;
    PulseServer server_;
    std::unique_ptr<Device> device_;
    steady_clock::time_point begun_;
    int first_ = 0;
    int mostOff_ = 0; // from even time
};

TEST_P(LateServer, IsFoundInPlayWhichGoesOnEvenly) {
    ASSERT_TRUE(playUpTo(*device_, 1000));
    begun_ = steady_clock::now();
    first_ = device_->positionMs();
    ASSERT_TRUE(server_.start());
    const MonitorRecorder recorder(server_);
    std::size_t heard = MonitorRecorder::frameNone;
    ASSERT_TRUE(playUntil([&] {
        heard = recorder.waitForLoud(0.01F, 0, 1);
        return heard != MonitorRecorder::frameNone;
    }));
    ASSERT_TRUE(playUntil([&] { return recorder.frames() > heard + recorder.framesOf(1000); }));
    EXPECT_LT(mostOff_, 700); // usually 10; where it stood for the server it would be a second
    EXPECT_EQ(device_->mode(), Mode::Playing);
    const SourceSound source;
    double told = 0.0;
    SourceSound::Match match;
    // A busy machine may tear a piece.
    EXPECT_TRUE(waitUntil(
        [&] {
            told = device_->positionMs() / 1000.0;
            const auto piece = recorder.channel(0, recorder.frames() - 11025, 11025);
            match = source.find(piece, 0, told - 0.25, 1.0);
            return match.correlation > 0.7;
        },
        5000));
    EXPECT_NEAR(match.seconds + 0.25, told, 0.4);
}

TEST_P(LateServer, IsFoundAgainAfterItDied) {
    for (int life = 0; life < 2; ++life) {
        ASSERT_TRUE(server_.start());
        const MonitorRecorder recorder(server_);
        ASSERT_TRUE(device_->play());
        EXPECT_TRUE(waitUntil([&] {
            return device_->mode() == Mode::Playing &&
                   recorder.waitForLoud(0.01F, 0, 1) != MonitorRecorder::frameNone;
        })) << life;
        // Long enough to believe that it stays.
        const int heardAt = device_->positionMs();
        EXPECT_TRUE(waitUntil([&] { return life > 0 || device_->positionMs() >= heardAt + 4000; }));
        server_.kill();
    }
}

INSTANTIATE_TEST_SUITE_P(Files, LateServer, testing::Values("sound.m4a", "film.mp4"),
                         [](const auto &file) {
                             const std::string name = file.param;
                             return name.substr(0, name.find('.'));
                         });

TEST(SoundServer, OneThatHangsWhilePlayingHoldsNobodyUp) {
    PulseServer server;
    ASSERT_TRUE(server.running());
    server.exportToEnvironment();
    auto device = openHeard("sound.m4a");
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 300));
    server.freeze();
    EXPECT_LT(slowestCall(*device), std::chrono::milliseconds(500));
    const auto begun = steady_clock::now();
    device.reset();
    EXPECT_LT(steady_clock::now() - begun, std::chrono::seconds(6));
    server.thaw();
}

TEST(SoundServer, OneThatHangsAtTheOpenHoldsItUpForSecondsAtMost) {
    PulseServer server;
    ASSERT_TRUE(server.running());
    server.exportToEnvironment();
    server.freeze();
    const auto begun = steady_clock::now();
    auto device = openHeard("sound.m4a");
    EXPECT_LT(steady_clock::now() - begun, std::chrono::seconds(12));
    if (device)
        EXPECT_LT(slowestCall(*device), std::chrono::milliseconds(500));
    device.reset();
    server.thaw();
    EXPECT_LT(steady_clock::now() - begun, std::chrono::seconds(25));
}

} // namespace
} // namespace velmora::tests
