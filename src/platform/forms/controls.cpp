#include "platform/forms/controls.h"

#include "platform/forms/dispatch.h"
#include "platform/forms/form.h"
#include "platform/forms/host.h"

#include <algorithm>

namespace velmora::forms {

void Label::setCaption(std::u16string_view caption) {
    const bool isNew = differs(caption_, caption);
    fit(isNew);
    if (isNew)
        changed(Change::Look);
}

void Label::setFont(const Font &font) {
    const bool isNew = differs(font_, font);
    fit(isNew);
    if (isNew)
        changed(Change::Look);
}

void Label::fit(bool measureAnew) {
    if (!autoSize_)
        return;
    if (measureAnew)
        fitted_.reset();
    if (mayOweSize()) {
        oweSize();
        return;
    }
    const TextExtent size = owedSize();
    move({left(), top(), size.width, size.height});
}

TextExtent Label::owedSize() const {
    if (!fitted_)
        fitted_ = form().textExtent(caption_, font_);
    return *fitted_;
}

void Label::setAutoSize(bool autoSize) {
    place(); // from here on what is owed would be another text's
    if (differs(autoSize_, autoSize))
        fit(true);
}

std::u16string Label::accessibleName() const { return caption_.empty() ? toolTip() : caption_; }

void Line::setEnds(Twips x1, Twips y1, Twips x2, Twips y2) {
    if (x1_ == x1 && y1_ == y1 && x2_ == x2 && y2_ == y2)
        return;
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
    if (around == place())
        changed(Change::Look);
    else
        move(around);
}

std::uintptr_t PictureBox::hWnd() { return form().ensureWindow().pictureWindow(*this); }

void TextBox::userEdited(std::u16string_view text) {
    if (locked_ || !isLive() || !differs(text_, text))
        return;
    if (events() != nullptr)
        raiseEvent(events()->Change);
}

void CheckBox::setValue(std::int16_t value) {
    if (value < 0 || value > 2)
        raise(ErrorNumber::InvalidPropertyValue);
    set(value_, value, Change::Look);
}

void CheckBox::userToggled() {
    if (!isLive())
        return;
    setValue(value_ == 0 ? 1 : 0);
    if (events() != nullptr)
        raiseEvent(events()->Click);
}

void OptionButton::setValue(bool value) {
    if (!differs(value_, value))
        return;
    changed(Change::Look);
    if (!value)
        return;
    for (Control *sibling : container().controls())
        if (sibling != this && sibling->kind() == Kind::OptionButton)
            static_cast<OptionButton *>(sibling)->setValue(false);
}

void OptionButton::userChose() {
    if (!isLive() || value_)
        return;
    setValue(true);
    if (events() != nullptr)
        raiseEvent(events()->Click);
}

} // namespace velmora::forms
