#pragma once

// The common dialogs on the toolkit's own, and the copy service with its question and progress.

#include "platform/backends/linux/file_calls.h"
#include "platform/backends/qt/system/qt_windows.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/dialogs.h"

#include <memory>
#include <string_view>

namespace velmora::platform {

class ToolkitDialogs : public Dialogs {
public:
    // The question of the dialog for a name to save under, for another one that does not ask.
    virtual bool mayReplace(std::u16string_view path, std::u16string_view title) = 0;
};

// `windows` and `ansi`, which carries the names of fonts, must outlive the dialogs. `calls` write
// what is copied.
std::unique_ptr<ToolkitDialogs> makeQtDialogs(QtWindowSystem &windows, const AnsiText &ansi,
                                              FileCalls calls = {});

} // namespace velmora::platform
