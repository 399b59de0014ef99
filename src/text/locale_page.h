#pragma once

// Which code page the old texts of a country are in.

#include <string_view>

namespace velmora::platform {

// The legacy page of a locale's language, by the locale's name: 936 for every language that is not
// known to use another.
int legacyPageOf(std::string_view locale) noexcept;

} // namespace velmora::platform
