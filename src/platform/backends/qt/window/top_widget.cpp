#include "platform/backends/qt/window/top_widget.h"

#include "platform/backends/qt/window/form_window.h"

#include <QCloseEvent>

namespace velmora::platform::qt {

TopWidget::TopWidget(QtFormWindow &window, Scene &scene, Layer::Input input, Qt::WindowFlags flags)
    : Layer(scene, nullptr, std::move(input), nullptr, flags), window_(window) {
    setFocusPolicy(Qt::NoFocus);
}

bool TopWidget::event(QEvent *event) {
    if (event->type() == QEvent::WindowActivate)
        window_.activated();
    else if (event->type() == QEvent::WindowBlocked)
        window_.blocked();
    const bool paints = event->type() == QEvent::UpdateRequest;
    return (paints && window_.putsPaintOff()) || Layer::event(event);
}

void TopWidget::paintEvent(QPaintEvent *event) {
    // First the outline, so that nothing is drawn where the window is not.
    window_.applyOutline();
    Layer::paintEvent(event);
}

void TopWidget::closeEvent(QCloseEvent *event) {
    event->ignore();
    window_.closed();
}

void TopWidget::moveEvent(QMoveEvent * /*event*/) { window_.moved(); }

void TopWidget::changeEvent(QEvent *event) {
    if (event->type() == QEvent::WindowStateChange)
        window_.stateChanged();
    QWidget::changeEvent(event);
}

} // namespace velmora::platform::qt
