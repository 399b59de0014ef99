#pragma once

// Tells the echoes of our own moves from moves by the user or the window manager. The window system
// reports positions late: while a window is dragged, those reported are ones it has left already.

#include <QPoint>

#include <chrono>
#include <cstdint>
#include <deque>

namespace velmora::platform::qt {

class WindowPlace {
public:
    using Clock = std::chrono::steady_clock;

    enum class Report {
        Passed,  // a place asked for before the last one
        Granted, // the place last asked for
        Refused, // the window manager's answer to what was last asked for: another place
        Moved,   // somebody else put the window there
    };

    // We ask for a position. A window manager has a say once it has the window (`isManaged`).
    void asked(QPoint position, bool isManaged, Clock::time_point now = Clock::now());
    // How often a window manager was asked.
    std::uint64_t asks() const noexcept { return asks_; }
    // It has handled what was asked for up to then, and what it says of that was reported before.
    void took(std::uint64_t asks);
    bool tookAll() const noexcept { return took_ == asks_; }
    // Whether what was last reported answers the last that was asked for. A manager that tells what
    // it took may take its time.
    bool isAtRest(Clock::time_point now = Clock::now()) const;
    // Whether nothing was reported yet to what was last asked for.
    bool isAwaited() const noexcept { return awaitsAnswer_ && !heard_; }
    // Nor will it be: that was longer ago than a window manager needs.
    bool isUnanswered(Clock::time_point now = Clock::now()) const;
    // The window system reports one.
    Report reported(QPoint position, Clock::time_point now = Clock::now());
    // It was looked up, where nothing is awaited any longer.
    Report found(QPoint position, Clock::time_point now = Clock::now());

private:
    std::deque<QPoint> asked_; // not yet reported, oldest first
    Clock::time_point askedAt_{};
    std::uint64_t asks_ = 0;
    std::uint64_t took_ = 0;
    bool awaitsAnswer_ = false;
    bool heard_ = false; // something that may answer the last
};

} // namespace velmora::platform::qt
