#pragma once

// A test that listens: a private sound server whose monitor is recorded while devices play.

#include "picture_testing.h"

#include "pulse_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace velmora::tests {

class PictureHeard : public testing::Test {
protected:
    using Clock = MonitorRecorder::Clock;
    static constexpr float loud = 0.01F;
    static constexpr double isPart = 0.7; // correlation of a piece with the place that it is from

    static void SetUpTestSuite() {
        server_ = new PulseServer;
        server_->exportToEnvironment();
        recorder_ = new MonitorRecorder(*server_);
        source_ = new SourceSound;
        // A sink that was idle has rendered two seconds of silence ahead.
        recorder_->waitForFrames(recorder_->framesOf(2200), 30000);
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
        recorder_->waitForFrames(from + count, 30000);
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
        return recorder_->waitForLoud(loud, from, 30000);
    }

    // Where in the source a piece is from: near a place, or anywhere, so that a wrong place is
    // known as one. Nowhere: it was torn, or is no part of the source.
    static SourceSound::Match findIn(const std::vector<float> &piece, int side, double around,
                                     double range) {
        const SourceSound::Match near = source_->find(piece, side, around, range);
        return near.correlation > isPart ? near : source_->find(piece, side, 0, 1e4);
    }

    // Where in the source the sound that begins at a frame is from: by a quarter of a second of it,
    // or, where a busy machine tore that, by its beginning.
    static SourceSound::Match findFrom(std::size_t first, int speaker, int side, double around,
                                       double range) {
        const SourceSound::Match match = findIn(heard(speaker, first, 250), side, around, range);
        if (match.correlation > isPart)
            return match;
        const SourceSound::Match begun = findIn(heard(speaker, first, 100), side, around, range);
        return begun.correlation > match.correlation ? begun : match;
    }

    struct HeardPosition {
        double told = 0.0; // seconds
        std::size_t frame = 0;
        SourceSound::Match match;
    };
    static const SourceSound::Match &matchOf(const SourceSound::Match &match) { return match; }
    static const SourceSound::Match &matchOf(const HeardPosition &heard) { return heard.match; }

    // What `hear` heard, a match or what has one: a piece that a busy machine tore is from nowhere,
    // and is heard anew. The last of four counts whatever it is.
    template <typename Hear> static auto hearUntorn(Hear &&hear) {
        auto result = hear();
        for (int more = 0; more < 3 && matchOf(result).correlation <= isPart; ++more)
            result = hear();
        return result;
    }

    // Seeks, plays, and finds the first quarter of a second heard in the source.
    static SourceSound::Match hearSeek(Device &device, int target) {
        return hearUntorn([&] { return hearOneSeek(device, target); });
    }
    static SourceSound::Match hearOneSeek(Device &device, int target) {
        EXPECT_TRUE(device.seek(target));
        const std::size_t from = recorder_->frames() + recorder_->framesOf(60);
        EXPECT_TRUE(recorder_->waitForFrames(from, 30000));
        EXPECT_TRUE(device.play());
        const std::size_t first = waitForSound(from);
        if (first == MonitorRecorder::frameNone)
            return {};
        return findFrom(first, 0, 0, target / 1000.0, 0.3);
    }

    // Half a second from now: what the device tells, and what is heard at that moment. A change of
    // the channels that is just heard is from nowhere, too.
    static HeardPosition hearPosition(Device &device, int speaker, int side) {
        return hearUntorn([&] { return hearOnePosition(device, speaker, side); });
    }
    static HeardPosition hearOnePosition(Device &device, int speaker, int side) {
        HeardPosition result;
        const int begun = device.positionMs();
        EXPECT_TRUE(waitUntil([&] { return device.positionMs() >= begun + 500; }, 3000));
        const auto when = Clock::now();
        result.told = device.positionMs() / 1000.0;
        result.frame = frameAt(when);
        result.match = findIn(heard(speaker, result.frame, 250), side, result.told, 0.4);
        return result;
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

} // namespace velmora::tests
