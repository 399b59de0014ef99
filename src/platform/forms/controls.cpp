#include "platform/forms/controls.h"

#include "platform/forms/dispatch.h"
#include "platform/forms/form.h"
#include "platform/forms/host.h"

#include <algorithm>

namespace velmora::forms {

namespace {

// Stores a value and tells whether it is a new one.
template <typename Value, typename New> bool differs(Value &held, const New &value) {
    if (held == value) {
        return false;
    }
    held = value;
    return true;
}

} // namespace

void Label::setCaption(std::u16string_view caption) {
    const bool isNew = differs(caption_, caption);
    fit(isNew);
    if (isNew) {
        changed(Change::Look);
    }
}

void Label::setFont(const Font &font) {
    const bool isNew = differs(font_, font);
    fit(isNew);
    if (isNew) {
        changed(Change::Look);
    }
}

void Label::fit(bool measureAnew) {
    if (!autoSize_) {
        return;
    }
    if (measureAnew) {
        fitted_ = form().textExtent(caption_, font_);
    }
    move({left(), top(), fitted_.width, fitted_.height});
}

void Label::setForeColor(Colour colour) {
    if (differs(foreColor_, colour)) {
        changed(Change::Look);
    }
}

void Label::setBackColor(Colour colour) {
    if (differs(backColor_, colour)) {
        changed(Change::Look);
    }
}

void Label::setTransparent(bool transparent) {
    if (differs(transparent_, transparent)) {
        changed(Change::Look);
    }
}

void Label::setAlignment(Alignment alignment) {
    if (differs(alignment_, alignment)) {
        changed(Change::Look);
    }
}

void Label::setAutoSize(bool autoSize) {
    if (differs(autoSize_, autoSize)) {
        fit(true);
    }
}

void Label::setWordWrap(bool wordWrap) {
    if (differs(wordWrap_, wordWrap)) {
        changed(Change::Look);
    }
}

void Label::setRim(bool rim) {
    if (differs(rim_, rim)) {
        changed(Change::Look);
    }
}

std::u16string Label::accessibleName() const { return caption_.empty() ? toolTip() : caption_; }

void Image::setPicture(Picture picture) {
    if (differs(picture_, picture)) {
        changed(Change::Look);
    }
}

void Shape::setFillColor(Colour colour) {
    if (differs(fillColor_, colour)) {
        changed(Change::Look);
    }
}

void Shape::setPicture(Picture picture) {
    if (differs(picture_, picture)) {
        changed(Change::Look);
    }
}

void Line::setEnds(Twips x1, Twips y1, Twips x2, Twips y2) {
    if (x1_ == x1 && y1_ == y1 && x2_ == x2 && y2_ == y2) {
        return;
    }
    x1_ = x1;
    y1_ = y1;
    x2_ = x2;
    y2_ = y2;
    // The line's place is the rectangle around it, one pixel thick at least.
    const Twips left = std::min(x1, x2);
    const Twips top = std::min(y1, y2);
    const Twips width = std::max(x1, x2) - left;
    const Twips height = std::max(y1, y2) - top;
    const RectTwips around{left, top, width + twipsPerPixel, height + twipsPerPixel};
    if (around == place()) {
        changed(Change::Look);
    } else {
        move(around);
    }
}

void Line::setBorderColor(Colour colour) {
    if (differs(borderColor_, colour)) {
        changed(Change::Look);
    }
}

void PictureBox::setPicture(Picture picture) {
    if (differs(picture_, picture)) {
        changed(Change::Look);
    }
}

void PictureBox::setBackColor(Colour colour) {
    if (differs(backColor_, colour)) {
        changed(Change::Look);
    }
}

void PictureBox::setTransparent(bool transparent) {
    if (differs(transparent_, transparent)) {
        changed(Change::Look);
    }
}

std::uintptr_t PictureBox::hWnd() { return form().ensureWindow().pictureWindow(*this); }

void Frame::setCaption(std::u16string_view caption) {
    if (differs(caption_, caption)) {
        changed(Change::Look);
    }
}

void Frame::setFont(const Font &font) {
    if (differs(font_, font)) {
        changed(Change::Look);
    }
}

void TextBox::setText(std::u16string_view text) {
    if (differs(text_, text)) {
        changed(Change::Text);
    }
}

void TextBox::setLocked(bool locked) {
    if (differs(locked_, locked)) {
        changed(Change::Text);
    }
}

void TextBox::setMultiLine(bool multiLine) {
    if (differs(multiLine_, multiLine)) {
        changed(Change::Look);
    }
}

void TextBox::setFont(const Font &font) {
    if (differs(font_, font)) {
        changed(Change::Look);
    }
}

void TextBox::setForeColor(Colour colour) {
    if (differs(foreColor_, colour)) {
        changed(Change::Look);
    }
}

void TextBox::setBackColor(Colour colour) {
    if (differs(backColor_, colour)) {
        changed(Change::Look);
    }
}

void TextBox::userEdited(std::u16string_view text) {
    if (locked_ || !isLive() || !differs(text_, text)) {
        return;
    }
    if (events() != nullptr) {
        raiseEvent(events()->Change);
    }
}

void CheckBox::setValue(std::int16_t value) {
    if (value < 0 || value > 2) {
        raise(ErrorNumber::InvalidPropertyValue);
    }
    if (differs(value_, value)) {
        changed(Change::Look);
    }
}

void CheckBox::setCaption(std::u16string_view caption) {
    if (differs(caption_, caption)) {
        changed(Change::Look);
    }
}

void CheckBox::setFont(const Font &font) {
    if (differs(font_, font)) {
        changed(Change::Look);
    }
}

void CheckBox::userToggled() {
    if (!isLive()) {
        return;
    }
    setValue(value_ == 0 ? 1 : 0);
    if (events() != nullptr) {
        raiseEvent(events()->Click);
    }
}

void OptionButton::setValue(bool value) {
    if (!differs(value_, value)) {
        return;
    }
    changed(Change::Look);
    if (!value) {
        return;
    }
    for (Control *sibling : container().controls()) {
        if (sibling != this && sibling->kind() == Kind::OptionButton) {
            static_cast<OptionButton *>(sibling)->setValue(false);
        }
    }
}

void OptionButton::setCaption(std::u16string_view caption) {
    if (differs(caption_, caption)) {
        changed(Change::Look);
    }
}

void OptionButton::setFont(const Font &font) {
    if (differs(font_, font)) {
        changed(Change::Look);
    }
}

void OptionButton::userChose() {
    if (!isLive() || value_) {
        return;
    }
    setValue(true);
    if (events() != nullptr) {
        raiseEvent(events()->Click);
    }
}

} // namespace velmora::forms
