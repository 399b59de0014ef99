// The routing of raw input to the controls of a form.

#include "platform/forms/dispatch.h"
#include "platform/forms/form.h"

#include <algorithm>

namespace velmora::forms {

namespace {

bool takesPointer(Kind kind) noexcept {
    return kind != Kind::Shape && kind != Kind::Line && kind != Kind::Timer && kind != Kind::Menu;
}

bool takesFocus(Kind kind) noexcept {
    return kind == Kind::ListBox || kind == Kind::TextBox || kind == Kind::CheckBox ||
           kind == Kind::OptionButton || kind == Kind::Custom;
}

// Lists, check boxes and options raise their clicks themselves, by the user* roads.
bool clicksByItself(Kind kind) noexcept {
    return kind == Kind::ListBox || kind == Kind::CheckBox || kind == Kind::OptionButton;
}

const Container *asContainer(const Control &control) noexcept {
    return dynamic_cast<const Container *>(&control);
}

bool inside(const RectTwips &place, PointTwips at) noexcept {
    return at.x >= place.left && at.y >= place.top && at.x < place.left + place.width &&
           at.y < place.top + place.height;
}

// `at` counts in the container's coordinates.
Control *topmostAt(const Container &container, PointTwips at) {
    const std::vector<Control *> &order = container.controls();
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        Control &control = **it;
        if (!control.visible() || !takesPointer(control.kind()) || !inside(control.place(), at)) {
            continue;
        }
        if (const Container *inner = asContainer(control)) {
            if (Control *found = topmostAt(*inner, {at.x - control.left(), at.y - control.top()})) {
                return found;
            }
        }
        return &control;
    }
    return nullptr;
}

Control *firstFocusable(const Container &container) {
    for (Control *control : container.controls()) {
        if (!control->visible() || !control->enabled()) {
            continue;
        }
        if (takesFocus(control->kind())) {
            return control;
        }
        if (const Container *inner = asContainer(*control)) {
            if (Control *found = firstFocusable(*inner)) {
                return found;
            }
        }
    }
    return nullptr;
}

} // namespace

Control *Form::controlAt(PointTwips at) const { return topmostAt(*this, at); }

// A disabled control passes what it gets to its container.
Control *Form::takerAt(PointTwips at) const {
    Control *control = controlAt(at);
    while (control != nullptr && !control->isLive()) {
        control = control->container().asControl();
    }
    return control;
}

void Form::deliver(std::function<void(const MouseEvent &)> ControlEvents::*which, Control *target,
                   PointTwips at, std::int16_t button, std::int16_t shift) {
    MouseEvent event{button, shift, at.x, at.y};
    const ControlEvents *events = events_.get();
    if (target != nullptr) {
        const RectTwips place = target->placeInForm();
        event.x -= place.left;
        event.y -= place.top;
        events = target->events();
    }
    if (events != nullptr) {
        raiseEvent(events->*which, event);
    }
}

void Form::pointerPressed(PointTwips at, std::int16_t button, std::int16_t shift) {
    if (!enabled_) {
        return;
    }
    if (heldButtons_ == 0) {
        captured_ = takerAt(at);
        formCaptured_ = captured_ == nullptr;
        clickSpent_ = false;
    }
    heldButtons_ = static_cast<std::int16_t>(heldButtons_ | button);
    if (captured_ != nullptr && takesFocus(captured_->kind()) &&
        captured_->kind() != Kind::Custom) {
        active_ = captured_;
    }
    deliver(&ControlEvents::MouseDown, captured_, at, button, shift);
}

void Form::pointerMoved(PointTwips at, std::int16_t buttons, std::int16_t shift) {
    if (!enabled_) {
        return;
    }
    Control *target = heldButtons_ != 0 ? captured_ : takerAt(at);
    if (heldButtons_ != 0 && target == nullptr && !formCaptured_) {
        return; // the control that took the press is gone
    }
    deliver(&ControlEvents::MouseMove, target, at, buttons, shift);
}

void Form::pointerReleased(PointTwips at, std::int16_t button, std::int16_t shift) {
    if ((heldButtons_ & button) == 0) {
        return; // the press went elsewhere, or the form was disabled then
    }
    heldButtons_ = static_cast<std::int16_t>(heldButtons_ & ~button);
    Control *const target = captured_;
    if (!enabled_ || (target == nullptr && !formCaptured_)) {
        return;
    }
    const bool click = button == leftButton && !clickSpent_ && target != nullptr &&
                       !clicksByItself(target->kind()) && inside(target->placeInForm(), at);
    deliver(&ControlEvents::MouseUp, target, at, button, shift);
    // The release's own handler may have disabled, hidden or ended what was pressed.
    if (click && captured_ == target && target->isLive() && target->events() != nullptr) {
        raiseEvent(target->events()->Click);
    } else if (button == leftButton && target == nullptr && !clickSpent_ && enabled_ && events_) {
        raiseEvent(events_->Click);
    }
}

void Form::pointerDoubleClicked(PointTwips at, std::int16_t button, std::int16_t shift) {
    if (!enabled_) {
        return;
    }
    Control *const target = takerAt(at);
    const ControlEvents *events = target != nullptr ? target->events() : events_.get();
    const bool wanted = events != nullptr && events->DblClick && button == leftButton &&
                        (target == nullptr || !clicksByItself(target->kind()));
    if (!wanted) {
        // Nobody tells it from a click: two quick presses are two presses.
        pointerPressed(at, button, shift);
        return;
    }
    captured_ = target;
    formCaptured_ = target == nullptr;
    clickSpent_ = true;
    heldButtons_ = static_cast<std::int16_t>(heldButtons_ | button);
    raiseEvent(events->DblClick);
}

void Form::pointerLeft() {
    if (enabled_ && heldButtons_ == 0) {
        captured_ = nullptr;
        formCaptured_ = false;
    }
}

// The active control, or the first that can take the focus when none was chosen yet.
Control *Form::keyTarget() const { return active_ != nullptr ? active_ : firstFocusable(*this); }

bool Form::keyPressed(std::int16_t keyCode, std::int16_t shift) {
    if (!enabled_) {
        return false;
    }
    KeyEvent event{keyCode, shift};
    const ControlEvents *events = events_.get();
    if (Control *target = keyTarget()) {
        if (!target->isLive()) {
            return false;
        }
        events = target->events();
    }
    if (events != nullptr) {
        raiseEvent(events->KeyDown, event);
    }
    return event.keyCode != 0;
}

void Form::keyReleased(std::int16_t keyCode, std::int16_t shift) {
    if (!enabled_) {
        return;
    }
    KeyEvent event{keyCode, shift};
    const ControlEvents *events = events_.get();
    if (Control *target = keyTarget()) {
        if (!target->isLive()) {
            return;
        }
        events = target->events();
    }
    if (events != nullptr) {
        raiseEvent(events->KeyUp, event);
    }
}

Form::PointerLook Form::pointerAt(PointTwips at) const {
    const Control *control = controlAt(at);
    if (control == nullptr || control->mousePointer() == pointerDefault || !control->isLive()) {
        return {mousePointer_, MouseIcon::None};
    }
    return {control->mousePointer(), control->mouseIcon()};
}

} // namespace velmora::forms
