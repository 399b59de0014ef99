#pragma once

// The files of this machine that an address stands for.

#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform::bus {

// The path, as the program writes paths; none for an address that is no file here.
std::vector<std::u16string> openedFiles(std::string_view uri);

} // namespace velmora::platform::bus
