// The program's own controls: a surface or a flat ground, a caption, an inverting bar.

#include "platform/backends/qt/paint/control_painter.h"
#include "platform/backends/qt/paint/look.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/text_convert.h"

#include <QImage>

#include <algorithm>

namespace velmora::platform::qt {

namespace {

constexpr double ringInset = 1;
constexpr double ringRadius = 3;

QColor halfWay(const QColor &a, const QColor &b) {
    return QColor::fromRgb((a.red() + b.red()) / 2, (a.green() + b.green()) / 2,
                           (a.blue() + b.blue()) / 2);
}

// What a dimmed caption fades into: the ground in the middle of the control.
QColor groundBelow(const forms::CustomLook &look) {
    if (look.surface == nullptr || look.surface->empty())
        return toQColor(look.ground);
    return QColor::fromRgb(
        look.surface->pixel(look.surface->width() / 2, look.surface->height() / 2));
}

void paintGround(QPainter &painter, const forms::CustomLook &look, const QRectF &place,
                 double density) {
    if (look.surface != nullptr && !look.surface->empty()) {
        const forms::Surface &surface = *look.surface;
        const QImage image(reinterpret_cast<const uchar *>(surface.data()), surface.width(),
                           surface.height(), surface.width() * 4, QImage::Format_RGB32);
        painter.drawImage(place, image);
    } else {
        painter.fillRect(place, toQColor(look.ground));
    }
    if (look.border) {
        const double half = hairline(density) / 2;
        painter.setPen(QPen(QColor::fromRgba(look::insetOutline), hairline(density)));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(place.adjusted(half, half, -half, -half));
    }
}

} // namespace

void ControlPainter::paintCustom(const Job &job, const forms::UserControl &control,
                                 const QRectF &place) {
    if (place.isEmpty())
        return;
    const forms::CustomLook look = control.look();
    const auto paintCaption = [&](QPainter &painter, QPointF origin) {
        if (look.caption.empty())
            return;
        TextLook text;
        text.font = &look.captionFont;
        text.colour = toQColor(look.captionColor);
        if (look.captionDimmed)
            text.colour = halfWay(text.colour, groundBelow(look));
        text.alignment = look.captionAlignment;
        text.middle = true;
        texts_.draw(painter, toPixels(look.captionPlace).translated(origin), look.caption, text);
    };
    if (look.bar.width > 0) {
        // Inverting needs the pixels below in hand, whatever the window's own are like.
        const QSize size(qRound(place.width() * job.density), qRound(place.height() * job.density));
        QImage image(size, QImage::Format_RGB32);
        if (image.isNull())
            return;
        image.setDevicePixelRatio(job.density);
        QPainter inner(&image);
        paintGround(inner, look, QRectF(QPointF(0, 0), place.size()), job.density);
        paintCaption(inner, QPointF(0, 0));
        inner.setCompositionMode(QPainter::RasterOp_NotSourceXorDestination);
        inner.fillRect(snapped(toPixels(look.bar), job.density), toQColor(look.barColor));
        inner.end();
        job.painter.drawImage(place.topLeft(), image);
    } else {
        paintGround(job.painter, look, place, job.density);
        paintCaption(job.painter, place.topLeft());
    }
}

// Round what has the keyboard.
void ControlPainter::paintRing(const Job &job, const QRectF &place) {
    job.painter.setRenderHint(QPainter::Antialiasing);
    job.painter.setPen(QPen(QColor::fromRgba(look::accent), hairline(job.density)));
    job.painter.setBrush(Qt::NoBrush);
    const double inset = ringInset + hairline(job.density) / 2;
    job.painter.drawRoundedRect(place.adjusted(inset, inset, -inset, -inset), ringRadius,
                                ringRadius);
    job.painter.setRenderHint(QPainter::Antialiasing, false);
}

} // namespace velmora::platform::qt
