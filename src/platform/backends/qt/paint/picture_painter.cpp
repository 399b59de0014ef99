#include "platform/backends/qt/paint/picture_painter.h"

#include "base/geometry.h"
#include "platform/backends/qt/paint/picture_table_data.h"

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <span>

namespace velmora::platform::qt {

namespace {

using namespace picture_table;

const PictureRecord *recordOf(forms::Picture picture) {
    const auto number = static_cast<std::size_t>(picture);
    return number == 0 || number > std::size(pictures) ? nullptr : &pictures[number - 1];
}

std::span<const ShapeRecord> shapesOf(const PictureRecord &record) {
    return std::span(shapes).subspan(record.firstShape, record.shapeCount);
}

// How one axis of a drawing lies in the target, in device pixels.
class Axis {
public:
    // Uniform: one scale, one place for the origin.
    Axis(double scale, double origin) : scale_(scale), middleScale_(scale), begin_(origin) {}

    // With insets (units, from the drawing's near and far edge).
    Axis(double from, double length, double near, double far, double begin, double end,
         double scale)
        : scale_(scale), from_(from), near_(near), middle_(length - near - far), begin_(begin) {
        const double fixed = (near + far) * scale;
        const double free = end - begin - fixed;
        if (free >= 0) {
            middleScale_ = middle_ > 0 ? free / middle_ : 0;
            return;
        }
        // Too small for the insets: they shrink and the middle vanishes.
        scale_ = (end - begin) / (near + far);
        middleScale_ = 0;
    }

    double map(double unit) const {
        const double at = unit - from_;
        if (at <= near_)
            return begin_ + at * scale_;
        if (at <= near_ + middle_)
            return begin_ + near_ * scale_ + (at - near_) * middleScale_;
        return begin_ + near_ * scale_ + middle_ * middleScale_ + (at - near_ - middle_) * scale_;
    }

private:
    double scale_ = 1;
    double middleScale_ = 1;
    double from_ = 0;
    double near_ = 1e9;
    double middle_ = 0;
    double begin_ = 0;
};

double units(int fixed) { return fixed / static_cast<double>(unit); }

// A drawing placed in a target, everything in device pixels.
class Placement {
public:
    Placement(const PictureRecord &record, const QRectF &target, double scaleX, double scaleY)
        : x_(axisX(record, target, scaleX, scaleY)), y_(axisY(record, target, scaleX, scaleY)),
          scale_(record.sliced ? scaleX : uniform(record, target)) {}

    QPointF map(double x, double y) const { return {x_.map(x), y_.map(y)}; }
    double scale() const { return scale_; }

private:
    static double uniform(const PictureRecord &record, const QRectF &target) {
        return std::min(target.width() / units(record.width),
                        target.height() / units(record.height));
    }
    // Centred on a whole device pixel, so that a drawing keeps its shape wherever it stands.
    static double centred(double begin, double length, double drawn) {
        return begin + std::round((length - drawn) / 2);
    }
    static Axis axisX(const PictureRecord &r, const QRectF &target, double scaleX, double) {
        if (r.sliced)
            return {
                units(r.left),  units(r.width), units(r.slice[0]), units(r.slice[2]), target.left(),
                target.right(), scaleX};
        const double scale = uniform(r, target);
        return {scale, centred(target.left(), target.width(), units(r.width) * scale) -
                           units(r.left) * scale};
    }
    static Axis axisY(const PictureRecord &r, const QRectF &target, double, double scaleY) {
        if (r.sliced)
            return {units(r.top),
                    units(r.height),
                    units(r.slice[1]),
                    units(r.slice[3]),
                    target.top(),
                    target.bottom(),
                    scaleY};
        const double scale = uniform(r, target);
        return {scale, centred(target.top(), target.height(), units(r.height) * scale) -
                           units(r.top) * scale};
    }

    Axis x_;
    Axis y_;
    double scale_;
};

// The width of a stroke on the screen: as it scales, or for a snapped one a whole number of pixels.
double strokeWidthOf(const ShapeRecord &shape, double scale) {
    const double width = units(shape.strokeWidth) * scale;
    return shape.snap ? std::max(1.0, std::floor(width + 0.25)) : width;
}

// Moves an end point so that an edge along an axis through it lies between device pixels, or that a
// stroke of whole width covers whole pixels.
QPointF snappedPoint(QPointF at, double strokeWidth) {
    const double half = strokeWidth / 2;
    return {std::round(at.x() - half) + half, std::round(at.y() - half) + half};
}

class PathBuilder {
public:
    PathBuilder(const ShapeRecord &shape, const Placement &placement)
        : placement_(placement), snap_(shape.snap),
          stroke_(shape.stroke.kind == PaintKind::None ? 0
                                                       : strokeWidthOf(shape, placement.scale())),
          next_(coordinates + shape.firstCoordinate) {
        path_.setFillRule(shape.evenOdd ? Qt::OddEvenFill : Qt::WindingFill);
        for (const Verb verb : std::span(verbs).subspan(shape.firstVerb, shape.verbCount))
            add(verb);
    }

    const QPainterPath &path() const { return path_; }

private:
    QPointF take() {
        const double x = units(*next_++);
        const double y = units(*next_++);
        return placement_.map(x, y);
    }

    // The end point, and how far snapping moved it: its control points move along.
    QPointF moved(QPointF at, QPointF &by) const {
        if (!snap_)
            return at;
        const QPointF to = snappedPoint(at, stroke_);
        by = to - at;
        return to;
    }

    void add(Verb verb) {
        switch (verb) {
        case Verb::Move:
            path_.moveTo(moved(take(), lastMove_));
            break;
        case Verb::Line:
            path_.lineTo(moved(take(), lastMove_));
            break;
        case Verb::Cubic: {
            const QPointF first = take() + lastMove_;
            const QPointF second = take();
            const QPointF end = moved(take(), lastMove_);
            path_.cubicTo(first, second + lastMove_, end);
            break;
        }
        case Verb::Close:
            path_.closeSubpath();
            break;
        }
    }

    QPainterPath path_;
    const Placement &placement_;
    bool snap_;
    double stroke_;
    const std::int16_t *next_;
    QPointF lastMove_;
};

// Colour stops keep their places in the drawing even where it is stretched between them.
QLinearGradient gradientOf(const GradientRecord &record, const Placement &placement) {
    const QPointF from = placement.map(units(record.fromX), units(record.fromY));
    const QPointF to = placement.map(units(record.toX), units(record.toY));
    const QPointF along = to - from;
    const double length = QPointF::dotProduct(along, along);
    QLinearGradient gradient(from, to);
    QGradientStops list;
    list.reserve(record.stopCount);
    for (const StopRecord &stop : std::span(stops).subspan(record.firstStop, record.stopCount)) {
        const double offset = stop.offset / 65535.0;
        const QPointF at =
            placement.map(units(record.fromX) + offset * units(record.toX - record.fromX),
                          units(record.fromY) + offset * units(record.toY - record.fromY));
        const double place = length > 0 ? QPointF::dotProduct(at - from, along) / length : offset;
        list.append({std::clamp(place, 0.0, 1.0), QColor::fromRgba(stop.colour)});
    }
    gradient.setStops(list);
    return gradient;
}

QBrush brushOf(const PaintRecord &paint, const Placement &placement) {
    if (paint.kind == PaintKind::Solid)
        return QColor::fromRgba(paint.value);
    if (paint.kind == PaintKind::Gradient)
        return gradientOf(gradients[paint.value], placement);
    return Qt::NoBrush;
}

bool hasAlpha(const QPainter &painter) {
    // Only a surface that keeps coverage can show a hole.
    const QPaintDevice *device = painter.device();
    return device != nullptr && device->depth() == 32 &&
           painter.paintEngine()->hasFeature(QPaintEngine::PorterDuff);
}

void paintHole(QPainter &painter, const QPainterPath &path) {
    if (!hasAlpha(painter)) {
        constexpr int part = 0xC7;
        static_assert(keyColour == 0x00C7C7C7);
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.fillPath(path, QColor(part, part, part));
        painter.setRenderHint(QPainter::Antialiasing);
        return;
    }
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(path, Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void paintShape(QPainter &painter, const ShapeRecord &shape, const Placement &placement) {
    static constexpr Qt::PenCapStyle caps[] = {Qt::FlatCap, Qt::RoundCap, Qt::SquareCap};
    static constexpr Qt::PenJoinStyle joins[] = {Qt::SvgMiterJoin, Qt::RoundJoin, Qt::BevelJoin};
    const PathBuilder builder(shape, placement);
    if (shape.fill.kind == PaintKind::Hole)
        paintHole(painter, builder.path());
    else if (shape.fill.kind != PaintKind::None)
        painter.fillPath(builder.path(), brushOf(shape.fill, placement));
    if (shape.stroke.kind == PaintKind::None)
        return;
    QPen pen(brushOf(shape.stroke, placement), strokeWidthOf(shape, placement.scale()));
    pen.setCapStyle(caps[static_cast<std::size_t>(shape.cap)]);
    pen.setJoinStyle(joins[static_cast<std::size_t>(shape.join)]);
    painter.strokePath(builder.path(), pen);
}

} // namespace

void paintPicture(QPainter &painter, forms::Picture picture, const QRectF &target) {
    const PictureRecord *record = recordOf(picture);
    if (record == nullptr || target.isEmpty())
        return;
    // Everything is placed in device pixels; the world transform is undone meanwhile.
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(target);
    const Placement placement(*record, device, toDevice.m11(), toDevice.m22());
    painter.save();
    painter.setWorldTransform(toDevice.inverted() * painter.worldTransform());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    for (const ShapeRecord &shape : shapesOf(*record))
        paintShape(painter, shape, placement);
    painter.restore();
}

QSizeF pictureSize(forms::Picture picture) {
    const PictureRecord *record = recordOf(picture);
    return record == nullptr ? QSizeF(0, 0) : QSizeF(units(record->width), units(record->height));
}

bool pictureIsKeyed(forms::Picture picture) {
    const PictureRecord *record = recordOf(picture);
    if (record == nullptr)
        return false;
    const auto all = shapesOf(*record);
    return std::any_of(all.begin(), all.end(),
                       [](const ShapeRecord &shape) { return shape.fill.kind == PaintKind::Hole; });
}

} // namespace velmora::platform::qt
