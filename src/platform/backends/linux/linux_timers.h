#pragma once

// Waitable timers (contract: platform/system.h). They are objects of this process; the waiting
// itself belongs to whoever runs the event loop.

#include "platform/contracts/system.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>

namespace velmora::platform {

class LinuxWaitableTimers : public WaitableTimers {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    // Runs the event loop until `due` (the greatest time point for never) or until an input or a
    // timer tick came. Answers 0 when it is due, else 1. Without one the thread sleeps.
    using Wait = std::function<std::uint32_t(TimePoint due)>;

    explicit LinuxWaitableTimers(Wait wait) : wait_(std::move(wait)) {}

    WaitHandle CreateWaitableTimerA(bool manualReset, std::u16string_view name,
                                    bool &alreadyExists) override;
    bool SetWaitableTimer(WaitHandle timer, std::int32_t dueLow, std::int32_t dueHigh) override;
    std::uint32_t MsgWaitForMultipleObjects(WaitHandle timer) override;
    bool CloseHandle(WaitHandle timer) override;

    std::size_t openHandles() const { return handles_.size(); }

private:
    struct Timer {
        bool manualReset = false;
        std::u16string name;
        TimePoint due = TimePoint::max(); // not set
    };

    std::shared_ptr<Timer> named(std::u16string_view name) const;

    Wait wait_;
    std::map<WaitHandle, std::shared_ptr<Timer>> handles_;
    WaitHandle nextHandle_ = 4;
};

// The time that a due time in 100 ns steps stands for: negative ones count from `steadyNow`, others
// are times of the wall clock since 1601, which now shows `wallNow`.
LinuxWaitableTimers::TimePoint dueTime(std::int32_t low, std::int32_t high,
                                       LinuxWaitableTimers::TimePoint steadyNow,
                                       std::chrono::system_clock::time_point wallNow);

} // namespace velmora::platform
