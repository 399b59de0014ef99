#include "platform/backends/qt/window/rolling_line.h"

#include "platform/backends/qt/paint/hole_shape.h"

#include <QSysInfo>

#include <xcb/shape.h>

#include <algorithm>

namespace velmora::platform::qt {

namespace {

constexpr int mostPixels = 4'000'000;
constexpr int widest = 32'000; // coordinates of the protocol have 16 bits
// While letters move nobody sees their outline to the pixel, and what each step uncovers the server
// paints in a time that grows with the square of the rectangles.
constexpr int rowsTogether = 3;
constexpr int gapsClosed = 4;

} // namespace

bool RollingLine::begin(xcb_window_t window, QSize size, const QImage &picture, bool soft) {
    end();
    if (picture.isNull() || picture.width() > widest ||
        picture.width() * picture.height() > mostPixels)
        return false;
    window_ = window;
    size_ = size;
    pictureSize_ = picture.size();
    soft_ = soft;
    left_ = 0;
    if (!upload(picture)) {
        window_ = XCB_WINDOW_NONE;
        return false;
    }
    cutOut(picture, soft);
    x11_.watchExposed(window_, [this](std::uint32_t sequence) { exposed(sequence); });
    return true;
}

bool RollingLine::upload(const QImage &picture) {
    xcb_connection_t *connection = x11_.connection();
    const std::uint8_t depth = x11_.depthOf(window_);
    if (!x11_.takesImages(depth))
        return false;
    picture_ = xcb_generate_id(connection);
    xcb_create_pixmap(connection, depth, picture_, window_,
                      static_cast<std::uint16_t>(picture.width()),
                      static_cast<std::uint16_t>(picture.height()));
    context_ = xcb_generate_id(connection);
    const std::uint32_t silent = 0; // no word of each copying that it is done
    xcb_create_gc(connection, context_, picture_, XCB_GC_GRAPHICS_EXPOSURES, &silent);
    const auto line = static_cast<std::uint32_t>(picture.width()) * 4;
    constexpr std::uint32_t head = 64;
    const std::uint32_t room = xcb_get_maximum_request_length(connection) * 4 - head;
    const int rows = std::max(1, static_cast<int>(room / line));
    for (int top = 0; top < picture.height(); top += rows) {
        const int high = std::min(rows, picture.height() - top);
        xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, picture_, context_,
                      static_cast<std::uint16_t>(picture.width()), static_cast<std::uint16_t>(high),
                      0, static_cast<std::int16_t>(top), 0, depth,
                      line * static_cast<std::uint32_t>(high), picture.constScanLine(top));
    }
    return true;
}

void RollingLine::cutOut(const QImage &picture, bool soft) {
    const auto rows =
        solidRows(picture, soft ? softThreshold : hardThreshold, rowsTogether, gapsClosed);
    x11_.setShape(window_, rows);
    if (soft)
        x11_.clearOutline(window_);
}

bool RollingLine::moveTo(int left) {
    if (!isOn() || left > 0 || left + pictureSize_.width() < size_.width())
        return false;
    xcb_connection_t *connection = x11_.connection();
    const auto by = static_cast<std::int16_t>(left - left_);
    left_ = left;
    if (by != 0) {
        if (!soft_)
            xcb_shape_offset(connection, XCB_SHAPE_SK_BOUNDING, window_, by, 0);
        xcb_shape_offset(connection, XCB_SHAPE_SK_INPUT, window_, by, 0);
    }
    copy();
    return true;
}

void RollingLine::copy() {
    copied_ = xcb_copy_area(x11_.connection(), picture_, window_, context_,
                            static_cast<std::int16_t>(-left_), 0, 0, 0,
                            static_cast<std::uint16_t>(size_.width()),
                            static_cast<std::uint16_t>(pictureSize_.height()))
                  .sequence;
    x11_.flush();
}

// What a step itself uncovers has been copied behind it.
void RollingLine::exposed(std::uint32_t sequence) {
    if (static_cast<std::int32_t>(sequence - copied_) < 0)
        return;
    copy();
}

void RollingLine::end() {
    if (!isOn())
        return;
    x11_.forgetExposed(window_);
    xcb_free_gc(x11_.connection(), context_);
    xcb_free_pixmap(x11_.connection(), picture_);
    window_ = XCB_WINDOW_NONE;
}

} // namespace velmora::platform::qt
