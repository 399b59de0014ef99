#include "tests/desktop/x_turn.h"

#include "tests/desktop/x_reply.h"

#include <poll.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace velmora::tests {

namespace {
constexpr int askAnewMs = 2000;
}

XTurn::XTurn(const std::string &display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(connection_) != 0)
        return;
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    // Answers of programs are sent to the root; those of the window manager are properties.
    const std::uint32_t heard =
        XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, screen_->root, XCB_CW_EVENT_MASK, &heard);
    own_ = xcb_generate_id(connection_);
    extents_ = atom("_NET_FRAME_EXTENTS");
    const std::uint32_t changes = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection_, 0, own_, screen_->root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, screen_->root_visual, XCB_CW_EVENT_MASK,
                      &changes);
}

XTurn::~XTurn() { xcb_disconnect(connection_); }

bool XTurn::managerTook(int limitMs) {
    if (screen_ == nullptr)
        return false;
    managerAnswered_ = false;
    // Asked anew where it stays silent: a later answer says the same.
    for (int waitedMs = 0; waitedMs < limitMs && !managerAnswered_; waitedMs += askAnewMs) {
        tell(screen_->root,
             XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT, own_,
             "_NET_REQUEST_FRAME_EXTENTS", 0, 0, 0);
        await([this] { return managerAnswered_; }, askAnewMs);
    }
    return managerAnswered_;
}

void XTurn::ask(xcb_window_t window) {
    asked_ = window;
    programAnswered_ = screen_ == nullptr;
    if (programAnswered_)
        return;
    tell(window, XCB_EVENT_MASK_NO_EVENT, window, "WM_PROTOCOLS", atom("_NET_WM_PING"), ++asks_,
         window);
}

bool XTurn::answered() {
    readEvents();
    if (programAnswered_)
        return true;
    // Nobody answers for a window that is gone.
    return !owned(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, asked_), nullptr));
}

bool XTurn::programTook(xcb_window_t window, int limitMs) {
    for (int sign = 0; sign < 2; ++sign) {
        ask(window);
        if (!await([this] { return answered(); }, limitMs))
            return false;
    }
    return true;
}

xcb_atom_t XTurn::atom(const char *name) {
    const auto reply = owned(xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(strlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t{0};
}

void XTurn::tell(xcb_window_t to, std::uint32_t mask, xcb_window_t about, const char *message,
                 std::uint32_t first, std::uint32_t second, std::uint32_t third) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = about;
    event.type = atom(message);
    event.data.data32[0] = first;
    event.data.data32[1] = second;
    event.data.data32[2] = third;
    xcb_send_event(connection_, 0, to, mask, reinterpret_cast<const char *>(&event));
    xcb_flush(connection_);
}

void XTurn::readEvents() {
    while (auto event = owned(xcb_poll_for_event(connection_))) {
        const int kind = event->response_type & 0x7F;
        if (kind == XCB_PROPERTY_NOTIFY) {
            // Some write others first, and are not done with those when their answer is.
            const auto *change = reinterpret_cast<const xcb_property_notify_event_t *>(event.get());
            if (change->atom == extents_)
                managerAnswered_ = true;
        } else if (kind == XCB_CLIENT_MESSAGE) {
            const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
            if (message->data.data32[1] == asks_ && message->data.data32[2] == asked_)
                programAnswered_ = true;
        }
    }
}

bool XTurn::await(const std::function<bool()> &condition, int limitMs) {
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + std::chrono::milliseconds(limitMs);
    pollfd heard{xcb_get_file_descriptor(connection_), POLLIN, 0};
    for (readEvents(); !condition(); readEvents()) {
        if (steady_clock::now() >= end || xcb_connection_has_error(connection_) != 0)
            return false;
        poll(&heard, 1, 20);
    }
    return true;
}

} // namespace velmora::tests
