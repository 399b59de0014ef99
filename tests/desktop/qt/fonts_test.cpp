// Which face draws a text, and that every road to the screen measures and draws it alike.

#include "base/text.h"
#include "platform/backends/qt/paint/fonts.h"
#include "platform/backends/qt/paint/text_painter.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "tests/desktop/qt/desk.h"

#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QLineEdit>
#include <QPainter>
#include <QRawFont>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace velmora::tests {
namespace {

using platform::qt::Fonts;
using platform::qt::TextLook;
using platform::qt::TextPainter;
using platform::qt::toQString;

constexpr std::u16string_view songs[] = {u"灯火映在水面", u"夜のうみ、カモメ", u"등불 아래서"};
constexpr double densities[] = {1, 1.5, 2};
constexpr float sizes[] = {14.25F, 36};

QImage emptyImage(double density) {
    QImage image(static_cast<int>(420 * density), static_cast<int>(80 * density),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(density);
    image.fill(Qt::black);
    return image;
}

// As the program draws it in a label.
QImage drawn(Fonts &fonts, std::u16string_view text, const forms::Font &font, double density) {
    QImage image = emptyImage(density);
    QPainter painter(&image);
    TextPainter texts(fonts);
    TextLook look;
    look.font = &font;
    look.colour = Qt::white;
    texts.draw(painter, QRectF(10, 5, 400, 70), text, look);
    return image;
}

// As the toolkit by itself draws it in the face of this name, the letters on the same base line.
QImage drawnInFace(const char *family, std::u16string_view text, const forms::Font &font,
                   double density) {
    QFont face(QStringList{QString::fromLatin1(family)});
    face.setPointSizeF(font.size());
    face.setWeight(font.bold() ? QFont::Bold : QFont::Normal);
    face.setHintingPreference(QFont::PreferVerticalHinting);
    QImage image = emptyImage(density);
    QPainter painter(&image);
    painter.setFont(face);
    painter.setPen(Qt::white);
    painter.drawText(QPointF(10, 5 + std::ceil(QFontMetricsF(face).ascent())), toQString(text));
    return image;
}

double ink(const QImage &image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            sum += qGreen(image.pixel(x, y));
    return sum;
}

// The share of the ink that is not in the same place.
double differing(const QImage &a, const QImage &b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            sum += std::abs(qGreen(a.pixel(x, y)) - qGreen(b.pixel(x, y)));
    return sum / (ink(a) + ink(b));
}

// The faces that a text's letters come from, sorted, "Family weight".
std::vector<std::string> facesOf(Fonts &fonts, std::u16string_view text, const forms::Font &font) {
    std::vector<std::string> faces;
    const auto shaped = fonts.shape(text, font);
    for (const QGlyphRun &run : shaped->layout.glyphRuns())
        faces.push_back(run.rawFont().familyName().toStdString() + " " +
                        std::to_string(run.rawFont().weight()));
    std::sort(faces.begin(), faces.end());
    return faces;
}

class FontsTest : public DeskTest {
protected:
    Fonts fonts;
};

TEST_F(FontsTest, ABoldFaceThatWasChosenDrawsChineseJapaneseAndKoreanToo) {
    for (const std::u16string_view song : songs)
        for (const double density : densities)
            for (const float size : sizes) {
                const forms::Font chosen(u"Noto Serif CJK SC", size, true);
                const QImage seen = drawn(fonts, song, chosen, density);
                ASSERT_GT(ink(seen), 0);
                EXPECT_LT(differing(seen, drawnInFace("Noto Serif CJK SC", song, chosen, density)),
                          0.05)
                    << toUtf8(song) << " at " << size << " points, density " << density;
            }
}

TEST_F(FontsTest, WhereTheDesignedFaceIsMissingTheRegularOneIsThickened) {
    const forms::Font designed(u"微软雅黑", 36, true);
    EXPECT_EQ(facesOf(fonts, u"灯火", designed), std::vector<std::string>{"Noto Sans CJK SC 400"});
    const forms::Font regular(u"微软雅黑", 36);
    const QImage bold = drawn(fonts, u"灯火", designed, 1);
    EXPECT_GT(ink(bold), 1.1 * ink(drawn(fonts, u"灯火", regular, 1)));
}

TEST_F(FontsTest, LettersThatTheChosenFaceLacksAreThickenedAsWithoutIt) {
    const forms::Font latin(u"DejaVu Serif", 20, true);
    EXPECT_EQ(facesOf(fonts, u"a灯", latin),
              (std::vector<std::string>{"DejaVu Serif 700", "Noto Sans CJK SC 400"}));
    const auto shaped = fonts.shape(u"a灯", latin);
    ASSERT_EQ(shaped->lines.front().heavier.size(), 1);
    EXPECT_EQ(shaped->lines.front().heavier.front().glyphIndexes().size(), 1);
}

// A face that this system does not have: one of fixed width, under the two names that such a face
// has, the Chinese one put over the other where the file tells names in wide units.
class NamedFace {
public:
    NamedFace() {
        QFile file(
            QStringLiteral("/usr/share/fonts/truetype/liberation/LiberationMono-Regular.ttf"));
        if (!file.open(QIODevice::ReadOnly))
            return;
        QByteArray bytes = file.readAll();
        bytes.replace("Liberation Mono", "Microsoft YaHei"); // as long
        nameFamilies(bytes);
        id_ = QFontDatabase::addApplicationFontFromData(bytes);
    }
    ~NamedFace() { QFontDatabase::removeApplicationFont(id_); }
    NamedFace(const NamedFace &) = delete;
    NamedFace &operator=(const NamedFace &) = delete;
    bool there() const { return id_ >= 0; }

private:
    static qsizetype number(const QByteArray &bytes, qsizetype at, int count) {
        qsizetype value = 0;
        for (int i = 0; i < count; ++i)
            value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
        return value;
    }
    static void nameFamilies(QByteArray &bytes) {
        constexpr int record = 12;
        qsizetype table = 0;
        for (qsizetype i = 0; i < number(bytes, 4, 2); ++i)
            if (const qsizetype entry = 12 + 16 * i; bytes.mid(entry, 4) == "name")
                table = number(bytes, entry + 8, 4);
        for (qsizetype i = 0; i < number(bytes, table + 2, 2); ++i) {
            const qsizetype at = table + 6 + record * i;
            constexpr int windows = 3;
            if (number(bytes, at, 2) != windows || number(bytes, at + 6, 2) != 1)
                continue;
            const QByteArray wide("\x5F\xAE\x8F\x6F\x96\xC5\x9E\xD1"); // 微软雅黑
            bytes.replace(at + 8, 2, QByteArray("\0\x08", 2));
            bytes.replace(table + number(bytes, table + 4, 2) + number(bytes, at + 10, 2),
                          wide.size(), wide);
        }
    }
    int id_ = -1;
};

TEST_F(FontsTest, AnInstalledFaceOfADesignedNameIsUsed) {
    const NamedFace installed;
    ASSERT_TRUE(installed.there());
    for (const std::u16string_view name : {u"微软雅黑", u"Microsoft YaHei"}) {
        const forms::Font designed(name, 36);
        EXPECT_EQ(fonts.extent(u"iiii", designed).width, fonts.extent(u"WWWW", designed).width)
            << toUtf8(name);
        EXPECT_EQ(facesOf(fonts, u"灯", designed),
                  std::vector<std::string>{"Noto Sans CJK SC 400"});
    }
}

TEST_F(FontsTest, WithoutAFaceOfTheDesignedNameAnotherOneIsUsed) {
    const forms::Font designed(u"Microsoft YaHei", 36);
    EXPECT_NE(fonts.extent(u"iiii", designed).width, fonts.extent(u"WWWW", designed).width);
}

TEST_F(FontsTest, ALineInPiecesIsAsWideAsItsWords) {
    const forms::Font font(u"Arial", 36);
    std::u16string line;
    while (line.size() < 2000)
        line += u"word ";
    line += u"end";
    const auto pieces = fonts.pieces(line, font);
    ASSERT_GT(pieces.size(), 3);
    const auto words = static_cast<double>(line.size() / 5);
    const double word = fonts.placeOf(u"word word", font, 5);
    const double end = fonts.placeOf(u"end", font, 3);
    EXPECT_NEAR(fonts.extent(line, font).width / twipsPerPixel, words * word + end, 2);
}

// A line in a label, and in a box that shows what the label will look like.
struct PreviewForm : TestForm {
    forms::Label label{*this, "label"};
    forms::TextBox box{*this, "box"};
    explicit PreviewForm(std::u16string_view text, const forms::Font &font) {
        label.move({120, 120, 4200, 900}); // 8,8 280x60
        label.setTransparent(false);
        label.setBackColor(0);
        label.setForeColor(0x00FFFFFF);
        label.setFont(font);
        label.setCaption(text);
        box.move({120, 1320, 4200, 900}); // 8,88 280x60
        box.setLocked(true);
        box.setBackColor(0);
        box.setForeColor(0x00FFFFFF);
        box.setFont(font);
        box.setText(text);
    }
    QLineEdit &edit() const {
        return *static_cast<platform::qt::QtFormWindow *>(window())
                    ->top()
                    ->findChild<QLineEdit *>();
    }
    // What two pictures of the same letters may differ by: where a pixel is no whole number of the
    // screen's, they lie otherwise between those.
    double tolerance() const {
        const double density = edit().devicePixelRatioF();
        return density == std::floor(density) ? 0.05 : 0.25;
    }
    int cursorLeft() const {
        return edit().inputMethodQuery(Qt::ImCursorRectangle).toRect().left();
    }
    // What is seen of a control, without the frame that a box has.
    QImage seen(const forms::Control &control) const {
        const int frame = &control == &box ? 4 : 0;
        const double density = edit().devicePixelRatioF();
        QImage all = edit().window()->grab().toImage();
        all.setDevicePixelRatio(1);
        const auto place = [&](Twips twips, int inset) {
            return static_cast<int>(std::lround((twips / twipsPerPixel + inset) * density));
        };
        return all.copy(QRect(QPoint(place(control.left(), frame), place(control.top(), frame)),
                              QPoint(place(control.left() + control.width(), -frame),
                                     place(control.top() + control.height(), -frame))));
    }
};

// The part of a picture that has letters on it.
QImage lettersOf(const QImage &image) {
    QRect found;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGreen(image.pixel(x, y)) > 0x40)
                found |= QRect(x, y, 1, 1);
    return image.copy(found);
}

const forms::Font previewed[] = {{u"微软雅黑", 14.25F},
                                 {u"微软雅黑", 24},
                                 {u"微软雅黑", 14.25F, true},
                                 {u"微软雅黑", 24, true},
                                 {u"Noto Serif CJK JP", 24, true},
                                 {u"DejaVu Serif", 20, true}};

TEST_F(FontsTest, APreviewShowsTheLettersOfTheLineItIsFor) {
    for (const forms::Font &font : previewed) {
        PreviewForm form(u"Song 灯火 等불", font);
        form.appear();
        const QImage line = lettersOf(form.seen(form.label));
        const QImage preview = lettersOf(form.seen(form.box));
        ASSERT_GT(ink(line), 0);
        EXPECT_NEAR(preview.width(), line.width(), 1) << toUtf8(font.name()) << " " << font.size();
        EXPECT_LT(differing(preview.copy(line.rect()), line), form.tolerance())
            << toUtf8(font.name()) << " " << font.size() << (font.bold() ? " bold" : "");
    }
}

TEST_F(FontsTest, ABoxMeasuresAsALabelDoes) {
    for (const forms::Font &font : previewed)
        for (const std::u16string_view song : songs) {
            PreviewForm form(song, font);
            form.appear();
            form.edit().home(false);
            const int begin = form.cursorLeft();
            form.edit().end(false);
            EXPECT_NEAR(form.cursorLeft() - begin,
                        form.textExtent(song, font).width / twipsPerPixel, 1)
                << toUtf8(song) << " in " << toUtf8(font.name()) << " " << font.size();
        }
}

TEST_F(FontsTest, APreviewThatIsScrolledShowsTheEndOfItsText) {
    const forms::Font font(u"微软雅黑", 24, true);
    PreviewForm form(u"灯火映在水面，轻轻摇晃，夜 end", font);
    form.appear();
    const QImage begin = form.seen(form.box);
    form.edit().end(false);
    ASSERT_TRUE(desk().settle());
    PreviewForm last(u"end", font);
    last.appear();
    const QImage word = lettersOf(last.seen(last.label));
    const QImage seen = lettersOf(form.seen(form.box));
    ASSERT_GT(seen.width(), word.width());
    const int behind = seen.width() - word.width();
    EXPECT_LT(differing(lettersOf(seen.copy(behind, 0, word.width(), seen.height())), word),
              form.tolerance());
    EXPECT_GT(differing(seen, lettersOf(begin)), 0.3);
}

TEST_F(FontsTest, ABoxThatIsUnlockedDrawsItsLettersOnce) {
    const forms::Font font(u"Arial", 24);
    PreviewForm form(u"Song 灯火", font);
    form.appear();
    const QImage locked = lettersOf(form.seen(form.box));
    form.box.setLocked(false);
    ASSERT_TRUE(desk().settle());
    const QImage open = lettersOf(form.seen(form.box));
    EXPECT_NEAR(ink(open), ink(locked), 0.1 * ink(locked));
}

TEST_F(FontsTest, WhatIsSelectedInAPreviewIsSeenInItsColour) {
    const forms::Font font(u"微软雅黑", 24, true);
    PreviewForm form(u"灯火", font);
    form.appear();
    const double plain = ink(form.seen(form.box));
    form.edit().setSelection(0, 1);
    ASSERT_TRUE(desk().settle());
    const QImage seen = form.seen(form.box);
    const QRgb highlight = form.edit().palette().color(QPalette::Highlight).rgb();
    const auto marked = [&](int fromX, int toX) {
        int count = 0;
        for (int y = 0; y < seen.height(); ++y)
            for (int x = fromX; x < toX; ++x)
                count += seen.pixel(x, y) == highlight;
        return count;
    };
    EXPECT_GT(marked(0, seen.width() / 4), 100);
    EXPECT_EQ(marked(seen.width() / 4, seen.width()), 0);
    EXPECT_NE(ink(seen), plain);
}

} // namespace
} // namespace velmora::tests
