// A form's window as the window manager and the screen have it.

#include "tests/desktop/qt/desk.h"

#include <QAccessible>

#include <algorithm>

namespace velmora::tests {
namespace {

using platform::HWND_NOTOPMOST;
using platform::HWND_TOPMOST;

constexpr std::uint32_t stay = platform::SWP_NOMOVE | platform::SWP_NOSIZE;

class WindowTest : public DeskTest {
protected:
    bool hasState(const forms::Form &form, const char *state) {
        const auto all = desk().screen->atoms(nativeOf(form), "_NET_WM_STATE");
        return std::find(all.begin(), all.end(), state) != all.end();
    }
    XScreen::Geometry place(const forms::Form &form) {
        return desk().screen->geometry(nativeOf(form)).value_or(XScreen::Geometry{});
    }
};

TEST_F(WindowTest, StandsExactlyAtItsPlaceWhenFirstShown) {
    TestForm form;
    form.move({3015, 2265, 4500, 3000});
    form.appear();
    const auto at = place(form);
    EXPECT_EQ(at.x, 201);
    EXPECT_EQ(at.y, 151);
    EXPECT_EQ(at.width, 300);
    EXPECT_EQ(at.height, 200);
}

TEST_F(WindowTest, IsPlacedAtTheNearestPixel) {
    TestForm form;
    form.move({3008, 2257, 4500, 3000});
    form.appear();
    EXPECT_EQ(place(form).x, 201);
    EXPECT_EQ(place(form).y, 150);
    EXPECT_FLOAT_EQ(form.left(), 3008);
}

TEST_F(WindowTest, FollowsEveryMoveOfItsForm) {
    TestForm form;
    form.appear();
    for (int step = 0; step < 40; ++step)
        form.setLeft(form.left() + 45);
    EXPECT_TRUE(desk().pump([&] { return place(form).x == 320; }));
    ASSERT_TRUE(desk().settle());
    EXPECT_FLOAT_EQ(form.left(), 4800) << "late reports of earlier places are not moves";
    EXPECT_EQ(place(form).x, 320);
}

TEST_F(WindowTest, ComesBackToAPlaceThatItLeftAMomentAgo) {
    TestForm form;
    form.appear();
    for (int round = 0; round < 10; ++round) {
        form.setLeft(4500);
        form.setLeft(3000);
    }
    ASSERT_TRUE(desk().settle());
    EXPECT_EQ(place(form).x, 200);
    EXPECT_FLOAT_EQ(form.left(), 3000);
}

TEST_F(WindowTest, MayStandBeyondTheEdgeOfTheScreen) {
    TestForm form;
    form.appear();
    form.move({-3000, -1500, 4500, 3000});
    EXPECT_TRUE(desk().pump([&] { return place(form).x == -200 && place(form).y == -100; }));
    ASSERT_TRUE(desk().settle());
    EXPECT_FLOAT_EQ(form.left(), -3000);
}

TEST_F(WindowTest, TellsItsFormWhenSomebodyElseMovesIt) {
    TestForm form;
    form.appear();
    desk().tool({"windowmove", std::to_string(nativeOf(form)), "412", "333"});
    EXPECT_TRUE(desk().pump([&] { return form.left() == 412 * 15; }));
    EXPECT_FLOAT_EQ(form.top(), 333 * 15);
}

TEST_F(WindowTest, FollowsTheSizeOfItsForm) {
    TestForm form;
    form.appear();
    form.setWidth(6000);
    form.setHeight(1500);
    EXPECT_TRUE(desk().pump([&] { return place(form).width == 400 && place(form).height == 100; }));
}

TEST_F(WindowTest, StartsCentredOnTheWorkAreaWhenSoDesigned) {
    TestForm form;
    form.setStartCentred(true);
    form.appear();
    EXPECT_EQ(place(form).x, (1280 - 300) / 2);
    EXPECT_EQ(place(form).y, (800 - 200) / 2);
    EXPECT_FLOAT_EQ(form.left(), 490 * 15);
    EXPECT_FLOAT_EQ(form.top(), 300 * 15);
}

TEST_F(WindowTest, HasNoFrameNoParentAndTheProgramsClass) {
    TestForm form;
    form.appear();
    const auto *window = static_cast<platform::qt::QtFormWindow *>(form.window());
    EXPECT_FALSE(desk().screen->hasProperty(nativeOf(form), "WM_TRANSIENT_FOR"));
    EXPECT_NE(desk().screen->text(nativeOf(form), "WM_CLASS").find("velmora"), std::string::npos);
    const std::string extents = desk().session.run(
        {"xprop", "-id", std::to_string(window->nativeWindow()), "_NET_FRAME_EXTENTS"});
    EXPECT_NE(extents.find("0, 0, 0, 0"), std::string::npos) << extents;
}

TEST_F(WindowTest, StaysOutOfTheTaskBarUnlessDesignedForIt) {
    TestForm form;
    form.appear();
    EXPECT_TRUE(hasState(form, "_NET_WM_STATE_SKIP_TASKBAR"));
    form.hide();
    ASSERT_TRUE(desk().pump([&] { return !form.isOnScreen(); }));
    form.appear();
    // A manager that comes to the hiding late takes the state away at first.
    EXPECT_TRUE(desk().pump([&] { return hasState(form, "_NET_WM_STATE_SKIP_TASKBAR"); }))
        << "after the second showing, too";

    TestForm entry("Entry");
    entry.setShowInTaskbar(true);
    entry.appear();
    EXPECT_FALSE(hasState(entry, "_NET_WM_STATE_SKIP_TASKBAR"));
}

TEST_F(WindowTest, HasTheIconOfItsFormInTheTaskBar) {
    TestForm form;
    form.setShowInTaskbar(true);
    form.setIcon(forms::Picture::app_icon);
    form.appear();
    EXPECT_TRUE(desk().screen->hasProperty(nativeOf(form), "_NET_WM_ICON"));
}

TEST_F(WindowTest, TakesTheWindowManagersCloseForARequest) {
    TestForm form;
    int asked = 0;
    form.on().QueryUnload = [&](bool &cancel) {
        ++asked;
        cancel = true;
    };
    form.appear();
    desk().screen->askToClose(nativeOf(form));
    EXPECT_TRUE(desk().pump([&] { return asked == 1; }));
    ASSERT_TRUE(desk().settle());
    EXPECT_TRUE(form.isOnScreen());
    EXPECT_TRUE(form.visible());
}

TEST_F(WindowTest, MinimisesAndRestoresWithItsForm) {
    TestForm form;
    form.setShowInTaskbar(true);
    form.appear();
    form.setWindowState(forms::WindowState::Minimised);
    EXPECT_TRUE(desk().pump([&] { return !form.isOnScreen(); }));
    form.setWindowState(forms::WindowState::Normal);
    // The window manager's word on the first change may come after the second was asked for.
    EXPECT_TRUE(desk().pump(
        [&] { return form.isOnScreen() && form.windowState() == forms::WindowState::Normal; }));
}

TEST_F(WindowTest, TellsItsFormWhenItIsMinimisedFromOutside) {
    TestForm form;
    form.setShowInTaskbar(true);
    form.appear();
    desk().tool({"windowminimize", std::to_string(nativeOf(form))});
    EXPECT_TRUE(desk().pump([&] { return form.windowState() == forms::WindowState::Minimised; }));
    desk().tool({"windowactivate", std::to_string(nativeOf(form))});
    EXPECT_TRUE(desk().pump([&] { return form.windowState() == forms::WindowState::Normal; }));
}

TEST_F(WindowTest, BecomesTopmostWithoutANewNativeWindow) {
    TestForm form;
    form.appear();
    const xcb_window_t before = nativeOf(form);
    desk().windows->SetWindowPos(form.hWnd(), HWND_TOPMOST, 0, 0, 0, 0, stay);
    EXPECT_TRUE(desk().pump([&] { return hasState(form, "_NET_WM_STATE_ABOVE"); }));
    EXPECT_EQ(nativeOf(form), before);
    form.hide();
    ASSERT_TRUE(desk().pump([&] { return !form.isOnScreen(); }));
    form.appear();
    EXPECT_EQ(nativeOf(form), before) << "hiding and showing keeps it, too";
    // What the manager still has to do of the hiding takes the state away that was set ahead.
    EXPECT_TRUE(desk().pump([&] { return hasState(form, "_NET_WM_STATE_ABOVE"); }));
}

TEST_F(WindowTest, NoLongerTopmostIsAboveAllOtherNormalWindows) {
    TestForm form;
    form.appear();
    TestForm other("Other");
    other.move({3300, 2400, 4500, 3000});
    other.appear();
    ASSERT_TRUE(desk().screen->isAbove(nativeOf(other), nativeOf(form)));
    desk().windows->SetWindowPos(form.hWnd(), HWND_TOPMOST, 0, 0, 0, 0, stay);
    desk().windows->SetWindowPos(form.hWnd(), HWND_NOTOPMOST, 0, 0, 0, 0, stay);
    EXPECT_TRUE(
        desk().pump([&] { return desk().screen->isAbove(nativeOf(form), nativeOf(other)); }));
    EXPECT_TRUE(desk().pump([&] { return !hasState(form, "_NET_WM_STATE_ABOVE"); }));
}

TEST_F(WindowTest, NotTopmostDoesNothingToANormalWindow) {
    TestForm form;
    form.appear();
    TestForm other("Other");
    other.move({3300, 2400, 4500, 3000});
    other.appear();
    desk().windows->SetWindowPos(form.hWnd(), HWND_NOTOPMOST, 0, 0, 0, 0, stay);
    ASSERT_TRUE(desk().settle());
    EXPECT_TRUE(desk().screen->isAbove(nativeOf(other), nativeOf(form)));
}

TEST_F(WindowTest, HiddenAndShownWithinOneEventIsRaisedWithoutBeingUnmapped) {
    TestForm form;
    form.appear();
    TestForm other("Other");
    other.move({3300, 2400, 4500, 3000});
    other.appear();
    const xcb_window_t native = nativeOf(form);
    const std::uint32_t watch = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(desk().screen->connection(), native, XCB_CW_EVENT_MASK, &watch);
    form.hide();
    form.show();
    EXPECT_TRUE(desk().pump([&] { return desk().screen->isAbove(native, nativeOf(other)); }));
    EXPECT_TRUE(desk().pump([&] { return desk().screen->focused() == native; }));
    bool unmapped = false;
    while (xcb_generic_event_t *event = xcb_poll_for_event(desk().screen->connection())) {
        unmapped = unmapped || (event->response_type & 0x7F) == XCB_UNMAP_NOTIFY;
        free(event);
    }
    EXPECT_FALSE(unmapped);
}

TEST_F(WindowTest, UnmanagedStandsAboveTheOthersAndTakesNoFocus) {
    TestForm form;
    form.appear();
    TestForm strip("Strip");
    strip.setUnmanaged(true);
    strip.setTopmost(true);
    strip.move({3300, -150, 4500, 600});
    strip.appear();
    EXPECT_TRUE(place(strip).unmanaged);
    EXPECT_EQ(place(strip).y, -10);
    EXPECT_NE(desk().screen->focused(), nativeOf(strip));
    form.raise();
    ASSERT_TRUE(desk().settle());
    EXPECT_TRUE(
        desk().pump([&] { return desk().screen->isAbove(nativeOf(strip), nativeOf(form)); }));
}

TEST_F(WindowTest, UnmanagedOnesThatLieOverEachOtherDoNotClimbInTurn) {
    TestForm line("Line");
    TestForm strip("Strip");
    for (TestForm *form : {&line, &strip}) {
        form->setUnmanaged(true);
        form->setTopmost(true);
        form->move({1500, 1500, 4500, 600});
        form->appear();
    }
    int changes = 0;
    for (int look = 0; look < 30; ++look) {
        desk().letPass(20);
        changes += desk().screen->isAbove(nativeOf(strip), nativeOf(line)) ? 0 : 1;
    }
    EXPECT_EQ(changes, 0) << "looks in which the one that came later lay below";
}

TEST_F(WindowTest, WhatAnotherProgramLaysOverEverythingStaysAboveAnUnmanagedOne) {
    TestForm form;
    form.move({1500, 1500, 4500, 3000});
    form.appear();
    TestForm line("Line");
    line.setUnmanaged(true);
    line.setTopmost(true);
    line.move({1500, 1500, 4500, 600});
    line.appear();
    xcb_connection_t *connection = desk().screen->connection();
    const xcb_window_t menu = xcb_generate_id(connection);
    const std::uint32_t unmanaged = 1;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, menu,
                      xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root, 150, 110, 80,
                      80, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT, &unmanaged);
    xcb_map_window(connection, menu);
    xcb_flush(connection);
    desk().letPass(400);
    EXPECT_TRUE(desk().screen->isAbove(menu, nativeOf(line)));
    // A window of the manager's comes over it: it goes above that one, and no higher.
    form.raise();
    desk().letPass(400);
    EXPECT_TRUE(desk().screen->isAbove(nativeOf(line), nativeOf(form)));
    EXPECT_TRUE(desk().screen->isAbove(menu, nativeOf(line)));
    xcb_destroy_window(connection, menu);
    xcb_flush(connection);
}

TEST_F(WindowTest, AttentionIsAskedForOnceUntilTheWindowWasActiveAgain) {
    TestForm form;
    form.setShowInTaskbar(true);
    form.appear();
    TestForm other("Other");
    other.appear();
    const std::string attention = "_NET_WM_STATE_DEMANDS_ATTENTION";
    const auto turnAway = [&](const TestForm &to) {
        desk().session.run({"xdotool", "windowactivate", std::to_string(nativeOf(to))});
        return desk().pump([&] { return desk().screen->focused() == nativeOf(to); }) &&
               desk().settle();
    };
    const auto asks = [&] { return hasState(form, attention.c_str()); };
    ASSERT_TRUE(turnAway(other));
    desk().windows->FlashWindow(form.hWnd(), true);
    ASSERT_TRUE(desk().pump(asks));
    desk().session.run(
        {"wmctrl", "-i", "-r", std::to_string(nativeOf(form)), "-b", "remove,demands_attention"});
    ASSERT_TRUE(desk().pump([&] { return !asks(); }));
    desk().windows->FlashWindow(form.hWnd(), true);
    desk().settle();
    EXPECT_FALSE(asks()) << "at the next track";
    ASSERT_TRUE(turnAway(form));
    ASSERT_TRUE(turnAway(other));
    desk().windows->FlashWindow(form.hWnd(), true);
    EXPECT_TRUE(desk().pump(asks));
}

TEST_F(WindowTest, FlashAsksForAttentionOnlyWhileTheWindowIsNotActive) {
    TestForm form;
    form.setShowInTaskbar(true);
    form.appear();
    ASSERT_TRUE(desk().pump([&] { return desk().screen->focused() == nativeOf(form); }));
    desk().windows->FlashWindow(form.hWnd(), true);
    ASSERT_TRUE(desk().settle());
    EXPECT_FALSE(hasState(form, "_NET_WM_STATE_DEMANDS_ATTENTION"));
    TestForm other("Other");
    other.appear();
    ASSERT_TRUE(desk().pump([&] { return desk().screen->focused() == nativeOf(other); }));
    desk().windows->FlashWindow(form.hWnd(), true);
    EXPECT_TRUE(desk().pump([&] { return hasState(form, "_NET_WM_STATE_DEMANDS_ATTENTION"); }));
}

TEST_F(WindowTest, AsLargeAsTheScreenIsFullScreenAndComesBackToItsSize) {
    TestForm form;
    form.appear();
    form.move({0, 0, desk().windows->screenWidth(), desk().windows->screenHeight()});
    EXPECT_TRUE(desk().pump([&] { return hasState(form, "_NET_WM_STATE_FULLSCREEN"); }));
    EXPECT_TRUE(desk().pump([&] { return place(form).width == 1280 && place(form).x == 0; }));
    form.move({1500, 1500, 4500, 3000});
    EXPECT_TRUE(desk().pump([&] {
        return !hasState(form, "_NET_WM_STATE_FULLSCREEN") && place(form).width == 300 &&
               place(form).height == 200 && place(form).x == 100;
    })) << place(form).width
        << "x" << place(form).height << " at " << place(form).x;
    EXPECT_TRUE(desk().pump([&] { return form.left() == 1500; })) << form.left();
}

TEST_F(WindowTest, WindowOperationsOnAnUnknownWindowFail) {
    RectPixels rect;
    EXPECT_EQ(desk().windows->SetWindowPos(4711, HWND_TOPMOST, 0, 0, 0, 0, stay), 0);
    EXPECT_FALSE(desk().windows->GetWindowRect(4711, rect));
    EXPECT_FALSE(desk().windows->FlashWindow(4711, true));
    EXPECT_FALSE(
        desk().windows->SetLayeredWindowAttributes(4711, keyColour, 0, platform::LWA_COLORKEY));
    EXPECT_EQ(desk().windows->GetWindowLongA(4711, platform::GWL_EXSTYLE), 0);
}

TEST_F(WindowTest, TellsScreenWorkAreaTaskBarAndPointer) {
    RectPixels area;
    ASSERT_TRUE(desk().windows->SystemParametersInfoA(platform::SPI_GETWORKAREA, area));
    EXPECT_EQ(area, (RectPixels{0, 0, 1280, 800}));
    EXPECT_FALSE(desk().windows->SystemParametersInfoA(47, area));
    const auto bar = desk().windows->FindWindowA(u"Shell_TrayWnd");
    ASSERT_NE(bar, platform::HWND{0});
    EXPECT_EQ(desk().windows->FindWindowA(u"Another"), platform::HWND{0});
    ASSERT_TRUE(desk().windows->GetWindowRect(bar, area));
    EXPECT_EQ(area.bottom - area.top, 0) << "no panel, no strip";
    EXPECT_FLOAT_EQ(desk().windows->screenWidth(), 1280 * 15);
    EXPECT_FLOAT_EQ(desk().windows->screenHeight(), 800 * 15);
    desk().movePointer(321, 123);
    PointPixels at;
    ASSERT_TRUE(desk().windows->GetCursorPos(at));
    EXPECT_EQ(at, (PointPixels{321, 123}));
}

// Who moves it at the very moment at which the program does is taken for the manager that refuses.
TEST_F(WindowTest, TakesAClickWhereItShowsWhenItComesBackFromWhereAnotherHasPutIt) {
    TestForm form;
    form.move({3000, 3000, 4500, 3000});
    forms::Label label(form, "label");
    label.move({300, 300, 900, 600});
    int clicks = 0;
    label.on().Click = [&] { ++clicks; };
    form.appear();
    ASSERT_TRUE(desk().settle());
    form.setTop(form.top() + 900);
    desk().tool({"windowmove", std::to_string(nativeOf(form)), "400", "290"});
    ASSERT_TRUE(desk().pump([&] { return place(form).x == 400; }));
    ASSERT_TRUE(desk().settle());
    form.hide();
    ASSERT_TRUE(desk().pump([&] { return !form.isOnScreen(); }));
    form.appear();
    ASSERT_TRUE(desk().settle());
    // Where it stands is looked up a moment after it has come.
    EXPECT_TRUE(desk().pump([&] {
        desk().click(place(form).x + 40, place(form).y + 30);
        return clicks > 0;
    }));
}

// What a reader has of a window ends with the last of it, when nothing of ours is there any more.
TEST_F(WindowTest, GoesWithAllThatAReaderHasOfIt) {
    class PassingForm : public TestForm {
    public:
        using TestForm::dropWindow;
    };
    PassingForm form;
    forms::Label label(form, "label");
    label.setCaption(u"words");
    form.appear();
    auto *window = dynamic_cast<platform::qt::QtFormWindow *>(form.window());
    ASSERT_NE(window, nullptr);
    QAccessibleInterface *told = QAccessible::queryAccessibleInterface(window->top());
    ASSERT_NE(told, nullptr);
    ASSERT_EQ(told->childCount(), 1);
    const QAccessible::Id seen = QAccessible::uniqueId(told->child(0));
    EXPECT_NE(QAccessible::accessibleInterface(seen), nullptr);
    form.hide();
    form.dropWindow();
    EXPECT_EQ(QAccessible::accessibleInterface(seen), nullptr);
    // And a window that is made anew has its own.
    form.appear();
    window = dynamic_cast<platform::qt::QtFormWindow *>(form.window());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(window->top())->childCount(), 1);
}

} // namespace
} // namespace velmora::tests
