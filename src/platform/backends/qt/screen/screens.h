#pragma once

// Screen measures in the program's coordinates: logical pixels, origin at the primary monitor's top
// left.

#include "base/geometry.h"
#include "platform/backends/qt/screen/x11.h"

#include <QPointF>
#include <QRect>

#include <vector>

class QScreen;
class QWidget;

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

// The toolkit counts a monitor's pixels from that monitor's corner, which is where it is in the
// server's: at densities beyond 1 there are gaps between its monitors, and one place on the screens
// has a name for each of them. The program's places go on from one monitor to the next. A window is
// counted by the monitor that has its middle.

// A place on the screens in the server's pixels: the toolkit counts a monitor's own from its
// corner.
QPoint toDevice(QPoint place);
// A monitor in the server's pixels.
QRect inDevicePixels(const QScreen &screen);
// A place of the program in the server's pixels.
QPoint deviceOf(QPoint program);
// Whether another monitor lies right above the primary one somewhere in these columns, in the
// toolkit's pixels.
bool goesOnAbove(int left, int right);

// `area` (of the program), or where it goes so that it can be reached: onto the primary monitor if
// no monitor has enough of its columns, or all of it lies below. How far it lies above the upper
// edge stays.
QRect reachable(const QRect &area);

QPointF toProgram(QPointF toolkit);
QPoint toToolkit(QPoint program);
// A window.
QRect toToolkit(const QRect &program);

// Where the server has a shown window, by both counts. The toolkit's own word is one by the monitor
// that the window was on before.
struct Standing {
    QPoint toolkit;
    QPointF program;
};
Standing standing(X11 &x11, const QWidget &window);

} // namespace velmora::platform::qt::screens
