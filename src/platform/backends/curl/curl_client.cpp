#include "platform/backends/curl/curl_client.h"

#include "base/ascii.h"
#include "platform/backends/curl/charsets.h"
#include "platform/backends/curl/cookies.h"
#include "platform/backends/curl/interfaces.h"

#include <algorithm>
#include <ctime>

namespace velmora::platform {

std::unique_ptr<Internet> makeInternet(const AnsiText &ansi,
                                       std::function<std::vector<std::u16string>()> hosts,
                                       const InternetLimits &limits, FileCalls calls,
                                       std::function<PinnedServer()> pinned, WatchReadable watch) {
    return std::make_unique<http::CurlClient>(ansi, std::move(hosts), limits, std::move(calls),
                                              std::move(pinned), std::move(watch));
}

} // namespace velmora::platform

namespace velmora::platform::http {

CurlClient::~CurlClient() {
    handles_.clear();
    if (jar_ != nullptr)
        curl_->curl_share_cleanup(jar_);
}

bool CurlClient::load() {
    if (curl_ == nullptr)
        curl_ = CurlLibrary::load();
    if (curl_ != nullptr && jar_ == nullptr) {
        jar_ = curl_->curl_share_init();
        if (jar_ != nullptr)
            curl_->curl_share_setopt(jar_, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
    }
    return jar_ != nullptr;
}

namespace {

// "https://name:port" of an address, in one spelling.
std::string serverOf(std::string_view address) {
    const std::size_t scheme = address.find("://");
    if (scheme == std::string_view::npos)
        return {};
    std::string server = lowerAscii(address.substr(0, address.find_first_of("/?#", scheme + 3)));
    constexpr std::string_view usualPort = ":443";
    if (server.starts_with("https://") && server.ends_with(usualPort))
        server.resize(server.size() - usualPort.size());
    return server;
}

} // namespace

bool CurlClient::start(Exchange &exchange, const std::string &url, Exchange::Time until) {
    const std::string server = url.substr(0, url.find_first_of("/?#", url.find("://") + 3));
    const auto known = unreached_.find(server);
    if (known != unreached_.end() && std::chrono::steady_clock::now() < known->second)
        return false;
    if (pinned_) {
        const PinnedServer proved = pinned_();
        if (!proved.pin.empty() && serverOf(url).starts_with("https://") &&
            serverOf(url) == serverOf(ansi_.encode(proved.address)))
            exchange.trustKey(ansi_.encode(proved.pin));
    }
    const bool answered = exchange.start(until);
    if (exchange.unreached())
        unreached_[server] = std::chrono::steady_clock::now() + limits_.unreached;
    else
        unreached_.erase(server);
    return answered;
}

std::int32_t CurlClient::InternetGetConnectedState(std::uint32_t &flags) {
    flags = 0;
    if (hasOutsideInterface())
        return 1;
    const std::vector<std::u16string> hosts = hosts_();
    return std::any_of(hosts.begin(), hosts.end(), [&](const std::u16string &host) {
        return isLoopback(partsOf(ansi_.encode(host)).host);
    });
}

InternetHandle CurlClient::keep(InternetHandle parent,
                                std::variant<Session, Connection, OpenRequest> what) {
    ++lastHandle_;
    handles_.emplace(lastHandle_, Entry{parent, std::move(what)});
    return lastHandle_;
}

bool CurlClient::InternetCloseHandle(InternetHandle handle) {
    if (handles_.erase(handle) == 0)
        return false;
    // What hangs on it goes with it: a session its connections, a connection its requests.
    std::vector<InternetHandle> children;
    for (const auto &[number, entry] : handles_)
        if (entry.parent == handle)
            children.push_back(number);
    for (const InternetHandle child : children)
        InternetCloseHandle(child);
    const auto runs = [](const auto &one) {
        const auto *open = std::get_if<OpenRequest>(&one.second.what);
        return open != nullptr && open->exchange != nullptr;
    };
    if (std::none_of(handles_.begin(), handles_.end(), runs))
        ahead_.reset();
    return true;
}

void CurlClient::takeAhead() {
    for (auto &[number, entry] : handles_)
        if (auto *open = std::get_if<OpenRequest>(&entry.what); open != nullptr && open->exchange)
            open->exchange->takeAhead();
}

bool CurlClient::InternetSetCookieA(std::u16string_view url, std::u16string_view name,
                                    std::u16string_view data) {
    if (!load())
        return false;
    const auto line = jarLine(
        partsOf(ansi_.encode(url)), ansi_.encode(name), ansi_.encode(data), std::time(nullptr),
        [&](const std::string &date) { return curl_->curl_getdate(date.c_str(), nullptr); });
    CURL *easy = line ? curl_->curl_easy_init() : nullptr;
    if (easy == nullptr)
        return false;
    curl_->curl_easy_setopt(easy, CURLOPT_SHARE, jar_);
    curl_->curl_easy_setopt(easy, CURLOPT_COOKIEFILE, "");
    const CURLcode result = curl_->curl_easy_setopt(easy, CURLOPT_COOKIELIST, line->c_str());
    curl_->curl_easy_cleanup(easy);
    return result == CURLE_OK;
}

std::vector<std::string> CurlClient::jarLines() {
    std::vector<std::string> lines;
    CURL *easy = curl_->curl_easy_init();
    if (easy == nullptr)
        return lines;
    curl_->curl_easy_setopt(easy, CURLOPT_SHARE, jar_);
    curl_->curl_easy_setopt(easy, CURLOPT_COOKIEFILE, "");
    curl_slist *list = nullptr;
    curl_->curl_easy_getinfo(easy, CURLINFO_COOKIELIST, &list);
    for (const curl_slist *item = list; item != nullptr; item = item->next)
        lines.emplace_back(item->data);
    curl_->curl_slist_free_all(list);
    curl_->curl_easy_cleanup(easy);
    return lines;
}

std::optional<std::u16string> CurlClient::InternetGetCookieA(std::u16string_view url,
                                                             std::u16string_view name,
                                                             std::size_t capacity) {
    if (!load())
        return std::nullopt;
    const std::string cookies =
        cookiesFor(jarLines(), partsOf(ansi_.encode(url)), ansi_.encode(name), std::time(nullptr));
    if (cookies.empty() || cookies.size() > capacity)
        return std::nullopt;
    return ansi_.decode(cookies);
}

bool CurlClient::DeleteUrlCacheEntryA(std::u16string_view) { return false; }

std::u16string CurlClient::decodeCharset(std::string_view bytes, std::u16string_view charset) {
    return decodeLabelled(bytes, charset);
}

} // namespace velmora::platform::http
