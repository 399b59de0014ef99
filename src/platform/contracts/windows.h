#pragma once

// The window system: windows behind forms, the message pump, timers, screen metrics, message boxes,
// the tray, text measures. Everything runs on the one interface thread.

#include "base/geometry.h"
#include "platform/forms/host.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::forms {
class Menu;
class PictureBox;
class TimerQueue;
} // namespace velmora::forms

namespace velmora::platform {

// --- window operations by their platform names ---------------------------------------------------

inline constexpr std::int32_t GWL_EXSTYLE = -20;
inline constexpr std::int32_t GWL_WNDPROC = -4;
inline constexpr std::int32_t WS_EX_LAYERED = 0x80000;
inline constexpr std::uint32_t LWA_COLORKEY = 1;
inline constexpr std::int32_t HWND_TOPMOST = -1;
inline constexpr std::int32_t HWND_NOTOPMOST = -2;
inline constexpr std::uint32_t SWP_NOSIZE = 1;
inline constexpr std::uint32_t SWP_NOMOVE = 2;
inline constexpr std::uint32_t SPI_GETWORKAREA = 48;

inline constexpr std::uint32_t NIM_ADD = 0;
inline constexpr std::uint32_t NIM_MODIFY = 1;
inline constexpr std::uint32_t NIM_DELETE = 2;
inline constexpr std::uint32_t NIF_MESSAGE = 1;
inline constexpr std::uint32_t NIF_ICON = 2;
inline constexpr std::uint32_t NIF_TIP = 4;

struct NotifyIconData {
    std::uint32_t size = 88;
    HWND window = 0;
    std::uint32_t id = 0;
    std::uint32_t flags = 0;
    std::uint32_t callbackMessage = 0;
    forms::Picture icon = forms::Picture::None;
    std::u16string tip; // at most 64 units, never cut inside a pair
};

// A hook for the messages that come to a form's window from outside (the tray's). Empty for none.
using WindowProc = std::function<std::int32_t(HWND, std::uint32_t message, std::int32_t wParam,
                                              std::int32_t lParam)>;

enum class MsgBoxButtons : std::uint8_t { Ok, YesNo, YesNoCancel };
enum class MsgBoxIcon : std::uint8_t { None, Critical, Question, Exclamation, Information };
enum class MsgBoxResult : std::uint8_t { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

class WindowSystem : public forms::Host {
public:
    // --- pump and timers ---------------------------------------------------------------------
    // Handles what is pending: input, timers, painting. May return at once within 1 ms of the last.
    virtual void DoEvents() = 0;
    // Runs `work` when no handler is active any more, ahead of the next event.
    virtual void whenIdle(std::function<void()> work) = 0;

    // --- window operations --------------------------------------------------------------------
    // An unknown window makes each of them fail (0 or false).
    virtual std::int32_t GetWindowLongA(HWND window, std::int32_t index) = 0;
    virtual std::int32_t SetWindowLongA(HWND window, std::int32_t index, std::int32_t value) = 0;
    virtual bool SetLayeredWindowAttributes(HWND window, Colour key, std::uint8_t alpha,
                                            std::uint32_t flags) = 0;
    virtual std::int32_t SetWindowPos(HWND window, std::int32_t insertAfter, std::int32_t x,
                                      std::int32_t y, std::int32_t width, std::int32_t height,
                                      std::uint32_t flags) = 0;
    // Window procedures are opaque numbers, 0 included. Hooking a form's window: the messages from
    // outside go to `procedure`; the answer stands for the one before.
    virtual std::int32_t hookWindowProc(HWND window, WindowProc procedure) = 0;
    virtual void unhookWindowProc(HWND window, std::int32_t before) = 0;
    virtual std::int32_t CallWindowProcA(std::int32_t procedure, HWND window, std::uint32_t message,
                                         std::int32_t wParam, std::int32_t lParam) = 0;
    virtual bool FlashWindow(HWND window, bool invert) = 0;
    // The person asked for the program outside its windows (a panel, a file manager): what comes up
    // within a second takes the keyboard, as it does after a key or click in one of them. Later it
    // comes by itself: a window does not take the keyboard from another program, and a box is deaf
    // to the keys of its answers for half a second.
    virtual void personAsked() = 0;

    // --- screen --------------------------------------------------------------------------------
    // The primary monitor. SystemParametersInfoA(SPI_GETWORKAREA) in pixels; false on failure.
    virtual bool SystemParametersInfoA(std::uint32_t action, RectPixels &area) = 0;
    bool workArea(RectPixels &area) final { return SystemParametersInfoA(SPI_GETWORKAREA, area); }
    // "Shell_TrayWnd" is the task bar; 0 if the class is unknown.
    virtual HWND FindWindowA(std::u16string_view className) = 0;
    virtual bool GetWindowRect(HWND window, RectPixels &rect) = 0;
    virtual bool GetCursorPos(PointPixels &position) = 0;
    // All monitors, as the primary one's corner counts them; none where that cannot be told.
    virtual std::vector<RectPixels> monitors() = 0;
    // Called from the loop after the screens changed: which of them is the primary one, its size or
    // scale, or what panels leave free of it. Empty for nobody.
    std::function<void()> onScreensChanged;

    // --- boxes and menus -------------------------------------------------------------------------
    // Application-modal; timers go on. The first button is the default. Yes/No cannot be escaped.
    // `source`, where there is one, is not part of the text: the tip over it shows it, and
    // assistive technology says it.
    virtual MsgBoxResult MsgBox(std::u16string_view text, MsgBoxButtons buttons, MsgBoxIcon icon,
                                std::u16string_view title, std::u16string_view source = {}) = 0;
    // Whether a box or dialog is up, so that no window takes input.
    virtual bool isModal() = 0;
    virtual void PopupMenu(forms::Form &owner, forms::Menu &menu) = 0;

    // --- desktop ---------------------------------------------------------------------------------
    virtual bool Shell_NotifyIconA(std::uint32_t operation, const NotifyIconData &data) = 0;
    // The menu of that icon, for a panel that draws it itself and sends no message to ask for it.
    // `opens`: whether a right click would open it now.
    virtual void setTrayMenu(forms::Menu &menu, std::function<bool()> opens) = 0;
    // The application's title (its task bar entry).
    virtual void setAppTitle(std::u16string_view title) = 0;
};

} // namespace velmora::platform
