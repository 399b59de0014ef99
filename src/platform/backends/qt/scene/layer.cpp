#include "platform/backends/qt/scene/layer.h"

#include "platform/backends/qt/scene/scene.h"

#include <QPaintEvent>
#include <QPainter>

namespace velmora::platform::qt {

Layer::Layer(Scene &scene, const forms::Control *root, Input input, QWidget *parent,
             Qt::WindowFlags flags)
    : QWidget(parent, flags), scene_(scene), root_(root), input_(std::move(input)) {
    setMouseTracking(true);
    setAttribute(Qt::WA_NoSystemBackground);
}

bool Layer::event(QEvent *event) { return input_(*this, *event) || QWidget::event(event); }

void Layer::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    scene_.paint(*this, painter, event->rect(), devicePixelRatioF());
}

void Layer::press(PointTwips at) { scene_.press(at); }

// Tab goes round the controls in the order of the design, painted ones included.
bool Layer::focusNextPrevChild(bool next) { return scene_.moveFocus(!next); }

} // namespace velmora::platform::qt
