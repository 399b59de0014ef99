#include "tests/fakes/fake_internet.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "tests/fakes/fake_files.h"
#include "text/legacy_page.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velmora::fakes {

using platform::InternetHandle;

namespace {

constexpr std::int32_t resourceNotFound = static_cast<std::int32_t>(0x800C0005U);

} // namespace

FakeInternet::~FakeInternet() {
    for (const std::string &operation : failures_)
        ADD_FAILURE() << "scripted failure never met: " << operation;
    if (!responses_.empty())
        ADD_FAILURE() << responses_.size() << " scripted responses never asked for";
    for (const auto &[url, script] : pages_)
        if (!script.asked)
            ADD_FAILURE() << "scripted page never asked for: " << toUtf8(url);
    for (const auto &[url, file] : downloads_)
        if (!file.second)
            ADD_FAILURE() << "scripted download never asked for: " << toUtf8(url);
}

FakeInternet::Response FakeInternet::answer(std::string body, const std::string &type,
                                            const std::string &status) {
    Response response;
    response.header = status + '\0';
    response.header += "Content-Length: " + std::to_string(body.size()) + '\0';
    if (!type.empty())
        response.header += "Content-Type: " + type + '\0';
    response.body = std::move(body);
    return response;
}

void FakeInternet::setPage(std::u16string_view url, std::string bytes) {
    pages_[std::u16string(url)].pages.push_back({Fetch::Page, std::move(bytes)});
}

void FakeInternet::addRaise(std::u16string_view url) {
    pages_[std::u16string(url)].pages.push_back({Fetch::Raise, {}});
}

void FakeInternet::addIncomplete(std::u16string_view url) {
    pages_[std::u16string(url)].pages.push_back({Fetch::Incomplete, {}});
}

void FakeInternet::setDownload(std::u16string_view url, std::string bytes) {
    downloads_[std::u16string(url)] = {std::move(bytes), false};
}

void FakeInternet::note(std::initializer_list<std::u16string_view> words) {
    std::u16string line;
    for (const std::u16string_view word : words)
        line.append(line.empty() ? u"" : u" ").append(word);
    log.push_back(std::move(line));
}

bool FakeInternet::failing(const std::string &operation) {
    const auto scripted = failures_.find(operation);
    if (scripted == failures_.end())
        return false;
    failures_.erase(scripted);
    return true;
}

InternetHandle FakeInternet::open() {
    open_[++last_] = {};
    return last_;
}

std::int32_t FakeInternet::InternetGetConnectedState(std::uint32_t &flags) {
    note({u"InternetGetConnectedState"});
    flags = 0;
    return connectedState;
}

InternetHandle FakeInternet::InternetOpenA(std::u16string_view agent) {
    note({u"InternetOpenA", agent});
    return failing("InternetOpenA") ? 0 : open();
}

InternetHandle FakeInternet::InternetConnectA(InternetHandle session, std::u16string_view host,
                                              std::int32_t port,
                                              std::optional<std::u16string_view> user,
                                              std::u16string_view password, std::uint32_t service) {
    note({u"InternetConnectA", decimal(session), host, decimal(port), user.value_or(u"-"), password,
          decimal(service)});
    return failing("InternetConnectA") || host.empty() ? 0 : open();
}

InternetHandle FakeInternet::HttpOpenRequestA(InternetHandle connection, std::u16string_view verb,
                                              std::u16string_view object,
                                              std::u16string_view version, std::uint32_t flags) {
    note({u"HttpOpenRequestA", decimal(connection), verb, object, version, decimal(flags)});
    return failing("HttpOpenRequestA") ? 0 : open();
}

bool FakeInternet::HttpAddRequestHeadersA(InternetHandle request, std::u16string_view headers,
                                          std::uint32_t modifiers) {
    note({u"HttpAddRequestHeadersA", decimal(request), headers, decimal(modifiers)});
    return !failing("HttpAddRequestHeadersA");
}

bool FakeInternet::InternetSetCookieA(std::u16string_view url, std::u16string_view name,
                                      std::u16string_view data) {
    note({u"InternetSetCookieA", url, name, data});
    return !failing("InternetSetCookieA");
}

std::optional<std::u16string> FakeInternet::InternetGetCookieA(std::u16string_view url,
                                                               std::u16string_view name,
                                                               std::size_t capacity) {
    note({u"InternetGetCookieA", url, name, decimal(static_cast<std::int64_t>(capacity))});
    const auto found = cookies.find(std::u16string(name));
    if (failing("InternetGetCookieA") || found == cookies.end() ||
        ansi_.encode(found->second).size() > capacity)
        return std::nullopt;
    return found->second;
}

bool FakeInternet::HttpSendRequestA(InternetHandle request, std::u16string_view body,
                                    std::size_t bodyLength) {
    note({u"HttpSendRequestA", decimal(request), body,
          decimal(static_cast<std::int64_t>(bodyLength))});
    sentBodies.push_back(ansi_.encode(body).substr(0, bodyLength));
    const auto found = open_.find(request);
    if (failing("HttpSendRequestA") || found == open_.end() || responses_.empty())
        return false;
    found->second = {std::move(responses_.front()), 0};
    responses_.pop_front();
    return true;
}

std::optional<std::string> FakeInternet::HttpQueryInfoA(InternetHandle request, std::uint32_t what,
                                                        std::size_t capacity) {
    note({u"HttpQueryInfoA", decimal(request), decimal(what),
          decimal(static_cast<std::int64_t>(capacity))});
    const auto found = open_.find(request);
    if (failing("HttpQueryInfoA") || found == open_.end() || !found->second.response ||
        found->second.response->header.size() > capacity)
        return std::nullopt;
    return found->second.response->header;
}

bool FakeInternet::InternetReadFile(InternetHandle request, std::size_t count, std::string &bytes) {
    note({u"InternetReadFile", decimal(request), decimal(static_cast<std::int64_t>(count))});
    bytes.clear();
    if (meanwhile)
        meanwhile();
    const auto found = open_.find(request);
    if (failing("InternetReadFile") || found == open_.end() || !found->second.response)
        return false;
    auto &[response, at] = found->second;
    const std::size_t end =
        std::min(response->resetAt.value_or(response->body.size()), response->body.size());
    bytes = response->body.substr(at, std::min(count, end - at));
    at += bytes.size();
    return !response->resetAt || !bytes.empty() || count == 0;
}

bool FakeInternet::InternetCloseHandle(InternetHandle handle) {
    note({u"InternetCloseHandle", decimal(handle)});
    if (failing("InternetCloseHandle"))
        raise(ErrorNumber::General);
    return open_.erase(handle) != 0;
}

bool FakeInternet::DeleteUrlCacheEntryA(std::u16string_view url) {
    note({u"DeleteUrlCacheEntryA", url});
    if (failing("DeleteUrlCacheEntryA"))
        raise(ErrorNumber::General);
    return false;
}

std::int32_t FakeInternet::URLDownloadToFileA(std::u16string_view url, std::u16string_view path,
                                              const platform::FileLimits &limits) {
    note({u"URLDownloadToFileA", url, path});
    const auto found = downloads_.find(std::u16string(url));
    if (found == downloads_.end())
        return resourceNotFound;
    found->second.second = true;
    if (failing("URLDownloadToFileA") || path.empty() || found->second.first.size() > limits.bytes)
        return resourceNotFound;
    const bool wasThere = files_.hasFile(path);
    if (duringDownload)
        duringDownload();
    if (!wasThere && files_.hasFile(path))
        return resourceNotFound;
    return passOver([&] { files_.writeWhole(path, found->second.first, false); })
               ? 0
               : resourceNotFound;
}

std::optional<std::string> FakeInternet::XmlHttpGet(std::u16string_view url) {
    note({u"XmlHttpGet", url});
    if (meanwhile)
        meanwhile();
    const auto found = pages_.find(std::u16string(url));
    if (failing("XmlHttpGet") || found == pages_.end())
        throw RunTimeError(ErrorNumber::General, u"The connection was refused.");
    Script &script = found->second;
    script.asked = true;
    const Page page = script.pages.front();
    if (script.pages.size() > 1)
        script.pages.pop_front();
    if (page.how == Fetch::Raise)
        throw RunTimeError(ErrorNumber::General, u"The connection was refused.");
    if (page.how == Fetch::Incomplete)
        return std::nullopt;
    return page.bytes;
}

std::u16string FakeInternet::decodeCharset(std::string_view bytes, std::u16string_view charset) {
    note({u"decodeCharset", charset});
    if (failing("decodeCharset"))
        raise(ErrorNumber::General);
    if (equalsIgnoringCase(charset, u"gb2312"))
        return platform::LegacyPage(936).decode(bytes);
    if (equalsIgnoringCase(charset, u"utf-8"))
        return fromUtf8(bytes);
    raise(ErrorNumber::InvalidCall);
}

} // namespace velmora::fakes
