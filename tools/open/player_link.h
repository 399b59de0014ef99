#pragma once

// The way to the player of one's own configuration, or to any that runs, over the session bus.
// Each question waits for its answer.

#include "platform/backends/bus/bus_library.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velmora::open_tool {

enum class Reached : std::uint8_t { Done, NotRunning, Failed };

struct Track {
    std::string title;
    std::string artist;
    std::string lyric;
    std::int64_t lengthUs = 0;
};

class PlayerLink {
public:
    PlayerLink();
    ~PlayerLink();
    PlayerLink(const PlayerLink &) = delete;
    PlayerLink &operator=(const PlayerLink &) = delete;

    // Whether there is a bus to ask on.
    bool connected() const { return bus_ != nullptr; }
    // Why the last question failed.
    const std::string &error() const { return error_; }

    using Fill = std::function<int(const platform::bus::BusLibrary &, sd_bus_message *)>;
    using Read = std::function<int(const platform::bus::BusLibrary &, sd_bus_message *)>;
    struct Place {
        const char *path;
        const char *interface;
    };
    static constexpr Place application{"/example/norvane/velmora", "org.freedesktop.Application"};
    static constexpr Place media{"/org/mpris/MediaPlayer2", "org.mpris.MediaPlayer2"};
    static constexpr Place player{"/org/mpris/MediaPlayer2", "org.mpris.MediaPlayer2.Player"};

    // `start`: a player that does not run is started by the bus, where it can.
    Reached call(const Place &place, const char *member, const Fill &fill, const Read &read,
                 bool start);

    // A property of the player; `type` is what it holds, read into `value`.
    template <typename Value> Reached get(const char *name, const char *type, Value &value) {
        return getWith(
            name,
            [&](const auto &library, sd_bus_message *answer) {
                if (const int entered = library.enterContainer(answer, 'v', type); entered < 0)
                    return entered;
                return library.read(answer, type, &value);
            });
    }
    Reached getStatus(std::string &status);
    Reached getTrack(Track &track);

    // Has `changed` called for whatever the player tells, and when it ends.
    void listen(std::function<void()> changed);
    // Waits for that, at most so long (microseconds; absent: for ever). False once the bus is gone.
    bool wait(std::optional<std::uint64_t> us);

private:
    Reached getWith(const char *name, const Read &read);
    std::string destination();
    bool hasOwner(const std::string &name);
    static int onSignal(sd_bus_message *message, void *link, sd_bus_error *error);

    std::shared_ptr<const platform::bus::BusLibrary> library_;
    sd_bus *bus_ = nullptr;
    std::string error_;
    std::function<void()> changed_;
};

} // namespace velmora::open_tool
