#pragma once

// The network in memory: a transport that follows a script.
//
// Requests through handles are answered in the order of `respond`; pages and downloads by their
// address. What was scripted and never asked for fails the test.

#include "platform/contracts/ansi.h"
#include "platform/contracts/internet.h"

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace velmora::fakes {

class FakeFiles;

class FakeInternet : public platform::Internet {
public:
    // `ansi` counts and encodes as the system would; downloads land on `files`.
    explicit FakeInternet(const platform::AnsiText &ansi, FakeFiles &files)
        : ansi_(ansi), files_(files) {}
    ~FakeInternet() override;

    // --- answers ---
    struct Response {
        std::string header; // the lines as received, each ended by NUL
        std::string body;
        std::optional<std::size_t> resetAt; // the connection is cut behind this byte
    };
    // A status line and the two usual fields in front of a body. An empty length or type is not
    // sent.
    static Response answer(std::string body, const std::string &type = "audio/mpeg",
                           const std::string &status = "HTTP/1.1 200 OK");
    // The answer of the next request that reaches a server. One without an answer fails to send.
    void respond(Response response) { responses_.push_back(std::move(response)); }

    void forgetResponses() { responses_.clear(); }

    // The page at an address, each time it is asked for; several for one address come one by one
    // and the last one stays. An address nobody set raises, as a refused connection does.
    void setPage(std::u16string_view url, std::string bytes);
    // The next fetch of this page raises / does not complete its answer, in its turn among several.
    void addRaise(std::u16string_view url);
    void addIncomplete(std::u16string_view url);
    // What lies at an address for a whole download; an address nobody set answers
    // INET_E_RESOURCE_NOT_FOUND.
    void setDownload(std::u16string_view url, std::string bytes);

    std::int32_t connectedState = 1;

    // --- failures ---
    // The next such call fails in its way: a handle 0, false, absent, another number, or a raise
    // where nothing else is told ("XmlHttpGet", "decodeCharset", "DeleteUrlCacheEntryA"). Never
    // met: fails the test.
    void failNext(const std::string &operation) { failures_.insert(operation); }

    // --- what was asked ---
    // Each call with its arguments, in order: "InternetOpenA agent", "InternetConnectA 1 host 80 -
    // HTTP/1.0 3" ("-": no user). Tests may add their own lines.
    std::vector<std::u16string> log;
    std::size_t openHandles() const { return open_.size(); }
    // The converted bodies that went out.
    std::vector<std::string> sentBodies;
    std::map<std::u16string, std::u16string> cookies; // by name
    int triedAnew = 0;                                // how often the person asked
    // Runs inside each read and each page fetch, before the answer.
    std::function<void()> meanwhile;
    // Runs inside each whole download, ahead of its end.
    std::function<void()> duringDownload;

    // --- the contract ---
    std::int32_t InternetGetConnectedState(std::uint32_t &flags) override;
    platform::InternetHandle InternetOpenA(std::u16string_view agent) override;
    platform::InternetHandle InternetConnectA(platform::InternetHandle session,
                                              std::u16string_view host, std::int32_t port,
                                              std::optional<std::u16string_view> user,
                                              std::u16string_view password,
                                              std::uint32_t service) override;
    platform::InternetHandle HttpOpenRequestA(platform::InternetHandle connection,
                                              std::u16string_view verb, std::u16string_view object,
                                              std::u16string_view version,
                                              std::uint32_t flags) override;
    bool HttpAddRequestHeadersA(platform::InternetHandle request, std::u16string_view headers,
                                std::uint32_t modifiers) override;
    bool InternetSetCookieA(std::u16string_view url, std::u16string_view name,
                            std::u16string_view data) override;
    std::optional<std::u16string> InternetGetCookieA(std::u16string_view url,
                                                     std::u16string_view name,
                                                     std::size_t capacity) override;
    bool HttpSendRequestA(platform::InternetHandle request, std::u16string_view body,
                          std::size_t bodyLength) override;
    std::optional<std::string> HttpQueryInfoA(platform::InternetHandle request, std::uint32_t what,
                                              std::size_t capacity) override;
    bool InternetReadFile(platform::InternetHandle request, std::size_t count,
                          std::string &bytes) override;
    bool InternetCloseHandle(platform::InternetHandle handle) override;
    bool DeleteUrlCacheEntryA(std::u16string_view url) override;
    void tryHostsAnew() override { ++triedAnew; }
    std::int32_t URLDownloadToFileA(std::u16string_view url, std::u16string_view path,
                                    const platform::FileLimits &limits) override;
    std::optional<std::string> XmlHttpGet(std::u16string_view url) override;
    std::u16string decodeCharset(std::string_view bytes, std::u16string_view charset) override;

private:
    enum class Fetch { Page, Raise, Incomplete };
    struct Page {
        Fetch how = Fetch::Page;
        std::string bytes;
    };
    struct Script {
        std::deque<Page> pages;
        bool asked = false;
    };
    struct Request {
        std::optional<Response> response;
        std::size_t at = 0;
    };

    void note(std::initializer_list<std::u16string_view> words);
    bool failing(const std::string &operation);
    platform::InternetHandle open();

    const platform::AnsiText &ansi_;
    FakeFiles &files_;
    std::deque<Response> responses_;
    std::map<std::u16string, Script> pages_;
    std::map<std::u16string, std::pair<std::string, bool>> downloads_;
    std::multiset<std::string> failures_;
    std::map<platform::InternetHandle, Request> open_;
    platform::InternetHandle last_ = 0;
};

} // namespace velmora::fakes
