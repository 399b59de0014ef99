#include "platform/backends/linux/linux_clock.h"
#include "platform/backends/linux/linux_timers.h"

#include "tests/unit/linux/temp_folder.h"
#include "tests/unit/linux/variables.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace velmora::platform {
namespace {

// --- the clock -----------------------------------------------------------------------------------

// A locale of the environment, at Greenwich.
class Locale {
public:
    explicit Locale(std::map<std::string, std::string> values)
        : variables_({"LC_ALL", "LC_TIME", "LANG"}, withZone(std::move(values))) {
        ::tzset();
    }

private:
    static std::map<std::string, std::string> withZone(std::map<std::string, std::string> values) {
        values["TZ"] = "UTC";
        return values;
    }

    Variables variables_;
};

using Values = std::map<std::string, std::string>;

constexpr std::time_t someTime = 1'600'000'000; // 2020-09-13 12:26:40 UTC

TEST(Clock, writesIsoFormsInTheCLocale) {
    for (const char *name : {"C", "POSIX", "C.UTF-8", "xx_NoSuchPlace"}) {
        const Locale locale(Values{{"LC_ALL", name}});
        LinuxClock clock;
        EXPECT_EQ(clock.shortDate(someTime), u"2020-09-13") << name;
        EXPECT_EQ(clock.shortTime(someTime), u"12:26:40") << name;
    }
    const Locale none(Values{});
    LinuxClock clock;
    EXPECT_EQ(clock.shortDate(0), u"1970-01-01");
    EXPECT_EQ(clock.shortTime(3661), u"01:01:01");
}

// What the clock writes in each environment, in a locale that the test makes, since machines that
// build have few. In a process of its own: the C library keeps a little of a locale from a place of
// its own. Asserts nothing by itself: each text stands where its environment does.
std::vector<std::u16string> datesIn(const TempFolder &locales, const std::vector<Values> &places) {
    int ends[2];
    if (::pipe(ends) != 0)
        return {};
    const pid_t child = ::fork();
    if (child == 0) {
        ::setenv("LOCPATH", locales.path().c_str(), 1);
        for (const Values &values : places) {
            const Locale locale(values);
            LinuxClock clock;
            const std::u16string text =
                clock.shortDate(someTime) + u' ' + clock.shortTime(someTime) + u'\n';
            if (::write(ends[1], text.data(), text.size() * sizeof(char16_t)) < 0)
                ::_exit(1);
        }
        ::_exit(0);
    }
    ::close(ends[1]);
    std::u16string all(1000, u'\0');
    std::size_t got = 0;
    for (ssize_t part = 1; part > 0; got += static_cast<std::size_t>(part))
        part = std::max<ssize_t>(0, ::read(ends[0], reinterpret_cast<char *>(all.data()) + got,
                                           all.size() * sizeof(char16_t) - got));
    ::close(ends[0]);
    all.resize(got / sizeof(char16_t));
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    std::vector<std::u16string> lines;
    for (std::size_t from = 0, to; (to = all.find(u'\n', from)) != std::u16string::npos;
         from = to + 1)
        lines.push_back(all.substr(from, to - from));
    return lines;
}

TEST(Clock, writesTheFormsOfTheLocaleOfDatesInTheOrderOfTheVariables) {
    const TempFolder folder;
    const std::string make =
        "localedef -i zh_CN -f UTF-8 '" + folder.bytes("zh_CN.UTF-8") + "' >/dev/null 2>&1";
    ASSERT_EQ(std::system(make.c_str()), 0) << "the package locales is needed";
    const std::string chinese = "zh_CN.UTF-8";
    const std::u16string here = u"2020年09月13日 12时26分40秒";
    const std::u16string iso = u"2020-09-13 12:26:40";
    EXPECT_EQ(
        datesIn(folder, {Values{{"LANG", "C"}, {"LC_TIME", chinese}}, Values{{"LANG", chinese}},
                         Values{{"LANG", chinese}, {"LC_TIME", "C"}},
                         Values{{"LC_ALL", "C"}, {"LC_TIME", chinese}, {"LANG", chinese}},
                         Values{{"LC_ALL", chinese}, {"LC_TIME", "C"}, {"LANG", "C"}}}),
        (std::vector<std::u16string>{here, here, iso, iso, here}));
}

TEST(Clock, saysAnotherSecondAnew) {
    const Locale locale(Values{{"LC_ALL", "C"}});
    LinuxClock clock;
    const std::u16string first = clock.shortTime(someTime);
    EXPECT_EQ(clock.shortTime(someTime), first);
    EXPECT_NE(clock.shortTime(someTime + 1), first);
    EXPECT_EQ(clock.shortDate(someTime + 86400), u"2020-09-14");
    EXPECT_EQ(clock.shortTime(someTime), first);
}

TEST(Clock, survivesTimesThatNoCalendarHas) {
    const Locale locale(Values{{"LC_ALL", "C"}});
    LinuxClock clock;
    EXPECT_EQ(clock.shortDate(std::numeric_limits<std::time_t>::max()), u"");
    EXPECT_EQ(clock.shortDate(-1), u"1969-12-31");
}

TEST(Clock, goesOn) {
    LinuxClock clock;
    const std::int64_t first = clock.steadyMs();
    EXPECT_GE(clock.steadyMs(), first);
    EXPECT_LE(std::abs(clock.now() - std::time(nullptr)), 2);
    const double seconds = clock.secondsSinceMidnight();
    EXPECT_GE(seconds, 0.0);
    EXPECT_LT(seconds, 86401.0);
}

TEST(Clock, saysWhatTheLocalClockSaysBeforeAndBehindTheTurnOfASecond) {
    using namespace std::chrono;
    LinuxClock clock;
    const auto second = [] { return system_clock::to_time_t(floor<seconds>(system_clock::now())); };
    const std::time_t first = second();
    bool turned = false;
    while (!turned) {
        const std::time_t before = second();
        const double said = clock.secondsSinceMidnight();
        if (second() != before)
            continue;
        turned = before != first;
        std::tm parts{};
        ::localtime_r(&before, &parts);
        ASSERT_EQ(std::floor(said), parts.tm_hour * 3600.0 + parts.tm_min * 60.0 + parts.tm_sec);
    }
}

// --- due times -----------------------------------------------------------------------------------

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using std::chrono::system_clock;
using TimePoint = LinuxWaitableTimers::TimePoint;

struct Halves {
    std::int32_t low;
    std::int32_t high;
};
Halves halves(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    return {static_cast<std::int32_t>(bits & 0xFFFFFFFF), static_cast<std::int32_t>(bits >> 32)};
}
TimePoint due(std::int64_t value, TimePoint now, system_clock::time_point wall = {}) {
    return dueTime(halves(value).low, halves(value).high, now, wall);
}

TEST(DueTime, isRelativeWhenNegative) {
    const TimePoint now(milliseconds(1000));
    EXPECT_EQ(due(-10'000, now), now + milliseconds(1));
    EXPECT_EQ(due(-1, now), now + std::chrono::nanoseconds(100));
    EXPECT_EQ(due(-50'000'000'000, now), now + milliseconds(5'000'000)); // beyond 32 bits
}

TEST(DueTime, isAWallClockTimeOtherwise) {
    const TimePoint now(milliseconds(1000));
    const auto wall = system_clock::from_time_t(0);
    constexpr std::int64_t epoch = 116'444'736'000'000'000;
    EXPECT_EQ(due(epoch + 10'000, now, wall), now + milliseconds(1));
    EXPECT_EQ(due(epoch - 10'000, now, wall), now); // past: at once
    EXPECT_EQ(due(0, now, wall), now);
}

TEST(DueTime, staysInReachAtBothEnds) {
    const TimePoint now = steady_clock::now();
    EXPECT_GT(due(std::numeric_limits<std::int64_t>::min(), now), now);
    EXPECT_GT(due(std::numeric_limits<std::int64_t>::max(), now), now);
}

// --- timers --------------------------------------------------------------------------------------

struct TimerTest : testing::Test {
    std::vector<TimePoint> waits;
    std::uint32_t answer = 0;
    LinuxWaitableTimers timers{[this](TimePoint until) {
        waits.push_back(until);
        return answer;
    }};
    bool exists = false;

    WaitHandle create(std::u16string_view name = u"", bool manualReset = true) {
        return timers.CreateWaitableTimerA(manualReset, name, exists);
    }
    bool set(WaitHandle timer, std::int64_t value) {
        return timers.SetWaitableTimer(timer, halves(value).low, halves(value).high);
    }
};

TEST_F(TimerTest, waitsForTheDueTimeInTheLoopOfTheWindows) {
    const WaitHandle timer = create();
    const TimePoint before = steady_clock::now();
    ASSERT_TRUE(set(timer, -600'000'000)); // a minute
    answer = 1;
    EXPECT_EQ(timers.MsgWaitForMultipleObjects(timer), 1U);
    answer = 0;
    EXPECT_EQ(timers.MsgWaitForMultipleObjects(timer), 0U);
    ASSERT_EQ(waits.size(), 2U);
    EXPECT_GE(waits[0], before + std::chrono::seconds(60));
    EXPECT_EQ(waits[0], waits[1]);
}

TEST_F(TimerTest, answersAtOnceWhenItIsDue) {
    const WaitHandle timer = create();
    ASSERT_TRUE(set(timer, 0));
    EXPECT_EQ(timers.MsgWaitForMultipleObjects(timer), 0U);
    EXPECT_TRUE(waits.empty());
}

TEST_F(TimerTest, staysSignalledWithManualResetOnly) {
    const WaitHandle manual = create(u"", true);
    const WaitHandle automatic = create(u"", false);
    set(manual, 0);
    set(automatic, 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(timers.MsgWaitForMultipleObjects(manual), 0U);
    EXPECT_TRUE(waits.empty());
    EXPECT_EQ(timers.MsgWaitForMultipleObjects(automatic), 0U);
    answer = 1;
    EXPECT_EQ(timers.MsgWaitForMultipleObjects(automatic), 1U); // unset again: for ever
    ASSERT_EQ(waits.size(), 1U);
    EXPECT_EQ(waits[0], TimePoint::max());
}

TEST_F(TimerTest, neverSignalsBeforeItIsSet) {
    const WaitHandle timer = create();
    answer = 1;
    EXPECT_EQ(timers.MsgWaitForMultipleObjects(timer), 1U);
    EXPECT_EQ(waits.front(), TimePoint::max());
}

TEST_F(TimerTest, sharesATimerOfTheSameName) {
    const WaitHandle first = create(u"velmoraTimer0102");
    EXPECT_FALSE(exists);
    const WaitHandle second = create(u"velmoraTimer0102");
    EXPECT_TRUE(exists);
    EXPECT_NE(first, second);
    set(first, 0);
    EXPECT_EQ(timers.MsgWaitForMultipleObjects(second), 0U);
    create(u"velmoraTimer0103");
    EXPECT_FALSE(exists);
    EXPECT_TRUE(timers.CloseHandle(first));
    create(u"velmoraTimer0102");
    EXPECT_TRUE(exists); // the second handle keeps it
}

TEST_F(TimerTest, forgetsANameWithItsLastHandle) {
    timers.CloseHandle(create(u"name"));
    create(u"name");
    EXPECT_FALSE(exists);
    create(u"");
    create(u"");
    EXPECT_FALSE(exists); // unnamed ones are never the same
}

TEST_F(TimerTest, refusesAHandleThatIsNotOpen) {
    const WaitHandle timer = create();
    EXPECT_TRUE(timers.CloseHandle(timer));
    EXPECT_FALSE(timers.CloseHandle(timer));
    EXPECT_FALSE(set(timer, -1));
    EXPECT_EQ(timers.MsgWaitForMultipleObjects(timer), 0xFFFFFFFFU);
    EXPECT_EQ(timers.openHandles(), 0U);
}

TEST_F(TimerTest, survivesBeingClosedWhileItIsWaitedFor) {
    WaitHandle timer = 0;
    LinuxWaitableTimers *inside = nullptr;
    LinuxWaitableTimers closing([&](TimePoint) {
        inside->CloseHandle(timer);
        return std::uint32_t{0};
    });
    inside = &closing;
    bool already = false;
    timer = closing.CreateWaitableTimerA(false, u"x", already);
    closing.SetWaitableTimer(timer, -1'000'000'000, -1);
    EXPECT_EQ(closing.MsgWaitForMultipleObjects(timer), 0U);
}

TEST(Timer, sleepsWhereNoLoopIs) {
    LinuxWaitableTimers timers(nullptr);
    bool exists = false;
    const WaitHandle timer = timers.CreateWaitableTimerA(true, u"", exists);
    timers.SetWaitableTimer(timer, -20'000, -1); // 2 ms
    const auto begin = steady_clock::now();
    EXPECT_EQ(timers.MsgWaitForMultipleObjects(timer), 0U);
    EXPECT_GE(steady_clock::now() - begin, milliseconds(1));
}

} // namespace
} // namespace velmora::platform
