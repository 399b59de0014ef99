#pragma once

// The names that unfinished files have for a while, and the end of those that nobody finishes.

#include <string>

namespace velmora::platform {

// Different for each number and each process of a machine; hidden, and short, since the name that
// the file gets in the end may be as long as names can be.
std::string passingName(const std::string &folder, int number);

// Marks an open file as being written, for as long as it is open, against `clearUnfinished`.
void holdUnfinished(int file) noexcept;

// Removes the files with a passing name in a folder that no process writes any more: what was cut
// short by a power cut or by force. Where that cannot be told they stay.
void clearUnfinished(const std::string &folder);

} // namespace velmora::platform
