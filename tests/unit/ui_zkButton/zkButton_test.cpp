// The mouse, the ticks, the keys.

#include "tests/unit/ui_zkButton/button_fixture.h"

namespace velmora {

// --- the mouse -------------------------------------------------------------------------

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

TEST_F(ButtonTest, PressAndReleaseBeginTheirFadesAnew) {
    enter();
    tick(2);
    EXPECT_EQ(button.fade(), 60);
    button.mouseDown({forms::leftButton, 0, 10, 10});
    EXPECT_EQ(button.fade(), 0);
    tick(3);
    EXPECT_EQ(button.fade(), 90);
    button.mouseUp({forms::leftButton, 0, 10, 10});
    EXPECT_EQ(button.fade(), 0);
}

TEST_F(ButtonTest, EachOfItsEdgesCountsAsOutsideAndTheTwipBesideItAsInside) {
    const auto at = [this](Twips x, Twips y) {
        button.mouseMove({0, 0, x, y});
        return button.state();
    };
    EXPECT_EQ(at(1, 75), State::ToHot);
    EXPECT_EQ(at(0, 75), State::ToNormal);
    EXPECT_EQ(at(299, 75), State::ToHot);
    EXPECT_EQ(at(300, 75), State::ToNormal);
    EXPECT_EQ(at(150, 1), State::ToHot);
    EXPECT_EQ(at(150, 0), State::ToNormal);
    EXPECT_EQ(at(150, 149), State::ToHot);
    EXPECT_EQ(at(150, 150), State::ToNormal);
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

TEST_F(ButtonTest, AButtonClickedAtRestIsNormalAgainWhenItsWindowHasGone) {
    button.on().Click = [this] { form.hide(); };
    form.show();
    enter();
    tick(10);
    ASSERT_FALSE(button.ticking()); // the pointer rests, and the button is hot
    press(310, 310);
    release(310, 310);
    form.pointerLeft();
    tick(300);
    form.show();
    expectLook(forms::Picture::button_normal);
    EXPECT_EQ(button.look().captionColor, faceColour);
    EXPECT_FALSE(button.ticking());
}

TEST_F(ButtonTest, ADisabledButtonStaysStillWhenThePointerLeaves) {
    enter();
    button.setEnabled(false);
    form.pointerLeft();
    EXPECT_FALSE(button.ticking());
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

// --- the ticks -------------------------------------------------------------------------

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

// --- keys, disabling, the end ----------------------------------------------------------

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
