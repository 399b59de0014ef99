#pragma once

// On XWayland nobody tells where the pointer is while it is over foreign windows. A window that has
// slid out of sight above the screen's top edge could then never know that the pointer touches the
// edge over it: a strip of one pixel, seen by nobody, feels it.

#include "platform/backends/qt/window/hub.h"

#include <optional>

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

    Hub &hub_;
    bool active_;
    xcb_window_t sensor_ = XCB_WINDOW_NONE;
    QRect place_;
    bool touched_ = false;
};

} // namespace velmora::platform::qt
