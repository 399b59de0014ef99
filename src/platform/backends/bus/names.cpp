#include "platform/backends/bus/names.h"

#include "platform/backends/bus/media_player.h"

#include <unistd.h>

#include <cstring>

namespace velmora::platform::bus {

namespace {

constexpr const char *mediaName = "org.mpris.MediaPlayer2.velmora";
constexpr std::uint32_t inQueue = 2; // what the bus answers

} // namespace

std::string nameOfConfiguration(const std::string &programConfig) {
    std::uint64_t hash = 0xCBF29CE484222325U; // FNV-1a
    for (const char c : programConfig)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    std::string name = std::string(applicationId) + ".home";
    for (int shift = 60; shift >= 0; shift -= 4)
        name.push_back("0123456789abcdef"[hash >> static_cast<unsigned>(shift) & 15U]);
    return name;
}

Names::Names(Connection &connection, std::string ofConfiguration)
    : connection_(connection), ofConfiguration_(std::move(ofConfiguration)),
      instance_(std::string(mediaName) + ".instance" + std::to_string(getpid())) {}

// Whoever must wait for a name gets it when its owner ends: a player that starts anew has it then.
void Names::request() {
    const BusLibrary &library = connection_.library();
    sd_bus *bus = connection_.bus();
    isInstance_ = false;
    library.matchSignalAsync(bus, nullptr, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                             "org.freedesktop.DBus", "NameAcquired", onAcquired, ignore, this);
    library.requestNameAsync(bus, nullptr, mediaName, SD_BUS_NAME_QUEUE, onRequested, this);
    for (const char *name : {ofConfiguration_.c_str(), applicationId})
        library.requestNameAsync(bus, nullptr, name, SD_BUS_NAME_QUEUE, ignore, this);
}

int Names::onRequested(sd_bus_message *answer, void *names, sd_bus_error * /*error*/) {
    auto &self = *static_cast<Names *>(names);
    const BusLibrary &library = self.connection_.library();
    std::uint32_t result = 0;
    if (library.isMethodError(answer, nullptr) > 0 || library.read(answer, "u", &result) < 0 ||
        result != inQueue)
        return 1;
    self.isInstance_ = true;
    library.requestNameAsync(self.connection_.bus(), nullptr, self.instance_.c_str(), 0, ignore,
                             &self);
    return 1;
}

int Names::onAcquired(sd_bus_message *message, void *names, sd_bus_error * /*error*/) {
    auto &self = *static_cast<Names *>(names);
    const BusLibrary &library = self.connection_.library();
    const char *name = nullptr;
    if (self.isInstance_ && library.read(message, "s", &name) > 0 &&
        std::strcmp(name, mediaName) == 0) {
        self.isInstance_ = false;
        library.releaseNameAsync(self.connection_.bus(), nullptr, self.instance_.c_str(), ignore,
                                 &self);
    }
    return 0;
}

int Names::ignore(sd_bus_message * /*message*/, void * /*names*/, sd_bus_error * /*error*/) {
    return 1;
}

} // namespace velmora::platform::bus
