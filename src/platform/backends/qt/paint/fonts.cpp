#include "platform/backends/qt/paint/fonts.h"

#include "platform/backends/qt/screen/text_convert.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QRawFont>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace velmora::platform::qt {

namespace {

constexpr std::size_t keptTexts = 96;
constexpr std::size_t keptFaces = 48;
constexpr double dotsPerPoint = 96.0 / 72.0;
constexpr std::size_t mostUnits = 8192;  // that are laid out of a text
constexpr double piecePixels = 12'000.0; // about the width of a piece: a picture must take it

// Faces with the measures of Arial, best first.
constexpr const char *latinFaces[] = {"Arial",       "Liberation Sans", "Arimo",
                                      "Nimbus Sans", "Helvetica",       "DejaVu Sans"};
// Faces that hold Chinese and Japanese, best first.
constexpr const char *chineseFaces[] = {"Noto Sans CJK SC",    "Source Han Sans SC",
                                        "Source Han Sans CN",  "WenQuanYi Micro Hei",
                                        "Droid Sans Fallback", "WenQuanYi Zen Hei"};

template <std::size_t n> QString firstInstalled(const char *const (&names)[n]) {
    for (const char *name : names)
        if (QFontDatabase::hasFamily(QLatin1String(name)))
            return QLatin1String(name);
    return {};
}

bool isIdeographic(char32_t c) {
    return (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7AF) ||
           (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE4F) ||
           (c >= 0xFF00 && c <= 0xFFEF) || (c >= 0x20000 && c <= 0x3FFFF);
}

// The stretches of `text` that the Chinese face draws: what the face that was asked for (if it is
// there) does not hold itself.
QList<QTextLayout::FormatRange> substitutedRanges(const QString &text, const QFont &font,
                                                  const QRawFont &asked) {
    QList<QTextLayout::FormatRange> ranges;
    for (qsizetype i = 0; i < text.size();) {
        char32_t c = text.at(i).unicode();
        int units = 1;
        if (text.at(i).isHighSurrogate() && i + 1 < text.size()) {
            c = QChar::surrogateToUcs4(text.at(i), text.at(i + 1));
            units = 2;
        }
        if (isIdeographic(c) && !(asked.isValid() && asked.supportsCharacter(c))) {
            if (!ranges.isEmpty() && ranges.last().start + ranges.last().length == i) {
                ranges.last().length += units;
            } else {
                QTextLayout::FormatRange range;
                range.start = static_cast<int>(i);
                range.length = units;
                range.format.setFont(font);
                ranges.append(range);
            }
        }
        i += units;
    }
    return ranges;
}

QString withLineSeparators(std::u16string_view text) {
    QString shown = toShown(text);
    shown.replace(QLatin1String("\r\n"), QString(QChar::LineSeparator));
    shown.replace(QLatin1Char('\n'), QChar::LineSeparator);
    shown.replace(QLatin1Char('\r'), QChar::LineSeparator);
    shown.replace(QLatin1Char('\t'), QLatin1Char(' '));
    return shown;
}

} // namespace

const QString &Fonts::latinFamily() {
    if (latin_.isEmpty())
        latin_ = firstInstalled(latinFaces);
    return latin_;
}

const QString &Fonts::chineseFamily() {
    if (chinese_.isEmpty())
        chinese_ = firstInstalled(chineseFaces);
    return chinese_;
}

QStringList Fonts::familiesFor(std::u16string_view name) {
    QStringList families;
    const QString asked = toQString(name);
    if (QFontDatabase::hasFamily(asked))
        families << asked;
    families << latinFamily() << chineseFamily();
    families.removeAll(QString());
    families.removeDuplicates();
    return families;
}

const Fonts::Face &Fonts::face(const forms::Font &font) {
    for (auto it = faces_.begin(); it != faces_.end(); ++it) {
        if (it->asked == font) {
            faces_.splice(faces_.begin(), faces_, it);
            return faces_.front();
        }
    }
    if (faces_.size() >= keptFaces)
        faces_.pop_back();
    Face face;
    face.asked = font;
    face.font.setFamilies(familiesFor(font.name()));
    face.font.setPointSizeF(font.size());
    face.font.setWeight(font.bold() ? QFont::Bold : QFont::Normal);
    face.font.setItalic(font.italic());
    face.font.setUnderline(font.underline());
    face.font.setStrikeOut(font.strikethrough());
    // Upright hinting only: advances stay in proportion, whatever the density.
    face.font.setHintingPreference(QFont::PreferVerticalHinting);
    face.chinese = face.font;
    face.chinese.setWeight(QFont::Normal);
    if (!chineseFamily().isEmpty())
        face.chinese.setFamilies({chineseFamily()});
    if (const QString asked = toQString(font.name());
        font.bold() && QFontDatabase::hasFamily(asked)) {
        QFont own = face.font;
        own.setFamilies({asked});
        face.own = QRawFont::fromFont(own);
    }
    faces_.push_front(std::move(face));
    return faces_.front();
}

QFont Fonts::toolkitFont(const forms::Font &font) { return face(font).font; }

QFont Fonts::plainFont(double points, bool bold) {
    return face(forms::Font(u"Arial", static_cast<float>(points), bold)).font;
}

std::shared_ptr<ShapedText> Fonts::layOut(std::u16string_view text, const Face &face,
                                          double wrapWidth) {
    auto shaped = std::make_shared<ShapedText>();
    const QString shown = withLineSeparators(text);
    QTextLayout &layout = shaped->layout;
    layout.setText(shown);
    layout.setFont(face.font);
    layout.setCacheEnabled(true);
    QTextOption option;
    option.setWrapMode(wrapWidth < 0 ? QTextOption::ManualWrap
                                     : QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    const bool bold = face.asked.bold();
    const auto chinese =
        bold ? substitutedRanges(shown, face.chinese, face.own) : QList<QTextLayout::FormatRange>();
    if (!chinese.isEmpty())
        layout.setFormats(chinese);

    const QFontMetricsF metrics(face.font);
    const double lineHeight = std::ceil(metrics.ascent()) + std::ceil(metrics.descent());
    shaped->em = face.asked.size() * dotsPerPoint;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(wrapWidth < 0 ? 1e6 : std::max(wrapWidth, 1.0));
        // One base line for all faces of a line, so that rows of mixed scripts do not jump.
        line.setPosition({0, shaped->height + std::ceil(metrics.ascent()) - line.ascent()});
        ShapedText::Line entry;
        entry.index = line.lineNumber();
        entry.width = line.naturalTextWidth();
        entry.top = shaped->height;
        shaped->lines.push_back(std::move(entry));
        shaped->width = std::max(shaped->width, shaped->lines.back().width);
        shaped->height += lineHeight;
    }
    layout.endLayout();
    for (ShapedText::Line &line : shaped->lines) {
        const QTextLine laid = layout.lineAt(line.index);
        for (const auto &range : chinese) {
            const int from = std::max(range.start, laid.textStart());
            const int to =
                std::min(range.start + range.length, laid.textStart() + laid.textLength());
            if (from < to)
                for (const QGlyphRun &run : laid.glyphRuns(from, to - from))
                    if (run.rawFont().weight() < QFont::DemiBold)
                        line.heavier.push_back(run);
        }
    }
    if (shaped->lines.empty())
        shaped->height = lineHeight;
    return shaped;
}

std::shared_ptr<const ShapedText> Fonts::shape(std::u16string_view text, const forms::Font &font,
                                               double wrapWidth) {
    const Face &found = face(font);
    std::u16string key(text);
    key.push_back(u'\0');
    // What tells fonts apart, in as few units as will do.
    key.append(font.name());
    key.push_back(u'\0');
    key.push_back(static_cast<char16_t>(std::lround(font.size() * 20)));
    key.push_back(static_cast<char16_t>((font.bold() ? 1 : 0) | (font.italic() ? 2 : 0) |
                                        (font.underline() ? 4 : 0) |
                                        (font.strikethrough() ? 8 : 0)));
    key.push_back(static_cast<char16_t>(wrapWidth < 0 ? 0xFFFF : std::lround(wrapWidth)));
    if (const auto at = index_.find(key); at != index_.end()) {
        kept_.splice(kept_.begin(), kept_, at->second);
        return kept_.front().text;
    }
    while (kept_.size() >= keptTexts) {
        index_.erase(kept_.back().key);
        kept_.pop_back();
    }
    kept_.push_front({std::move(key), layOut(text, found, wrapWidth)});
    index_.emplace(kept_.front().key, kept_.begin());
    return kept_.front().text;
}

std::vector<std::u16string_view> Fonts::pieces(std::u16string_view text, const forms::Font &font) {
    text = text.substr(0, mostUnits);
    const double fit = piecePixels / std::max(1.0, font.size() * dotsPerPoint);
    const auto most = static_cast<std::size_t>(std::clamp(fit, 16.0, 512.0));
    std::vector<std::u16string_view> found;
    if (text.size() <= most || text.find_first_of(u"\r\n") != text.npos)
        return {text};
    while (text.size() > most) {
        const std::size_t blank = text.rfind(u' ', most - 1);
        std::size_t cut = blank != text.npos && blank >= most / 2 ? blank + 1 : most;
        if (cut == most && text[cut] >= 0xDC00 && text[cut] <= 0xDFFF)
            --cut; // not within a pair
        found.push_back(text.substr(0, cut));
        text.remove_prefix(cut);
    }
    found.push_back(text);
    return found;
}

double Fonts::placeOf(std::u16string_view text, const forms::Font &font, std::size_t unit) {
    double place = 0;
    for (const std::u16string_view piece : pieces(text, font)) {
        const auto shaped = shape(piece, font);
        if (unit <= piece.size())
            return place + (shaped->lines.empty()
                                ? 0
                                : shaped->layout.lineAt(0).cursorToX(static_cast<int>(unit)));
        unit -= piece.size();
        place += shaped->width;
    }
    return place;
}

forms::TextExtent Fonts::extent(std::u16string_view text, const forms::Font &font) {
    double width = 0;
    double height = 0;
    for (const std::u16string_view piece : pieces(text, font)) {
        const auto shaped = shape(piece, font);
        width += shaped->width;
        height = shaped->height;
    }
    // Sums of advances in binary fractions: a hair above a whole pixel is that pixel.
    constexpr double hair = 1.0 / 64;
    return {static_cast<Twips>(std::ceil(width - hair)) * twipsPerPixel,
            static_cast<Twips>(height) * twipsPerPixel};
}

} // namespace velmora::platform::qt
