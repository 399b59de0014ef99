#pragma once

// A private X server without a screen for tests that show windows, and a look at what they show.

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>
#include <xcb/xcb.h>

namespace velmora::tests {

struct XvfbServerOptions {
    int width = 1280;
    int height = 1024;
    // Further arguments of the server, e.g. {"-dpi", "192"}.
    std::vector<std::string> arguments = {};
};

// Starts in the constructor on a display number that the server finds free, ends in the destructor.
class XvfbServer {
public:
    explicit XvfbServer(const XvfbServerOptions &options = {});
    ~XvfbServer();
    XvfbServer(const XvfbServer &) = delete;
    XvfbServer &operator=(const XvfbServer &) = delete;

    // False where the server is not installed or did not come up within ten seconds.
    bool running() const { return !display_.empty(); }
    // What goes into DISPLAY, e.g. ":7".
    const std::string &display() const { return display_; }
    // Sets DISPLAY of this process, and takes away what would lead elsewhere.
    void exportToEnvironment() const;

private:
    pid_t pid_ = -1;
    std::string display_;
};

// The pixels of a window, or of a part of the screen that it covers.
struct WindowPixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; // 0x00RRGGBB, row by row

    bool empty() const { return pixels.empty(); }
    std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

// A client of the server that makes and looks at windows.
class XClient {
public:
    // Connects to the display given, or to that of the environment.
    explicit XClient(const std::string &display = {});
    ~XClient();
    XClient(const XClient &) = delete;
    XClient &operator=(const XClient &) = delete;

    bool connected() const;
    xcb_connection_t *connection() const { return connection_; }
    const xcb_screen_t *screen() const;

    // A mapped top-level window at a place of the screen; with 32 bits for a pixel on request.
    xcb_window_t makeWindow(int x, int y, int width, int height, bool withAlpha = false,
                            std::uint32_t events = 0);
    void destroyWindow(xcb_window_t window);

    struct Geometry {
        int x = 0, y = 0, width = 0, height = 0;
        bool isMapped = false;
    };
    // Width 0 for a window that does not exist.
    Geometry geometry(xcb_window_t window) const;
    std::vector<xcb_window_t> childrenOf(xcb_window_t window) const;
    std::string title(xcb_window_t window) const;
    // Asks a window to close as a window manager does.
    void askToClose(xcb_window_t window);

    // Empty for a window that is not shown or reaches beyond the screen.
    WindowPixels look(xcb_window_t window) const;

private:
    xcb_atom_t atom(const char *name) const;

    xcb_connection_t *connection_;
};

} // namespace velmora::tests
