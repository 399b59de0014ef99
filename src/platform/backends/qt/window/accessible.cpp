#include "platform/backends/qt/window/accessible.h"

#include "platform/backends/qt/scene/layer.h"
#include "platform/backends/qt/scene/list_view.h"
#include "platform/backends/qt/scene/scene.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/forms/controls.h"

#include <QAccessibleActionInterface>
#include <QAccessibleWidget>

#include <algorithm>
#include <map>
#include <vector>

namespace velmora::platform::qt {

namespace {

bool hasClick(const forms::Control &control) {
    return control.kind() == forms::Kind::Custom ||
           (control.events() != nullptr && (control.events()->Click || control.events()->MouseUp));
}

QAccessible::Role roleOf(const forms::Control &control) {
    switch (control.kind()) {
    case forms::Kind::Label:
        return hasClick(control) ? QAccessible::Link : QAccessible::StaticText;
    case forms::Kind::Custom:
        return QAccessible::Button;
    case forms::Kind::Frame:
        return QAccessible::Grouping;
    case forms::Kind::PictureBox:
        return QAccessible::Pane;
    default:
        return hasClick(control) ? QAccessible::Button : QAccessible::Graphic;
    }
}

// A control that is painted by a layer. Lives in the toolkit's cache until its layer is gone.
class PaintedControl : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    PaintedControl(Layer &layer, const forms::Control &control)
        : layer_(&layer), control_(&control) {}

    void forget() { control_ = nullptr; }

    bool isValid() const override { return control_ != nullptr && layer_; }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override {
        return isValid() ? layer_->window()->windowHandle() : nullptr;
    }
    QAccessibleInterface *parent() const override {
        return isValid() ? QAccessible::queryAccessibleInterface(layer_) : nullptr;
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    QString text(QAccessible::Text kind) const override {
        if (!isValid())
            return {};
        if (kind == QAccessible::Name)
            return toShown(control_->accessibleName());
        return kind == QAccessible::Description ? toShown(control_->toolTip()) : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}

    QRect rect() const override {
        if (!isValid())
            return {};
        return nearest(toPixels(control_->placeInForm()))
            .translated(layer_->window()->mapToGlobal(QPoint(0, 0)));
    }
    QAccessible::Role role() const override {
        return isValid() ? roleOf(*control_) : QAccessible::NoRole;
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid())
            return state;
        state.invisible = !control_->isShown() || !layer_->isVisible();
        state.disabled = !control_->isLive();
        state.focusable = control_->takesFocus();
        state.focused = state.focusable && control_->form().activeControl() == control_;
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface && isValid() && hasClick(*control_)
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    // As a click in its middle.
    void doAction(const QString &action) override {
        if (!isValid() || action != pressAction())
            return;
        const RectTwips place = control_->placeInForm();
        layer_->press({place.left + place.width / 2, place.top + place.height / 2});
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    QPointer<Layer> layer_;
    const forms::Control *control_;
};

class LayerAccess : public QAccessibleWidget {
public:
    explicit LayerAccess(Layer &layer)
        : QAccessibleWidget(&layer, layer.isWindow() ? QAccessible::Window : QAccessible::Pane) {}
    ~LayerAccess() override {
        for (const auto &[control, id] : made_)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return static_cast<int>(children().size()); }
    QAccessibleInterface *child(int index) const override {
        const auto all = children();
        return index >= 0 && index < static_cast<int>(all.size())
                   ? interfaceOf(*all[static_cast<std::size_t>(index)])
                   : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *wanted) const override {
        const auto all = children();
        for (std::size_t i = 0; i < all.size(); ++i)
            if (interfaceOf(*all[i]) == wanted)
                return static_cast<int>(i);
        return -1;
    }
    QAccessibleInterface *childAt(int x, int y) const override {
        const auto all = children();
        for (auto it = all.rbegin(); it != all.rend(); ++it) {
            QAccessibleInterface *found = interfaceOf(**it);
            if (found != nullptr && (*it)->isShown() && found->rect().contains(x, y))
                return found;
        }
        return nullptr;
    }

private:
    Layer &layer() const { return *static_cast<Layer *>(object()); }
    std::vector<const forms::Control *> children() const {
        std::vector<const forms::Control *> all = layer().scene().childrenOf(layer());
        std::erase_if(all, [this](const forms::Control *control) {
            return layer().scene().widgetOf(*control) == nullptr &&
                   control->accessibleName().empty();
        });
        return all;
    }
    QAccessibleInterface *interfaceOf(const forms::Control &control) const {
        if (QWidget *widget = layer().scene().widgetOf(control))
            return QAccessible::queryAccessibleInterface(widget);
        const auto found = made_.find(&control);
        if (found != made_.end())
            return QAccessible::accessibleInterface(found->second);
        auto *made = new PaintedControl(layer(), control);
        made_[&control] = QAccessible::registerAccessibleInterface(made);
        return made;
    }

    mutable std::map<const forms::Control *, QAccessible::Id> made_;
};

// A row of a list; made anew when asked for, since rows come and go.
class RowAccess : public QAccessibleInterface {
public:
    RowAccess(ListView &view, int row) : view_(&view), row_(row) {}

    bool isValid() const override { return view_ && row_ < view_->list().listCount(); }
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *parent() const override {
        return view_ ? QAccessible::queryAccessibleInterface(view_) : nullptr;
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override {
        return isValid() && kind == QAccessible::Name ? toShown(view_->list().list(row_))
                                                      : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override {
        return isValid() ? view_->rowRect(row_).translated(view_->mapToGlobal(QPoint(0, 0)))
                         : QRect();
    }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid())
            return state;
        state.selectable = true;
        state.selected = view_->list().selected(row_);
        state.focusable = true;
        state.focused = view_->hasFocus() && view_->list().listIndex() == row_;
        state.offscreen = !view_->rect().intersects(view_->rowRect(row_));
        return state;
    }

private:
    QPointer<ListView> view_;
    int row_;
};

class ListAccess : public QAccessibleWidget {
public:
    explicit ListAccess(ListView &view) : QAccessibleWidget(&view, QAccessible::List) {}
    ~ListAccess() override {
        for (const QAccessible::Id id : rows_)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return list().listCount(); }
    QAccessibleInterface *child(int row) const override {
        if (row < 0 || row >= list().listCount())
            return nullptr;
        while (static_cast<int>(rows_.size()) <= row)
            rows_.push_back(QAccessible::registerAccessibleInterface(
                new RowAccess(view(), static_cast<int>(rows_.size()))));
        return QAccessible::accessibleInterface(rows_[static_cast<std::size_t>(row)]);
    }
    int indexOfChild(const QAccessibleInterface *wanted) const override {
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (QAccessible::accessibleInterface(rows_[i]) == wanted)
                return static_cast<int>(i);
        return -1;
    }
    QAccessibleInterface *childAt(int x, int y) const override {
        const QPoint at = view().mapFromGlobal(QPoint(x, y));
        return view().rect().contains(at) ? child(view().rowAt(at.y())) : nullptr;
    }

private:
    ListView &view() const { return *static_cast<ListView *>(object()); }
    forms::ListBox &list() const { return view().list(); }
    mutable std::vector<QAccessible::Id> rows_;
};

QAccessibleInterface *make(const QString & /*className*/, QObject *object) {
    if (auto *layer = dynamic_cast<Layer *>(object))
        return new LayerAccess(*layer);
    if (auto *view = dynamic_cast<ListView *>(object))
        return new ListAccess(*view);
    return nullptr;
}

} // namespace

void installAccessibility() { QAccessible::installFactory(make); }

} // namespace velmora::platform::qt
