#include "platform/backends/qt/system/edge_sensor.h"

#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/screens.h"
#include "platform/backends/qt/screen/shell.h"
#include "platform/backends/qt/window/form_window.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <utility>

namespace velmora::platform::qt {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds comingDown{500};
constexpr int edgeDepth = 6; // pixels at either side of it

} // namespace

EdgeSensor::EdgeSensor(Hub &hub, bool active) : hub_(hub), active_(active), onGnome_(isGnome()) {}

EdgeSensor::~EdgeSensor() { drop(); }

void EdgeSensor::drop() {
    if (sensor_ != XCB_WINDOW_NONE)
        hub_.x11.destroySensor(sensor_);
    sensor_ = XCB_WINDOW_NONE;
}

// The shown window that stands at the top edge by itself and is not the line across the desktop:
// the line never leaves the lower edge.
const forms::Form *EdgeSensor::strip() const {
    constexpr Twips nearEdge = 10;
    for (const auto &[number, entry] : hub_.forms)
        if (entry.form->unmanaged() && entry.form->visible() && entry.form->top() <= nearEdge)
            return entry.form;
    return nullptr;
}

void EdgeSensor::follow(const forms::Form &strip) {
    const QPoint at = screens::toToolkit({qRound(toPixels(strip.left())), 0});
    const QScreen *screen = QGuiApplication::primaryScreen();
    const double density = screen != nullptr ? screen->devicePixelRatio() : 1;
    const QPoint corner = screens::toDevice(at);
    const QRect place(corner.x(), corner.y(), qRound(toPixels(strip.width()) * density), 1);
    if (sensor_ == XCB_WINDOW_NONE)
        sensor_ = hub_.x11.makeSensor(place, [this] {
            touched_ = Clock::now();
            isTold_ = false;
            hub_.pointerOutside = true;
        });
    else if (place != place_)
        hub_.x11.placeSensor(sensor_, place);
    place_ = place;
}

// On Xorg the shell of GNOME keeps all clicks on its panel, below which the strip lies for it: the
// strip holds the pointer for as long as that is over it. A menu has it then.
void EdgeSensor::holdPointer(const forms::Form *strip, PointPixels pointer) {
    if (!onGnome_ || active_ || QApplication::activePopupWidget() != nullptr)
        return;
    const QtFormWindow *window = nullptr;
    for (const auto &[number, entry] : hub_.forms)
        if (strip != nullptr && entry.form == strip)
            window = entry.window;
    const bool isOver = window != nullptr && window->top() != nullptr && pointer.y >= 0 &&
                        QApplication::activeModalWidget() == nullptr &&
                        toPixels(strip->place()).contains(QPointF(pointer.x, pointer.y));
    // The toolkit goes on taking a button for held whose release was beside our windows.
    if (isOver && !hub_.x11.isButtonDown())
        window->top()->windowHandle()->setMouseGrabEnabled(true);
    else if (!isOver && holds_ && window != nullptr)
        window->top()->windowHandle()->setMouseGrabEnabled(false);
    holds_ = isOver;
}

// What slides out of sight below another monitor is called back by an edge at which no pointer
// stops.
PointPixels EdgeSensor::onTheEdge(const forms::Form *strip, PointPixels real) {
    if (strip == nullptr || strip->top() + strip->height() > 0 || real.y < -edgeDepth ||
        real.y > edgeDepth)
        return real;
    const int column = screens::toToolkit({real.x, 0}).x();
    return screens::goesOnAbove(column, column) ? PointPixels{real.x, 0} : real;
}

PointPixels EdgeSensor::pointer(PointPixels real) {
    if (!active_) {
        const forms::Form *shownHere = strip();
        holdPointer(shownHere, real);
        return onTheEdge(shownHere, real);
    }
    const forms::Form *shown = strip();
    const bool isOutOfSight = shown != nullptr && shown->top() + shown->height() <= 0;
    if (!isOutOfSight)
        drop();
    if (shown == nullptr)
        return real;
    const int middle = qRound(toPixels(shown->left() + shown->width() / 2));
    if (!hub_.x11.canSense())
        return {middle, 1}; // nothing would bring it back: it stays
    if (isOutOfSight)
        follow(*shown);
    // The strip takes its time to come down to the pointer, which then tells of itself.
    if (hub_.pointerOutside &&
        (!std::exchange(isTold_, true) || Clock::now() - touched_ < comingDown))
        return {middle, 0};
    if (hub_.pointerOutside || isOutOfSight)
        return {real.x, qRound(toPixels(shown->height())) + 1};
    return real;
}

} // namespace velmora::platform::qt
