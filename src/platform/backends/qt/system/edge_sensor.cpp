#include "platform/backends/qt/system/edge_sensor.h"

#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/screens.h"

#include <QGuiApplication>
#include <QScreen>

namespace velmora::platform::qt {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds comingDown{500};

} // namespace

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
    const QRect place(qRound(at.x() * density), qRound(at.y() * density),
                      qRound(toPixels(strip.width()) * density), 1);
    if (sensor_ == XCB_WINDOW_NONE)
        sensor_ = hub_.x11.makeSensor(place, [this] {
            touched_ = Clock::now();
            hub_.pointerOutside = true;
        });
    else if (place != place_)
        hub_.x11.placeSensor(sensor_, place);
    place_ = place;
}

PointPixels EdgeSensor::pointer(PointPixels real) {
    const forms::Form *shown = active_ ? strip() : nullptr;
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
    if (hub_.pointerOutside && Clock::now() - touched_ < comingDown)
        return {middle, 0};
    if (hub_.pointerOutside || isOutOfSight)
        return {real.x, qRound(toPixels(shown->height())) + 1};
    return real;
}

} // namespace velmora::platform::qt
