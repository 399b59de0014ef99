#include "platform/backends/picture/playback_clock.h"

#include <gtest/gtest.h>

namespace velmora::platform::picture {
namespace {

using std::chrono::milliseconds;

const PlaybackClock::Time start{std::chrono::seconds(1000)};

TEST(PlaybackClock, StandsWhereItWasStopped) {
    PlaybackClock clock;
    clock.stopAt(3.0);
    EXPECT_DOUBLE_EQ(clock.at(start), 3.0);
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(500)), 3.0);
}

TEST(PlaybackClock, WaitsForTheFirstReadingBeforeItRuns) {
    PlaybackClock clock;
    clock.stopAt(3.0);
    clock.run();
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(400)), 3.0);
}

TEST(PlaybackClock, RunsOnBetweenReadings) {
    PlaybackClock clock;
    clock.run();
    clock.correct(5.0, start);
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(70)), 5.07);
    clock.correct(5.1, start + milliseconds(100));
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(150)), 5.15);
}

TEST(PlaybackClock, TheSameReadingAgainIsNoNews) {
    PlaybackClock clock;
    clock.run();
    clock.correct(5.0, start);
    clock.correct(5.0, start + milliseconds(30));
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(40)), 5.04);
}

TEST(PlaybackClock, NeverStepsBackByAJitter) {
    PlaybackClock clock;
    clock.run();
    clock.correct(5.0, start);
    clock.correct(5.06, start + milliseconds(100));
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(100)), 5.1);
    // It waits until the engine has come that far, and then goes with it.
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(120)), 5.1);
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(160)), 5.12);
}

TEST(PlaybackClock, FollowsARealStepBack) {
    PlaybackClock clock;
    clock.run();
    clock.correct(5.0, start);
    clock.correct(4.5, start + milliseconds(100));
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(100)), 4.5);
}

TEST(PlaybackClock, StandsWhenTheEngineFallsSilent) {
    PlaybackClock clock;
    clock.run();
    clock.correct(5.0, start);
    EXPECT_DOUBLE_EQ(clock.at(start + milliseconds(9000)), 5.5);
}

TEST(PlaybackClock, TellsForHowLongTheReadingsStand) {
    PlaybackClock clock;
    clock.run();
    EXPECT_EQ(clock.standsFor(start), milliseconds(0)) << "before the first";
    clock.correct(5.0, start);
    clock.correct(5.0, start + milliseconds(700));
    EXPECT_EQ(clock.standsFor(start + milliseconds(900)), milliseconds(900));
    clock.correct(5.1, start + milliseconds(1000));
    EXPECT_EQ(clock.standsFor(start + milliseconds(1000)), milliseconds(0));
    clock.stopAt(5.1);
    EXPECT_EQ(clock.standsFor(start + milliseconds(9000)), milliseconds(0)) << "stopped";
}

TEST(PlaybackClock, ReadingsWhileItStandsAreIgnored) {
    PlaybackClock clock;
    clock.stopAt(3.0);
    clock.correct(9.0, start);
    EXPECT_DOUBLE_EQ(clock.at(start), 3.0);
}

TEST(PlaybackClock, AMomentBeforeTheReadingIsTheReading) {
    PlaybackClock clock;
    clock.run();
    clock.correct(5.0, start);
    EXPECT_DOUBLE_EQ(clock.at(start - milliseconds(50)), 5.0);
}

TEST(SeekTracker, IsSettledAtFirst) { EXPECT_TRUE(SeekTracker().isSettled()); }

TEST(SeekTracker, ASeekIsDoneAfterItWasTakenAndBegun) {
    SeekTracker seeks;
    seeks.sent(7);
    EXPECT_FALSE(seeks.isSettled());
    seeks.taken(7, false);
    seeks.begun();
    EXPECT_FALSE(seeks.isSettled());
    seeks.done();
    EXPECT_TRUE(seeks.isSettled());
}

TEST(SeekTracker, IsToBeginFromSentToBegun) {
    SeekTracker seeks;
    EXPECT_FALSE(seeks.isToBegin());
    seeks.sent(7);
    EXPECT_TRUE(seeks.isToBegin());
    seeks.taken(7, false);
    EXPECT_TRUE(seeks.isToBegin());
    seeks.begun();
    EXPECT_FALSE(seeks.isToBegin());
    seeks.done();
    seeks.sent(8);
    EXPECT_TRUE(seeks.isToBegin());
    seeks.forget();
    EXPECT_FALSE(seeks.isToBegin());
}

TEST(SeekTracker, BehindASeekThatHasBegunNothingOfOldIsLeftUntilThatOneIsDone) {
    SeekTracker seeks;
    seeks.sent(7);
    seeks.taken(7, false);
    seeks.sent(8);
    EXPECT_TRUE(seeks.isToBegin()) << "neither has begun";
    seeks.begun(); // the first
    EXPECT_FALSE(seeks.isToBegin());
    seeks.taken(8, false);
    EXPECT_FALSE(seeks.isToBegin());
    seeks.done(); // the first
    EXPECT_TRUE(seeks.isToBegin()) << "what was read at the first one's place is there";
    seeks.begun();
    EXPECT_FALSE(seeks.isToBegin());
    seeks.done();
    EXPECT_TRUE(seeks.isSettled());
    EXPECT_FALSE(seeks.isToBegin());
}

TEST(SeekTracker, SentBehindOneThatHasBegunItFindsNothingOfOld) {
    SeekTracker seeks;
    seeks.sent(7);
    seeks.taken(7, false);
    seeks.begun();
    seeks.sent(8);
    EXPECT_FALSE(seeks.isToBegin()) << "the engine shows nothing yet";
    seeks.taken(8, false);
    EXPECT_FALSE(seeks.isToBegin());
    seeks.begun();
    seeks.done();
    seeks.sent(9);
    EXPECT_TRUE(seeks.isToBegin());
}

TEST(SeekTracker, TheEndOfAnEarlierSeekDoesNotCount) {
    SeekTracker seeks;
    seeks.sent(7);
    seeks.taken(7, false);
    seeks.begun();
    seeks.sent(8);
    seeks.done(); // of the first
    EXPECT_FALSE(seeks.isSettled());
    seeks.taken(8, false);
    seeks.done(); // of the first still
    EXPECT_FALSE(seeks.isSettled());
    seeks.begun();
    seeks.done();
    EXPECT_TRUE(seeks.isSettled());
}

TEST(SeekTracker, ARefusedSeekIsSettled) {
    SeekTracker seeks;
    seeks.sent(7);
    seeks.taken(7, true);
    EXPECT_TRUE(seeks.isSettled());
}

TEST(SeekTracker, TheAnswerToAnotherCommandDoesNotCount) {
    SeekTracker seeks;
    seeks.sent(7);
    seeks.taken(6, true);
    EXPECT_FALSE(seeks.isSettled());
}

TEST(SeekTracker, NothingIsWaitedForOnceForgotten) {
    SeekTracker seeks;
    seeks.sent(7);
    seeks.forget();
    EXPECT_TRUE(seeks.isSettled());
}

} // namespace
} // namespace velmora::platform::picture
