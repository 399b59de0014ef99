#pragma once

// A flat progress bar with a caption in its middle. The bar inverts what is under it, so the part
// of the text that lies over the bar shows in the opposite colour.

#include "platform/forms/user_control.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

class zkProgress : public forms::UserControl {
public:
    using UserControl::UserControl;

    // Writing any of these does not repaint: the look changes at the next write of `value`.
    std::int32_t Max() const noexcept { return Max_; }
    void setMax(std::int32_t max) noexcept { Max_ = max; }
    std::int32_t Min() const noexcept { return Min_; }
    void setMin(std::int32_t min) noexcept { Min_ = min; }
    const std::u16string &Caption() const noexcept { return Caption_; }
    void setCaption(std::u16string_view caption);
    // 0 none, 1 the caption, 2 the percentage, any other both.
    std::int16_t CaptionStyle() const noexcept { return CaptionStyle_; }
    void setCaptionStyle(std::int16_t style) noexcept { CaptionStyle_ = style; }
    Colour FillColor() const noexcept { return FillColor_; }
    void setFillColor(Colour colour) noexcept { FillColor_ = colour; }
    Colour ForeColor() const noexcept { return ForeColor_; }
    void setForeColor(Colour colour) noexcept { ForeColor_ = colour; }
    Colour BackColor() const noexcept { return BackColor_; }
    void setBackColor(Colour colour) noexcept { BackColor_ = colour; }
    const forms::Font &CaptionFont() const noexcept { return font_; }
    void setCaptionFont(const forms::Font &font) { font_ = font; }

    // 0 flat, 1 with depth; kept for whoever asks: the bar is drawn flat.
    std::int16_t Appearance() const noexcept { return Appearance_; }
    void setAppearance(std::int16_t appearance) noexcept { Appearance_ = appearance; }
    // 0 none, 1 a line around the bar.
    std::int16_t BorderStyle() const noexcept { return BorderStyle_; }
    void setBorderStyle(std::int16_t style) noexcept { BorderStyle_ = style; }

    double value() const noexcept { return value_; }
    // Stores the value rounded and paints it as it is, held between Min and Max. Raises when Max
    // equals Min, with the bar and its text cleared, and beyond the range of what is stored.
    void setValue(double value);

    forms::CustomLook look() const override { return shownLook_; }
    std::u16string accessibleName() const override { return shownLook_.caption; }
    std::optional<double> progress() const override;

    // Repaints nothing by itself: the look is that of the last write of `value`.
    void Refresh() { refresh(); }

private:
    std::u16string textFor(double shown) const;

    forms::CustomLook shownLook_; // what the last write of `value` painted
    std::u16string Caption_;
    forms::Font font_;
    std::int32_t Max_ = 100;
    std::int32_t Min_ = 0;
    std::int32_t value_ = 0;
    Colour FillColor_ = 0xFF0000;
    Colour ForeColor_ = 0;
    Colour BackColor_ = 0x00FFFFFF;
    std::int16_t CaptionStyle_ = 2;
    std::int16_t Appearance_ = 0;
    std::int16_t BorderStyle_ = 1;
};

} // namespace velmora
