#include "platform/backends/qt/screen/screens.h"

#include "platform/backends/qt/screen/panels.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace velmora::platform::qt::screens {

namespace {

constexpr int handle = 40; // what a pointer can well take hold of

int distance(const QRect &area, QPointF place) {
    const auto beyond = [](double at, int first, int last) {
        return std::max({0.0, first - at, at - last});
    };
    return static_cast<int>(beyond(place.x(), area.left(), area.right()) +
                            beyond(place.y(), area.top(), area.bottom()));
}

// The monitor that has a place, or is nearest to it.
template <typename AreaOf> const QScreen *monitorAt(QPointF place, const AreaOf &areaOf) {
    const QScreen *found = QGuiApplication::primaryScreen();
    for (const QScreen *screen : QGuiApplication::screens())
        if (distance(areaOf(*screen), place) < distance(areaOf(*found), place))
            found = screen;
    return found;
}

const QScreen *monitorOfToolkit(QPointF place) {
    return monitorAt(
        place, [](const QScreen &screen) { return screen.geometry(); });
}

const QScreen *monitorOfDevice(QPointF place) {
    return monitorAt(
        place, [](const QScreen &screen) { return inDevicePixels(screen); });
}

// From the primary monitor's corner to another's, in the program's pixels.
QPointF cornerOf(const QScreen &screen) {
    const QScreen &first = *QGuiApplication::primaryScreen();
    return QPointF(screen.geometry().topLeft() - first.geometry().topLeft()) /
           first.devicePixelRatio();
}

// Whether each place has one name.
bool isPlain() {
    const auto screens = QGuiApplication::screens();
    return screens.size() < 2 ||
           std::all_of(screens.begin(), screens.end(),
                       [](const QScreen *screen) { return screen->devicePixelRatio() == 1; });
}

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
        const QRect area(cornerOf(*screen).toPoint(), screen->geometry().size());
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
    const int from = left - primary().left();
    const int to = right - primary().left();
    const std::vector<RectPixels> monitors = all();
    // At some densities a monitor's foot is rounded.
    return std::any_of(monitors.begin(), monitors.end(), [&](const RectPixels &on) {
        return on.top < -1 && on.bottom >= -1 && on.left <= to && on.right > from;
    });
}

QRect reachable(const QRect &area) {
    const int needed = std::min(handle, area.width());
    for (const RectPixels &on : all()) {
        const int columns = std::min(area.right() + 1, on.right) - std::max(area.left(), on.left);
        if (columns >= needed && area.top() < on.bottom)
            return area;
    }
    const QSize on = primary().size();
    QRect moved = area;
    moved.moveLeft(std::max(0, std::min(area.left(), on.width() - area.width())));
    if (area.top() >= on.height())
        moved.moveBottom(on.height() - 1);
    return moved;
}

QPointF toProgram(QPointF toolkit) {
    if (isPlain())
        return toolkit - primary().topLeft();
    const QScreen *screen = monitorOfToolkit(toolkit);
    return toolkit - screen->geometry().topLeft() + cornerOf(*screen);
}

QPoint toToolkit(QPoint program) { return toToolkit(QRect(program, QSize(1, 1))).topLeft(); }

QPoint deviceOf(QPoint program) {
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (screen == nullptr)
        return program;
    return screen->geometry().topLeft() + (QPointF(program) * screen->devicePixelRatio()).toPoint();
}

QRect toToolkit(const QRect &program) {
    if (isPlain())
        return program.translated(primary().topLeft());
    const QScreen *screen = monitorOfDevice(deviceOf(program.center()));
    return program.translated(screen->geometry().topLeft() - cornerOf(*screen).toPoint());
}

Standing standing(X11 &x11, const QWidget &window) {
    const QPoint told = window.geometry().topLeft();
    if (isPlain())
        return {told, QPointF(told - primary().topLeft())};
    const auto native = static_cast<xcb_window_t>(window.effectiveWinId());
    const std::optional<QPoint> corner = x11.cornerOf(native);
    if (!corner)
        return {told, toProgram(told)};
    const QScreen &first = *QGuiApplication::primaryScreen();
    const double density = first.devicePixelRatio();
    const QPointF program = QPointF(*corner - first.geometry().topLeft()) / density;
    return {toToolkit(QRect(program.toPoint(), window.size())).topLeft(), program};
}

} // namespace velmora::platform::qt::screens
