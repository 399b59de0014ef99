#include "platform/backends/qt/system/edge_sensor.h"

#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/screens.h"

#include <QGuiApplication>
#include <QScreen>

namespace velmora::platform::qt {

EdgeSensor::~EdgeSensor() {
    if (sensor_ != XCB_WINDOW_NONE)
        hub_.x11.destroySensor(sensor_);
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
    const QRect place(qRound(at.x() * density), qRound(at.y() * density),
                      qRound(toPixels(strip.width()) * density), 1);
    if (sensor_ == XCB_WINDOW_NONE)
        sensor_ = hub_.x11.makeSensor(place, [this] { touched_ = true; });
    else if (place != place_)
        hub_.x11.placeSensor(sensor_, place);
    place_ = place;
}

PointPixels EdgeSensor::pointer(PointPixels real) {
    if (!active_)
        return real;
    const forms::Form *shown = strip();
    if (shown == nullptr)
        return real;
    if (touched_) {
        // As long as the pointer stands on the edge, and until the strip has come down to it.
        touched_ = false;
        hub_.pointerOutside = false;
        return {qRound(toPixels(shown->left() + shown->width() / 2)), 0};
    }
    if (hub_.pointerOutside) {
        follow(*shown);
        return {real.x, qRound(toPixels(shown->height())) + 1};
    }
    return real;
}

} // namespace velmora::platform::qt
