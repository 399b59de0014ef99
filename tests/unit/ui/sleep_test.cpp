// The sleep that keeps the interface alive.

#include "tests/unit/program_fixture.h"

#include "ui/zkMySleep.h"

namespace velmora {
namespace {

class Sleep : public ProgramFixture {
protected:
    void wait(std::int32_t ms) { zkMySleep(app).Wait(ms); }
    using Due = fakes::FakeWaitableTimers::Due;
};

TEST_F(Sleep, NamesItsTimerByProgramAndMinutesAndSeconds) {
    fake.clock.sinceMidnight = 3 * 3600 + 7 * 60 + 5.9;
    wait(1);
    EXPECT_EQ(fake.waitableTimers.names, Texts{u"velmoraTimer0705"});
}

TEST_F(Sleep, SetsTheTimerOnceAtOnceAndThenToItsTime) {
    wait(1);
    EXPECT_EQ(fake.waitableTimers.dues, (std::vector<Due>{{-1, -1}, {-10'000, -1}}));
}

TEST_F(Sleep, SkipsTheFirstSettingWhenATimerOfTheNameExists) {
    fake.waitableTimers.nameExists = true;
    wait(1);
    EXPECT_EQ(fake.waitableTimers.dues, (std::vector<Due>{{-10'000, -1}}));
}

TEST_F(Sleep, ReturnsAfterItsTime) {
    const auto begin = fake.clock.steadyTime;
    wait(250);
    EXPECT_EQ(fake.clock.steadyTime - begin, 250);
}

TEST_F(Sleep, HandlesEventsAfterEachWakeUp) {
    fake.waitableTimers.nextAnswers = {1, 1};
    wait(5);
    EXPECT_EQ(fake.waitableTimers.waits, 3);
    EXPECT_EQ(windows.pumps, 3);
}

TEST_F(Sleep, OfNoTimeReturnsAtTheFirstSignalAfterOneRoundOfEvents) {
    const auto begin = fake.clock.steadyTime;
    wait(0);
    EXPECT_EQ(fake.clock.steadyTime, begin);
    EXPECT_EQ(windows.pumps, 1);
}

TEST_F(Sleep, ClosesItsTimer) {
    wait(1);
    EXPECT_EQ(fake.waitableTimers.openTimers(), 0U);
}

TEST_F(Sleep, HoldsNoTimerBehindItsWait) {
    zkMySleep sleeper(app);
    sleeper.Wait(1);
    EXPECT_EQ(fake.waitableTimers.openTimers(), 0U);
}

TEST_F(Sleep, RaisesWhenTheSystemGivesNoTimer) {
    fake.waitableTimers.creationFails = true;
    EXPECT_THROW(wait(1), RunTimeError);
    EXPECT_EQ(fake.waitableTimers.waits, 0);
}

TEST_F(Sleep, RaisesWhenAWaitFailsAndClosesItsTimer) {
    fake.waitableTimers.nextAnswers = {0xFFFFFFFF};
    EXPECT_THROW(wait(1), RunTimeError);
    EXPECT_EQ(fake.waitableTimers.openTimers(), 0U);
}

TEST_F(Sleep, WhoseWaitFailedHoldsNoTimerAnyMore) {
    zkMySleep sleeper(app);
    fake.waitableTimers.nextAnswers = {0xFFFFFFFF};
    EXPECT_THROW(sleeper.Wait(1), RunTimeError);
    EXPECT_EQ(fake.waitableTimers.openTimers(), 0U);
}

TEST_F(Sleep, ClosesItsTimerWhenAHandlerInsideRaises) {
    windows.atNextPump([] { raise(ErrorNumber::General); });
    EXPECT_THROW(wait(1), RunTimeError);
    EXPECT_EQ(fake.waitableTimers.openTimers(), 0U);
}

TEST_F(Sleep, MayRunInsideAnother) {
    windows.atNextPump([this] { wait(20); });
    const auto begin = fake.clock.steadyTime;
    wait(10);
    EXPECT_EQ(fake.clock.steadyTime - begin, 30);
    EXPECT_EQ(fake.waitableTimers.openTimers(), 0U);
}

// --- the due time --------------------------------------------------------------------------------

std::int64_t whole(DueTime due) {
    return static_cast<std::int64_t>(
        static_cast<std::uint64_t>(static_cast<std::uint32_t>(due.high)) << 32U |
        static_cast<std::uint32_t>(due.low));
}

TEST(DueTime, IsTheNegativeCountOf100NanosecondSteps) {
    for (const std::int32_t ms :
         {1, 2, 70, 1000, 214'748, 214'749, 429'496, 429'497, 3'600'000, 86'400'000, 2'147'483'647})
        EXPECT_EQ(whole(relativeDueTime(ms)), -static_cast<std::int64_t>(ms) * 10'000) << ms;
}

TEST(DueTime, HoldsTheLowHalfAsAnUnsignedPatternInASignedNumber) {
    EXPECT_EQ(relativeDueTime(1).low, -10'000);
    EXPECT_EQ(relativeDueTime(1).high, -1);
    EXPECT_EQ(relativeDueTime(300'000).low, 1'294'967'296); // -3,000,000,000 + 2^32
    EXPECT_EQ(relativeDueTime(300'000).high, -1);
    EXPECT_EQ(relativeDueTime(500'000).high, -2);
}

TEST(DueTime, OfNoTimeIsTheShortestRelativeOne) {
    EXPECT_EQ(whole(relativeDueTime(0)), -1);
    EXPECT_EQ(whole(relativeDueTime(-5)), -1);
}

} // namespace
} // namespace velmora
