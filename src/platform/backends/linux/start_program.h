#pragma once

// Starts a program that lives on its own.

#include <string>
#include <vector>

namespace velmora::platform {

// The first text is the program, looked for along PATH when it holds no "/"; no shell reads any of
// them. The program gets its own session and default signals, and leaves no zombie when it ends.
// 0, or the error number of the failed start.
int startProgram(const std::vector<std::string> &arguments);

} // namespace velmora::platform
