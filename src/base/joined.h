#pragma once

// Texts put one behind the other.

#include <initializer_list>
#include <string>
#include <string_view>

namespace velmora {

// With one allocation: a transfer says how far it is at every kilobyte.
inline std::u16string joined(std::initializer_list<std::u16string_view> parts) {
    std::size_t size = 0;
    for (const std::u16string_view part : parts)
        size += part.size();
    std::u16string text;
    text.reserve(size);
    for (const std::u16string_view part : parts)
        text += part;
    return text;
}

} // namespace velmora
