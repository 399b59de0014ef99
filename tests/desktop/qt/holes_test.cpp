// Where a window is not: holes in the key colour, with and without a compositor.

#include "tests/desktop/qt/desk.h"

#include "platform/backends/qt/paint/hole_shape.h"

#include <QApplication>
#include <QBitArray>
#include <QEvent>
#include <QImage>

#include <algorithm>
#include <optional>
#include <utility>

namespace velmora::tests {
namespace {

constexpr std::uint32_t wallpaper = 0x2060C0;
constexpr std::uint32_t keyPixel = 0xC7C7C7;

// As the load handlers of the forms do it.
void cutOutKey(forms::Form &form) {
    auto &windows = *desk().windows;
    const auto style = windows.GetWindowLongA(form.hWnd(), platform::GWL_EXSTYLE);
    windows.SetWindowLongA(form.hWnd(), platform::GWL_EXSTYLE, style | platform::WS_EX_LAYERED);
    ASSERT_TRUE(
        windows.SetLayeredWindowAttributes(form.hWnd(), keyColour, 0, platform::LWA_COLORKEY));
}

// A body with round corners, and a flat box of the key colour in its middle.
struct SkinnedForm : TestForm {
    forms::Shape hole{*this, "hole"};
    forms::Label label{*this, "label"};
    SkinnedForm() {
        setGround(forms::Picture::body);
        hole.move({1500, 750, 900, 600}); // 100,50 60x40
        hole.setFillColor(keyColour);
        label.move({150, 2400, 1500, 300});
        cutOutKey(*this);
    }
};

// The line across the desktop: all of it key colour but the letters.
struct LineForm : TestForm {
    forms::Label text{*this, "text"};
    LineForm() {
        setUnmanaged(true);
        setTopmost(true);
        setBackColor(keyColour);
        move({0, 9000, 1280 * 15, 900});
        text.move({0, 0, 1280 * 15, 900});
        text.setFont(forms::Font(u"Arial", 36, true));
        text.setForeColor(0x000000FF);
        text.setAlignment(forms::Alignment::Centre);
        text.setRim(true);
        cutOutKey(*this);
    }
    int pixelsNot(std::uint32_t colour) {
        const ScreenPicture picture = desk().screen->picture(0, 600, 1280, 60);
        return static_cast<int>(
            std::count_if(picture.pixels.begin(), picture.pixels.end(),
                          [colour](std::uint32_t pixel) { return pixel != colour; }));
    }
};

class HolesTest : public DeskTest, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        DeskTest::SetUp();
        backdrop_ = desk().screen->makeBackdrop(wallpaper);
        if (GetParam())
            ASSERT_TRUE(desk().session.startCompositor());
        else
            ASSERT_TRUE(desk().session.stopCompositor());
        ASSERT_TRUE(desk().settle());
    }
    void TearDown() override {
        xcb_destroy_window(desk().screen->connection(), backdrop_);
        xcb_flush(desk().screen->connection());
        DeskTest::TearDown();
    }
    bool soon(const std::function<bool()> &condition) { return desk().pump(condition); }
    std::vector<XScreen::Press> pressesBelow() {
        desk().settle();
        return desk().screen->backdropPresses();
    }

    xcb_window_t backdrop_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Compositor, HolesTest, testing::Values(false, true),
                         [](const auto &which) { return which.param ? "with" : "without"; });

TEST_P(HolesTest, ShowTheDesktopThroughTheKeyColour) {
    SkinnedForm form;
    form.appear();
    EXPECT_TRUE(soon([&] { return form.pixel(0, 0) == wallpaper; })) << "corner";
    EXPECT_TRUE(soon([&] { return form.pixel(299, 199) == wallpaper; }));
    EXPECT_TRUE(soon([&] { return form.pixel(130, 70) == wallpaper; })) << "flat box";
    EXPECT_TRUE(soon([&] { return form.pixel(20, 100) != wallpaper; })) << "body";
    EXPECT_NE(form.pixel(98, 70), wallpaper) << "beside the box";
}

TEST_P(HolesTest, NeverShowTheKeyColourItself) {
    SkinnedForm form;
    form.appear();
    ASSERT_TRUE(soon([&] { return form.pixel(20, 100) != wallpaper; }));
    const ScreenPicture picture = desk().screen->picture(200, 150, 300, 200);
    EXPECT_EQ(std::count(picture.pixels.begin(), picture.pixels.end(), keyPixel), 0);
}

TEST_P(HolesTest, EdgesAreSmoothWithACompositorAndClearWithoutOne) {
    SkinnedForm form;
    form.appear();
    ASSERT_TRUE(soon([&] { return form.pixel(20, 100) != wallpaper; }));
    // Along the round corner: pixels between the wallpaper and the outline tell a blend. The
    // wallpaper is the one strongly blue thing there.
    const auto mixed = [] {
        const ScreenPicture corner = desk().screen->picture(200, 150, 10, 10);
        return std::count_if(corner.pixels.begin(), corner.pixels.end(), [](std::uint32_t pixel) {
            return (pixel & 0xFF) > 0x88 && pixel != wallpaper;
        });
    };
    if (GetParam()) {
        EXPECT_TRUE(soon([&] { return mixed() > 0; })); // the compositor has it painted
    } else {
        ASSERT_TRUE(desk().settle());
        EXPECT_EQ(mixed(), 0);
    }
}

TEST_P(HolesTest, LetClicksThrough) {
    SkinnedForm form;
    int clicked = 0;
    form.on().MouseDown = [&](const forms::MouseEvent &) { ++clicked; };
    form.appear();
    ASSERT_TRUE(soon([&] { return form.pixel(130, 70) == wallpaper; }));
    pressesBelow();
    desk().click(200 + 130, 150 + 70);
    auto below = pressesBelow();
    ASSERT_EQ(below.size(), 1U);
    EXPECT_EQ(below.front().x, 330);
    EXPECT_EQ(clicked, 0);
    desk().click(200, 150);
    EXPECT_EQ(pressesBelow().size(), 1U) << "the cut corner";
    desk().click(200 + 40, 150 + 70);
    EXPECT_EQ(pressesBelow().size(), 0U);
    EXPECT_EQ(clicked, 1);
}

TEST_P(HolesTest, OpenAndCloseWithTheControlThatMakesThem) {
    SkinnedForm form;
    form.appear();
    ASSERT_TRUE(soon([&] { return form.pixel(130, 70) == wallpaper; }));
    form.hole.setVisible(false);
    EXPECT_TRUE(soon([&] { return form.pixel(130, 70) != wallpaper; }));
    form.hole.setVisible(true);
    form.hole.setLeft(3000);
    EXPECT_TRUE(soon([&] { return form.pixel(230, 70) == wallpaper; }));
    EXPECT_NE(form.pixel(130, 70), wallpaper);
}

TEST_P(HolesTest, FollowTheWindowsSize) {
    SkinnedForm form;
    form.appear();
    form.setWidth(6000);
    EXPECT_TRUE(soon([&] { return form.pixel(399, 0) == wallpaper; }));
    EXPECT_TRUE(soon([&] { return form.pixel(299, 100) != wallpaper; }));
    EXPECT_TRUE(soon([&] { return form.pixel(395, 100) != wallpaper; }));
}

TEST_P(HolesTest, AFormWithoutTheKeyIsAPlainRectangleWhateverItsColours) {
    TestForm form;
    form.setBackColor(keyColour);
    form.appear();
    EXPECT_TRUE(soon([&] { return form.pixel(0, 0) == keyPixel; }));
    EXPECT_EQ(desk().screen->outlineRectangles(nativeOf(form)), 0);
}

TEST_P(HolesTest, OfTheLineOnlyTheLettersExist) {
    LineForm form;
    form.text.setCaption(u"Hello 灯火");
    form.appear();
    EXPECT_TRUE(soon([&] { return form.pixelsNot(wallpaper) > 500; }));
    EXPECT_LT(form.pixelsNot(wallpaper), 1280 * 60 / 4);
    EXPECT_EQ(form.pixel(5, 5), wallpaper);
    EXPECT_GT(desk().screen->outlineRectangles(nativeOf(form)), 20);
}

TEST_P(HolesTest, TheLineLetsClicksThroughBetweenItsLetters) {
    LineForm form;
    form.text.setCaption(u"I     I");
    form.appear();
    ASSERT_TRUE(soon([&] { return form.pixelsNot(wallpaper) > 50; }));
    pressesBelow();
    desk().click(640, 630);
    EXPECT_EQ(pressesBelow().size(), 1U);
    // The upright of the first letter.
    const ScreenPicture picture = desk().screen->picture(0, 630, 1280, 1);
    const auto first = std::find_if(picture.pixels.begin(), picture.pixels.end(),
                                    [](std::uint32_t pixel) { return pixel == 0xFF0000; });
    ASSERT_NE(first, picture.pixels.end());
    desk().click(static_cast<int>(first - picture.pixels.begin()), 630);
    EXPECT_EQ(pressesBelow().size(), 0U) << "letters catch the click";
}

TEST_P(HolesTest, TheLineFollowsItsTextAndVanishesWithIt) {
    LineForm form;
    form.appear();
    EXPECT_EQ(form.pixelsNot(wallpaper), 0) << "nothing to show, nothing there";
    form.text.setCaption(u"WWW");
    EXPECT_TRUE(soon([&] { return form.pixelsNot(wallpaper) > 500; }));
    form.text.setCaption(u"");
    EXPECT_TRUE(soon([&] { return form.pixelsNot(wallpaper) == 0; }));
    form.text.setCaption(u"WWW");
    EXPECT_TRUE(soon([&] { return form.pixelsNot(wallpaper) > 500; }));
    form.text.setVisible(false);
    EXPECT_TRUE(soon([&] { return form.pixelsNot(wallpaper) == 0; }));
    desk().click(640, 630);
    EXPECT_EQ(pressesBelow().size(), 1U);
}

// --- a line that rolls ---------------------------------------------------------------------------

// How often the program's windows are painted.
class PaintCount : public QObject {
public:
    PaintCount() { qApp->installEventFilter(this); }
    ~PaintCount() override { qApp->removeEventFilter(this); }
    int count = 0;

private:
    bool eventFilter(QObject * /*watched*/, QEvent *event) override {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

class RollingTest : public HolesTest {
protected:
    static constexpr Twips step = 150;
    std::optional<LineForm> form;

    void SetUp() override {
        HolesTest::SetUp();
        form.emplace();
        form->text.setAlignment(forms::Alignment::Left);
        form->text.setAutoSize(true);
        form->text.setCaption(
            u"Moonlight on the water     and a long, long way to the other side of "
            u"the lake that nobody sees from here");
        form->text.setLeft(0);
        form->appear();
        ASSERT_GT(form->text.width(), form->width());
        ASSERT_TRUE(soon([&] { return red().count(true) > 500; }));
        roll(3);
        desk().letPass(50);
    }
    void TearDown() override {
        form.reset();
        HolesTest::TearDown();
    }
    void roll(int steps) {
        for (int i = 0; i < steps; ++i) {
            form->text.setLeft(form->text.left() - step);
            desk().letPass(5);
        }
    }
    // Which pixels are inside a letter.
    static QBitArray red() {
        const ScreenPicture picture = desk().screen->picture(0, 600, 1280, 60);
        QBitArray found(static_cast<qsizetype>(picture.pixels.size()));
        for (std::size_t i = 0; i < picture.pixels.size(); ++i)
            found.setBit(static_cast<qsizetype>(i), picture.pixels[i] == 0xFF0000);
        return found;
    }
    // What is seen once a compositor, too, has come to the end of its work.
    QBitArray steady() {
        QBitArray shown;
        EXPECT_TRUE(soon([&] {
            const QBitArray before = std::exchange(shown, red());
            desk().letPass(150);
            return before == shown && shown.count(true) > 300;
        }));
        return shown;
    }
    // What the painter makes of the present place.
    QBitArray painted() {
        form->text.setVisible(false);
        EXPECT_TRUE(soon([&] { return form->pixelsNot(wallpaper) == 0; }));
        form->text.setVisible(true);
        return steady();
    }
};

INSTANTIATE_TEST_SUITE_P(Compositor, RollingTest, testing::Values(false, true),
                         [](const auto &which) { return which.param ? "with" : "without"; });

TEST_P(RollingTest, IsPaintedOnceAndMovedByTheServer) {
    PaintCount paints;
    roll(20);
    EXPECT_EQ(paints.count, 0);
    const QBitArray moved = steady();
    EXPECT_EQ(moved, painted());
}

TEST_P(RollingTest, HasAnOutlineOfFewerRectanglesThanOneThatStands) {
    const int rolling = desk().screen->outlineRectangles(nativeOf(*form));
    if (GetParam())
        EXPECT_EQ(rolling, 0) << "that is blended, and only clicks are cut out";
    painted();
    EXPECT_LT(rolling, desk().screen->outlineRectangles(nativeOf(*form)));
}

TEST_P(RollingTest, TakesItsClicksWithIt) {
    roll(20);
    steady();
    pressesBelow();
    const ScreenPicture picture = desk().screen->picture(0, 630, 1280, 1);
    const auto first =
        std::find(picture.pixels.begin(), picture.pixels.end(), std::uint32_t{0xFF0000});
    ASSERT_NE(first, picture.pixels.end());
    desk().click(static_cast<int>(first - picture.pixels.begin()), 630);
    EXPECT_EQ(pressesBelow().size(), 0U);
    const std::vector<std::uint32_t> gap(20, wallpaper);
    const auto between =
        std::search(picture.pixels.begin(), picture.pixels.end(), gap.begin(), gap.end());
    ASSERT_NE(between, picture.pixels.end());
    desk().click(static_cast<int>(between - picture.pixels.begin()) + 10, 630);
    EXPECT_EQ(pressesBelow().size(), 1U);
}

TEST_P(RollingTest, ComesBackWhereItWasCovered) {
    roll(5);
    const QBitArray before = steady();
    xcb_connection_t *other = desk().screen->connection();
    const xcb_gcontext_t black = xcb_generate_id(other);
    xcb_create_gc(other, black, nativeOf(*form), 0, nullptr);
    const xcb_rectangle_t all = {0, 0, 1280, 60};
    xcb_poly_fill_rectangle(other, nativeOf(*form), black, 1, &all);
    xcb_free_gc(other, black);
    xcb_flush(other);
    ASSERT_TRUE(soon([&] { return red().count(true) == 0; }));
    xcb_clear_area(other, 1, nativeOf(*form), 0, 0, 0, 0);
    xcb_flush(other);
    EXPECT_TRUE(soon([&] { return red() == before; }));
}

TEST_P(RollingTest, GivesWayToTheNextLine) {
    const int rectangles = desk().screen->outlineRectangles(nativeOf(*form));
    form->text.setCaption(u"WWW");
    form->text.setLeft(0);
    EXPECT_TRUE(soon([&] { return form->pixel(600, 30) == wallpaper; }));
    const QBitArray shown = steady();
    EXPECT_LT(shown.count(true), 5000);
    EXPECT_EQ(form->pixel(600, 30), wallpaper);
    EXPECT_NE(desk().screen->outlineRectangles(nativeOf(*form)), rectangles);
    EXPECT_EQ(shown, painted());
}

TEST_P(RollingTest, VanishesWithItsTextAndItsWindow) {
    form->text.setCaption(u"");
    EXPECT_TRUE(soon([&] { return form->pixelsNot(wallpaper) == 0; }));
    form->text.setCaption(std::u16string(60, u'W'));
    EXPECT_TRUE(soon([&] { return form->pixelsNot(wallpaper) > 500; }));
    roll(5);
    form->hide();
    EXPECT_TRUE(soon([&] { return form->pixelsNot(wallpaper) == 0; }));
    form->show();
    EXPECT_TRUE(soon([&] { return form->pixelsNot(wallpaper) > 500; }));
}

TEST_P(HolesTest, SmoothedLetterPixelsNeverCount) {
    // White letters on black pass through every grey between, the key's among them.
    SkinnedForm form;
    form.setGround(forms::Picture::None);
    form.setBackColor(0x00000000);
    form.label.move({150, 150, 4200, 2700});
    form.label.setFont(forms::Font(u"Arial", 20));
    form.label.setForeColor(0x00FFFFFF);
    form.label.setWordWrap(true);
    form.label.setCaption(u"Quick brown foxes jump over lazy dogs, often and again and again");
    form.hole.setVisible(false);
    form.appear();
    ASSERT_TRUE(soon([&] { return form.pixel(2, 2) == 0; }));
    ASSERT_TRUE(desk().settle());
    const ScreenPicture picture = desk().screen->picture(200, 150, 300, 200);
    EXPECT_EQ(std::count(picture.pixels.begin(), picture.pixels.end(), wallpaper), 0);
}

TEST_F(DeskTest, ACompositorThatComesLaterSmoothsTheEdgesAndOneThatGoesLeavesNoBlack) {
    desk().session.stopCompositor();
    const xcb_window_t backdrop = desk().screen->makeBackdrop(wallpaper);
    SkinnedForm form;
    form.appear();
    const auto darkest = [&] {
        const ScreenPicture corner = desk().screen->picture(200, 150, 4, 4);
        int least = 255;
        for (const std::uint32_t pixel : corner.pixels)
            least = std::min(least, static_cast<int>(pixel & 0xFF));
        return least;
    };
    const auto smooth = [&] {
        const ScreenPicture corner = desk().screen->picture(200, 150, 10, 10);
        return std::any_of(corner.pixels.begin(), corner.pixels.end(), [](std::uint32_t pixel) {
            return (pixel & 0xFF) > 0x88 && pixel != wallpaper;
        });
    };
    EXPECT_FALSE(smooth());
    ASSERT_TRUE(desk().session.startCompositor());
    EXPECT_TRUE(desk().pump(smooth));
    desk().session.stopCompositor();
    EXPECT_TRUE(desk().pump([&] { return !smooth() && darkest() > 0x20; }));
    EXPECT_TRUE(desk().pump([&] { return form.pixel(0, 0) == wallpaper; }));
    xcb_destroy_window(desk().screen->connection(), backdrop);
}

TEST(HoleShape, GivesTheRunsOfSolidPixelsInBands) {
    QImage image(6, 4, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    for (int y = 1; y < 3; ++y) {
        image.setPixel(1, y, 0xFF000000);
        image.setPixel(2, y, 0xFF000000);
        image.setPixel(5, y, 0xFF000000);
    }
    image.setPixel(0, 3, 0x80000000);
    const auto rows = platform::qt::solidRows(image, 128);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].x, 1);
    EXPECT_EQ(rows[0].y, 1);
    EXPECT_EQ(rows[0].width, 2);
    EXPECT_EQ(rows[0].height, 2);
    EXPECT_EQ(rows[1].x, 5);
    EXPECT_EQ(rows[1].height, 2);
    EXPECT_EQ(rows[2].y, 3);
    EXPECT_TRUE(platform::qt::solidRows(image, 129).size() == 2);
}

TEST(HoleShape, OfRowsTakenTogetherHasThePixelsOfAll) {
    QImage image(6, 5, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    image.setPixel(1, 0, 0xFF000000);
    image.setPixel(2, 1, 0xFF000000);
    image.setPixel(5, 4, 0xFF000000);
    const auto rows = platform::qt::solidRows(image, 128, 2);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].x, 1);
    EXPECT_EQ(rows[0].width, 2);
    EXPECT_EQ(rows[0].height, 2);
    EXPECT_EQ(rows[1].x, 5);
    EXPECT_EQ(rows[1].y, 4);
    EXPECT_EQ(rows[1].height, 1) << "not beyond the image";
}

TEST(HoleShape, ClosesGapsThatAreNarrower) {
    QImage image(12, 1, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    for (const int x : {0, 3, 8})
        image.setPixel(x, 0, 0xFF000000);
    const auto rows = platform::qt::solidRows(image, 128, 1, 3);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].x, 0);
    EXPECT_EQ(rows[0].width, 4);
    EXPECT_EQ(rows[1].x, 8);
    EXPECT_EQ(rows[1].width, 1);
    EXPECT_EQ(platform::qt::solidRows(image, 128, 1, 5).size(), 1U);
}

TEST(HoleShape, OfNothingIsNothing) {
    QImage image(3, 3, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    EXPECT_TRUE(platform::qt::solidRows(image, 1).empty());
}

TEST(HoleShape, HardEdgesKeepTheirOwnColour) {
    QImage image(3, 1, QImage::Format_ARGB32_Premultiplied);
    image.setPixel(0, 0, 0x80400000); // half red
    image.setPixel(1, 0, 0x7F400000);
    image.setPixel(2, 0, 0xFF123456);
    platform::qt::hardenEdges(image);
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 255);
    EXPECT_NEAR(qRed(image.pixel(0, 0)), 0x80, 1);
    EXPECT_EQ(image.pixel(1, 0), 0U);
    EXPECT_EQ(image.pixel(2, 0), 0xFF123456);
}

} // namespace
} // namespace velmora::tests
