#include "platform/backends/qt/window/accessible.h"

#include "platform/backends/qt/scene/layer.h"
#include "platform/backends/qt/scene/list_view.h"
#include "platform/backends/qt/scene/scene.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/backends/qt/window/accessible_control.h"
#include "platform/backends/qt/window/accessible_list.h"

#include <QAccessibleWidget>
#include <QRadioButton>

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

namespace velmora::platform::qt {

namespace {

// The window, or a control that needed a widget of its own, with what it paints and holds.
class LayerAccess : public QAccessibleWidget {
public:
    explicit LayerAccess(Layer &layer)
        : QAccessibleWidget(&layer,
                            layer.root() == nullptr ? QAccessible::Window : roleOf(*layer.root())),
          gone_(std::make_shared<Layer::Gone>(
              [this](const forms::Control &control) { forget(control); })) {
        layer.whenGone = gone_;
    }
    ~LayerAccess() override {
        for (const auto &[control, id] : made_)
            QAccessible::deleteAccessibleInterface(id);
    }
    LayerAccess(const LayerAccess &) = delete;
    LayerAccess &operator=(const LayerAccess &) = delete;

    QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Name)
            return QAccessibleWidget::text(kind);
        const forms::Control *root = layer().root();
        return toShown(root != nullptr ? root->accessibleName() : layer().scene().form().caption());
    }
    QStringList actionNames() const override {
        const forms::Control *root = layer().root();
        return root != nullptr && isPressed(*root) ? QStringList{pressAction()} : QStringList();
    }
    void doAction(const QString &action) override {
        if (actionNames().contains(action))
            pressSoon(layer(), *layer().root());
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

    QAccessibleInterface *interfaceOf(const forms::Control &control, bool told = true) const {
        if (QWidget *widget = layer().scene().widgetOf(control))
            return QAccessible::queryAccessibleInterface(widget);
        const auto found = made_.find(&control);
        if (found != made_.end())
            return QAccessible::accessibleInterface(found->second);
        auto *made = new PaintedControl(layer(), control, told);
        made_[&control] = QAccessible::registerAccessibleInterface(made);
        return made;
    }

private:
    Layer &layer() const { return *static_cast<Layer *>(object()); }
    // A picture without a name that nobody can press is decoration.
    std::vector<const forms::Control *> children() const {
        std::vector<const forms::Control *> all = layer().scene().childrenOf(layer());
        std::erase_if(all, [this](const forms::Control *control) {
            return layer().scene().widgetOf(*control) == nullptr &&
                   (control->bond() == forms::Bond::Part ||
                    (control->accessibleName().empty() && !isPressed(*control)));
        });
        return all;
    }
    void forget(const forms::Control &control) {
        const auto found = made_.find(&control);
        if (found == made_.end())
            return;
        QAccessible::deleteAccessibleInterface(found->second);
        made_.erase(found);
    }

    std::shared_ptr<const Layer::Gone> gone_;
    mutable std::map<const forms::Control *, QAccessible::Id> made_;
};

// One of several options. The toolkit would take it for a check box, since the program's model and
// not the toolkit sees to it that one alone is chosen.
class OptionAccess : public QAccessibleWidget {
public:
    explicit OptionAccess(QRadioButton &option)
        : QAccessibleWidget(&option, QAccessible::RadioButton) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = option().isChecked();
        return state;
    }
    QStringList actionNames() const override {
        return option().isEnabled() ? QStringList{pressAction(), setFocusAction()} : QStringList();
    }
    void doAction(const QString &action) override {
        if (action == pressAction() && option().isEnabled())
            QMetaObject::invokeMethod(&option(), &QRadioButton::click, Qt::QueuedConnection);
        else
            QAccessibleWidget::doAction(action);
    }

private:
    QRadioButton &option() const { return *static_cast<QRadioButton *>(object()); }
};

QAccessibleInterface *make(const QString & /*className*/, QObject *object) {
    if (auto *option = qobject_cast<QRadioButton *>(object))
        return new OptionAccess(*option);
    if (auto *layer = dynamic_cast<Layer *>(object))
        return new LayerAccess(*layer);
    if (auto *view = dynamic_cast<ListView *>(object))
        return new ListAccess(*view);
    return nullptr;
}

// Null for what is not told of.
QAccessibleInterface *interfaceOf(Scene &scene, const forms::Control &control) {
    const bool silent = control.kind() == forms::Kind::Timer ||
                        control.kind() == forms::Kind::Menu ||
                        control.kind() == forms::Kind::Shape ||
                        control.kind() == forms::Kind::Line || control.bond() == forms::Bond::Part;
    if (silent)
        return nullptr;
    auto *layer = dynamic_cast<LayerAccess *>(
        QAccessible::queryAccessibleInterface(scene.layerHolding(control)));
    return layer != nullptr ? layer->interfaceOf(control, false) : nullptr;
}

void send(QAccessibleInterface *about, QAccessible::Event what) {
    QAccessibleEvent event(about, what);
    QAccessible::updateAccessibility(&event);
}

void announceList(QAccessibleInterface *about, forms::Change what) {
    auto *list = dynamic_cast<ListAccess *>(about);
    if (list == nullptr)
        return;
    if (what == forms::Change::Selection)
        list->tellSelection();
    else if (what == forms::Change::Rows)
        list->tellRows();
}

void announcePainted(const forms::Control &control, QAccessibleInterface *about,
                     forms::Change what) {
    if (what == forms::Change::Visible && control.container().asControl() != nullptr &&
        !control.container().asControl()->isShown())
        return;
    if (what == forms::Change::Visible)
        send(about, control.visible() ? QAccessible::ObjectShow : QAccessible::ObjectHide);
    if (what == forms::Change::Enabled) {
        QAccessible::State changed;
        changed.disabled = true;
        QAccessibleStateChangeEvent event(about, changed);
        QAccessible::updateAccessibility(&event);
    }
    auto *painted = dynamic_cast<PaintedControl *>(about);
    if (painted == nullptr || (what != forms::Change::Look && what != forms::Change::ToolTip))
        return;
    painted->tellName();
    painted->tellValue();
}

// The sliders and tabs of what changed.
void announceBonds(Scene &scene, const forms::Control &control, forms::Change what) {
    if (what != forms::Change::Place && what != forms::Change::Visible)
        return;
    for (const forms::Control *other : control.container().controls()) {
        if (other->bondedTo() != &control)
            continue;
        QAccessibleInterface *about = interfaceOf(scene, *other);
        if (other->bond() == forms::Bond::Tab && what == forms::Change::Visible)
            send(about, QAccessible::Selection);
        else if (auto *painted = dynamic_cast<PaintedControl *>(about))
            painted->tellValue();
    }
}

} // namespace

void installAccessibility() { QAccessible::installFactory(make); }

void announce(Scene &scene, const forms::Control &control, forms::Change what) {
    if (!QAccessible::isActive())
        return;
    announceBonds(scene, control, what);
    QAccessibleInterface *about = interfaceOf(scene, control);
    if (about == nullptr)
        return;
    if (control.kind() == forms::Kind::ListBox)
        announceList(about, what);
    else if (scene.widgetOf(control) == nullptr)
        announcePainted(control, about, what);
}

void announceFocus(Scene &scene, const forms::Form &form) {
    if (!QAccessible::isActive() || form.activeControl() == nullptr)
        return;
    if (QAccessibleInterface *about = interfaceOf(scene, *form.activeControl()))
        if (scene.widgetOf(*form.activeControl()) == nullptr)
            send(about, QAccessible::Focus);
}

} // namespace velmora::platform::qt
