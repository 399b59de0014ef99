#include "platform/backends/bus/inhibition.h"

#include "platform/backends/bus/media_player.h"

#include <cstring>
#include <string>

namespace velmora::platform::bus {

namespace {

constexpr const char *reason = "A track is playing";

// What the portal and the session manager take.
constexpr std::uint32_t suspendFlag = 4;
constexpr std::uint32_t idleFlag = 8;

enum class Way : std::uint8_t { Portal, SessionManager, Plain };

} // namespace

struct Inhibition::Service {
    Way way;
    const char *name;
    const char *path;
    const char *interface;
    const char *letGo;
};

const Inhibition::Service &Inhibition::service(std::size_t number, Of of) {
    static constexpr Service portal = {Way::Portal, "org.freedesktop.portal.Desktop",
                                       "/org/freedesktop/portal/desktop",
                                       "org.freedesktop.portal.Inhibit", "Close"};
    static constexpr Service manager = {Way::SessionManager, "org.gnome.SessionManager",
                                        "/org/gnome/SessionManager", "org.gnome.SessionManager",
                                        "Uninhibit"};
    static constexpr Service screen = {Way::Plain, "org.freedesktop.ScreenSaver",
                                       "/org/freedesktop/ScreenSaver",
                                       "org.freedesktop.ScreenSaver", "UnInhibit"};
    static constexpr Service power = {Way::Plain, "org.freedesktop.PowerManagement",
                                      "/org/freedesktop/PowerManagement/Inhibit",
                                      "org.freedesktop.PowerManagement.Inhibit", "UnInhibit"};
    switch (number) {
    case 0:
        return portal;
    case 1:
        return manager;
    default:
        return of == Of::Idle ? screen : power;
    }
}

void Inhibition::want(bool wanted) {
    wanted_ = wanted;
    if (wanted_)
        askFrom(0);
    else if (state_ == State::Held)
        letGo();
}

void Inhibition::lost() {
    state_ = State::Free;
    watches_.fill(false);
}

// One question at a time. What is answered when nobody wants it any more is let go at once.
void Inhibition::askFrom(std::size_t number) {
    if (!wanted_ || state_ != State::Free || !connection_.isOpen() || number >= services)
        return;
    const Service &asked = service(number, of_);
    state_ = State::Asking;
    by_ = number;
    const BusLibrary &library = connection_.library();
    const std::uint32_t flag = of_ == Of::Suspend ? suspendFlag : idleFlag;
    const bool sent = connection_.call(
        {asked.name, asked.path, asked.interface, "Inhibit"},
        [&](sd_bus_message *message) {
            switch (asked.way) {
            case Way::Portal:
                return library.append(message, "sua{sv}", "", flag, 1, "reason", "s", reason);
            case Way::SessionManager:
                return library.append(message, "susu", applicationId, 0U, reason, flag);
            case Way::Plain:
                break;
            }
            return library.append(message, "ss", applicationId, reason);
        },
        [this, number](sd_bus_message *answer, bool failed) { answered(number, answer, failed); });
    if (!sent)
        state_ = State::Free;
}

void Inhibition::answered(std::size_t number, sd_bus_message *answer, bool failed) {
    state_ = State::Free;
    const BusLibrary &library = connection_.library();
    if (!failed && service(number, of_).way == Way::Portal) {
        const char *handle = nullptr;
        failed = library.read(answer, "o", &handle) <= 0;
        handle_ = failed ? "" : handle;
    } else if (!failed) {
        failed = library.read(answer, "u", &cookie_) <= 0;
    }
    if (failed) {
        askFrom(number + 1);
        return;
    }
    state_ = State::Held;
    if (wanted_)
        watchOwner(number);
    else
        letGo();
}

void Inhibition::letGo() {
    state_ = State::Free;
    const Service &holder = service(by_, of_);
    const BusLibrary &library = connection_.library();
    const auto nobody = [](sd_bus_message *, bool) {};
    if (holder.way == Way::Portal) {
        connection_.call(
            {holder.name, handle_.c_str(), "org.freedesktop.portal.Request", "Close"},
            [](sd_bus_message *) { return 0; }, nobody);
        return;
    }
    connection_.call(
        {holder.name, holder.path, holder.interface, holder.letGo},
        [&](sd_bus_message *message) { return library.append(message, "u", cookie_); }, nobody);
}

// A service that ends forgets whom it promised something; one that comes back is asked again.
void Inhibition::watchOwner(std::size_t number) {
    if (watches_[number])
        return;
    watches_[number] = true;
    watched_[number] = {this, number};
    const std::string rule = std::string("type='signal',sender='org.freedesktop.DBus',"
                                         "interface='org.freedesktop.DBus',"
                                         "member='NameOwnerChanged',arg0='") +
                             service(number, of_).name + "'";
    connection_.library().addMatchAsync(
        connection_.bus(), nullptr, rule.c_str(), onOwner,
        [](sd_bus_message *, void *, sd_bus_error *) { return 1; }, &watched_[number]);
    connection_.flush();
}

int Inhibition::onOwner(sd_bus_message * /*message*/, void *watched, sd_bus_error * /*error*/) {
    const Watched &about = *static_cast<const Watched *>(watched);
    Inhibition &self = *about.inhibition;
    if (self.state_ == State::Held && self.by_ == about.service)
        self.state_ = State::Free;
    self.connection_.later([&self] { self.askFrom(0); });
    return 0;
}

} // namespace velmora::platform::bus
