#pragma once

// Which installed face draws a font that the program asks for by its designed name, and how text in
// it is laid out. One place, because every further face costs memory: where the face of that name
// is not there, Chinese text is always drawn from one regular face, and its bold is made from that.

#include "platform/forms/font.h"

#include <QFont>
#include <QGlyphRun>
#include <QRawFont>
#include <QTextLayout>

#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velmora::platform::qt {

// A text laid out in lines, in logical pixels.
struct ShapedText {
    struct Line {
        int index = 0;
        double width = 0; // without trailing blanks of a wrapped line
        double top = 0;
        std::vector<QGlyphRun> heavier; // to be drawn bolder than their face is
    };
    QTextLayout layout;
    std::vector<Line> lines;
    double width = 0;
    double height = 0;
    double em = 0; // the font's size in logical pixels
};

class Fonts {
public:
    Fonts() = default;
    Fonts(const Fonts &) = delete;
    Fonts &operator=(const Fonts &) = delete;

    // The toolkit's font for a designed one, for boxes that it lays out. Advances do not depend on
    // the screen's density.
    QFont toolkitFont(const forms::Font &font);
    // The font of menus, boxes, tips.
    QFont plainFont(double points, bool bold = false);

    // Kept for the texts last drawn. `wrapWidth` below 0: lines end at line breaks only.
    std::shared_ptr<const ShapedText> shape(std::u16string_view text, const forms::Font &font,
                                            double wrapWidth = -1);

    // The pieces that a text of one long line is laid out and drawn in, one behind the other, cut
    // at blanks where there are some; any other text as a whole. Of a line without end only the
    // beginning counts: it would take an hour to roll by.
    std::vector<std::u16string_view> pieces(std::u16string_view text, const forms::Font &font);

    // How far behind its beginning the unit of this number stands in a text of one line, in logical
    // pixels.
    double placeOf(std::u16string_view text, const forms::Font &font, std::size_t unit);
    // The advance rounded up to whole logical pixels and the line height, in twips.
    forms::TextExtent extent(std::u16string_view text, const forms::Font &font);

private:
    struct Face {
        forms::Font asked;
        QFont font;
        QFont chinese; // the same in the Chinese face's regular weight
        QRawFont own;  // of a bold font, the face of the very name; invalid where there is none
    };
    const Face &face(const forms::Font &font);
    const QString &latinFamily();
    const QString &chineseFamily();
    QStringList familiesFor(std::u16string_view name);
    std::shared_ptr<ShapedText> layOut(std::u16string_view text, const Face &face,
                                       double wrapWidth);

    struct Kept {
        std::u16string key;
        std::shared_ptr<const ShapedText> text;
    };
    std::list<Face> faces_;
    std::list<Kept> kept_; // latest first
    std::unordered_map<std::u16string_view, std::list<Kept>::iterator> index_;
    QString latin_;
    QString chinese_;
};

} // namespace velmora::platform::qt
