// The logic of the output thread, on a clock and a server of the test's own. The rate is 10,000
// frames a second: ten to the millisecond.

#include "platform/backends/sound/output/voice.h"

#include "fake_reader.h"
#include "fake_stream.h"

#include <gtest/gtest.h>

namespace velmora::platform::sound {
namespace {

using tests::FakeReader;
using tests::FakeServer;
using tests::FakeStream;
using State = OutputStream::State;
using namespace std::chrono_literals;

constexpr int rate = 10000;
constexpr std::int64_t length = 100000;

class VoiceTest : public testing::Test {
protected:
    VoiceTest() {
        server_.now = Clock::now();
        voice_ = std::make_unique<Voice>(control_,
                                         std::make_unique<FakeReader>(length, calls_, rate), "one");
        voice_->attach(std::make_unique<FakeStream>(server_), server_.now);
        server_.state = State::Idle;
    }

    void transport(bool playing, std::int64_t frame) {
        control_->change([&](VoiceWish &wish) {
            ++wish.transport;
            wish.playing = playing;
            wish.frame = frame;
        });
    }
    void volume(int level, media::Channel channel = media::Channel::Stereo) {
        control_->change([&](VoiceWish &wish) {
            ++wish.mix;
            wish.gain = gainMatrix(level, channel);
        });
    }
    // Serves until nothing is due at once; when it wants to be called again.
    TimePoint serve() {
        ++turns_;
        for (int i = 0; i < 1000; ++i) {
            const TimePoint due = voice_->service(server_.now);
            if (due > server_.now)
                return due;
        }
        ADD_FAILURE() << "never content";
        return {};
    }
    // Lets time pass, serving whenever the voice asked for it.
    void play(int ms) {
        const TimePoint end = server_.now + std::chrono::milliseconds(ms);
        for (;;) {
            const TimePoint due = std::min(serve(), end);
            server_.move(std::max<std::int64_t>(framesOfTime(due - server_.now, rate), 1));
            if (server_.now >= end)
                return;
        }
    }
    // What was heard from a place on.
    float heard(std::size_t at) const { return at < server_.out.size() ? server_.out[at] : -1; }
    float biggestStep(std::size_t from, std::size_t to) const {
        float step = 0;
        for (std::size_t i = from + 1; i < std::min(to, server_.out.size()); ++i)
            step = std::max(step, std::abs(server_.out[i] - server_.out[i - 1]));
        return step;
    }

    FakeReader::Calls calls_;
    FakeServer server_{rate};
    FakeServer second_{rate}; // for a stream that comes after the first; outlives the voice as well
    std::shared_ptr<VoiceControl> control_ = std::make_shared<VoiceControl>();
    std::unique_ptr<Voice> voice_;
    int turns_ = 0;
};

TEST_F(VoiceTest, PlaysTheFileFrameByFrame) {
    transport(true, 0);
    play(3000);
    ASSERT_GE(server_.out.size(), 29000U);
    for (std::size_t i = 0; i < 29000; i += 7)
        ASSERT_EQ(server_.out[i], FakeReader::valueAt(static_cast<std::int64_t>(i))) << i;
}

TEST_F(VoiceTest, WakesRarelyInSteadyPlay) {
    transport(true, 0);
    play(2000);
    turns_ = 0;
    play(7000);
    EXPECT_LE(turns_, 7000 / 700 + 2);
}

TEST_F(VoiceTest, WritesLargePiecesAlthoughMoreIsHeardMeanwhile) {
    transport(true, 0);
    play(2000);
    server_.heardInAWrite = 2;
    server_.writes = 0;
    server_.framesWritten = 0;
    play(5000);
    ASSERT_GT(server_.framesWritten, 40000);
    EXPECT_GT(server_.framesWritten / server_.writes, 5000);
}

TEST_F(VoiceTest, WritesNoMoreThanTheOtherSideHoldsAndMissesNothing) {
    server_.most = 9000; // less than is usually written
    transport(true, 0);
    play(6000);
    EXPECT_EQ(server_.refused, 0);
    ASSERT_GE(server_.out.size(), 59000U);
    for (std::size_t i = 0; i < 59000; i += 7)
        ASSERT_EQ(server_.out[i], FakeReader::valueAt(static_cast<std::int64_t>(i))) << i;
}

// Of 2.7 s that the other side holds it takes 2 s at once: these are there whenever it does.
TEST_F(VoiceTest, WhatIsTakenAtOnceIsThereInTimeWhereLittleMoreIsHeld) {
    server_.most = 27000;
    server_.takenAheadMs = 2000;
    transport(true, 0);
    play(100);
    for (int i = 0; i < 60; ++i) {
        play(50);
        ASSERT_TRUE(server_.queue.contains(server_.heard + 20000)) << i;
    }
    EXPECT_EQ(server_.refused, 0);
}

TEST_F(VoiceTest, NothingIsDueWhileNothingPlays) {
    EXPECT_EQ(serve(), TimePoint::max());
    transport(true, 0);
    play(500);
    transport(false, 5000);
    play(500);
    EXPECT_EQ(serve(), TimePoint::max());
    EXPECT_EQ(server_.state, State::Idle);
}

TEST_F(VoiceTest, TellsWhereItIs) {
    transport(true, 30000);
    play(100);
    const VoiceReport report = control_->report();
    EXPECT_EQ(report.transport, 1U);
    EXPECT_TRUE(report.advancing);
    const auto frame = report.frame + framesOfTime(server_.now - report.time, rate);
    EXPECT_NEAR(static_cast<double>(frame), 31000, 2);
}

TEST_F(VoiceTest, AStreamThatHasNotBegunStandsStill) {
    server_.advances = false;
    transport(true, 7000);
    serve();
    server_.move(500);
    serve();
    EXPECT_FALSE(control_->report().advancing);
    EXPECT_EQ(control_->report().frame, 7000);
}

TEST_F(VoiceTest, PauseIsSilentWithinMillisecondsAndWithoutAClick) {
    transport(true, 50000);
    play(1000);
    const std::size_t at = server_.out.size();
    transport(false, 60000);
    play(100);
    // A fade of 5 ms after the 0.4 that the fake server is late.
    for (std::size_t i = at + 60; i < server_.out.size(); ++i)
        ASSERT_EQ(server_.out[i], 0) << i - at;
    EXPECT_GT(heard(at + 10), 0.04F);
    EXPECT_LT(biggestStep(at - 10, server_.out.size()), 0.06F / 50 + 0.001F);
    EXPECT_EQ(server_.stops, 1);
}

TEST_F(VoiceTest, ResumesWhereItStoodWithoutDecodingAgain) {
    transport(true, 0);
    play(1000);
    transport(false, 10000);
    play(300);
    const auto decoded = calls_.decoded;
    const auto seeks = calls_.seeks;
    const std::size_t at = server_.out.size();
    transport(true, 10000);
    play(100);
    EXPECT_EQ(heard(at + 100), FakeReader::valueAt(10100));
    EXPECT_EQ(calls_.seeks, seeks);
    EXPECT_LT(calls_.decoded - decoded, 10000);
}

TEST_F(VoiceTest, ASeekInPlayIsHeardAtOnceAndWithoutAClick) {
    transport(true, 0);
    play(1000);
    const std::size_t at = server_.out.size();
    transport(false, 80000);
    transport(true, 80000);
    play(200);
    // Old fades out over 50 frames, new fades in over 50.
    EXPECT_EQ(heard(at + 200), FakeReader::valueAt(80000 + 200 - 54));
    EXPECT_LT(biggestStep(at - 10, at + 300), 0.08F / 50 + 0.0001F);
    EXPECT_EQ(server_.stops, 0);
}

TEST_F(VoiceTest, NothingOldIsHeardAfterASeekEvenNearTheEnd) {
    transport(true, 0);
    play(1000); // over a second of the beginning lies ahead
    transport(false, length - 500);
    transport(true, length - 500);
    const std::size_t at = server_.out.size();
    play(2000);
    for (std::size_t i = at + 54 + 500; i < server_.out.size(); ++i)
        ASSERT_EQ(server_.out[i], 0) << i - at;
}

TEST_F(VoiceTest, AVolumeIsHeardWithinTenMilliseconds) {
    transport(true, 50000);
    play(500);
    const std::size_t at = server_.out.size();
    volume(500);
    play(300);
    const auto source = [&](std::size_t i) {
        return FakeReader::valueAt(50000 + static_cast<std::int64_t>(i));
    };
    EXPECT_EQ(heard(at + 3), source(at + 3));
    EXPECT_FLOAT_EQ(heard(at + 84), source(at + 84) / 2);
    for (std::size_t i = at + 84; i < server_.out.size(); ++i)
        ASSERT_FLOAT_EQ(server_.out[i], source(i) / 2) << i - at;
    EXPECT_LT(biggestStep(at - 10, at + 200), 0.055F / 2 / 80 + 1e-4F);
}

TEST_F(VoiceTest, AFadeOfManyChangesWritesLittleForEach) {
    transport(true, 50000);
    volume(0);
    play(1500);
    server_.framesWritten = 0;
    server_.writes = 0;
    const std::size_t at = server_.out.size();
    for (int level = 0; level <= 1000; level += 6) {
        volume(level);
        play(1);
    }
    EXPECT_LE(server_.writes, 30); // not one for each of 167
    EXPECT_LE(server_.framesWritten, 30 * 1000);
    play(1000);
    EXPECT_LT(biggestStep(at, server_.out.size()), 0.002F);
    const std::size_t last = server_.out.size() - 1;
    const float source = FakeReader::valueAt(50000 + static_cast<std::int64_t>(last));
    EXPECT_FLOAT_EQ(heard(last), source * 0.996F);
    // And on the way up it never falls back to an older gain.
    for (std::size_t i = at + 1; i < at + 2000; ++i)
        ASSERT_GE(server_.out[i] + 1e-5F, server_.out[i - 1]) << i - at;
}

// All at once it would stand in the server's memory beside what it replaces.
TEST_F(VoiceTest, WhatIsFarAheadTakesANewVolumePieceByPiece) {
    server_.takenAheadMs = 2000;
    transport(true, 0);
    play(1000);
    server_.mostAtOnce = 0;
    volume(500);
    play(20);
    const std::size_t at = server_.out.size();
    play(3500);
    EXPECT_LE(server_.mostAtOnce, 2 * 8160);
    for (std::size_t i = at; i < server_.out.size(); ++i)
        ASSERT_FLOAT_EQ(server_.out[i], FakeReader::valueAt(static_cast<std::int64_t>(i)) / 2) << i;
}

TEST_F(VoiceTest, AChannelIsHeardOnBothSides) {
    transport(true, 50000);
    play(300);
    volume(1000, media::Channel::Right);
    play(300);
    const std::size_t last = server_.out.size() - 1;
    // The right side of the file is the negative of the left one.
    EXPECT_FLOAT_EQ(heard(last), -FakeReader::valueAt(50000 + static_cast<std::int64_t>(last)));
}

TEST_F(VoiceTest, AChangeInThePauseHoldsWhenPlayGoesOn) {
    transport(true, 50000);
    play(300);
    transport(false, 53000);
    play(100);
    volume(100);
    play(100);
    transport(true, 53000);
    const std::size_t at = server_.out.size();
    play(100);
    EXPECT_FLOAT_EQ(heard(at + 500), FakeReader::valueAt(53500) / 10);
}

TEST_F(VoiceTest, EndsWhenTheLastFrameHasBeenHeard) {
    transport(true, length - 3000);
    play(290);
    EXPECT_FALSE(control_->report().ended);
    play(20);
    EXPECT_TRUE(control_->report().ended);
    EXPECT_GE(server_.out.size(), 3000U);
    EXPECT_EQ(heard(2999), FakeReader::valueAt(length - 1));
    EXPECT_EQ(serve(), TimePoint::max());
    EXPECT_EQ(server_.state, State::Idle);
}

TEST_F(VoiceTest, PlaysAgainFromTheBeginningAfterTheEnd) {
    transport(true, length - 100);
    play(200);
    ASSERT_TRUE(control_->report().ended);
    const std::size_t at = server_.out.size();
    transport(true, 0);
    play(100);
    EXPECT_FALSE(control_->report().ended);
    EXPECT_EQ(heard(at + 500), FakeReader::valueAt(500));
}

TEST_F(VoiceTest, AFileThatStopsEarlyEndsThere) {
    calls_.stopsAt = 20000;
    transport(true, 0);
    play(1990);
    EXPECT_FALSE(control_->report().ended);
    play(30);
    EXPECT_TRUE(control_->report().ended);
}

TEST_F(VoiceTest, ALateThreadLeavesAGapAndLosesNothing) {
    transport(true, 0);
    play(100);
    server_.move(30000); // three seconds without a turn
    const std::size_t gapEnd = server_.out.size();
    play(200);
    std::size_t first = gapEnd;
    while (first < server_.out.size() && server_.out[first] == 0)
        ++first;
    // It goes on with the frame behind the last one heard before the gap.
    std::size_t last = gapEnd - 1;
    while (server_.out[last] == 0)
        --last;
    const float step = heard(first + 100) - heard(last);
    EXPECT_NEAR(step, FakeReader::valueAt(101), 3e-6);
}

TEST_F(VoiceTest, GoesOnThroughAnotherStreamWhereTheFirstWasLost) {
    transport(true, 0);
    play(1000);
    server_.state = State::Lost;
    serve();
    second_.now = server_.now;
    second_.state = State::Idle;
    second_.silent = true;
    voice_->attach(std::make_unique<FakeStream>(second_), second_.now);
    EXPECT_TRUE(server_.destroyed);
    voice_->service(second_.now);
    EXPECT_EQ(second_.state, State::Running);
    const VoiceReport report = control_->report();
    EXPECT_NEAR(static_cast<double>(report.frame), 10000, 20);
    EXPECT_TRUE(report.advancing);
    EXPECT_EQ(report.transport, 1U);
    // Nothing needs to be decoded for nobody.
    EXPECT_EQ(second_.writes, 0);
    // One call at the end of the file is all that is due.
    const TimePoint due = voice_->service(second_.now);
    EXPECT_NEAR(static_cast<double>(framesOfTime(due - second_.now, rate)), 90000, 50);
}

TEST_F(VoiceTest, AStreamAttachedInThePauseStaysStill) {
    transport(true, 0);
    play(500);
    transport(false, 5000);
    play(200);
    second_.now = server_.now;
    second_.state = State::Idle;
    voice_->attach(std::make_unique<FakeStream>(second_), second_.now);
    EXPECT_EQ(voice_->service(second_.now), TimePoint::max());
    EXPECT_EQ(second_.state, State::Idle);
    EXPECT_EQ(control_->report().frame, 5000);
}

TEST_F(VoiceTest, ClosedIsFinishedOnceItsFadeWasHeard) {
    transport(true, 50000);
    play(500);
    control_->change([](VoiceWish &wish) {
        wish.closed = true;
        ++wish.transport;
    });
    serve();
    EXPECT_FALSE(voice_->finished(server_.now));
    play(15);
    EXPECT_TRUE(voice_->finished(server_.now));
    EXPECT_LT(biggestStep(4990, server_.out.size()), 0.06F / 50 + 0.001F);
}

TEST_F(VoiceTest, ClosingReadsNothingOfTheFile) {
    transport(true, 50000);
    play(4000); // its beginning is no longer kept
    const auto decoded = calls_.decoded;
    const auto seeks = calls_.seeks;
    control_->change([](VoiceWish &wish) {
        wish.closed = true;
        ++wish.transport;
    });
    play(15);
    ASSERT_TRUE(voice_->finished(server_.now));
    EXPECT_EQ(calls_.seeks, seeks);
    EXPECT_EQ(calls_.decoded, decoded);
}

TEST_F(VoiceTest, ClosedBeforeItEverPlayedIsFinishedAtOnce) {
    control_->change([](VoiceWish &wish) { wish.closed = true; });
    serve();
    EXPECT_TRUE(voice_->finished(server_.now));
}

TEST_F(VoiceTest, PlayWaitsForAStreamThatIsStillComing) {
    server_.state = State::Starting;
    transport(true, 1000);
    EXPECT_EQ(voice_->service(server_.now), TimePoint::max());
    server_.state = State::Idle;
    play(50);
    EXPECT_GT(server_.out.size(), 400U);
}

} // namespace
} // namespace velmora::platform::sound
