#pragma once

// The kinds of control. See control.h for what they share, listbox.h, timer.h and menu.h for the
// three that are larger.

#include "platform/forms/control.h"
#include "platform/forms/font.h"
#include "platform/forms/picture.h"

#include <optional>

namespace velmora::forms {

enum class Alignment : std::uint8_t { Left = 0, Right = 1, Centre = 2 };

// A line or block of text. With `autoSize`, writing a caption (even the
// same) or the font fits width and height to the text and keeps Left and Top; a size written
// afterwards holds until the next caption or font. The same caption on a label that fits costs
// nothing, and as long as the form has no window a text is measured when its size is read: most
// captions of a design give way to another language before anybody sees them. Not auto-sized labels
// clip, or wrap when `wordWrap` is set.
class Label : public Control {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::Label; }

    const std::u16string &caption() const noexcept { return caption_; }
    void setCaption(std::u16string_view caption);
    const Font &font() const noexcept { return font_; }
    void setFont(const Font &font);
    Colour foreColor() const noexcept { return foreColor_; }
    void setForeColor(Colour colour) { set(foreColor_, colour, Change::Look); }
    Colour backColor() const noexcept { return backColor_; }
    void setBackColor(Colour colour) { set(backColor_, colour, Change::Look); }
    bool transparent() const noexcept { return transparent_; }
    void setTransparent(bool transparent) { set(transparent_, transparent, Change::Look); }
    Alignment alignment() const noexcept { return alignment_; }
    void setAlignment(Alignment alignment) { set(alignment_, alignment, Change::Look); }
    bool autoSize() const noexcept { return autoSize_; }
    void setAutoSize(bool autoSize);
    bool wordWrap() const noexcept { return wordWrap_; }
    void setWordWrap(bool wordWrap) { set(wordWrap_, wordWrap, Change::Look); }
    // A dark rim around the letters, so that they read on any ground (the desktop lyric).
    bool rim() const noexcept { return rim_; }
    void setRim(bool rim) { set(rim_, rim, Change::Look); }

    std::u16string accessibleName() const override;

private:
    void fit(bool measureAnew);
    TextExtent owedSize() const override;

    std::u16string caption_;
    mutable std::optional<TextExtent> fitted_; // of the caption in the font, while auto-sized
    Font font_;
    Colour foreColor_ = 0;
    Colour backColor_ = 0x00FFFFFF;
    Alignment alignment_ = Alignment::Left;
    bool transparent_ = true;
    bool autoSize_ = false;
    bool wordWrap_ = false;
    bool rim_ = false;
};

// A picture drawn over the control's rectangle.
class Image : public Control {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::Image; }
    Picture picture() const noexcept { return picture_; }
    void setPicture(Picture picture) { set(picture_, picture, Change::Look); }

private:
    Picture picture_ = Picture::None;
};

// A flat rectangle, or a picture stretched over it. Clicks go through to what lies behind.
class Shape : public Control {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::Shape; }
    Colour fillColor() const noexcept { return fillColor_; }
    void setFillColor(Colour colour) { set(fillColor_, colour, Change::Look); }
    Picture picture() const noexcept { return picture_; }
    void setPicture(Picture picture) { set(picture_, picture, Change::Look); }

private:
    Colour fillColor_ = 0;
    Picture picture_ = Picture::None;
};

// A line of one pixel between two points of the container. Clicks go through.
class Line : public Control {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::Line; }
    Twips x1() const noexcept { return x1_; }
    Twips y1() const noexcept { return y1_; }
    Twips x2() const noexcept { return x2_; }
    Twips y2() const noexcept { return y2_; }
    void setEnds(Twips x1, Twips y1, Twips x2, Twips y2);
    Colour borderColor() const noexcept { return borderColor_; }
    void setBorderColor(Colour colour) { set(borderColor_, colour, Change::Look); }

private:
    Twips x1_ = 0;
    Twips y1_ = 0;
    Twips x2_ = 0;
    Twips y2_ = 0;
    Colour borderColor_ = 0;
};

// A rectangle with controls of its own, clipped to it.
class PictureBox : public Control, public Container {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::PictureBox; }
    Form &containerForm() noexcept override { return form(); }
    Control *asControl() noexcept override { return this; }

    Picture picture() const noexcept { return picture_; }
    void setPicture(Picture picture) { set(picture_, picture, Change::Look); }
    Colour backColor() const noexcept { return backColor_; }
    void setBackColor(Colour colour) { set(backColor_, colour, Change::Look); }
    bool transparent() const noexcept { return transparent_; }
    void setTransparent(bool transparent) { set(transparent_, transparent, Change::Look); }

    // The inner size in twips.
    Twips scaleWidth() const noexcept { return width(); }
    Twips scaleHeight() const noexcept { return height(); }

    // The number of the picture's own native window, made on demand even while the form is hidden;
    // 0 where the window system cannot.
    std::uintptr_t hWnd();

private:
    Colour backColor_ = 0;
    Picture picture_ = Picture::None;
    bool transparent_ = false;
};

// A captioned group of controls.
class Frame : public Control, public Container {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::Frame; }
    Form &containerForm() noexcept override { return form(); }
    Control *asControl() noexcept override { return this; }
    const std::u16string &caption() const noexcept { return caption_; }
    void setCaption(std::u16string_view caption) { set(caption_, caption, Change::Look); }
    const Font &font() const noexcept { return font_; }
    void setFont(const Font &font) { set(font_, font, Change::Look); }
    std::u16string accessibleName() const override { return caption_; }

private:
    std::u16string caption_;
    Font font_;
};

// One or several lines of editable text. `Change` is raised for the user's edits only.
class TextBox : public Control {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::TextBox; }
    bool takesFocus() const noexcept override { return true; }
    const std::u16string &text() const noexcept { return text_; }
    void setText(std::u16string_view text) { set(text_, text, Change::Text); }
    bool locked() const noexcept { return locked_; }
    void setLocked(bool locked) { set(locked_, locked, Change::Text); }
    bool multiLine() const noexcept { return multiLine_; }
    void setMultiLine(bool multiLine) { set(multiLine_, multiLine, Change::Look); }
    const Font &font() const noexcept { return font_; }
    void setFont(const Font &font) { set(font_, font, Change::Look); }
    Colour foreColor() const noexcept { return foreColor_; }
    void setForeColor(Colour colour) { set(foreColor_, colour, Change::Look); }
    Colour backColor() const noexcept { return backColor_; }
    void setBackColor(Colour colour) { set(backColor_, colour, Change::Look); }

    // The view's road for the user's edit: stores the text, then raises Change.
    void userEdited(std::u16string_view text);

private:
    std::u16string text_;
    Font font_;
    Colour foreColor_ = 0;
    Colour backColor_ = 0x00FFFFFF;
    bool locked_ = false;
    bool multiLine_ = false;
};

// A box with the values 0 and 1; 2 (grey) by code only. Code raises no event; the user toggles
// between 0 and 1 and raises Click.
class CheckBox : public Control {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::CheckBox; }
    bool takesFocus() const noexcept override { return true; }
    std::int16_t value() const noexcept { return value_; }
    void setValue(std::int16_t value);
    const std::u16string &caption() const noexcept { return caption_; }
    void setCaption(std::u16string_view caption) { set(caption_, caption, Change::Look); }
    const Font &font() const noexcept { return font_; }
    void setFont(const Font &font) { set(font_, font, Change::Look); }
    std::u16string accessibleName() const override { return caption_; }

    void userToggled();

private:
    std::u16string caption_;
    Font font_;
    std::int16_t value_ = 0;
};

// One of several in its container: setting one true clears the others.
class OptionButton : public Control {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::OptionButton; }
    bool takesFocus() const noexcept override { return true; }
    bool value() const noexcept { return value_; }
    void setValue(bool value);
    const std::u16string &caption() const noexcept { return caption_; }
    void setCaption(std::u16string_view caption) { set(caption_, caption, Change::Look); }
    const Font &font() const noexcept { return font_; }
    void setFont(const Font &font) { set(font_, font, Change::Look); }
    std::u16string accessibleName() const override { return caption_; }

    void userChose();

private:
    std::u16string caption_;
    Font font_;
    bool value_ = false;
};

} // namespace velmora::forms
