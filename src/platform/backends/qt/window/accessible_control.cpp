#include "platform/backends/qt/window/accessible_control.h"

#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/forms/form.h"
#include "platform/forms/user_control.h"

#include <algorithm>
#include <cmath>

namespace velmora::platform::qt {

namespace {

constexpr Twips barsDeadEnd = 30; // a bar's last pixels take no click

std::optional<double> progressOf(const forms::Control &control) {
    const auto *bar = dynamic_cast<const forms::UserControl *>(&control);
    return bar != nullptr ? bar->progress() : std::nullopt;
}

QString withoutDigits(QString text) {
    text.removeIf([](QChar unit) { return unit.isDigit(); });
    return text;
}

void pressAt(Layer &layer, const forms::Control &control, Twips x) {
    const RectTwips place = control.placeInForm();
    if (control.isShown())
        layer.press({place.left + x, place.top + place.height / 2});
}

} // namespace

bool isPressed(const forms::Control &control) {
    if (control.kind() == forms::Kind::Custom)
        return !progressOf(control);
    return control.events() != nullptr && control.events()->Click;
}

QAccessible::Role roleOf(const forms::Control &control) {
    if (control.bond() == forms::Bond::Slider)
        return QAccessible::Slider;
    if (control.bond() == forms::Bond::Tab)
        return QAccessible::PageTab;
    switch (control.kind()) {
    case forms::Kind::Label:
        return isPressed(control) ? QAccessible::Link : QAccessible::StaticText;
    case forms::Kind::Custom:
        return progressOf(control) ? QAccessible::ProgressBar : QAccessible::Button;
    case forms::Kind::Frame:
        return QAccessible::Grouping;
    case forms::Kind::PictureBox:
        return QAccessible::Pane;
    default:
        return isPressed(control) ? QAccessible::Button : QAccessible::Graphic;
    }
}

void pressSoon(Layer &layer, const forms::Control &control) {
    // A control that has gone meanwhile is asked for no place.
    QMetaObject::invokeMethod(
        &layer,
        [layer = &layer, control = &control] {
            if (layer->holds(*control))
                pressAt(*layer, *control, control->width() / 2);
        },
        Qt::QueuedConnection);
}

PaintedControl::PaintedControl(Layer &layer, const forms::Control &control, bool told)
    : layer_(&layer), control_(&control),
      toldName_(told ? toShown(control.accessibleName()) : QString()) {}

QWindow *PaintedControl::window() const {
    return isValid() ? layer_->window()->windowHandle() : nullptr;
}

QAccessibleInterface *PaintedControl::parent() const {
    return isValid() ? QAccessible::queryAccessibleInterface(layer_) : nullptr;
}

QString PaintedControl::text(QAccessible::Text kind) const {
    if (!isValid())
        return {};
    if (kind == QAccessible::Name)
        return toShown(control_->accessibleName());
    return kind == QAccessible::Description ? toShown(control_->toolTip()) : QString();
}

QRect PaintedControl::rect() const {
    return isValid() ? nearest(toPixels(control_->placeInForm()))
                           .translated(layer_->window()->mapToGlobal(QPoint(0, 0)))
                     : QRect();
}

QAccessible::Role PaintedControl::role() const {
    return isValid() ? roleOf(*control_) : QAccessible::NoRole;
}

QAccessible::State PaintedControl::state() const {
    QAccessible::State state;
    if (!isValid())
        return state;
    state.invisible = !control_->isShown() || !layer_->isVisible();
    state.disabled = !control_->isLive();
    state.focusable = control_->takesFocus();
    state.focused = state.focusable && control_->form().activeControl() == control_;
    if (control_->bond() == forms::Bond::Tab) {
        state.selectable = true;
        state.selected = control_->bondedTo()->visible();
    }
    return state;
}

bool PaintedControl::hasValue() const {
    return control_->bond() == forms::Bond::Slider || progressOf(*control_);
}

void *PaintedControl::interface_cast(QAccessible::InterfaceType type) {
    if (!isValid())
        return nullptr;
    if (type == QAccessible::ActionInterface && isPressed(*control_))
        return static_cast<QAccessibleActionInterface *>(this);
    if (type == QAccessible::ValueInterface && hasValue())
        return static_cast<QAccessibleValueInterface *>(this);
    return nullptr;
}

void PaintedControl::doAction(const QString &action) {
    if (isValid() && action == pressAction())
        pressSoon(*layer_, *control_);
}

QVariant PaintedControl::currentValue() const {
    if (!isValid())
        return {};
    const std::optional<double> progress = progressOf(*control_);
    if (progress)
        return *progress * mostPercent;
    const Twips whole = control_->width();
    const double share = whole > 0 ? control_->bondedTo()->width() / whole : 0.0;
    return std::clamp(share, 0.0, 1.0) * mostPercent;
}

// A click at that place of the bar, as far as it takes one.
void PaintedControl::setCurrentValue(const QVariant &value) {
    if (!isValid() || control_->bond() != forms::Bond::Slider)
        return;
    const double share = std::clamp(value.toDouble() / mostPercent, 0.0, 1.0);
    const Twips most = std::max(control_->width() - barsDeadEnd, 0.0F);
    const Twips x = std::min(static_cast<Twips>(share) * control_->width(), most);
    QMetaObject::invokeMethod(
        layer_.data(),
        [layer = layer_.data(), control = control_, x] {
            if (layer->holds(*control))
                pressAt(*layer, *control, x);
        },
        Qt::QueuedConnection);
}

void PaintedControl::tellName() {
    const QString name = text(QAccessible::Name);
    if (!isValid() || name == toldName_)
        return;
    const bool isNews = withoutDigits(name) != withoutDigits(toldName_);
    toldName_ = name;
    if (!isNews)
        return;
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void PaintedControl::tellValue() {
    if (!isValid() || !hasValue())
        return;
    const QVariant value = currentValue();
    const int percent = static_cast<int>(std::lround(value.toDouble()));
    if (percent == toldValue_)
        return;
    toldValue_ = percent;
    QAccessibleValueChangeEvent event(this, value);
    QAccessible::updateAccessibility(&event);
}

} // namespace velmora::platform::qt
