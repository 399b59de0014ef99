#pragma once

// What assistive technology learns of a window: every painted control that says or does something,
// with its name, role and place, and the rows of a list. Made only once somebody asks.

#include <QAccessibleInterface>

namespace velmora::platform::qt {

// To be called once, after the application object was made.
void installAccessibility();

} // namespace velmora::platform::qt
