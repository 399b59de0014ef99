#include "platform/backends/qt/screen/stacking.h"

#include "platform/backends/qt/screen/x_reply.h"

#include <algorithm>
#include <vector>

namespace velmora::platform::qt {

namespace {

// The window around it that lies on the screen itself.
xcb_window_t topLevel(X11 &x11, xcb_window_t window) {
    while (window != XCB_WINDOW_NONE) {
        const Owned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
            x11.connection(), xcb_query_tree(x11.connection(), window), nullptr));
        if (!tree || tree->parent == x11.root())
            return window;
        window = tree->parent;
    }
    return window;
}

std::vector<xcb_window_t> stack(X11 &x11) {
    const Owned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
        x11.connection(), xcb_query_tree(x11.connection(), x11.root()), nullptr));
    if (!tree)
        return {};
    const xcb_window_t *first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

bool isSeen(X11 &x11, xcb_window_t window) {
    const Owned<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        x11.connection(), xcb_get_window_attributes(x11.connection(), window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

void place(X11 &x11, xcb_window_t window, xcb_window_t above) {
    const bool isAboveAll = above == XCB_WINDOW_NONE;
    const std::uint32_t values[] = {isAboveAll ? std::uint32_t{XCB_STACK_MODE_ABOVE} : above,
                                    XCB_STACK_MODE_ABOVE};
    const std::uint16_t siblings = isAboveAll ? 0 : XCB_CONFIG_WINDOW_SIBLING;
    xcb_configure_window(x11.connection(), window,
                         static_cast<std::uint16_t>(siblings | XCB_CONFIG_WINDOW_STACK_MODE),
                         values);
    x11.flush();
}

} // namespace

void raiseAboveManaged(X11 &x11, xcb_window_t window, xcb_window_t spared,
                       const std::set<xcb_window_t> &others) {
    const auto clients = x11.windowsOfRoot(X11::ClientList);
    if (!clients) {
        place(x11, window, XCB_WINDOW_NONE);
        return;
    }
    std::set<xcb_window_t> managed = others;
    for (const xcb_window_t client : *clients)
        if (client != spared)
            managed.insert(topLevel(x11, client));
    const std::vector<xcb_window_t> order = stack(x11);
    for (auto it = order.rbegin(); it != order.rend() && *it != window; ++it) {
        if (!managed.contains(*it) || !isSeen(x11, *it))
            continue;
        place(x11, window, *it);
        return;
    }
}

} // namespace velmora::platform::qt
