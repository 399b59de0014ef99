#include "platform/backends/qt/window/window_place.h"

#include <gtest/gtest.h>

namespace velmora::platform::qt {
namespace {

using namespace std::chrono_literals;
using Report = WindowPlace::Report;

class WindowPlaceTest : public testing::Test {
protected:
    void ask(QPoint at) { place.asked(at, true, now); }
    void wait(std::chrono::milliseconds time) { now += time; }
    Report report(QPoint at) { return place.reported(at, now); }
    bool isAtRest() const { return place.isAtRest(now); }
    // It is one that tells what it took.
    void knowTheManager() {
        ask({0, 0});
        EXPECT_EQ(report({0, 0}), Report::Granted);
        place.took(place.asks());
    }

    WindowPlace place;
    WindowPlace::Clock::time_point now{1h};
    static constexpr QPoint beyond{-700, 0}, held{-432, 0}, home{100, 0};
};

TEST_F(WindowPlaceTest, ALateAnswerToAnEarlierPlaceIsNoneToTheLastHoweverBusyTheManagerIs) {
    knowTheManager();
    ask(beyond);
    ask(home);
    wait(600ms);
    EXPECT_EQ(report(held), Report::Refused);
    EXPECT_FALSE(isAtRest()) << "what it said may have answered the place asked for before";
    wait(900ms);
    EXPECT_EQ(report(home), Report::Granted);
    EXPECT_TRUE(isAtRest());
}

TEST_F(WindowPlaceTest, AnAnswerThatTookLongIsNoMoveByAnotherWhileTheManagerIsAtIt) {
    knowTheManager();
    ask(beyond);
    wait(3s);
    EXPECT_EQ(report(held), Report::Refused);
    place.took(place.asks());
    EXPECT_TRUE(isAtRest());
    wait(2s);
    EXPECT_EQ(report({50, 50}), Report::Moved);
}

TEST_F(WindowPlaceTest, AnEarlierSignOfTheManagerSaysNothingOfALaterPlace) {
    knowTheManager();
    ask(beyond);
    const auto sign = place.asks();
    ask(home);
    place.took(sign);
    EXPECT_FALSE(place.tookAll());
    EXPECT_FALSE(isAtRest());
    place.took(place.asks());
    EXPECT_TRUE(isAtRest());
}

TEST_F(WindowPlaceTest, AManagerThatTellsNothingIsTakenAtItsWordAfterAWhile) {
    ask(beyond);
    wait(100ms);
    EXPECT_EQ(report(held), Report::Refused);
    EXPECT_FALSE(isAtRest());
    wait(250ms);
    EXPECT_TRUE(isAtRest());
    wait(1s);
    EXPECT_EQ(report({50, 50}), Report::Moved);
}

TEST_F(WindowPlaceTest, AManagerThatHasGoneIsNotAwaitedForEver) {
    knowTheManager();
    ask(beyond);
    wait(6s);
    EXPECT_TRUE(isAtRest());
    EXPECT_EQ(report({50, 50}), Report::Moved);
}

TEST_F(WindowPlaceTest, WhatIsGrantedIsAtRestAtOnce) {
    ask(home);
    EXPECT_FALSE(isAtRest());
    EXPECT_EQ(report(home), Report::Granted);
    EXPECT_TRUE(isAtRest());
}

TEST_F(WindowPlaceTest, AManagerThatSaysNothingForAWhileIsNotAwaitedAnyLonger) {
    ask(home);
    wait(600ms);
    EXPECT_TRUE(place.isAwaited());
    EXPECT_FALSE(place.isUnanswered(now));
    wait(200ms);
    EXPECT_TRUE(place.isUnanswered(now));
    ask(home);
    EXPECT_FALSE(place.isUnanswered(now)) << "the last ask is a new one";
    EXPECT_EQ(report(home), Report::Granted);
    wait(10s);
    EXPECT_FALSE(place.isAwaited());
    EXPECT_FALSE(place.isUnanswered(now));
}

TEST_F(WindowPlaceTest, WhatIsHeldElsewhereWasAnswered) {
    ask(beyond);
    EXPECT_EQ(report(held), Report::Refused);
    wait(900ms);
    EXPECT_FALSE(place.isUnanswered(now));
}

TEST_F(WindowPlaceTest, AManagerThatIsStillAtItIsAwaitedForLonger) {
    knowTheManager();
    ask(beyond);
    wait(4s);
    EXPECT_FALSE(place.isUnanswered(now));
    place.took(place.asks());
    EXPECT_TRUE(place.isUnanswered(now)) << "it took that, and said nothing";
}

TEST_F(WindowPlaceTest, WhatIsLookedUpAfterThatAnswersTheLastAskThoughItWasAskedForBefore) {
    ask(home);
    ask(beyond);
    wait(3s);
    EXPECT_TRUE(place.isUnanswered(now));
    EXPECT_EQ(place.found(home, now), Report::Refused);
    EXPECT_FALSE(place.isAwaited());
    wait(900ms);
    EXPECT_EQ(report(beyond), Report::Granted) << "the manager was only slow";
}

TEST_F(WindowPlaceTest, WhatIsLookedUpWhereNothingWasAskedForIsAMove) {
    place.asked(home, false, now);
    EXPECT_EQ(place.found(held, now), Report::Moved);
}

} // namespace
} // namespace velmora::platform::qt
