#include "platform/backends/curl/exchange.h"

#include "platform/backends/curl/addresses.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace velmora::platform::http {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr long mostRedirects = 10;
// A server may close a connection behind any response, and the next request then dies under way;
// the library sends it anew, but only five times in all.
constexpr int redirectsThatReuse = 5;
// What lies ready at most, beyond what a read asks for.
constexpr std::size_t readAhead = std::size_t{128} << 10;

// The environment's own exceptions from the proxy, and this machine.
std::string hostsWithoutProxy() {
    for (const char *name : {"no_proxy", "NO_PROXY"}) {
        const char *value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            const std::string own(value);
            return own == "*" ? own : own + ",localhost,127.0.0.0/8,::1";
        }
    }
    return "localhost,127.0.0.0/8,::1";
}

} // namespace

Exchange::Exchange(const CurlLibrary &curl, CURLSH *jar, const InternetLimits &limits,
                   Request request)
    : curl_(curl), limits_(limits), request_(std::move(request)),
      withoutProxy_(hostsWithoutProxy()), easy_(curl.curl_easy_init()),
      multi_(curl.curl_multi_init()) {
    if (easy_ == nullptr || multi_ == nullptr) {
        result_ = CURLE_FAILED_INIT;
        ending_ = Ending::Failed;
        return;
    }
    curl_.curl_easy_setopt(easy_, CURLOPT_SHARE, jar);
    curl_.curl_easy_setopt(easy_, CURLOPT_COOKIEFILE, "");
    prepare();
    prepareBody();
}

Exchange::~Exchange() {
    if (easy_ != nullptr && multi_ != nullptr)
        curl_.curl_multi_remove_handle(multi_, easy_);
    if (easy_ != nullptr)
        curl_.curl_easy_cleanup(easy_);
    if (multi_ != nullptr)
        curl_.curl_multi_cleanup(multi_);
    curl_.curl_slist_free_all(headers_);
}

template <typename Value> void Exchange::must(CURLoption option, Value value) {
    const CURLcode code = curl_.curl_easy_setopt(easy_, option, value);
    if (code != CURLE_OK && result_ == CURLE_OK) {
        result_ = code;
        ending_ = Ending::Failed;
    }
}

void Exchange::trustKey(const std::string &pin) {
    if (easy_ == nullptr)
        return;
    // The library takes any other text for a file's name.
    const bool isKey = pin.starts_with("sha256//");
    must(CURLOPT_PINNEDPUBLICKEY, isKey ? pin.c_str() : "sha256//none");
    if (!isKey)
        return;
    must(CURLOPT_SSL_VERIFYPEER, 0L);
    must(CURLOPT_SSL_VERIFYHOST, 0L);
}

void Exchange::prepare() {
    const auto set = [&](CURLoption option, auto value) {
        curl_.curl_easy_setopt(easy_, option, value);
    };
    set(CURLOPT_URL, request_.url.c_str());
    set(CURLOPT_PATH_AS_IS, 1L);
    // A library that does not know one of these is too old to be trusted with a redirect.
    must(CURLOPT_PROTOCOLS_STR, "http,https");
    // What began encrypted stays so; what became so stays so by `mayGoTo`.
    must(CURLOPT_REDIR_PROTOCOLS_STR, partsOf(request_.url).secure ? "https" : "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, mostRedirects);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_NOPROXY, withoutProxy_.c_str());
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // a name look-up that hangs is left to itself
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connect.count()));
    // With twice as much a server that sends straight from its file came to 5 MB in a second.
    set(CURLOPT_BUFFERSIZE, 65536L);
    if (request_.oldProtocol)
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_0));
    if (!request_.agent.empty())
        set(CURLOPT_USERAGENT, request_.agent.c_str());
    if (request_.undoGzip)
        set(CURLOPT_ACCEPT_ENCODING, "gzip, deflate");
    if (!request_.user.empty()) {
        set(CURLOPT_USERNAME, request_.user.c_str());
        set(CURLOPT_PASSWORD, request_.password.c_str());
    }
    for (const std::string &header : request_.headers)
        headers_ = curl_.curl_slist_append(headers_, header.c_str());
    set(CURLOPT_HTTPHEADER, headers_);
    set(CURLOPT_HEADERFUNCTION, &Exchange::onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &Exchange::onBody);
    set(CURLOPT_WRITEDATA, this);
    must(CURLOPT_PREREQFUNCTION, &Exchange::onConnected);
    set(CURLOPT_PREREQDATA, this);
}

void Exchange::prepareBody() {
    const std::string &verb = request_.verb;
    if (verb == "POST" || !request_.body.empty()) {
        curl_.curl_easy_setopt(easy_, CURLOPT_POST, 1L);
        curl_.curl_easy_setopt(easy_, CURLOPT_POSTFIELDSIZE_LARGE,
                               static_cast<curl_off_t>(request_.body.size()));
        curl_.curl_easy_setopt(easy_, CURLOPT_POSTFIELDS, request_.body.c_str());
    }
    // POST and GET are not named, so that a redirect may turn one into the other.
    if (verb == "HEAD")
        curl_.curl_easy_setopt(easy_, CURLOPT_NOBODY, 1L);
    else if (!verb.empty() && verb != "POST" && (verb != "GET" || !request_.body.empty()))
        curl_.curl_easy_setopt(easy_, CURLOPT_CUSTOMREQUEST, verb.c_str());
}

std::size_t Exchange::onHeader(char *bytes, std::size_t size, std::size_t count, void *self) {
    auto &exchange = *static_cast<Exchange *>(self);
    const std::string_view line(bytes, size * count);
    if (!exchange.header_.take(line))
        return 0; // ends the transfer
    if (exchange.header_.leadsElsewhere()) {
        exchange.stageUntil_ = steady_clock::now() + exchange.limits_.connect;
        if (++exchange.redirects_ == redirectsThatReuse)
            exchange.curl_.curl_easy_setopt(exchange.easy_, CURLOPT_FORBID_REUSE, 1L);
    }
    return line.size();
}

std::size_t Exchange::onBody(char *bytes, std::size_t size, std::size_t count, void *self) {
    auto &exchange = *static_cast<Exchange *>(self);
    const std::size_t length = size * count;
    const std::size_t most = exchange.request_.mostBytes;
    if (most != 0 && length > most - exchange.received_) {
        exchange.ending_ = Ending::TooLong;
        return 0;
    }
    // A packed body is never held back: undoing gzip could not stop half way. It has a limit.
    if (!exchange.request_.undoGzip && exchange.ready() >= std::max(exchange.wanted_, readAhead)) {
        exchange.paused_ = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    exchange.buffer_.erase(0, std::exchange(exchange.taken_, 0));
    exchange.buffer_.append(bytes, length);
    exchange.received_ += length;
    return length;
}

// Nothing goes on in the open behind an encrypted part of the way. A server elsewhere sends nobody
// to the services of this machine, which believe whoever is here.
bool Exchange::mayGoTo(std::string_view peer) {
    const char *url = nullptr;
    curl_.curl_easy_getinfo(easy_, CURLINFO_EFFECTIVE_URL, &url);
    const bool secure = partsOf(url == nullptr ? "" : url).secure;
    if (std::exchange(secured_, secured_ || secure) && !secure)
        return false;
    const bool outside = !isLoopback(peer);
    if (!std::exchange(connected_, true))
        beganOutside_ = outside;
    return outside || !beganOutside_;
}

int Exchange::onConnected(void *self, char *peer, char *, int, int) {
    auto &exchange = *static_cast<Exchange *>(self);
    if (!exchange.mayGoTo(peer == nullptr ? "" : peer))
        return CURL_PREREQFUNC_ABORT;
    exchange.stageUntil_ = steady_clock::now() + exchange.limits_.stall;
    return CURL_PREREQFUNC_OK;
}

// Lets the library do what can be done, waiting for something to do until the time given.
void Exchange::step(Time until) {
    int running = 0;
    const std::size_t before = received_;
    const bool headerBefore = header_.complete();
    curl_.curl_multi_perform(multi_, &running);
    noteResult();
    if (ending_ != Ending::Running || received_ != before || header_.complete() != headerBefore)
        return;
    const auto left = std::chrono::duration_cast<milliseconds>(until - steady_clock::now()).count();
    if (left < 0) {
        ending_ = Ending::TimedOut;
        return;
    }
    constexpr decltype(left) longestWait = 1000;
    curl_.curl_multi_poll(multi_, nullptr, 0, static_cast<int>(std::min(left + 1, longestWait)),
                          nullptr);
}

void Exchange::noteResult() {
    int left = 0;
    while (const CURLMsg *message = curl_.curl_multi_info_read(multi_, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        result_ = message->data.result;
        if (ending_ != Ending::Running)
            continue; // a callback knows better
        if (result_ == CURLE_OK)
            ending_ = Ending::Whole;
        else if (result_ == CURLE_OPERATION_TIMEDOUT)
            ending_ = Ending::TimedOut;
        else
            ending_ = header_.complete() ? Ending::Cut : Ending::Failed;
    }
}

bool Exchange::start(Time until) {
    if (ending_ != Ending::Running)
        return false;
    until_ = until;
    stageUntil_ = steady_clock::now() + limits_.connect;
    const Time headerUntil = std::min(until_, steady_clock::now() + limits_.header);
    curl_.curl_multi_add_handle(multi_, easy_);
    while (!header_.complete() && ending_ == Ending::Running)
        step(std::min(headerUntil, stageUntil_));
    lastRead_ = steady_clock::now();
    return header_.complete();
}

// Of what lies ready a kilobyte is taken at a time: no clock is asked for that.
void Exchange::read(std::size_t count, std::size_t leastInStall, std::string &bytes) {
    if (ready() < count && ending_ == Ending::Running)
        receive(count, leastInStall);
    bytes.assign(buffer_, taken_, count);
    taken_ += bytes.size();
    wasRead_ = true;
}

void Exchange::receive(std::size_t count, std::size_t leastInStall) {
    wanted_ = count;
    const milliseconds stall = request_.stall.count() > 0 ? request_.stall : limits_.stall;
    Time windowEnd = steady_clock::now() + stall;
    std::size_t windowFrom = received_;
    while (ready() < count && ending_ == Ending::Running) {
        if (std::exchange(paused_, false))
            curl_.curl_easy_pause(easy_, CURLPAUSE_CONT);
        if (received_ - windowFrom >= leastInStall) {
            windowFrom = received_;
            windowEnd = steady_clock::now() + stall;
        }
        step(std::min(until_, windowEnd));
    }
}

void Exchange::takeAhead() {
    constexpr milliseconds longest{20}; // windows wait for it
    const Time begin = steady_clock::now();
    if (std::exchange(wasRead_, false))
        lastRead_ = begin;
    if (ending_ != Ending::Running || begin - lastRead_ < limits_.unread)
        return;
    wanted_ = limits_.aheadBytes;
    if (ready() < wanted_ && std::exchange(paused_, false))
        curl_.curl_easy_pause(easy_, CURLPAUSE_CONT);
    std::size_t before = 0;
    do {
        before = received_;
        int running = 0;
        curl_.curl_multi_perform(multi_, &running);
        noteResult();
    } while (ending_ == Ending::Running && received_ != before &&
             steady_clock::now() - begin < longest);
}

std::string Exchange::failure() const {
    return curl_.curl_easy_strerror(ending_ == Ending::TimedOut ? CURLE_OPERATION_TIMEDOUT
                                                                : result_);
}

} // namespace velmora::platform::http
