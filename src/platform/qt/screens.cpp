#include "platform/qt/screens.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace velmora::platform::qt::screens {

QRect primary() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->geometry() : QRect();
}

QRect freeOfPanels() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->availableGeometry() : QRect();
}

RectPixels workArea() {
    const QRect area = freeOfPanels().translated(-primary().topLeft());
    return {area.left(), area.top(), area.left() + area.width(), area.top() + area.height()};
}

RectPixels taskBar() {
    const QRect screen = primary();
    const RectPixels work = workArea();
    return {0, std::min(work.bottom, screen.height()), screen.width(), screen.height()};
}

QPointF toProgram(QPointF toolkit) { return toolkit - primary().topLeft(); }

QPoint toToolkit(QPoint program) { return program + primary().topLeft(); }

} // namespace velmora::platform::qt::screens
