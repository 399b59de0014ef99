#pragma once

// What a window shows of its form: the painted controls, the child widgets among them, and what has
// to be drawn anew when something changes.
//
// One widget, the window itself, paints nearly everything. A painted control gets a widget of its
// own (a layer) only where it must: a box with toolkit widgets in it clips them, and what lies over
// a toolkit widget can only be seen on another one.

#include "platform/backends/qt/paint/control_painter.h"
#include "platform/backends/qt/scene/child_view.h"
#include "platform/backends/qt/scene/layer.h"
#include "platform/forms/form.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

namespace velmora::platform::qt {

class Scene {
public:
    // What paints below all controls, in the form's logical pixels.
    using Ground = std::function<void(const ControlPainter::Job &)>;
    struct Callbacks {
        Layer::Input layerInput;
        std::function<bool(forms::Control &, QWidget &, QEvent &)> childInput;
        Ground ground;
        // A painted area changes; `control` is what changed.
        std::function<void(const forms::Control &control, const QRectF &area)> touched;
    };

    Scene(forms::Form &form, ControlPainter &painter, const ViewTools &tools, Callbacks callbacks);
    ~Scene();
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;

    // Makes the child widgets, in `top`, which must live as long as the scene.
    void build(Layer &top);

    void controlChanged(forms::Control &control, forms::Change what, const RectTwips &before);
    void controlGone(forms::Control &control);
    // What was marked to be painted may have been: the next change of anything marks it anew.
    void forgetMarks() noexcept { marks_.clear(); }
    // Paints the control's area at once.
    void repaint(const forms::Control &control);

    // A layer's part; the painter's coordinates are the layer's.
    void paint(const Layer &layer, QPainter &painter, const QRect &dirty, double density);
    // That part of the form, child widgets as plain solid areas: for its outline. It may reach
    // beyond the form.
    void paintOutline(QPainter &painter, double density, const QRectF &area);

    // The widget that is the control, or null if it is painted.
    QWidget *widgetOf(const forms::Control &control) const;
    // The control whose own widget this is (or a part of it), or null.
    forms::Control *controlOf(const QWidget *widget) const;
    // What a layer paints and holds, flat, in the order of painting.
    std::vector<const forms::Control *> childrenOf(const Layer &layer) const;
    // The layer that paints or holds the control.
    Layer *layerHolding(const forms::Control &control) const;
    void press(PointTwips at);
    // The control's native window, made now if need be.
    QWidget *nativeBox(forms::PictureBox &box);

    const forms::Form &form() const noexcept { return form_; }
    bool moveFocus(bool backwards) { return form_.focusNext(backwards); }
    // The ring is drawn round what is the active control now, where that is painted.
    void followFocus();

    bool keyed = false; // the window cuts out the key colour

private:
    struct Own {
        std::unique_ptr<ChildView> view;
        QPointer<QWidget> widget; // the view's, or the layer
        std::unique_ptr<QObject> filter;
        bool layer = false;
        bool native = false;
    };

    // A control that changed, and where.
    struct Mark {
        const forms::Control *control = nullptr;
        RectTwips place;
        bool operator==(const Mark &) const = default;
    };

    bool isMarked(const Mark &mark);
    void addViews(const forms::Container &container);
    void nameView(const forms::Control &control);
    void nameViewsAfter(const forms::Control &control);
    void tellLayers(const forms::Control &gone);
    void place(const forms::Control &control);
    void syncTree(const forms::Control &control);
    void syncEnabled(const forms::Control &control);
    Own *ownOf(const forms::Control &control);
    // The nearest own layer around the control; null for the window.
    const forms::Control *layerAround(const forms::Control &control) const;
    QWidget *layerWidget(const forms::Control *layer) const;
    void promote(const forms::Control &control);
    void promoteWhereCovered(const forms::Control &control);
    void promoteAll(const forms::Container &container);
    bool coversWidget(const forms::Control &control) const;
    void restack(const forms::Container &container);
    bool looksUnmoved(const forms::Control &control, const RectTwips &before) const;
    void update(const forms::Control &control, const RectTwips &place);
    void yieldFocus(const forms::Control &control);

    forms::Form &form_;
    ControlPainter &painter_;
    ViewTools tools_;
    Callbacks callbacks_;
    Layer *top_ = nullptr;
    std::unordered_map<const forms::Control *, Own> own_;
    std::vector<Mark> marks_;                // the latest that are still to be painted
    const forms::Control *ringed_ = nullptr; // the last that the ring was asked for
};

} // namespace velmora::platform::qt
