#pragma once

// What a list of addresses that was dropped on a window means as files.

#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform::qt {

// The paths, as bytes, of the local "file:" addresses of a text/uri-list, in their order. "%XX" is
// that byte, whatever it is, but for NUL, which no path holds; other addresses are left out.
std::vector<std::string> localPaths(std::string_view uriList);

} // namespace velmora::platform::qt
