#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace velmora::tests {

// Whether the system has the loopback address of IPv6, whatever our own servers make of it.
inline bool hasNewerLoopback() {
    std::ifstream addresses("/proc/net/if_inet6");
    const std::string all{std::istreambuf_iterator<char>(addresses), {}};
    return all.find("00000000000000000000000000000001") != std::string::npos;
}

} // namespace velmora::tests
