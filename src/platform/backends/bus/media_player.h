#pragma once

// The object of MPRIS 2: what a shell's media card, its keys and other programs see and ask.

#include "platform/backends/bus/application_id.h"
#include "platform/backends/bus/connection.h"
#include "platform/backends/bus/object_table.h"
#include "platform/contracts/remote.h"

#include <string>

namespace velmora::platform::bus {

class MediaPlayer {
public:
    explicit MediaPlayer(Connection &connection) : connection_(connection) {}

    void setControlled(RemoteControlled &player) { player_ = &player; }
    RemoteControlled *controlled() const { return player_; }
    // Puts the object on a connection that has just been made.
    void attach();
    // Tells of what is not as it was.
    void publish(const NowPlaying &now, std::string artUri);
    void seeked(std::int32_t ms);
    const NowPlaying &now() const { return now_; }

private:
    struct Calls; // what the library calls; it finds the object in its last argument

    void makeTables();
    int appendMetadata(sd_bus_message *reply) const;
    void tellChanges(const NowPlaying &before, bool artChanged);

    Connection &connection_;
    RemoteControlled *player_ = nullptr;
    NowPlaying now_;
    std::string artUri_;
    bool missed_ = false; // changes that a bus that did not read was not told of
    std::unique_ptr<ObjectTable> rootTable_;
    std::unique_ptr<ObjectTable> playerTable_;
    const sd_bus_vtable *root_ = nullptr;
    const sd_bus_vtable *playerEntries_ = nullptr;
};

} // namespace velmora::platform::bus
