#pragma once

// The common dialogs on the toolkit's own, and the copy service with its question and progress.

#include "platform/backends/linux/file_calls.h"
#include "platform/backends/qt/system/qt_windows.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/dialogs.h"

#include <memory>

namespace velmora::platform {

// `windows` and `ansi`, which carries the names of fonts, must outlive the dialogs. `calls` write
// what is copied.
std::unique_ptr<Dialogs> makeQtDialogs(QtWindowSystem &windows, const AnsiText &ansi,
                                       FileCalls calls = {});

} // namespace velmora::platform
