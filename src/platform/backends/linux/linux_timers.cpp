#include "platform/backends/linux/linux_timers.h"

#include <algorithm>
#include <thread>

namespace velmora::platform {

namespace {

constexpr std::uint32_t waitFailed = 0xFFFFFFFF;

} // namespace

LinuxWaitableTimers::TimePoint dueTime(std::int32_t low, std::int32_t high,
                                       LinuxWaitableTimers::TimePoint steadyNow,
                                       std::chrono::system_clock::time_point wallNow) {
    using namespace std::chrono;
    using Steps = duration<std::int64_t, std::ratio<1, 10'000'000>>;
    const auto bits = static_cast<std::uint64_t>(static_cast<std::uint32_t>(high)) << 32 |
                      static_cast<std::uint32_t>(low);
    const auto due = static_cast<std::int64_t>(bits);
    // Steps are wider than the clock's own unit: what lies beyond its reach is held to it.
    constexpr std::int64_t reach = std::int64_t{100} * 365 * 24 * 3600 * 10'000'000;
    std::int64_t ahead = 0;
    if (due < 0) {
        ahead = due < -reach ? reach : -due;
    } else {
        constexpr std::int64_t epoch = 116'444'736'000'000'000; // 1601 to 1970
        ahead = due - epoch - duration_cast<Steps>(wallNow.time_since_epoch()).count();
    }
    const Steps wait(std::clamp<std::int64_t>(ahead, 0, reach));
    return steadyNow + duration_cast<steady_clock::duration>(wait);
}

std::shared_ptr<LinuxWaitableTimers::Timer>
LinuxWaitableTimers::named(std::u16string_view name) const {
    if (!name.empty())
        for (const auto &[handle, timer] : handles_)
            if (timer->name == name)
                return timer;
    return nullptr;
}

WaitHandle LinuxWaitableTimers::CreateWaitableTimerA(bool manualReset, std::u16string_view name,
                                                     bool &alreadyExists) {
    auto timer = named(name);
    alreadyExists = timer != nullptr;
    if (!timer) {
        timer = std::make_shared<Timer>();
        timer->manualReset = manualReset;
        timer->name = name;
    }
    const WaitHandle handle = nextHandle_;
    nextHandle_ += 4;
    handles_[handle] = std::move(timer);
    return handle;
}

bool LinuxWaitableTimers::SetWaitableTimer(WaitHandle handle, std::int32_t dueLow,
                                           std::int32_t dueHigh) {
    const auto found = handles_.find(handle);
    if (found == handles_.end())
        return false;
    found->second->due = dueTime(dueLow, dueHigh, std::chrono::steady_clock::now(),
                                 std::chrono::system_clock::now());
    return true;
}

std::uint32_t LinuxWaitableTimers::MsgWaitForMultipleObjects(WaitHandle handle) {
    const auto found = handles_.find(handle);
    if (found == handles_.end())
        return waitFailed;
    const std::shared_ptr<Timer> timer = found->second; // may be closed while waiting
    std::uint32_t answer = 0;
    if (timer->due > std::chrono::steady_clock::now()) {
        if (wait_)
            answer = wait_(timer->due);
        else
            std::this_thread::sleep_until(timer->due);
    }
    if (answer == 0 && !timer->manualReset)
        timer->due = TimePoint::max(); // one wait takes the signal
    return answer;
}

bool LinuxWaitableTimers::CloseHandle(WaitHandle handle) { return handles_.erase(handle) != 0; }

} // namespace velmora::platform
