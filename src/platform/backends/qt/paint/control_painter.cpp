#include "platform/backends/qt/paint/control_painter.h"

#include "platform/backends/qt/paint/look.h"
#include "platform/backends/qt/paint/picture_painter.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/text_convert.h"

namespace velmora::platform::qt {

namespace {

constexpr double frameRadius = 5;
constexpr double frameCaptionLeft = 12;
constexpr double disabledOpacity = 0.45;

bool isKey(Colour colour) { return forms::plainColour(colour) == keyColour; }

} // namespace

void ControlPainter::fill(const Job &job, const QRectF &area, Colour colour) {
    if (job.keyed && isKey(colour)) {
        job.painter.save();
        job.painter.setCompositionMode(QPainter::CompositionMode_Source);
        job.painter.fillRect(area, Qt::transparent);
        job.painter.restore();
        return;
    }
    job.painter.fillRect(area, toQColor(colour));
}

void ControlPainter::paintFlatGround(const Job &job, const forms::Form &form, const QRectF &area) {
    fill(job, area, form.backColor());
}

bool ControlPainter::makesHoles(const forms::Control &control) {
    switch (control.kind()) {
    case forms::Kind::Label: {
        const auto &label = static_cast<const forms::Label &>(control);
        return !label.transparent() && isKey(label.backColor());
    }
    case forms::Kind::PictureBox: {
        const auto &box = static_cast<const forms::PictureBox &>(control);
        return (!box.transparent() && isKey(box.backColor())) || pictureIsKeyed(box.picture());
    }
    case forms::Kind::Shape: {
        const auto &shape = static_cast<const forms::Shape &>(control);
        return shape.picture() == forms::Picture::None ? isKey(shape.fillColor())
                                                       : pictureIsKeyed(shape.picture());
    }
    case forms::Kind::Image:
        return pictureIsKeyed(static_cast<const forms::Image &>(control).picture());
    default:
        return false;
    }
}

void ControlPainter::paintChildren(const Job &job, const forms::Container &container) {
    for (const forms::Control *control : container.controls()) {
        if (!control->visible() || job.elsewhere(*control))
            continue;
        paint(job, *control);
    }
}

void ControlPainter::paint(const Job &job, const forms::Control &control) {
    const QRectF place = snapped(toPixels(control.placeInForm()), job.density);
    // Letters may lean out of their label by a pixel.
    if (!place.adjusted(-1, -1, 1, 1).intersects(job.dirty))
        return;
    switch (control.kind()) {
    case forms::Kind::Label:
        paintLabel(job, static_cast<const forms::Label &>(control), place);
        break;
    case forms::Kind::Image:
        paintPicture(job.painter, static_cast<const forms::Image &>(control).picture(), place);
        break;
    case forms::Kind::Shape:
        paintShape(job, static_cast<const forms::Shape &>(control), place);
        break;
    case forms::Kind::Line:
        paintLine(job, static_cast<const forms::Line &>(control));
        break;
    case forms::Kind::PictureBox:
        paintBox(job, static_cast<const forms::PictureBox &>(control), place);
        break;
    case forms::Kind::Frame:
        paintFrame(job, static_cast<const forms::Frame &>(control), place);
        break;
    case forms::Kind::Custom:
        paintCustom(job, static_cast<const forms::UserControl &>(control), place);
        break;
    default:
        break;
    }
    if (job.focused == &control)
        paintRing(job, place);
}

void ControlPainter::paintLabel(const Job &job, const forms::Label &label, const QRectF &place) {
    if (!label.transparent())
        fill(job, place, label.backColor());
    TextLook look;
    look.font = &label.font();
    look.colour = toQColor(label.foreColor());
    look.alignment = label.alignment();
    look.wrap = label.wordWrap();
    look.rim = label.rim();
    if (!label.enabled())
        look.colour.setAlphaF(disabledOpacity);
    texts_.draw(job.painter, place, label.caption(), look);
}

void ControlPainter::paintShape(const Job &job, const forms::Shape &shape, const QRectF &place) {
    if (place.isEmpty())
        return;
    if (shape.picture() != forms::Picture::None)
        paintPicture(job.painter, shape.picture(), place);
    else
        fill(job, place, shape.fillColor());
}

void ControlPainter::paintLine(const Job &job, const forms::Line &line) {
    const forms::Control *outer = line.container().asControl();
    const QRectF base = outer != nullptr ? toPixels(outer->placeInForm()) : QRectF();
    const double thick = hairline(job.density);
    const QPointF from(toPixels(line.x1()) + base.x(), toPixels(line.y1()) + base.y());
    const QPointF to(toPixels(line.x2()) + base.x(), toPixels(line.y2()) + base.y());
    const QColor colour = toQColor(line.borderColor());
    if (from.x() == to.x() || from.y() == to.y()) {
        QRectF bar = snapped(QRectF(from, to).normalized(), job.density);
        if (from.x() == to.x())
            bar.setWidth(thick);
        if (from.y() == to.y())
            bar.setHeight(thick);
        job.painter.fillRect(bar, colour);
        return;
    }
    job.painter.setRenderHint(QPainter::Antialiasing);
    job.painter.setPen(QPen(colour, thick));
    job.painter.drawLine(from, to);
    job.painter.setRenderHint(QPainter::Antialiasing, false);
}

void ControlPainter::paintBox(const Job &job, const forms::PictureBox &box, const QRectF &place) {
    if (place.isEmpty())
        return;
    if (!box.transparent())
        fill(job, place, box.backColor());
    paintPicture(job.painter, box.picture(), place);
    if (box.controls().empty())
        return;
    job.painter.save();
    job.painter.setClipRect(place, Qt::IntersectClip);
    paintChildren(job, box);
    job.painter.restore();
}

void ControlPainter::paintFrame(const Job &job, const forms::Frame &frame, const QRectF &place) {
    const double thick = hairline(job.density);
    const auto &caption = frame.caption();
    QRectF outline = place;
    QRectF captionBox;
    if (!caption.empty()) {
        const auto extent = texts_.extent(caption, frame.font());
        captionBox = QRectF(place.left() + frameCaptionLeft, place.top(), toPixels(extent.width),
                            toPixels(extent.height));
        outline.setTop(snapped(captionBox.center().y(), job.density));
    }
    job.painter.save();
    job.painter.setRenderHint(QPainter::Antialiasing);
    job.painter.setPen(QPen(QColor::fromRgba(look::outline), thick));
    job.painter.setBrush(Qt::NoBrush);
    if (!captionBox.isEmpty())
        job.painter.setClipRegion(QRegion(place.toAlignedRect()) -
                                      QRegion(captionBox.adjusted(-4, 0, 4, 0).toAlignedRect()),
                                  Qt::IntersectClip);
    const double half = thick / 2;
    job.painter.drawRoundedRect(outline.adjusted(half, half, -half, -half), frameRadius,
                                frameRadius);
    job.painter.restore();
    if (!captionBox.isEmpty()) {
        TextLook look;
        look.font = &frame.font();
        look.colour = QColor::fromRgba(look::secondVoice);
        texts_.draw(job.painter, captionBox, caption, look);
    }
    job.painter.save();
    job.painter.setClipRect(place, Qt::IntersectClip);
    paintChildren(job, frame);
    job.painter.restore();
}

} // namespace velmora::platform::qt
