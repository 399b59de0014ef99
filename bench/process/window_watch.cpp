// Starts a program and tells when its windows were mapped and first painted, as the X server saw
// it.
//
//   window_watch [--windows N] [--seconds S] [--keep] -- COMMAND [ARGUMENT...]
//
// Run on a display without a window manager. Prints a line a window, "painted MS WIDTHxHEIGHT
// TITLE", and "pid PID" first. Ends when N windows (1 unless said) were painted or S seconds (10)
// have gone; the program is then killed unless --keep. MS counts from just before the fork.

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

struct Free {
    void operator()(void *p) const { std::free(p); }
};
template <typename T> using Reply = std::unique_ptr<T, Free>;

struct Options {
    int windows = 1;
    double seconds = 10;
    bool keep = false;
    char **command = nullptr;
};

bool parse(int count, char **arguments, Options &options) {
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        if (word == "--windows" && i + 1 < count) {
            options.windows = std::atoi(arguments[++i]);
        } else if (word == "--seconds" && i + 1 < count) {
            options.seconds = std::atof(arguments[++i]);
        } else if (word == "--keep") {
            options.keep = true;
        } else if (word == "--" && i + 1 < count) {
            options.command = arguments + i + 1;
            return true;
        } else {
            return false;
        }
    }
    return false;
}

std::string titleOf(xcb_connection_t *display, xcb_window_t window) {
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        display,
        xcb_get_property(display, 0, window, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, 64),
        nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

// A window the size of an icon or out of sight is a helper of the toolkit, not one that a user
// sees.
bool isReal(xcb_connection_t *display, xcb_window_t window, std::string &size) {
    const Reply<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(display, xcb_get_geometry(display, window), nullptr));
    if (!reply || reply->width < 40 || reply->height < 20)
        return false;
    size = std::to_string(reply->width) + "x" + std::to_string(reply->height);
    return true;
}

class Watch {
public:
    Watch(xcb_connection_t *display, Clock::time_point start, std::uint8_t damageEvent)
        : display_(display), start_(start), damageEvent_(damageEvent) {}

    int painted() const { return painted_; }

    void handle(const xcb_generic_event_t *event) {
        const int type = event->response_type & 0x7f;
        if (type == XCB_MAP_NOTIFY) {
            const auto *map = reinterpret_cast<const xcb_map_notify_event_t *>(event);
            const xcb_damage_damage_t damage = xcb_generate_id(display_);
            xcb_damage_create(display_, damage, map->window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
            xcb_flush(display_);
            damages_[map->window] = false;
        } else if (type == damageEvent_) {
            const auto *notify = reinterpret_cast<const xcb_damage_notify_event_t *>(event);
            report(notify->drawable);
        }
    }

private:
    void report(xcb_window_t window) {
        const auto found = damages_.find(window);
        std::string size;
        if (found == damages_.end() || found->second || !isReal(display_, window, size))
            return;
        found->second = true;
        ++painted_;
        const double ms = std::chrono::duration<double, std::milli>(Clock::now() - start_).count();
        std::printf("painted %.1f %s %s\n", ms, size.c_str(), titleOf(display_, window).c_str());
        std::fflush(stdout);
    }

    xcb_connection_t *display_;
    Clock::time_point start_;
    std::uint8_t damageEvent_;
    std::map<xcb_window_t, bool> damages_;
    int painted_ = 0;
};

pid_t start(char **command) {
    const pid_t pid = fork();
    if (pid == 0) {
        setpgid(0, 0);
        execvp(command[0], command);
        std::fprintf(stderr, "window_watch: %s: %s\n", command[0], std::strerror(errno));
        _exit(127);
    }
    return pid;
}

} // namespace

int main(int count, char **arguments) {
    Options options;
    if (!parse(count, arguments, options)) {
        std::fprintf(stderr,
                     "usage: window_watch [--windows N] [--seconds S] [--keep] -- COMMAND...\n");
        return 2;
    }
    xcb_connection_t *display = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(display) != 0) {
        std::fprintf(stderr, "window_watch: no display\n");
        return 2;
    }
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(display, &xcb_damage_id);
    if (extension == nullptr || extension->present == 0) {
        std::fprintf(stderr, "window_watch: the display has no damage extension\n");
        return 2;
    }
    const Reply<xcb_damage_query_version_reply_t> version(
        xcb_damage_query_version_reply(display, xcb_damage_query_version(display, 1, 1), nullptr));
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(display, root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(display);

    const auto begun = Clock::now();
    const pid_t pid = start(options.command);
    std::printf("pid %d\n", static_cast<int>(pid));
    Watch watch(display, begun,
                static_cast<std::uint8_t>(extension->first_event + XCB_DAMAGE_NOTIFY));
    const auto end = begun + std::chrono::duration_cast<Clock::duration>(
                                 std::chrono::duration<double>(options.seconds));
    while (watch.painted() < options.windows && Clock::now() < end) {
        const Reply<xcb_generic_event_t> event(xcb_poll_for_event(display));
        if (event) {
            watch.handle(event.get());
            continue;
        }
        pollfd waiting{xcb_get_file_descriptor(display), POLLIN, 0};
        poll(&waiting, 1, 20);
    }
    if (!options.keep) {
        kill(-pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    xcb_disconnect(display);
    return watch.painted() >= options.windows ? 0 : 1;
}
