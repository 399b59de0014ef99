#include "platform/backends/qt/screen/screens.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace velmora::platform::qt::screens {

namespace {

constexpr int handle = 40; // what a pointer can well take hold of

} // namespace

QRect primary() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->geometry() : QRect();
}

QRect freeOfPanels() {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->availableGeometry() : QRect();
}

QRect freeOfPanelsAt(QPoint place) {
    const QScreen *screen = QGuiApplication::screenAt(place);
    return screen != nullptr ? screen->availableGeometry() : freeOfPanels();
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

QRect reachable(const QRect &area) {
    const int needed = std::min(handle, area.width());
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QRect on = screen->geometry();
        const int columns =
            std::min(area.right(), on.right()) - std::max(area.left(), on.left()) + 1;
        if (columns >= needed && area.top() <= on.bottom())
            return area;
    }
    const QRect on = primary();
    QRect moved = area;
    moved.moveLeft(std::max(on.left(), std::min(area.left(), on.right() + 1 - area.width())));
    if (area.top() > on.bottom())
        moved.moveBottom(on.bottom());
    return moved;
}

QPointF toProgram(QPointF toolkit) { return toolkit - primary().topLeft(); }

QPoint toToolkit(QPoint program) { return program + primary().topLeft(); }

} // namespace velmora::platform::qt::screens
