#include "loopback_server.h"

#include <netinet/in.h>
#include <poll.h>
#include <strings.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace velmora::testing {

namespace {

int boundSocket(LoopbackServer::Address address, int &port) {
    const bool six = address == LoopbackServer::Address::V6;
    const int number = ::socket(six ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_storage place{};
    socklen_t size = 0;
    if (six) {
        auto &own = reinterpret_cast<sockaddr_in6 &>(place);
        own.sin6_family = AF_INET6;
        own.sin6_addr = in6addr_loopback;
        size = sizeof own;
    } else {
        auto &own = reinterpret_cast<sockaddr_in &>(place);
        own.sin_family = AF_INET;
        own.sin_port = htons(static_cast<std::uint16_t>(port));
        own.sin_addr.s_addr =
            htonl(address == LoopbackServer::Address::V4 ? INADDR_LOOPBACK : INADDR_ANY);
        size = sizeof own;
    }
    auto *general = reinterpret_cast<sockaddr *>(&place);
    if (number < 0 || ::bind(number, general, size) != 0 ||
        ::getsockname(number, general, &size) != 0) {
        ::close(number);
        return -1;
    }
    // The port lies at the same place in both forms.
    port = ntohs(reinterpret_cast<sockaddr_in &>(place).sin_port);
    return number;
}

std::size_t bodyLength(std::string_view head) {
    constexpr std::string_view name = "\r\ncontent-length:";
    for (std::size_t i = 0; i + name.size() < head.size(); ++i)
        if (strncasecmp(head.data() + i, name.data(), name.size()) == 0)
            return std::strtoul(head.data() + i + name.size(), nullptr, 10);
    return 0;
}

} // namespace

bool Talk::ready(short events, int timeoutMs) {
    pollfd watched[] = {{socket_, events, 0}, {stop_, POLLIN, 0}};
    return ::poll(watched, 2, timeoutMs) > 0 && watched[1].revents == 0;
}

std::string Talk::receive() {
    std::string request;
    std::size_t wanted = std::string::npos;
    while (request.size() < wanted) {
        char bytes[4096];
        if (!ready(POLLIN, -1))
            return "";
        const ssize_t got = ::recv(socket_, bytes, sizeof bytes, 0);
        if (got <= 0)
            return "";
        request.append(bytes, static_cast<std::size_t>(got));
        const std::size_t end = request.find("\r\n\r\n");
        if (end != std::string::npos)
            wanted = end + 4 + bodyLength(std::string_view(request).substr(0, end + 2));
    }
    return request;
}

bool Talk::send(std::string_view bytes) {
    while (!bytes.empty()) {
        if (!ready(POLLOUT, -1))
            return false;
        const ssize_t put =
            ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (put <= 0)
            return false;
        sent_ += static_cast<std::uint64_t>(put);
        bytes.remove_prefix(static_cast<std::size_t>(put));
    }
    return true;
}

bool Talk::sendZeros(std::uint64_t count) {
    const std::string zeros(std::size_t{1} << 16, '\0');
    while (count > 0) {
        const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(count, zeros.size()));
        if (!send(std::string_view(zeros).substr(0, piece)))
            return false;
        count -= piece;
    }
    return true;
}

void Talk::wait(std::chrono::milliseconds time) {
    const auto until = std::chrono::steady_clock::now() + time;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                              until - std::chrono::steady_clock::now())
                              .count();
        char bytes[4096];
        if (left <= 0 || !ready(POLLIN, static_cast<int>(left)) ||
            ::recv(socket_, bytes, sizeof bytes, MSG_DONTWAIT) <= 0)
            return;
    }
}

void Talk::reset() {
    const linger none{1, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &none, sizeof none);
}

LoopbackServer::LoopbackServer(Script script, Address address, int port)
    : script_([this, script = std::move(script)](Talk &talk) {
          const std::string request = talk.receive();
          if (request.empty())
              return;
          {
              const std::lock_guard lock(mutex_);
              requests_.push_back(request);
          }
          script(talk, request);
      }),
      port_(port) {
    listenOn(address);
}

LoopbackServer::LoopbackServer(std::function<void(Talk &)> script,
                               std::chrono::milliseconds beforeAccept)
    : script_(std::move(script)), beforeAccept_(beforeAccept) {
    listenOn(Address::V4);
}

LoopbackServer::~LoopbackServer() {
    if (!works())
        return;
    const std::uint64_t one = 1;
    if (::write(stop_, &one, sizeof one) == sizeof one)
        thread_.join();
    ::close(listener_);
    ::close(stop_);
}

void LoopbackServer::listenOn(Address address) {
    constexpr int waiting = 16;
    listener_ = boundSocket(address, port_);
    if (listener_ < 0 || ::listen(listener_, waiting) != 0)
        return;
    stop_ = ::eventfd(0, EFD_CLOEXEC);
    thread_ = std::thread([this] { run(); });
}

void LoopbackServer::run() {
    for (;;) {
        pollfd watched[] = {{listener_, POLLIN, 0}, {stop_, POLLIN, 0}};
        if (::poll(watched, 2, -1) < 0 || watched[1].revents != 0)
            return;
        if (beforeAccept_.count() > 0)
            ::poll(watched + 1, 1, static_cast<int>(beforeAccept_.count()));
        const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            continue;
        ++connections_;
        Talk talk(socket, stop_, sent_);
        script_(talk);
        ::close(socket);
    }
}

std::u16string LoopbackServer::url(std::u16string_view path) const {
    const std::string begin = "http://127.0.0.1:" + std::to_string(port_);
    return std::u16string(begin.begin(), begin.end()) + std::u16string(path);
}

std::vector<std::string> LoopbackServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::string LoopbackServer::lastRequest() const {
    const std::lock_guard lock(mutex_);
    return requests_.empty() ? "" : requests_.back();
}

int LoopbackServer::closedPort() {
    int port = 0;
    ::close(boundSocket(Address::V4, port));
    return port;
}

std::string response(std::string_view body, std::string_view type, std::string_view status,
                     std::string_view moreFields) {
    std::string text = "HTTP/1.1 " + std::string(status) + "\r\nContent-Length: ";
    text += std::to_string(body.size()) + "\r\nContent-Type: " + std::string(type) + "\r\n";
    return text + std::string(moreFields) + "\r\n" + std::string(body);
}

} // namespace velmora::testing
