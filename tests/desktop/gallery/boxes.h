#pragma once

// Pictures of what the toolkit draws for us: message boxes, menus, tips and the common dialogs.

#include "platform/backends/qt/system/qt_windows.h"
#include "velmora.h"

#include <QString>

namespace velmora {

// Shows each one, keeps FOLDER/box_<name>.png and closes it again. False when one did not appear.
bool keepBoxes(platform::QtWindowSystem &windows, Velmora &app, const QString &folder);

} // namespace velmora
