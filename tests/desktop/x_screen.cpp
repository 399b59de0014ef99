#include "tests/desktop/x_screen.h"

#include "tests/desktop/x_reply.h"

#include <xcb/shape.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace velmora::tests {

namespace {

constexpr std::uint32_t mostProperty = 4096;

} // namespace

XScreen::XScreen(const std::string &display)
    : connection_(xcb_connect(display.c_str(), nullptr)),
      screen_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data) {}

XScreen::~XScreen() { xcb_disconnect(connection_); }

ScreenPicture XScreen::picture(int x, int y, int width, int height) {
    ScreenPicture result;
    const auto reply = owned(xcb_get_image_reply(
        connection_,
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root,
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), ~0U),
        nullptr));
    result.width = width;
    result.height = height;
    result.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    if (reply) {
        std::memcpy(result.pixels.data(), xcb_get_image_data(reply.get()),
                    std::min<std::size_t>(
                        result.pixels.size() * 4,
                        static_cast<std::size_t>(xcb_get_image_data_length(reply.get()))));
    }
    for (std::uint32_t &pixel : result.pixels)
        pixel &= 0xFFFFFFU;
    return result;
}

xcb_window_t XScreen::makeBackdrop(std::uint32_t colour) {
    backdrop_ = xcb_generate_id(connection_);
    const std::uint32_t values[] = {colour, 1, XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, backdrop_, screen_->root, 0, 0,
                      screen_->width_in_pixels, screen_->height_in_pixels, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(connection_, backdrop_, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    xcb_map_window(connection_, backdrop_);
    xcb_flush(connection_);
    return backdrop_;
}

std::vector<XScreen::Press> XScreen::backdropPresses() {
    std::vector<Press> presses;
    while (auto event = owned(xcb_poll_for_event(connection_))) {
        if ((event->response_type & 0x7F) != XCB_BUTTON_PRESS)
            continue;
        const auto *press = reinterpret_cast<const xcb_button_press_event_t *>(event.get());
        presses.push_back({press->root_x, press->root_y});
    }
    return presses;
}

std::optional<XScreen::Geometry> XScreen::geometry(xcb_window_t window) {
    const auto size =
        owned(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    const auto place = owned(xcb_translate_coordinates_reply(
        connection_, xcb_translate_coordinates(connection_, window, screen_->root, 0, 0), nullptr));
    const auto attributes = owned(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    if (!size || !place || !attributes)
        return std::nullopt;
    return Geometry{place->dst_x,
                    place->dst_y,
                    size->width,
                    size->height,
                    attributes->map_state == XCB_MAP_STATE_VIEWABLE,
                    attributes->override_redirect != 0};
}

xcb_atom_t XScreen::atom(const char *name) {
    const auto reply = owned(xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(strlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t{0};
}

std::vector<std::string> XScreen::atoms(xcb_window_t window, const char *property) {
    std::vector<std::string> names;
    const auto reply = owned(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, atom(property), XCB_ATOM_ATOM, 0, mostProperty),
        nullptr));
    if (!reply)
        return names;
    const auto *values = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()));
    for (std::uint32_t i = 0; i < reply->value_len; ++i) {
        const auto name = owned(xcb_get_atom_name_reply(
            connection_, xcb_get_atom_name(connection_, values[i]), nullptr));
        if (name)
            names.emplace_back(xcb_get_atom_name_name(name.get()),
                               static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
    }
    return names;
}

std::string XScreen::text(xcb_window_t window, const char *property) {
    const auto reply = owned(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, atom(property), XCB_ATOM_ANY, 0, mostProperty),
        nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

bool XScreen::hasProperty(xcb_window_t window, const char *property) {
    const auto reply = owned(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, atom(property), XCB_ATOM_ANY, 0, 0),
        nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

xcb_window_t XScreen::topLevel(xcb_window_t window) {
    while (window != XCB_WINDOW_NONE) {
        const auto tree =
            owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
        if (!tree || tree->parent == screen_->root)
            break;
        window = tree->parent;
    }
    return window;
}

bool XScreen::isAbove(xcb_window_t upper, xcb_window_t lower) {
    upper = topLevel(upper);
    lower = topLevel(lower);
    const auto tree = owned(
        xcb_query_tree_reply(connection_, xcb_query_tree(connection_, screen_->root), nullptr));
    if (!tree)
        return false;
    const xcb_window_t *first = xcb_query_tree_children(tree.get());
    const xcb_window_t *last = first + xcb_query_tree_children_length(tree.get());
    return std::find(first, last, upper) > std::find(first, last, lower);
}

int XScreen::outlineRectangles(xcb_window_t window) {
    const auto extents = owned(xcb_shape_query_extents_reply(
        connection_, xcb_shape_query_extents(connection_, window), nullptr));
    if (!extents || !extents->bounding_shaped)
        return 0;
    const auto reply = owned(xcb_shape_get_rectangles_reply(
        connection_, xcb_shape_get_rectangles(connection_, window, XCB_SHAPE_SK_BOUNDING),
        nullptr));
    return reply ? xcb_shape_get_rectangles_rectangles_length(reply.get()) : 0;
}

void XScreen::askToClose(xcb_window_t window) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("WM_PROTOCOLS");
    event.data.data32[0] = atom("WM_DELETE_WINDOW");
    xcb_send_event(connection_, 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(connection_);
}

xcb_window_t XScreen::focused() {
    const auto reply =
        owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    return reply ? reply->focus : xcb_window_t{0};
}

} // namespace velmora::tests
