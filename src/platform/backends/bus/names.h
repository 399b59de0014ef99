#pragma once

// The names by which the player is found on the bus.
//
// The first player of a session has the plain names. One of another configuration that comes while
// it runs has a name of its own for media keys, until the first one ends. And each has a name that
// tells its configuration, for a second start of the same.

#include "platform/backends/bus/connection.h"

#include <string>

namespace velmora::platform::bus {

std::string nameOfConfiguration(const std::string &programConfig);

class Names {
public:
    Names(Connection &connection, std::string ofConfiguration);

    void request();

private:
    static int onRequested(sd_bus_message *answer, void *names, sd_bus_error *error);
    static int onAcquired(sd_bus_message *message, void *names, sd_bus_error *error);
    static int ignore(sd_bus_message *message, void *names, sd_bus_error *error);

    Connection &connection_;
    std::string ofConfiguration_;
    std::string instance_;
    bool isInstance_ = false;
};

} // namespace velmora::platform::bus
