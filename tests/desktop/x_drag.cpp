#include "tests/desktop/x_drag.h"

#include "tests/desktop/x_reply.h"

#include <poll.h>

#include <chrono>
#include <cstdlib>
#include <memory>

namespace velmora::tests {

namespace {

constexpr std::uint32_t protocolVersion = 5;
constexpr auto limit = std::chrono::seconds(30);

} // namespace

DragSource::DragSource(const std::string &display)
    : connection_(xcb_connect(display.c_str(), nullptr)) {
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    window_ = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, -10, -10, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    xcb_flush(connection_);
}

DragSource::~DragSource() { xcb_disconnect(connection_); }

xcb_atom_t DragSource::atom(const std::string &name) {
    const auto reply = owned(xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{0};
}

std::string DragSource::nameOf(xcb_atom_t wanted) {
    const auto reply = owned(
        xcb_get_atom_name_reply(connection_, xcb_get_atom_name(connection_, wanted), nullptr));
    if (!reply)
        return {};
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

void DragSource::send(xcb_window_t target, const char *message, std::uint32_t a, std::uint32_t b,
                      std::uint32_t c, std::uint32_t d) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = target;
    event.type = atom(message);
    event.data.data32[0] = window_;
    event.data.data32[1] = a;
    event.data.data32[2] = b;
    event.data.data32[3] = c;
    event.data.data32[4] = d;
    xcb_send_event(connection_, 0, target, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(connection_);
}

void DragSource::handleEvents() {
    while (auto event = owned(xcb_poll_for_event(connection_))) {
        const int type = event->response_type & 0x7F;
        if (type == XCB_CLIENT_MESSAGE) {
            const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
            const std::string name = nameOf(message->type);
            if (name == "XdndStatus") {
                accepted_ = (message->data.data32[1] & 1) != 0;
                action_ = accepted_ ? nameOf(message->data.data32[4]) : std::string();
                answered_ = true;
            } else if (name == "XdndFinished") {
                accepted_ = (message->data.data32[1] & 1) != 0;
                finished_ = true;
            }
        } else if (type == XCB_SELECTION_REQUEST) {
            const auto *request =
                reinterpret_cast<const xcb_selection_request_event_t *>(event.get());
            xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, request->requestor,
                                request->property, request->target, 8,
                                static_cast<std::uint32_t>(data_.size()), data_.data());
            xcb_selection_notify_event_t notice = {};
            notice.response_type = XCB_SELECTION_NOTIFY;
            notice.time = request->time;
            notice.requestor = request->requestor;
            notice.selection = request->selection;
            notice.target = request->target;
            notice.property = request->property;
            xcb_send_event(connection_, 0, request->requestor, XCB_EVENT_MASK_NO_EVENT,
                           reinterpret_cast<const char *>(&notice));
            xcb_flush(connection_);
        }
    }
}

bool DragSource::await(const std::atomic<bool> &flag) {
    const auto end = std::chrono::steady_clock::now() + limit;
    pollfd heard{xcb_get_file_descriptor(connection_), POLLIN, 0};
    for (handleEvents(); !flag && std::chrono::steady_clock::now() < end; handleEvents())
        poll(&heard, 1, 20);
    return flag;
}

bool DragSource::drop(xcb_window_t target, int x, int y, const std::string &type,
                      const std::string &data) {
    data_ = data;
    action_.clear();
    answered_ = finished_ = false;
    accepted_ = false;
    const std::uint32_t place =
        static_cast<std::uint32_t>(x) << 16 | (static_cast<std::uint32_t>(y) & 0xFFFF);
    xcb_set_selection_owner(connection_, window_, atom("XdndSelection"), XCB_CURRENT_TIME);
    send(target, "XdndEnter", protocolVersion << 24, atom(type), 0, 0);
    send(target, "XdndPosition", 0, place, XCB_CURRENT_TIME, atom("XdndActionMove"));
    if (!await(answered_) || !accepted_) {
        send(target, "XdndLeave", 0, 0, 0, 0);
        return false;
    }
    send(target, "XdndDrop", 0, XCB_CURRENT_TIME, 0, 0);
    return await(finished_) && accepted_;
}

} // namespace velmora::tests
