#include "platform/backends/picture/picture_window.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace velmora::platform::picture {

namespace {

template <typename Reply> using Answer = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply> Answer<Reply> own(Reply *reply) { return {reply, &std::free}; }

bool within16Bits(std::int32_t value) {
    return value >= std::numeric_limits<std::int16_t>::min() &&
           value <= std::numeric_limits<std::int16_t>::max();
}

} // namespace

PictureWindow::Connection PictureWindow::connect() {
    Connection connection(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get()) != 0)
        return nullptr;
    return connection;
}

std::unique_ptr<PictureWindow> PictureWindow::insideParent(std::uint32_t parent) {
    std::unique_ptr<PictureWindow> window(new PictureWindow(connect()));
    if (window->connection_ == nullptr || !window->create(parent, XCB_EVENT_MASK_STRUCTURE_NOTIFY))
        return nullptr;
    window->followParent(parent);
    return window;
}

std::unique_ptr<PictureWindow> PictureWindow::onScreen(const std::string &title,
                                                       const std::string &applicationName) {
    std::unique_ptr<PictureWindow> window(new PictureWindow(connect()));
    if (window->connection_ == nullptr ||
        !window->create(window->screen()->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY))
        return nullptr;
    window->describe(title, applicationName);
    return window;
}

const xcb_screen_t *PictureWindow::screen() const {
    return xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
}

// The window has the screen's own depth whatever the parent has: inside a parent with translucency
// a picture that inherited it would show through where the engine leaves the fourth byte 0.
bool PictureWindow::create(std::uint32_t parent, std::uint32_t events) {
    const xcb_screen_t *root = screen();
    window_ = xcb_generate_id(connection_.get());
    const std::array<std::uint32_t, 4> values{root->black_pixel, 0, events, root->default_colormap};
    const auto request = xcb_create_window_checked(
        connection_.get(), root->root_depth, window_, parent, 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, root->root_visual,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
        values.data());
    if (own(xcb_request_check(connection_.get(), request)) == nullptr)
        return true;
    window_ = 0;
    return false;
}

void PictureWindow::followParent(std::uint32_t parent) {
    parent_ = parent;
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_.get(), parent, XCB_CW_EVENT_MASK, &events);
}

// The parent takes its size on another connection, before or after the picture is put over it.
void PictureWindow::parentIs(std::int32_t width, std::int32_t height) {
    constexpr std::int32_t rounding = 2;
    const bool isCovered = put_[0] == 0 && put_[1] == 0 && std::abs(put_[2] - width) <= rounding &&
                           std::abs(put_[3] - height) <= rounding;
    fillsParent_ = fillsParent_ || isCovered;
    if (fillsParent_ && (put_[2] != width || put_[3] != height))
        resize(width, height);
}

void PictureWindow::resize(std::int32_t width, std::int32_t height) {
    if (width < 1 || height < 1)
        return;
    put_ = {0, 0, width, height};
    const std::array<std::uint32_t, 2> values{static_cast<std::uint32_t>(width),
                                              static_cast<std::uint32_t>(height)};
    xcb_configure_window(connection_.get(), window_,
                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values.data());
    xcb_flush(connection_.get());
}

xcb_atom_t PictureWindow::atom(const char *name) {
    const auto request =
        xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const auto reply = own(xcb_intern_atom_reply(connection_.get(), request, nullptr));
    return reply != nullptr ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

void PictureWindow::describe(const std::string &title, const std::string &applicationName) {
    const auto setText = [&](xcb_atom_t property, xcb_atom_t type, const std::string &text) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, property, type, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    };
    const xcb_atom_t utf8 = atom("UTF8_STRING");
    setText(XCB_ATOM_WM_NAME, utf8, title);
    setText(atom("_NET_WM_NAME"), utf8, title);
    // Instance and class, each ended by a NUL.
    setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, applicationName + '\0' + applicationName + '\0');
    deleteWindow_ = atom("WM_DELETE_WINDOW");
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, atom("WM_PROTOCOLS"),
                        XCB_ATOM_ATOM, 32, 1, &deleteWindow_);
    xcb_flush(connection_.get());
}

bool PictureWindow::place(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    if (isGone() || !within16Bits(x) || !within16Bits(y) || width < 1 || height < 1 ||
        !within16Bits(width) || !within16Bits(height))
        return false;
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
        static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
    xcb_configure_window(connection_.get(), window_,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    const auto mapped = xcb_map_window_checked(connection_.get(), window_);
    put_ = {x, y, width, height};
    fillsParent_ = false;
    const auto parent = own(xcb_get_geometry_reply(
        connection_.get(), xcb_get_geometry(connection_.get(), parent_), nullptr));
    if (parent != nullptr)
        parentIs(parent->width, parent->height);
    return own(xcb_request_check(connection_.get(), mapped)) == nullptr;
}

void PictureWindow::showSized(std::int32_t width, std::int32_t height) {
    const double most = 0.9;
    const double fit = std::min({1.0, most * screen()->width_in_pixels / std::max(width, 1),
                                 most * screen()->height_in_pixels / std::max(height, 1)});
    const std::array<std::uint32_t, 2> values{
        static_cast<std::uint32_t>(std::max(1.0, width * fit)),
        static_cast<std::uint32_t>(std::max(1.0, height * fit))};
    xcb_configure_window(connection_.get(), window_,
                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values.data());
    xcb_map_window(connection_.get(), window_);
    xcb_flush(connection_.get());
}

void PictureWindow::hide() {
    xcb_unmap_window(connection_.get(), window_);
    xcb_flush(connection_.get());
}

bool PictureWindow::isGone() {
    while (const auto event = own(xcb_poll_for_event(connection_.get()))) {
        const int kind = event->response_type & 0x7F;
        if (kind == XCB_CLIENT_MESSAGE) {
            const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
            isGone_ = isGone_ || message->data.data32[0] == deleteWindow_;
        } else if (kind == XCB_DESTROY_NOTIFY) {
            const auto *end = reinterpret_cast<const xcb_destroy_notify_event_t *>(event.get());
            isGone_ = isGone_ || end->window == window_;
        } else if (kind == XCB_CONFIGURE_NOTIFY) {
            const auto *now = reinterpret_cast<const xcb_configure_notify_event_t *>(event.get());
            if (now->window == parent_)
                parentIs(now->width, now->height);
        }
    }
    isGone_ = isGone_ || xcb_connection_has_error(connection_.get()) != 0;
    return isGone_;
}

PictureWindow::~PictureWindow() {
    if (connection_ != nullptr && window_ != 0) {
        xcb_destroy_window(connection_.get(), window_);
        xcb_flush(connection_.get());
    }
}

} // namespace velmora::platform::picture
