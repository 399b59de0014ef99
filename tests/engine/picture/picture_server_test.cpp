// Sound servers that are not there, go away or hang: the medium plays on in time, and no call of
// the program waits for long.

#include "picture_testing.h"

#include "pulse_server.h"

#include <gtest/gtest.h>

#include <cstdlib>

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
    if (device) {
        EXPECT_LT(slowestCall(*device), std::chrono::milliseconds(500));
    }
    device.reset();
    server.thaw();
    EXPECT_LT(steady_clock::now() - begun, std::chrono::seconds(25));
}

} // namespace
} // namespace velmora::tests
