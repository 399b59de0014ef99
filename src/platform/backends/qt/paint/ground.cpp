#include "platform/backends/qt/paint/ground.h"

#include "platform/backends/qt/paint/hole_shape.h"
#include "platform/backends/qt/paint/picture_painter.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/text_convert.h"

#include <algorithm>

namespace velmora::platform::qt {

namespace {

QSize deviceSize(const forms::Form &form, double density) {
    return {std::max(1, qRound(toPixels(form.width()) * density)),
            std::max(1, qRound(toPixels(form.height()) * density))};
}

bool isKey(Colour colour) { return forms::plainColour(colour) == keyColour; }

} // namespace

void Ground::forget() {
    image_ = QImage();
    solid_ = QRegion();
}

void Ground::draw(const forms::Form &form, double density, bool keyed, bool soft) {
    const QSize size = deviceSize(form, density);
    if (image_.size() == size && density_ == density && keyed_ == keyed && soft_ == soft)
        return;
    const bool holes = keyed && pictureIsKeyed(form.ground());
    image_ = QImage(size, holes ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    density_ = density;
    keyed_ = keyed;
    soft_ = soft;
    solid_ = QRegion(QRect(QPoint(0, 0), size));
    if (image_.isNull())
        return;
    image_.fill(holes ? QColor(Qt::transparent) : toQColor(form.backColor()));
    image_.setDevicePixelRatio(density);
    QPainter painter(&image_);
    paintPicture(painter, form.ground(),
                 QRectF(0, 0, size.width() / density, size.height() / density));
    painter.end();
    image_.setDevicePixelRatio(1);
    if (!holes)
        return;
    if (!soft)
        hardenEdges(image_);
    solid_ = QRegion();
    for (const xcb_rectangle_t &row : solidRows(image_, 255))
        solid_ += QRect(row.x, row.y, row.width, row.height);
}

void Ground::paint(const ControlPainter::Job &job, const forms::Form &form, bool soft) {
    if (form.ground() == forms::Picture::None) {
        ControlPainter::paintFlatGround(job, form, job.dirty);
        return;
    }
    draw(form, job.density, job.keyed, soft);
    // Pixel for pixel, without the painter's scale.
    job.painter.save();
    job.painter.setWorldTransform(QTransform::fromScale(1 / job.density, 1 / job.density));
    job.painter.drawImage(0, 0, image_);
    job.painter.restore();
}

bool Ground::isSolid(const forms::Form &form, const QRectF &area, double density, bool soft) {
    if (form.ground() == forms::Picture::None)
        return !isKey(form.backColor());
    draw(form, density, true, soft);
    const QRect device =
        QRectF(area.topLeft() * density, area.size() * density).toAlignedRect() & image_.rect();
    return QRegion(device).subtracted(solid_).isEmpty();
}

} // namespace velmora::platform::qt
