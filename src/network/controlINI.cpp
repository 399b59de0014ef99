#include "network/controlINI.h"

#include "platform/contracts/profiles.h"

#include <cstddef>

namespace velmora {

std::u16string iniValue(platform::Profiles &profiles, std::u16string_view file,
                        std::u16string_view section, std::u16string_view key,
                        std::optional<std::u16string_view> otherwise) {
    constexpr std::size_t bufferSize = 1000;
    std::u16string value = profiles.GetPrivateProfileStringA(section, key, u"", bufferSize, file);
    if (value.empty()) {
        profiles.WritePrivateProfileStringA(section, key, otherwise, file);
        return std::u16string(otherwise.value_or(u""));
    }
    std::erase(value, u'\0');
    return value;
}

} // namespace velmora
