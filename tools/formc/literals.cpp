#include "literals.h"

#include <array>
#include <cstdio>

namespace velmora::formc {

namespace {

void appendUnit(std::string &literal, char16_t unit) {
    constexpr char16_t firstGraphic = 0x20;
    constexpr char16_t firstBeyondAscii = 0x7F;
    std::array<char, 8> text{};
    if (unit == u'"' || unit == u'\\') {
        literal += '\\';
        literal += static_cast<char>(unit);
    } else if (unit < firstGraphic || unit == firstBeyondAscii) {
        std::snprintf(text.data(), text.size(), "\\%03o", static_cast<unsigned>(unit));
        literal += text.data();
    } else if (unit < firstBeyondAscii) {
        literal += static_cast<char>(unit);
    } else {
        std::snprintf(text.data(), text.size(), "\\x%04X", static_cast<unsigned>(unit));
        literal += text.data();
        literal += "\" u\""; // ends the escape ahead of a digit that follows
    }
}

} // namespace

std::string literal(std::u16string_view text) {
    std::string result = "u\"";
    for (const char16_t unit : text)
        appendUnit(result, unit);
    return result + "\"";
}

} // namespace velmora::formc
