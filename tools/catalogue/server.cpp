#include "catalogue/server.h"

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string_view>

namespace velmora::catalogue {

namespace {

constexpr unsigned mostConnections = 64;
constexpr unsigned idleSeconds = 60;

// What is known of a request before it is answered: its target as it came.
struct Asked {
    std::string target;
    bool headSeen = false;
};

void *noteTarget(void *, const char *target, MHD_Connection *) {
    return new Asked{target, false}; // given back in `forget`
}

void forget(void *, MHD_Connection *, void **asked, MHD_RequestTerminationCode) {
    delete static_cast<Asked *>(*asked);
    *asked = nullptr;
}

MHD_Response *responseOf(Answer &answer) {
    MHD_Response *response = nullptr;
    if (answer.file) {
        const auto size = static_cast<std::uint64_t>(answer.file->bytes);
        response = MHD_create_response_from_fd64(size, answer.file->file.number());
        if (response != nullptr)
            answer.file->file.release(); // the response closes it
    } else {
        response = MHD_create_response_from_buffer(answer.bytes.size(), answer.bytes.data(),
                                                   MHD_RESPMEM_MUST_COPY);
    }
    if (response != nullptr)
        MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, answer.type.c_str());
    return response;
}

Answer answerTo(Catalogue &catalogue, MHD_Connection *connection, const Asked &asked,
                std::string_view method) {
    if (method != MHD_HTTP_METHOD_GET && method != MHD_HTTP_METHOD_HEAD)
        return {MHD_HTTP_METHOD_NOT_ALLOWED, "text/plain", "Only reading is possible.\r\n",
                std::nullopt};
    const char *host =
        MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_HOST);
    try {
        return catalogue.answer(asked.target, host != nullptr ? host : "");
    } catch (const std::exception &) {
        return {MHD_HTTP_INTERNAL_SERVER_ERROR, "text/plain", "That went wrong.\r\n", std::nullopt};
    }
}

MHD_Result onRequest(void *catalogue, MHD_Connection *connection, const char *, const char *method,
                     const char *, const char *, std::size_t *uploadSize, void **state) {
    auto *asked = static_cast<Asked *>(*state);
    if (asked == nullptr)
        return MHD_NO;
    if (!std::exchange(asked->headSeen, true))
        return MHD_YES; // the answer is asked for once a body, if any, has come
    if (*uploadSize != 0) {
        *uploadSize = 0;
        return MHD_YES;
    }
    Answer answer = answerTo(*static_cast<Catalogue *>(catalogue), connection, *asked, method);
    MHD_Response *response = responseOf(answer);
    if (response == nullptr)
        return MHD_NO;
    const MHD_Result result = MHD_queue_response(connection, answer.status, response);
    MHD_destroy_response(response);
    return result;
}

struct SocketAddress {
    sockaddr_storage bytes{};
    bool six = false;
    bool loopback = false;
};

SocketAddress socketAddress(const std::string &address, int port) {
    SocketAddress result;
    auto &four = reinterpret_cast<sockaddr_in &>(result.bytes);
    auto &six = reinterpret_cast<sockaddr_in6 &>(result.bytes);
    if (inet_pton(AF_INET, address.c_str(), &four.sin_addr) == 1) {
        four.sin_family = AF_INET;
        four.sin_port = htons(static_cast<std::uint16_t>(port));
        result.loopback = (ntohl(four.sin_addr.s_addr) >> 24) == 127;
    } else if (inet_pton(AF_INET6, address.c_str(), &six.sin6_addr) == 1) {
        six.sin6_family = AF_INET6;
        six.sin6_port = htons(static_cast<std::uint16_t>(port));
        result.six = true;
        result.loopback = IN6_IS_ADDR_LOOPBACK(&six.sin6_addr);
    } else {
        throw std::runtime_error(address + " is no address of a machine");
    }
    return result;
}

} // namespace

struct Server::Daemon {
    MHD_Daemon *running = nullptr;
    ~Daemon() {
        if (running != nullptr)
            MHD_stop_daemon(running);
    }
};

Server::Server(Catalogue &catalogue, const std::string &address, int port)
    : address_(address), daemon_(std::make_unique<Daemon>()) {
    SocketAddress place = socketAddress(address, port);
    if (place.loopback)
        catalogue.acceptOnlyThisMachine();
    // Plain polling, not the library's own choice: with edges alone it waits for ever for room on a
    // connection that took a part of a file only because sending was interrupted.
    unsigned flags = MHD_USE_POLL_INTERNAL_THREAD | MHD_USE_ITC;
    if (place.six)
        flags |= MHD_USE_IPv6;
    daemon_->running = MHD_start_daemon(
        flags, static_cast<std::uint16_t>(port), nullptr, nullptr, &onRequest, &catalogue,
        MHD_OPTION_SOCK_ADDR, reinterpret_cast<sockaddr *>(&place.bytes),
        MHD_OPTION_URI_LOG_CALLBACK, &noteTarget, nullptr, MHD_OPTION_NOTIFY_COMPLETED, &forget,
        nullptr, MHD_OPTION_CONNECTION_LIMIT, mostConnections, MHD_OPTION_CONNECTION_TIMEOUT,
        idleSeconds, MHD_OPTION_END);
    const MHD_DaemonInfo *info =
        daemon_->running != nullptr
            ? MHD_get_daemon_info(daemon_->running, MHD_DAEMON_INFO_BIND_PORT)
            : nullptr;
    if (info == nullptr)
        throw std::runtime_error("cannot listen at " + address + " port " + std::to_string(port));
    port_ = info->port;
    catalogue.setOwnAddress(hostAndPort());
}

Server::~Server() = default;

std::string Server::hostAndPort() const {
    const bool six = address_.find(':') != std::string::npos;
    return (six ? "[" + address_ + "]" : address_) + ":" + std::to_string(port_);
}

} // namespace velmora::catalogue
