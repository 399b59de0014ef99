#include "tests/unit/forms/form_fixture.h"

namespace velmora::forms {

using ::testing::IsEmpty;

class PointerTest : public FormFixture {
protected:
    Image back{form, "back"};
    PictureBox box{form, "box"};
    Label inner{box, "inner"};
    Image front{form, "front"};
    Log log;

    PointerTest() {
        back.move({0, 0, 1000, 1000});
        box.move({1500, 0, 1000, 1000});
        inner.move({100, 100, 300, 300});
        front.move({500, 500, 1000, 200}); // over the right part of `back`
        logEvents(form.on(), "form", log);
        form.on().DblClick = nullptr;
        for (Control *control : std::vector<Control *>{&back, &box, &inner, &front}) {
            logEvents(control->on(), control->name(), log);
            control->on().DblClick = nullptr;
        }
    }
};

// --- which control ---------------------------------------------------------------------

TEST_F(PointerTest, TheTopmostControlAtThePointTakesIt) {
    EXPECT_EQ(form.controlAt({100, 100}), &back);
    EXPECT_EQ(form.controlAt({600, 600}), &front);
    back.zOrder();
    EXPECT_EQ(form.controlAt({600, 600}), &back);
}

TEST_F(PointerTest, WhatLiesInABoxLiesAboveIt) {
    EXPECT_EQ(form.controlAt({1650, 150}), &inner);
    EXPECT_EQ(form.controlAt({2000, 600}), &box);
}

TEST_F(PointerTest, ABoxClipsWhatItHolds) {
    inner.move({900, 900, 300, 300});
    EXPECT_EQ(form.controlAt({2450, 950}), &inner);
    EXPECT_EQ(form.controlAt({2600, 1100}), nullptr);
}

TEST_F(PointerTest, TheRightAndLowerEdgesBelongToTheNextPixel) {
    EXPECT_EQ(form.controlAt({0, 0}), &back);
    EXPECT_EQ(form.controlAt({999, 0}), &back);
    EXPECT_EQ(form.controlAt({1000, 0}), nullptr);
}

TEST_F(PointerTest, HiddenControlsAreNotThere) {
    front.setVisible(false);
    EXPECT_EQ(form.controlAt({600, 600}), &back);
    box.setVisible(false);
    EXPECT_EQ(form.controlAt({1650, 150}), nullptr);
}

TEST_F(PointerTest, ClicksGoThroughShapesLinesAndTimers) {
    Shape shape(form, "shape");
    shape.move({0, 0, 3000, 3000});
    Line line(form, "line");
    line.setEnds(0, 100, 1000, 100);
    const Timer timer(form, "timer");
    EXPECT_EQ(form.controlAt({100, 100}), &back);
}

TEST_F(PointerTest, ADisabledControlPassesTheEventToItsContainer) {
    inner.setEnabled(false);
    EXPECT_EQ(form.controlAt({1650, 150}), &box);
    box.setEnabled(false);
    EXPECT_EQ(form.controlAt({1650, 150}), nullptr);
    back.setEnabled(false);
    front.setEnabled(false);
    EXPECT_EQ(form.controlAt({600, 600}), nullptr); // the form, not what lies behind
}

TEST_F(PointerTest, ADisabledContainerDisablesWhatItHolds) {
    box.setEnabled(false);
    EXPECT_EQ(form.controlAt({1650, 150}), nullptr);
}

TEST_F(PointerTest, PositionsCountInTheCoordinatesOfTheControl) {
    MouseEvent seen;
    inner.on().MouseDown = [&](const MouseEvent &event) { seen = event; };
    form.pointerPressed({1650, 150}, rightButton, ctrlMask);
    EXPECT_EQ(seen.x, 50);
    EXPECT_EQ(seen.y, 50);
    EXPECT_EQ(seen.button, rightButton);
    EXPECT_EQ(seen.shift, ctrlMask);
}

TEST_F(PointerTest, AMoveCarriesTheMaskOfTheButtonsHeld) {
    MouseEvent seen;
    back.on().MouseMove = [&](const MouseEvent &event) { seen = event; };
    press(10, 10);
    move(20, 30, static_cast<std::int16_t>(leftButton | rightButton));
    EXPECT_EQ(seen.button, 3);
    EXPECT_EQ(seen.x, 20);
}

TEST_F(PointerTest, AMoveCarriesTheKeysHeldAndNoButtonWhereNoneIs) {
    MouseEvent seen;
    back.on().MouseMove = [&](const MouseEvent &event) { seen = event; };
    form.pointerMoved({20, 30}, 0, ctrlMask);
    EXPECT_EQ(seen.button, 0);
    EXPECT_EQ(seen.shift, ctrlMask);
}

// --- presses ---------------------------------------------------------------------------

TEST_F(PointerTest, ClickFollowsTheRelease) {
    click(10, 10);
    EXPECT_EQ(log, (Log{"back down", "back up", "back click"}));
}

TEST_F(PointerTest, APressOnTheFormItselfIsTheForms) {
    click(10, 2000);
    EXPECT_EQ(log, (Log{"form down", "form up", "form click"}));
}

TEST_F(PointerTest, AReleaseOnTheFormsLeftAndUpperEdgeIsAClickAndBeyondTheOthersNone) {
    for (const PointTwips at : {PointTwips{0, 2000}, PointTwips{2900, 0}}) {
        log.clear();
        press(10, 2000);
        release(at.x, at.y);
        EXPECT_EQ(log.back(), "form click");
    }
    for (const PointTwips at : {PointTwips{3000, 2000}, PointTwips{2900, 3000}}) {
        log.clear();
        press(10, 2000);
        release(at.x, at.y);
        EXPECT_EQ(log.back(), "form up");
    }
}

TEST_F(PointerTest, AReleaseOutsideIsNoClick) {
    press(10, 10);
    release(2900, 2900);
    EXPECT_EQ(log, (Log{"back down", "back up"}));
}

TEST_F(PointerTest, AReleaseOverWhatLiesOnTopIsNoClick) {
    press(10, 10);
    release(600, 600);
    EXPECT_EQ(log, (Log{"back down", "back up"}));
}

TEST_F(PointerTest, APressOnTheFormReleasedOutsideTheWindowIsNoClick) {
    press(10, 2000);
    release(-100, 2000);
    EXPECT_EQ(log, (Log{"form down", "form up"}));
}

TEST_F(PointerTest, OnlyTheLeftButtonClicks) {
    click(10, 10, rightButton);
    click(10, 10, middleButton);
    EXPECT_EQ(log, (Log{"back down", "back up", "back down", "back up"}));
}

TEST_F(PointerTest, APressCapturesMovesAndRelease) {
    press(10, 10);
    log.clear();
    move(2000, 600, leftButton);
    move(-500, -500, leftButton);
    release(2000, 600);
    EXPECT_EQ(log, (Log{"back move", "back move", "back up"}));
    move(2000, 600);
    EXPECT_EQ(log.back(), "box move");
}

TEST_F(PointerTest, TheCaptureLastsUntilAllButtonsAreUp) {
    press(10, 10, leftButton);
    press(2000, 600, rightButton);
    release(2000, 600, leftButton);
    move(2000, 600, rightButton);
    release(2000, 600, rightButton);
    EXPECT_EQ(log, (Log{"back down", "back down", "back up", "back move", "back up"}));
}

TEST_F(PointerTest, AReleaseWithoutAPressIsDropped) {
    release(10, 10);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(PointerTest, AHiddenControlStillGetsTheReleaseOfItsPressButNoClick) {
    press(10, 10);
    back.setVisible(false);
    release(10, 10);
    EXPECT_EQ(log, (Log{"back down", "back up"}));
}

TEST_F(PointerTest, AControlDisabledMeanwhileGetsTheReleaseAlone) {
    press(10, 10);
    back.setEnabled(false);
    move(20, 20, leftButton);
    release(10, 10);
    EXPECT_EQ(log, (Log{"back down", "back up"}));
}

TEST_F(PointerTest, AReleaseHandlerThatDisablesTheControlPreventsTheClick) {
    back.on().MouseUp = [&](const MouseEvent &) { back.setEnabled(false); };
    click(10, 10);
    EXPECT_EQ(log, (Log{"back down"}));
}

TEST_F(PointerTest, AReleaseHandlerThatDisablesTheFormPreventsTheClick) {
    back.on().MouseUp = [&](const MouseEvent &) { form.setEnabled(false); };
    click(10, 10);
    EXPECT_EQ(log, (Log{"back down"}));
}

TEST_F(PointerTest, ALostReleaseEndsThePressWithoutAClick) {
    press(10, 10);
    move(2000, 600, 0); // a box took the release
    EXPECT_EQ(log, (Log{"back down", "box move"}));
    release(10, 10);
    EXPECT_EQ(log, (Log{"back down", "box move"}));
    press(10, 10);
    form.pointerLost();
    release(10, 10);
    EXPECT_EQ(log, (Log{"back down", "box move", "back down"}));
}

// --- double clicks ---------------------------------------------------------------------

TEST_F(PointerTest, ADoubleClickIsPressReleaseClickDoubleRelease) {
    logEvents(back.on(), "back", log);
    click(10, 10);
    form.pointerDoubleClicked({10, 10}, leftButton, 0);
    release(10, 10);
    EXPECT_EQ(log, (Log{"back down", "back up", "back click", "back double", "back up"}));
}

TEST_F(PointerTest, WhereNobodyListensToItTheSecondPressIsAPress) {
    click(10, 10);
    form.pointerDoubleClicked({10, 10}, leftButton, 0);
    release(10, 10);
    EXPECT_EQ(log,
              (Log{"back down", "back up", "back click", "back down", "back up", "back click"}));
}

TEST_F(PointerTest, ADoubleClickOfTheRightButtonIsTwoPresses) {
    logEvents(back.on(), "back", log);
    form.pointerDoubleClicked({10, 10}, rightButton, 0);
    EXPECT_EQ(log, (Log{"back down"}));
}

TEST_F(PointerTest, TheFormHasADoubleClickOfItsOwn) {
    logEvents(form.on(), "form", log);
    form.pointerDoubleClicked({10, 2000}, leftButton, 0);
    release(10, 2000);
    EXPECT_EQ(log, (Log{"form double", "form up"}));
}

TEST_F(PointerTest, AfterADoubleClickTheNextPressClicksAgain) {
    logEvents(back.on(), "back", log);
    form.pointerDoubleClicked({10, 10}, leftButton, 0);
    release(10, 10);
    log.clear();
    click(10, 10);
    EXPECT_EQ(log, (Log{"back down", "back up", "back click"}));
}

// --- a disabled form -------------------------------------------------------------------

TEST_F(PointerTest, NothingIsDeliveredWhileTheFormIsDisabled) {
    form.setEnabled(false);
    click(10, 10);
    move(10, 10);
    form.pointerDoubleClicked({10, 10}, leftButton, 0);
    release(10, 10);
    EXPECT_FALSE(form.keyPressed(65, 0));
    form.keyReleased(65, 0);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(PointerTest, ADisabledFormHearsOfNothingBesideItsControlsEither) {
    bool doubled = false;
    form.on().DblClick = [&] { doubled = true; };
    form.setEnabled(false);
    press(10, 2000);
    release(10, 2000);
    move(10, 2000);
    form.pointerDoubleClicked({10, 2000}, leftButton, 0);
    EXPECT_FALSE(doubled);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(PointerTest, TheReleaseOfAnotherButtonThanThePressedIsDropped) {
    press(10, 10);
    release(10, 10, rightButton);
    EXPECT_EQ(log, Log{"back down"});
    release(10, 10);
    EXPECT_EQ(log, (Log{"back down", "back up", "back click"}));
}

TEST_F(PointerTest, ASecondButtonIsNotPressedOnAControlDisabledUnderTheFirst) {
    press(10, 10);
    back.setEnabled(false);
    press(10, 10, rightButton);
    EXPECT_EQ(log, Log{"back down"});
}

TEST_F(PointerTest, APressThatWasGoingOnEndsSilentlyInADisabledForm) {
    press(10, 10);
    form.setEnabled(false);
    release(10, 10);
    form.setEnabled(true);
    move(2000, 600);
    EXPECT_EQ(log, (Log{"back down", "box move"}));
}

// --- lists, boxes and options ----------------------------------------------------------

TEST_F(PointerTest, ListsAndTogglesRaiseNoClickFromHere) {
    ListBox list(form, "list");
    CheckBox check(form, "check");
    OptionButton option(form, "option");
    list.move({0, 1500, 300, 300});
    check.move({300, 1500, 300, 300});
    option.move({600, 1500, 300, 300});
    for (Control *control : std::vector<Control *>{&list, &check, &option})
        logEvents(control->on(), control->name(), log);
    click(10, 1510);
    form.pointerDoubleClicked({10, 1510}, leftButton, 0);
    release(10, 1510);
    click(310, 1510);
    click(610, 1510);
    EXPECT_EQ(log, (Log{"list down", "list up", "list down", "list up", "check down", "check up",
                        "option down", "option up"}));
}

TEST_F(PointerTest, ATextBoxClicks) {
    TextBox text(form, "text");
    text.move({0, 1500, 300, 300});
    logEvents(text.on(), "text", log);
    click(10, 1510);
    EXPECT_EQ(log, (Log{"text down", "text up", "text click"}));
}

// --- handlers that end things ----------------------------------------------------------

TEST_F(PointerTest, AHandlerMayEndItsOwnControl) {
    auto brief = std::make_unique<Image>(form, "brief");
    brief->move({0, 1500, 300, 300});
    logEvents(brief->on(), "brief", log);
    brief->on().MouseDown = [&](const MouseEvent &) { brief.reset(); };
    press(10, 1510);
    move(20, 1520, leftButton);
    release(10, 1510);
    EXPECT_THAT(log, IsEmpty());
    click(10, 10);
    EXPECT_EQ(log.back(), "back click");
}

TEST_F(PointerTest, AReleaseHandlerMayEndItsOwnControl) {
    auto brief = std::make_unique<Image>(form, "brief");
    brief->move({0, 1500, 300, 300});
    logEvents(brief->on(), "brief", log);
    brief->on().MouseUp = [&](const MouseEvent &) { brief.reset(); };
    click(10, 1510);
    EXPECT_EQ(log, Log{"brief down"});
}

TEST_F(PointerTest, AnyHandlerMayEndTheForm) {
    const std::vector<std::function<void(ControlEvents &, std::function<void()>)>> traps = {
        [](ControlEvents &on, auto end) { on.MouseDown = [end](const MouseEvent &) { end(); }; },
        [](ControlEvents &on, auto end) { on.MouseMove = [end](const MouseEvent &) { end(); }; },
        [](ControlEvents &on, auto end) { on.MouseUp = [end](const MouseEvent &) { end(); }; },
        [](ControlEvents &on, auto end) { on.Click = end; },
        [](ControlEvents &on, auto end) { on.DblClick = end; },
        [](ControlEvents &on, auto end) { on.KeyDown = [end](KeyEvent &) { end(); }; },
    };
    struct Brief : Form {
        explicit Brief(platform::WindowSystem &system) : Form(system, "brief") {}
        ~Brief() override { dropWindow(); }
        TextBox text{*this, "text"};
    };
    for (const auto &trap : traps) {
        auto brief = std::make_unique<Brief>(windows);
        Form *const raw = brief.get();
        raw->move({0, 0, 1000, 1000});
        brief->text.move({0, 0, 300, 300});
        raw->show();
        trap(
            brief->text.on(), [&] { brief.reset(); });
        const std::vector<std::function<void()>> script = {
            [&] {
                raw->pointerMoved({10, 10}, 0, 0);
            },
            [&] {
                raw->pointerPressed({10, 10}, leftButton, 0);
            },
            [&] {
                raw->pointerReleased({10, 10}, leftButton, 0);
            },
            [&] {
                raw->pointerDoubleClicked({10, 10}, leftButton, 0);
            },
            [&] { raw->keyPressed(65, 0); },
        };
        for (const auto &step : script)
            if (brief)
                step();
        EXPECT_EQ(brief, nullptr);
    }
}

TEST_F(PointerTest, AHandlerThatPumpsMaySeeAnotherPress) {
    back.on().Click = [&] {
        log.emplace_back("in");
        click(2000, 600);
        log.emplace_back("out");
    };
    click(10, 10);
    EXPECT_EQ(log, (Log{"back down", "back up", "in", "box down", "box up", "box click", "out"}));
}

// --- pointers --------------------------------------------------------------------------

TEST_F(PointerTest, ThePointerIsTheControlsOrTheForms) {
    front.setMousePointer(pointerCustom);
    front.setMouseIcon(MouseIcon::Hand);
    EXPECT_EQ(form.pointerAt({600, 600}).pointer, pointerCustom);
    EXPECT_EQ(form.pointerAt({600, 600}).icon, MouseIcon::Hand);
    EXPECT_EQ(form.pointerAt({10, 10}).pointer, pointerDefault);
    form.setMousePointer(pointerHourglass);
    EXPECT_EQ(form.pointerAt({10, 10}).pointer, pointerHourglass);
    EXPECT_EQ(form.pointerAt({600, 600}).pointer, pointerCustom);
}

TEST_F(PointerTest, ADisabledControlShowsTheFormsPointer) {
    front.setMousePointer(pointerCustom);
    front.setEnabled(false);
    EXPECT_EQ(form.pointerAt({600, 600}).pointer, pointerDefault);
}

} // namespace velmora::forms
