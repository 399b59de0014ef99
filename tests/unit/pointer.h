#pragma once

// Clicks as the window hands them on: through the form, so that what is disabled, hidden or covered
// does nothing and a disabled form takes none.

#include "platform/forms/control.h"
#include "platform/forms/form.h"

namespace velmora {

// The left button, pressed and released in the middle of the control.
inline void clickOn(forms::Control &control) {
    using Kind = forms::Kind;
    if (control.kind() == Kind::CheckBox || control.kind() == Kind::OptionButton ||
        control.kind() == Kind::ListBox) {
        // The window's own part raises their clicks, where the control is live.
        if (control.isLive())
            control.on().Click();
        return;
    }
    const RectTwips place = control.placeInForm();
    const PointTwips middle{place.left + place.width / 2, place.top + place.height / 2};
    control.form().pointerPressed(middle, forms::leftButton, 0);
    control.form().pointerReleased(middle, forms::leftButton, 0);
}

} // namespace velmora
