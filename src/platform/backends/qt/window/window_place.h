#pragma once

// Tells the echoes of our own moves from moves by the user or the window manager. The window system
// reports positions late: while a window is dragged, those reported are ones it has left already.

#include <QPoint>

#include <deque>
#include <optional>

namespace velmora::platform::qt {

class WindowPlace {
public:
    // We ask for a position.
    void asked(QPoint position);
    // The window system reports one. Absent: an echo; else where somebody else put the window.
    std::optional<QPoint> reported(QPoint position);

private:
    std::deque<QPoint> asked_; // not yet reported, oldest first
};

} // namespace velmora::platform::qt
