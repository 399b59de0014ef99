// Mouse and keys as they reach a form.

#include "tests/desktop/qt/desk.h"

#include "platform/backends/qt/screen/keys.h"

#include <vector>

namespace velmora::tests {
namespace {

struct InputForm : TestForm {
    forms::Label title{*this, "title"};
    forms::PictureBox box{*this, "box"};
    forms::Image inner{box, "inner"};
    InputForm() {
        title.move({0, 0, 4500, 450});
        box.move({750, 750, 1500, 1500}); // 50,50 100x100
        inner.move({150, 150, 300, 300}); // 10,10 20x20 in the box
        inner.setPicture(forms::Picture::play);
    }
};

class InputTest : public DeskTest {};

TEST_F(InputTest, AClickReachesTheControlUnderItInItsOwnCoordinates) {
    InputForm form;
    std::vector<forms::MouseEvent> events;
    int clicks = 0;
    form.inner.on().MouseDown = [&](const forms::MouseEvent &e) { events.push_back(e); };
    form.inner.on().MouseUp = [&](const forms::MouseEvent &e) { events.push_back(e); };
    form.inner.on().Click = [&] { ++clicks; };
    form.appear();
    desk().click(form.screenX(65), form.screenY(67));
    ASSERT_TRUE(desk().pump([&] { return clicks == 1; }));
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].button, forms::leftButton);
    EXPECT_FLOAT_EQ(events[0].x, 5 * 15);
    EXPECT_FLOAT_EQ(events[0].y, 7 * 15);
}

TEST_F(InputTest, TheRightButtonIsTwoAndTheMiddleOneFour) {
    InputForm form;
    std::vector<int> buttons;
    form.on().MouseUp = [&](const forms::MouseEvent &e) { buttons.push_back(e.button); };
    form.appear();
    desk().click(form.screenX(250), form.screenY(150), 3);
    desk().click(form.screenX(250), form.screenY(150), 2);
    EXPECT_TRUE(desk().pump([&] { return buttons.size() == 2; }));
    EXPECT_EQ(buttons, (std::vector<int>{forms::rightButton, forms::middleButton}));
}

TEST_F(InputTest, ModifiersComeAlong) {
    InputForm form;
    int shift = -1;
    form.on().MouseDown = [&](const forms::MouseEvent &e) { shift = e.shift; };
    form.appear();
    desk().movePointer(form.screenX(250), form.screenY(150));
    desk().tool(
        {"keydown", "shift", "keydown", "ctrl", "click", "1", "keyup", "ctrl", "keyup", "shift"});
    EXPECT_TRUE(desk().pump([&] { return shift == (forms::shiftMask | forms::ctrlMask); }));
}

TEST_F(InputTest, ADragMovesTheWindowWithThePointerToThePixel) {
    InputForm form;
    float dragX = 0;
    float dragY = 0;
    form.title.on().MouseDown = [&](const forms::MouseEvent &e) {
        dragX = e.x;
        dragY = e.y;
    };
    form.title.on().MouseMove = [&](const forms::MouseEvent &e) {
        if ((e.button & forms::leftButton) == 0)
            return;
        form.setLeft(form.left() + e.x - dragX);
        form.setTop(form.top() + e.y - dragY);
    };
    form.appear();
    desk().movePointer(form.screenX(30), form.screenY(10));
    desk().tool({"mousedown", "1"});
    for (int step = 1; step <= 60; ++step)
        desk().session.run({"xdotool", "mousemove", std::to_string(230 + step * 7),
                            std::to_string(160 + step * 3)});
    desk().tool({"mouseup", "1"});
    ASSERT_TRUE(desk().settle());
    EXPECT_FLOAT_EQ(form.left(), (200 + 420) * 15);
    EXPECT_FLOAT_EQ(form.top(), (150 + 180) * 15);
    const auto place = desk().screen->geometry(nativeOf(form));
    ASSERT_TRUE(place);
    EXPECT_EQ(place->x, 620);
    EXPECT_EQ(place->y, 330);
}

TEST_F(InputTest, APressIsWhereTheHandTookHoldThoughItWentOnBeforeItWasHandled) {
    InputForm form;
    PointPixels pressed;
    PointPixels released;
    form.title.on().MouseDown = [&](const forms::MouseEvent &) {
        desk().windows->GetCursorPos(pressed);
    };
    form.title.on().MouseUp = [&](const forms::MouseEvent &) {
        desk().windows->GetCursorPos(released);
    };
    form.appear();
    const PointPixels place{form.screenX(30), form.screenY(10)};
    desk().movePointer(place.x, place.y);
    // Both before a round of events.
    desk().session.run({"xdotool", "mousedown", "1"});
    desk().session.run({"xdotool", "mousemove", "900", "700", "mouseup", "1"});
    ASSERT_TRUE(desk().pump([&] { return released.x != 0; }));
    EXPECT_EQ(pressed.x, place.x);
    EXPECT_EQ(pressed.y, place.y);
    EXPECT_EQ(released.x, 900);
    EXPECT_EQ(released.y, 700);
}

TEST_F(InputTest, ThePointerIsFollowedWithoutAButtonAndItsLeavingIsSeen) {
    InputForm form;
    int moves = 0;
    form.inner.on().MouseMove = [&](const forms::MouseEvent &e) { moves += e.button == 0; };
    form.appear();
    desk().movePointer(form.screenX(70), form.screenY(70));
    EXPECT_TRUE(desk().pump([&] { return moves > 0; }));
    desk().movePointer(1200, 700);
    const int before = moves;
    desk().movePointer(1210, 710);
    EXPECT_EQ(moves, before);
}

TEST_F(InputTest, ADoubleClickIsToldFromTwoClicks) {
    InputForm form;
    std::string order;
    form.inner.on().MouseDown = [&](const forms::MouseEvent &) { order += 'd'; };
    form.inner.on().MouseUp = [&](const forms::MouseEvent &) { order += 'u'; };
    form.inner.on().Click = [&] { order += 'c'; };
    form.inner.on().DblClick = [&] { order += 'D'; };
    form.appear();
    desk().movePointer(form.screenX(70), form.screenY(70));
    desk().tool({"click", "--repeat", "2", "--delay", "40", "1"});
    EXPECT_TRUE(desk().pump([&] { return order == "ducDu"; })) << order;
}

TEST_F(InputTest, AHandThePointerAndTheHourglassAreShown) {
    InputForm form;
    form.inner.setMousePointer(forms::pointerCustom);
    form.inner.setMouseIcon(forms::MouseIcon::Hand);
    form.appear();
    auto *top = static_cast<platform::qt::QtFormWindow *>(form.window())->top();
    desk().movePointer(form.screenX(70), form.screenY(70));
    EXPECT_TRUE(desk().pump([&] { return top->cursor().shape() == Qt::PointingHandCursor; }));
    form.inner.setMousePointer(forms::pointerHourglass);
    EXPECT_EQ(top->cursor().shape(), Qt::WaitCursor) << "at once, without another move";
    form.inner.setMousePointer(forms::pointerDefault);
    form.setMousePointer(forms::pointerHourglass);
    EXPECT_EQ(top->cursor().shape(), Qt::WaitCursor);
    form.setMousePointer(forms::pointerDefault);
    EXPECT_EQ(top->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(InputTest, AClickOnADisabledFormPassesOverAFilmThatCameUpMeanwhile) {
    InputForm form;
    form.appear();
    TestForm settings("Settings");
    settings.move({6000, 1500, 3000, 3000});
    settings.appear();
    form.setEnabled(false);
    TestForm film("Film"); // which has an entry in the task bar of its own
    film.setShowInTaskbar(true);
    film.move({6000, 1500, 3000, 3000});
    film.appear();
    ASSERT_TRUE(
        desk().pump([&] { return desk().screen->isAbove(nativeOf(film), nativeOf(settings)); }));
    desk().click(form.screenX(20), form.screenY(100));
    EXPECT_TRUE(
        desk().pump([&] { return desk().screen->isAbove(nativeOf(settings), nativeOf(film)); }));
}

TEST_F(InputTest, ADisabledFormTakesNothingAndAClickRaisesTheWindowItWaitsFor) {
    InputForm form;
    int events = 0;
    form.on().MouseDown = [&](const forms::MouseEvent &) { ++events; };
    form.on().KeyDown = [&](forms::KeyEvent &) { ++events; };
    form.appear();
    TestForm modal("Modal");
    modal.move({3600, 2700, 2250, 1500});
    modal.appear();
    form.setEnabled(false);
    form.raise();
    ASSERT_TRUE(
        desk().pump([&] { return desk().screen->isAbove(nativeOf(form), nativeOf(modal)); }));
    desk().click(form.screenX(10), form.screenY(190));
    EXPECT_TRUE(
        desk().pump([&] { return desk().screen->isAbove(nativeOf(modal), nativeOf(form)); }));
    EXPECT_TRUE(desk().pump([&] { return desk().screen->focused() == nativeOf(modal); }));
    EXPECT_EQ(events, 0);
}

TEST_F(InputTest, AMessagesLostReleaseDoesNotHoldTheMouse) {
    InputForm form;
    int boxMoves = 0;
    int formDowns = 0;
    form.inner.on().MouseDown = [&](const forms::MouseEvent &) {
        // Another window takes the pointer before the button comes up.
        form.setEnabled(false);
    };
    form.box.on().MouseMove = [&](const forms::MouseEvent &) { ++boxMoves; };
    form.on().MouseDown = [&](const forms::MouseEvent &) { ++formDowns; };
    form.appear();
    desk().click(form.screenX(70), form.screenY(70));
    form.setEnabled(true);
    desk().click(form.screenX(250), form.screenY(150));
    EXPECT_TRUE(desk().pump([&] { return formDowns == 1; }));
}

class KeyTest : public DeskTest {
protected:
    struct Key {
        int code;
        int shift;
        friend bool operator==(const Key &, const Key &) = default;
    };
    void listen(forms::Form &form) {
        form.on().KeyDown = [this](forms::KeyEvent &e) { down.push_back({e.keyCode, e.shift}); };
        form.on().KeyUp = [this](forms::KeyEvent &e) { up.push_back(e.keyCode); };
    }
    bool focus(const forms::Form &form) {
        return desk().pump([&] { return desk().screen->focused() == nativeOf(form); });
    }
    std::vector<Key> down;
    std::vector<int> up;
};

TEST_F(KeyTest, ReachTheFormByTheirNumbers) {
    InputForm form;
    listen(form);
    form.appear();
    ASSERT_TRUE(focus(form));
    for (const char *name :
         {"F2", "F12", "Escape", "Return", "KP_Enter", "Delete", "a", "s", "space", "Down"})
        desk().key(name);
    EXPECT_TRUE(desk().pump([&] { return up.size() == 10; }));
    EXPECT_EQ(up, (std::vector<int>{113, 123, 27, 13, 13, 46, 65, 83, 32, 40}));
}

TEST_F(KeyTest, BringTheStateOfTheModifiers) {
    InputForm form;
    listen(form);
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().key("ctrl+s");
    desk().key("shift+Delete");
    EXPECT_TRUE(desk().pump([&] { return up.size() == 4; }));
    ASSERT_EQ(down.size(), 4U);
    EXPECT_EQ(down[1], (Key{83, forms::ctrlMask}));
    EXPECT_EQ(down[3], (Key{46, forms::shiftMask}));
}

TEST_F(KeyTest, AreFoundOnACyrillicKeyboardToo) {
    desk().session.run({"setxkbmap", "ru"});
    InputForm form;
    listen(form);
    form.appear();
    ASSERT_TRUE(focus(form));
    // The place of S.
    desk().tool({"keydown", "ctrl", "key", "39", "keyup", "ctrl"});
    EXPECT_TRUE(desk().pump([&] { return up.size() >= 2; }));
    desk().session.run({"setxkbmap", "us"});
    ASSERT_GE(down.size(), 2U);
    EXPECT_EQ(down[1].code, 83);
}

TEST_F(KeyTest, HeldDownAreOnePress) {
    InputForm form;
    listen(form);
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().session.run({"xset", "r", "rate", "150", "50"});
    desk().tool({"keydown", "F6"});
    desk().letPass(500);
    desk().tool({"keyup", "F6"});
    EXPECT_TRUE(desk().pump([&] { return up.size() == 1; }));
    EXPECT_EQ(down.size(), 1U);
}

TEST_F(KeyTest, GoToTheActiveControlAndNotToTheForm) {
    InputForm form;
    forms::ListBox list{form, "list"};
    list.move({2400, 750, 1500, 1500});
    int inList = 0;
    list.on().KeyDown = [&](forms::KeyEvent &) { ++inList; };
    listen(form);
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().key("F3");
    EXPECT_TRUE(desk().pump([&] { return inList == 1; }));
    EXPECT_TRUE(down.empty());
}

TEST_F(KeyTest, AreOnePressThoughTheReleaseComesWhileTheHandlerPumps) {
    InputForm form;
    forms::ListBox list{form, "list"};
    list.move({2400, 750, 1500, 1500});
    std::vector<int> inList;
    bool released = false;
    list.on().KeyDown = [&](forms::KeyEvent &e) {
        inList.push_back(e.keyCode);
        if (e.keyCode == 117)
            desk().pump([&] { return released; });
    };
    list.on().KeyUp = [&](forms::KeyEvent &e) { released = released || e.keyCode == 116; };
    listen(form);
    form.appear();
    ASSERT_TRUE(focus(form));
    desk().tool({"key", "F6", "key", "F5", "key", "Return"});
    EXPECT_TRUE(desk().pump([&] { return released && inList.size() >= 3; }));
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(inList, (std::vector<int>{117, 116, 13}));
    EXPECT_TRUE(down.empty());
}

TEST(VirtualKey, TakesTheFirstLatinSymbolOfAnyGroup) {
    const xcb_keysym_t cyrillicThenLatin[] = {0x06D9, 0x06F9, 's', 'S'};
    EXPECT_EQ(platform::qt::virtualKey(cyrillicThenLatin, 39), 'S');
}

TEST(VirtualKey, TakesThePlaceWhereThereIsNoLatinSymbol) {
    const xcb_keysym_t cyrillic[] = {0x06D9, 0x06F9};
    EXPECT_EQ(platform::qt::virtualKey(cyrillic, 39), 'S');
    EXPECT_EQ(platform::qt::virtualKey({}, 24), 'Q');
    EXPECT_EQ(platform::qt::virtualKey({}, 255), 0);
    EXPECT_EQ(platform::qt::virtualKey({}, 0), 0);
}

TEST(VirtualKey, ADigitThatNeedsShiftIsStillThatDigit) {
    const xcb_keysym_t french[] = {'&', '1', '&', '1'};
    EXPECT_EQ(platform::qt::virtualKey(french, 10), '1');
}

TEST(VirtualKey, TheKeypadFollowsItsLock) {
    const xcb_keysym_t keypadDelete[] = {0xFF9F, 0xFFAE};
    const xcb_keysym_t keypadEnter[] = {0xFF8D};
    const xcb_keysym_t keypad7[] = {0xFF95, 0xFFB7};
    const xcb_keysym_t plainDelete[] = {0xFFFF};
    EXPECT_EQ(platform::qt::virtualKey(keypadDelete, 91, true), 110) << "a point deletes nothing";
    EXPECT_EQ(platform::qt::virtualKey(keypadEnter, 104, true), 13);
    EXPECT_EQ(platform::qt::virtualKey(keypad7, 79, true), 103);
    EXPECT_EQ(platform::qt::virtualKey(keypad7, 79, false), 36);
    EXPECT_EQ(platform::qt::virtualKey(plainDelete, 119, true), 46);
    EXPECT_EQ(platform::qt::virtualKey(keypadDelete, 91), 46);
    EXPECT_EQ(platform::qt::virtualKey(keypadEnter, 104), 13);
}

TEST(VirtualKey, CoversFunctionKeysLettersAndTheNamedKeys) {
    for (int i = 0; i < 24; ++i) {
        const xcb_keysym_t key[] = {0xFFBEU + static_cast<unsigned>(i)};
        EXPECT_EQ(platform::qt::virtualKey(key, 0), 112 + i);
    }
    for (xcb_keysym_t c = 'a'; c <= 'z'; ++c) {
        const xcb_keysym_t key[] = {c, c - 32};
        EXPECT_EQ(platform::qt::virtualKey(key, 0), static_cast<int>(c - 32));
    }
    const std::pair<xcb_keysym_t, int> named[] = {
        {0x20, 32},   {0xFF08, 8},  {0xFF09, 9},  {0xFF0D, 13}, {0xFF1B, 27},
        {0xFF50, 36}, {0xFF57, 35}, {0xFF55, 33}, {0xFF56, 34}, {0xFF51, 37},
        {0xFF52, 38}, {0xFF53, 39}, {0xFF54, 40}, {0xFF63, 45}, {0xFFFF, 46},
        {0xFFE1, 16}, {0xFFE3, 17}, {0xFFE9, 18}, {0x2C, 188},  {0x60, 192}};
    for (const auto &[symbol, code] : named) {
        const xcb_keysym_t key[] = {symbol};
        EXPECT_EQ(platform::qt::virtualKey(key, 0), code) << symbol;
    }
}

} // namespace
} // namespace velmora::tests
