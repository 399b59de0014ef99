// Text boxes, check boxes, options, and the way of the focus among them.

#include "tests/desktop/qt/desk.h"

#include <QApplication>
#include <QClipboard>

namespace velmora::tests {
namespace {

struct EntryForm : TestForm {
    forms::TextBox line{*this, "line"};
    forms::TextBox block{*this, "block"};
    forms::CheckBox check{*this, "check"};
    forms::Frame frame{*this, "frame"};
    forms::OptionButton first{frame, "first"};
    forms::OptionButton second{frame, "second"};
    EntryForm() {
        line.move({300, 300, 2400, 360}); // 20,20 160x24
        block.setMultiLine(true);
        block.move({300, 750, 2400, 900});  // 20,50 160x60
        check.move({300, 1800, 1800, 300}); // 20,120 120x20
        check.setCaption(u"Check & see");
        frame.move({2850, 300, 1500, 1500}); // 190,20 100x100
        frame.setCaption(u"Choice");
        first.move({150, 450, 1200, 300}); // at 200,50
        first.setCaption(u"first");
        second.move({150, 900, 1200, 300}); // at 200,80
        second.setCaption(u"second");
        for (auto *box : {&line, &block}) {
            box->setForeColor(0x00F3EDE9);
            box->setBackColor(0x0022180F);
        }
    }
};

class EntryTest : public DeskTest {
protected:
    bool focus(const forms::Form &form) {
        return desk().pump([&] { return desk().screen->focused() == nativeOf(form); });
    }
};

TEST_F(EntryTest, TypedTextReachesTheModelWithAChangeForEachEdit) {
    EntryForm form;
    int changes = 0;
    form.line.on().Change = [&] { ++changes; };
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().click(form.screenX(60), form.screenY(32));
    desk().tool({"type", "--delay", "5", "abc 1"});
    EXPECT_TRUE(desk().pump([&] { return form.line.text() == u"abc 1"; }));
    EXPECT_EQ(changes, 5);
    EXPECT_EQ(form.activeControl(), &form.line);
}

TEST_F(EntryTest, TextSetByCodeIsShownWithoutAChange) {
    EntryForm form;
    int changes = 0;
    form.line.on().Change = [&] { ++changes; };
    form.block.on().Change = [&] { ++changes; };
    form.appear();
    form.line.setText(u"from code");
    form.block.setText(u"one\r\ntwo");
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(changes, 0);
    desk().click(form.screenX(60), form.screenY(32));
    desk().key("End");
    desk().tool({"type", "--delay", "5", "x"});
    EXPECT_TRUE(desk().pump([&] { return form.line.text() == u"from codex"; }));
}

TEST_F(EntryTest, ALineTakesNoLineBreakFromWhatIsPasted) {
    EntryForm form;
    form.line.setText(u"<>");
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().click(form.screenX(60), form.screenY(32));
    desk().key("Home");
    desk().key("Right");
    QApplication::clipboard()->setText(QStringLiteral("one\r\ntwo\n"));
    desk().key("ctrl+v");
    EXPECT_TRUE(desk().pump([&] { return form.line.text() == u"<onetwo>"; }));
    desk().key("x"); // goes on where the pasted text ends
    EXPECT_TRUE(desk().pump([&] { return form.line.text() == u"<onetwox>"; }));
}

TEST_F(EntryTest, LinesOfABlockEndWithCrLfInTheModel) {
    EntryForm form;
    form.appear();
    desk().click(form.screenX(60), form.screenY(60));
    desk().tool({"type", "--delay", "5", "ab"});
    desk().key("Return");
    desk().tool({"type", "--delay", "5", "cd"});
    EXPECT_TRUE(desk().pump([&] { return form.block.text() == u"ab\r\ncd"; }));
}

TEST_F(EntryTest, ALockedBoxTakesNoEdit) {
    EntryForm form;
    form.line.setLocked(true);
    form.line.setText(u"fixed");
    form.appear();
    desk().click(form.screenX(60), form.screenY(32));
    desk().tool({"type", "--delay", "5", "abc"});
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(form.line.text(), u"fixed");
}

TEST_F(EntryTest, HeldKeysRepeatInAText) {
    EntryForm form;
    form.appear();
    desk().session.run({"xset", "r", "rate", "150", "50"});
    desk().click(form.screenX(60), form.screenY(32));
    desk().tool({"keydown", "a"});
    EXPECT_TRUE(desk().pump([&] { return form.line.text().size() >= 4; }));
    desk().tool({"keyup", "a"});
}

TEST_F(EntryTest, AClickTogglesACheckBoxAndRaisesOneClick) {
    EntryForm form;
    int clicks = 0;
    form.check.on().Click = [&] { ++clicks; };
    form.appear();
    desk().click(form.screenX(80), form.screenY(130));
    EXPECT_TRUE(desk().pump([&] { return form.check.value() == 1; }));
    EXPECT_EQ(clicks, 1);
    desk().click(form.screenX(30), form.screenY(130));
    EXPECT_TRUE(desk().pump([&] { return form.check.value() == 0; }));
    form.check.setValue(2);
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(clicks, 2);
    desk().click(form.screenX(30), form.screenY(130));
    EXPECT_TRUE(desk().pump([&] { return form.check.value() == 0; })) << "grey goes to clear";
}

TEST_F(EntryTest, AnOptionClearsTheOthersOfItsContainer) {
    EntryForm form;
    int clicks = 0;
    form.second.on().Click = [&] { ++clicks; };
    form.first.setValue(true);
    form.appear();
    desk().click(form.screenX(230), form.screenY(90));
    EXPECT_TRUE(desk().pump([&] { return form.second.value(); }));
    EXPECT_FALSE(form.first.value());
    EXPECT_EQ(clicks, 1);
    desk().click(form.screenX(230), form.screenY(90));
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(clicks, 1) << "chosen already";
}

TEST_F(EntryTest, TabGoesRoundInTheOrderOfTheDesign) {
    EntryForm form;
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().click(form.screenX(60), form.screenY(32));
    ASSERT_TRUE(desk().pump([&] { return form.activeControl() == &form.line; }));
    const forms::Control *stops[] = {&form.block, &form.check, &form.first, &form.second,
                                     &form.line};
    for (const forms::Control *stop : stops) {
        desk().key("Tab");
        EXPECT_TRUE(desk().pump([&] { return form.activeControl() == stop; })) << stop->name();
    }
    desk().key("shift+Tab");
    EXPECT_TRUE(desk().pump([&] { return form.activeControl() == &form.second; }));
}

TEST_F(EntryTest, SpaceTogglesWhatHasTheFocus) {
    EntryForm form;
    form.appear();
    ASSERT_TRUE(focus(form));
    form.setFocus(&form.check);
    desk().key("space");
    EXPECT_TRUE(desk().pump([&] { return form.check.value() == 1; }));
}

TEST_F(EntryTest, TheFocusIsShownByAnAccentRing) {
    EntryForm form;
    form.appear();
    ASSERT_TRUE(focus(form));
    form.setFocus(&form.check);
    EXPECT_TRUE(desk().pump([&] { return form.pixel(100, 20) != 0x5BE0CF; }));
    form.setFocus(&form.line);
    EXPECT_TRUE(desk().pump([&] { return form.pixel(100, 20) == 0x5BE0CF; }));
}

TEST_F(EntryTest, WhatLiesInAHiddenContainerIsHidden) {
    EntryForm form;
    form.frame.setVisible(false);
    form.first.setValue(true);
    form.appear();
    desk().click(form.screenX(230), form.screenY(90));
    ASSERT_TRUE(desk().settle());
    EXPECT_FALSE(form.second.value());
    form.frame.setVisible(true);
    ASSERT_TRUE(desk().settle());
    desk().click(form.screenX(230), form.screenY(90));
    EXPECT_TRUE(desk().pump([&] { return form.second.value(); }));
}

TEST_F(EntryTest, ADisabledFormsTextBoxTakesNoKeys) {
    EntryForm form;
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().click(form.screenX(60), form.screenY(32));
    form.setEnabled(false);
    desk().tool({"type", "--delay", "5", "abc"});
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(form.line.text(), u"");
    form.setEnabled(true);
    desk().tool({"type", "--delay", "5", "abc"});
    EXPECT_TRUE(desk().pump([&] { return form.line.text() == u"abc"; }));
}

} // namespace
} // namespace velmora::tests
