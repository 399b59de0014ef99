#pragma once

// What a person at the screen sees and does, on a connection of its own: pixels as they are shown,
// the pointer, keys, and a bare window that tells which clicks reach it.

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora::tests {

struct ScreenPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; // 0x00RRGGBB
    std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

class XScreen {
public:
    explicit XScreen(const std::string &display);
    ~XScreen();
    XScreen(const XScreen &) = delete;
    XScreen &operator=(const XScreen &) = delete;

    // What is shown in a part of the screen.
    ScreenPicture picture(int x, int y, int width, int height);
    std::uint32_t pixel(int x, int y) { return picture(x, y, 1, 1).at(0, 0); }

    // A plain window of one colour at the bottom of the stack, over the whole screen, beside the
    // window manager's reach.
    xcb_window_t makeBackdrop(std::uint32_t colour);
    // The presses that reached it since the last call, as positions.
    struct Press {
        int x = 0;
        int y = 0;
    };
    std::vector<Press> backdropPresses();

    struct Geometry {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        bool mapped = false;
        bool unmanaged = false;
    };
    // On the screen, whatever frames lie around it. Absent when there is no such window.
    std::optional<Geometry> geometry(xcb_window_t window);
    // A property of atoms (their names) or of text.
    std::vector<std::string> atoms(xcb_window_t window, const char *property);
    std::string text(xcb_window_t window, const char *property);
    bool hasProperty(xcb_window_t window, const char *property);
    // Whether `upper` lies above `lower` in the order of the screen's children.
    bool isAbove(xcb_window_t upper, xcb_window_t lower);
    // The number of rectangles of a window's outline; 0 when the window is whole.
    int outlineRectangles(xcb_window_t window);
    // Asks a window to close, as a window manager does.
    void askToClose(xcb_window_t window);
    xcb_window_t focused();

    xcb_connection_t *connection() { return connection_; }

private:
    xcb_atom_t atom(const char *name);
    xcb_window_t topLevel(xcb_window_t window);

    xcb_connection_t *connection_;
    xcb_screen_t *screen_;
    xcb_window_t backdrop_ = XCB_WINDOW_NONE;
};

} // namespace velmora::tests
