#include "platform/backends/qt/screen/screens.h"

#include "platform/backends/qt/screen/panels.h"

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

QRect freeOfPanels(X11 &x11) {
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? qt::freeOfPanels(x11, *screen) : QRect();
}

QRect freeOfPanelsAt(X11 &x11, QPoint place) {
    const QScreen *screen = QGuiApplication::screenAt(place);
    return screen != nullptr ? qt::freeOfPanels(x11, *screen) : freeOfPanels(x11);
}

RectPixels workArea(X11 &x11) {
    const QRect area = freeOfPanels(x11).translated(-primary().topLeft());
    return {area.left(), area.top(), area.left() + area.width(), area.top() + area.height()};
}

RectPixels taskBar(X11 &x11) {
    const QRect screen = primary();
    const RectPixels work = workArea(x11);
    return {0, std::min(work.bottom, screen.height()), screen.width(), screen.height()};
}

std::vector<RectPixels> all() {
    std::vector<RectPixels> found;
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QRect area = screen->geometry().translated(-primary().topLeft());
        found.push_back({area.left(), area.top(), area.right() + 1, area.bottom() + 1});
    }
    return found;
}

QPoint toDevice(QPoint place) {
    const QScreen *screen = QGuiApplication::screenAt(place);
    if (screen == nullptr)
        screen = QGuiApplication::primaryScreen();
    if (screen == nullptr)
        return place;
    const QPoint corner = screen->geometry().topLeft();
    return corner + (QPointF(place - corner) * screen->devicePixelRatio()).toPoint();
}

// The toolkit rounds a monitor's size; monitors are an even number of pixels wide and high.
QRect inDevicePixels(const QScreen &screen) {
    const double density = screen.devicePixelRatio();
    const auto side = [density](int rounded) {
        const int near = static_cast<int>(rounded * density);
        for (const int exact : {near, near + 1, near - 1})
            if (exact % 2 == 0 && qRound(exact / density) == rounded)
                return exact;
        return qRound(rounded * density);
    };
    const QRect area = screen.geometry();
    return {area.topLeft(), QSize(side(area.width()), side(area.height()))};
}

bool goesOnAbove(int left, int right) {
    const QRect edge(QPoint(left, primary().top() - 1), QPoint(right, primary().top() - 1));
    const auto screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&](const QScreen *screen) {
        return inDevicePixels(*screen).intersects(edge) || screen->geometry().intersects(edge);
    });
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
