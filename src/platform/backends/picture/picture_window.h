#pragma once

// The X window that the engine draws into: a child inside a window of the program, or a window of
// its own on the screen.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace velmora::platform::picture {

class PictureWindow {
public:
    // A hidden child of one pixel inside `parent`. It selects no input, so that clicks and the
    // wheel reach the parent. Null when there is no display or no such window.
    static std::unique_ptr<PictureWindow> insideParent(std::uint32_t parent);
    // A hidden window that the window manager will frame. Null when there is no display.
    static std::unique_ptr<PictureWindow> onScreen(const std::string &title,
                                                   const std::string &applicationName);
    ~PictureWindow();
    PictureWindow(const PictureWindow &) = delete;
    PictureWindow &operator=(const PictureWindow &) = delete;

    std::uint32_t id() const { return window_; }

    // Moves, sizes and shows; device pixels. Once it covers its whole parent it follows the size of
    // that, as `isGone` looks at what happened. False outside what a window can be: a size of at
    // least 1, everything within 16 bits.
    bool place(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
    // Shows at this size, made smaller in proportion where the screen is smaller.
    void showSized(std::int32_t width, std::int32_t height);
    void hide();

    // Whether the user has closed the window, or it went away with its parent. Never waits.
    bool isGone();

private:
    struct Disconnect {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };
    using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

    explicit PictureWindow(Connection connection) : connection_(std::move(connection)) {}
    static Connection connect();
    void followParent(std::uint32_t parent);
    void parentIs(std::int32_t width, std::int32_t height);
    void resize(std::int32_t width, std::int32_t height);
    bool create(std::uint32_t parent, std::uint32_t events);
    void describe(const std::string &title, const std::string &applicationName);
    xcb_atom_t atom(const char *name);
    const xcb_screen_t *screen() const;

    Connection connection_;
    std::uint32_t window_ = 0;
    std::uint32_t parent_ = 0; // inside a window of the program
    std::array<std::int32_t, 4> put_{};
    bool fillsParent_ = false;
    xcb_atom_t deleteWindow_ = 0;
    bool isGone_ = false;
};

} // namespace velmora::platform::picture
