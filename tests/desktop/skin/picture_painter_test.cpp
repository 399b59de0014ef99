#include "platform/backends/qt/paint/picture_painter.h"

#include "ui/palette.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cmath>

namespace velmora::platform::qt {
namespace {

using forms::Picture;

constexpr QRgb ground = 0xFF804020;

QRgb rgb(Colour colour) {
    return qRgb(static_cast<int>(colour & 0xFF), static_cast<int>(colour >> 8 & 0xFF),
                static_cast<int>(colour >> 16 & 0xFF));
}

// The drawing painted over a plain ground, at a density.
QImage painted(Picture picture, QSizeF size, double density = 1, QPointF at = {},
               QImage::Format format = QImage::Format_ARGB32_Premultiplied) {
    QImage image(static_cast<int>(std::ceil((at.x() + size.width()) * density)),
                 static_cast<int>(std::ceil((at.y() + size.height()) * density)), format);
    image.setDevicePixelRatio(density);
    image.fill(ground);
    QPainter painter(&image);
    paintPicture(painter, picture, QRectF(at, size));
    return image;
}

int distance(QRgb a, QRgb b) {
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
}

const double densities[] = {1, 1.25, 1.5, 1.75, 2, 3};

TEST(PicturePainter, NoneAndAnEmptyTargetDrawNothing) {
    EXPECT_EQ(painted(Picture::None, {8, 8}).pixel(4, 4), ground);
    QImage image(4, 4, QImage::Format_ARGB32_Premultiplied);
    image.fill(ground);
    QPainter painter(&image);
    paintPicture(painter, Picture::body, QRectF(0, 0, 4, 0));
    painter.end();
    EXPECT_EQ(image.pixel(2, 0), ground);
    EXPECT_EQ(pictureSize(Picture::None), QSizeF(0, 0));
    EXPECT_EQ(pictureSize(static_cast<Picture>(60000)), QSizeF(0, 0));
}

TEST(PicturePainter, KnowsTheDesignedSizes) {
    EXPECT_EQ(pictureSize(Picture::play), QSizeF(44, 44));
    EXPECT_EQ(pictureSize(Picture::stop), QSizeF(36, 36));
    EXPECT_EQ(pictureSize(Picture::button_normal), QSizeF(6, 32));
}

TEST(PicturePainter, EveryDrawingLeavesAMarkAtItsOwnSize) {
    for (std::uint16_t i = 1; i < forms::pictureCount; ++i) {
        const auto picture = static_cast<Picture>(i);
        const QImage image = painted(picture, pictureSize(picture), 2);
        bool marked = false;
        for (int y = 0; y < image.height() && !marked; ++y)
            for (int x = 0; x < image.width() && !marked; ++x)
                marked = image.pixel(x, y) != ground;
        EXPECT_TRUE(marked) << forms::pictureNames[i];
    }
}

TEST(PicturePainter, CornersOfABodyAreHolesWithSmoothEdges) {
    for (const double density : densities) {
        const QImage image = painted(Picture::body, {200, 120}, density);
        const int right = image.width() - 1;
        const int bottom = image.height() - 1;
        for (const QPoint corner :
             {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom)})
            EXPECT_EQ(qAlpha(image.pixel(corner)), 0) << density;
        EXPECT_EQ(qAlpha(image.pixel(image.width() / 2, image.height() / 2)), 255);
        int partly = 0;
        const int reach = static_cast<int>(9 * density);
        for (int y = 0; y < reach; ++y)
            for (int x = 0; x < reach; ++x)
                partly += qAlpha(image.pixel(x, y)) % 255 != 0 ? 1 : 0;
        EXPECT_GE(partly, 4) << density;
    }
}

TEST(PicturePainter, TheStripIsSquareAtTheTopWhereItMeetsTheScreensEdge) {
    const QImage image = painted(Picture::body_strip, {200, 46});
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 255);
    EXPECT_EQ(qAlpha(image.pixel(199, 0)), 255);
    EXPECT_EQ(qAlpha(image.pixel(0, 45)), 0);
    EXPECT_EQ(qAlpha(image.pixel(199, 45)), 0);
}

TEST(PicturePainter, WithoutAnAlphaChannelAHoleHasTheKeyColourExactly) {
    const QImage image = painted(Picture::body, {200, 120}, 1, {}, QImage::Format_RGB16);
    EXPECT_LE(distance(image.pixel(0, 0), 0xFFC7C7C7), 8); // as near as 16 bits come
    const QImage deep = painted(Picture::body, {200, 120}, 1, {}, QImage::Format_RGB888);
    EXPECT_EQ(deep.pixel(0, 0), 0xFFC7C7C7);
}

TEST(PicturePainter, KnowsWhichDrawingsHaveHoles) {
    EXPECT_TRUE(pictureIsKeyed(Picture::body));
    EXPECT_TRUE(pictureIsKeyed(Picture::splash));
    EXPECT_FALSE(pictureIsKeyed(Picture::body_plain));
    EXPECT_FALSE(pictureIsKeyed(Picture::close));
    EXPECT_FALSE(pictureIsKeyed(Picture::None));
}

TEST(PicturePainter, OutlinesAreWholePixelsAtEveryDensity) {
    for (const double density : densities) {
        const QImage image = painted(Picture::panel, {97, 61}, density);
        const QRgb line = rgb(palette::outline);
        const int middle = image.height() / 2;
        const int thick = static_cast<int>(std::lround(density));
        int lineWidth = 0;
        while (lineWidth < 5 && distance(image.pixel(lineWidth, middle), line) <= 1)
            ++lineWidth;
        EXPECT_EQ(lineWidth, thick) << density;
        EXPECT_LE(distance(image.pixel(lineWidth, middle), rgb(palette::body)), 1) << density;
    }
}

TEST(PicturePainter, TheFarEdgeIsSharpOnWindowsOfOddSize) {
    // Targets whose far edge lies on a device pixel, as the view hands them out.
    const QImage image = painted(Picture::panel, {97, 61}, 1);
    EXPECT_LE(distance(image.pixel(96, 30), rgb(palette::outline)), 1);
    EXPECT_LE(distance(image.pixel(95, 30), rgb(palette::body)), 1);
    EXPECT_LE(distance(image.pixel(48, 60), rgb(palette::outline)), 1);
    EXPECT_LE(distance(image.pixel(48, 59), rgb(palette::body)), 1);
}

TEST(PicturePainter, WhatLiesWithinAnInsetDoesNotStretch) {
    const QImage small = painted(Picture::body, {100, 80});
    const QImage large = painted(Picture::body, {300, 240});
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 12; ++x) {
            EXPECT_LE(distance(small.pixel(x, y), large.pixel(x, y)), 2) << x << ' ' << y;
            EXPECT_LE(distance(small.pixel(99 - x, y), large.pixel(299 - x, y)), 2);
        }
}

TEST(PicturePainter, GradientStopsKeepTheirPlacesInTheTitleStrip) {
    // The body's second colour stands below the title strip however tall the window is.
    const QImage small = painted(Picture::body, {100, 100});
    const QImage large = painted(Picture::body, {100, 400});
    EXPECT_LE(distance(small.pixel(50, 28), rgb(palette::body)), 2);
    EXPECT_LE(distance(large.pixel(50, 28), rgb(palette::body)), 2);
}

TEST(PicturePainter, ABarShorterThanItsInsetsShrinksInsteadOfSpillingOver) {
    const QImage image = painted(Picture::bar_fill, {2, 6}, 1, {4, 2});
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(image.pixel(x, y), ground);
    EXPECT_NE(image.pixel(4, 5), ground);
}

TEST(PicturePainter, OthersScaleUniformlyAndAreCentred) {
    const QImage image = painted(Picture::stop, {96, 32});
    EXPECT_EQ(image.pixel(31, 16), ground);
    EXPECT_EQ(image.pixel(64, 16), ground);
    EXPECT_LE(distance(image.pixel(48, 16), rgb(palette::text)), 1);
    const QImage half = painted(Picture::stop, {16, 16});
    EXPECT_LE(distance(half.pixel(8, 8), rgb(palette::text)), 1);
}

TEST(PicturePainter, ADrawingIsTheSameWhereverItStandsOnWholePixels) {
    const QImage here = painted(Picture::settings, {26, 26});
    const QImage there = painted(Picture::settings, {26, 26}, 1, {13, 7});
    for (int y = 0; y < 26; ++y)
        for (int x = 0; x < 26; ++x)
            EXPECT_EQ(here.pixel(x, y), there.pixel(x + 13, y + 7));
}

TEST(PicturePainter, LeavesThePainterAsItWas) {
    QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
    image.fill(ground);
    QPainter painter(&image);
    painter.translate(3, 5);
    painter.setClipRect(0, 0, 20, 20);
    painter.setPen(Qt::red);
    const QTransform before = painter.worldTransform();
    paintPicture(painter, Picture::body, QRectF(0, 0, 60, 60));
    EXPECT_EQ(painter.worldTransform(), before);
    EXPECT_EQ(painter.pen().color(), QColor(Qt::red));
    EXPECT_EQ(painter.compositionMode(), QPainter::CompositionMode_SourceOver);
    EXPECT_FALSE(painter.testRenderHint(QPainter::Antialiasing));
    painter.end();
    EXPECT_EQ(image.pixel(30, 30), ground) << "the clip holds";
    EXPECT_EQ(image.pixel(2, 4), ground) << "the translation holds";
    EXPECT_NE(image.pixel(12, 12), ground);
}

TEST(PicturePainter, ButtonStatesHaveNoHoleAndTheirOwnGrounds) {
    for (const Picture state :
         {Picture::button_normal, Picture::button_hot, Picture::button_pressed}) {
        const QImage image = painted(state, {6, 32});
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 6; ++x)
                EXPECT_EQ(qAlpha(image.pixel(x, y)), 255);
    }
    EXPECT_LE(qRed(painted(Picture::button_hot, {6, 32}).pixel(3, 16)), 0x16);
    EXPECT_GE(qRed(painted(Picture::button_pressed, {6, 32}).pixel(3, 16)), 0xA0);
}

TEST(PicturePainter, DrawsAContactSheetForTheRecord) {
    const QString folder = qEnvironmentVariable("VELMORA_ARTIFACTS", QDir::tempPath());
    ASSERT_TRUE(QDir().mkpath(folder));
    constexpr int columns = 10;
    constexpr int cell = 72;
    for (const int density : {1, 2}) {
        const int rows = (forms::pictureCount + columns - 2) / columns;
        QImage sheet(columns * cell * density, rows * cell * density,
                     QImage::Format_ARGB32_Premultiplied);
        sheet.setDevicePixelRatio(density);
        sheet.fill(rgb(palette::body));
        QPainter painter(&sheet);
        for (int i = 1; i < forms::pictureCount; ++i) {
            const auto picture = static_cast<Picture>(i);
            const QSizeF size = pictureSize(picture).boundedTo({cell - 8, cell - 8});
            paintPicture(
                painter, picture,
                QRectF(QPointF((i - 1) % columns * cell + 4, (i - 1) / columns * cell + 4), size));
        }
        painter.end();
        EXPECT_TRUE(sheet.save(folder + QString("/skin-%1x.png").arg(density)));
    }
}

} // namespace
} // namespace velmora::platform::qt

int main(int count, char **values) {
    testing::InitGoogleMock(&count, values);
    const QGuiApplication app(count, values);
    return RUN_ALL_TESTS();
}
