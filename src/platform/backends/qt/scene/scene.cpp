#include "platform/backends/qt/scene/scene.h"

#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/text_convert.h"

#include <QAbstractScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace velmora::platform::qt {

namespace {

class EventFilter : public QObject {
public:
    using Take = std::function<bool(QWidget &, QEvent &)>;
    explicit EventFilter(Take take) : take_(std::move(take)) {}
    bool eventFilter(QObject *watched, QEvent *event) override {
        return take_(*static_cast<QWidget *>(watched), *event);
    }

private:
    Take take_;
};

const forms::Container *containerOf(const forms::Control &control) {
    return dynamic_cast<const forms::Container *>(&control);
}

bool isPainted(const forms::Control &control) {
    return control.kind() != forms::Kind::Timer && control.kind() != forms::Kind::Menu &&
           !hasChildView(control);
}

bool holdsViews(const forms::Container &container) {
    for (const forms::Control *control : container.controls()) {
        if (hasChildView(*control))
            return true;
        const forms::Container *inner = containerOf(*control);
        if (inner != nullptr && holdsViews(*inner))
            return true;
    }
    return false;
}

} // namespace

Scene::Scene(forms::Form &form, ControlPainter &painter, const ViewTools &tools,
             Callbacks callbacks)
    : form_(form), painter_(painter), tools_(tools), callbacks_(std::move(callbacks)) {}

Scene::~Scene() = default;

void Scene::build(Layer &top) {
    top_ = &top;
    addViews(form_);
    promoteAll(form_);
}

void Scene::addViews(const forms::Container &container) {
    for (forms::Control *control : container.controls()) {
        if (hasChildView(*control)) {
            Own &own = own_[control];
            own.view = makeChildView(*control, tools_, layerWidget(layerAround(*control)));
            own.widget = own.view->widget();
            own.filter = std::make_unique<EventFilter>([this, control](QWidget &on, QEvent &event) {
                return callbacks_.childInput(*control, on, event);
            });
            own.widget->installEventFilter(own.filter.get());
            own.widget->setMouseTracking(true);
            if (auto *area = qobject_cast<QAbstractScrollArea *>(own.widget.data())) {
                area->viewport()->installEventFilter(own.filter.get());
                area->viewport()->setMouseTracking(true);
            }
            nameView(*control);
            place(*control);
            syncTree(*control);
            syncEnabled(*control);
        } else if (const forms::Container *inner = containerOf(*control)) {
            // Its toolkit widgets are to be cut off at its edges.
            if (holdsViews(*inner))
                promote(*control);
            addViews(*inner);
        }
    }
}

// What assistive technology calls a toolkit widget, and what it scrolls by.
void Scene::nameView(const forms::Control &control) {
    QWidget *widget = widgetOf(control);
    if (widget == nullptr)
        return;
    const QString name = toShown(control.accessibleName());
    if (widget->accessibleName() == name)
        return;
    widget->setAccessibleName(name);
    if (auto *area = qobject_cast<QAbstractScrollArea *>(widget))
        area->verticalScrollBar()->setAccessibleName(name);
}

// The control may be called otherwise now, and what is called after it.
void Scene::nameViewsAfter(const forms::Control &control) {
    for (const auto &[named, own] : own_)
        if (own.view != nullptr && (named == &control || named->bondedTo() == &control))
            nameView(*named);
}

Scene::Own *Scene::ownOf(const forms::Control &control) {
    const auto found = own_.find(&control);
    return found == own_.end() ? nullptr : &found->second;
}

QWidget *Scene::widgetOf(const forms::Control &control) const {
    const auto found = own_.find(&control);
    return found == own_.end() ? nullptr : found->second.widget.data();
}

forms::Control *Scene::controlOf(const QWidget *widget) const {
    for (const QWidget *at = widget; at != nullptr && at != top_; at = at->parentWidget())
        for (const auto &[control, own] : own_)
            if (own.widget == at)
                return const_cast<forms::Control *>(control);
    return nullptr;
}

const forms::Control *Scene::layerAround(const forms::Control &control) const {
    const forms::Control *outer = control.container().asControl();
    while (outer != nullptr) {
        const auto found = own_.find(outer);
        if (found != own_.end() && found->second.layer)
            return outer;
        outer = outer->container().asControl();
    }
    return nullptr;
}

QWidget *Scene::layerWidget(const forms::Control *layer) const {
    return layer == nullptr ? top_ : widgetOf(*layer);
}

void Scene::place(const forms::Control &control) {
    QWidget *widget = widgetOf(control);
    if (widget == nullptr)
        return;
    QRect area = nearest(toPixels(control.placeInForm()));
    if (const forms::Control *layer = layerAround(control))
        area.translate(-nearest(toPixels(layer->placeInForm())).topLeft());
    if (widget->geometry() != area)
        widget->setGeometry(area);
}

// The widgets of the control and of all within it follow its visibility and place.
void Scene::syncTree(const forms::Control &control) {
    if (QWidget *widget = widgetOf(control)) {
        bool visible = control.visible();
        const forms::Control *layer = layerAround(control);
        for (const forms::Control *outer = control.container().asControl();
             outer != layer && outer != nullptr; outer = outer->container().asControl())
            visible = visible && outer->visible();
        place(control);
        if (widget->isHidden() == visible)
            widget->setVisible(visible);
    }
    if (const forms::Container *inner = containerOf(control))
        for (const forms::Control *child : inner->controls())
            syncTree(*child);
}

void Scene::syncEnabled(const forms::Control &control) {
    Own *own = ownOf(control);
    if (own != nullptr && own->view != nullptr && own->widget) {
        bool enabled = true;
        for (const forms::Control *at = &control; at != nullptr; at = at->container().asControl())
            enabled = enabled && at->enabled();
        if (enabled != own->widget->isEnabled()) {
            if (!enabled)
                yieldFocus(control);
            own->widget->setEnabled(enabled);
        }
    }
    if (const forms::Container *inner = containerOf(control))
        for (const forms::Control *child : inner->controls())
            syncEnabled(*child);
}

// Whether the control is drawn on the very same device pixels as before: a bar that grew by less
// than a pixel is not drawn again.
bool Scene::looksUnmoved(const forms::Control &control, const RectTwips &before) const {
    const forms::Kind kind = control.kind();
    if (kind != forms::Kind::Shape && kind != forms::Kind::Image && kind != forms::Kind::Label)
        return false;
    const double density = top_->devicePixelRatioF();
    return snapped(toPixels(before), density) == snapped(toPixels(control.placeInForm()), density);
}

void Scene::controlChanged(forms::Control &control, forms::Change what, const RectTwips &before) {
    if (top_ == nullptr)
        return;
    Own *own = ownOf(control);
    switch (what) {
    case forms::Change::Place:
        if (own == nullptr) {
            if (isPainted(control) && !looksUnmoved(control, before)) {
                update(control, before);
                update(control, control.placeInForm());
            }
        } else if (own->layer && own->widget) {
            callbacks_.touched(control, toPixels(before));
            callbacks_.touched(control, toPixels(control.placeInForm()));
        }
        if (!own_.empty()) {
            syncTree(control);
            promoteWhereCovered(control);
        }
        break;
    case forms::Change::Visible:
        if (!own_.empty()) {
            promoteWhereCovered(control);
            own = ownOf(control);
            if (!control.visible())
                yieldFocus(control);
            syncTree(control);
        }
        if (own == nullptr && isPainted(control))
            update(control, before);
        else
            callbacks_.touched(control, toPixels(before));
        // A panel over a list takes the keyboard, too.
        if (form_.activeControl() != nullptr && form_.isCovered(*form_.activeControl()))
            yieldFocus(*form_.activeControl());
        break;
    case forms::Change::Enabled:
        syncEnabled(control);
        if (own != nullptr && own->widget)
            own->widget->update();
        else if (isPainted(control))
            update(control, before);
        break;
    case forms::Change::Order:
        promoteAll(form_);
        restack(form_);
        update(control, before);
        break;
    case forms::Change::ToolTip:
        nameViewsAfter(control);
        break;
    case forms::Change::Pointer:
        break;
    default:
        if (what == forms::Change::Look)
            nameViewsAfter(control);
        if (own != nullptr && own->view != nullptr)
            own->view->changed(what);
        else if (isPainted(control))
            update(control, before);
        break;
    }
}

// The control is in its destructor: nothing virtual of it may be asked any more.
void Scene::controlGone(forms::Control &control) {
    if (ringed_ == &control)
        ringed_ = nullptr;
    forgetMarks();
    if (top_ != nullptr)
        top_->update();
    tellLayers(control);
    const auto found = own_.find(&control);
    if (found == own_.end())
        return;
    const QPointer<QWidget> widget = found->second.widget;
    own_.erase(found); // a view takes its widget along
    delete widget.data();
}

void Scene::tellLayers(const forms::Control &gone) {
    if (top_ != nullptr)
        top_->tellGone(gone);
    for (const auto &[control, own] : own_) {
        auto *layer = own.layer ? static_cast<Layer *>(own.widget.data()) : nullptr;
        if (layer != nullptr)
            layer->tellGone(gone);
    }
}

// Whether the very same has been said since the last paint; else it is remembered. A label whose
// text changes a thousand times between two paints costs one mark.
bool Scene::isMarked(const Mark &mark) {
    constexpr std::size_t mostMarks = 8;
    if (std::find(marks_.begin(), marks_.end(), mark) != marks_.end())
        return true;
    if (marks_.size() == mostMarks)
        marks_.erase(marks_.begin());
    marks_.push_back(mark);
    return false;
}

// Marks what shows of the control at `place` to be painted.
void Scene::update(const forms::Control &control, const RectTwips &place) {
    const forms::Control *outer = control.container().asControl();
    if (outer != nullptr && !outer->isShown())
        return;
    if (isMarked({&control, place}))
        return;
    QRectF area = toPixels(place).adjusted(-1, -1, 1, 1);
    for (const forms::Control *at = outer; at != nullptr; at = at->container().asControl())
        area &= toPixels(at->placeInForm());
    if (area.isEmpty())
        return;
    const Own *own = ownOf(control);
    const forms::Control *layer = own != nullptr && own->layer ? &control : layerAround(control);
    QWidget *widget = layerWidget(layer);
    if (widget == nullptr)
        return;
    QRect dirty = area.toAlignedRect();
    if (layer != nullptr)
        dirty.translate(-nearest(toPixels(layer->placeInForm())).topLeft());
    widget->update(dirty);
    callbacks_.touched(control, area);
}

void Scene::repaint(const forms::Control &control) {
    if (top_ == nullptr || !control.isShown())
        return;
    const Own *own = ownOf(control);
    if (own != nullptr && own->widget) {
        own->widget->repaint();
        return;
    }
    const forms::Control *layer = layerAround(control);
    QRect area = toPixels(control.placeInForm()).adjusted(-1, -1, 1, 1).toAlignedRect();
    if (layer != nullptr)
        area.translate(-nearest(toPixels(layer->placeInForm())).topLeft());
    layerWidget(layer)->repaint(area);
}

void Scene::paint(const Layer &layer, QPainter &painter, const QRect &dirty, double density) {
    forgetMarks();
    const forms::Control *root = layer.root();
    QPoint origin;
    if (root != nullptr) {
        origin = nearest(toPixels(root->placeInForm())).topLeft();
        painter.translate(-origin);
    }
    const ControlPainter::Job job{
        painter,
        QRectF(dirty.translated(origin)),
        density,
        keyed,
        [this](const forms::Control &control) { return own_.contains(&control); },
        ringed_};
    if (root != nullptr) {
        painter_.paint(job, *root);
        return;
    }
    callbacks_.ground(job);
    painter_.paintChildren(job, form_);
}

void Scene::paintOutline(QPainter &painter, double density, const QRectF &area) {
    const ControlPainter::Job job{painter, area, density, true, [](const forms::Control &control) {
                                      return hasChildView(control);
                                  }};
    callbacks_.ground(job);
    painter_.paintChildren(job, form_);
    for (const auto &[control, own] : own_)
        if (own.view != nullptr && control->isShown())
            painter.fillRect(toPixels(control->placeInForm()), Qt::black);
}

} // namespace velmora::platform::qt
