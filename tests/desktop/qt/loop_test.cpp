// The pump, timers, idle work and the wish to end.

#include "tests/desktop/qt/desk.h"

#include "base/run_time_error.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace velmora::tests {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct TickForm : TestForm {
    forms::Timer fast{*this, "fast"};
    forms::Timer slow{*this, "slow"};
};

class LoopTest : public DeskTest {};

TEST_F(LoopTest, TimersTickWhileTheLoopWaits) {
    TickForm form;
    int ticks = 0;
    form.fast.onTimer = [&] { ++ticks; };
    form.fast.setInterval(20);
    form.fast.setRunning(true);
    const auto begin = steady_clock::now();
    EXPECT_TRUE(desk().pump([&] { return ticks >= 10; }));
    const auto spent = steady_clock::now() - begin;
    EXPECT_GE(spent, milliseconds(150));
    EXPECT_LT(spent, milliseconds(2000));
    form.fast.setRunning(false);
    const int before = ticks;
    desk().letPass(80);
    EXPECT_EQ(ticks, before);
}

// A form whose timer has nothing to do, and a look at the loop that is no handler of the program.
class RestingLoop : public LoopTest {
protected:
    RestingLoop() {
        form_.fast.onTimer = [this] { form_.fast.rest(); };
        form_.fast.setInterval(20);
        form_.fast.setRunning(true);
    }
    static std::int64_t untilNext() {
        const auto now =
            std::chrono::duration_cast<milliseconds>(steady_clock::now().time_since_epoch());
        return desk().windows->timers().nextWakeMs().value_or(0) - now.count();
    }
    // Looks until the timer is at rest, and then does the work.
    void atRest(std::function<void()> work) {
        look_.disconnect();
        QObject::connect(&look_, &QTimer::timeout, &look_, [this, work = std::move(work)] {
            if (untilNext() <= 200)
                return;
            look_.stop();
            work();
        });
        look_.start(5);
    }
    // Events, and no call of the program that waits for them.
    void comeToRest() {
        QEventLoop loop;
        atRest([&loop] { loop.quit(); });
        loop.exec();
    }

private:
    TickForm form_;
    QTimer look_;
};

TEST_F(RestingLoop, IsAwakeWithWhateverElseRuns) {
    std::optional<std::int64_t> inside;
    atRest([&] {
        desk().windows->whenIdle([&] {
            inside = untilNext();
            comeToRest();
            desk().windows->quit(0);
        });
    });
    desk().windows->run();
    EXPECT_LE(inside.value_or(1000), 20);
    EXPECT_LE(untilNext(), 20) << "behind it";
}

TEST_F(RestingLoop, IsAwakeWhileAHandlerLetsEventsRun) {
    for (const auto &lets : std::vector<std::function<void()>>{
             [] { desk().windows->DoEvents(); },
             [] { desk().windows->waitForEvents(steady_clock::now() + milliseconds(1)); },
             [] { desk().windows->beforeNestedLoop(); }}) {
        comeToRest();
        lets();
        EXPECT_LE(untilNext(), 20);
    }
}

TEST_F(LoopTest, APumpInAHandlerLetsTheOtherTimersRunButNotItsOwn) {
    TickForm form;
    int fast = 0;
    int slow = 0;
    bool inside = false;
    form.fast.setInterval(10);
    form.fast.onTimer = [&] {
        ++fast;
        EXPECT_FALSE(inside);
        inside = true;
        const auto end = steady_clock::now() + milliseconds(100);
        while (steady_clock::now() < end)
            desk().windows->DoEvents();
        inside = false;
        form.fast.setRunning(false);
    };
    form.slow.setInterval(15);
    form.slow.onTimer = [&] { slow += inside; };
    form.slow.setRunning(true);
    form.fast.setRunning(true);
    EXPECT_TRUE(desk().pump([&] { return fast == 1 && !form.fast.running(); }));
    EXPECT_GE(slow, 3);
}

TEST_F(LoopTest, ManyPumpsInARowCostNextToNothing) {
    const auto begin = steady_clock::now();
    for (int i = 0; i < 100000; ++i)
        desk().windows->DoEvents();
    EXPECT_LT(steady_clock::now() - begin, milliseconds(5000));
}

TEST_F(LoopTest, WaitingReturnsWhenItIsDue) {
    const auto begin = steady_clock::now();
    const auto due = begin + milliseconds(30);
    while (desk().windows->waitForEvents(due) != 0) {
    }
    EXPECT_GE(steady_clock::now() - begin, milliseconds(30));
    EXPECT_LT(steady_clock::now() - begin, milliseconds(3000));
    EXPECT_EQ(desk().windows->waitForEvents(steady_clock::now() - milliseconds(1)), 0U);
}

TEST_F(LoopTest, WaitingIsInterruptedByATick) {
    TickForm form;
    int ticks = 0;
    form.fast.onTimer = [&] { ++ticks; };
    form.fast.setInterval(20);
    form.fast.setRunning(true);
    const auto far = steady_clock::now() + milliseconds(5000);
    while (ticks == 0 && steady_clock::now() < far)
        EXPECT_EQ(desk().windows->waitForEvents(far), 1U);
    EXPECT_LT(steady_clock::now(), far);
}

TEST_F(LoopTest, WaitingForEverIsEndedByAnEvent) {
    TickForm form;
    form.fast.setInterval(20);
    form.fast.setRunning(true);
    EXPECT_EQ(desk().windows->waitForEvents(steady_clock::time_point::max()), 1U);
}

TEST_F(LoopTest, RunReturnsWithTheStatusOfQuit) {
    TickForm form;
    form.fast.setInterval(10);
    form.fast.onTimer = [] { desk().windows->quit(7); };
    form.fast.setRunning(true);
    EXPECT_EQ(desk().windows->run(), 7);
}

TEST_F(LoopTest, IdleWorkWaitsForTheEndOfEveryHandler) {
    TickForm form;
    std::string order;
    form.fast.setInterval(10);
    form.fast.onTimer = [&] {
        form.fast.setRunning(false);
        desk().windows->whenIdle([&] { order += "idle "; });
        form.slow.setRunning(true);
        const auto end = steady_clock::now() + milliseconds(60);
        while (steady_clock::now() < end)
            desk().windows->DoEvents();
        order += "outer ";
        QMetaObject::invokeMethod(
            qApp,
            [&] {
                order += "next ";
                desk().windows->quit(0);
            },
            Qt::QueuedConnection);
    };
    form.slow.setInterval(10);
    form.slow.onTimer = [&] {
        form.slow.setRunning(false);
        order += "inner ";
    };
    form.fast.setRunning(true);
    desk().windows->run();
    EXPECT_EQ(order, "inner outer idle next ");
}

TEST_F(LoopTest, IdleWorkOfTheStartSequenceWaitsForItsEnd) {
    TickForm form;
    std::string order;
    desk().windows->whenIdle([&] { order += "idle "; });
    ASSERT_TRUE(desk().settle());
    order += "started ";
    form.fast.setInterval(10);
    form.fast.onTimer = [] { desk().windows->quit(0); };
    form.fast.setRunning(true);
    desk().windows->run();
    EXPECT_EQ(order, "started idle ");
}

TEST_F(LoopTest, AnErrorInIdleWorkEndsThatWorkAlone) {
    TickForm form;
    bool second = false;
    desk().windows->whenIdle([] { raise(ErrorNumber::InvalidCall); });
    desk().windows->whenIdle([&] { second = true; });
    form.fast.setInterval(10);
    form.fast.onTimer = [] { desk().windows->quit(0); };
    form.fast.setRunning(true);
    desk().windows->run();
    EXPECT_TRUE(second);
}

TEST_F(LoopTest, AWriteThatNobodyReadsDoesNotEndTheProcess) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    EXPECT_EQ(write(ends[1], "x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
    close(ends[1]);
    ::raise(SIGXFSZ); // as the system does where a file meets its limit
}

TEST_F(LoopTest, TheSignalsThatEndAProcessAreAWishToEnd) {
    int asked = 0;
    desk().windows->onSessionEnd = [&] { ++asked; };
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const int before = asked;
        ::raise(signal);
        EXPECT_TRUE(desk().pump([&] { return asked == before + 1; })) << signal;
    }
    desk().windows->onSessionEnd = nullptr;
}

TEST_F(LoopTest, TheSessionsLastWordIsAWishToEndAndNoWindowIsClosedForIt) {
    TestForm form;
    form.appear();
    int closed = 0;
    form.on().QueryUnload = [&](bool &cancel) {
        cancel = true;
        ++closed;
    };
    int asked = 0;
    desk().windows->onSessionEnd = [&] { ++asked; };
    // What the toolkit makes of it.
    QEvent lastWord(QEvent::Quit);
    QCoreApplication::sendEvent(QCoreApplication::instance(), &lastWord);
    desk().windows->onSessionEnd = nullptr;
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(closed, 0);
}

} // namespace
} // namespace velmora::tests
