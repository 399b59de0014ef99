#pragma once

// Waits until the window manager, or the program of a window, has taken in all that was sent to
// the screen before.
//
// A window manager holds every press back until it has seen it, so keys that are sent right behind
// a press overtake it on a busy machine and reach whatever had the keyboard before.

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <string>

namespace velmora::tests {

class XTurn {
public:
    explicit XTurn(const std::string &display);
    ~XTurn();
    XTurn(const XTurn &) = delete;
    XTurn &operator=(const XTurn &) = delete;

    // False when there is no display, or the window manager stays silent beyond the limit.
    bool managerTook(int limitMs);

    // Asks the program of a window for a sign of life, and whether it has given it or the window
    // is gone. A program reads the events of its windows in order, so the sign says that it has
    // read what came before it; a second one, that it has begun to handle it.
    void ask(xcb_window_t window);
    bool answered();
    // Two signs of life. False when the limit passes first.
    bool programTook(xcb_window_t window, int limitMs);

private:
    xcb_atom_t atom(const char *name);
    void tell(xcb_window_t to, std::uint32_t mask, xcb_window_t about, const char *message,
              std::uint32_t first, std::uint32_t second, std::uint32_t third);
    void readEvents();
    bool await(const std::function<bool()> &condition, int limitMs);

    xcb_connection_t *connection_;
    xcb_screen_t *screen_ = nullptr;
    xcb_window_t own_ = XCB_WINDOW_NONE;
    xcb_atom_t extents_ = XCB_ATOM_NONE;
    xcb_window_t asked_ = XCB_WINDOW_NONE;
    std::uint32_t asks_ = 0; // tells the answers apart
    bool managerAnswered_ = false;
    bool programAnswered_ = false;
};

} // namespace velmora::tests
