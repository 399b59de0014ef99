#pragma once

// Draws a parsed design as its window would first look: pictures and texts as the program's view
// draws them, toolkit widgets as plain boxes of the same size.

#include "design.h"
#include "platform/backends/qt/paint/text_painter.h"

#include <QPainter>

namespace velmora::preview {

class DesignView {
public:
    // Hidden controls are drawn as well when `everything` is set.
    DesignView(QPainter &painter, platform::qt::TextPainter &texts, platform::qt::Fonts &fonts,
               bool everything);

    void draw(const formc::Thing &form);

    static QSizeF sizeOf(const formc::Thing &thing); // logical pixels

private:
    void children(const formc::Thing &container, QPointF origin);
    void control(const formc::Thing &thing, QRectF place);
    void text(const formc::Thing &thing, std::string_view property, const QRectF &box,
              QRgb fallback, forms::Alignment alignment, bool middle);
    void box(const formc::Thing &thing, const QRectF &place);
    void toggle(const formc::Thing &thing, const QRectF &place, bool round);
    void list(const formc::Thing &thing, const QRectF &place);
    void frame(const formc::Thing &thing, const QRectF &place);
    void button(const formc::Thing &thing, const QRectF &place);
    QRectF fitted(const formc::Thing &thing, QRectF place);

    QPainter &painter_;
    platform::qt::TextPainter &texts_;
    platform::qt::Fonts &fonts_;
    bool everything_;
};

// The number of a drawing by name; None when there is no such drawing.
forms::Picture pictureNamed(std::string_view name);

} // namespace velmora::preview
