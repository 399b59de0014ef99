#include "platform/forms/form.h"

#include "platform/forms/dispatch.h"
#include "platform/forms/host.h"
#include "platform/forms/user_control.h"

#include <cmath>

namespace velmora::forms {

Form::Form(Host &host, const char *name) : host_(host), name_(name), hWnd_(host.formMade(*this)) {}

Form::~Form() {
    for (Watch *watch = watches_; watch != nullptr; watch = watch->outer_) {
        watch->gone_ = true;
        watch->form_ = nullptr;
    }
    window_.reset();
    host_.formGone(*this);
}

Watch::Watch(const Control &control) noexcept
    : form_(&control.form()), control_(&control), outer_(form_->watches_) {
    form_->watches_ = this;
}

Watch::Watch(Form &form) noexcept : form_(&form), control_(nullptr), outer_(form.watches_) {
    form_->watches_ = this;
}

Watch::~Watch() {
    if (form_ != nullptr)
        form_->watches_ = outer_;
}

void Form::setLeft(Twips left) { move({left, place_.top, place_.width, place_.height}); }
void Form::setTop(Twips top) { move({place_.left, top, place_.width, place_.height}); }
void Form::setWidth(Twips width) { move({place_.left, place_.top, width, place_.height}); }
void Form::setHeight(Twips height) { move({place_.left, place_.top, place_.width, height}); }

void Form::move(const RectTwips &wanted) {
    const RectTwips place = checkedPlace(wanted);
    if (place == place_)
        return;
    const RectTwips before = place_;
    startCentred_ = startCentred_ && place.left == before.left && place.top == before.top;
    place_ = place;
    placeChanged(before);
}

void Form::setStartCentred(bool centred) {
    if (!centred) {
        startCentred_ = false;
        return;
    }
    RectPixels area;
    RectTwips place = place_;
    if (host_.workArea(area)) {
        place.left = static_cast<Twips>(area.left + area.right) * twipsPerPixel / 2;
        place.top = static_cast<Twips>(area.top + area.bottom) * twipsPerPixel / 2;
    } else {
        place.left = host_.screenWidth() / 2;
        place.top = host_.screenHeight() / 2;
    }
    const auto wholePixels = [](Twips twips) {
        return std::round(twips / twipsPerPixel) * twipsPerPixel;
    };
    place.left = wholePixels(place.left - place.width / 2);
    place.top = wholePixels(place.top - place.height / 2);
    move(place);
    startCentred_ = true;
}

void Form::show() {
    if (visible_)
        raise();
    else
        setVisible(true);
}
void Form::hide() { setVisible(false); }

void Form::setVisible(bool visible) {
    if (visible == visible_)
        return;
    if (visible)
        ensureWindow();
    visible_ = visible;
    formChanged(FormChange::Visible);
    if (visible && active_ == nullptr)
        setFocus(keyTarget());
}

void Form::setEnabled(bool enabled) {
    if (!differs(enabled_, enabled))
        return;
    formChanged(FormChange::Enabled);
    if (enabled && leavePending_) {
        leavePending_ = false;
        leaveHovered({-twipsPerPixel, -twipsPerPixel}, 0);
    }
}

void Form::raise() {
    if (window_ && visible_)
        window_->raise();
}

bool Form::unload() {
    const Watch watch(*this);
    bool cancel = false;
    if (events_)
        raiseEvent(events_->QueryUnload, cancel);
    if (cancel || !watch)
        return !cancel;
    hide();
    if (events_)
        raiseEvent(events_->Unload);
    return true;
}

TextExtent Form::textExtent(std::u16string_view text, const Font &font) const {
    return host_.textExtent(text, font);
}

void Form::setFocus(Control *control) {
    if (control == active_ || (control != nullptr && !(control->isShown() && control->isLive())))
        return;
    active_ = control;
    if (window_)
        window_->focus(control);
}

void Form::refresh() {
    if (window_)
        window_->refresh(nullptr);
}

FormEvents &Form::on() {
    if (!events_)
        events_ = std::make_unique<FormEvents>();
    return *events_;
}

void Form::movedTo(Twips left, Twips top) {
    place_.left = left;
    place_.top = top;
}

void Form::stateChanged(WindowState state) { state_ = state; }

void Form::closeRequested() {
    if (enabled_)
        unload();
}

namespace {

// From now on a new size is told, so each control has the one that it goes on from.
void paySizes(const Container &container) {
    for (const Control *control : container.controls()) {
        control->place();
        if (const auto *inner = dynamic_cast<const Container *>(control))
            paySizes(*inner);
    }
}

void tellScale(const Container &container) {
    for (Control *control : container.controls())
        if (control->kind() == Kind::Custom)
            static_cast<UserControl *>(control)->scaleChanged();
        else if (const auto *inner = dynamic_cast<const Container *>(control))
            tellScale(*inner);
}

} // namespace

FormWindow &Form::ensureWindow() {
    if (!window_) {
        paySizes(*this);
        window_ = host_.makeWindow(*this);
        if (window_->scaleFactor() != 1.0)
            scaleChanged();
    }
    return *window_;
}

void Form::scaleChanged() { tellScale(*this); }

void Form::dropWindow() noexcept { window_.reset(); }

void Form::controlChanged(Control &control, Change what, const RectTwips &before) {
    if (!window_)
        return;
    window_->controlChanged(control, what, before);
    if (what == Change::Enabled)
        focusInside(control);
    else if (what == Change::Visible && !control.visible())
        focusBelow(control);
}

void Form::controlGone(Control &control) {
    if (active_ == &control)
        active_ = nullptr;
    if (captured_ == &control)
        captured_ = nullptr;
    if (hovered_ == &control)
        hovered_ = nullptr;
    for (Watch *watch = watches_; watch != nullptr; watch = watch->outer_)
        watch->gone_ = watch->gone_ || watch->control_ == &control;
    if (window_)
        window_->controlGone(control);
}

void Form::formChanged(FormChange what) {
    if (window_)
        window_->formChanged(what, place_);
}

void Form::placeChanged(const RectTwips &before) {
    if (window_)
        window_->formChanged(FormChange::Place, before);
    const bool resized = before.width != place_.width || before.height != place_.height;
    if (resized && events_)
        raiseEvent(events_->Resize);
}

} // namespace velmora::forms
