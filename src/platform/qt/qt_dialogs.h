#pragma once

// The common dialogs on the toolkit's own, and the copy service with its question and progress.

#include "platform/ansi.h"
#include "platform/dialogs.h"
#include "platform/qt/qt_windows.h"

#include <memory>

namespace velmora::platform {

// Both must outlive the dialogs. `ansi` carries the names of fonts.
std::unique_ptr<Dialogs> makeQtDialogs(QtWindowSystem &windows, const AnsiText &ansi);

} // namespace velmora::platform
