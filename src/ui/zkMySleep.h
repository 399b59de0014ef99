#pragma once

// A sleep that keeps the interface alive: input, timers and painting go on while it lasts.

#include "platform/contracts/system.h"

#include <cstdint>
#include <string>

namespace velmora {

class Velmora;

// A due time as the two 32-bit halves of a negative count of 100 ns steps.
struct DueTime {
    std::int32_t low = 0;
    std::int32_t high = 0;
};
DueTime relativeDueTime(std::int32_t ms);

class zkMySleep {
public:
    explicit zkMySleep(Velmora &app);
    ~zkMySleep();
    zkMySleep(const zkMySleep &) = delete;
    zkMySleep &operator=(const zkMySleep &) = delete;

    // Returns when the time has passed, after at least one round of events. Raises when the system
    // gives no timer.
    void Wait(std::int32_t ms);

private:
    std::u16string timerName() const;
    void close() noexcept;

    Velmora &app_;
    platform::WaitHandle handle_ = 0; // of the timer in use
};

} // namespace velmora
