#pragma once

// Values of INI files.

#include <optional>
#include <string>
#include <string_view>

namespace velmora {

namespace platform {
class Profiles;
}

// A value of at most 999 units, without NULs. A missing key and an empty value give the default,
// which is written into the file; without a default the result is empty, and an empty key is taken
// out of the file by having been read.
std::u16string iniValue(platform::Profiles &profiles, std::u16string_view file,
                        std::u16string_view section, std::u16string_view key,
                        std::optional<std::u16string_view> otherwise);

} // namespace velmora
