#pragma once

// The window system on Qt 6 and X11. The one object of it in a process; it holds the toolkit's
// application.

#include "platform/contracts/windows.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class QWidget;

namespace velmora::platform {

class StatusItem;

struct QtOptions {
    // The program's name for the window manager.
    std::string name = "velmora";
    // One line for the user's terminal; called at most a few times, at the start.
    std::function<void(std::string_view line)> note;
    // As on a server that sees the pointer over our windows only; found out when absent.
    bool pointerUnknownOutside = false;
    // There is no session bus, or it hangs: the toolkit must neither begin one of its own, which
    // would outlast the program, nor wait for it.
    bool withoutBus = false;
};

class QtWindowSystem final : public WindowSystem {
public:
    // Connects to the X display that the environment names. Null without one, after a note.
    static std::unique_ptr<QtWindowSystem> make(const QtOptions &options);
    ~QtWindowSystem() override;
    QtWindowSystem(const QtWindowSystem &) = delete;
    QtWindowSystem &operator=(const QtWindowSystem &) = delete;

    // Handles events until `quit`; answers its status. The start sequence runs before.
    int run();
    void quit(int status);

    // The session ends, or the process is asked to by a signal (TERM, INT, HUP). Called from the
    // loop; more than once if the program lives on.
    std::function<void()> onSessionEnd;

    // Handles events until `due` or until an input or a timer tick was handled: the waiting of
    // WaitableTimers. Answers 0 when it is due, else 1.
    std::uint32_t waitForEvents(std::chrono::steady_clock::time_point due);

    // Device pixels to a logical one, on the densest screen: the toolkit counts alike on all.
    double pixelScale() const;

    // Calls `ready` from the loop whenever the descriptor can be read, and while what comes back
    // was last called with true, when it can be written to. The watch ends with what comes back.
    std::function<void(bool writing)> watch(int descriptor, std::function<void()> ready);

    // By which panels take the icon of the tray, if they do; null: there are none. It outlives the
    // icon, and is to be set ahead of it.
    void setStatusItem(StatusItem *item);

    // Keeps timers running through a dialog of the toolkit: to be called ahead of its loop.
    void beforeNestedLoop();
    // The same, and puts it over the window that asks: by itself the toolkit would go by the
    // pointer, which may be on another monitor.
    void beforeDialog(QWidget &dialog);

    // For a dialog that another process shows: handles events, while no window takes input and
    // timers go on, until `done`; false when the time (absent: none) is over first.
    bool waitModal(const std::function<bool()> &done,
                   std::optional<std::chrono::milliseconds> limit);
    // The native window behind a form; 0 where none was made.
    std::uint32_t nativeWindow(HWND window);
    // Whether a shown window that the window manager stacks lies above all others.
    bool coversOthers() const;

    HWND formMade(forms::Form &form) override;
    void formGone(forms::Form &form) override;
    std::unique_ptr<forms::FormWindow> makeWindow(forms::Form &form) override;

    forms::TimerQueue &timers() override;
    void DoEvents() override;
    void whenIdle(std::function<void()> work) override;

    forms::TextExtent textExtent(std::u16string_view text, const forms::Font &font) override;
    forms::Surface pictureSurface(forms::Picture picture, int width, int height) override;

    std::int32_t GetWindowLongA(HWND window, std::int32_t index) override;
    std::int32_t SetWindowLongA(HWND window, std::int32_t index, std::int32_t value) override;
    bool SetLayeredWindowAttributes(HWND window, Colour key, std::uint8_t alpha,
                                    std::uint32_t flags) override;
    std::int32_t SetWindowPos(HWND window, std::int32_t insertAfter, std::int32_t x, std::int32_t y,
                              std::int32_t width, std::int32_t height,
                              std::uint32_t flags) override;
    std::int32_t hookWindowProc(HWND window, WindowProc procedure) override;
    void unhookWindowProc(HWND window, std::int32_t before) override;
    std::int32_t CallWindowProcA(std::int32_t procedure, HWND window, std::uint32_t message,
                                 std::int32_t wParam, std::int32_t lParam) override;
    bool FlashWindow(HWND window, bool invert) override;
    void personAsked() override;

    bool SystemParametersInfoA(std::uint32_t action, RectPixels &area) override;
    HWND FindWindowA(std::u16string_view className) override;
    bool GetWindowRect(HWND window, RectPixels &rect) override;
    Twips screenWidth() override;
    Twips screenHeight() override;
    bool GetCursorPos(PointPixels &position) override;
    std::vector<RectPixels> monitors() override;

    MsgBoxResult MsgBox(std::u16string_view text, MsgBoxButtons buttons, MsgBoxIcon icon,
                        std::u16string_view title, std::u16string_view source = {}) override;
    bool isModal() override;
    void PopupMenu(forms::Form &owner, forms::Menu &menu) override;

    bool Shell_NotifyIconA(std::uint32_t operation, const NotifyIconData &data) override;
    void setTrayMenu(forms::Menu &menu, std::function<bool()> opens) override;
    void setAppTitle(std::u16string_view title) override;

private:
    struct Parts;
    explicit QtWindowSystem(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

} // namespace velmora::platform
