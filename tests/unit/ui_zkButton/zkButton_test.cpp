#include "ui/zkButton.h"

#include "tests/unit/forms/form_fixture.h"

#include <limits>

namespace velmora {

using forms::leftButton;
using forms::Log;
using forms::rightButton;
using forms::Surface;
using ::testing::IsEmpty;
using State = zkButton::State;

namespace {

constexpr Colour faceColour = 0x8000000F;
constexpr Colour red = 0x000000FF;
constexpr Colour blue = 0x00C00000;

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
    std::unique_ptr<platform::FormWindow> makeWindow(forms::Form &form) override {
        return std::make_unique<DenseWindow>(*this, form);
    }
};

} // namespace

class ButtonTest : public forms::FormFixture {
protected:
    zkButton button{form, "ShadeOK"};
    Log log;

    ButtonTest() { button.move({300, 300, 20 * 15, 10 * 15}); }

    void logAll() {
        logEvents(button.on(), "button", log);
        button.MouseOut = [this] { log.emplace_back("button out"); };
    }

    void tick(int count = 1) { windows.advance(20 * count); }
    const Surface &shownPicture() const { return *button.look().surface; }
    static Surface::Pixel source(forms::Picture picture, int x, int y) {
        return Surface::black | static_cast<std::uint32_t>(picture) << 16U |
               static_cast<std::uint32_t>(x) << 8U | static_cast<std::uint32_t>(y);
    }
    // Whether the whole button shows this look.
    void expectLook(forms::Picture picture) {
        const Surface &surface = shownPicture();
        EXPECT_EQ(surface.pixel(0, 0), source(picture, 0, 0));
        EXPECT_EQ(surface.pixel(10, 5), source(picture, surface.width() == 20 ? 3 : 2, 16));
    }
    void enter() { move(310, 310); }
    void leave() { move(100, 100); }
};

// --- properties
// ------------------------------------------------------------------------------------------

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

TEST_F(ButtonTest, TheCaptionStandsInTheMiddleOverTheWholeWidth) {
    button.setCaption(u"Go");
    const forms::CustomLook look = button.look();
    const Twips height = form.textExtent(u"Go", look.captionFont).height;
    EXPECT_EQ(look.caption, u"Go");
    EXPECT_EQ(look.captionFont.name(), u"宋体");
    EXPECT_EQ(look.captionPlace, (RectTwips{0, (150 - height) / 2, 300, height}));
    EXPECT_EQ(look.captionAlignment, forms::Alignment::Centre);
    EXPECT_EQ(button.accessibleName(), u"Go");
}

// --- the looks
// ---------------------------------------------------------------------------------------------

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

// --- the mouse
// ------------------------------------------------------------------------------------------------

TEST_F(ButtonTest, AMoveInsideStartsTheHotFade) {
    logAll();
    enter();
    EXPECT_EQ(log, Log{"button move"});
    EXPECT_EQ(button.state(), State::ToHot);
    EXPECT_EQ(button.fade(), 0);
    EXPECT_TRUE(button.ticking());
}

TEST_F(ButtonTest, EachMoveInsideBeginsTheHotFadeAnew) {
    enter();
    tick(3);
    EXPECT_EQ(button.fade(), 90);
    move(320, 320);
    EXPECT_EQ(button.fade(), 0);
    EXPECT_EQ(button.state(), State::ToHot);
}

TEST_F(ButtonTest, AMoveToTheSamePositionIsNone) {
    logAll();
    enter();
    tick(3);
    enter();
    EXPECT_EQ(log, Log{"button move"});
    EXPECT_EQ(button.fade(), 90);
}

TEST_F(ButtonTest, TheEdgeAtZeroCountsAsOutside) {
    logAll();
    move(300, 310); // X is 0
    EXPECT_EQ(log, Log{"button out"});
    EXPECT_EQ(button.state(), State::ToNormal);
    EXPECT_FALSE(button.ticking());
}

TEST_F(ButtonTest, LeavingGoesOnFromWhereTheFadeStands) {
    logAll();
    enter();
    tick(3);
    leave();
    EXPECT_EQ(log, (Log{"button move", "button out"}));
    EXPECT_EQ(button.state(), State::ToNormal);
    EXPECT_EQ(button.fade(), 90);
    tick();
    EXPECT_EQ(button.fade(), 91);
}

TEST_F(ButtonTest, TheLeaveOfTheWindowIsALeave) {
    enter();
    form.pointerLeft();
    EXPECT_EQ(button.state(), State::ToNormal);
}

TEST_F(ButtonTest, LeavingIsToldOnce) {
    logAll();
    enter();
    leave();
    move(110, 110);
    EXPECT_EQ(log, (Log{"button move", "button out"}));
}

TEST_F(ButtonTest, TheLeftButtonPressesAndTheOthersDoNot) {
    logAll();
    enter();
    press(310, 310, rightButton);
    EXPECT_EQ(button.state(), State::ToHot);
    release(310, 310, rightButton);
    press(310, 310);
    EXPECT_EQ(button.state(), State::ToPressed);
    EXPECT_EQ(button.fade(), 0);
    EXPECT_EQ(log, (Log{"button move", "button down", "button up", "button down"}));
}

TEST_F(ButtonTest, AMoveWithAButtonHeldKeepsTheState) {
    enter();
    press(310, 310);
    tick(2);
    move(320, 320, leftButton);
    EXPECT_EQ(button.state(), State::ToPressed);
    EXPECT_EQ(button.fade(), 60);
}

TEST_F(ButtonTest, ReleasingFadesToHotAndClicks) {
    logAll();
    enter();
    press(310, 310);
    tick(2);
    release(310, 310);
    EXPECT_EQ(button.state(), State::ToHot);
    EXPECT_EQ(button.fade(), 0);
    EXPECT_EQ(log, (Log{"button move", "button down", "button up", "button click"}));
}

TEST_F(ButtonTest, AfterTheReleaseTheSamePositionCountsAsAMove) {
    enter();
    press(310, 310);
    release(310, 310);
    tick(3);
    EXPECT_EQ(button.fade(), 90);
    move(310, 310);
    EXPECT_EQ(button.fade(), 0);
}

TEST_F(ButtonTest, TheReleaseAfterLeavingStillArrivesAndIsNoClick) {
    logAll();
    enter();
    press(310, 310);
    move(100, 100, leftButton);
    EXPECT_EQ(button.state(), State::ToNormal);
    release(100, 100);
    EXPECT_EQ(log, (Log{"button move", "button down", "button out", "button up", "button out"}));
    // The release made it hot; the leave behind it takes it back.
    EXPECT_EQ(button.state(), State::ToNormal);
}

// --- the ticks
// -------------------------------------------------------------------------------------------------

TEST_F(ButtonTest, AFullHotFadeTakesNineTicks) {
    enter();
    tick(8);
    EXPECT_EQ(button.fade(), 240);
    EXPECT_EQ(button.state(), State::ToHot);
    tick();
    EXPECT_EQ(button.fade(), 0); // reached 255
    EXPECT_EQ(button.state(), State::Idle);
    expectLook(forms::Picture::button_hot);
    EXPECT_TRUE(button.ticking());
    tick();
    EXPECT_FALSE(button.ticking());
}

TEST_F(ButtonTest, EachTickBlendsOverWhatIsShown) {
    button.setSpeed(100);
    enter();
    Surface::Pixel expected = source(forms::Picture::button_normal, 0, 0);
    const Surface::Pixel hot = source(forms::Picture::button_hot, 0, 0);
    for (const unsigned alpha : {100U, 200U}) {
        tick();
        const auto mixed = [&](unsigned shift) {
            const unsigned from = expected >> shift & 0xFFU;
            const unsigned to = hot >> shift & 0xFFU;
            return (to * alpha + from * (255 - alpha) + 127) / 255 << shift;
        };
        expected = Surface::black | mixed(16) | mixed(8) | mixed(0);
        EXPECT_EQ(shownPicture().pixel(0, 0), expected);
    }
}

TEST_F(ButtonTest, TheWayBackGrowsByOneATick) {
    enter();
    tick(20);
    enter();
    move(320, 320); // the timer runs again
    tick(1);
    leave();
    EXPECT_EQ(button.fade(), 30);
    tick(224);
    EXPECT_EQ(button.fade(), 254);
    tick();
    EXPECT_EQ(button.state(), State::Idle);
    expectLook(forms::Picture::button_normal);
    EXPECT_EQ(button.look().captionColor, faceColour);
}

TEST_F(ButtonTest, ASpeedBeyondTheRangeSaturates) {
    for (const int speed : {255, 256, 10'000, std::numeric_limits<std::int32_t>::max()}) {
        button.setSpeed(speed);
        leave();
        enter();
        tick();
        EXPECT_EQ(button.state(), State::Idle) << speed;
        expectLook(forms::Picture::button_hot);
    }
}

TEST_F(ButtonTest, AnExactSumOf255NeedsNoSaturation) {
    button.setSpeed(51);
    enter();
    tick(4);
    EXPECT_EQ(button.fade(), 204);
    tick();
    EXPECT_EQ(button.state(), State::Idle);
}

TEST_F(ButtonTest, ANegativeSpeedLeavesTheRangeAtOnce) {
    button.setSpeed(-1);
    enter();
    tick();
    EXPECT_EQ(button.state(), State::Idle);
    expectLook(forms::Picture::button_hot);
}

TEST_F(ButtonTest, ASpeedOfZeroNeverEndsAndTheTimerRunsOn) {
    button.setSpeed(0);
    enter();
    tick(500);
    EXPECT_EQ(button.state(), State::ToHot);
    EXPECT_EQ(button.fade(), 0);
    EXPECT_TRUE(button.ticking());
    expectLook(forms::Picture::button_normal);
    EXPECT_EQ(button.look().captionColor, red);
}

TEST_F(ButtonTest, ThePressedFadeGoesToThePressedLook) {
    enter();
    press(310, 310);
    tick(9);
    expectLook(forms::Picture::button_pressed);
    EXPECT_EQ(button.look().captionColor, blue);
}

// The ticks begin with a move inside and with nothing else.
TEST_F(ButtonTest, APressOnAButtonAtRestWaitsForTheNextMove) {
    enter();
    tick(10);
    ASSERT_FALSE(button.ticking());
    press(310, 310);
    EXPECT_EQ(button.state(), State::ToPressed);
    EXPECT_FALSE(button.ticking());
    move(311, 311, leftButton);
    EXPECT_TRUE(button.ticking());
    EXPECT_EQ(button.state(), State::ToPressed);
}

TEST_F(ButtonTest, EachTickAsksForOnePaint) {
    auto &window = shown();
    enter();
    window.told.clear();
    tick(9);
    EXPECT_EQ(window.told.size(), 9U);
    tick(10);
    EXPECT_EQ(window.told.size(), 9U); // idle: nothing is drawn
}

// --- keys, disabling, the end
// ------------------------------------------------------------------------------------

TEST_F(ButtonTest, EnterAndSpaceAreAClickWhenTabGaveItTheFocus) {
    logAll();
    form.show();
    form.focusNext(false);
    ASSERT_EQ(form.activeControl(), &button);
    EXPECT_FALSE(form.keyPressed(13, 0));
    EXPECT_FALSE(form.keyPressed(32, 0));
    EXPECT_TRUE(form.keyPressed(65, 0));
    EXPECT_EQ(log, (Log{"button key", "button click", "button key", "button click", "button key"}));
}

TEST_F(ButtonTest, AKeyThatAHandlerSwallowedIsNoClick) {
    logAll();
    button.on().KeyDown = [](forms::KeyEvent &event) { event.keyCode = 0; };
    form.focusNext(false);
    form.keyPressed(13, 0);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(ButtonTest, AClickGivesItNoFocus) {
    form.show();
    click(310, 310);
    EXPECT_EQ(form.activeControl(), nullptr);
}

TEST_F(ButtonTest, ADisabledOneIsStillAndShowsADimmedCaption) {
    enter();
    tick(4);
    button.setEnabled(false);
    EXPECT_TRUE(button.look().captionDimmed);
    EXPECT_EQ(button.look().captionColor, faceColour);
    expectLook(forms::Picture::button_normal);
    EXPECT_FALSE(button.ticking());
    logAll();
    move(320, 320);
    click(310, 310);
    EXPECT_THAT(log, IsEmpty());
    button.setEnabled(true);
    EXPECT_FALSE(button.look().captionDimmed);
}

TEST_F(ButtonTest, ADisabledFormLooksUnchanged) {
    form.setEnabled(false);
    EXPECT_FALSE(button.look().captionDimmed);
}

TEST_F(ButtonTest, AnyHandlerMayEndTheButton) {
    const std::vector<std::function<void(zkButton &, std::function<void()>)>> traps = {
        [](zkButton &on, auto end) { on.on().MouseMove = [end](const auto &) { end(); }; },
        [](zkButton &on, auto end) { on.on().MouseDown = [end](const auto &) { end(); }; },
        [](zkButton &on, auto end) { on.on().MouseUp = [end](const auto &) { end(); }; },
        [](zkButton &on, auto end) { on.on().Click = end; },
        [](zkButton &on, auto end) { on.MouseOut = end; },
    };
    for (const auto &trap : traps) {
        auto brief = std::make_unique<zkButton>(form, "brief");
        brief->move({1500, 1500, 300, 300});
        trap(*brief, [&] { brief.reset(); });
        move(1600, 1600);
        click(1600, 1600);
        move(1610, 1610);
        leave();
        tick(3);
        EXPECT_EQ(brief, nullptr);
    }
}

} // namespace velmora
