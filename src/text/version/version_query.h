#pragma once

// Asks a version record in the Windows layout. A damaged record answers absence; nothing outside
// its bytes is ever read, and a query costs at most a few passes over them.

#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

// The name of the record's section in an ELF file.
inline constexpr char versionSection[] = ".velmora.version";

// The fixed part of 52 bytes: the query "\".
std::optional<std::string_view> versionFixedPart(std::string_view record);

// What a query's path leads to. Names compare without regard to case.
struct VersionValue {
    std::string_view bytes;
    bool text = false; // UTF-16, little-endian, without its terminator
};
std::optional<VersionValue> versionValue(std::string_view record, std::u16string_view query);

// The bytes of a text value as text.
std::u16string versionText(std::string_view bytes);

} // namespace velmora::platform
