// The routing of raw input to the controls of a form.

#include "platform/forms/dispatch.h"
#include "platform/forms/form.h"
#include "platform/forms/host.h"
#include "platform/forms/keys.h"
#include "platform/forms/user_control.h"

#include <algorithm>
#include <cstdint>

namespace velmora::forms {

namespace {

// A place outside every control, for a leave that has no position.
constexpr PointTwips nowhere{-twipsPerPixel, -twipsPerPixel};

bool takesPointer(Kind kind) noexcept {
    return kind != Kind::Shape && kind != Kind::Line && kind != Kind::Timer && kind != Kind::Menu;
}

// What a click gives the focus, and what has it first. The program's own controls get it by Tab.
bool clickFocuses(Kind kind) noexcept {
    return kind == Kind::ListBox || kind == Kind::TextBox || kind == Kind::CheckBox ||
           kind == Kind::OptionButton;
}

// Lists, check boxes and options raise their clicks themselves, by the user* roads.
bool clicksByItself(Kind kind) noexcept {
    return kind == Kind::ListBox || kind == Kind::CheckBox || kind == Kind::OptionButton;
}

UserControl *asCustom(Control *control) noexcept {
    return control != nullptr && control->kind() == Kind::Custom
               ? static_cast<UserControl *>(control)
               : nullptr;
}

// A picture or label that Tab stops at is clicked by these.
bool isClickKey(const Control &control, std::int16_t keyCode) noexcept {
    return (control.kind() == Kind::Image || control.kind() == Kind::Label) &&
           control.takesFocus() && (keyCode == keyEnter || keyCode == keySpace);
}

const Container *asContainer(const Control &control) noexcept {
    return dynamic_cast<const Container *>(&control);
}

bool inside(const RectTwips &place, PointTwips at) noexcept {
    return at.x >= place.left && at.y >= place.top && at.x < place.left + place.width &&
           at.y < place.top + place.height;
}

bool overlap(const RectTwips &a, const RectTwips &b) noexcept {
    return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height &&
           b.top < a.top + a.height;
}

// `at` counts in the container's coordinates.
Control *topmostAt(const Container &container, PointTwips at) {
    const std::vector<Control *> &order = container.controls();
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        Control &control = **it;
        if (!control.visible() || !takesPointer(control.kind()) || !inside(control.place(), at))
            continue;
        if (const Container *inner = asContainer(control)) {
            if (Control *found = topmostAt(*inner, {at.x - control.left(), at.y - control.top()}))
                return found;
        }
        return &control;
    }
    return nullptr;
}

bool isPanel(const Control &control) noexcept {
    return control.kind() == Kind::PictureBox || control.kind() == Kind::Frame;
}

// A panel above the control or above what holds it; null when the control lies free.
Control *panelOver(const Control &control) {
    for (const Control *part = &control; part != nullptr; part = part->container().asControl()) {
        const std::vector<Control *> &order = part->container().controls();
        for (auto it = std::find(order.begin(), order.end(), part) + 1; it != order.end(); ++it)
            if (isPanel(**it) && (*it)->visible() &&
                overlap((*it)->placeInForm(), control.placeInForm()))
                return *it;
    }
    return nullptr;
}

// The controls that can take the focus now, in order.
template <typename Takes>
void collectFocusable(const Container &container, Takes takes, std::vector<Control *> &into) {
    for (Control *control : container.controls()) {
        if (!control->visible() || !control->enabled())
            continue;
        if (takes(*control) && panelOver(*control) == nullptr)
            into.push_back(control);
        if (const Container *inner = asContainer(*control))
            collectFocusable(*inner, takes, into);
    }
}

// Which handler stands for an event; null when there is none.
template <typename Handler>
const Handler *handlerOf(const ControlEvents *events, Handler ControlEvents::*which) {
    return events != nullptr ? &(events->*which) : nullptr;
}

template <typename Handler, typename... Arguments>
void raiseIfSet(const Handler *handler, Arguments &&...arguments) {
    if (handler != nullptr)
        raiseEvent(*handler, std::forward<Arguments>(arguments)...);
}

} // namespace

Control *Form::controlAt(PointTwips at) const { return takerAt(at); }

Control *Form::takerAt(PointTwips at) const {
    Control *control = topmostAt(*this, at);
    for (Control *outer = control; outer != nullptr; outer = outer->container().asControl())
        if (!outer->enabled())
            control = outer->container().asControl();
    return control;
}

void Form::deliver(PointerEvent what, Control *target, PointTwips at, std::int16_t button,
                   std::int16_t shift) {
    MouseEvent event{button, shift, at.x, at.y};
    if (target != nullptr) {
        const RectTwips place = target->placeInForm();
        event.x -= place.left;
        event.y -= place.top;
    }
    if (UserControl *custom = asCustom(target)) {
        switch (what) {
        case PointerEvent::Down:
            return custom->mouseDown(event);
        case PointerEvent::Move:
            return custom->mouseMove(event);
        case PointerEvent::Up:
            return custom->mouseUp(event);
        }
    }
    const auto handler = what == PointerEvent::Down   ? &ControlEvents::MouseDown
                         : what == PointerEvent::Move ? &ControlEvents::MouseMove
                                                      : &ControlEvents::MouseUp;
    raiseIfSet(handlerOf(target != nullptr ? target->events() : events_.get(), handler), event);
}

// The pointer is over this control now, no button held.
void Form::hoverAt(Control *control, PointTwips at, std::int16_t shift) {
    if (hovered_ != control)
        leaveHovered(at, shift);
}

void Form::leaveHovered(PointTwips at, std::int16_t shift) {
    Control *const left = std::exchange(hovered_, nullptr);
    if (left == nullptr || !left->isLive())
        return;
    const RectTwips place = left->placeInForm();
    // Something may lie over it where the pointer is now.
    const PointTwips outside =
        inside(place, at) ? PointTwips{place.left + nowhere.x, place.top + nowhere.y} : at;
    deliver(PointerEvent::Move, left, outside, 0, shift);
}

void Form::pointerPressed(PointTwips at, std::int16_t button, std::int16_t shift) {
    if (!enabled_)
        return;
    if (heldButtons_ == 0) {
        captured_ = takerAt(at);
        formCaptured_ = captured_ == nullptr;
        clickSpent_ = false;
    }
    heldButtons_ = static_cast<std::int16_t>(heldButtons_ | button);
    if (captured_ != nullptr && clickFocuses(captured_->kind()))
        active_ = captured_;
    if (captured_ != nullptr ? captured_->isLive() : formCaptured_)
        deliver(PointerEvent::Down, captured_, at, button, shift);
}

void Form::pointerMoved(PointTwips at, std::int16_t buttons, std::int16_t shift) {
    if (!enabled_) {
        leavePending_ = hovered_ != nullptr && takerAt(at) != hovered_;
        return;
    }
    if (buttons == 0 && heldButtons_ != 0)
        pointerLost(); // a box or menu took the release
    if (heldButtons_ != 0) {
        // The control that took the press may be gone, or disabled.
        if (captured_ != nullptr ? captured_->isLive() : formCaptured_)
            deliver(PointerEvent::Move, captured_, at, buttons, shift);
        return;
    }
    const Watch watch(*this);
    hoverAt(takerAt(at), at, shift);
    if (!watch || !enabled_)
        return;
    // The handler of the leave may have changed what lies here.
    Control *const target = takerAt(at);
    hovered_ = asCustom(target);
    deliver(PointerEvent::Move, target, at, buttons, shift);
}

void Form::pointerReleased(PointTwips at, std::int16_t button, std::int16_t shift) {
    if ((heldButtons_ & button) == 0)
        return; // the press went elsewhere, or the form was disabled then
    heldButtons_ = static_cast<std::int16_t>(heldButtons_ & ~button);
    Control *const target = captured_;
    const bool ours = target != nullptr || formCaptured_;
    if (heldButtons_ == 0)
        captured_ = nullptr;
    if (!ours)
        return;
    if (!enabled_) {
        if (heldButtons_ == 0)
            raiseIfSet(events_ != nullptr ? &events_->PressLost : nullptr);
        return;
    }
    const bool within = takerAt(at) == target && inside({0, 0, width(), height()}, at);
    const bool click = within && button == leftButton && !clickSpent_ &&
                       (target == nullptr || !clicksByItself(target->kind()));
    const bool leaves = heldButtons_ == 0 && !within && asCustom(target) != nullptr;
    const Watch formWatch(*this);
    std::optional<Watch> watch;
    if (target != nullptr)
        watch.emplace(*target);
    const auto alive = [&] { return formWatch && (!watch || *watch); };
    deliver(PointerEvent::Up, target, at, button, shift);
    if (click && alive() && enabled_ && (target == nullptr || target->isLive()))
        clickOn(target);
    if (leaves && alive() && enabled_) {
        hovered_ = target;
        leaveHovered(at, shift);
    }
}

void Form::clickOn(Control *target) {
    if (UserControl *custom = asCustom(target)) {
        custom->click();
        return;
    }
    raiseIfSet(
        handlerOf(target != nullptr ? target->events() : events_.get(), &ControlEvents::Click));
}

void Form::pointerDoubleClicked(PointTwips at, std::int16_t button, std::int16_t shift) {
    if (!enabled_)
        return;
    Control *const target = takerAt(at);
    const auto *handler =
        handlerOf(target != nullptr ? target->events() : events_.get(), &ControlEvents::DblClick);
    const bool wanted = handler != nullptr && *handler && button == leftButton &&
                        heldButtons_ == 0 && (target == nullptr || !clicksByItself(target->kind()));
    if (!wanted) {
        // Nobody tells it from a click: two quick presses are two presses.
        pointerPressed(at, button, shift);
        return;
    }
    captured_ = target;
    formCaptured_ = target == nullptr;
    clickSpent_ = true;
    heldButtons_ = button;
    raiseEvent(*handler);
}

void Form::pointerLost() {
    const bool wasHeld = std::exchange(heldButtons_, std::int16_t{0}) != 0;
    // The pointer may be anywhere now; the next move or leave tells a button that held the press.
    if (asCustom(captured_) != nullptr)
        hovered_ = captured_;
    captured_ = nullptr;
    if (wasHeld)
        raiseIfSet(events_ != nullptr ? &events_->PressLost : nullptr);
}

void Form::pointerLeft() {
    if (!enabled_)
        leavePending_ = hovered_ != nullptr;
    else if (heldButtons_ == 0)
        leaveHovered(nowhere, 0);
}

// The active control; the first that can take the focus when none was chosen or it is hidden.
Control *Form::keyTarget() const {
    if (active_ != nullptr && active_->isShown())
        return active_;
    std::vector<Control *> order;
    collectFocusable(
        *this, [](Control &control) { return clickFocuses(control.kind()); }, order);
    return order.empty() ? nullptr : order.front();
}

bool Form::keyPressed(std::int16_t keyCode, std::int16_t shift) {
    if (!enabled_)
        return false;
    KeyEvent event{keyCode, shift};
    Control *target = keyTarget();
    Control *const panel = target != nullptr ? panelOver(*target) : nullptr;
    if (panel != nullptr)
        target = panel;
    if (target != nullptr && !target->isLive())
        return false;
    const Watch watch(*this);
    if (UserControl *custom = asCustom(target)) {
        custom->keyDown(event);
    } else {
        raiseIfSet(handlerOf(target != nullptr ? target->events() : events_.get(),
                             &ControlEvents::KeyDown),
                   event);
        if (watch && enabled_ && target != nullptr && isClickKey(*target, event.keyCode)) {
            event.keyCode = 0;
            clickOn(target);
        }
    }
    return event.keyCode != 0 && panel == nullptr && static_cast<bool>(watch);
}

void Form::keyReleased(std::int16_t keyCode, std::int16_t shift) {
    if (!enabled_)
        return;
    KeyEvent event{keyCode, shift};
    Control *target = keyTarget();
    if (Control *panel = target != nullptr ? panelOver(*target) : nullptr)
        target = panel;
    if (target == nullptr || target->isLive()) {
        raiseIfSet(
            handlerOf(target != nullptr ? target->events() : events_.get(), &ControlEvents::KeyUp),
            event);
    }
}

bool Form::isCovered(const Control &control) const { return panelOver(control) != nullptr; }

Control *Form::nextFocus(bool backwards) const {
    std::vector<Control *> order;
    collectFocusable(
        *this, [](const Control &control) { return control.takesFocus(); }, order);
    if (!enabled_ || order.empty())
        return nullptr;
    if (backwards)
        std::reverse(order.begin(), order.end());
    const auto present = std::find(order.begin(), order.end(), active_);
    const bool wraps = present == order.end() || present + 1 == order.end();
    return wraps ? order.front() : *(present + 1);
}

bool Form::focusNext(bool backwards) {
    Control *const next = nextFocus(backwards);
    if (next != nullptr)
        setFocus(next);
    return next != nullptr;
}

// A control disabled and enabled again gets back the focus that it had, and so does what is in it.
void Form::focusInside(const Control &control) {
    if (active_ == nullptr || !active_->isLive() || !active_->isShown())
        return;
    for (const Control *inner = active_; inner != nullptr; inner = inner->container().asControl()) {
        if (inner == &control) {
            window_->focus(active_);
            return;
        }
    }
}

// A panel that goes hands back the focus that it took.
void Form::focusBelow(const Control &panel) {
    const bool below = active_ != nullptr && active_->isLive() && active_->isShown() &&
                       isPanel(panel) && overlap(panel.placeInForm(), active_->placeInForm());
    if (below && !isCovered(*active_))
        window_->focus(active_);
}

Form::PointerLook Form::pointerAt(PointTwips at) const {
    const Control *control = topmostAt(*this, at);
    if (control == nullptr || control->mousePointer() == pointerDefault || !control->isLive())
        return {mousePointer_, MouseIcon::None};
    return {control->mousePointer(), control->mouseIcon()};
}

} // namespace velmora::forms
