#pragma once

// A place on the network to answer at.

#include "platform/backends/linux/descriptor.h"

#include <string>

namespace velmora::catalogue {

struct Listening {
    platform::Descriptor socket;
    int port = 0;
    bool loopback = false; // only this machine reaches it
    bool everywhere = false;
    bool six = false;
};

// `address` is a number of this machine (127.0.0.1, ::1, 0.0.0.0) or "localhost"; port 0 takes any
// free one. Raises std::runtime_error that says why.
Listening listenAt(const std::string &address, int port);

// How other machines reach this one: a number of it that is not loopback, else 127.0.0.1.
std::string addressOfThisMachine();

} // namespace velmora::catalogue
