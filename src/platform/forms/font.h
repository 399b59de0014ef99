#pragma once

// Fonts and colours of controls.

#include "base/geometry.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::forms {

// A font as it was asked for. The name stays the name asked for; which face draws it is the view's
// matter. Setting bold sets weight 700 or 400; setting weight makes bold true above 550; the last
// assignment wins. A size outside 1 to 2160 points is ignored. The character set is stored and
// copied and has no effect.
class Font {
public:
    Font() = default;
    Font(std::u16string_view name, float sizePoints, bool bold = false);

    const std::u16string &name() const noexcept { return name_; }
    float size() const noexcept { return size_; } // points
    bool bold() const noexcept { return bold_; }
    std::int32_t weight() const noexcept { return weight_; }
    bool italic() const noexcept { return italic_; }
    bool underline() const noexcept { return underline_; }
    bool strikethrough() const noexcept { return strikethrough_; }
    std::int32_t charset() const noexcept { return charset_; }

    void setName(std::u16string_view name) { name_ = name; }
    void setSize(float points) noexcept;
    void setBold(bool bold) noexcept;
    void setWeight(std::int32_t weight) noexcept;
    void setItalic(bool on) noexcept { italic_ = on; }
    void setUnderline(bool on) noexcept { underline_ = on; }
    void setStrikethrough(bool on) noexcept { strikethrough_ = on; }
    void setCharset(std::int32_t charset) noexcept { charset_ = charset; }

    friend bool operator==(const Font &, const Font &) = default;

private:
    std::u16string name_ = u"Arial";
    float size_ = 9;
    std::int32_t weight_ = 400;
    std::int32_t charset_ = 1;
    bool bold_ = false;
    bool italic_ = false;
    bool underline_ = false;
    bool strikethrough_ = false;
};

// A plain 0x00BBGGRR for any Colour: system colours (top bit set) come from a fixed palette, in
// which 0x8000000F, the face of buttons, is 0x00F0F0F0.
Colour plainColour(Colour colour) noexcept;

// The extent of a text in a font: the advance rounded up to whole logical pixels, times 15.
struct TextExtent {
    Twips width = 0;
    Twips height = 0;
};

} // namespace velmora::forms
