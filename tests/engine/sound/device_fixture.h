#pragma once

// A sound device on a private server that is listened to.

#include "platform/backends/sound/device/sound.h"
#include "pulse_server.h"
#include "sound_testing.h"

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <thread>

namespace velmora::tests {

using platform::media::Channel;
using platform::media::Device;
using platform::media::DeviceOpener;
using platform::media::Mode;
using platform::sound::SoundOptions;
using Clock = std::chrono::steady_clock;
using Ms = std::chrono::milliseconds;

// Waits for a condition with a limit, looking every millisecond.
inline bool waitFor(int limitMs, const std::function<bool()> &condition) {
    const auto limit = Clock::now() + Ms(limitMs);
    while (!condition()) {
        if (Clock::now() >= limit)
            return false;
        std::this_thread::sleep_for(Ms(1));
    }
    return true;
}

inline double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Times are usually a tenth of these and less.
constexpr int heardLimitMs = 300;
constexpr int startLimitMs = 5000;
// For what is waited for and not measured.
constexpr int comesLimitMs = 30000;

class Listened : public testing::Test {
protected:
    void SetUp() override {
        if (!PulseServer::isInstalled())
            GTEST_SKIP() << "pulseaudio is not installed";
        ASSERT_TRUE(server().running());
        SoundOptions options;
        options.server = server().address();
        opener_ = platform::sound::makeSoundOpener(options);
    }

    // One server and one recorder for all tests of the program: each start costs two seconds until
    // its idle sink is in step.
    static PulseServer &server() {
        static PulseServer theServer;
        return theServer;
    }
    static MonitorRecorder &recorder() {
        static MonitorRecorder theRecorder(server());
        return theRecorder;
    }

    std::unique_ptr<Device> open(const std::string &name, const std::string &type = "MPEGVideo") {
        auto device = opener_->open({mediaFile(name), type});
        EXPECT_TRUE(device) << name;
        return device;
    }
    // Opens, plays at full volume and waits until it is heard; the frame where it began.
    std::unique_ptr<Device> playing(const std::string &name) {
        auto device = open(name);
        const std::size_t from = recorder().frames();
        device->play();
        began_ = recorder().waitForLoud(0.05F, from, comesLimitMs);
        EXPECT_NE(began_, MonitorRecorder::frameNone) << "nothing was heard of " << name;
        return device;
    }
    // Lets the recorder go on for that long.
    static void listen(int ms) {
        const std::size_t until = recorder().frames() + recorder().framesOf(ms);
        EXPECT_TRUE(recorder().waitForFrames(until, ms * 10 + 30000));
    }
    // How long after `start` the frame arrived.
    static double arrivedAfter(std::size_t frame, Clock::time_point start) {
        return std::chrono::duration<double, std::milli>(recorder().arrivalOf(frame) - start)
            .count();
    }
    static double rate() { return recorder().rate(); }

    std::unique_ptr<DeviceOpener> opener_;
    std::size_t began_ = 0;
};

} // namespace velmora::tests
