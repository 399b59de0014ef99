#include "platform/forms/font.h"

#include <array>

namespace velmora::forms {

Font::Font(std::u16string_view name, float sizePoints, bool bold) : name_(name) {
    setSize(sizePoints);
    setBold(bold);
}

void Font::setSize(float points) noexcept {
    if (points >= 1 && points <= 2160)
        size_ = points;
}

void Font::setBold(bool bold) noexcept {
    bold_ = bold;
    weight_ = bold ? 700 : 400;
}

void Font::setWeight(std::int32_t weight) noexcept {
    weight_ = weight;
    bold_ = weight > 550;
}

Colour plainColour(Colour colour) noexcept {
    if ((colour & 0x80000000U) == 0)
        return colour & 0x00FFFFFFU;
    // The system colours by their index, as the design's platform had them; index 15 is the face of
    // buttons.
    constexpr std::array<Colour, 25> system = {
        0x00C8C8C8, 0x00000000, 0x00D1B499, 0x00DBCDBF, 0x00F0F0F0, 0x00FFFFFF, 0x00646464,
        0x00000000, 0x00000000, 0x00000000, 0x00B4B4B4, 0x00FCF7F4, 0x00ABABAB, 0x00FF9933,
        0x00FFFFFF, 0x00F0F0F0, 0x00A0A0A0, 0x006D6D6D, 0x00000000, 0x00544E43, 0x00FFFFFF,
        0x00696969, 0x00E3E3E3, 0x00000000, 0x00E1FFFF,
    };
    const Colour index = colour & 0x7FFFFFFFU;
    return index < system.size() ? system[index] : 0x00000000;
}

} // namespace velmora::forms
