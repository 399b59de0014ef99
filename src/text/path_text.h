#pragma once

// Paths as texts: to and from the operating system's bytes, separators, parts.

#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

// The bytes of a name or path as the system knows it: UTF-8, and file-name units as their own byte.
std::string pathBytes(std::u16string_view path);

// The inverse. Bytes that are no UTF-8, and CR and LF, become file-name units.
std::u16string pathFromBytes(std::string_view bytes);

// "\" for a path with a drive letter or a leading "\\", else "/".
char16_t pathSeparatorOf(std::u16string_view path) noexcept;

// Behind and up to (including) the last separator of the path.
std::u16string_view baseName(std::u16string_view path) noexcept;
std::u16string_view folderPart(std::u16string_view path) noexcept;

// A folder as a person types it: "~" at the beginning, alone or before "/", stands for `home` where
// there is one.
std::u16string typedFolder(std::u16string_view text, std::u16string_view home);

// Every blank, double quote, "%", control and non-ASCII byte as %XX.
std::u16string shortPath(std::u16string_view path);

// The inverse: the name behind a short path. "%XX" is the byte XX, every other character must be
// printable ASCII and stands for itself. Absent for a text that no short path can be: empty, a "%"
// without two hexadecimal digits, a NUL byte, a character outside printable ASCII.
std::optional<std::string> decodeShortPath(std::u16string_view shortPath);

} // namespace velmora::platform
