#include "platform/backends/qt/screen/panels.h"

#include "platform/backends/qt/screen/screens.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace velmora::platform::qt {

namespace {

// The first four of either property are the depths at left, right, top and bottom; the longer one
// goes on with where each begins and ends.
constexpr std::size_t depths = 4;
constexpr std::size_t depthsAndEnds = 12;
constexpr std::size_t areaNumbers = 4;

int number(std::uint32_t told) {
    return static_cast<int>(
        std::min<std::uint32_t>(told, std::numeric_limits<std::int16_t>::max()));
}

// A window that keeps part of its monitor keeps it between that monitor's ends, where it says so.
void append(std::vector<Strut> &struts, const std::vector<std::uint32_t> &told) {
    if (told.size() < depths)
        return;
    for (std::size_t i = 0; i < depths; ++i) {
        if (told[i] == 0)
            continue;
        Strut strut{static_cast<Strut::Edge>(i), number(told[i]), 0,
                    std::numeric_limits<std::int16_t>::max()};
        if (told.size() == depthsAndEnds) {
            strut.from = number(told[depths + 2 * i]);
            strut.to = number(told[depths + 2 * i + 1]);
        }
        struts.push_back(strut);
    }
}

std::vector<Strut> allStruts(X11 &x11) {
    std::vector<Strut> struts;
    const auto clients = x11.windowsOfRoot(X11::ClientList);
    if (!clients)
        return struts;
    const auto partial = x11.numbersOf(*clients, X11::StrutPartial, depthsAndEnds);
    const auto whole = x11.numbersOf(*clients, X11::Strut, depths);
    for (std::size_t i = 0; i < clients->size(); ++i)
        append(struts, partial[i].size() == depthsAndEnds ? partial[i] : whole[i]);
    return struts;
}

// Shells whose panels are no windows tell what they leave, monitor by monitor.
std::optional<QRect> toldFree(X11 &x11, const QRect &monitor) {
    constexpr std::uint32_t most = 64;
    const xcb_window_t root = x11.root();
    const auto told = x11.numbersOf({&root, 1}, X11::GtkWorkAreas, most)[0];
    for (std::size_t i = 0; i + areaNumbers <= told.size(); i += areaNumbers) {
        const QRect area(number(told[i]), number(told[i + 1]), number(told[i + 2]),
                         number(told[i + 3]));
        if (!area.isEmpty() && monitor.contains(area))
            return area;
    }
    return std::nullopt;
}

} // namespace

QRect leftFree(const QRect &monitor, QSize root, std::span<const Strut> struts) {
    QRect free = monitor;
    for (const Strut &strut : struts) {
        const int length = strut.to - strut.from + 1;
        QRect kept;
        QRect left = free;
        switch (strut.edge) {
        case Strut::Edge::Left:
            kept = {0, strut.from, strut.depth, length};
            left.setLeft(std::max(free.left(), kept.right() + 1));
            break;
        case Strut::Edge::Right:
            kept = {root.width() - strut.depth, strut.from, strut.depth, length};
            left.setRight(std::min(free.right(), kept.left() - 1));
            break;
        case Strut::Edge::Top:
            kept = {strut.from, 0, length, strut.depth};
            left.setTop(std::max(free.top(), kept.bottom() + 1));
            break;
        case Strut::Edge::Bottom:
            kept = {strut.from, root.height() - strut.depth, length, strut.depth};
            left.setBottom(std::min(free.bottom(), kept.top() - 1));
            break;
        }
        if (length > 0 && kept.intersects(monitor) && left.isValid())
            free = left;
    }
    return free;
}

QRect freeOfPanels(X11 &x11, const QScreen &screen) {
    if (QGuiApplication::screens().size() == 1)
        return screen.availableGeometry();
    const QRect monitor = screens::inDevicePixels(screen);
    const std::optional<QRect> told = toldFree(x11, monitor);
    const QRect free = told ? *told : leftFree(monitor, x11.rootSize(), allStruts(x11));
    const double density = screen.devicePixelRatio();
    const auto inward = [&](int from, int to, int base) {
        return std::pair(base + static_cast<int>(std::ceil((from - base) / density)),
                         base + static_cast<int>(std::floor((to + 1 - base) / density)) - 1);
    };
    const auto [left, right] = inward(free.left(), free.right(), monitor.left());
    const auto [top, bottom] = inward(free.top(), free.bottom(), monitor.top());
    return {QPoint(left, top), QPoint(right, bottom)};
}

} // namespace velmora::platform::qt
