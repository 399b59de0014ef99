#include "ui/zkMySleep.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "platform/contracts/windows.h"
#include "velmora.h"

#include <cmath>

namespace velmora {

namespace {

constexpr double twoTo32 = 4294967296.0;
constexpr double stepsPerMs = 10000.0; // a step is 100 ns
constexpr std::uint32_t waitFailed = 0xFFFFFFFF;
constexpr std::uint32_t timerSignalled = 0;

} // namespace

// The halves are made by floating point. The low one is an unsigned pattern in a signed number.
DueTime relativeDueTime(std::int32_t ms) {
    if (ms <= 0)
        return {-1, -1}; // the shortest relative time; 0 would be an absolute one
    const double high = ms * stepsPerMs / twoTo32;
    const double whole = std::floor(high);
    double low = (high - whole) * -twoTo32;
    if (low < -2147483648.0)
        low += twoTo32;
    return {roundToInt32(low), roundToInt32(-1 - whole)};
}

zkMySleep::zkMySleep(Velmora &app) : app_(app) {}

zkMySleep::~zkMySleep() { close(); }

void zkMySleep::close() noexcept {
    if (handle_ != 0) {
        app_.platform().waitableTimers.CloseHandle(handle_);
        handle_ = 0;
    }
}

std::u16string zkMySleep::timerName() const {
    const auto seconds = static_cast<std::int64_t>(app_.platform().clock.secondsSinceMidnight());
    return app_.platform().processes.applicationStem() + u"Timer" + format00(seconds / 60 % 60) +
           format00(seconds % 60);
}

void zkMySleep::Wait(std::int32_t ms) {
    platform::WaitableTimers &timers = app_.platform().waitableTimers;
    bool alreadyExists = false;
    handle_ = timers.CreateWaitableTimerA(true, timerName(), alreadyExists);
    if (handle_ == 0)
        raise(ErrorNumber::General);
    if (!alreadyExists)
        timers.SetWaitableTimer(handle_, -1, -1);
    const DueTime due = relativeDueTime(ms);
    timers.SetWaitableTimer(handle_, due.low, due.high);
    std::uint32_t woken = 0;
    do {
        woken = timers.MsgWaitForMultipleObjects(handle_);
        if (woken == waitFailed) {
            close();
            raise(ErrorNumber::General);
        }
        app_.platform().windows.DoEvents();
    } while (woken != timerSignalled);
    close();
}

} // namespace velmora
