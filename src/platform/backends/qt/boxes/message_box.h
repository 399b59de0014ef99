#pragma once

#include "platform/backends/qt/window/hub.h"

#include <QString>

namespace velmora::platform::qt {

// Shows the box and waits for its answer in a nested loop; no other window takes input meanwhile.
// The first button is the default. Y and N are keys in every language; Esc is Cancel where there is
// such a button, and OK in a box with one button; a forced close counts as Cancel, No or OK. A
// source is shown as the tip over the text, cut where it is long.
MsgBoxResult showMessageBox(Hub &hub, const QString &text, MsgBoxButtons buttons, MsgBoxIcon icon,
                            const QString &title, const QString &source);

} // namespace velmora::platform::qt
