#include "platform/forms/keys.h"
#include "tests/unit/forms/form_fixture.h"

namespace velmora::forms {

using ::testing::IsEmpty;

class KeysTest : public FormFixture {
protected:
    ListBox list{form, "list"};
    TextBox text{form, "text"};
    Log log;

    KeysTest() {
        list.move({0, 0, 1000, 1000});
        text.move({0, 1200, 1000, 300});
        logEvents(form.on(), "form", log);
        logEvents(list.on(), "list", log);
        logEvents(text.on(), "text", log);
    }
};

TEST_F(KeysTest, AKeyGoesToTheActiveControl) {
    form.setFocus(&text);
    EXPECT_TRUE(form.keyPressed(65, 0));
    form.keyReleased(65, 0);
    EXPECT_EQ(log, (Log{"text key", "text keyup"}));
}

TEST_F(KeysTest, AFormWithoutFocusableControlsGetsItsKeys) {
    list.setVisible(false);
    text.setVisible(false);
    form.keyPressed(65, 0);
    form.keyReleased(65, 0);
    EXPECT_EQ(log, (Log{"form key", "form keyup"}));
}

TEST_F(KeysTest, TheFirstControlHasTheFocusWhenTheFormIsShown) {
    form.show();
    EXPECT_EQ(form.activeControl(), &list);
    EXPECT_EQ(fakes::FakeWindows::windowOf(form)->focused, &list);
}

TEST_F(KeysTest, AHandlerSwallowsAKeyBySettingItsCodeToZero) {
    list.on().KeyDown = [](KeyEvent &event) { event.keyCode = 0; };
    EXPECT_FALSE(form.keyPressed(65, 0));
}

TEST_F(KeysTest, TheKeyCarriesCodeAndShift) {
    KeyEvent seen;
    list.on().KeyDown = [&](KeyEvent &event) { seen = event; };
    form.keyPressed(117, ctrlMask);
    EXPECT_EQ(seen.keyCode, 117);
    EXPECT_EQ(seen.shift, ctrlMask);
}

TEST_F(KeysTest, APressGivesTheFocusToListsBoxesAndOptionsAndToNothingElse) {
    CheckBox check(form, "check");
    OptionButton option(form, "option");
    Label label(form, "label");
    check.move({0, 2000, 300, 300});
    option.move({300, 2000, 300, 300});
    label.move({600, 2000, 300, 300});
    click(10, 2010);
    EXPECT_EQ(form.activeControl(), &check);
    click(310, 2010);
    EXPECT_EQ(form.activeControl(), &option);
    click(610, 2010);
    EXPECT_EQ(form.activeControl(), &option);
}

TEST_F(KeysTest, APressGivesTheFocus) {
    press(10, 1210);
    EXPECT_EQ(form.activeControl(), &text);
    release(10, 1210);
    press(2500, 2500); // the form
    EXPECT_EQ(form.activeControl(), &text);
}

TEST_F(KeysTest, AKeyForADisabledControlIsDropped) {
    form.setFocus(&list);
    list.setEnabled(false);
    EXPECT_FALSE(form.keyPressed(46, 0));
    form.keyReleased(46, 0);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(KeysTest, AControlDisabledAndEnabledAgainGetsBackTheFocus) {
    auto &window = shown();
    form.setFocus(&list);
    list.setEnabled(false);
    EXPECT_EQ(form.activeControl(), &list);
    window.focused = nullptr; // what a toolkit does
    list.setEnabled(true);
    EXPECT_EQ(window.focused, &list);
    EXPECT_TRUE(form.keyPressed(46, 0));
    EXPECT_EQ(log, Log{"list key"});
}

TEST_F(KeysTest, EnablingAnotherControlMovesNoFocus) {
    auto &window = shown();
    form.setFocus(&list);
    window.focused = nullptr;
    text.setEnabled(false);
    text.setEnabled(true);
    EXPECT_EQ(window.focused, nullptr);
}

TEST_F(KeysTest, TheFocusComesBackThroughAnEnabledContainer) {
    Frame frame(form, "frame");
    TextBox inner(frame, "inner");
    auto &window = shown();
    form.setFocus(&inner);
    frame.setEnabled(false);
    window.focused = nullptr;
    frame.setEnabled(true);
    EXPECT_EQ(window.focused, &inner);
}

TEST_F(KeysTest, AnEnabledContainerGivesNoFocusToWhatIsDisabledOrHiddenInIt) {
    Frame frame(form, "frame");
    TextBox inner(frame, "inner");
    auto &window = shown();
    form.setFocus(&inner);
    inner.setEnabled(false);
    frame.setEnabled(false);
    window.focused = nullptr;
    frame.setEnabled(true);
    EXPECT_EQ(window.focused, nullptr);
    inner.setEnabled(true);
    inner.setVisible(false);
    frame.setEnabled(false);
    window.focused = nullptr;
    frame.setEnabled(true);
    EXPECT_EQ(window.focused, nullptr);
}

TEST_F(KeysTest, AHiddenControlLosesTheFocusToTheFirst) {
    form.setFocus(&text);
    text.setVisible(false);
    form.keyPressed(65, 0);
    EXPECT_EQ(log, Log{"list key"});
}

TEST_F(KeysTest, HiddenAndDisabledControlsTakeNoFocus) {
    form.setFocus(&list);
    text.setVisible(false);
    form.setFocus(&text);
    EXPECT_EQ(form.activeControl(), &list);
    text.setVisible(true);
    text.setEnabled(false);
    form.setFocus(&text);
    EXPECT_EQ(form.activeControl(), &list);
}

TEST_F(KeysTest, APanelOverTheListTakesItsKeys) {
    PictureBox panel(form, "panel");
    panel.move({100, 100, 500, 500});
    logEvents(panel.on(), "panel", log);
    form.setFocus(&list);
    EXPECT_FALSE(form.keyPressed(46, 0)); // the toolkit's list must not act either
    form.keyReleased(46, 0);
    EXPECT_EQ(log, (Log{"panel key", "panel keyup"}));
    panel.setVisible(false);
    EXPECT_TRUE(form.keyPressed(46, 0));
    EXPECT_EQ(log.back(), "list key");
}

TEST_F(KeysTest, APanelBesideOrBehindTheListTakesNothing) {
    PictureBox panel(form, "panel");
    panel.move({1500, 0, 500, 500});
    form.setFocus(&list);
    EXPECT_TRUE(form.keyPressed(46, 0));
    panel.move({0, 0, 500, 500});
    panel.zOrder(1);
    EXPECT_TRUE(form.keyPressed(46, 0));
}

TEST_F(KeysTest, APanelThatTouchesTheListTakesNothing) {
    list.move({600, 600, 600, 600});
    form.setFocus(&list);
    PictureBox panel(form, "panel");
    for (const PointTwips at :
         {PointTwips{0, 600}, PointTwips{1200, 600}, PointTwips{600, 0}, PointTwips{600, 1200}}) {
        panel.move({at.x, at.y, 600, 600});
        EXPECT_TRUE(form.keyPressed(46, 0)) << at.x << ' ' << at.y;
    }
    panel.move({1185, 1185, 600, 600});
    EXPECT_FALSE(form.keyPressed(46, 0));
}

TEST_F(KeysTest, AFrameIsAPanelAndAPictureIsNone) {
    form.setFocus(&list);
    Image image(form, "image");
    image.move({0, 0, 500, 500});
    EXPECT_TRUE(form.keyPressed(46, 0));
    Frame frame(form, "frame");
    frame.move({0, 0, 500, 500});
    EXPECT_FALSE(form.keyPressed(46, 0));
}

TEST_F(KeysTest, APanelOverTheContainerTakesTheKeysOfWhatItHolds) {
    Frame frame(form, "frame");
    frame.move({1500, 0, 1000, 1000});
    TextBox inner(frame, "inner");
    inner.move({0, 0, 300, 300});
    PictureBox panel(form, "panel");
    panel.move({1600, 100, 100, 100});
    form.setFocus(&inner);
    EXPECT_FALSE(form.keyPressed(46, 0));
}

TEST_F(KeysTest, TabGoesRoundInTheOrderOfTheDesign) {
    CheckBox check(form, "check");
    check.setEnabled(false);
    OptionButton option(form, "option");
    form.show();
    std::vector<Control *> order;
    for (int i = 0; i < 3; ++i) {
        form.focusNext(false);
        order.push_back(form.activeControl());
    }
    EXPECT_EQ(order, (std::vector<Control *>{&text, &option, &list}));
    form.focusNext(true);
    EXPECT_EQ(form.activeControl(), &option);
}

TEST_F(KeysTest, TabStopsAtAPictureWhereTheDesignSaysSo) {
    Image passed(form, "passed");
    Image picture(form, "picture");
    Label line(form, "line");
    picture.setTabStop(true);
    line.setTabStop(true);
    form.show();
    EXPECT_EQ(form.activeControl(), &list); // what is chosen in has the focus first
    std::vector<Control *> order;
    for (int i = 0; i < 4; ++i) {
        form.focusNext(false);
        order.push_back(form.activeControl());
    }
    EXPECT_EQ(order, (std::vector<Control *>{&text, &picture, &line, &list}));
}

TEST_F(KeysTest, EnterAndSpaceClickAPictureThatHasTheFocusAndOtherKeysDoNot) {
    Image picture(form, "picture");
    picture.setTabStop(true);
    logEvents(picture.on(), "picture", log);
    form.setFocus(&picture);
    EXPECT_FALSE(form.keyPressed(13, 0));
    EXPECT_FALSE(form.keyPressed(32, 0));
    EXPECT_TRUE(form.keyPressed(65, 0));
    EXPECT_EQ(log,
              (Log{"picture key", "picture click", "picture key", "picture click", "picture key"}));
}

TEST_F(KeysTest, EnterClicksALabelThatTabStopsAtAndNoBoxOfText) {
    Label label(form, "label");
    label.move({0, 2000, 300, 300});
    label.setTabStop(true);
    logEvents(label.on(), "label", log);
    form.setFocus(&label);
    form.keyPressed(keyEnter, 0);
    EXPECT_EQ(log, (Log{"label key", "label click"}));
    log.clear();
    form.setFocus(&text);
    form.keyPressed(keyEnter, 0);
    EXPECT_EQ(log, Log{"text key"});
}

TEST_F(KeysTest, AClickByKeyIsOffForAHandlerThatSwallowsItAndForADisabledPicture) {
    Image picture(form, "picture");
    picture.setTabStop(true);
    int clicks = 0;
    picture.on().Click = [&] { ++clicks; };
    picture.on().KeyDown = [](KeyEvent &event) { event.keyCode = 0; };
    form.setFocus(&picture);
    form.keyPressed(13, 0);
    picture.on().KeyDown = [&](KeyEvent &) { form.setEnabled(false); };
    form.keyPressed(13, 0);
    form.setEnabled(true);
    picture.on().KeyDown = nullptr;
    picture.setEnabled(false);
    form.keyPressed(13, 0);
    EXPECT_EQ(clicks, 0);
}

TEST_F(KeysTest, AClickByKeyMayEndThePicture) {
    auto picture = std::make_unique<Image>(form, "picture");
    picture->setTabStop(true);
    picture->on().Click = [&] { picture.reset(); };
    form.setFocus(picture.get());
    EXPECT_FALSE(form.keyPressed(13, 0));
    EXPECT_EQ(picture, nullptr);
}

TEST_F(KeysTest, TabPassesOverWhatAPanelLiesOverAndStopsThereAgainWhenItIsGone) {
    PictureBox panel(form, "panel");
    form.show();
    panel.move(text.place());
    form.setFocus(&list);
    EXPECT_TRUE(form.isCovered(text));
    EXPECT_TRUE(form.focusNext(false));
    EXPECT_EQ(form.activeControl(), &list);
    panel.setVisible(false);
    EXPECT_EQ(form.nextFocus(false), &text);
    EXPECT_TRUE(form.focusNext(true));
    EXPECT_EQ(form.activeControl(), &text);
}

TEST_F(KeysTest, TabGoesNowhereWhereNothingTakesTheFocusOrTheFormIsDisabled) {
    form.setFocus(&list);
    form.setEnabled(false);
    EXPECT_FALSE(form.focusNext(false));
    form.setEnabled(true);
    list.setVisible(false);
    text.setVisible(false);
    EXPECT_FALSE(form.focusNext(false));
    EXPECT_EQ(form.activeControl(), &list);
}

TEST_F(KeysTest, APanelThatGoesHandsTheFocusBackToWhatLiesFreeThen) {
    PictureBox lower(form, "lower");
    PictureBox upper(form, "upper");
    PictureBox aside(form, "aside");
    auto &window = shown();
    form.setFocus(&text);
    lower.move(text.place());
    upper.move(text.place());
    aside.move({text.left() + text.width(), text.top(), 100, 100});
    window.focused = nullptr;
    lower.setVisible(false);
    EXPECT_EQ(window.focused, nullptr) << "another panel lies over it";
    upper.setVisible(false);
    EXPECT_EQ(window.focused, &text);
    window.focused = nullptr;
    aside.setVisible(false);
    EXPECT_EQ(window.focused, nullptr) << "it took nothing";
}

TEST_F(KeysTest, APanelBehindTheListHandsNothingBackWhateverBecomesOfIt) {
    PictureBox behind(form, "behind");
    behind.move(list.place());
    behind.zOrder(1);
    auto &window = shown();
    form.setFocus(&list);
    window.focused = nullptr;
    behind.setLeft(15);
    EXPECT_EQ(window.focused, nullptr) << "it moved";
    behind.setVisible(false);
    window.focused = nullptr;
    behind.setLeft(0);
    EXPECT_EQ(window.focused, nullptr) << "it moved unseen";
    behind.setVisible(true);
    EXPECT_EQ(window.focused, nullptr) << "it came";
}

} // namespace velmora::forms
