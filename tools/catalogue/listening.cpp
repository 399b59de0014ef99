#include "catalogue/listening.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace velmora::catalogue {

namespace {

struct Place {
    sockaddr_storage bytes{};
    socklen_t size = 0;
};

Place placeOf(const std::string &address, int port, Listening &kind) {
    const std::string number = address == "localhost" ? "127.0.0.1" : address;
    Place place;
    auto &four = reinterpret_cast<sockaddr_in &>(place.bytes);
    auto &six = reinterpret_cast<sockaddr_in6 &>(place.bytes);
    if (inet_pton(AF_INET, number.c_str(), &four.sin_addr) == 1) {
        place.size = sizeof four;
        four.sin_family = AF_INET;
        four.sin_port = htons(static_cast<std::uint16_t>(port));
        kind.loopback = (ntohl(four.sin_addr.s_addr) >> 24) == 127;
        kind.everywhere = four.sin_addr.s_addr == htonl(INADDR_ANY);
    } else if (inet_pton(AF_INET6, number.c_str(), &six.sin6_addr) == 1) {
        place.size = sizeof six;
        six.sin6_family = AF_INET6;
        six.sin6_port = htons(static_cast<std::uint16_t>(port));
        kind.six = true;
        kind.loopback = IN6_IS_ADDR_LOOPBACK(&six.sin6_addr);
        kind.everywhere = IN6_IS_ADDR_UNSPECIFIED(&six.sin6_addr);
    } else {
        throw std::runtime_error(address + " is no address of a machine");
    }
    return place;
}

int portOf(const platform::Descriptor &socket) {
    sockaddr_storage bytes{};
    socklen_t size = sizeof bytes;
    ::getsockname(socket.number(), reinterpret_cast<sockaddr *>(&bytes), &size);
    return ntohs(bytes.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6 &>(bytes).sin6_port
                                             : reinterpret_cast<sockaddr_in &>(bytes).sin_port);
}

} // namespace

Listening listenAt(const std::string &address, int port) {
    Listening result;
    const Place place = placeOf(address, port, result);
    constexpr int waiting = 128;
    const int yes = 1;
    result.socket =
        platform::Descriptor(::socket(place.bytes.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int number = result.socket.number();
    if (!result.socket || ::setsockopt(number, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) != 0 ||
        ::bind(number, reinterpret_cast<const sockaddr *>(&place.bytes), place.size) != 0 ||
        ::listen(number, waiting) != 0)
        throw std::runtime_error("cannot listen at " + address + " port " + std::to_string(port) +
                                 ": " + std::generic_category().message(errno));
    result.port = portOf(result.socket);
    return result;
}

std::string addressOfThisMachine() {
    ifaddrs *list = nullptr;
    std::string found = "127.0.0.1";
    if (::getifaddrs(&list) != 0)
        return found;
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs *)> owner(list, &::freeifaddrs);
    for (const ifaddrs *one = list; one != nullptr; one = one->ifa_next) {
        const bool usable = one->ifa_addr != nullptr && one->ifa_addr->sa_family == AF_INET &&
                            (one->ifa_flags & IFF_UP) != 0 && (one->ifa_flags & IFF_LOOPBACK) == 0;
        char text[INET_ADDRSTRLEN] = "";
        if (usable && inet_ntop(AF_INET, &reinterpret_cast<sockaddr_in *>(one->ifa_addr)->sin_addr,
                                text, sizeof text) != nullptr)
            return text;
    }
    return found;
}

} // namespace velmora::catalogue
