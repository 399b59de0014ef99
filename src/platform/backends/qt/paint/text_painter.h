#pragma once

// Draws texts: aligned, wrapped, with a dark rim.

#include "platform/backends/qt/paint/fonts.h"
#include "platform/forms/controls.h"

#include <QColor>
#include <QImage>
#include <QPainter>

#include <deque>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::platform::qt {

struct TextLook {
    const forms::Font *font = nullptr;
    QColor colour;
    forms::Alignment alignment = forms::Alignment::Left;
    bool wrap = false;
    bool rim = false;
    bool middle = false; // in the middle of the box's height instead of at its top
};

class TextPainter {
public:
    explicit TextPainter(Fonts &fonts) noexcept : fonts_(fonts) {}

    // Within `box` (logical pixels), clipped to it.
    void draw(QPainter &painter, const QRectF &box, std::u16string_view text, const TextLook &look);

    forms::TextExtent extent(std::u16string_view text, const forms::Font &font) {
        return fonts_.extent(text, font);
    }

private:
    void drawLines(QPainter &painter, const QRectF &box, std::u16string_view text,
                   const TextLook &look);
    void drawPieces(QPainter &painter, const QRectF &box,
                    const std::vector<std::u16string_view> &pieces, const TextLook &look);
    void drawPlain(QPainter &painter, const ShapedText &shaped, const ShapedText::Line &line,
                   QPointF at, const QColor &colour);
    // A text with its rim is costly to draw and moves often: its picture is kept.
    void drawRimmed(QPainter &painter, const std::shared_ptr<const ShapedText> &shaped,
                    const ShapedText::Line &line, QPointF at, const QColor &colour);

    struct Picture {
        std::shared_ptr<const ShapedText> text; // held, so that its address stays its own
        int line = 0;
        QRgb colour = 0;
        double density = 1;
        QImage image;
        double lift = 0; // how far above its place it is drawn, in logical pixels
    };
    Fonts &fonts_;
    std::deque<Picture> pictures_;
};

} // namespace velmora::platform::qt
