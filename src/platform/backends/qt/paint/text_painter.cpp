#include "platform/backends/qt/paint/text_painter.h"

#include <QPainterPath>
#include <QRawFont>

#include <algorithm>
#include <cmath>

namespace velmora::platform::qt {

namespace {

constexpr std::size_t keptPictures = 3;
constexpr QRgb rimColour = 0xE60A0C10;
constexpr double largeEm = 24; // from here on glyphs are widened by their outline
constexpr double boldShare = 1.0 / 20;
constexpr double mostRim = 8;
constexpr std::size_t mostWrapped = 8192; // units; no box shows more

double rimWidth(double em) { return std::clamp(em / 22, 1.0, 4.0); }

QPainterPath outlineOf(const QGlyphRun &run) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    const QRawFont font = run.rawFont();
    const QList<quint32> glyphs = run.glyphIndexes();
    const QList<QPointF> places = run.positions();
    for (qsizetype i = 0; i < glyphs.size(); ++i)
        path.addPath(font.pathForGlyph(glyphs.at(i)).translated(places.at(i)));
    return path;
}

QPen roundPen(const QColor &colour, double width) {
    return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

double startOf(const TextLook &look, const QRectF &box, double width) {
    switch (look.alignment) {
    case forms::Alignment::Right:
        return box.right() - width;
    case forms::Alignment::Centre:
        return box.left() + (box.width() - width) / 2;
    case forms::Alignment::Left:
        break;
    }
    return box.left();
}

// What a painter can reach at most, in its own coordinates.
QRectF seenOf(const QPainter &painter) {
    const QPaintDevice &device = *painter.device();
    const QRectF all =
        painter.worldTransform().inverted().mapRect(QRectF(0, 0, device.width(), device.height()));
    return painter.hasClipping() ? all.intersected(painter.clipBoundingRect()) : all;
}

// A line is as high as its letters. Where the rim of those that hang down would be cut, it moves up
// into the room above.
double liftOf(const QRectF &ink, double lineHeight, double rim) {
    const double cut = std::max(0.0, ink.bottom() + rim - lineHeight);
    const double room = std::max(0.0, ink.top() - rim);
    return std::ceil(std::min(cut, room));
}

} // namespace

void TextPainter::draw(QPainter &painter, const QRectF &box, std::u16string_view text,
                       const TextLook &look) {
    if (text.empty() || box.isEmpty())
        return;
    const auto pieces = fonts_.pieces(text, *look.font);
    if (pieces.size() > 1 && !look.wrap)
        drawPieces(painter, box, pieces, look);
    else
        drawLines(painter, box, look.wrap ? text.substr(0, mostWrapped) : pieces.front(), look);
}

void TextPainter::drawPieces(QPainter &painter, const QRectF &box,
                             const std::vector<std::u16string_view> &pieces, const TextLook &look) {
    double width = 0;
    for (const std::u16string_view piece : pieces)
        width += fonts_.shape(piece, *look.font)->width;
    const QRectF seen = seenOf(painter).adjusted(-mostRim, 0, mostRim, 0);
    TextLook own = look;
    own.alignment = forms::Alignment::Left;
    painter.save();
    painter.setClipRect(box, Qt::IntersectClip);
    double left = startOf(look, box, width);
    for (const std::u16string_view piece : pieces) {
        const double wide = fonts_.shape(piece, *look.font)->width;
        if (left < seen.right() && left + wide > seen.left())
            drawLines(painter, {left, box.top(), wide + 1, box.height()}, piece, own);
        left += wide;
    }
    painter.restore();
}

void TextPainter::drawLines(QPainter &painter, const QRectF &box, std::u16string_view text,
                            const TextLook &look) {
    const auto shaped = fonts_.shape(text, *look.font, look.wrap ? box.width() : -1);
    const double top =
        look.middle ? box.top() + std::floor((box.height() - shaped->height) / 2) : box.top();
    const bool clips = shaped->width > box.width() + 1 || shaped->height > box.height() + 1;
    if (clips) {
        painter.save();
        painter.setClipRect(box, Qt::IntersectClip);
    }
    for (const ShapedText::Line &line : shaped->lines) {
        const QPointF at(startOf(look, box, line.width), top);
        if (look.rim)
            drawRimmed(painter, shaped, line, at, look.colour);
        else
            drawPlain(painter, *shaped, line, at, look.colour);
    }
    if (clips)
        painter.restore();
}

void TextPainter::drawPlain(QPainter &painter, const ShapedText &shaped,
                            const ShapedText::Line &line, QPointF at, const QColor &colour) {
    painter.setPen(colour);
    // QTextLine places itself at its own position within the layout.
    shaped.layout.lineAt(line.index).draw(&painter, at);
    if (line.heavier.empty())
        return;
    if (shaped.em < largeEm) {
        const QPointF aside(std::max(0.5, shaped.em * boldShare), 0);
        for (const QGlyphRun &run : line.heavier)
            painter.drawGlyphRun(at + aside, run);
        return;
    }
    painter.setBrush(Qt::NoBrush);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const QGlyphRun &run : line.heavier)
        painter.strokePath(outlineOf(run).translated(at), roundPen(colour, shaped.em * boldShare));
}

void TextPainter::drawRimmed(QPainter &painter, const std::shared_ptr<const ShapedText> &shaped,
                             const ShapedText::Line &line, QPointF at, const QColor &colour) {
    const double density = painter.device()->devicePixelRatioF();
    const double margin = std::ceil(rimWidth(shaped->em)) + 1;
    auto found = std::find_if(pictures_.begin(), pictures_.end(), [&](const Picture &picture) {
        return picture.text == shaped && picture.line == line.index &&
               picture.colour == colour.rgba() && picture.density == density;
    });
    if (found == pictures_.end()) {
        const double lineHeight = shaped->height / static_cast<double>(shaped->lines.size());
        QImage image(static_cast<int>(std::ceil((line.width + 2 * margin) * density)),
                     static_cast<int>(std::ceil((lineHeight + 2 * margin) * density)),
                     QImage::Format_ARGB32_Premultiplied);
        if (image.isNull())
            return;
        image.setDevicePixelRatio(density);
        image.fill(Qt::transparent);
        QPainter inner(&image);
        inner.setRenderHint(QPainter::Antialiasing);
        const QPointF origin(margin, margin - line.top);
        QPainterPath outline;
        outline.setFillRule(Qt::WindingFill);
        for (const QGlyphRun &run : shaped->layout.lineAt(line.index).glyphRuns())
            outline.addPath(outlineOf(run).translated(origin));
        const double heavier = line.heavier.empty() ? 0 : shaped->em * boldShare;
        inner.strokePath(outline,
                         roundPen(QColor::fromRgba(rimColour), 2 * rimWidth(shaped->em) + heavier));
        drawPlain(inner, *shaped, line, origin, colour);
        inner.end();
        if (pictures_.size() >= keptPictures)
            pictures_.pop_back();
        const QRectF ink = outline.boundingRect().translated(-origin - QPointF(0, line.top));
        pictures_.push_front({shaped, line.index, colour.rgba(), density, std::move(image),
                              liftOf(ink, lineHeight, rimWidth(shaped->em))});
        found = pictures_.begin();
    }
    painter.drawImage(at + QPointF(-margin, line.top - margin - found->lift), found->image);
}

} // namespace velmora::platform::qt
