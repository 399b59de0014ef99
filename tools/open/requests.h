#pragma once

// Does what the command line asks for.

#include "open/arguments.h"

namespace velmora::open_tool {

inline constexpr int done = 0;
inline constexpr int failed = 1;
inline constexpr int misused = 2;

// Answers the status of the process; what there is to say goes to standard output and error.
int perform(const Request &request);

} // namespace velmora::open_tool
