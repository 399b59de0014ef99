#include "platform/forms/user_control.h"

#include "platform/forms/dispatch.h"
#include "platform/forms/form.h"
#include "platform/forms/host.h"

namespace velmora::forms {

double UserControl::scale() const noexcept {
    const FormWindow *window = form().window();
    return window != nullptr ? window->scaleFactor() : 1.0;
}

void UserControl::mouseDown(const MouseEvent &event) {
    if (events() != nullptr)
        raiseEvent(events()->MouseDown, event);
}

void UserControl::mouseMove(const MouseEvent &event) {
    if (events() != nullptr)
        raiseEvent(events()->MouseMove, event);
}

void UserControl::mouseUp(const MouseEvent &event) {
    if (events() != nullptr)
        raiseEvent(events()->MouseUp, event);
}

void UserControl::click() {
    if (events() != nullptr)
        raiseEvent(events()->Click);
}

void UserControl::keyDown(KeyEvent &event) {
    if (events() != nullptr)
        raiseEvent(events()->KeyDown, event);
}

void UserControl::move(const RectTwips &place) {
    const RectTwips before = this->place();
    Control::move(place);
    if (before.width != width() || before.height != height())
        resized();
}

bool UserControl::looksEnabled() const noexcept {
    for (const Control *control = this; control != nullptr;
         control = control->container().asControl())
        if (!control->enabled())
            return false;
    return true;
}

} // namespace velmora::forms
