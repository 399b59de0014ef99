#include "platform/backends/sound/output/source_window.h"

#include "fake_reader.h"

#include <gtest/gtest.h>
#include <limits>

namespace velmora::platform::sound {
namespace {

using tests::FakeReader;

class Window : public testing::Test {
protected:
    SourceWindow make(std::int64_t frames, int capacityMs = 10000) {
        return SourceWindow(std::make_unique<FakeReader>(frames, calls_), capacityMs);
    }
    static std::vector<float> copy(SourceWindow &window, std::int64_t frame, std::size_t count) {
        std::vector<float> out(count * 2, 99);
        window.copy(frame, out.data(), count);
        return out;
    }
    static void expectFrames(const std::vector<float> &out, std::int64_t first) {
        for (std::size_t i = 0; i < out.size() / 2; ++i) {
            const float value = FakeReader::valueAt(first + static_cast<std::int64_t>(i));
            ASSERT_EQ(out[i * 2], value) << i;
            ASSERT_EQ(out[i * 2 + 1], -value) << i;
        }
    }
    FakeReader::Calls calls_;
};

TEST_F(Window, CopiesFromTheBeginning) {
    auto window = make(100000);
    expectFrames(copy(window, 0, 3000), 0);
    expectFrames(copy(window, 3000, 5000), 3000);
}

TEST_F(Window, GivesTheSameFramesAgainWithoutDecodingThemAgain) {
    auto window = make(100000);
    copy(window, 0, 9000);
    const auto decoded = calls_.decoded;
    expectFrames(copy(window, 2000, 6000), 2000);
    EXPECT_EQ(calls_.decoded, decoded);
    EXPECT_EQ(calls_.seeks, 0);
}

TEST_F(Window, GoesRoundItsRingForEver) {
    auto window = make(100000);
    for (std::int64_t at = 0; at + 777 < 90000; at += 777)
        expectFrames(copy(window, at, 777), at);
    expectFrames(copy(window, 85000, 5000), 85000);
}

TEST_F(Window, ASeekInsideTheWindowAsksNothingOfTheFile) {
    auto window = make(100000);
    copy(window, 0, 9000);
    window.seek(1234);
    EXPECT_EQ(calls_.seeks, 0);
    expectFrames(copy(window, 1234, 9000), 1234);
}

TEST_F(Window, ASeekElsewhereBeginsAnew) {
    auto window = make(100000);
    copy(window, 0, 100);
    window.seek(50000);
    EXPECT_EQ(calls_.seeks, 1);
    expectFrames(copy(window, 50000, 4000), 50000);
    window.seek(10);
    EXPECT_EQ(calls_.seeks, 2);
    expectFrames(copy(window, 10, 4000), 10);
}

TEST_F(Window, KeepsWhatThereIsInMoreRoomAndTheLatestInLess) {
    auto window = make(200000, 40000);
    copy(window, 0, 40000);
    window.keep(100000);
    copy(window, 40000, 60000);
    const auto decoded = calls_.decoded;
    expectFrames(copy(window, 1000, 99000), 1000);
    window.keep(30000);
    expectFrames(copy(window, 70000, 30000), 70000);
    EXPECT_EQ(calls_.decoded, decoded);
    EXPECT_EQ(calls_.seeks, 0);
    expectFrames(copy(window, 100000, 30000), 100000);
    expectFrames(copy(window, 101000, 29000), 101000);
    window.seek(50000); // in the room that was given back
    EXPECT_EQ(calls_.seeks, 1);
    expectFrames(copy(window, 50000, 100), 50000);
}

TEST_F(Window, BehindTheEndIsSilence) {
    auto window = make(5000);
    const auto out = copy(window, 4990, 20);
    EXPECT_EQ(out[18], FakeReader::valueAt(4999));
    for (std::size_t i = 20; i < 40; ++i)
        EXPECT_EQ(out[i], 0);
    EXPECT_EQ(window.length(), 5000);
}

TEST_F(Window, AFileThatStopsEarlyIsThatShort) {
    calls_.stopsAt = 3000;
    auto window = make(100000);
    EXPECT_EQ(window.length(), 100000);
    const auto out = copy(window, 2900, 200);
    EXPECT_EQ(out[198], FakeReader::valueAt(2999));
    EXPECT_EQ(out[200], 0);
    EXPECT_EQ(window.length(), 3000);
}

TEST_F(Window, ARefusedSeekEndsTheSoundThere) {
    auto window = make(100000);
    calls_.refuseSeek = true;
    window.seek(40000);
    EXPECT_EQ(window.length(), 40000);
    const auto out = copy(window, 40000, 10);
    EXPECT_EQ(out[0], 0);
}

TEST_F(Window, ARefusedSeekDoesNotEndTheSoundElsewhere) {
    auto window = make(100000);
    calls_.refuseSeek = true;
    window.seek(40000);
    calls_.refuseSeek = false;
    window.seek(50000);
    EXPECT_EQ(window.length(), 100000);
    expectFrames(copy(window, 50000, 100), 50000);
}

TEST_F(Window, WhatAReaderFindsBehindTheLengthItToldIsHeard) {
    calls_.more = 500;
    auto window = make(5000);
    EXPECT_EQ(window.length(), 5000);
    expectFrames(copy(window, 0, 5400), 0);
    EXPECT_EQ(window.length(), 5500);
}

TEST(WindowOfFloats, WhatIsNoNumberBecomesSilence) {
    class Odd final : public Reader {
    public:
        int rate() const override { return 8000; }
        int channels() const override { return 1; }
        std::int64_t frames() const override { return 4; }
        bool seek(std::int64_t) override { return true; }
        std::size_t read(float *out, std::size_t count) override {
            if (done_ || count < 4)
                return 0;
            done_ = true;
            out[0] = std::numeric_limits<float>::quiet_NaN();
            out[1] = std::numeric_limits<float>::infinity();
            out[2] = -1e30F;
            out[3] = 0.5F;
            return 4;
        }

    private:
        bool done_ = false;
    };
    SourceWindow window(std::make_unique<Odd>(), 100);
    float out[8];
    window.copy(0, out, 4);
    EXPECT_EQ(std::vector<float>(out, out + 8), (std::vector<float>{0, 0, 0, 0, 0, 0, 0.5F, 0.5F}));
}

} // namespace
} // namespace velmora::platform::sound
