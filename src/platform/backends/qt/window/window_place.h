#pragma once

// Tells the echoes of our own moves from moves by the user or the window manager. The window system
// reports positions late: while a window is dragged, those reported are ones it has left already.

#include <QPoint>

#include <chrono>
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
    // Whether nothing was asked for lately: what is reported then answers the last that was.
    bool isAtRest(Clock::time_point now = Clock::now()) const;
    // The window system reports one.
    Report reported(QPoint position, Clock::time_point now = Clock::now());

private:
    std::deque<QPoint> asked_; // not yet reported, oldest first
    Clock::time_point askedAt_{};
    bool awaitsAnswer_ = false;
};

} // namespace velmora::platform::qt
