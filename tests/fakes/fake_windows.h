#pragma once

// The window system in memory. Forms' windows record what they are told; nothing is painted.
//
// Time is the fake clock's: `advance` runs the ticks that come due on the way. Message boxes and
// popup menus must be scripted: one that nobody expected fails the test, and so does a script that
// was never used.

#include "platform/contracts/windows.h"
#include "platform/forms/timer.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace velmora::fakes {

class FakeClock;
class FakeWindows;

// What a window was told, in order.
class FakeFormWindow : public forms::FormWindow {
public:
    struct Told {
        std::string control; // empty: the form itself
        std::optional<forms::Change> change;
        std::optional<forms::FormChange> formChange;
        RectTwips before;
    };

    FakeFormWindow(FakeWindows &windows, forms::Form &form) : windows_(windows), form_(form) {}
    ~FakeFormWindow() override;

    // Changes that would repaint something a user can see now: not those of hidden forms, of hidden
    // controls, of pointers and tool tips.
    int paints = 0;
    int refreshes = 0;
    int raises = 0;
    std::vector<Told> told;
    forms::Control *focused = nullptr;

    void controlChanged(forms::Control &control, forms::Change what,
                        const RectTwips &before) override;
    void controlGone(forms::Control &control) override;
    void formChanged(forms::FormChange what, const RectTwips &before) override;
    void refresh(forms::Control *control) override;
    void raise() override { ++raises; }
    void focus(forms::Control *control) override { focused = control; }
    std::uintptr_t pictureWindow(forms::PictureBox &box) override;

private:
    FakeWindows &windows_;
    forms::Form &form_;
};

class FakeWindows : public platform::WindowSystem {
public:
    explicit FakeWindows(FakeClock &clock);
    ~FakeWindows() override;

    // --- driving -----------------------------------------------------------------------------
    // Moves the clock on; the ticks that come due run at their time, in order.
    void advance(std::int64_t ms);
    // Runs once inside the next pump that nobody took yet; several are taken one a pump.
    void atNextPump(std::function<void()> work);
    // Runs inside every pump.
    std::function<void()> onPump;
    // Drops the work of `atNextPump` that was not reached, and tells whether there was any.
    bool dropPumpWork();

    // --- scripts -----------------------------------------------------------------------------
    struct Box {
        std::u16string text;
        platform::MsgBoxButtons buttons;
        platform::MsgBoxIcon icon;
        std::u16string title;
        friend bool operator==(const Box &, const Box &) = default;
    };
    void expectMsgBox(Box box, platform::MsgBoxResult answer, std::function<void()> meanwhile = {});
    // Chooses an entry of the next popup by its control name, after what happens while it is open;
    // an empty name dismisses it.
    void expectPopup(std::string menu, std::string entry, std::function<void()> meanwhile = {});

    // --- what the system is ----------------------------------------------------------------------
    RectPixels workArea{0, 0, 1280, 760};
    RectPixels taskBar{0, 760, 1280, 800};
    bool hasTaskBar = true;
    PointPixels screen{1280, 800};
    std::vector<RectPixels> otherMonitors; // beside the primary one
    PointPixels cursor{0, 0};
    // The window manager keeps windows wholly in there, whatever place they ask for.
    std::optional<RectPixels> keepsInside;
    bool workAreaFails = false;
    bool trayFails = false;
    bool cursorFails = false;
    bool modal = false; // a box that was expected is up, or a test says so

    // --- what was asked --------------------------------------------------------------------------
    int pumps = 0;
    int refreshes = 0;
    int measures = 0; // of texts
    int pointerAsks = 0;
    std::vector<forms::Picture> picturesDrawn; // each picture asked for, in order
    std::vector<Box> boxes;
    struct TrayCall {
        std::uint32_t operation;
        platform::NotifyIconData data;
    };
    std::vector<TrayCall> trayCalls;
    forms::Menu *trayMenu = nullptr;
    std::function<bool()> trayMenuOpens;
    struct Positioning {
        std::string form;
        std::int32_t insertAfter;
        std::uint32_t flags;
        friend bool operator==(const Positioning &, const Positioning &) = default;
    };
    std::vector<Positioning> positionings;
    std::u16string boxSource;         // of the last message box that told one
    std::vector<std::string> flashes; // form names
    int asks = 0;                     // of the person for the program
    std::vector<std::u16string> appTitles;
    std::vector<std::string> shown; // form names, in the order of their becoming visible
    // A message from outside to a form's window, as the tray sends it.
    std::int32_t send(platform::HWND window, std::uint32_t message, std::int32_t wParam,
                      std::int32_t lParam);
    bool hooked(platform::HWND window) const { return hooks_.contains(window); }
    forms::Form *formOf(platform::HWND window) const;
    static FakeFormWindow *windowOf(const forms::Form &form);

    // --- the contract ----------------------------------------------------------------------------
    platform::HWND formMade(forms::Form &form) override;
    void formGone(forms::Form &form) override;
    std::unique_ptr<forms::FormWindow> makeWindow(forms::Form &form) override;
    forms::TimerQueue &timers() override { return timers_; }
    void DoEvents() override;
    void whenIdle(std::function<void()> work) override;
    // 120 twips a unit and 15 twips a point in height at 9 points, in proportion at other sizes; a
    // unit above U+2E7F is twice as wide.
    forms::TextExtent textExtent(std::u16string_view text, const forms::Font &font) override;
    // Each pixel tells its picture and place: 0xFF, the picture's number, x, y.
    forms::Surface pictureSurface(forms::Picture picture, int width, int height) override;
    std::int32_t GetWindowLongA(platform::HWND window, std::int32_t index) override;
    std::int32_t SetWindowLongA(platform::HWND window, std::int32_t index,
                                std::int32_t value) override;
    bool SetLayeredWindowAttributes(platform::HWND window, Colour key, std::uint8_t alpha,
                                    std::uint32_t flags) override;
    std::int32_t SetWindowPos(platform::HWND window, std::int32_t insertAfter, std::int32_t x,
                              std::int32_t y, std::int32_t width, std::int32_t height,
                              std::uint32_t flags) override;
    std::int32_t hookWindowProc(platform::HWND window, platform::WindowProc procedure) override;
    void unhookWindowProc(platform::HWND window, std::int32_t before) override;
    std::int32_t CallWindowProcA(std::int32_t procedure, platform::HWND window,
                                 std::uint32_t message, std::int32_t wParam,
                                 std::int32_t lParam) override;
    bool FlashWindow(platform::HWND window, bool invert) override;
    void personAsked() override { ++asks; }
    bool SystemParametersInfoA(std::uint32_t action, RectPixels &area) override;
    platform::HWND FindWindowA(std::u16string_view className) override;
    bool GetWindowRect(platform::HWND window, RectPixels &rect) override;
    Twips screenWidth() override { return static_cast<Twips>(screen.x) * twipsPerPixel; }
    Twips screenHeight() override { return static_cast<Twips>(screen.y) * twipsPerPixel; }
    bool GetCursorPos(PointPixels &position) override;
    std::vector<RectPixels> monitors() override;
    platform::MsgBoxResult MsgBox(std::u16string_view text, platform::MsgBoxButtons buttons,
                                  platform::MsgBoxIcon icon, std::u16string_view title,
                                  std::u16string_view source = {}) override;
    bool isModal() override { return modal; }
    void PopupMenu(forms::Form &owner, forms::Menu &menu) override;
    bool Shell_NotifyIconA(std::uint32_t operation, const platform::NotifyIconData &data) override;
    void setTrayMenu(forms::Menu &menu, std::function<bool()> opens) override {
        trayMenu = &menu;
        trayMenuOpens = std::move(opens);
    }
    void setAppTitle(std::u16string_view title) override { appTitles.emplace_back(title); }

private:
    struct ScriptedBox {
        Box box;
        platform::MsgBoxResult answer;
        std::function<void()> meanwhile;
    };
    struct ScriptedPopup {
        std::string menu;
        std::string entry;
        std::function<void()> meanwhile;
    };
    void runIdleWork();

    FakeClock &clock_;
    forms::TimerQueue timers_;
    std::map<platform::HWND, forms::Form *> forms_;
    std::map<platform::HWND, platform::WindowProc> hooks_;
    std::deque<ScriptedBox> scriptedBoxes_;
    std::deque<ScriptedPopup> scriptedPopups_;
    std::deque<std::function<void()>> pumpWork_;
    std::vector<std::function<void()>> idleWork_;
    platform::HWND nextWindow_ = 0x10001;
    int depth_ = 0;
};

} // namespace velmora::fakes
