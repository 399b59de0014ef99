#include "tunnel_proxy.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string_view>

namespace velmora::testing {

namespace {

sockaddr_in loopback(int port) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(static_cast<std::uint16_t>(port));
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return place;
}

int newSocket() { return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0); }

// One piece from one end to the other. False when there is no more.
bool carry(int from, int to) {
    char bytes[16384];
    const ssize_t got = ::recv(from, bytes, sizeof bytes, 0);
    return got > 0 && ::send(to, bytes, static_cast<std::size_t>(got), MSG_NOSIGNAL) == got;
}

} // namespace

TunnelProxy::TunnelProxy(int targetPort) : targetPort_(targetPort), listener_(newSocket()) {
    sockaddr_in place = loopback(0);
    socklen_t size = sizeof place;
    ::bind(listener_, reinterpret_cast<sockaddr *>(&place), size);
    ::getsockname(listener_, reinterpret_cast<sockaddr *>(&place), &size);
    port_ = ntohs(place.sin_port);
    ::listen(listener_, 4);
    stop_ = ::eventfd(0, EFD_CLOEXEC);
    thread_ = std::thread([this] { run(); });
}

TunnelProxy::~TunnelProxy() {
    const std::uint64_t one = 1;
    if (::write(stop_, &one, sizeof one) == sizeof one)
        thread_.join();
    ::close(listener_);
    ::close(stop_);
}

std::string TunnelProxy::url() const { return "http://127.0.0.1:" + std::to_string(port_); }

std::string TunnelProxy::asked() const {
    const std::lock_guard lock(mutex_);
    return asked_;
}

void TunnelProxy::run() {
    for (;;) {
        pollfd watched[] = {{listener_, POLLIN, 0}, {stop_, POLLIN, 0}};
        if (::poll(watched, 2, -1) < 0 || watched[1].revents != 0)
            return;
        const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0)
            lead(client);
        ::close(client);
    }
}

void TunnelProxy::lead(int client) {
    std::string head;
    char byte = 0;
    while (head.find("\r\n\r\n") == std::string::npos && ::recv(client, &byte, 1, 0) == 1)
        head += byte;
    {
        const std::lock_guard lock(mutex_);
        asked_ = head;
    }
    const int target = newSocket();
    const sockaddr_in place = loopback(targetPort_);
    constexpr std::string_view ready = "HTTP/1.1 200 Connection established\r\nVia: tunnel\r\n\r\n";
    if (::connect(target, reinterpret_cast<const sockaddr *>(&place), sizeof place) == 0 &&
        ::send(client, ready.data(), ready.size(), MSG_NOSIGNAL) > 0) {
        for (bool goesOn = true; goesOn;) {
            pollfd watched[] = {{client, POLLIN, 0}, {target, POLLIN, 0}, {stop_, POLLIN, 0}};
            goesOn = ::poll(watched, 3, -1) > 0 && watched[2].revents == 0 &&
                     (watched[0].revents == 0 || carry(client, target)) &&
                     (watched[1].revents == 0 || carry(target, client));
        }
    }
    ::close(target);
}

} // namespace velmora::testing
