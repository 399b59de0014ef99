#include "network/check_Network.h"

#include "platform/contracts/internet.h"

namespace velmora {

bool check_Network(platform::Internet &internet) {
    std::uint32_t flags = 0; // the kind of connection: nobody asks
    return internet.InternetGetConnectedState(flags) > 0;
}

} // namespace velmora
