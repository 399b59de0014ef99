#pragma once

// Renaming that never replaces.

#include "platform/backends/linux/file_calls.h"

#include <string>

namespace velmora::platform {

// Gives a file another name, which nothing may have: whatever has it, a dangling link too, stays,
// and "file exists" is raised. Where the file system knows neither such a rename nor second names,
// it is looked whether the name is free, and then renamed.
void renameToFreeName(const std::string &from, const std::string &to, const FileCalls &calls = {});

} // namespace velmora::platform
