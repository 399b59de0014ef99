#include "platform/forms/timer.h"

#include "platform/forms/dispatch.h"
#include "platform/forms/form.h"
#include "platform/forms/host.h"

#include <algorithm>

namespace velmora::forms {

Timer::Timer(Container &container, const char *name) : Control(container, name) {
    setVisible(false);
}

Timer::~Timer() { form().host().timers().forget(*this); }

void Timer::setInterval(std::int32_t intervalMs) {
    if (intervalMs_ == intervalMs)
        return;
    intervalMs_ = intervalMs;
    schedule();
}

void Timer::setRunning(bool running) {
    if (running_ == running)
        return;
    running_ = running;
    schedule();
}

void Timer::schedule() {
    TimerQueue &queue = form().host().timers();
    queue.remove(*this);
    if (running_ && intervalMs_ > 0)
        queue.add(*this);
}

TimerQueue::TimerQueue(Clock clock) : clock_(std::move(clock)) {}

namespace {

// What one tick changes is told by the next ones.
constexpr int ticksAheadOfRest = 4;
constexpr std::int32_t restMs = 1050;

// The first point after `now` on the grid that all timers of this interval share.
std::int64_t nextOnGrid(std::int64_t now, std::int32_t intervalMs) {
    return (now / intervalMs + 1) * intervalMs;
}

} // namespace

void TimerQueue::add(Timer &timer) {
    timer.enabledAs_ = ++order_;
    timer.restfulTicks_ = 0;
    timer.dueMs_ = nextOnGrid(clock_(), timer.intervalMs_);
    timers_.push_back(&timer); // ascending order of enabling
    if (onEarlier)
        onEarlier();
}

void TimerQueue::remove(Timer &timer) {
    std::erase(timers_, &timer);
    std::erase(waiting_, &timer);
}

void TimerQueue::forget(Timer &timer) {
    remove(timer);
    for (Running *one = running_; one != nullptr; one = one->outer)
        if (one->timer == &timer)
            one->timer = nullptr;
}

std::optional<std::int64_t> TimerQueue::nextDueMs() const {
    std::optional<std::int64_t> earliest;
    for (const Timer *timer : timers_)
        if (!timer->inHandler_ && (!earliest || timer->dueMs_ < *earliest))
            earliest = timer->dueMs_;
    return earliest;
}

std::optional<std::int64_t> TimerQueue::nextWakeMs() const {
    constexpr std::int32_t patientMs = 250;
    constexpr std::int64_t slackMs = 70;
    std::optional<std::int64_t> latest;
    for (const Timer *timer : timers_) {
        const std::int64_t wakeBy =
            rests(*timer) ? std::max(timer->dueMs_, nextOnGrid(timer->ranMs_, restMs))
                          : timer->dueMs_ + (timer->intervalMs_ >= patientMs ? slackMs : 0);
        if (!timer->inHandler_ && (!latest || wakeBy < *latest))
            latest = wakeBy;
    }
    return latest;
}

bool TimerQueue::rests(const Timer &timer) noexcept {
    return timer.restfulTicks_ >= ticksAheadOfRest;
}

void TimerQueue::stir() {
    bool wakes = false;
    for (Timer *timer : timers_) {
        // A tick that was left out is not made up for.
        if (rests(*timer) && timer->dueMs_ <= clock_())
            timer->dueMs_ = nextOnGrid(clock_(), timer->intervalMs_);
        wakes = wakes || rests(*timer);
        timer->restfulTicks_ = 0;
    }
    if (wakes && onEarlier)
        onEarlier();
}

void TimerQueue::runDue() {
    collectDue();
    while (!waiting_.empty()) {
        Timer *timer = waiting_.front();
        waiting_.pop_front();
        run(*timer);
    }
}

void TimerQueue::collectDue() {
    const std::int64_t now = clock_();
    for (Timer *timer : timers_) {
        if (timer->dueMs_ <= now && !timer->inHandler_) {
            timer->dueMs_ = nextOnGrid(now, timer->intervalMs_);
            if (std::find(waiting_.begin(), waiting_.end(), timer) == waiting_.end())
                waiting_.push_back(timer);
        }
    }
}

void TimerQueue::run(Timer &timer) {
    Running running{&timer, running_};
    running_ = &running;
    timer.inHandler_ = true;
    timer.saysRest_ = false;
    // The program's end leaves a handler by an exception that nobody catches; the list of running
    // handlers must not point into the unwound stack then.
    struct Leave {
        TimerQueue &queue;
        Running &running;
        ~Leave() { queue.running_ = running.outer; }
    } leave{*this, running};
    raiseEvent(timer.onTimer);
    if (running.timer == nullptr)
        return;
    timer.inHandler_ = false;
    const std::int64_t now = clock_();
    if (timer.dueMs_ <= now)
        timer.dueMs_ = nextOnGrid(now, timer.intervalMs_);
    timer.ranMs_ = now;
    if (timer.saysRest_)
        timer.restfulTicks_ = std::min(timer.restfulTicks_ + 1, ticksAheadOfRest);
    else
        stir();
    if (onEarlier)
        onEarlier();
}

} // namespace velmora::forms
