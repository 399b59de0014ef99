#pragma once

// Addresses of files, as desktops hand them over.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

// The path, as bytes, of a "file:" address of this machine, which may name it as the host. "%XX" is
// that byte, whatever it is, but for NUL, which no path holds. Absent for every other address.
std::optional<std::string> localPath(std::string_view uri, std::string_view thisHost);

// Of all such addresses of a text/uri-list, in their order; others are left out.
std::vector<std::string> localPaths(std::string_view uriList, std::string_view thisHost);

} // namespace velmora::platform
