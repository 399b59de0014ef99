#pragma once

// One question to the sound server: which devices are there. Asked over the server's own protocol
// where it listens on this machine, so that nothing has to be loaded for it; through libpulse, as
// sound is put out, where it is elsewhere or has to be looked for or started.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora::platform::sound {

struct SinkDescription {
    std::string name;        // the server's key
    std::string description; // UTF-8, for people
    int channels = 0;
    std::uint16_t vendorId = 0;
    std::uint16_t productId = 0;
};

struct ServerDescription {
    std::string version; // "16.1"
    std::string defaultSink;
    std::vector<SinkDescription> sinks;
};

struct ServerQuery {
    std::string server;  // an address as PULSE_SERVER has it; empty: the user's own
    std::string library; // file name of libpulse
    std::string cards;   // folder where the kernel lists the machine's sound cards
};

// The sinks that somebody can hear. No value: no server answered. A server that is being started is
// waited for some seconds, and a moment its devices where the machine has a card.
std::optional<ServerDescription> queryServer(const ServerQuery &query);

// The two ways, with every sink.
std::optional<ServerDescription> queryBySocket(const std::string &path,
                                               std::chrono::steady_clock::time_point until);
// The user's own server may be started.
std::optional<ServerDescription> queryByLibrary(const std::string &server,
                                                const std::string &pulseLibrary,
                                                std::chrono::steady_clock::time_point until);

// The identification numbers stand as hexadecimal text; anything else is 0.
std::uint16_t parseHexId(const std::string &text);

} // namespace velmora::platform::sound
