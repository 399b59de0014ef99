#include "design_view.h"

#include "design_rows.h"
#include "platform/backends/qt/paint/look.h"
#include "platform/backends/qt/paint/picture_painter.h"
#include "platform/backends/qt/screen/geometry.h"

#include <algorithm>

namespace velmora::preview {

namespace {

using formc::Setting;
using formc::Thing;
namespace qt = platform::qt;

forms::Font fontOf(const Thing &thing) {
    const Setting *setting = thing.find("font");
    if (setting == nullptr)
        return {u"Arial", 9};
    forms::Font font(setting->font.name, static_cast<float>(setting->font.points),
                     setting->font.bold);
    font.setItalic(setting->font.italic);
    font.setUnderline(setting->font.underline);
    font.setStrikethrough(setting->font.strike);
    return font;
}

QColor colourOf(const Thing &thing, std::string_view property, QRgb fallback) {
    const Setting *setting = thing.find(property);
    if (setting == nullptr)
        return QColor::fromRgba(fallback);
    const auto bgr = setting->colour;
    return QColor::fromRgb(static_cast<int>(bgr & 0xFF), static_cast<int>(bgr >> 8 & 0xFF),
                           static_cast<int>(bgr >> 16 & 0xFF));
}

forms::Alignment alignmentOf(const Thing &thing) {
    const Setting *setting = thing.find("align");
    if (setting == nullptr || setting->word == "left")
        return forms::Alignment::Left;
    return setting->word == "right" ? forms::Alignment::Right : forms::Alignment::Centre;
}

QRectF placeOf(const Thing &thing) {
    const Setting *at = thing.find("at");
    const QPointF corner = at == nullptr ? QPointF()
                                         : QPointF(at->numbers[0], at->numbers[1]) /
                                               static_cast<double>(twipsPerPixel);
    return {corner, DesignView::sizeOf(thing)};
}

bool isKind(const Thing &thing, std::string_view word) { return thing.kind->word == word; }

constexpr double fieldRadius = 4;

} // namespace

forms::Picture pictureNamed(std::string_view name) {
    const auto *found =
        std::find(std::begin(forms::pictureNames), std::end(forms::pictureNames), name);
    return found == std::end(forms::pictureNames)
               ? forms::Picture::None
               : static_cast<forms::Picture>(found - std::begin(forms::pictureNames));
}

DesignView::DesignView(QPainter &painter, qt::TextPainter &texts, qt::Fonts &fonts, bool everything)
    : painter_(painter), texts_(texts), fonts_(fonts), everything_(everything) {}

QSizeF DesignView::sizeOf(const Thing &thing) {
    const Setting *size = thing.find("size");
    if (size == nullptr)
        return {};
    return QSizeF(size->numbers[0], size->numbers[1]) / static_cast<double>(twipsPerPixel);
}

void DesignView::draw(const Thing &form) {
    const QRectF whole(QPointF(), sizeOf(form));
    if (form.has("back"))
        painter_.fillRect(whole, colourOf(form, "back", qt::look::bodyMiddle));
    if (const Setting *ground = form.find("ground"))
        qt::paintPicture(painter_, pictureNamed(ground->word), whole);
    children(form, {});
}

void DesignView::children(const Thing &container, QPointF origin) {
    const double density = painter_.device()->devicePixelRatioF();
    for (const Thing &child : container.children) {
        if (child.has("hidden") && !everything_)
            continue;
        control(child, qt::snapped(fitted(child, placeOf(child).translated(origin)), density));
    }
}

// An auto-sized label takes the extent of its text; a centred one lies in the middle of its
// container, as the ticks of the program place it.
QRectF DesignView::fitted(const Thing &thing, QRectF place) {
    if (!thing.has("autosize"))
        return place;
    const Setting *caption = thing.find("caption");
    const auto extent =
        fonts_.extent(caption == nullptr ? std::u16string_view() : caption->text, fontOf(thing));
    const QSizeF size(qt::toPixels(extent.width), qt::toPixels(extent.height));
    const double left = alignmentOf(thing) == forms::Alignment::Centre
                            ? place.center().x() - size.width() / 2
                            : place.left();
    return {QPointF(left, place.top()), size};
}

void DesignView::control(const Thing &thing, QRectF place) {
    if (const Setting *picture = thing.find("picture"))
        if (!isKind(thing, "PictureBox"))
            qt::paintPicture(painter_, pictureNamed(picture->word), place);
    if (isKind(thing, "Label"))
        text(thing, "caption", place, qt::look::text, alignmentOf(thing), false);
    else if (isKind(thing, "PictureBox"))
        box(thing, place);
    else if (isKind(thing, "Frame"))
        frame(thing, place);
    else if (isKind(thing, "ListBox") || isKind(thing, "TextBox"))
        list(thing, place);
    else if (isKind(thing, "CheckBox"))
        toggle(thing, place, false);
    else if (isKind(thing, "OptionButton"))
        toggle(thing, place, true);
    else if (isKind(thing, "zkButton") || isKind(thing, "zkProgress"))
        button(thing, place);
}

void DesignView::text(const Thing &thing, std::string_view property, const QRectF &area,
                      QRgb fallback, forms::Alignment alignment, bool middle) {
    const Setting *content = thing.find(property);
    if (content == nullptr)
        return;
    const forms::Font font = fontOf(thing);
    qt::TextLook look;
    look.font = &font;
    look.colour = colourOf(thing, "fore", fallback);
    look.alignment = alignment;
    look.wrap = thing.has("wrap") || thing.has("multiline");
    look.rim = thing.has("rim");
    look.middle = middle;
    texts_.draw(painter_, area, content->text, look);
}

void DesignView::box(const Thing &thing, const QRectF &place) {
    if (!thing.has("transparent"))
        painter_.fillRect(place, colourOf(thing, "back", qt::look::bodyMiddle));
    if (const Setting *picture = thing.find("picture"))
        qt::paintPicture(painter_, pictureNamed(picture->word), place);
    painter_.save();
    painter_.setClipRect(place, Qt::IntersectClip);
    children(thing, place.topLeft());
    painter_.restore();
}

void DesignView::frame(const Thing &thing, const QRectF &place) {
    const double density = painter_.device()->devicePixelRatioF();
    const double half = qt::hairline(density) / 2;
    const Setting *caption = thing.find("caption");
    const auto extent = fonts_.extent(caption ? caption->text : u"", fontOf(thing));
    QRectF line = place;
    line.setTop(qt::snapped(place.top() + qt::toPixels(extent.height) / 2, density));
    const QRectF head(place.left() + 8, place.top(), qt::toPixels(extent.width),
                      qt::toPixels(extent.height));
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(QPen(QColor::fromRgba(qt::look::outline), 2 * half));
    painter_.setClipRegion(QRegion(place.toAlignedRect()) -
                           QRegion(head.adjusted(-4, 0, 4, 0).toAlignedRect()));
    painter_.drawRoundedRect(line.adjusted(half, half, -half, -half), 5, 5);
    painter_.restore();
    text(thing, "caption", head, qt::look::secondVoice, forms::Alignment::Left, false);
    painter_.save();
    painter_.setClipRect(place, Qt::IntersectClip);
    children(thing, place.topLeft());
    painter_.restore();
}

void DesignView::list(const Thing &thing, const QRectF &place) {
    const bool isList = isKind(thing, "ListBox");
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(isList ? QPen(Qt::NoPen) : QPen(QColor::fromRgba(qt::look::outline), 1));
    painter_.setBrush(colourOf(thing, "back", qt::look::insetFoot));
    painter_.drawRoundedRect(place.adjusted(0.5, 0.5, -0.5, -0.5), fieldRadius, fieldRadius);
    painter_.restore();
    const bool block = thing.has("multiline");
    text(thing, "text", place.adjusted(6, block ? 4 : 0, -6, block ? -4 : 0), qt::look::text,
         forms::Alignment::Left, !block);
}

void DesignView::toggle(const Thing &thing, const QRectF &place, bool round) {
    const QRectF mark(place.left(), std::floor(place.center().y() - 7), 14, 14);
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(QPen(QColor::fromRgba(qt::look::keyOutline), 1));
    painter_.setBrush(QColor::fromRgba(qt::look::insetTop));
    painter_.drawRoundedRect(mark.adjusted(0.5, 0.5, -0.5, -0.5), round ? 7 : 3, round ? 7 : 3);
    painter_.restore();
    text(thing, "caption", place.adjusted(20, 0, 0, 0), qt::look::text, forms::Alignment::Left,
         true);
}

void DesignView::button(const Thing &thing, const QRectF &place) {
    qt::paintPicture(painter_, forms::Picture::button_normal, place);
    text(thing, "caption", place, 0xFFF0F0F0, forms::Alignment::Centre, true);
}

} // namespace velmora::preview
