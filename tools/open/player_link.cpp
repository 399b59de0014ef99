#include "open/player_link.h"

#include "platform/backends/bus/application_id.h"
#include "platform/backends/bus/names.h"
#include "platform/backends/linux/home_folders.h"

#include <cstring>

namespace velmora::open_tool {

namespace {

constexpr std::uint64_t answerUs = 30'000'000;

bool isNobody(const char *name) {
    return std::strcmp(name, SD_BUS_ERROR_SERVICE_UNKNOWN) == 0 ||
           std::strcmp(name, SD_BUS_ERROR_NAME_HAS_NO_OWNER) == 0;
}

} // namespace

PlayerLink::PlayerLink() : library_(platform::bus::BusLibrary::load()) {
    if (library_ == nullptr || library_->openUser(&bus_) < 0)
        bus_ = nullptr;
}

PlayerLink::~PlayerLink() {
    if (bus_ != nullptr)
        library_->closeUnref(bus_);
}

bool PlayerLink::hasOwner(const std::string &name) {
    sd_bus_message *question = nullptr;
    sd_bus_message *answer = nullptr;
    int owned = 0;
    if (library_->newMethodCall(bus_, &question, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                "org.freedesktop.DBus", "NameHasOwner") >= 0 &&
        library_->append(question, "s", name.c_str()) >= 0 &&
        library_->call(bus_, question, answerUs, nullptr, &answer) >= 0)
        library_->read(answer, "b", &owned);
    library_->messageUnref(question);
    library_->messageUnref(answer);
    return owned != 0;
}

// One's own player, or else the first of the session, or else the one that the bus would start.
std::string PlayerLink::destination() {
    std::string own = platform::bus::nameOfConfiguration(platform::homeFolders().programConfig());
    return hasOwner(own) ? own : platform::bus::applicationId;
}

Reached PlayerLink::call(const Place &place, const char *member, const Fill &fill, const Read &read,
                         bool start) {
    sd_bus_message *question = nullptr;
    sd_bus_message *answer = nullptr;
    sd_bus_error error = {};
    const std::string to = destination();
    int done =
        library_->newMethodCall(bus_, &question, to.c_str(), place.path, place.interface, member);
    if (done >= 0)
        done = library_->setAutoStart(question, start ? 1 : 0);
    if (done >= 0 && fill)
        done = fill(*library_, question);
    if (done >= 0)
        done = library_->call(bus_, question, answerUs, &error, &answer);
    Reached reached = Reached::Done;
    if (done < 0) {
        const bool nobody = error.name != nullptr && isNobody(error.name);
        reached = nobody ? Reached::NotRunning : Reached::Failed;
        error_ = error.message != nullptr ? error.message : std::strerror(-done);
    } else if (read && read(*library_, answer) < 0) {
        reached = Reached::Failed;
        error_ = "the player answers in a way that is not understood";
    }
    library_->errorFree(&error);
    library_->messageUnref(question);
    library_->messageUnref(answer);
    return reached;
}

Reached PlayerLink::getWith(const char *name, const Read &read) {
    return call(
        {player.path, "org.freedesktop.DBus.Properties"}, "Get",
        [name](const auto &library, sd_bus_message *question) {
            return library.append(question, "ss", player.interface, name);
        },
        read, false);
}

Reached PlayerLink::getStatus(std::string &status) {
    return getWith(
        "PlaybackStatus",
        [&](const auto &library, sd_bus_message *answer) {
            const char *text = "";
            int done = library.enterContainer(answer, 'v', "s");
            if (done >= 0)
                done = library.read(answer, "s", &text);
            status = text;
            return done;
        });
}

Reached PlayerLink::getTrack(Track &track) {
    return getWith(
        "Metadata",
        [&](const auto &library, sd_bus_message *answer) {
            int done = library.enterContainer(answer, 'v', "a{sv}");
            if (done >= 0)
                done = library.enterContainer(answer, 'a', "{sv}");
            while (done >= 0 && (done = library.enterContainer(answer, 'e', "sv")) > 0) {
                const char *key = "";
                const char *text = nullptr;
                done = library.read(answer, "s", &key);
                if (done < 0)
                    break;
                if (std::strcmp(key, "xesam:title") == 0 || std::strcmp(key, "xesam:asText") == 0) {
                    done = library.read(answer, "v", "s", &text);
                    if (done >= 0)
                        (std::strcmp(key, "xesam:title") == 0 ? track.title : track.lyric) = text;
                } else if (std::strcmp(key, "xesam:artist") == 0) {
                    done = library.enterContainer(answer, 'v', "as");
                    if (done >= 0)
                        done = library.enterContainer(answer, 'a', "s");
                    while (done >= 0 && (done = library.read(answer, "s", &text)) > 0)
                        track.artist += (track.artist.empty() ? "" : ", ") + std::string(text);
                    if (done >= 0)
                        done = library.exitContainer(answer);
                    if (done >= 0)
                        done = library.exitContainer(answer);
                } else if (std::strcmp(key, "mpris:length") == 0) {
                    done = library.read(answer, "v", "x", &track.lengthUs);
                } else {
                    done = library.skip(answer, "v");
                }
                if (done >= 0)
                    done = library.exitContainer(answer);
            }
            return done;
        });
}

int PlayerLink::onSignal(sd_bus_message * /*message*/, void *link, sd_bus_error * /*error*/) {
    static_cast<PlayerLink *>(link)->changed_();
    return 0;
}

void PlayerLink::listen(std::function<void()> changed) {
    changed_ = std::move(changed);
    const auto installed = [](sd_bus_message *, void *, sd_bus_error *) { return 1; };
    const std::string to = destination();
    library_->matchSignalAsync(bus_, nullptr, to.c_str(), player.path, nullptr, nullptr, onSignal,
                               installed, this);
    const std::string gone = "type='signal',sender='org.freedesktop.DBus',"
                             "member='NameOwnerChanged',arg0='" +
                             to + "'";
    library_->addMatchAsync(bus_, nullptr, gone.c_str(), onSignal, installed, this);
}

bool PlayerLink::wait(std::optional<std::uint64_t> us) {
    int done = 0;
    bool any = false;
    while ((done = library_->process(bus_, nullptr)) > 0)
        any = true;
    if (done < 0 || library_->isOpen(bus_) <= 0)
        return false;
    return any || library_->wait(bus_, us.value_or(UINT64_MAX)) >= 0;
}

} // namespace velmora::open_tool
