#pragma once

// The signs of ASCII that formats are made of, whatever the locale: letters, hexadecimal digits,
// bytes written "%XX".

#include <cstddef>
#include <string>
#include <string_view>

namespace velmora {

// Letters other than those of ASCII stay.
constexpr char lowerAscii(char byte) noexcept {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}
std::string lowerAscii(std::string_view text);

// The value of a hexadecimal digit of either case; -1 for anything else.
template <typename Unit> constexpr int hexValue(Unit unit) noexcept {
    if (unit >= '0' && unit <= '9')
        return unit - '0';
    if (unit >= 'A' && unit <= 'F')
        return unit - 'A' + 10;
    if (unit >= 'a' && unit <= 'f')
        return unit - 'a' + 10;
    return -1;
}

// The digit, in capitals, of the value's lowest four bits.
constexpr char hexDigit(unsigned value) noexcept { return "0123456789ABCDEF"[value & 15U]; }

// Appends "%XX".
template <typename Text> void addEscaped(Text &text, char byte) {
    const unsigned value = static_cast<unsigned char>(byte);
    for (const char sign : {'%', hexDigit(value >> 4U), hexDigit(value)})
        text += static_cast<typename Text::value_type>(sign);
}

// The byte whose "%XX" stands at a place of the text; -1 where none does.
template <typename Unit>
constexpr int escapedByte(std::basic_string_view<Unit> text, std::size_t at) noexcept {
    if (at + 2 >= text.size() || text[at] != '%')
        return -1;
    const int high = hexValue(text[at + 1]);
    const int low = hexValue(text[at + 2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

// With each "%XX" undone, once; a "%" without two digits behind it stays.
std::string unescaped(std::string_view text);

} // namespace velmora
