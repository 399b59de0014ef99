#include "platform/forms/control.h"

#include "base/run_time_error.h"
#include "platform/forms/form.h"
#include "platform/forms/host.h"

#include <algorithm>
#include <cmath>

namespace velmora::forms {

RectTwips checkedPlace(const RectTwips &place) {
    for (const Twips number : {place.left, place.top, place.width, place.height})
        if (!std::isfinite(number))
            raise(ErrorNumber::InvalidPropertyValue);
    return {place.left, place.top, std::max(place.width, 0.0F), std::max(place.height, 0.0F)};
}

Control::Control(Container &container, const char *name)
    : container_(&container), form_(&container.containerForm()), name_(name) {
    container.controls_.push_back(this);
}

Control::~Control() {
    std::erase(container_->controls_, this);
    form_->controlGone(*this);
}

void Control::setLeft(Twips left) { move({left, top(), width(), height()}); }
void Control::setTop(Twips top) { move({left(), top, width(), height()}); }
void Control::setWidth(Twips width) { move({left(), top(), width, height()}); }
void Control::setHeight(Twips height) { move({left(), top(), width(), height}); }

void Control::move(const RectTwips &wanted) {
    const RectTwips place = checkedPlace(wanted);
    owesSize_ = false;
    if (place == place_)
        return;
    const RectTwips before = placeInForm();
    place_ = place;
    placeChanged(before);
}

RectTwips Control::placeInForm() const noexcept {
    RectTwips place = this->place();
    for (const Control *outer = container_->asControl(); outer != nullptr;
         outer = outer->container_->asControl()) {
        place.left += outer->place_.left;
        place.top += outer->place_.top;
    }
    return place;
}

void Control::setEnabled(bool enabled) {
    if (differs(enabled_, enabled)) {
        changed(Change::Enabled);
        enabledChanged();
    }
}

bool Control::isShown() const noexcept {
    const Control *outer = container_->asControl();
    return visible_ && (outer == nullptr || outer->isShown());
}

bool Control::isLive() const noexcept {
    const Control *outer = container_->asControl();
    return enabled_ && (outer == nullptr ? form_->enabled() : outer->isLive());
}

void Control::zOrder(std::int16_t position) {
    auto &order = container_->controls_;
    const bool front = position == 0;
    if (order.empty() || (front ? order.back() : order.front()) == this)
        return;
    std::erase(order, this);
    order.insert(front ? order.end() : order.begin(), this);
    changed(Change::Order);
}

void Control::refresh() {
    if (FormWindow *window = form_->window())
        window->refresh(this);
}

std::u16string Control::accessibleName() const {
    return bond_ == Bond::Named ? bondedTo_->accessibleName() : toolTip_;
}

void Control::setBond(Bond bond, const Control &other) noexcept {
    bond_ = bond;
    bondedTo_ = &other;
}

ControlEvents &Control::on() {
    if (!events_)
        events_ = std::make_unique<ControlEvents>();
    return *events_;
}

void Control::changed(Change what) {
    if (form_->window() != nullptr)
        form_->controlChanged(*this, what, placeInForm());
}

bool Control::mayOweSize() const noexcept { return form_->window() == nullptr; }

void Control::paySize() const noexcept {
    const TextExtent size = owedSize();
    place_.width = size.width;
    place_.height = size.height;
    owesSize_ = false;
}

void Control::placeChanged(const RectTwips &before) {
    form_->controlChanged(*this, Change::Place, before);
}

} // namespace velmora::forms
