#include "tests/unit/forms/form_fixture.h"

#include <array>
#include <cstddef>
#include <memory>
#include <new>

namespace velmora::forms {

using ::testing::IsEmpty;

class Dial : public UserControl {
public:
    Dial(Container &container, const char *name, Log &log)
        : UserControl(container, name), log_(log) {}

    CustomLook look() const override { return {}; }
    bool takesFocus() const noexcept override { return true; }
    void mouseDown(const MouseEvent &event) override {
        log_.emplace_back("down");
        UserControl::mouseDown(event);
    }
    void mouseMove(const MouseEvent &event) override {
        const bool within = event.x >= 0 && event.y >= 0 && event.x < width() && event.y < height();
        log_.emplace_back(within ? "in" : "out");
        UserControl::mouseMove(event);
    }
    void mouseUp(const MouseEvent &event) override {
        log_.emplace_back("up");
        UserControl::mouseUp(event);
    }
    void click() override {
        log_.emplace_back("click");
        UserControl::click();
    }
    void keyDown(KeyEvent &event) override {
        log_.emplace_back("key");
        UserControl::keyDown(event);
    }
    void scaleChanged() override { log_.emplace_back("scale"); }
    bool looks() const { return looksEnabled(); }

protected:
    void resized() override { log_.emplace_back("resized"); }
    void enabledChanged() override { log_.emplace_back(enabled() ? "enabled" : "disabled"); }

private:
    Log &log_;
};

class UserControlTest : public FormFixture {
protected:
    Log log;
    PictureBox box{form, "box"};
    Dial dial{box, "dial", log};
    Image image{form, "image"};

    UserControlTest() {
        box.move({300, 300, 1000, 1000});
        dial.move({100, 100, 300, 300});
        image.move({2000, 0, 300, 300});
        log.clear();
    }
};

TEST_F(UserControlTest, GetsTheMouseBeforeItsHandlersDo) {
    Log order;
    dial.on().MouseDown = [&](const MouseEvent &) { log.emplace_back("handler"); };
    press(450, 450);
    EXPECT_EQ(log, (Log{"down", "handler"}));
}

TEST_F(UserControlTest, ClickFollowsTheReleaseInside) {
    click(450, 450);
    EXPECT_EQ(log, (Log{"down", "up", "click"}));
}

TEST_F(UserControlTest, ALeaveIsOneMoveOutside) {
    move(450, 450);
    move(500, 500);
    move(10, 10);
    move(20, 20);
    EXPECT_EQ(log, (Log{"in", "in", "out"}));
}

TEST_F(UserControlTest, LeavingTheWindowIsOneMoveOutside) {
    move(450, 450);
    form.pointerLeft();
    form.pointerLeft();
    EXPECT_EQ(log, (Log{"in", "out"}));
}

TEST_F(UserControlTest, LeavingForWhatLiesOverItIsAMoveOutside) {
    Image cover(form, "cover");
    cover.move({450, 450, 100, 100});
    move(420, 420);
    move(470, 470);
    EXPECT_EQ(log, (Log{"in", "out"}));
}

TEST_F(UserControlTest, ALeaveHasNoButtonAndTheKeysHeld) {
    MouseEvent seen;
    dial.on().MouseMove = [&](const MouseEvent &event) { seen = event; };
    move(450, 450);
    form.pointerMoved({10, 10}, 0, ctrlMask);
    EXPECT_EQ(seen.button, 0);
    EXPECT_EQ(seen.shift, ctrlMask);
    move(450, 450);
    form.pointerLeft();
    EXPECT_EQ(seen.button, 0);
    EXPECT_EQ(seen.shift, 0);
}

TEST_F(UserControlTest, ALeaveForWhatLiesOverItIsAPixelOutsideOnBothSides) {
    MouseEvent seen;
    dial.on().MouseMove = [&](const MouseEvent &event) { seen = event; };
    move(450, 450);
    Image cover(form, "cover");
    cover.move({400, 400, 300, 300});
    move(450, 450);
    EXPECT_EQ(seen.x, -twipsPerPixel);
    EXPECT_EQ(seen.y, -twipsPerPixel);
}

TEST_F(UserControlTest, APointerThatLeavesTheWindowWhileItIsPressedHasNotLeftIt) {
    move(450, 450);
    press(450, 450);
    form.pointerLeft();
    EXPECT_EQ(log, (Log{"in", "down"}));
}

TEST_F(UserControlTest, WhileItIsPressedItGetsTheMovesOutside) {
    move(450, 450);
    press(450, 450);
    move(10, 10, leftButton);
    move(20, 20, leftButton);
    EXPECT_EQ(log, (Log{"in", "down", "out", "out"}));
}

TEST_F(UserControlTest, APressThatEndsOutsideIsFollowedByOneMoveOutside) {
    press(450, 450);
    move(10, 10, leftButton);
    release(10, 10);
    EXPECT_EQ(log, (Log{"down", "out", "up", "out"}));
    move(20, 20);
    EXPECT_EQ(log.size(), 4U);
}

TEST_F(UserControlTest, APressWhoseReleaseWasLostEndsInAMoveOutside) {
    press(450, 450);
    form.pointerLost();
    move(10, 10);
    EXPECT_EQ(log, (Log{"down", "out"}));
}

TEST_F(UserControlTest, APressThatEndedInOrderLeavesNothingBehind) {
    move(450, 450);
    click(450, 450);
    move(10, 10);
    log.clear();
    form.pointerLost(); // what a view says ahead of the next press
    press(10, 10);
    release(10, 10);
    move(20, 20);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(UserControlTest, APressThatWasLostIsNotLostOnceMore) {
    press(450, 450);
    form.pointerLost();
    move(10, 10);
    EXPECT_EQ(log, (Log{"down", "out"}));
    form.pointerLost();
    move(20, 20);
    EXPECT_EQ(log, (Log{"down", "out"}));
}

TEST_F(UserControlTest, ALeaveFromADisabledFormComesWhenItIsEnabledAgain) {
    move(450, 450);
    form.setEnabled(false);
    form.pointerLeft();
    EXPECT_EQ(log, Log{"in"});
    form.setEnabled(true);
    EXPECT_EQ(log, (Log{"in", "out"}));
}

TEST_F(UserControlTest, ALeaveThatWasToldIsNotToldAgainWhenTheFormIsEnabledOnceMore) {
    move(450, 450);
    form.setEnabled(false);
    form.pointerLeft();
    form.setEnabled(true);
    log.clear();
    press(450, 450);
    form.pointerLost();
    form.setEnabled(false);
    form.setEnabled(true);
    EXPECT_EQ(log, Log{"down"});
    move(10, 10);
    EXPECT_EQ(log, (Log{"down", "out"}));
}

TEST_F(UserControlTest, AMoveAwayInADisabledFormIsALeaveWhenItIsEnabledAgain) {
    MouseEvent seen;
    dial.on().MouseMove = [&](const MouseEvent &event) { seen = event; };
    move(450, 450);
    form.setEnabled(false);
    form.pointerMoved({10, 10}, 0, ctrlMask);
    EXPECT_EQ(log, Log{"in"});
    form.setEnabled(true);
    EXPECT_EQ(log, (Log{"in", "out"}));
    EXPECT_EQ(seen.shift, 0);
}

TEST_F(UserControlTest, AMoveOnItInADisabledFormIsNoLeave) {
    move(450, 450);
    form.setEnabled(false);
    move(460, 460);
    form.setEnabled(true);
    EXPECT_EQ(log, Log{"in"});
}

TEST_F(UserControlTest, APointerThatCameBackMeanwhileHasNotLeft) {
    move(450, 450);
    form.setEnabled(false);
    form.pointerLeft();
    move(460, 460);
    form.setEnabled(true);
    EXPECT_EQ(log, Log{"in"});
}

TEST_F(UserControlTest, ADisabledOneGetsNothing) {
    move(450, 450);
    dial.setEnabled(false);
    log.clear();
    move(10, 10);
    click(450, 450);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(UserControlTest, MayEndInItsLeave) {
    auto brief = std::make_unique<Dial>(form, "brief", log);
    brief->move({0, 2000, 300, 300});
    move(10, 2010);
    brief->on().MouseMove = [&](const MouseEvent &) { brief.reset(); };
    move(2010, 10);
    EXPECT_EQ(brief, nullptr);
}

TEST_F(UserControlTest, TheFormMayEndInItsLeaveAndIsNotTouchedAnyMore) {
    struct Brief : Form {
        Brief(platform::WindowSystem &system, Log &log)
            : Form(system, "brief"), dial(*this, "dial", log) {}
        Dial dial;
    };
    alignas(Brief) std::array<std::byte, sizeof(Brief)> room;
    auto *const brief = new (room.data()) Brief(windows, log);
    brief->move({0, 0, 1000, 1000});
    brief->dial.move({0, 0, 300, 300});
    brief->pointerMoved({10, 10}, 0, 0);
    std::array<std::byte, sizeof(Brief)> left;
    left.fill(std::byte{0xA5});
    brief->dial.on().MouseMove = [&, brief](const MouseEvent &) {
        std::destroy_at(brief);
        room = left;
    };
    brief->pointerMoved({500, 500}, 0, 0);
    EXPECT_EQ(room, left);
}

TEST_F(UserControlTest, ThatDisablesTheFormInItsLeaveIsTheLastToHearOfTheMove) {
    logEvents(image.on(), "image", log);
    move(450, 450);
    dial.on().MouseMove = [&](const MouseEvent &) { form.setEnabled(false); };
    move(2010, 10);
    EXPECT_EQ(log, (Log{"in", "out"}));
}

TEST_F(UserControlTest, AClickGivesItNoFocusAndTabDoes) {
    TextBox text(form, "text");
    form.show();
    click(450, 450);
    EXPECT_EQ(form.activeControl(), &text);
    form.focusNext(false);
    EXPECT_EQ(form.activeControl(), &dial);
    log.clear();
    EXPECT_TRUE(form.keyPressed(65, 0));
    EXPECT_EQ(log, Log{"key"});
}

TEST_F(UserControlTest, IsNotTheFirstToHaveTheFocus) {
    form.show();
    EXPECT_EQ(form.activeControl(), nullptr);
}

TEST_F(UserControlTest, HearsOfANewSizeAndNotOfAMove) {
    dial.setLeft(0);
    EXPECT_THAT(log, IsEmpty());
    dial.setWidth(600);
    dial.setWidth(600);
    EXPECT_EQ(log, Log{"resized"});
}

TEST_F(UserControlTest, HearsOfANewScaleWhereverItLies) {
    form.scaleChanged();
    EXPECT_EQ(log, Log{"scale"});
}

TEST_F(UserControlTest, HearsOfNoScaleWhereTheWindowHasTheDesigns) {
    form.show();
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(UserControlTest, LooksEnabledWithItsContainersButWithoutTheForm) {
    EXPECT_TRUE(dial.looks());
    form.setEnabled(false);
    EXPECT_TRUE(dial.looks());
    box.setEnabled(false);
    EXPECT_FALSE(dial.looks());
    box.setEnabled(true);
    dial.setEnabled(false);
    EXPECT_FALSE(dial.looks());
}

} // namespace velmora::forms
