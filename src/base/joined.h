#pragma once

// Texts put one behind the other.

#include <initializer_list>
#include <string>
#include <string_view>

namespace velmora {

// In place of what the text held, in the room that it had.
inline void join(std::u16string &text, std::initializer_list<std::u16string_view> parts) {
    text.clear();
    for (const std::u16string_view part : parts)
        text += part;
}

// With one allocation.
inline std::u16string joined(std::initializer_list<std::u16string_view> parts) {
    std::size_t size = 0;
    for (const std::u16string_view part : parts)
        size += part.size();
    std::u16string text;
    text.reserve(size);
    join(text, parts);
    return text;
}

} // namespace velmora
