#pragma once

// On XWayland nobody tells where the pointer is while it is over foreign windows. A window that has
// slid out of sight above the screen's top edge could then never know that the pointer touches the
// edge over it: a strip of one pixel, seen by nobody, feels it. It is there only while the window
// is out of sight: clicks at the edge are others' at any other time.

#include "platform/backends/qt/window/hub.h"

#include <chrono>

namespace velmora::platform::qt {

class EdgeSensor {
public:
    // `active` is false where the server knows the pointer everywhere.
    EdgeSensor(Hub &hub, bool active) : hub_(hub), active_(active) {}
    ~EdgeSensor();
    EdgeSensor(const EdgeSensor &) = delete;
    EdgeSensor &operator=(const EdgeSensor &) = delete;

    // The pointer as the program is to see it; `real` is what the server says.
    PointPixels pointer(PointPixels real);

private:
    const forms::Form *strip() const;
    void follow(const forms::Form &strip);
    void drop();

    Hub &hub_;
    bool active_;
    xcb_window_t sensor_ = XCB_WINDOW_NONE;
    QRect place_;
    std::chrono::steady_clock::time_point touched_{}; // when the pointer last came over it
};

} // namespace velmora::platform::qt
