#pragma once

// The one message loop: the timers' wake-up, the pump, and the moment at which no handler is
// active any more.

#include "platform/forms/timer.h"

#include <QTimer>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>

namespace velmora::platform::qt {

class Loop {
    // Ticks know by themselves when they have nothing to do; whatever else runs may change that.
    enum class Work : std::uint8_t { Ticks, Other };

public:
    // The application object must exist.
    Loop();
    ~Loop();
    Loop(const Loop &) = delete;
    Loop &operator=(const Loop &) = delete;

    forms::TimerQueue &timers() noexcept { return timers_; }

    // Runs until `quit`; answers its status.
    int run();
    void quit(int status);
    // Whether `run` has been entered: before that the start sequence is at work.
    bool running() const noexcept { return running_; }

    // See WindowSystem::DoEvents. Within 1 ms of the last it returns at once.
    void pump();
    // Whether it is a pump that handles the present event.
    bool pumping() const noexcept { return pumping_; }
    // Handles events until `due` or until something was handled, whichever is first; true: `due`.
    bool waitUntil(std::chrono::steady_clock::time_point due);
    // Handles what the window system sends about our windows, but neither input nor timers, until
    // `done` or the limit.
    void settle(const std::function<bool()> &done, std::chrono::milliseconds limit);

    // Runs `work` when no handler is active, ahead of the next event.
    void whenIdle(std::function<void()> work);
    // Lets go of the work that is still owed: it may hold forms, which must go ahead of their hub.
    void dropIdle();

    // Runs `work` in one of the next rounds of the loop, once the start sequence is over.
    void soon(std::function<void()> work);
    // Runs `work` after that time, or never if the end comes first.
    void later(std::chrono::milliseconds pause, std::function<void()> work);

    // Every call into the program is wrapped in one of these.
    class Handler {
    public:
        explicit Handler(Loop &loop) noexcept : Handler(loop, Work::Other) {}
        ~Handler() { loop_.leave(work_); }
        Handler(const Handler &) = delete;
        Handler &operator=(const Handler &) = delete;

    private:
        friend class Loop;
        Handler(Loop &loop, Work work) noexcept : loop_(loop), work_(work) { loop.enter(work); }
        Loop &loop_;
        Work work_;
    };

    // How many handlers are active, one inside the other.
    int depth() const noexcept { return depth_; }

    // Sets the wake-up for the next tick; to be called ahead of a nested loop. What runs the loop
    // may have changed anything before, so no timer stays at rest.
    void arm();

private:
    void setWakeUp();
    void enter(Work work) noexcept;
    void leave(Work work) noexcept;
    void tick();

    forms::TimerQueue timers_;
    QTimer wakeUp_;
    std::int64_t armedForMs_ = 0; // what `wakeUp_` waits for while it is active
    QTimer waitEnd_;
    std::deque<std::function<void()>> idle_;
    std::deque<std::function<void()>> soon_; // until `run`
    std::chrono::steady_clock::time_point lastPump_;
    int depth_ = 1; // the start sequence counts as a handler, until `run`
    bool running_ = false;
    bool pumping_ = false;
    bool ticksHeld_ = false;
};

} // namespace velmora::platform::qt
