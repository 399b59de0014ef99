#pragma once

// What the tests of windows share: one private screen and one window system for the whole program
// (a process has one toolkit application), and forms made by hand.

#include "platform/backends/qt/system/qt_windows.h"
#include "platform/backends/qt/window/form_window.h"
#include "platform/forms/controls.h"
#include "platform/forms/form.h"
#include "platform/forms/listbox.h"
#include "platform/forms/menu.h"
#include "platform/forms/timer.h"
#include "tests/desktop/x_screen.h"
#include "tests/desktop/x_session.h"

#include <gtest/gtest.h>

#include <QWindow>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velmora::tests {

class Desk {
public:
    Desk();
    ~Desk();
    Desk(const Desk &) = delete;
    Desk &operator=(const Desk &) = delete;

    XSession session;
    std::unique_ptr<XScreen> screen;
    std::unique_ptr<platform::QtWindowSystem> windows;
    std::vector<std::string> notes;

    // Handles events until the condition holds; false when the limit passes first.
    bool pump(const std::function<bool()> &condition, int limitMs = 30000);
    // Handles events for so long, where the time itself is the condition, and nothing that could be
    // looked at tells of it: that a timer does not fire, that nothing is painted.
    void letPass(int ms);
    // Handles events until the window manager, and then this program, took in all that was sent to
    // the screen before, and the screen what the program has sent.
    bool settle();
    // What xdotool does, taken in.
    void tool(const std::vector<std::string> &words);
    void movePointer(int x, int y);
    void click(int x, int y, int button = 1);
    void key(const std::string &name);

private:
    std::unique_ptr<QWindow> own_; // never shown: answers for the program
};

// The desk of this program; made before the first test, gone after the last.
Desk &desk();

xcb_window_t nativeOf(const forms::Form &form);

// A form that is hidden again when the test ends.
class TestForm : public forms::Form {
public:
    explicit TestForm(const char *name = "TestForm");
    ~TestForm() override;

    // Shows it and waits until it is on the screen, painted.
    void appear();
    bool isOnScreen() const;
    // The pixel of the screen at a place in the form, in logical pixels.
    std::uint32_t pixel(int x, int y) const;
    // A place in the form as a place on the screen.
    int screenX(int x) const;
    int screenY(int y) const;
};

// Base of the tests: nothing of an earlier test is left on the screen.
class DeskTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

std::u16string u16(const std::string &ascii);

} // namespace velmora::tests
