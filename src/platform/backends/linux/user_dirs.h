#pragma once

// The user's folders as the desktop names them, out of the text of "user-dirs.dirs".

#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

// The folder of a name such as "DOCUMENTS": absolute, or below `home` where the text says "$HOME".
// The last line of that name counts; relative folders and other lines are passed over. Absent when
// the text does not tell.
std::optional<std::string> userDir(std::string_view text, std::string_view name,
                                   const std::string &home);

} // namespace velmora::platform
