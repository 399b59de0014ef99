#pragma once

// Renaming that never replaces.

#include <string>

namespace velmora::platform {

// Gives a file another name, which nothing may have: whatever has it, a dangling link too, stays,
// and "file exists" is raised.
void renameToFreeName(const std::string &from, const std::string &to);

} // namespace velmora::platform
