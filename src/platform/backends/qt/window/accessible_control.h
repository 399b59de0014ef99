#pragma once

// A painted control for assistive technology: name, role, place, state, its press and its value.

#include "platform/backends/qt/scene/layer.h"
#include "platform/forms/controls.h"

#include <QAccessibleActionInterface>
#include <QAccessibleInterface>
#include <QPointer>

namespace velmora::platform::qt {

// Whether a click on it does something.
bool isPressed(const forms::Control &control);
QAccessible::Role roleOf(const forms::Control &control);
// As a click in its middle, in a later round: what a click begins may wait for an answer of the
// person's.
void pressSoon(Layer &layer, const forms::Control &control);

// Lives in the toolkit's cache until its control or its layer is gone.
class PaintedControl : public QAccessibleInterface,
                       public QAccessibleActionInterface,
                       public QAccessibleValueInterface {
public:
    // `told`: its present name is known to whoever listens.
    PaintedControl(Layer &layer, const forms::Control &control, bool told);

    bool isValid() const override { return layer_; }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString &action) override;
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

    // Percent: of a slider, or of a bar that shows how far something has come.
    QVariant currentValue() const override;
    void setCurrentValue(const QVariant &value) override;
    QVariant maximumValue() const override { return mostPercent; }
    QVariant minimumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return 1.0; }

    // Tells of a name or value that is another than the last that was told. A clock that goes on is
    // no news: of two names that differ in digits alone only the first is told.
    void tellName();
    void tellValue();

private:
    static constexpr double mostPercent = 100;

    bool hasValue() const;

    QPointer<Layer> layer_;
    const forms::Control *control_;
    QString toldName_;
    int toldValue_ = -1;
};

} // namespace velmora::platform::qt
