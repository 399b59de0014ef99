#include "xvfb_server.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::tests {

namespace {

template <typename Reply> auto own(Reply *reply) {
    return std::unique_ptr<Reply, decltype(&std::free)>(reply, &std::free);
}

// The server writes its display number and a line end once it accepts clients.
std::string readDisplay(int pipe) {
    std::string number;
    pollfd ready{pipe, POLLIN, 0};
    char digit = 0;
    while (poll(&ready, 1, 60'000) > 0 && read(pipe, &digit, 1) == 1) {
        if (digit == '\n')
            return ":" + number;
        number += digit;
    }
    return {};
}

} // namespace

XvfbServer::XvfbServer(const XvfbServerOptions &options) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    const std::string screen =
        std::to_string(options.width) + "x" + std::to_string(options.height) + "x24";
    std::vector<std::string> arguments{"Xvfb", "-displayfd", "3",   "-screen", "0",
                                       screen, "-nolisten",  "tcp", "-noreset"};
    arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
    std::vector<char *> argv;
    for (std::string &argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int null = open("/dev/null", O_RDWR);
        dup2(null, 0);
        dup2(null, 1);
        dup2(null, 2);
        // The pipe may be number 3 already, and then is closed at the exec.
        if (ends[1] == 3)
            fcntl(3, F_SETFD, 0);
        else
            dup2(ends[1], 3);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    close(ends[1]);
    display_ = readDisplay(ends[0]);
    close(ends[0]);
}

XvfbServer::~XvfbServer() {
    if (pid_ <= 0)
        return;
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
}

void XvfbServer::exportToEnvironment() const {
    setenv("DISPLAY", display_.c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("XAUTHORITY");
}

XClient::XClient(const std::string &display)
    : connection_(xcb_connect(display.empty() ? nullptr : display.c_str(), nullptr)) {}

XClient::~XClient() { xcb_disconnect(connection_); }

bool XClient::connected() const { return xcb_connection_has_error(connection_) == 0; }

const xcb_screen_t *XClient::screen() const {
    return xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
}

xcb_atom_t XClient::atom(const char *name) const {
    const auto request =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const auto reply = own(xcb_intern_atom_reply(connection_, request, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

namespace {

xcb_visualid_t alphaVisual(const xcb_screen_t *screen) {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0;
         xcb_depth_next(&depth))
        if (depth.data->depth == 32 && xcb_depth_visuals_length(depth.data) > 0)
            return xcb_depth_visuals(depth.data)[0].visual_id;
    return 0;
}

} // namespace

xcb_window_t XClient::makeWindow(int x, int y, int width, int height, bool withAlpha,
                                 std::uint32_t events) {
    const xcb_visualid_t visual = withAlpha ? alphaVisual(screen()) : screen()->root_visual;
    xcb_colormap_t colours = screen()->default_colormap;
    if (withAlpha) {
        colours = xcb_generate_id(connection_);
        xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colours, screen()->root, visual);
    }
    const xcb_window_t window = xcb_generate_id(connection_);
    const std::array<std::uint32_t, 4> values{0xFF808080, 0, events, colours};
    xcb_create_window(connection_, withAlpha ? 32 : screen()->root_depth, window, screen()->root,
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values.data());
    xcb_map_window(connection_, window);
    geometry(window); // a round trip: the window exists for every other client now
    return window;
}

void XClient::destroyWindow(xcb_window_t window) {
    xcb_destroy_window(connection_, window);
    geometry(screen()->root);
}

XClient::Geometry XClient::geometry(xcb_window_t window) const {
    const auto place =
        own(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    const auto state = own(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    if (!place || !state)
        return {};
    return {place->x, place->y, place->width, place->height,
            state->map_state == XCB_MAP_STATE_VIEWABLE};
}

std::vector<xcb_window_t> XClient::childrenOf(xcb_window_t window) const {
    const auto tree =
        own(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
    if (!tree)
        return {};
    const xcb_window_t *first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

std::string XClient::title(xcb_window_t window) const {
    const auto property = own(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, atom("_NET_WM_NAME"), XCB_ATOM_ANY, 0, 256),
        nullptr));
    if (!property)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(property.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(property.get()))};
}

void XClient::askToClose(xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("WM_PROTOCOLS");
    message.data.data32[0] = atom("WM_DELETE_WINDOW");
    xcb_send_event(connection_, 0, window, 0, reinterpret_cast<const char *>(&message));
    geometry(window);
}

WindowPixels XClient::look(xcb_window_t window) const {
    const Geometry place = geometry(window);
    if (!place.isMapped)
        return {};
    const auto image =
        own(xcb_get_image_reply(connection_,
                                xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0,
                                              static_cast<std::uint16_t>(place.width),
                                              static_cast<std::uint16_t>(place.height), ~0U),
                                nullptr));
    if (!image)
        return {};
    WindowPixels result{place.width, place.height, {}};
    const std::size_t count =
        static_cast<std::size_t>(place.width) * static_cast<std::size_t>(place.height);
    if (static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < count * 4)
        return {};
    result.pixels.resize(count);
    std::memcpy(result.pixels.data(), xcb_get_image_data(image.get()), count * 4);
    for (std::uint32_t &pixel : result.pixels)
        pixel &= 0x00FFFFFFU;
    return result;
}

} // namespace velmora::tests
