// What the program asks of the window system for its shape, its tray icon and its docking: which
// calls, in which order.

#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"

#include "base/text.h"
#include "playback/Main.h"
#include "playback/check_SoundDriver_Form.h"
#include "playlist/playList_Form.h"
#include "tests/unit/pointer.h"
#include "ui/formSet.h"
#include "velmora.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using Calls = std::vector<std::string>;

// Writes down its calls; its answers to the query of the work area can be told one by one.
class WatchedWindows : public fakes::FakeWindows {
public:
    using FakeWindows::FakeWindows;

    Calls calls;
    std::vector<bool> workAreaAnswers; // the next ones; true when there is none

    bool SystemParametersInfoA(std::uint32_t action, RectPixels &area) override {
        calls.push_back("work area " + std::to_string(action));
        bool answer = true;
        if (!workAreaAnswers.empty()) {
            answer = workAreaAnswers.front();
            workAreaAnswers.erase(workAreaAnswers.begin());
        }
        return answer && FakeWindows::SystemParametersInfoA(action, area);
    }
    platform::HWND FindWindowA(std::u16string_view className) override {
        calls.push_back("find " + toUtf8(className));
        return FakeWindows::FindWindowA(className);
    }
    bool GetWindowRect(platform::HWND window, RectPixels &rect) override {
        calls.emplace_back("rectangle");
        return FakeWindows::GetWindowRect(window, rect);
    }
    std::int32_t hookWindowProc(platform::HWND window, platform::WindowProc procedure) override {
        calls.emplace_back("hook");
        return FakeWindows::hookWindowProc(window, std::move(procedure));
    }
    void unhookWindowProc(platform::HWND window, std::int32_t before) override {
        calls.emplace_back("unhook");
        FakeWindows::unhookWindowProc(window, before);
    }
    bool Shell_NotifyIconA(std::uint32_t operation, const platform::NotifyIconData &data) override {
        calls.push_back("tray " + std::to_string(operation));
        return FakeWindows::Shell_NotifyIconA(operation, data);
    }
    std::int32_t SetWindowLongA(platform::HWND window, std::int32_t index,
                                std::int32_t value) override {
        calls.push_back("write " + std::to_string(index) + ' ' + std::to_string(value));
        const std::size_t asked = calls.size();
        const std::int32_t before = FakeWindows::SetWindowLongA(window, index, value);
        calls.resize(asked); // without what the fake asks itself
        return before;
    }
    std::int32_t GetWindowLongA(platform::HWND window, std::int32_t index) override {
        calls.push_back("read " + std::to_string(index));
        return FakeWindows::GetWindowLongA(window, index) | otherStyles;
    }
    bool SetLayeredWindowAttributes(platform::HWND window, Colour key, std::uint8_t alpha,
                                    std::uint32_t flags) override {
        calls.push_back("key " + std::to_string(key) + ' ' + std::to_string(alpha) + ' ' +
                        std::to_string(flags));
        return FakeWindows::SetLayeredWindowAttributes(window, key, alpha, flags);
    }
    std::int32_t otherStyles = 0;
};

class WindowCalls : public ::testing::Test {
protected:
    WindowCalls() {
        app.Main().move({6000, 3000, 7200, 3240});
        app.playList_Form().move({0, 0, 3000, 3000});
        windows.calls.clear();
    }
    fakes::FakePlatform fake;
    WatchedWindows windows{fake.clock};
    Velmora app{fakes::with(fake.bundle(), {.windows = &windows})};
};

TEST_F(WindowCalls, AFormsKeyColourIsAddedToTheStylesThatItHas) {
    windows.otherStyles = 0x8;
    app.formSet().set_ColourKey(app.Main());
    EXPECT_EQ(windows.calls,
              (Calls{"read -20", "write -20 " + std::to_string(0x80008), "key 13092807 0 1"}));
}

TEST_F(WindowCalls, DockingReadsTheWorkAreaAndTheTaskBarTwice) {
    app.formSet().dock_PlayList(true);
    const Calls once{"work area 48", "find Shell_TrayWnd", "rectangle"};
    Calls twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(windows.calls, twice);
}

TEST_F(WindowCalls, DockingGoesByTheSecondReadingOfTheWorkArea) {
    windows.workAreaAnswers = {false, true};
    app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().left(), 2400);
    windows.workAreaAnswers = {true, false};
    app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().left(), 2400) << "nothing moves";
    windows.workAreaAnswers = {true, false};
    app.formSet().dock_PlayList(false);
    EXPECT_EQ(app.Main().left(), 2400);
}

TEST_F(WindowCalls, TheTrayIconComesBehindItsHookAndGoesAheadOfItsRemoval) {
    app.formSet().tray_Add(app.Main());
    EXPECT_EQ(windows.calls, (Calls{"hook", "tray 0"}));
    windows.calls.clear();
    app.formSet().tray_Remove();
    EXPECT_EQ(windows.calls, (Calls{"tray 2", "unhook"}));
}

TEST_F(WindowCalls, TheProgramGoesOnWithoutATray) {
    windows.trayFails = true;
    app.formSet().tray_Add(app.Main());
    app.formSet().tray_Tip(u"a tip");
    app.formSet().tray_Remove();
    EXPECT_EQ(windows.calls, (Calls{"hook", "tray 0", "tray 1", "tray 2", "unhook"}));
}

TEST_F(WindowCalls, TheListIsShownAheadOfItsDocking) {
    clickOn(app.Main().playListButton);
    ASSERT_TRUE(app.playList_Form().visible());
    const auto &told = fakes::FakeWindows::windowOf(app.playList_Form())->told;
    EXPECT_TRUE(std::any_of(told.begin(), told.end(), [](const auto &one) {
        return one.formChange == forms::FormChange::Place;
    })) << "its window was there when it was moved";
}

} // namespace
} // namespace velmora
