#pragma once

// Screen measures in the program's coordinates: logical pixels, origin at the primary monitor's top
// left.

#include "base/geometry.h"
#include "platform/backends/qt/screen/x11.h"

#include <QPointF>
#include <QRect>

#include <vector>

class QScreen;

namespace velmora::platform::qt::screens {

// The primary monitor in the toolkit's coordinates.
QRect primary();
// The part of it that panels leave free, in the toolkit's coordinates.
QRect freeOfPanels(X11 &x11);

// The part that panels leave free of the monitor that has this place, in the toolkit's coordinates;
// of the primary one where none has it.
QRect freeOfPanelsAt(X11 &x11, QPoint place);

RectPixels workArea(X11 &x11);
// The strip at the bottom that the work area leaves free; of zero height if there is none.
RectPixels taskBar(X11 &x11);
std::vector<RectPixels> all();

// A place on the screens in the server's pixels: the toolkit counts a monitor's own from its
// corner.
QPoint toDevice(QPoint place);
// A monitor in the server's pixels.
QRect inDevicePixels(const QScreen &screen);
// Whether another monitor lies right above the primary one somewhere in these columns, in the
// toolkit's pixels.
bool goesOnAbove(int left, int right);

// `area` (in the toolkit's coordinates), or where it goes so that it can be reached: onto the
// primary monitor if no monitor has enough of its columns, or all of it lies below. How far it lies
// above the upper edge stays.
QRect reachable(const QRect &area);

QPointF toProgram(QPointF toolkit);
QPoint toToolkit(QPoint program);

} // namespace velmora::platform::qt::screens
