#pragma once

// One request and its answer, driven only while somebody waits for a part of it.

#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/curl/curl_library.h"
#include "platform/backends/curl/header_block.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora::platform::http {

struct Request {
    std::string url;   // complete and escaped
    std::string verb;  // empty is GET
    std::string agent; // empty sends none
    std::string body;  // sent with POST always, with other verbs unless empty
    std::string user;  // empty sends no credentials
    std::string password;
    std::vector<std::string> headers;   // "Name: value"; "Name:" keeps one from being sent
    bool oldProtocol = false;           // HTTP/1.0
    bool undoGzip = false;              // asks for it, too
    std::size_t mostBytes = 0;          // of the body; more fails the exchange; 0 is no limit
    std::chrono::milliseconds stall{0}; // of the body, where it has a limit of its own
};

// How an exchange stands.
enum class Ending {
    Running, // not ended
    Whole,   // the body arrived whole
    Cut,     // the connection ended inside the body
    TimedOut,
    TooLong, // more than `mostBytes`
    Failed,
};

// Everything happens in `start`, `read` and `takeAhead`. Between them nothing is taken from the
// network, so that memory stays bounded however large the body is.
class Exchange {
public:
    using Time = std::chrono::steady_clock::time_point;

    // `jar` holds the cookies; both must outlive the exchange.
    Exchange(const CurlLibrary &curl, CURLSH *jar, const InternetLimits &limits, Request request);
    ~Exchange();
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;

    // Before `start`: the key that proves the server, as PinnedServer has it, in place of its
    // authority and its name. Wherever a redirect leads, it has to be shown there, too.
    void trustKey(const std::string &pin);

    // Sends and waits for the final response's header. `until` limits the whole exchange.
    bool start(Time until = Time::max());

    // The next bytes of the body, in place of what `bytes` held: `count`, or fewer once it has
    // ended. The body has stalled when `leastInStall` bytes (or what is wanted, if that is less)
    // take longer than the stall limit.
    void read(std::size_t count, std::size_t leastInStall, std::string &bytes);

    // Takes what lies ready of a body that nobody has read for a while, as far as the limit for
    // that goes, and waits for nothing.
    void takeAhead();

    Ending ending() const noexcept { return ending_; }
    const HeaderBlock &header() const noexcept { return header_; }
    // No connection to the address that was asked for came about.
    bool unreached() const noexcept { return !connected_ && ending_ != Ending::Running; }
    // Why it failed, in the library's words.
    std::string failure() const;

private:
    void prepare();
    void prepareBody();
    // Sets what the exchange must not go without.
    template <typename Value> void must(CURLoption option, Value value);
    void receive(std::size_t count, std::size_t leastInStall);
    void step(Time until);
    void noteResult();
    std::size_t ready() const noexcept { return buffer_.size() - taken_; }

    static std::size_t onHeader(char *bytes, std::size_t size, std::size_t count, void *self);
    static std::size_t onBody(char *bytes, std::size_t size, std::size_t count, void *self);
    static int onConnected(void *self, char *peer, char *, int, int);
    // Whether the next request of the exchange may go to this peer.
    bool mayGoTo(std::string_view peer);

    const CurlLibrary &curl_;
    InternetLimits limits_;
    Request request_;
    std::string withoutProxy_;
    curl_slist *headers_ = nullptr;
    CURL *easy_ = nullptr;
    CURLM *multi_ = nullptr;

    HeaderBlock header_;
    std::string buffer_;
    std::size_t taken_ = 0;  // of the buffer
    std::size_t wanted_ = 0; // by the present read
    std::size_t received_ = 0;
    int redirects_ = 0;
    Time lastRead_{};      // as far as `takeAhead` knows
    bool wasRead_ = false; // since it looked
    bool paused_ = false;
    bool connected_ = false;
    bool beganOutside_ = false;     // the first peer was another machine
    bool secured_ = false;          // a request of it was encrypted
    Time until_ = Time::max();      // of the whole exchange
    Time stageUntil_ = Time::max(); // of the connection, then of the header
    CURLcode result_ = CURLE_OK;
    Ending ending_ = Ending::Running;
};

} // namespace velmora::platform::http
