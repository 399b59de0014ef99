// Properties, and the looks cut from the state pictures.

#include "tests/unit/ui_zkButton/button_fixture.h"

namespace velmora {

using ::testing::ElementsAre;

namespace {

// A window on a dense screen.
class DenseWindow : public fakes::FakeFormWindow {
public:
    using FakeFormWindow::FakeFormWindow;
    double scaleFactor() const override { return scale; }
    double scale = 2.0;
};

class DenseWindows : public fakes::FakeWindows {
public:
    using FakeWindows::FakeWindows;
    std::unique_ptr<forms::FormWindow> makeWindow(forms::Form &form) override {
        return std::make_unique<DenseWindow>(*this, form);
    }
};

} // namespace

// --- what is drawn at all --------------------------------------------------------------

TEST_F(ButtonTest, DrawsNothingUntilSomebodyLooks) {
    button.setCaption(u"again");
    button.setSpeed(40);
    button.move({300, 300, 30 * 15, 12 * 15});
    EXPECT_THAT(windows.picturesDrawn, IsEmpty());
    shownPicture();
    EXPECT_THAT(windows.picturesDrawn, ElementsAre(forms::Picture::button_normal));
    shownPicture();
    EXPECT_EQ(windows.picturesDrawn.size(), 1U);
}

TEST_F(ButtonTest, DrawsTheHotAndThePressedLookWithTheirFirstTick) {
    shownPicture();
    enter();
    EXPECT_EQ(windows.picturesDrawn.size(), 1U);
    tick(2);
    button.mouseDown({forms::leftButton, 0, 10, 10});
    tick(2);
    EXPECT_THAT(windows.picturesDrawn,
                ElementsAre(forms::Picture::button_normal, forms::Picture::button_hot,
                            forms::Picture::button_pressed));
}

TEST_F(ButtonTest, DisabledAgainAndAgainKeepsThePictureOfItsSizeAndTheMeasureOfItsCaption) {
    const Surface *const picture = &shownPicture();
    windows.measures = 0;
    for (int i = 0; i < 3; ++i) {
        button.setEnabled(false);
        EXPECT_EQ(&shownPicture(), picture);
        button.setEnabled(true);
        EXPECT_EQ(&shownPicture(), picture);
    }
    EXPECT_EQ(windows.measures, 0);
}

TEST_F(ButtonTest, FadesFromTheNormalLookWhereNobodyLookedBefore) {
    enter();
    tick(9); // 30 a tick: full at the ninth
    expectLook(forms::Picture::button_hot);
    button.setCaption(u"again");
    EXPECT_EQ(button.state(), State::Idle);
    expectLook(forms::Picture::button_normal);
}

// --- properties ------------------------------------------------------------------------

TEST_F(ButtonTest, TheCaptionIsTheNameWithoutShade) { EXPECT_EQ(button.caption(), u"OK"); }

TEST_F(ButtonTest, AnAmountOfShadesLosesThemEverywhere) {
    const zkButton many(form, "ShadeYesShadeNoShade");
    EXPECT_EQ(many.caption(), u"YesNo");
    const zkButton none(form, "shadeOK"); // the case counts
    EXPECT_EQ(none.caption(), u"shadeOK");
    const zkButton all(form, "Shade");
    EXPECT_EQ(all.caption(), u"");
}

TEST_F(ButtonTest, BeginsWithTheDesignedValues) {
    EXPECT_EQ(button.speed(), 30);
    EXPECT_EQ(button.foreColor(), faceColour);
    EXPECT_EQ(button.hotColor(), red);
    EXPECT_EQ(button.pressedColor(), blue);
    EXPECT_EQ(button.state(), State::Idle);
    EXPECT_EQ(button.fade(), 0);
    EXPECT_FALSE(button.ticking());
}

TEST_F(ButtonTest, TheFaceOfButtonsIsF0F0F0) {
    EXPECT_EQ(forms::plainColour(faceColour), 0xF0F0F0U);
}

TEST_F(ButtonTest, WritingTheForeColourShowsAtOnceAndTheOthersWithTheirTick) {
    button.setForeColor(0x00ABCDEF);
    EXPECT_EQ(button.look().captionColor, 0x00ABCDEFU);
    button.setHotColor(1);
    button.setPressedColor(2);
    EXPECT_EQ(button.look().captionColor, 0x00ABCDEFU);
    enter();
    EXPECT_EQ(button.look().captionColor, 0x00ABCDEFU);
    tick();
    EXPECT_EQ(button.look().captionColor, 1U);
    press(310, 310);
    tick();
    EXPECT_EQ(button.look().captionColor, 2U);
}

TEST_F(ButtonTest, AnotherForeColourIsToldAndTheSameIsNot) {
    auto &window = shown();
    for (int time = 0; time < 2; ++time) {
        window.told.clear();
        button.setForeColor(0x00ABCDEF);
        EXPECT_EQ(window.told.size(), time == 0 ? 1U : 0U);
    }
}

TEST_F(ButtonTest, WhatWritesItAnewIsToldOnce) {
    auto &window = shown();
    for (const std::function<void()> &write : std::vector<std::function<void()>>{
             [&] { button.setCaption(u"again"); }, [&] { button.setSpeed(30); }}) {
        window.told.clear();
        write();
        EXPECT_EQ(window.told.size(), 1U);
    }
}

TEST_F(ButtonTest, TheCaptionStandsInTheMiddleOverTheWholeWidth) {
    button.setCaption(u"Go");
    const forms::CustomLook look = button.look();
    const Twips height = form.textExtent(u"Go", look.captionFont).height;
    EXPECT_EQ(look.caption, u"Go");
    EXPECT_EQ(look.captionFont.name(), u"宋体");
    EXPECT_EQ(look.captionFont.size(), 9);
    EXPECT_EQ(look.captionPlace, (RectTwips{0, (150 - height) / 2, 300, height}));
    EXPECT_EQ(look.captionAlignment, forms::Alignment::Centre);
    EXPECT_EQ(button.accessibleName(), u"Go");
}

// --- the looks -------------------------------------------------------------------------

TEST_F(ButtonTest, TheSurfaceHasTheSizeInPixels) {
    EXPECT_EQ(shownPicture().width(), 20);
    EXPECT_EQ(shownPicture().height(), 10);
}

TEST_F(ButtonTest, TheNormalLookIsCutInNineSlices) {
    struct Slice {
        const char *name;
        int x, y, width, height;
        int sourceX, sourceY, sourceWidth, sourceHeight;
    };
    constexpr int w = 20;
    constexpr int h = 10;
    const Surface &surface = shownPicture();
    for (const Slice &slice :
         {Slice{"centre", 2, 2, w - 4, h - 4, 2, 2, 2, 28},
          Slice{"top left", 0, 0, 2, 2, 0, 0, 2, 2}, Slice{"top right", w - 2, 0, 2, 2, 4, 0, 2, 2},
          Slice{"bottom left", 0, h - 2, 2, 2, 0, 30, 2, 2},
          Slice{"bottom right", w - 2, h - 2, 2, 2, 4, 30, 2, 2},
          Slice{"top edge", 2, 0, w - 4, 2, 2, 0, 2, 2},
          Slice{"bottom edge", 2, h - 2, w - 4, 2, 2, 30, 2, 2},
          Slice{"left edge", 0, 2, 2, h - 4, 0, 2, 2, 28},
          Slice{"right edge", w - 2, 2, 2, h - 4, 4, 2, 2, 28}}) {
        for (int y = 0; y < slice.height; ++y) {
            for (int x = 0; x < slice.width; ++x) {
                ASSERT_EQ(surface.pixel(slice.x + x, slice.y + y),
                          source(forms::Picture::button_normal,
                                 slice.sourceX + x * slice.sourceWidth / slice.width,
                                 slice.sourceY + y * slice.sourceHeight / slice.height))
                    << slice.name << ' ' << x << ' ' << y;
            }
        }
    }
}

TEST_F(ButtonTest, ResizingDrawsTheLooksAnew) {
    button.setWidth(40 * 15);
    EXPECT_EQ(shownPicture().width(), 40);
    EXPECT_EQ(shownPicture().pixel(39, 9), source(forms::Picture::button_normal, 5, 31));
}

TEST_F(ButtonTest, MovingDrawsNothingAnew) {
    const Surface *const before = button.look().surface;
    button.setLeft(15);
    EXPECT_EQ(button.look().surface, before);
}

TEST_F(ButtonTest, WritingCaptionOrSpeedShowsTheNormalLook) {
    for (const std::function<void()> &write : std::vector<std::function<void()>>{
             [&] { button.setCaption(u"again"); }, [&] { button.setSpeed(30); }}) {
        enter();
        tick(12);
        expectLook(forms::Picture::button_hot);
        write();
        expectLook(forms::Picture::button_normal);
        leave();
    }
}

TEST_F(ButtonTest, SmallerThanItsCornersNothingGuardsAndNothingBreaks) {
    for (const float pixels : {0.0F, 1.0F, 2.0F, 3.0F, 4.0F}) {
        button.move({0, 0, pixels * 15, pixels * 15});
        enter();
        tick(3);
        EXPECT_EQ(shownPicture().width(), static_cast<int>(pixels));
    }
    // 3 pixels wide, the middle is -1 wide: mirrored over the pixel at 1.
    button.move({0, 0, 3 * 15, 10 * 15});
    EXPECT_EQ(shownPicture().pixel(0, 0), source(forms::Picture::button_normal, 0, 0));
    EXPECT_EQ(shownPicture().pixel(2, 9), source(forms::Picture::button_normal, 5, 31));
    EXPECT_EQ(shownPicture().pixel(1, 0), source(forms::Picture::button_normal, 2, 0));
}

TEST(DenseButton, SlicesAreCutAtDevicePixels) {
    fakes::FakeClock clock;
    DenseWindows windows(clock);
    forms::Form form(windows, "form");
    form.move({0, 0, 3000, 3000});
    zkButton button(form, "OK");
    button.move({0, 0, 20 * 15, 10 * 15});
    EXPECT_EQ(button.look().surface->width(), 20); // no window yet
    form.show();
    const Surface &twice = *button.look().surface;
    EXPECT_EQ(twice.width(), 40);
    EXPECT_EQ(twice.height(), 20);
    // The picture is drawn 12 by 64 here, its corners 4 by 4.
    EXPECT_EQ(twice.pixel(3, 3) & 0xFFFFU, 0x0303U);
    EXPECT_EQ(twice.pixel(36, 16) & 0xFFFFU, 8U << 8U | 60U);
    EXPECT_EQ(twice.pixel(39, 19) & 0xFFFFU, 11U << 8U | 63U);

    static_cast<DenseWindow *>(form.window())->scale = 1.5;
    form.scaleChanged();
    EXPECT_EQ(button.look().surface->width(), 30);
    EXPECT_EQ(button.look().surface->pixel(29, 14) & 0xFFFFU, 8U << 8U | 47U);
}

} // namespace velmora
