// Screens of other densities. The density comes from the environment of the whole program: ctest
// runs these once for each.

#include "tests/desktop/qt/desk.h"

#include <cmath>
#include <cstdlib>

namespace velmora::tests {
namespace {

constexpr std::uint32_t wallpaper = 0x2060C0;

class ScaleTest : public DeskTest {
protected:
    static double scale() {
        const char *value = std::getenv("QT_SCALE_FACTOR");
        return value != nullptr ? std::atof(value) : 1.0;
    }
    static int device(double logical) { return static_cast<int>(std::lround(logical * scale())); }
    // The pixel of the screen at a place in the form, in device pixels.
    static std::uint32_t pixel(int x, int y) {
        return desk().screen->pixel(device(200) + x, device(150) + y);
    }
};

struct ScaleForm : TestForm {
    forms::Shape bar{*this, "bar"};
    forms::Line line{*this, "line"};
    forms::Image inner{*this, "inner"};
    forms::ListBox list{*this, "list"};
    ScaleForm() {
        setGround(forms::Picture::body);
        bar.move({300, 600, 1515, 165}); // 20,40 101x11
        bar.setFillColor(0x000000FF);
        line.setEnds(300, 1050, 1800, 1050); // 20,70
        line.setBorderColor(0x0000FF00);
        inner.move({300, 1500, 450, 450});  // 20,100 30x30
        list.move({2250, 600, 1500, 1800}); // 150,40 100x120
        list.setDesignRows(10);
        list.setBackColor(0x0022180F);
        for (int i = 0; i < 20; ++i)
            list.addItem(u"row");
        auto &windows = *desk().windows;
        windows.SetWindowLongA(hWnd(), platform::GWL_EXSTYLE, platform::WS_EX_LAYERED);
        windows.SetLayeredWindowAttributes(hWnd(), keyColour, 0, platform::LWA_COLORKEY);
    }
};

TEST_F(ScaleTest, TheWindowIsPlacedAndSizedInDevicePixels) {
    ScaleForm form;
    form.appear();
    const auto place = desk().screen->geometry(nativeOf(form));
    ASSERT_TRUE(place);
    EXPECT_EQ(place->x, device(200));
    EXPECT_EQ(place->y, device(150));
    EXPECT_EQ(place->width, device(300));
    EXPECT_EQ(place->height, device(200));
    EXPECT_FLOAT_EQ(static_cast<float>(form.window()->scaleFactor()), static_cast<float>(scale()));
    EXPECT_NEAR(desk().windows->screenWidth(), 1280 * 15 / scale(), 15);
}

TEST_F(ScaleTest, EdgesLieOnDevicePixels) {
    ScaleForm form;
    form.appear();
    const int left = device(20);
    const int right = device(121);
    const int top = device(40);
    const int bottom = device(51);
    EXPECT_TRUE(desk().pump([&] { return pixel(left, top) == 0xFF0000U; }));
    EXPECT_EQ(pixel(right - 1, bottom - 1), 0xFF0000U);
    const std::pair<int, int> outside[] = {
        {left - 1, top}, {right, top}, {left, top - 1}, {left, bottom}};
    for (const auto &[x, y] : outside)
        EXPECT_LT(pixel(x, y) >> 16, 0x40U) << "a blurred edge at " << x << "," << y;
}

TEST_F(ScaleTest, ALineIsOneDevicePixelOrTwoAndNeverBlurred) {
    ScaleForm form;
    form.appear();
    ASSERT_TRUE(desk().pump([&] { return pixel(device(60), device(70)) == 0x00FF00U; }));
    int full = 0;
    int partly = 0;
    for (int y = device(70) - 4; y < device(70) + 6; ++y) {
        const std::uint32_t green = (pixel(device(60), y) >> 8) & 0xFF;
        full += green == 0xFF;
        partly += green > 0x60 && green < 0xFF;
    }
    EXPECT_EQ(full, static_cast<int>(std::max(1.0, std::floor(scale()))));
    EXPECT_EQ(partly, 0);
}

TEST_F(ScaleTest, HolesAreCutAtTheRealDensity) {
    const xcb_window_t backdrop = desk().screen->makeBackdrop(wallpaper);
    ScaleForm form;
    form.appear();
    EXPECT_TRUE(desk().pump([&] { return pixel(0, 0) == wallpaper; }));
    EXPECT_EQ(pixel(device(300) - 1, device(200) - 1), wallpaper);
    EXPECT_NE(pixel(device(130), device(100)), wallpaper);
    // The corner has a radius of 9 logical pixels: its edge crosses the diagonal at 2.6.
    int along = 0;
    while (along < 40 && pixel(along, along) == wallpaper)
        ++along;
    EXPECT_NEAR(along, 2.64 * scale(), 1.5);
    xcb_destroy_window(desk().screen->connection(), backdrop);
}

TEST_F(ScaleTest, TheMouseIsToldInTheFormsOwnUnits) {
    ScaleForm form;
    forms::MouseEvent last;
    form.inner.on().MouseDown = [&](const forms::MouseEvent &e) { last = e; };
    form.appear();
    desk().click(device(200 + 32), device(150 + 110));
    EXPECT_TRUE(desk().pump([&] { return last.button != 0; }));
    EXPECT_NEAR(last.x, 12 * 15, 16);
    EXPECT_NEAR(last.y, 10 * 15, 16);
}

TEST_F(ScaleTest, AClickMeetsTheRowUnderThePointer) {
    ScaleForm form;
    form.appear();
    desk().click(device(200 + 200), device(150 + 40 + 7 * 12 + 6));
    EXPECT_TRUE(desk().pump([&] { return form.list.listIndex() == 7; })) << form.list.listIndex();
}

TEST_F(ScaleTest, TextIsAsWideInTwipsAtEveryDensity) {
    const forms::Font font(u"Arial", 9);
    // 9 points at 96 dots are 12 pixels to the em, which is the width of a Chinese character.
    EXPECT_NEAR(desk().windows->textExtent(u"Velmora 2011", font).width, 74 * 15, 15);
    EXPECT_NEAR(desk().windows->textExtent(u"灯火映在水面", font).width, 72 * 15, 15);
}

TEST_F(ScaleTest, AMoveIsNotTakenForSomebodyElsesOnItsWayBack) {
    ScaleForm form;
    form.appear();
    for (int i = 0; i < 20; ++i)
        form.setLeft(form.left() + 30);
    EXPECT_TRUE(
        desk().pump([&] { return desk().screen->geometry(nativeOf(form))->x == device(240); }));
    ASSERT_TRUE(desk().settle());
    EXPECT_FLOAT_EQ(form.left(), 240 * 15);
}

} // namespace
} // namespace velmora::tests
