#include "open/requests.h"

#include "open/lyric_clock.h"
#include "open/player_link.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <utility>

namespace velmora::open_tool {

namespace {

using platform::bus::BusLibrary;

void complain(const std::string &text) { std::fprintf(stderr, "velmora-open: %s\n", text.c_str()); }

int statusOf(Reached reached, const PlayerLink &link) {
    switch (reached) {
    case Reached::Done:
        return done;
    case Reached::NotRunning:
        complain("Velmora does not run");
        break;
    case Reached::Failed:
        complain(link.error());
        break;
    }
    return failed;
}

// What a launcher leaves for the window that is to come up.
int appendPlatformData(const BusLibrary &library, sd_bus_message *message) {
    struct Variable {
        const char *name;
        const char *key;
    };
    constexpr Variable variables[] = {{"DESKTOP_STARTUP_ID", "desktop-startup-id"},
                                      {"XDG_ACTIVATION_TOKEN", "activation-token"}};
    int appended = library.openContainer(message, 'a', "{sv}");
    for (const Variable &variable : variables) {
        const char *value = std::getenv(variable.name);
        if (appended >= 0 && value != nullptr)
            appended = library.append(message, "{sv}", variable.key, "s", value);
    }
    return appended < 0 ? appended : library.closeContainer(message);
}

// --- files ---------------------------------------------------------------------------------------

struct Files {
    std::vector<std::string> addresses;
    bool allThere = true;
};

Files addressesOf(const std::vector<std::string> &words) {
    std::array<char, PATH_MAX> folder{};
    if (getcwd(folder.data(), folder.size()) == nullptr)
        folder[0] = '\0';
    Files files;
    for (const std::string &word : words) {
        const auto address = addressOf(word, folder.data());
        struct ::stat info {};
        if (!address) {
            complain("'" + word + "' is no file");
            files.allThere = false;
        } else if (!word.starts_with("file:") && stat(word.c_str(), &info) != 0) {
            complain(word + ": " + std::strerror(errno));
            files.allThere = false;
        } else {
            files.addresses.push_back(*address);
        }
    }
    return files;
}

int appendAddresses(const BusLibrary &library, sd_bus_message *message,
                    const std::vector<std::string> &addresses) {
    std::vector<char *> list;
    list.reserve(addresses.size() + 1);
    for (const std::string &address : addresses)
        list.push_back(const_cast<char *>(address.c_str()));
    list.push_back(nullptr);
    return library.appendStrv(message, list.data());
}

int openFiles(PlayerLink &link, const Request &request) {
    const Files files = addressesOf(request.files);
    if (files.addresses.empty())
        return failed;
    const bool enqueue = request.action == Action::Enqueue;
    const Reached reached = link.call(
        PlayerLink::application, enqueue ? "ActivateAction" : "Open",
        [&](const BusLibrary &library, sd_bus_message *message) {
            if (!enqueue) {
                const int appended = appendAddresses(library, message, files.addresses);
                return appended < 0 ? appended : appendPlatformData(library, message);
            }
            int appended = library.append(message, "s", "enqueue");
            if (appended >= 0)
                appended = library.openContainer(message, 'a', "v");
            if (appended >= 0)
                appended = library.openContainer(message, 'v', "as");
            if (appended >= 0)
                appended = appendAddresses(library, message, files.addresses);
            if (appended >= 0)
                appended = library.closeContainer(message);
            if (appended >= 0)
                appended = library.closeContainer(message);
            return appended < 0 ? appended : appendPlatformData(library, message);
        },
        {}, true);
    const int status = statusOf(reached, link);
    return files.allThere ? status : failed;
}

// --- what the player is asked --------------------------------------------------------------------

int activate(PlayerLink &link) {
    return statusOf(link.call(PlayerLink::application, "Activate", appendPlatformData, {}, true),
                    link);
}

int command(PlayerLink &link, platform::RemoteCommand command) {
    using platform::RemoteCommand;
    struct Call {
        RemoteCommand command;
        PlayerLink::Place place;
        const char *member;
        bool start; // a player that does not run
    };
    constexpr Call calls[] = {
        {RemoteCommand::Play, PlayerLink::player, "Play", true},
        {RemoteCommand::Pause, PlayerLink::player, "Pause", false},
        {RemoteCommand::PlayPause, PlayerLink::player, "PlayPause", true},
        {RemoteCommand::Stop, PlayerLink::player, "Stop", false},
        {RemoteCommand::Next, PlayerLink::player, "Next", false},
        {RemoteCommand::Previous, PlayerLink::player, "Previous", false},
        {RemoteCommand::Quit, PlayerLink::media, "Quit", false},
    };
    for (const Call &call : calls)
        if (call.command == command)
            return statusOf(link.call(call.place, call.member, {}, {}, call.start), link);
    return activate(link);
}

int seek(PlayerLink &link, const Amount &amount) {
    std::int64_t position = 0;
    if (!amount.isStep)
        if (const Reached reached = link.get("Position", "x", position); reached != Reached::Done)
            return statusOf(reached, link);
    const std::int64_t offset = static_cast<std::int64_t>(amount.number * 1e6) - position;
    return statusOf(link.call(
                        PlayerLink::player, "Seek",
                        [offset](const BusLibrary &library, sd_bus_message *message) {
                            return library.append(message, "x", offset);
                        },
                        {}, false),
                    link);
}

int setVolume(PlayerLink &link, const Amount &amount) {
    double volume = 0;
    if (amount.isStep)
        if (const Reached reached = link.get("Volume", "d", volume); reached != Reached::Done)
            return statusOf(reached, link);
    volume = std::clamp(volume + amount.number / 100, 0.0, 1.0);
    return statusOf(link.call(
                        {PlayerLink::player.path, "org.freedesktop.DBus.Properties"}, "Set",
                        [volume](const BusLibrary &library, sd_bus_message *message) {
                            return library.append(message, "ssv", PlayerLink::player.interface,
                                                  "Volume", "d", volume);
                        },
                        {}, false),
                    link);
}

std::string clockText(std::int64_t us) {
    const std::int64_t seconds = us / 1'000'000;
    std::array<char, 32> text{};
    if (seconds >= 3600)
        std::snprintf(text.data(), text.size(), "%d:%02d:%02d", static_cast<int>(seconds / 3600),
                      static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
    else
        std::snprintf(text.data(), text.size(), "%d:%02d", static_cast<int>(seconds / 60),
                      static_cast<int>(seconds % 60));
    return text.data();
}

// What plays, and where.
struct Playing {
    std::string status;
    Track track;
    std::int64_t positionUs = 0;
};

Reached askWhatPlays(PlayerLink &link, Playing &playing) {
    Reached reached = link.getStatus(playing.status);
    if (reached == Reached::Done)
        reached = link.getTrack(playing.track);
    if (reached == Reached::Done)
        reached = link.get("Position", "x", playing.positionUs);
    return reached;
}

int showStatus(PlayerLink &link) {
    Playing now;
    if (const Reached reached = askWhatPlays(link, now); reached != Reached::Done)
        return statusOf(reached, link);
    const Track &track = now.track;
    std::printf("%s\n", now.status.c_str());
    if (!track.title.empty())
        std::printf("%s%s%s\n", track.artist.c_str(), track.artist.empty() ? "" : " - ",
                    track.title.c_str());
    if (track.lengthUs > 0)
        std::printf("%s / %s\n", clockText(now.positionUs).c_str(),
                    clockText(track.lengthUs).c_str());
    return done;
}

// --- the lyric, line by line ---------------------------------------------------------------------

// Prints the current line whenever it is another one. The player is asked when it tells of a change
// alone; between, the line's own times say when to look.
class LyricFollower {
public:
    explicit LyricFollower(PlayerLink &link) : link_(link) {}

    int run() {
        link_.listen([this] { changed_ = true; });
        for (;;) {
            if (std::exchange(changed_, false))
                if (const Reached reached = ask(); reached != Reached::Done)
                    return asked_ && reached == Reached::NotRunning ? done
                                                                    : statusOf(reached, link_);
            const std::int64_t now = positionMs();
            show(lyric_.lineAt(now));
            const auto next = playing_ ? lyric_.nextAfter(now) : std::nullopt;
            const auto wait =
                next ? std::optional<std::uint64_t>((*next - now) * 1000 + 1000) : std::nullopt;
            if (!link_.wait(wait))
                return done;
        }
    }

private:
    static std::int64_t steadyMs() {
        struct ::timespec now {};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
    }

    std::int64_t positionMs() const { return playing_ ? atMs_ + steadyMs() - askedMs_ : atMs_; }

    Reached ask() {
        Playing now;
        if (const Reached reached = askWhatPlays(link_, now); reached != Reached::Done)
            return reached;
        asked_ = true;
        lyric_ = LyricClock(now.track.lyric);
        playing_ = now.status == "Playing";
        atMs_ = now.positionUs / 1000;
        askedMs_ = steadyMs();
        return Reached::Done;
    }

    void show(std::string_view line) {
        if (line == shown_)
            return;
        shown_ = line;
        std::printf("%s\n", shown_.c_str());
        std::fflush(stdout);
    }

    PlayerLink &link_;
    bool changed_ = true;
    bool asked_ = false;
    bool playing_ = false;
    std::int64_t atMs_ = 0;
    std::int64_t askedMs_ = 0;
    LyricClock lyric_{""};
    std::string shown_;
};

} // namespace

int perform(const Request &request) {
    PlayerLink link;
    if (!link.connected()) {
        complain("there is no session bus, over which Velmora could be reached");
        return failed;
    }
    switch (request.action) {
    case Action::Open:
        return request.files.empty() ? activate(link) : openFiles(link, request);
    case Action::Enqueue:
        return openFiles(link, request);
    case Action::Command:
        return command(link, request.command);
    case Action::Seek:
        return seek(link, request.amount);
    case Action::Volume:
        return setVolume(link, request.amount);
    case Action::Status:
        return showStatus(link);
    case Action::Lyrics:
        return LyricFollower(link).run();
    case Action::Help:
    case Action::Version:
        break;
    }
    return done;
}

} // namespace velmora::open_tool
