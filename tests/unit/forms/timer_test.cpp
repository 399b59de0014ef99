#include "tests/unit/forms/form_fixture.h"

#include <algorithm>

namespace velmora::forms {

using ::testing::IsEmpty;

class TimerTest : public FormFixture {
protected:
    Log log;

    std::unique_ptr<Timer> timer(const char *name, int interval) {
        auto made = std::make_unique<Timer>(form, name);
        made->setInterval(interval);
        made->onTimer = [this, name] { log.emplace_back(name); };
        return made;
    }
};

TEST_F(TimerTest, TicksOnceInEachInterval) {
    const auto a = timer("a", 70);
    a->setRunning(true);
    windows.advance(69);
    EXPECT_THAT(log, IsEmpty());
    windows.advance(1);
    EXPECT_EQ(log, Log{"a"});
    windows.advance(140);
    EXPECT_EQ(log, (Log{"a", "a", "a"}));
}

TEST_F(TimerTest, StandsStillUntilItRuns) {
    const auto a = timer("a", 70);
    windows.advance(500);
    EXPECT_THAT(log, IsEmpty());
    EXPECT_FALSE(windows.timers().nextDueMs().has_value());
}

TEST_F(TimerTest, AnIntervalOfZeroNeverTicks) {
    const auto a = timer("a", 0);
    a->setRunning(true);
    windows.advance(500);
    EXPECT_THAT(log, IsEmpty());
    a->setInterval(100);
    windows.advance(100);
    EXPECT_EQ(log, Log{"a"});
    a->setInterval(0);
    windows.advance(500);
    EXPECT_EQ(log, Log{"a"});
}

TEST_F(TimerTest, TimersOfOneIntervalShareAGrid) {
    const auto a = timer("a", 100);
    const auto b = timer("b", 100);
    a->setRunning(true);
    windows.advance(30);
    b->setRunning(true);
    windows.advance(70);
    EXPECT_EQ(log, (Log{"a", "b"}));
    EXPECT_EQ(windows.timers().nextDueMs(), 200);
}

TEST_F(TimerTest, AnyStretchOfOneIntervalHoldsOneTick) {
    const auto a = timer("a", 100);
    windows.advance(30);
    a->setRunning(true);
    windows.advance(100);
    EXPECT_EQ(log, Log{"a"});
    windows.advance(100);
    EXPECT_EQ(log, (Log{"a", "a"}));
}

TEST_F(TimerTest, ALateTickIsNotMadeUpFor) {
    const auto a = timer("a", 100);
    a->setRunning(true);
    clock.advance(350); // nobody looked meanwhile
    windows.timers().runDue();
    EXPECT_EQ(log, Log{"a"});
    EXPECT_EQ(windows.timers().nextDueMs(), 400);
}

TEST_F(TimerTest, TicksOfOneWakeUpRunInOrderOfEnabling) {
    const auto a = timer("a", 20);
    const auto b = timer("b", 10);
    const auto c = timer("c", 20);
    c->setRunning(true);
    a->setRunning(true);
    b->setRunning(true);
    clock.advance(20);
    windows.timers().runDue();
    EXPECT_EQ(log, (Log{"c", "a", "b"}));
}

TEST_F(TimerTest, EnablingAgainPutsATimerBehindTheOthers) {
    const auto a = timer("a", 20);
    const auto b = timer("b", 20);
    a->setRunning(true);
    b->setRunning(true);
    a->setRunning(false);
    a->setRunning(true);
    windows.advance(20);
    EXPECT_EQ(log, (Log{"b", "a"}));
}

// --- with nothing to do --------------------------------------------------------------------------

class RestingTimer : public TimerTest {
protected:
    std::unique_ptr<Timer> a = timer("a", 70);

    RestingTimer() {
        a->onTimer = [this] {
            log.emplace_back("a");
            a->rest();
        };
        clock.advance(1'000'000 - clock.steadyMs());
        a->setRunning(true);
    }
    // Wakes as a loop does, for this long; how often that was.
    int wakes(std::int64_t ms) {
        const std::int64_t end = clock.steadyMs() + ms;
        int count = 0;
        for (auto next = windows.timers().nextWakeMs(); next && *next <= end;
             next = windows.timers().nextWakeMs()) {
            clock.advance(*next - clock.steadyMs());
            windows.timers().runDue();
            ++count;
        }
        clock.advance(end - clock.steadyMs());
        return count;
    }
    std::int64_t untilNextWake() {
        return windows.timers().nextWakeMs().value_or(0) - clock.steadyMs();
    }
};

TEST_F(RestingTimer, IsWokenForOnceASecond) {
    wakes(280);
    log.clear();
    EXPECT_EQ(wakes(10'500), 10);
    EXPECT_EQ(log.size(), 10U);
}

TEST_F(RestingTimer, RestsBehindTheFourthTickOfThatKindInARow) {
    EXPECT_EQ(wakes(210), 3);
    EXPECT_LE(untilNextWake(), 70);
    EXPECT_EQ(wakes(70), 1);
    EXPECT_GT(untilNextWake(), 70);
}

TEST_F(RestingTimer, ComesBackAtTheNextPointOfItsGridWhenSomethingElseRan) {
    wakes(500);
    ASSERT_GT(untilNextWake(), 70);
    log.clear();
    bool told = false;
    windows.timers().onEarlier = [&] { told = true; };
    windows.timers().stir();
    windows.timers().onEarlier = nullptr;
    EXPECT_TRUE(told);
    windows.timers().runDue();
    EXPECT_THAT(log, IsEmpty()) << "a tick that was left out is not made up for";
    EXPECT_EQ((clock.steadyMs() + untilNextWake()) % 70, 0);
    EXPECT_LE(untilNextWake(), 70);
    EXPECT_EQ(wakes(280), 4) << "and goes on until it has had nothing to do again for a while";
}

TEST_F(RestingTimer, TicksAsEverWhereSomethingWakesAllTheSame) {
    wakes(500);
    log.clear();
    for (int i = 0; i < 5; ++i) {
        clock.advance(70);
        windows.timers().runDue();
    }
    EXPECT_EQ(log.size(), 5U);
}

TEST_F(RestingTimer, DoesNotRestBesideOneThatHasSomethingToDo) {
    const auto b = timer("b", 500);
    b->setRunning(true);
    wakes(2000);
    log.clear();
    wakes(5000);
    EXPECT_GE(std::count(log.begin(), log.end(), "a"), 35) << "four behind each tick of the other";
}

TEST_F(RestingTimer, IsAtWorkAgainWithTheFirstTickThatSaysNothing) {
    wakes(500);
    a->onTimer = [this] { log.emplace_back("a"); };
    wakes(1050);
    log.clear();
    EXPECT_EQ(wakes(700), 10);
}

TEST_F(RestingTimer, BeginsAnewWhenItIsEnabledAgain) {
    wakes(500);
    a->setRunning(false);
    a->setRunning(true);
    EXPECT_LE(untilNextWake(), 70);
}

TEST_F(TimerTest, WritingTheSameValueKeepsPlaceAndTime) {
    const auto a = timer("a", 20);
    const auto b = timer("b", 20);
    a->setRunning(true);
    b->setRunning(true);
    a->setRunning(true);
    a->setInterval(20);
    windows.advance(20);
    EXPECT_EQ(log, (Log{"a", "b"}));
}

TEST_F(TimerTest, ATimerDoesNotEnterItselfWhileItsHandlerPumps) {
    const auto a = timer("a", 10);
    a->onTimer = [&] {
        log.emplace_back("in");
        for (int i = 0; i < 3; ++i) {
            clock.advance(10);
            windows.DoEvents();
        }
        log.emplace_back("out");
    };
    a->setRunning(true);
    windows.advance(10);
    ASSERT_GE(log.size(), 2U);
    EXPECT_EQ(log[0], "in");
    EXPECT_EQ(log[1], "out");
}

TEST_F(TimerTest, TheOthersGoOnWhileAHandlerPumps) {
    const auto a = timer("a", 50);
    const auto b = timer("b", 10);
    a->setRunning(true);
    b->setRunning(true);
    a->onTimer = [&] {
        log.emplace_back("a in");
        for (int i = 0; i < 2; ++i) {
            clock.advance(10);
            windows.DoEvents();
        }
        log.emplace_back("a out");
    };
    clock.advance(50);
    windows.timers().runDue();
    EXPECT_EQ(log, (Log{"a in", "b", "b", "a out"}));
}

TEST_F(TimerTest, ANestedPumpGoesOnWithTheTicksThatWait) {
    const auto a = timer("a", 10);
    const auto b = timer("b", 10);
    const auto c = timer("c", 10);
    for (const auto *one : {&a, &b, &c})
        (*one)->setRunning(true);
    a->onTimer = [&] {
        log.emplace_back("a in");
        windows.DoEvents();
        log.emplace_back("a out");
    };
    windows.advance(10);
    EXPECT_EQ(log, (Log{"a in", "b", "c", "a out"}));
}

TEST_F(TimerTest, AfterALongHandlerTheNextTickIsTheNextPointOfTheGrid) {
    const auto a = timer("a", 100);
    a->onTimer = [&] {
        log.emplace_back("a");
        clock.advance(250);
    };
    a->setRunning(true);
    clock.advance(100);
    windows.timers().runDue();
    EXPECT_EQ(windows.timers().nextDueMs(), 400);
}

TEST_F(TimerTest, ATickThatWaitsIsDroppedWhenItsTimerIsStopped) {
    const auto a = timer("a", 10);
    const auto b = timer("b", 10);
    a->setRunning(true);
    b->setRunning(true);
    a->onTimer = [&] { b->setRunning(false); };
    windows.advance(10);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(TimerTest, AHandlerMayStopItsOwnTimer) {
    const auto a = timer("a", 10);
    a->onTimer = [&] {
        log.emplace_back("a");
        a->setRunning(false);
    };
    a->setRunning(true);
    windows.advance(100);
    EXPECT_EQ(log, Log{"a"});
}

TEST_F(TimerTest, AHandlerMayChangeItsOwnInterval) {
    const auto a = timer("a", 10);
    a->onTimer = [&] {
        log.emplace_back("a");
        a->setInterval(1000);
    };
    a->setRunning(true);
    windows.advance(500);
    EXPECT_EQ(log, Log{"a"});
    windows.advance(500);
    EXPECT_EQ(log, (Log{"a", "a"}));
}

TEST_F(TimerTest, AHandlerMayEndItsOwnTimer) {
    auto a = timer("a", 10);
    a->onTimer = [&] {
        log.emplace_back("a");
        a.reset();
        windows.DoEvents();
    };
    a->setRunning(true);
    windows.advance(100);
    EXPECT_EQ(log, Log{"a"});
    EXPECT_FALSE(windows.timers().nextDueMs().has_value());
}

TEST_F(TimerTest, AHandlerMayEndATimerThatWaits) {
    const auto a = timer("a", 10);
    auto b = timer("b", 10);
    a->setRunning(true);
    b->setRunning(true);
    a->onTimer = [&] { b.reset(); };
    windows.advance(20);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(TimerTest, AnErrorEndsTheHandlerAndTheTimerTicksOn) {
    const auto a = timer("a", 10);
    a->onTimer = [&] {
        log.emplace_back("a");
        raise(ErrorNumber::Overflow);
    };
    a->setRunning(true);
    windows.advance(20);
    EXPECT_EQ(log, (Log{"a", "a"}));
}

TEST_F(TimerTest, TheProgramsEndPassesThroughTheQueue) {
    const auto a = timer("a", 10);
    a->onTimer = [] { throw fakes::ProcessEnded{1}; };
    a->setRunning(true);
    EXPECT_THROW(windows.advance(10), fakes::ProcessEnded);
}

TEST_F(TimerTest, TimersOfHiddenFormsTick) {
    const auto a = timer("a", 10);
    a->setRunning(true);
    form.show();
    form.hide();
    windows.advance(10);
    EXPECT_EQ(log, Log{"a"});
}

TEST_F(TimerTest, ATimerThatStartsTellsTheBackEnd) {
    int earlier = 0;
    windows.timers().onEarlier = [&] { ++earlier; };
    const auto a = timer("a", 10);
    EXPECT_EQ(earlier, 0);
    a->setRunning(true);
    EXPECT_EQ(earlier, 1);
    EXPECT_EQ(windows.timers().nextDueMs(), 10);
}

TEST_F(TimerTest, ATimerWhoseHandlerHasRunTellsTheBackEnd) {
    int earlier = 0;
    const auto a = timer("a", 10);
    a->setRunning(true);
    windows.timers().onEarlier = [&] { ++earlier; };
    clock.advance(10);
    windows.timers().runDue();
    EXPECT_EQ(log, Log{"a"});
    EXPECT_EQ(earlier, 1) << "nobody awaited it while its handler ran";
    EXPECT_EQ(windows.timers().nextDueMs(), 20);
    windows.timers().onEarlier = nullptr;
}

TEST_F(TimerTest, ATimerIsNothingToBeSeen) {
    const auto a = timer("a", 10);
    EXPECT_FALSE(a->visible());
}

TEST_F(TimerTest, TheNextTickIsTheEarliestOfAll) {
    const auto a = timer("a", 100);
    const auto b = timer("b", 70);
    a->setRunning(true);
    b->setRunning(true);
    EXPECT_EQ(windows.timers().nextDueMs(), 70);
    b->setRunning(false);
    EXPECT_EQ(windows.timers().nextDueMs(), 100);
}

TEST_F(TimerTest, ASlowTimerIsWokenForWithAFasterOnesTick) {
    const auto slow = timer("slow", 250);
    const auto fast = timer("fast", 70);
    slow->setRunning(true);
    EXPECT_EQ(windows.timers().nextWakeMs(), 320) << "alone it is at most 70 ms late";
    fast->setRunning(true);
    EXPECT_EQ(windows.timers().nextWakeMs(), 70);
    windows.advance(249);
    EXPECT_EQ(windows.timers().nextDueMs(), 250);
    EXPECT_EQ(windows.timers().nextWakeMs(), 280);
    windows.advance(31);
    EXPECT_EQ(log, (Log{"fast", "fast", "fast", "slow", "fast"}));
}

TEST_F(TimerTest, ATimerWhoseHandlerRunsIsNotAwaited) {
    const auto a = timer("a", 10);
    std::optional<std::int64_t> due = 1;
    a->onTimer = [&] { due = windows.timers().nextDueMs(); };
    a->setRunning(true);
    windows.advance(10);
    EXPECT_FALSE(due.has_value());
    EXPECT_EQ(windows.timers().nextDueMs(), 20);
}

} // namespace velmora::forms
