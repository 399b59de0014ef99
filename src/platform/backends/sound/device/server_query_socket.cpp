#include "platform/backends/sound/device/server_query.h"
#include "platform/backends/sound/device/tag_struct.h"
#include "platform/backends/sound/readers/byte_source.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace velmora::platform::sound {

namespace {

using TimePoint = std::chrono::steady_clock::time_point;

// The oldest version that tells a device's properties: its messages have the fewest fields, and
// every later server speaks it.
constexpr std::uint32_t protocolVersion = 13;
constexpr std::uint32_t controlChannel = 0xFFFFFFFF;
constexpr std::size_t maxMessage = std::size_t{1} << 20;

enum Command : std::uint32_t {
    Reply = 2,
    Authenticate = 8,
    SetClientName = 9,
    GetServerInfo = 20,
    GetSinkInfoList = 22,
};

// The shared secret of the user's programs. A server on this machine goes by the user alone, so
// zeros serve where there is none.
std::array<std::uint8_t, 256> readCookie() {
    std::array<std::uint8_t, 256> cookie{};
    const char *home = std::getenv("HOME");
    const char *config = std::getenv("XDG_CONFIG_HOME");
    const char *own = std::getenv("PULSE_COOKIE");
    const std::string homePath = home ? home : "";
    for (const std::string &path :
         {std::string(own ? own : ""),
          (config && *config ? std::string(config) : homePath + "/.config") + "/pulse/cookie",
          homePath + "/.pulse-cookie"}) {
        if (path.empty())
            continue;
        if (const auto file = FileSource::open(path); file && file->read(0, cookie) == 256)
            break;
    }
    return cookie;
}

class Connection {
public:
    explicit Connection(TimePoint until) : until_(until) {}
    ~Connection() {
        if (fd_ >= 0)
            close(fd_);
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    bool open(const std::string &path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (path.empty() || path.size() >= sizeof address.sun_path)
            return false;
        std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
        fd_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        return fd_ >= 0 &&
               connect(fd_, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    }

    // Sends a request and waits for its answer; the answer's values. Empty: none, or an error.
    std::vector<std::uint8_t> ask(Command command, const TagWriter &arguments) {
        TagWriter head;
        head.number(command);
        head.number(++lastTag_);
        std::vector<std::uint8_t> message = head.message();
        message.insert(message.end(), arguments.message().begin(), arguments.message().end());
        if (!send(message))
            return {};
        for (;;) {
            message = receive();
            TagReader reader(message);
            const std::uint32_t kind = reader.number();
            const std::uint32_t tag = reader.number();
            if (!reader.good())
                return {};
            if (tag == lastTag_)
                return kind == Reply ? message : std::vector<std::uint8_t>{};
        }
    }

private:
    // Whether a call that did not succeed is to be made again, once there is something to do.
    bool isWorthAnother(short events) {
        while (errno == EAGAIN || errno == EINTR) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                until_ - std::chrono::steady_clock::now());
            if (left.count() <= 0)
                return false;
            pollfd event{fd_, events, 0};
            const int ready = poll(&event, 1, static_cast<int>(left.count()));
            if (ready >= 0)
                return ready > 0;
        }
        return false;
    }

    bool send(const std::vector<std::uint8_t> &message) {
        const std::array<std::uint32_t, 5> head = {static_cast<std::uint32_t>(message.size()),
                                                   controlChannel, 0, 0, 0};
        std::vector<std::uint8_t> packet;
        for (const std::uint32_t value : head)
            for (int shift = 24; shift >= 0; shift -= 8)
                packet.push_back(static_cast<std::uint8_t>(value >> shift));
        packet.insert(packet.end(), message.begin(), message.end());
        for (std::size_t done = 0; done < packet.size();) {
            const ssize_t sent = sendWithCredentials(packet.data() + done, packet.size() - done);
            if (sent > 0)
                done += static_cast<std::size_t>(sent);
            else if (!isWorthAnother(POLLOUT))
                return false;
        }
        return true;
    }

    // The server knows its user by the credentials that come with the bytes.
    ssize_t sendWithCredentials(std::uint8_t *data, std::size_t size) {
        iovec part{data, size};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr *header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_CREDENTIALS;
        header->cmsg_len = CMSG_LEN(sizeof(ucred));
        const ucred own{getpid(), getuid(), getgid()};
        std::memcpy(CMSG_DATA(header), &own, sizeof own);
        return sendmsg(fd_, &message, MSG_NOSIGNAL);
    }

    std::vector<std::uint8_t> receive() {
        std::vector<std::uint8_t> head(20);
        if (!receive(head))
            return {};
        const std::size_t size = std::size_t{head[0]} << 24 | std::size_t{head[1]} << 16 |
                                 std::size_t{head[2]} << 8 | head[3];
        if (size > maxMessage)
            return {};
        std::vector<std::uint8_t> message(size);
        return receive(message) ? message : std::vector<std::uint8_t>{};
    }

    bool receive(std::vector<std::uint8_t> &out) {
        for (std::size_t done = 0; done < out.size();) {
            const ssize_t got = recv(fd_, out.data() + done, out.size() - done, 0);
            if (got > 0)
                done += static_cast<std::size_t>(got);
            else if (got == 0 || !isWorthAnother(POLLIN))
                return false;
        }
        return true;
    }

    TimePoint until_;
    int fd_ = -1;
    std::uint32_t lastTag_ = 0;
};

TagReader valuesOf(const std::vector<std::uint8_t> &answer) {
    TagReader reader(answer);
    reader.number(); // reply
    reader.number(); // tag
    return reader;
}

SinkDescription readSink(TagReader &reader) {
    SinkDescription sink;
    reader.number(); // index
    sink.name = reader.text();
    sink.description = reader.text();
    sink.channels = reader.sampleSpecChannels();
    reader.channelMap();
    reader.number(); // module
    reader.channelVolumes();
    reader.flag();   // mute
    reader.number(); // monitor
    reader.text();   // its name
    reader.microseconds();
    reader.text();   // driver
    reader.number(); // flags
    auto properties = reader.properties();
    reader.microseconds();
    sink.vendorId = parseHexId(properties["device.vendor.id"]);
    sink.productId = parseHexId(properties["device.product.id"]);
    return sink;
}

} // namespace

std::optional<ServerDescription> queryBySocket(const std::string &path, TimePoint until) {
    Connection connection(until);
    if (!connection.open(path))
        return std::nullopt;
    TagWriter login;
    login.number(protocolVersion);
    login.bytes(readCookie());
    TagWriter name;
    name.properties({{"application.name", "Velmora"}});
    if (connection.ask(Authenticate, login).empty() || connection.ask(SetClientName, name).empty())
        return std::nullopt;
    const auto info = connection.ask(GetServerInfo, {});
    const auto list = connection.ask(GetSinkInfoList, {});
    ServerDescription server;
    TagReader reader = valuesOf(info);
    reader.text(); // the server's program
    server.version = reader.text();
    reader.text(); // user
    reader.text(); // host
    reader.sampleSpecChannels();
    server.defaultSink = reader.text();
    TagReader sinks = valuesOf(list);
    if (!reader.good() || !sinks.good())
        return std::nullopt;
    while (!sinks.atEnd()) {
        SinkDescription sink = readSink(sinks);
        if (!sinks.good())
            return std::nullopt;
        server.sinks.push_back(std::move(sink));
    }
    return server;
}

} // namespace velmora::platform::sound
