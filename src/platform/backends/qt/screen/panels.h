#pragma once

// What panels keep for themselves of a monitor, where there are several: the toolkit leaves panels
// out of its account there.

#include "platform/backends/qt/screen/x11.h"

#include <QRect>
#include <QSize>

#include <span>

class QScreen;

namespace velmora::platform::qt {

// What a window keeps at an edge of the whole screen, in device pixels: as far from the edge as
// that, between two rows or columns (both included).
struct Strut {
    enum class Edge { Left, Right, Top, Bottom } edge = Edge::Left;
    int depth = 0;
    int from = 0;
    int to = 0;
};

// What is left of a monitor on a screen of that size; a strut that would leave nothing does not
// count.
QRect leftFree(const QRect &monitor, QSize root, std::span<const Strut> struts);

// The part of the monitor that panels leave free, in the toolkit's coordinates.
QRect freeOfPanels(X11 &x11, const QScreen &screen);

} // namespace velmora::platform::qt
