#pragma once

// The system's errors as the program's.

#include <string>

namespace velmora::platform {

// The C library's description of an error number.
std::u16string errorText(int error);

// Raises RunTimeError for an error number of the C library, with its description.
[[noreturn]] void raiseSystemError(int error);

// Diagnostics: one line on standard error, with the program's name in front.
void complain(const std::string &text);

} // namespace velmora::platform
