#include "platform/backends/qt/screen/loop.h"

#include "base/run_time_error.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <algorithm>
#include <utility>

namespace velmora::platform::qt {

namespace {

using std::chrono::steady_clock;

std::int64_t steadyMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               steady_clock::now().time_since_epoch())
        .count();
}

// Whole milliseconds until `due`, rounded up, so that a wake-up never comes too early and asks for
// a second one.
int msUntil(steady_clock::time_point due) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 1 << 30));
}

constexpr auto pumpPause = std::chrono::milliseconds(1);

} // namespace

Loop::Loop() : timers_(steadyMs) {
    wakeUp_.setSingleShot(true);
    wakeUp_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&wakeUp_, &QTimer::timeout, &wakeUp_, [this] { tick(); });
    waitEnd_.setSingleShot(true);
    waitEnd_.setTimerType(Qt::PreciseTimer);
    timers_.onEarlier = [this] { setWakeUp(); };
}

Loop::~Loop() { timers_.onEarlier = nullptr; }

int Loop::run() {
    running_ = true;
    leave(Work::Other);
    setWakeUp();
    while (!soon_.empty()) {
        soon(std::move(soon_.front()));
        soon_.pop_front();
    }
    const int status = QCoreApplication::exec();
    ++depth_;
    running_ = false;
    return status;
}

void Loop::quit(int status) { QCoreApplication::exit(status); }

void Loop::arm() {
    timers_.stir();
    setWakeUp();
}

void Loop::setWakeUp() {
    const auto next = timers_.nextWakeMs();
    if (!next) {
        wakeUp_.stop();
        return;
    }
    // Several timers that run in one round ask for the same next one.
    if (armedForMs_ == *next && wakeUp_.isActive())
        return;
    armedForMs_ = *next;
    const steady_clock::time_point due{std::chrono::milliseconds(*next)};
    wakeUp_.start(msUntil(due));
}

void Loop::tick() {
    if (ticksHeld_)
        return;
    {
        const Handler handler(*this, Work::Ticks);
        timers_.runDue();
    }
    setWakeUp();
}

void Loop::pump() {
    if (steady_clock::now() - lastPump_ < pumpPause)
        return;
    timers_.stir();
    tick();
    const bool before = std::exchange(pumping_, true);
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    pumping_ = before;
    lastPump_ = steady_clock::now();
}

bool Loop::waitUntil(steady_clock::time_point due) {
    if (steady_clock::now() >= due)
        return true;
    arm();
    waitEnd_.start(msUntil(due));
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    waitEnd_.stop();
    return steady_clock::now() >= due;
}

void Loop::settle(const std::function<bool()> &done, std::chrono::milliseconds limit) {
    const auto end = steady_clock::now() + limit;
    const bool heldBefore = ticksHeld_;
    ticksHeld_ = true;
    while (!done() && steady_clock::now() < end) {
        waitEnd_.start(msUntil(end));
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                        QEventLoop::WaitForMoreEvents);
    }
    waitEnd_.stop();
    ticksHeld_ = heldBefore;
    setWakeUp();
}

void Loop::soon(std::function<void()> work) {
    if (!running_) {
        soon_.push_back(std::move(work));
        return;
    }
    QTimer::singleShot(0, &wakeUp_, std::move(work));
}

void Loop::later(std::chrono::milliseconds pause, std::function<void()> work) {
    QTimer::singleShot(pause, &wakeUp_, std::move(work));
}

void Loop::dropIdle() {
    while (!idle_.empty())
        idle_.pop_front();
}

void Loop::whenIdle(std::function<void()> work) {
    idle_.push_back(std::move(work));
    // Outside any handler there is nothing to wait for but the present call itself.
    if (depth_ == 0)
        QMetaObject::invokeMethod(
            &wakeUp_, [this] { const Handler handler(*this); }, Qt::QueuedConnection);
}

void Loop::enter(Work work) noexcept {
    ++depth_;
    if (work == Work::Other)
        timers_.stir();
}

void Loop::leave(Work work) noexcept {
    while (depth_ == 1 && !idle_.empty()) {
        work = Work::Other;
        const std::function<void()> owed = std::move(idle_.front());
        idle_.pop_front();
        try {
            owed();
        } catch (const RunTimeError &error) {
            noteSwallowed(error); // it ends the piece of work that raised it, as it ends a handler
        }
    }
    --depth_;
    if (work == Work::Other)
        timers_.stir();
}

} // namespace velmora::platform::qt
