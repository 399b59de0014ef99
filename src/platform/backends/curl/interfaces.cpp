#include "platform/backends/curl/interfaces.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

namespace velmora::platform::http {

bool hasOutsideInterface() {
    ifaddrs *list = nullptr;
    if (getifaddrs(&list) != 0)
        return false;
    bool found = false;
    for (const ifaddrs *item = list; item != nullptr; item = item->ifa_next) {
        const bool up = (item->ifa_flags & IFF_UP) != 0 && (item->ifa_flags & IFF_LOOPBACK) == 0;
        const int family = item->ifa_addr != nullptr ? item->ifa_addr->sa_family : AF_UNSPEC;
        found = found || (up && (family == AF_INET || family == AF_INET6));
    }
    freeifaddrs(list);
    return found;
}

} // namespace velmora::platform::http
