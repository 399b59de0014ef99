#include "network/zkWininetDown.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "network/WininetDownClass.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/platform.h"

namespace velmora {

namespace {

constexpr std::size_t headerCapacity = 1024;

struct HeaderName {
    std::u16string_view upperName;
    std::u16string_view searched;
};
constexpr HeaderName headerNames[] = {
    {u"CONTENT-LENGTH", u"Content-Length"},
    {u"CONTENT-TYPE", u"Content-Type"},
    {u"DATE", u"Date"},
    {u"LAST-MODIFIED", u"Last-Modified"},
    {u"SERVER", u"Server"},
};

// Without every occurrence of `what` (upper case), whatever its case.
std::u16string without(std::u16string_view text, std::u16string_view what) {
    const std::u16string searched = upper(text);
    std::u16string result;
    std::size_t at = 0;
    for (std::size_t hit = searched.find(what); hit != std::u16string::npos;
         hit = searched.find(what, at)) {
        result.append(text.substr(at, hit - at));
        at = hit + what.size();
    }
    return result.append(text.substr(at));
}

} // namespace

zkWininetDown::zkWininetDown(const platform::Platform &platform) : platform_(platform) {}

void zkWininetDown::raiseStatus(std::int32_t code) {
    if (Status)
        passOver([&] { Status(code); });
}

void zkWininetDown::raiseError(std::int32_t code) {
    if (Error)
        passOver([&] { Error(code); });
}

void zkWininetDown::raiseEnd(bool success) {
    if (DownloadEnd)
        passOver([&] { DownloadEnd(success); });
}

void zkWininetDown::splitUrl() {
    if (URL.empty())
        return;
    HostName_ = without(URL, u"HTTP://");
    const std::size_t slash = HostName_.find(u'/');
    UrlPath_ = slash == std::u16string::npos ? u"/" : HostName_.substr(slash);
    HostName_.resize(std::min(slash, HostName_.size()));
    Port_ = 80;
    if (contains(HostName_, u":")) {
        const std::vector<std::u16string> pieces = split(HostName_, u':');
        Port_ = leadingInt32(pieces[1]);
        HostName_ = pieces[0];
    }
}

bool zkWininetDown::openHandles() {
    platform::Internet &internet = platform_.internet;
    raiseStatus(1);
    hOpen_ = internet.InternetOpenA(UserAgent);
    if (hOpen_ == 0) {
        raiseError(1);
        return false;
    }
    raiseStatus(2);
    // The protocol's name stands in the place of the password: so the call is built.
    hConnect_ = internet.InternetConnectA(hOpen_, HostName_, Port_, std::nullopt, u"HTTP/1.0",
                                          platform::INTERNET_SERVICE_HTTP);
    if (hConnect_ == 0) {
        raiseError(2);
        return false;
    }
    raiseStatus(3);
    hRequest_ = internet.HttpOpenRequestA(hConnect_, Method, UrlPath_, u"HTTP/1.0",
                                          platform::INTERNET_FLAG_RELOAD);
    if (hRequest_ == 0) {
        raiseError(3);
        return false;
    }
    raiseStatus(4);
    return true;
}

std::u16string zkWininetDown::extraHeaders() const {
    std::u16string headers;
    if (!Referer.empty())
        headers.append(u"Referer: ").append(Referer).append(crLf);
    if (equalsIgnoringCase(Method, u"POST"))
        headers.append(u"Content-Type: application/x-www-form-urlencoded").append(crLf);
    return headers;
}

void zkWininetDown::queryHeader() {
    const std::optional<std::string> block = platform_.internet.HttpQueryInfoA(
        hRequest_, platform::HTTP_QUERY_RAW_HEADERS, headerCapacity);
    HeaderOk_ = block.has_value();
    HeaderBlock_ = HeaderOk_ ? platform_.ansi.decode(*block) : std::u16string();
}

bool zkWininetDown::Download() {
    IsRunning_ = true;
    splitUrl();
    if (!openHandles())
        return false;
    platform::Internet &internet = platform_.internet;
    internet.HttpAddRequestHeadersA(hRequest_, extraHeaders(),
                                    platform::HTTP_ADDREQ_FLAG_ADD |
                                        platform::HTTP_ADDREQ_FLAG_REPLACE);
    if (!Cookie.empty())
        internet.InternetSetCookieA(URL, u"", Cookie);
    // The length counts characters, not bytes; a refused request shows in the header that is not
    // there.
    internet.HttpSendRequestA(hRequest_, PostData, PostData.size());
    queryHeader();
    return true;
}

void zkWininetDown::bStop() {
    IsRunning_ = false;
    for (const platform::InternetHandle handle : {hRequest_, hConnect_, hOpen_})
        passOver([&] { platform_.internet.InternetCloseHandle(handle); });
    passOver([&] { platform_.internet.DeleteUrlCacheEntryA(URL); });
}

std::u16string zkWininetDown::GetHeader(std::u16string_view name) {
    if (!IsRunning_) {
        bStop();
        return u"0";
    }
    if (HeaderBlock_.empty())
        return u"0";
    if (name.empty())
        return HeaderBlock_;
    for (const auto &[upperName, searched] : headerNames) {
        if (upper(name) != upperName)
            continue;
        // Positions count from 1, and 0 is an absent header: then the text comes from the block's
        // beginning, as far in as the name is long.
        const std::size_t position = HeaderBlock_.find(searched) + 1;
        const std::size_t begin = position + searched.size() + 2;
        return std::u16string(untilNul(
            std::u16string_view(HeaderBlock_).substr(std::min(begin - 1, HeaderBlock_.size()))));
    }
    return u"0";
}

std::int32_t zkWininetDown::FileSize() {
    return strictInt32(GetHeader(u"Content-Length")).value_or(1);
}

std::u16string zkWininetDown::FileType() { return GetHeader(u"Content-Type"); }

std::u16string zkWininetDown::GetCookie(std::u16string_view name) {
    constexpr std::size_t buffer = 256;
    std::optional<std::u16string> value;
    passOver([&] { value = platform_.internet.InternetGetCookieA(URL, name, buffer - 1); });
    if (!value)
        return {};
    std::erase_if(*value,
                  [](char16_t unit) { return unit == 0 || unit == u'\n' || unit == u'\r'; });
    value->resize(buffer, u' ');
    return *value;
}

std::u16string zkWininetDown::bytesToText(std::string_view bytes, std::u16string_view charset) {
    return platform_.internet.decodeCharset(bytes, charset);
}

} // namespace velmora
