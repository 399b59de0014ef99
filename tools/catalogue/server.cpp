#include "catalogue/server.h"

#include "catalogue/listening.h"
#include "catalogue/ranges.h"
#include "catalogue/slow_requests.h"

#include <microhttpd.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <vector>

namespace velmora::catalogue {

namespace {

constexpr unsigned mostConnections = 256;
// A household behind one address is not known; a browser opens six, a player two.
constexpr unsigned mostOfOneAddress = 24;
constexpr std::size_t pieceBytes = std::size_t{128} << 10;
constexpr std::chrono::seconds leaveLimit{5}; // usually a millisecond

// What is known of a request before it is answered: its target as it came.
struct Asked {
    std::string target;
    bool headSeen = false;
};

void *noteTarget(void *, const char *target, MHD_Connection *) {
    return new Asked{target, false}; // given back in `forget`
}

int socketOf(MHD_Connection *connection) {
    const MHD_ConnectionInfo *info =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
    return info != nullptr ? info->connect_fd : -1;
}

// A part of a file on its way to a connection.
struct Sent {
    platform::Descriptor file;
    std::int64_t first = 0;
};

// A file may get shorter meanwhile. Its end then ends the connection: whoever counts sees that
// something is missing.
ssize_t nextPiece(void *state, std::uint64_t at, char *bytes, std::size_t most) {
    const auto *sent = static_cast<Sent *>(state);
    ssize_t got = 0;
    do
        got = ::pread(sent->file.number(), bytes, most, sent->first + static_cast<off_t>(at));
    while (got < 0 && errno == EINTR);
    return got > 0 ? got : MHD_CONTENT_READER_END_WITH_ERROR;
}

void endSending(void *state) { delete static_cast<Sent *>(state); }

MHD_Response *responseOf(OpenFile &file, const Part &part) {
    auto sent = std::make_unique<Sent>(Sent{std::move(file.file), part.first});
    MHD_Response *response = MHD_create_response_from_callback(
        static_cast<std::uint64_t>(part.bytes), pieceBytes, &nextPiece, sent.get(), &endSending);
    if (response != nullptr)
        static_cast<void>(sent.release()); // given back in `endSending`
    return response;
}

MHD_Response *responseOf(const std::string &bytes) {
    return MHD_create_response_from_buffer(bytes.size(), const_cast<char *>(bytes.data()),
                                           MHD_RESPMEM_MUST_COPY);
}

std::string_view fieldOf(MHD_Connection *connection, const char *name) {
    const char *text = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
    return text != nullptr ? text : "";
}

// What a file is answered with: itself, a part of it, or that it is known already.
MHD_Response *fileResponse(MHD_Connection *connection, Answer &answer) {
    const std::string tag = tagOf(*answer.file);
    answer.fields.push_back({MHD_HTTP_HEADER_ETAG, tag});
    if (fieldOf(connection, MHD_HTTP_HEADER_IF_NONE_MATCH) == tag) {
        answer.status = MHD_HTTP_NOT_MODIFIED;
        return responseOf("");
    }
    const std::int64_t size = answer.file->bytes;
    const std::string_view condition = fieldOf(connection, MHD_HTTP_HEADER_IF_RANGE);
    const bool same = condition.empty() || condition == tag;
    const PartAsked asked =
        partOf(same ? fieldOf(connection, MHD_HTTP_HEADER_RANGE) : std::string_view(), size);
    answer.fields.push_back({MHD_HTTP_HEADER_ACCEPT_RANGES, "bytes"});
    if (!asked.whole) {
        answer.status = asked.possible ? MHD_HTTP_PARTIAL_CONTENT : MHD_HTTP_RANGE_NOT_SATISFIABLE;
        answer.fields.push_back({MHD_HTTP_HEADER_CONTENT_RANGE, contentRange(asked, size)});
    }
    return asked.possible ? responseOf(*answer.file, asked.part) : responseOf("");
}

// The player takes the first field in whose name it finds "Content-Type": that one stands in front
// of the field that forbids guessing.
void addFields(MHD_Response *response, const Answer &answer) {
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, answer.type.c_str());
    MHD_add_response_header(response, "X-Content-Type-Options", "nosniff");
    for (const auto &[name, value] : answer.fields)
        MHD_add_response_header(response, name.c_str(), value.c_str());
}

Answer answerTo(Catalogue &catalogue, MHD_Connection *connection, const Asked &asked,
                std::string_view method) {
    if (method != MHD_HTTP_METHOD_GET && method != MHD_HTTP_METHOD_HEAD)
        return plainAnswer(MHD_HTTP_METHOD_NOT_ALLOWED, "Only reading is possible.\r\n");
    try {
        return catalogue.answer(asked.target, fieldOf(connection, MHD_HTTP_HEADER_HOST),
                                fieldOf(connection, MHD_HTTP_HEADER_ACCEPT_LANGUAGE));
    } catch (const std::exception &) {
        return plainAnswer(MHD_HTTP_INTERNAL_SERVER_ERROR, "That went wrong.\r\n");
    }
}

} // namespace

struct Server::Daemon {
    Catalogue &catalogue;
    Patience patience;
    SlowRequests slow{patience.request, patience.nextRequest};
    MHD_Daemon *running = nullptr;

    ~Daemon();

    static MHD_Result onRequest(void *daemon, MHD_Connection *connection, const char *,
                                const char *method, const char *, const char *,
                                std::size_t *uploadSize, void **state);
    static void forget(void *daemon, MHD_Connection *connection, void **asked,
                       MHD_RequestTerminationCode);
    static void note(void *daemon, MHD_Connection *connection, void **,
                     MHD_ConnectionNotificationCode what);
    void start(Listening &place, const Identity &identity);
    unsigned connections() const;
};

// A request that the library refuses while it stops has no answer, and the library reads what that
// says all the same. So nobody is let in any more, and whoever is there goes, before it stops.
Server::Daemon::~Daemon() {
    if (running == nullptr)
        return;
    const platform::Descriptor place(MHD_quiesce_daemon(running)); // closed behind the stop
    const auto end = std::chrono::steady_clock::now() + leaveLimit;
    while (connections() != 0 && std::chrono::steady_clock::now() < end) {
        slow.endAll();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    MHD_stop_daemon(running);
}

unsigned Server::Daemon::connections() const {
    const MHD_DaemonInfo *info = MHD_get_daemon_info(running, MHD_DAEMON_INFO_CURRENT_CONNECTIONS);
    return info != nullptr ? info->num_connections : 0;
}

MHD_Result Server::Daemon::onRequest(void *daemon, MHD_Connection *connection, const char *,
                                     const char *method, const char *, const char *,
                                     std::size_t *uploadSize, void **state) {
    auto *asked = static_cast<Asked *>(*state);
    if (asked == nullptr)
        return MHD_NO;
    if (!std::exchange(asked->headSeen, true))
        return MHD_YES; // the answer is asked for once a body, if any, has come
    if (*uploadSize != 0) {
        *uploadSize = 0;
        return MHD_YES;
    }
    auto &self = *static_cast<Daemon *>(daemon);
    self.slow.asked(socketOf(connection));
    // A player in a browser that pauses takes nothing for a while.
    MHD_set_connection_option(connection, MHD_CONNECTION_OPTION_TIMEOUT, self.patience.bodySeconds);
    Answer answer = answerTo(self.catalogue, connection, *asked, method);
    MHD_Response *response =
        answer.file ? fileResponse(connection, answer) : responseOf(answer.bytes);
    if (response == nullptr)
        return MHD_NO;
    addFields(response, answer);
    const MHD_Result result = MHD_queue_response(connection, answer.status, response);
    MHD_destroy_response(response);
    return result;
}

void Server::Daemon::forget(void *daemon, MHD_Connection *connection, void **asked,
                            MHD_RequestTerminationCode) {
    static_cast<Daemon *>(daemon)->slow.answered(socketOf(connection));
    delete static_cast<Asked *>(*asked);
    *asked = nullptr;
}

void Server::Daemon::note(void *daemon, MHD_Connection *connection, void **,
                          MHD_ConnectionNotificationCode what) {
    SlowRequests &slow = static_cast<Daemon *>(daemon)->slow;
    if (what == MHD_CONNECTION_NOTIFY_STARTED)
        slow.opened(socketOf(connection));
    else
        slow.closing(socketOf(connection));
}

void Server::Daemon::start(Listening &place, const Identity &identity) {
    // Plain polling, not the library's own choice: with edges alone it waits for ever for room on a
    // connection that took a part of a file only because sending was interrupted.
    unsigned flags = MHD_USE_POLL_INTERNAL_THREAD | MHD_USE_ITC;
    std::vector<MHD_OptionItem> more;
    if (place.six)
        flags |= MHD_USE_IPv6;
    if (!place.loopback)
        more.push_back({MHD_OPTION_PER_IP_CONNECTION_LIMIT, mostOfOneAddress, nullptr});
    if (!identity.certificate.empty()) {
        flags |= MHD_USE_TLS;
        more.push_back(
            {MHD_OPTION_HTTPS_MEM_CERT, 0, const_cast<char *>(identity.certificate.c_str())});
        more.push_back({MHD_OPTION_HTTPS_MEM_KEY, 0, const_cast<char *>(identity.key.c_str())});
    }
    more.push_back({MHD_OPTION_END, 0, nullptr});
    running = MHD_start_daemon(
        flags, 0, nullptr, nullptr, &onRequest, this, MHD_OPTION_LISTEN_SOCKET,
        place.socket.number(), MHD_OPTION_URI_LOG_CALLBACK, &noteTarget, nullptr,
        MHD_OPTION_NOTIFY_COMPLETED, &forget, this, MHD_OPTION_NOTIFY_CONNECTION, &note, this,
        MHD_OPTION_CONNECTION_LIMIT, mostConnections, MHD_OPTION_CONNECTION_TIMEOUT,
        static_cast<unsigned>(patience.nextRequest.count() / 1000 + 1), MHD_OPTION_ARRAY,
        more.data(), MHD_OPTION_END);
    if (running == nullptr)
        throw std::runtime_error(identity.certificate.empty()
                                     ? "the server does not start"
                                     : "the server does not start with this certificate and key");
    place.socket.release(); // the library closes it
}

Server::Server(Catalogue &catalogue, const std::string &address, int port, const Patience &patience,
               const Identity &identity)
    : scheme_(identity.certificate.empty() ? "http://" : "https://"),
      daemon_(new Daemon{catalogue, patience}) {
    Listening place = listenAt(address, port);
    port_ = place.port;
    const auto withPort = [&](const std::string &host) {
        const bool six = host.find(':') != std::string::npos;
        return (six ? "[" + host + "]" : host) + ":" + std::to_string(port_);
    };
    hereAndPort_ = withPort(place.everywhere ? (place.six ? "::1" : "127.0.0.1") : address);
    othersAndPort_ = place.everywhere ? withPort(addressOfThisMachine()) : hereAndPort_;
    // All that the answering thread reads is said before there is one.
    if (place.loopback)
        catalogue.acceptOnlyThisMachine();
    catalogue.setOwnAddress(scheme_, othersAndPort_);
    daemon_->start(place, identity);
}

Server::~Server() = default;

} // namespace velmora::catalogue
