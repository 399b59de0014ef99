// In which order the button acts and tells.

#include "tests/unit/ui_zkButton/button_fixture.h"

#include <limits>

namespace velmora {

TEST_F(ButtonTest, ThePressIsToldAheadOfItsFade) {
    enter();
    tick(2);
    State seen = State::Idle;
    int fade = 0;
    button.on().MouseDown = [&](const forms::MouseEvent &) {
        seen = button.state();
        fade = button.fade();
    };
    press(310, 310);
    EXPECT_EQ(seen, State::ToHot);
    EXPECT_EQ(fade, 60);
}

TEST_F(ButtonTest, TheReleaseIsToldAheadOfItsFade) {
    enter();
    press(310, 310);
    tick(2);
    State seen = State::Idle;
    int fade = 0;
    button.on().MouseUp = [&](const forms::MouseEvent &) {
        seen = button.state();
        fade = button.fade();
    };
    release(310, 310);
    EXPECT_EQ(seen, State::ToPressed);
    EXPECT_EQ(fade, 60);
}

TEST_F(ButtonTest, TheMoveIsToldWithTheTimerRunningAndAheadOfTheHotFade) {
    bool ticking = false;
    State seen = State::ToHot;
    button.on().MouseMove = [&](const forms::MouseEvent &) {
        ticking = button.ticking();
        seen = button.state();
    };
    enter();
    EXPECT_TRUE(ticking);
    EXPECT_EQ(seen, State::Idle);
}

TEST_F(ButtonTest, TheLeaveIsToldAheadOfTheWayBack) {
    enter();
    State seen = State::Idle;
    button.MouseOut = [&] { seen = button.state(); };
    leave();
    EXPECT_EQ(seen, State::ToHot);
    EXPECT_EQ(button.state(), State::ToNormal);
}

TEST_F(ButtonTest, TheMoveToThePlaceOfThePressIsNone) {
    button.mouseDown({leftButton, 0, 10, 10});
    logAll();
    button.mouseMove({leftButton, 0, 10, 10});
    EXPECT_THAT(log, IsEmpty());
    EXPECT_FALSE(button.ticking());
}

TEST_F(ButtonTest, PressAndReleaseStartNoTicks) {
    button.mouseDown({leftButton, 0, 10, 10});
    EXPECT_FALSE(button.ticking());
    button.mouseUp({leftButton, 0, 10, 10});
    EXPECT_FALSE(button.ticking());
    EXPECT_EQ(button.state(), State::ToHot);
}

TEST_F(ButtonTest, ALeaveOfAButtonAtRestIsSoftToo) {
    enter();
    tick(12);
    ASSERT_FALSE(button.ticking());
    leave();
    EXPECT_EQ(button.state(), State::ToNormal);
    tick();
    EXPECT_EQ(button.fade(), 1);
    tick(256);
    expectLook(forms::Picture::button_normal);
    EXPECT_FALSE(button.ticking());
}

TEST_F(ButtonTest, TheWayBackKeepsTheAlphaOfThePressedFade) {
    enter();
    press(310, 310);
    tick(4);
    move(100, 100, leftButton);
    EXPECT_EQ(button.fade(), 120);
    tick();
    EXPECT_EQ(button.fade(), 121);
}

TEST_F(ButtonTest, AnyStepBelowTheRangeSaturatesAtItsEndToo) {
    for (const int speed : {-2, -100, -255, -256, -10'000}) {
        button.setSpeed(speed);
        leave();
        enter();
        tick();
        EXPECT_EQ(button.state(), State::Idle) << speed;
        expectLook(forms::Picture::button_hot);
    }
}

TEST_F(ButtonTest, ThatWasDisabledWhileHotHasNoWayBackToGoWhenThePointerLeaves) {
    button.setSpeed(255);
    enter();
    tick(2);
    ASSERT_FALSE(button.ticking());
    button.setEnabled(false);
    button.setEnabled(true);
    button.mouseMove({0, 0, -5, -5});
    EXPECT_FALSE(button.ticking());
}

TEST_F(ButtonTest, AStepAboveTheRangeIsWholeAtOnceInEachOfItsLooks) {
    for (const int speed :
         {255, 256, 300, -300, 10'000, std::numeric_limits<std::int32_t>::max()}) {
        button.setSpeed(speed);
        leave();
        enter();
        tick();
        EXPECT_EQ(button.state(), State::Idle) << speed;
        expectLook(forms::Picture::button_hot);
        press(310, 310);
        tick();
        EXPECT_EQ(button.state(), State::Idle) << speed;
        expectLook(forms::Picture::button_pressed);
        release(310, 310);
        tick();
    }
}

TEST_F(ButtonTest, ThatIsDisabledInItsFadeIsDrawnNormalAtOnce) {
    button.setCaption(u"a");
    expectLook(forms::Picture::button_normal);
    enter();
    tick(7); // so far that the fade shows in the numbers of these pictures
    ASSERT_NE(shownPicture().pixel(0, 0), source(forms::Picture::button_normal, 0, 0));
    button.setEnabled(false);
    expectLook(forms::Picture::button_normal);
}

TEST_F(ButtonTest, ThatWasDisabledInItsFadeDoesNotGoOnWithItOnceItIsEnabled) {
    button.setCaption(u"a");
    enter();
    tick(4);
    button.setEnabled(false);
    button.setEnabled(true);
    button.mouseMove({leftButton, 0, 20, 20});
    tick();
    EXPECT_FALSE(button.ticking());
    expectLook(forms::Picture::button_normal);
}

TEST_F(ButtonTest, ThatIsEnabledAlreadyGoesOnWithItsFade) {
    enter();
    tick(4);
    button.setEnabled(true);
    EXPECT_TRUE(button.ticking());
    EXPECT_EQ(button.look().captionColor, red);
}

TEST_F(ButtonTest, ThatIsHotTakesItsOwnColourOnceMoreWhereItIsSet) {
    enter();
    tick(4);
    ASSERT_EQ(button.look().captionColor, red);
    button.setForeColor(faceColour);
    EXPECT_EQ(button.look().captionColor, faceColour);
}

} // namespace velmora
