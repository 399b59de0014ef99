// Lists on the screen.

#include "tests/desktop/qt/desk.h"

#include <QApplication>
#include <QWidget>

#include <chrono>

namespace velmora::tests {
namespace {

constexpr int rowPixels = 18;

struct ListForm : TestForm {
    forms::ListBox list{*this, "list"};
    forms::PictureBox panel{*this, "panel"};
    ListForm() {
        list.move({750, 300, 3000, 10 * rowPixels * 15}); // 50,20 200x180
        list.setDesignRows(10);
        list.setMultiSelect(true);
        list.setFont(forms::Font(u"Arial", 8));
        list.setForeColor(0x00F3EDE9);
        list.setBackColor(0x0022180F);
        panel.setVisible(false);
        panel.move({1500, 600, 1500, 1200}); // 100,40 100x80
        panel.setBackColor(0x000000FF);
        for (int i = 0; i < 40; ++i)
            list.addItem(u16("row " + std::to_string(i)));
    }
    int rowY(int row) const { return screenY(20 + row * rowPixels + rowPixels / 2); }
    std::vector<int> selection() const {
        std::vector<int> rows;
        for (int i = 0; i < list.listCount(); ++i)
            if (list.selected(i))
                rows.push_back(i);
        return rows;
    }
};

class ListTest : public DeskTest {
protected:
    bool focus(const forms::Form &form) {
        return desk().pump([&] { return desk().screen->focused() == nativeOf(form); });
    }
};

TEST_F(ListTest, AClickSelectsTheRowUnderIt) {
    ListForm form;
    int clicks = 0;
    form.list.on().Click = [&] { ++clicks; };
    form.appear();
    desk().click(form.screenX(100), form.rowY(3));
    EXPECT_TRUE(desk().pump([&] { return clicks == 1; }));
    EXPECT_EQ(form.selection(), (std::vector<int>{3}));
    EXPECT_EQ(form.list.listIndex(), 3);
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(clicks, 1);
}

TEST_F(ListTest, TheSelectedRowIsTintedWithABarAtItsLeft) {
    ListForm form;
    form.appear();
    const std::uint32_t plain = form.pixel(52, 20 + 3 * rowPixels + 9);
    form.list.setSelected(3, true);
    EXPECT_TRUE(desk().pump([&] { return form.pixel(51, 20 + 3 * rowPixels + 9) == 0x5BE0CF; }));
    EXPECT_NE(form.pixel(240, 20 + 3 * rowPixels + 9), plain);
    EXPECT_EQ(form.pixel(240, 20 + 4 * rowPixels + 9), plain);
}

TEST_F(ListTest, CtrlAddsARowAndShiftARange) {
    ListForm form;
    form.appear();
    desk().click(form.screenX(100), form.rowY(1));
    desk().movePointer(form.screenX(100), form.rowY(4));
    desk().tool({"keydown", "ctrl", "click", "1", "keyup", "ctrl"});
    EXPECT_TRUE(desk().pump([&] { return form.selection() == (std::vector<int>{1, 4}); }));
    desk().movePointer(form.screenX(100), form.rowY(6));
    desk().tool({"keydown", "shift", "click", "1", "keyup", "shift"});
    EXPECT_TRUE(desk().pump([&] { return form.selection() == (std::vector<int>{4, 5, 6}); }));
}

TEST_F(ListTest, ADragSelectsTheRowsItPasses) {
    ListForm form;
    form.appear();
    desk().movePointer(form.screenX(100), form.rowY(1));
    desk().tool({"mousedown", "1"});
    desk().movePointer(form.screenX(100), form.rowY(2));
    desk().movePointer(form.screenX(100), form.rowY(4));
    desk().tool({"mouseup", "1"});
    EXPECT_TRUE(desk().pump([&] { return form.selection() == (std::vector<int>{1, 2, 3, 4}); }));
}

TEST_F(ListTest, ADragHeldBelowTheListScrollsIt) {
    ListForm form;
    form.appear();
    desk().movePointer(form.screenX(100), form.rowY(1));
    desk().tool({"mousedown", "1"});
    desk().movePointer(form.screenX(100), form.screenY(230));
    EXPECT_TRUE(desk().pump([&] { return form.list.topIndex() >= 5; }));
    desk().tool({"mouseup", "1"});
    const int top = form.list.topIndex();
    desk().letPass(200);
    EXPECT_EQ(form.list.topIndex(), top) << "released, it stands";
}

TEST_F(ListTest, ARightClickChoosesARowThatIsNotSelectedBeforeItsRelease) {
    ListForm form;
    std::vector<int> atRelease;
    form.list.on().MouseUp = [&](const forms::MouseEvent &e) {
        if (e.button == forms::rightButton)
            atRelease = form.selection();
    };
    form.appear();
    desk().click(form.screenX(100), form.rowY(2));
    desk().click(form.screenX(100), form.rowY(5), 3);
    EXPECT_TRUE(desk().pump([&] { return atRelease == (std::vector<int>{5}); }));
    EXPECT_EQ(form.list.listIndex(), 5);
    desk().click(form.screenX(100), form.rowY(7), 3); // at once: two quick presses are two presses
    EXPECT_TRUE(desk().pump([&] { return atRelease == (std::vector<int>{7}); }));
}

TEST_F(ListTest, ARightClickOnASelectedRowLeavesTheSelection) {
    ListForm form;
    int ups = 0;
    form.list.on().MouseUp = [&](const forms::MouseEvent &e) { ups += e.button == 2; };
    form.appear();
    desk().click(form.screenX(100), form.rowY(2));
    desk().movePointer(form.screenX(100), form.rowY(4));
    desk().tool({"keydown", "shift", "click", "1", "keyup", "shift"});
    EXPECT_TRUE(desk().pump([&] { return form.selection() == (std::vector<int>{2, 3, 4}); }));
    desk().click(form.screenX(100), form.rowY(3), 3);
    EXPECT_TRUE(desk().pump([&] { return ups == 1; }));
    EXPECT_EQ(form.selection(), (std::vector<int>{2, 3, 4}));
    EXPECT_EQ(form.list.listIndex(), 4);
}

// Begins to draw a selection down beyond the list's foot, and holds it there.
class HeldDrag : public ListTest {
protected:
    ListForm form;
    forms::Timer timer{form, "timer"};

    void hold() {
        form.appear();
        desk().movePointer(form.screenX(100), form.rowY(1));
        desk().tool({"mousedown", "1"});
        desk().movePointer(form.screenX(100), form.screenY(230));
        ASSERT_TRUE(desk().pump([&] { return form.list.topIndex() >= 2; }));
    }
    // Releases the button while something else takes the release, and looks at the selection from
    // then on: what it was, and what it is when the other has gone.
    void releaseMeanwhile(const std::function<bool()> &isUp, const std::function<void()> &run,
                          const std::string &closing) {
        timer.setInterval(10);
        int ticks = 0;
        bool closed = false;
        timer.onTimer = [&] {
            if (!isUp())
                return;
            ++ticks;
            if (ticks == 10)
                desk().session.run({"xdotool", "mouseup", "1"});
            if (ticks == 30)
                whenUp = form.selection();
            // A key that comes ahead of the keyboard is lost.
            if (ticks >= 60 && !closed && QApplication::activeModalWidget()->isActiveWindow()) {
                closed = true;
                desk().session.run({"xdotool", "key", closing});
            }
        };
        timer.setRunning(true);
        run();
        timer.setRunning(false);
        EXPECT_FALSE(whenUp.empty());
        EXPECT_EQ(form.selection(), whenUp) << "it went on selecting behind what was up";
        const auto then = form.selection();
        desk().letPass(300);
        EXPECT_EQ(form.selection(), then) << "it goes on behind it";
        EXPECT_LT(static_cast<int>(then.size()), form.list.listCount());
    }
    std::vector<int> whenUp;
};

TEST_F(HeldDrag, EndsWhenABoxTakesItsRelease) {
    hold();
    releaseMeanwhile([] { return QApplication::activeModalWidget() != nullptr; },
                     [&] {
                         desk().windows->MsgBox(u"Really?", platform::MsgBoxButtons::Ok,
                                                platform::MsgBoxIcon::None, u"Velmora");
                     },
                     "Return");
}

TEST_F(HeldDrag, EndsWhenItsWindowIsDisabledAtTheRelease) {
    hold();
    form.setEnabled(false);
    desk().tool({"mouseup", "1"});
    const auto held = form.selection();
    form.setEnabled(true);
    desk().letPass(300);
    EXPECT_EQ(form.selection(), held);
}

TEST_F(ListTest, AWheelNotchIsThreeRows) {
    ListForm form;
    form.appear();
    desk().movePointer(form.screenX(100), form.rowY(5));
    desk().tool({"click", "5"});
    EXPECT_TRUE(desk().pump([&] { return form.list.topIndex() == 3; }));
    desk().tool({"click", "5", "click", "5"});
    EXPECT_TRUE(desk().pump([&] { return form.list.topIndex() == 9; }));
    desk().tool({"click", "4"});
    EXPECT_TRUE(desk().pump([&] { return form.list.topIndex() == 6; }));
    EXPECT_EQ(form.list.listIndex(), -1);
}

TEST_F(ListTest, ArrowPageHomeAndEndKeysMoveTheCurrentRow) {
    ListForm form;
    form.appear();
    ASSERT_TRUE(focus(form));
    EXPECT_EQ(form.list.listIndex(), -1) << "the focus alone chooses no row";
    desk().key("Down");
    EXPECT_TRUE(desk().pump([&] { return form.list.listIndex() == 0; }));
    desk().key("Down");
    desk().key("Page_Down");
    EXPECT_TRUE(desk().pump([&] { return form.list.listIndex() == 10; }));
    EXPECT_EQ(form.list.topIndex(), 1) << "brought into view with the least scrolling";
    desk().key("End");
    EXPECT_TRUE(desk().pump([&] { return form.list.listIndex() == 39; }));
    EXPECT_EQ(form.list.topIndex(), 30);
    desk().key("Home");
    EXPECT_TRUE(desk().pump([&] { return form.list.listIndex() == 0; }));
    desk().key("shift+Down");
    EXPECT_TRUE(desk().pump([&] { return form.selection() == (std::vector<int>{0, 1}); }));
}

TEST_F(ListTest, AKeyThatItsHandlerSwallowedDoesNotMoveTheRow) {
    ListForm form;
    int downs = 0;
    form.list.on().KeyDown = [&](forms::KeyEvent &e) {
        ++downs;
        e.keyCode = 0;
    };
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().key("Down");
    EXPECT_TRUE(desk().pump([&] { return downs == 1; }));
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(form.list.listIndex(), -1);
}

TEST_F(ListTest, ADoubleClickIsRaisedOnARowOnly) {
    ListForm form;
    int doubles = 0;
    form.list.on().DblClick = [&] { ++doubles; };
    form.appear();
    desk().movePointer(form.screenX(100), form.rowY(2));
    desk().tool({"click", "--repeat", "2", "--delay", "40", "1"});
    EXPECT_TRUE(desk().pump([&] { return doubles == 1; }));
    form.list.clear();
    form.list.addItem(u"only");
    desk().movePointer(form.screenX(100), form.rowY(6));
    desk().tool({"click", "--repeat", "2", "--delay", "40", "1"});
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(doubles, 1);
}

TEST_F(ListTest, APanelOverItTakesTheMouseAndTheKeyboard) {
    ListForm form;
    int onPanel = 0;
    form.panel.on().MouseDown = [&](const forms::MouseEvent &) { ++onPanel; };
    form.panel.move({750, 300, 3000, 2700});
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().key("Down");
    ASSERT_TRUE(desk().pump([&] { return form.list.listIndex() == 0; }));
    form.panel.setVisible(true);
    EXPECT_TRUE(desk().pump([&] { return form.pixel(100, 60) == 0xFF0000; })) << "it is seen";
    desk().click(form.screenX(100), form.rowY(5));
    EXPECT_TRUE(desk().pump([&] { return onPanel == 1; }));
    desk().key("Down");
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(form.list.listIndex(), 0) << "neither mouse nor key reached the list";
    form.panel.setVisible(false);
    desk().key("Down");
    EXPECT_TRUE(desk().pump([&] { return form.list.listIndex() == 1; }))
        << "and the keyboard comes back to it";
}

TEST_F(ListTest, DisabledAndEnabledAgainItHasTheFocusAgain) {
    ListForm form;
    form.appear();
    ASSERT_TRUE(focus(form));
    form.list.setEnabled(false);
    desk().key("Down");
    desk().click(form.screenX(100), form.rowY(5));
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(form.list.listIndex(), -1);
    form.list.setEnabled(true);
    desk().key("Down");
    EXPECT_TRUE(desk().pump([&] { return form.list.listIndex() == 0; }));
}

TEST_F(ListTest, FullToTheLimitItPaintsAndScrollsAsFastAsAShortOne) {
    ListForm form;
    form.appear();
    form.list.clear();
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 32767; ++i)
        form.list.addItem(u"one of very many rows");
    for (int i = 0; i < 200; ++i) {
        form.list.setTopIndex(i * 150);
        form.refresh();
        desk().windows->DoEvents();
    }
    const auto spent = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(form.list.topIndex(), 199 * 150);
    EXPECT_LT(spent, std::chrono::seconds(5));
}

TEST_F(ListTest, TellsTheMouseOverItsRowsForTheirTips) {
    ListForm form;
    float lastY = -1;
    form.list.on().MouseMove = [&](const forms::MouseEvent &e) { lastY = e.y; };
    form.appear();
    desk().movePointer(form.screenX(100), form.rowY(4));
    EXPECT_TRUE(desk().pump([&] { return lastY == (4 * rowPixels + rowPixels / 2) * 15; }))
        << lastY;
}

} // namespace
} // namespace velmora::tests
