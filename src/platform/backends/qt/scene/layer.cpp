#include "platform/backends/qt/scene/layer.h"

#include "platform/backends/qt/scene/scene.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

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

bool Layer::holds(const forms::Control &control) const {
    const auto all = scene_.childrenOf(*this);
    return root_ == &control || std::find(all.begin(), all.end(), &control) != all.end();
}

// Tab goes round the controls in the order of the design, painted ones included.
bool Layer::focusNextPrevChild(bool next) { return scene_.moveFocus(!next); }

} // namespace velmora::platform::qt
