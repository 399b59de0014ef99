#pragma once

// Keeping the machine from one thing that it does for want of input, by whichever service of the
// session answers first: the portal, the session manager, or the older ones for screen and power.

#include "platform/backends/bus/connection.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace velmora::platform::bus {

class Inhibition {
public:
    enum class Of : std::uint8_t { Suspend, Idle };

    Inhibition(Connection &connection, Of of) : connection_(connection), of_(of) {}

    void want(bool wanted);
    // A connection was made, or was lost with all that was held by it.
    void opened() { askFrom(0); }
    void lost();

private:
    struct Service;
    // One service's way to be asked. The third is another one for each of the two.
    static const Service &service(std::size_t number, Of of);
    static constexpr std::size_t services = 3;

    enum class State : std::uint8_t { Free, Asking, Held };
    struct Watched {
        Inhibition *inhibition;
        std::size_t service;
    };

    void askFrom(std::size_t service);
    void answered(std::size_t service, sd_bus_message *answer, bool failed);
    void letGo();
    void watchOwner(std::size_t service);
    static int onOwner(sd_bus_message *message, void *watched, sd_bus_error *error);

    Connection &connection_;
    const Of of_;
    bool wanted_ = false;
    State state_ = State::Free;
    std::size_t by_ = 0; // the service that is asked or holds
    std::string handle_; // of the portal
    std::uint32_t cookie_ = 0;
    std::array<Watched, services> watched_{};
    std::array<bool, services> watches_{};
};

} // namespace velmora::platform::bus
