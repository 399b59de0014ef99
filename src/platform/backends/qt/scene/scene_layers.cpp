// Which controls get a widget of their own, and the focus among them.

#include "platform/backends/qt/scene/scene.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/loop.h"

#include <utility>

namespace velmora::platform::qt {

namespace {

const forms::Container *containerOf(const forms::Control &control) {
    return dynamic_cast<const forms::Container *>(&control);
}

// Calls `visit` for every control in the order of painting until it answers false.
bool walk(const forms::Container &container,
          const std::function<bool(const forms::Control &)> &visit) {
    for (const forms::Control *control : container.controls()) {
        if (!visit(*control))
            return false;
        const forms::Container *inner = containerOf(*control);
        if (inner != nullptr && !walk(*inner, visit))
            return false;
    }
    return true;
}

bool isInside(const forms::Control &control, const forms::Control &outer) {
    for (const forms::Control *at = &control; at != nullptr; at = at->container().asControl())
        if (at == &outer)
            return true;
    return false;
}

} // namespace

// Gives a painted control a layer, and its containers first, since only they can clip it.
void Scene::promote(const forms::Control &control) {
    if (own_.contains(&control) || hasChildView(control))
        return;
    if (const forms::Control *outer = control.container().asControl())
        promote(*outer);
    forgetMarks();
    QWidget *parent = layerWidget(layerAround(control));
    Own &own = own_[&control];
    own.layer = true;
    own.widget = new Layer(*this, &control, callbacks_.layerInput, parent);
    // Widgets within it move over.
    if (const forms::Container *inner = containerOf(control)) {
        walk(
            *inner,
            [&](const forms::Control &child) {
                QWidget *widget = widgetOf(child);
                if (widget != nullptr && widget->parentWidget() == parent)
                    widget->setParent(own.widget);
                return true;
            });
    }
    syncTree(control);
    restack(form_);
}

// Whether a widget of a control painted earlier lies below the control.
bool Scene::coversWidget(const forms::Control &control) const {
    const QRectF area = toPixels(control.placeInForm());
    bool covers = false;
    walk(form_, [&](const forms::Control &lower) {
        if (&lower == &control)
            return false;
        if (!own_.contains(&lower) || isInside(control, lower) || !lower.isShown())
            return true;
        covers = toPixels(lower.placeInForm()).intersects(area);
        return !covers;
    });
    return covers;
}

void Scene::promoteWhereCovered(const forms::Control &control) {
    if (!control.isShown())
        return;
    if (own_.contains(&control)) {
        promoteAll(form_);
        return;
    }
    if (control.kind() != forms::Kind::Timer && control.kind() != forms::Kind::Menu &&
        coversWidget(control))
        promote(control);
}

void Scene::promoteAll(const forms::Container &container) {
    if (own_.empty())
        return;
    for (const forms::Control *control : container.controls()) {
        if (!own_.contains(control) && control->isShown() &&
            control->kind() != forms::Kind::Timer && control->kind() != forms::Kind::Menu &&
            coversWidget(*control))
            promote(*control);
        if (const forms::Container *inner = containerOf(*control))
            promoteAll(*inner);
    }
}

void Scene::restack(const forms::Container &container) {
    walk(
        container,
        [this](const forms::Control &control) {
            if (QWidget *widget = widgetOf(control))
                widget->raise();
            return true;
        });
}

// Leaves the focus with the window, so that no key reaches the control. The form gives it back.
void Scene::yieldFocus(const forms::Control &control) {
    QWidget *widget = widgetOf(control);
    QWidget *focus = top_->focusWidget();
    if (widget == nullptr || focus == nullptr || (focus != widget && !widget->isAncestorOf(focus)))
        return;
    top_->setFocus();
}

std::vector<const forms::Control *> Scene::childrenOf(const Layer &layer) const {
    std::vector<const forms::Control *> found;
    walk(form_, [&](const forms::Control &control) {
        const bool none =
            control.kind() == forms::Kind::Timer || control.kind() == forms::Kind::Menu ||
            control.kind() == forms::Kind::Shape || control.kind() == forms::Kind::Line;
        if (!none && layerAround(control) == layer.root())
            found.push_back(&control);
        return true;
    });
    return found;
}

Layer *Scene::layerHolding(const forms::Control &control) const {
    return static_cast<Layer *>(layerWidget(layerAround(control)));
}

void Scene::press(PointTwips at) {
    const Loop::Handler handler(tools_.loop);
    form_.pointerPressed(at, forms::leftButton, 0);
    form_.pointerReleased(at, forms::leftButton, 0);
}

QWidget *Scene::nativeBox(forms::PictureBox &box) {
    Own *own = ownOf(box);
    if (own == nullptr || !own->widget) {
        promote(box);
        own = ownOf(box);
    }
    if (!own->native) {
        own->native = true;
        // Only this widget becomes a window of its own, none of those around it.
        own->widget->setAttribute(Qt::WA_DontCreateNativeAncestors);
        own->widget->setAttribute(Qt::WA_NativeWindow);
        own->widget->winId();
    }
    return own->widget;
}

void Scene::followFocus() {
    const forms::Control *const before = std::exchange(ringed_, form_.activeControl());
    if (before == ringed_)
        return;
    for (const forms::Control *control : {before, ringed_})
        if (control != nullptr && !hasChildView(*control))
            update(*control, control->placeInForm());
}

} // namespace velmora::platform::qt
