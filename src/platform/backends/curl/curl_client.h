#pragma once

// The operations of the contract over exchanges.

#include "platform/backends/curl/addresses.h"
#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/curl/exchange.h"
#include "platform/backends/curl/ticker.h"
#include "platform/backends/linux/atomic_write.h"

#include <map>
#include <variant>

namespace velmora::platform::http {

class CurlClient : public Internet {
public:
    CurlClient(const AnsiText &ansi, std::function<std::vector<std::u16string>()> hosts,
               const InternetLimits &limits, FileCalls calls, std::function<PinnedServer()> pinned,
               WatchReadable watch)
        : ansi_(ansi), hosts_(std::move(hosts)), limits_(limits), calls_(std::move(calls)),
          pinned_(std::move(pinned)), watch_(std::move(watch)) {}
    ~CurlClient() override;

    std::int32_t InternetGetConnectedState(std::uint32_t &flags) override;
    InternetHandle InternetOpenA(std::u16string_view agent) override;
    InternetHandle InternetConnectA(InternetHandle session, std::u16string_view host,
                                    std::int32_t port, std::optional<std::u16string_view> user,
                                    std::u16string_view password, std::uint32_t service) override;
    InternetHandle HttpOpenRequestA(InternetHandle connection, std::u16string_view verb,
                                    std::u16string_view object, std::u16string_view version,
                                    std::uint32_t flags) override;
    bool HttpAddRequestHeadersA(InternetHandle request, std::u16string_view headers,
                                std::uint32_t modifiers) override;
    bool InternetSetCookieA(std::u16string_view url, std::u16string_view name,
                            std::u16string_view data) override;
    std::optional<std::u16string> InternetGetCookieA(std::u16string_view url,
                                                     std::u16string_view name,
                                                     std::size_t capacity) override;
    bool HttpSendRequestA(InternetHandle request, std::u16string_view body,
                          std::size_t bodyLength) override;
    std::optional<std::string> HttpQueryInfoA(InternetHandle request, std::uint32_t what,
                                              std::size_t capacity) override;
    bool InternetReadFile(InternetHandle request, std::size_t count, std::string &bytes) override;
    bool InternetCloseHandle(InternetHandle handle) override;
    bool DeleteUrlCacheEntryA(std::u16string_view url) override;
    void tryHostsAnew() override { unreached_.clear(); }
    std::int32_t URLDownloadToFileA(std::u16string_view url, std::u16string_view path,
                                    const FileLimits &limits) override;
    std::optional<std::string> XmlHttpGet(std::u16string_view url) override;
    std::u16string decodeCharset(std::string_view bytes, std::u16string_view charset) override;

private:
    struct Session {
        std::string agent;
    };
    struct Connection {
        std::string agent;
        std::string server; // "host" or "host:port"
        std::string user;
        std::string password;
        bool http = false;
    };
    struct OpenRequest {
        Request request;
        bool possible = false; // the address is one
        std::unique_ptr<Exchange> exchange;
    };
    struct Entry {
        InternetHandle parent = 0;
        std::variant<Session, Connection, OpenRequest> what;
    };

    bool load();
    InternetHandle keep(InternetHandle parent, std::variant<Session, Connection, OpenRequest> what);
    // Null when the handle is none of that kind.
    template <typename Kind> Kind *find(InternetHandle handle) {
        const auto found = handles_.find(handle);
        return found == handles_.end() ? nullptr : std::get_if<Kind>(&found->second.what);
    }
    std::vector<std::string> jarLines();
    // Starts an exchange, unless its host could not be reached a moment ago, and notes when it
    // cannot be reached now.
    bool start(Exchange &exchange, const std::string &url, Exchange::Time until);
    void takeAhead();
    bool receiveInto(Exchange &exchange, AtomicFile &file);

    const AnsiText &ansi_;
    std::function<std::vector<std::u16string>()> hosts_;
    InternetLimits limits_;
    FileCalls calls_;
    std::function<PinnedServer()> pinned_;
    WatchReadable watch_;
    std::unique_ptr<Ticker> ahead_;           // while there is an exchange to read
    std::shared_ptr<const CurlLibrary> curl_; // loaded at first use
    CURLSH *jar_ = nullptr;
    std::map<InternetHandle, Entry> handles_;
    InternetHandle lastHandle_ = 0;
    std::map<std::string, Exchange::Time> unreached_; // by scheme, host and port: until when
};

} // namespace velmora::platform::http
