#pragma once

// The system's copy of one file, with its question and its progress.

#include "platform/backends/linux/file_copy.h"
#include "platform/backends/qt/system/qt_windows.h"

#include <string_view>

namespace velmora::platform::qt {

// Copies `source` into `folder` under its own name: into a file without a name there (a passing one
// where the file system knows no such files), which gets its name when it is complete, with the
// source's time stamp and mode. Asks before it overwrites, also what came there meanwhile; an error
// is told in a box of its own. Nothing half done stays behind. Handles events between the pieces.
CopyOutcome copyIntoFolder(QtWindowSystem &windows, std::u16string_view source,
                           std::u16string_view folder, const FileCalls &calls = {});

} // namespace velmora::platform::qt
