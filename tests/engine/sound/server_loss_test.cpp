// The server is absent, dies, hangs or comes back.

#include "device_fixture.h"

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr auto none = MonitorRecorder::frameNone;

class ServerLoss : public testing::Test {
protected:
    void SetUp() override {
        if (!PulseServer::isInstalled())
            GTEST_SKIP() << "pulseaudio is not installed";
        ASSERT_TRUE(server_.running());
    }
    std::unique_ptr<DeviceOpener> opener() const {
        SoundOptions options;
        options.server = server_.address();
        return makeSoundOpener(options);
    }
    // Play goes on in exact time for a while.
    static void expectInTime(Device &device, int forMs) {
        const auto start = Clock::now();
        const int first = device.positionMs();
        ASSERT_TRUE(waitFor(forMs * 10, [&] { return device.positionMs() >= first + forMs; }));
        EXPECT_NEAR(msSince(start), forMs, forMs * 0.1 + 30);
        EXPECT_EQ(device.mode(), Mode::Playing);
    }

    PulseServer server_;
};

TEST_F(ServerLoss, AServerThatDiesInPlayLeavesASilentClock) {
    const auto open = opener();
    const auto device = open->open({mediaFile("tone.wav"), "Waveaudio"});
    ASSERT_TRUE(device);
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() > 300; }));
    const int before = device->positionMs();
    server_.kill();
    expectInTime(*device, 700);
    EXPECT_LT(device->positionMs(), before + 5000);
    // Every command works as before.
    EXPECT_TRUE(device->seek(device->lengthMs() - 200));
    EXPECT_TRUE(device->setVolume(10));
    device->play();
    EXPECT_TRUE(waitFor(60000, [&] { return device->mode() == Mode::Stopped; }));
}

TEST_F(ServerLoss, SoundComesBackWithTheServerWherePlayIsThen) {
    const auto open = opener();
    const auto device = open->open({mediaFile("chirp.wav"), "Waveaudio"});
    ASSERT_TRUE(device);
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() > 200; }));
    server_.kill();
    expectInTime(*device, 200);
    ASSERT_TRUE(server_.start());
    const MonitorRecorder recorder(server_);
    const std::size_t heard = recorder.waitForLoud(0.1F, 0, 30000);
    ASSERT_NE(heard, none);
    ASSERT_TRUE(recorder.waitForFrames(heard + 8820, 30000));
    const int told = device->positionMs();
    const double place = placeInChirp(recorder.channel(0, heard, 4410), recorder.rate()) * 1000;
    EXPECT_NEAR(place, told - 150, 400);
    EXPECT_EQ(device->mode(), Mode::Playing);
}

TEST_F(ServerLoss, AServerThatComesLateIsFound) {
    server_.kill();
    const auto open = opener();
    const auto device = open->open({mediaFile("tone.wav"), "Waveaudio"});
    ASSERT_TRUE(device);
    device->play();
    expectInTime(*device, 300);
    ASSERT_TRUE(server_.start());
    const MonitorRecorder recorder(server_);
    EXPECT_NE(recorder.waitForLoud(0.1F, 0, 30000), none);
}

TEST_F(ServerLoss, AServerThatDiedBetweenTwoMediaIsNoHindrance) {
    const auto open = opener();
    {
        const auto device = open->open({mediaFile("tone.wav"), "Waveaudio"});
        ASSERT_TRUE(device);
        device->play();
        ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() > 100; }));
    }
    server_.kill();
    ASSERT_TRUE(server_.start());
    const MonitorRecorder recorder(server_);
    const std::size_t from = recorder.frames();
    const auto device = open->open({mediaFile("tone.wav"), "Waveaudio"});
    device->play();
    EXPECT_NE(recorder.waitForLoud(0.1F, from, 30000), none);
}

TEST_F(ServerLoss, AServerThatHangsHoldsNothingUp) {
    const auto open = opener();
    const auto device = open->open({mediaFile("tone.wav"), "Waveaudio"});
    ASSERT_TRUE(device);
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() > 300; }));
    server_.freeze();
    const auto start = Clock::now();
    device->setVolume(500);
    device->pause();
    device->seek(5000);
    device->play();
    device->mode();
    EXPECT_LT(msSince(start), 1000); // usually some milliseconds; one that waits needs seconds
    // After a while it counts as gone, and time goes on without it.
    EXPECT_TRUE(waitFor(60000, [&] { return device->positionMs() > 5300; }));
    server_.thaw();
}

TEST_F(ServerLoss, OpeningWithAHangingServerIsBoundedAndPlaysInSilence) {
    server_.freeze();
    const auto open = opener();
    const auto start = Clock::now();
    const auto device = open->open({mediaFile("tone.wav"), "Waveaudio"});
    ASSERT_TRUE(device);
    device->play();
    EXPECT_LT(msSince(start), 2500); // usually some 200
    EXPECT_TRUE(waitFor(60000, [&] { return device->positionMs() > 100; }));
    server_.thaw();
}

TEST_F(ServerLoss, TheOpenerEndsAtOnceWhateverTheServerDoes) {
    auto open = opener();
    auto device = open->open({mediaFile("tone.wav"), "Waveaudio"});
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() > 100; }));
    server_.freeze();
    const auto start = Clock::now();
    device.reset();
    open.reset();
    EXPECT_LT(msSince(start), 2500); // usually some hundred; what waits for an answer needs 3000
    server_.thaw();
}

} // namespace
} // namespace velmora::platform::sound
