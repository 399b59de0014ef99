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
    EdgeSensor(Hub &hub, bool active);
    ~EdgeSensor();
    EdgeSensor(const EdgeSensor &) = delete;
    EdgeSensor &operator=(const EdgeSensor &) = delete;

    // The pointer as the program is to see it; `real` is what the server says.
    PointPixels pointer(PointPixels real);

private:
    const forms::Form *strip() const;
    void follow(const forms::Form &strip);
    void drop();
    void holdPointer(const forms::Form *strip, PointPixels pointer);
    static PointPixels onTheEdge(const forms::Form *strip, PointPixels real);

    Hub &hub_;
    bool active_;
    bool onGnome_;
    bool isTold_ = true; // of the last touch, however busy the program was since
    bool holds_ = false; // the pointer
    xcb_window_t sensor_ = XCB_WINDOW_NONE;
    QRect place_;
    std::chrono::steady_clock::time_point touched_{}; // when the pointer last came over it
};

} // namespace velmora::platform::qt
