// velmora_deaf [frames]
//
// A window manager that shows each window where it wants to be at first, and from then on takes its
// requests for another place, leaves it where it is and tells nobody. With frames each window is
// put into one, which goes where it is sent, and nobody tells the window. Says "ready" once it is
// there.

#include "tests/desktop/x_reply.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <iostream>
#include <set>
#include <string_view>

namespace {

using velmora::tests::owned;

void grant(xcb_connection_t *connection, const xcb_configure_request_event_t &asked) {
    const std::uint32_t values[] = {static_cast<std::uint32_t>(asked.x),
                                    static_cast<std::uint32_t>(asked.y), asked.width, asked.height};
    xcb_configure_window(connection, asked.window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
}

void frame(xcb_connection_t *connection, xcb_window_t root, xcb_window_t window) {
    const auto place =
        owned(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    if (!place)
        return;
    const xcb_window_t frame = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, frame, root, place->x, place->y,
                      place->width, place->height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_reparent_window(connection, window, frame, 0, 0);
    xcb_map_window(connection, frame);
}

} // namespace

int main(int count, char **words) {
    const bool frames = count > 1 && std::string_view(words[1]) == "frames";
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0)
        return 1;
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const std::uint32_t mask =
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    const auto taken =
        xcb_change_window_attributes_checked(connection, screen->root, XCB_CW_EVENT_MASK, &mask);
    if (owned(xcb_request_check(connection, taken)))
        return 1;
    std::cout << "ready" << std::endl;
    std::set<xcb_window_t> shown;
    while (const auto event = owned(xcb_wait_for_event(connection))) {
        const int kind = event->response_type & 0x7F;
        if (kind == XCB_MAP_REQUEST) {
            const auto window =
                reinterpret_cast<const xcb_map_request_event_t *>(event.get())->window;
            if (frames)
                frame(connection, screen->root, window);
            xcb_map_window(connection, window);
            shown.insert(window);
        } else if (kind == XCB_UNMAP_NOTIFY) {
            shown.erase(reinterpret_cast<const xcb_unmap_notify_event_t *>(event.get())->window);
        } else if (kind == XCB_CONFIGURE_REQUEST) {
            const auto *asked =
                reinterpret_cast<const xcb_configure_request_event_t *>(event.get());
            if (!shown.contains(asked->window))
                grant(connection, *asked);
        }
        xcb_flush(connection);
    }
    xcb_disconnect(connection);
    return 0;
}
