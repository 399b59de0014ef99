#include "platform/backends/curl/ticker.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace velmora::platform::http {

Ticker::Ticker(const WatchReadable &watch, std::function<void()> tick)
    : timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
    if (!timer_)
        return;
    constexpr timespec quarter{0, 250'000'000};
    const itimerspec times{quarter, quarter};
    ::timerfd_settime(timer_.number(), 0, &times, nullptr);
    watch_ = watch(timer_.number(), [number = timer_.number(), tick = std::move(tick)] {
        std::uint64_t due = 0;
        if (::read(number, &due, sizeof due) == sizeof due)
            tick();
    });
}

} // namespace velmora::platform::http
