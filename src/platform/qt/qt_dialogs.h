#pragma once

// The common dialogs on the toolkit's own, and the copy service with its question and progress.

#include "platform/ansi.h"
#include "platform/dialogs.h"
#include "platform/linux/file_calls.h"
#include "platform/qt/qt_windows.h"

#include <memory>

namespace velmora::platform {

// `windows` and `ansi`, which carries the names of fonts, must outlive the dialogs. `calls` write
// what is copied.
std::unique_ptr<Dialogs> makeQtDialogs(QtWindowSystem &windows, const AnsiText &ansi,
                                       FileCalls calls = {});

} // namespace velmora::platform
