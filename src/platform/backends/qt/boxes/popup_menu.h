#pragma once

#include "platform/backends/qt/window/hub.h"
#include "platform/forms/menu.h"

namespace velmora::platform::qt {

// Shows the menu at the pointer, or where the hub says, waits in a nested loop until it has gone,
// and raises the click of the entry that was chosen.
void showPopupMenu(Hub &hub, forms::Menu &menu);

} // namespace velmora::platform::qt
