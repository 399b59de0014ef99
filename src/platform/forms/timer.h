#pragma once

// Logical timers and the queue that runs them.
//
// Each timer is its own: while its handler runs, pumping or not, it does not fire again, and all
// others do. Ticks that share a wake-up run in order of enabling, from a queue that a nested pump
// goes on emptying. Timers with the same interval tick on one common grid, so they share wake-ups;
// any stretch of one interval holds one tick. A late tick is not made up for: the next comes at the
// next point of the grid. Timers of hidden forms run too.
//
// A program that nothing happens to wakes once a second: timers whose handlers say that they have
// nothing to do rest, until the queue is told that something else was at work (`stir`), or another
// tick was. They come back at the next point of their grid, where the tick would have been anyway.

#include "platform/forms/control.h"

#include <deque>
#include <functional>
#include <optional>

namespace velmora::forms {

class TimerQueue;

class Timer : public Control {
public:
    Timer(Container &container, const char *name);
    ~Timer() override;
    Kind kind() const noexcept override { return Kind::Timer; }

    std::int32_t interval() const noexcept { return intervalMs_; } // ms; 0 never ticks
    void setInterval(std::int32_t intervalMs);
    bool running() const noexcept { return running_; }
    void setRunning(bool running); // the timer's Enabled property

    // Said by its handler: further ticks would do nothing until something else happens in the
    // program. Behind a few ticks of that kind the queue wakes for one a second.
    void rest() noexcept { saysRest_ = true; }

    // Set once by the form.
    std::function<void()> onTimer;

private:
    friend class TimerQueue;
    void schedule();

    std::int32_t intervalMs_ = 0;
    std::int64_t dueMs_ = 0;
    std::uint64_t enabledAs_ = 0; // order of enabling
    std::int64_t ranMs_ = 0;
    int restfulTicks_ = 0; // in a row
    bool saysRest_ = false;
    bool running_ = false;
    bool inHandler_ = false;
};

class TimerQueue {
public:
    using Clock = std::function<std::int64_t()>; // steady ms

    explicit TimerQueue(Clock clock);

    // Called whenever the next due time may have become earlier; the back-end arms its wake-up.
    std::function<void()> onEarlier;

    // When the next tick is due (steady ms); absent when no timer runs.
    std::optional<std::int64_t> nextDueMs() const;
    // When to wake for it. A timer of 250 ms and more may wait for a shorter one's tick, at most 70
    // ms: a program at rest then wakes for one grid instead of two.
    std::optional<std::int64_t> nextWakeMs() const;

    // Something of the program ran that is no tick: whoever rests may have something to do again.
    void stir();

    // Runs every tick that is due now. Re-entrant: a pump inside a handler may call it again and
    // goes on with the ticks that are still waiting.
    void runDue();

private:
    friend class Timer;

    // The handlers that are running, innermost first; they live on the stack of `run`.
    struct Running {
        Timer *timer; // null once the handler has ended the timer's life
        Running *outer;
    };

    void add(Timer &timer);
    void remove(Timer &timer);
    void forget(Timer &timer); // at the end of its life
    void collectDue();
    void run(Timer &timer);
    static bool rests(const Timer &timer) noexcept;

    Clock clock_;
    std::vector<Timer *> timers_;
    std::deque<Timer *> waiting_;
    Running *running_ = nullptr;
    std::uint64_t order_ = 0;
};

} // namespace velmora::forms
