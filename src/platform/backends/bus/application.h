#pragma once

// The object of org.freedesktop.Application: how a file manager, a launcher and a second start
// reach the player that runs.

#include "platform/backends/bus/connection.h"
#include "platform/backends/bus/object_table.h"
#include "platform/contracts/remote.h"

#include <memory>

namespace velmora::platform::bus {

inline constexpr const char *applicationPath = "/example/norvane/velmora";
inline constexpr const char *applicationInterface = "org.freedesktop.Application";

class Application {
public:
    explicit Application(Connection &connection) : connection_(connection) {}

    void setControlled(RemoteControlled &player) { player_ = &player; }
    void attach();

private:
    struct Calls;

    Connection &connection_;
    RemoteControlled *player_ = nullptr;
    std::unique_ptr<ObjectTable> table_;
    const sd_bus_vtable *entries_ = nullptr;
};

} // namespace velmora::platform::bus
