#pragma once

// A line of text that rolls through its window: drawn and cut out once, then moved by the display
// server alone. Painting and cutting anew at each step costs server and program many times as much.

#include "platform/backends/qt/screen/x11.h"

#include <QImage>

#include <cstdint>

namespace velmora::platform::qt {

class RollingLine {
public:
    explicit RollingLine(X11 &x11) noexcept : x11_(x11) {}
    ~RollingLine() { end(); }
    RollingLine(const RollingLine &) = delete;
    RollingLine &operator=(const RollingLine &) = delete;

    bool isOn() const noexcept { return window_ != XCB_WINDOW_NONE; }

    // From now on `window`, of that size in pixels, shows `picture` (premultiplied, at least as
    // wide) and consists of its letters. `soft`: a compositor blends them, and only clicks are cut
    // out. False where the server cannot take the picture, and for one too large to be kept.
    bool begin(xcb_window_t window, QSize size, const QImage &picture, bool soft);
    // The picture's left edge, in pixels of the window; false where it would not fill the window,
    // and nothing is done.
    bool moveTo(int left);
    // The window is the painter's again, its shape still that of the last step.
    void end();

private:
    bool upload(const QImage &picture);
    void cutOut(const QImage &picture, bool soft);
    void copy();
    void exposed(std::uint32_t sequence);

    X11 &x11_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
    xcb_pixmap_t picture_ = XCB_NONE;
    xcb_gcontext_t context_ = XCB_NONE;
    QSize pictureSize_;
    QSize size_; // of the window
    int left_ = 0;
    std::uint32_t copied_ = 0; // the number of the last copying among the connection's requests
    bool soft_ = false;
};

} // namespace velmora::platform::qt
