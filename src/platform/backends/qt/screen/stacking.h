#pragma once

// The order of the windows on the screen.

#include "platform/backends/qt/screen/x11.h"

#include <set>

namespace velmora::platform::qt {

// Puts a window that no manager has above all that the manager has, and no higher: what somebody
// else laid over everything (a menu, a locker of the screen) stays there, and so do managed windows
// of ours from `spared` on. `others` that no manager has count as if one had them. Where no manager
// tells of its windows it goes above all.
void raiseAboveManaged(X11 &x11, xcb_window_t window, xcb_window_t spared,
                       const std::set<xcb_window_t> &others = {});

} // namespace velmora::platform::qt
