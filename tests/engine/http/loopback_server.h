#pragma once

// A server on the loopback interface that says and does exactly what a test tells it to.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace velmora::testing {

// One accepted connection. It is closed when the talk is over.
class Talk {
public:
    Talk(int socket, int stop, std::atomic<std::uint64_t> &sent)
        : socket_(socket), stop_(stop), sent_(sent) {}

    // The request: its head with the empty line, and as much of a body as Content-Length says.
    // Empty when the client went away.
    std::string receive();
    // False when the client went away or the server is to end.
    bool send(std::string_view bytes);
    // Sends zeros.
    bool sendZeros(std::uint64_t count);
    // Waits without a word; returns early when the client goes away or the server is to end.
    void wait(std::chrono::milliseconds time);
    void waitForClient() { wait(std::chrono::hours(1)); }
    // The connection will end with a reset.
    void reset();

private:
    bool ready(short events, int timeoutMs);

    int socket_;
    int stop_;
    std::atomic<std::uint64_t> &sent_;
};

class LoopbackServer {
public:
    using Script = std::function<void(Talk &, const std::string &request)>;
    enum class Address { V4, V6, Everywhere }; // the last: every address of this machine

    // Runs `script` for each connection, one after the other, after its request has been received.
    explicit LoopbackServer(Script script, Address address = Address::V4)
        : LoopbackServer(std::move(script), address, 0) {}
    // At a port that was free a moment ago.
    LoopbackServer(Script script, int port)
        : LoopbackServer(std::move(script), Address::V4, port) {}
    // The same without receiving anything first; `beforeAccept` is how long connections lie
    // unaccepted.
    LoopbackServer(std::function<void(Talk &)> script, std::chrono::milliseconds beforeAccept);
    ~LoopbackServer();

    bool works() const { return listener_ >= 0; }
    int port() const { return port_; }
    // "http://127.0.0.1:port" and the path behind it.
    std::u16string url(std::u16string_view path) const;
    std::vector<std::string> requests() const;
    std::string lastRequest() const;
    std::uint64_t bytesSent() const { return sent_; }
    int connections() const { return connections_; }

    // A port of this machine on which nobody listens.
    static int closedPort();

private:
    LoopbackServer(Script script, Address address, int port);
    void listenOn(Address address);
    void run();

    std::function<void(Talk &)> script_;
    std::chrono::milliseconds beforeAccept_{0};
    int listener_ = -1;
    int stop_ = -1;
    int port_ = 0;
    mutable std::mutex mutex_;
    std::vector<std::string> requests_;
    std::atomic<std::uint64_t> sent_{0};
    std::atomic<int> connections_{0};
    std::thread thread_;
};

// "HTTP/1.1 200 OK" with a length, a type and a body.
std::string response(std::string_view body, std::string_view type = "text/html",
                     std::string_view status = "200 OK", std::string_view moreFields = "");

} // namespace velmora::testing
