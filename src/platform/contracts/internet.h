#pragma once

// The network: WinINet's operations, the synchronous page object and the decoder of pages.
//
// Everything happens on the caller's thread, inside the call, and nothing pumps: not a read, not a
// send, not a whole download. Every connect is limited to 10 s, every header with all its redirects
// to 40 s and every body by its rate, so no call waits for ever. A host that could not be reached
// fails at once for 60 s. Redirects lead from https to https alone, and from elsewhere not to this
// machine. The HTTP library behind it is loaded when it is first needed.
//
// Texts are converted to the code page in force before they leave.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

// 0 is no handle. Values are never used again, so closing one twice is harmless.
using InternetHandle = std::uint32_t;

inline constexpr std::uint32_t INTERNET_SERVICE_HTTP = 3;
inline constexpr std::uint32_t INTERNET_FLAG_RELOAD = 0x80000000U;
inline constexpr std::uint32_t HTTP_ADDREQ_FLAG_ADD = 0x20000000U;
inline constexpr std::uint32_t HTTP_ADDREQ_FLAG_REPLACE = 0x80000000U;
inline constexpr std::uint32_t HTTP_QUERY_RAW_HEADERS = 21;

// How much and how long a whole file may be; more is a failure.
struct FileLimits {
    std::size_t bytes = 0;
    std::chrono::milliseconds time{0};
};
inline constexpr FileLimits informationFile{std::size_t{1} << 20, std::chrono::minutes(1)};
inline constexpr FileLimits lyricFile{std::size_t{16} << 20, std::chrono::minutes(1)};
inline constexpr FileLimits programFile{std::size_t{1} << 30, std::chrono::hours(1)};

class Internet {
public:
    virtual ~Internet() = default;

    // The person asks: hosts that could not be reached just now are tried again.
    virtual void tryHostsAnew() = 0;

    // Above 0 when an interface other than loopback is up with an address, or a configured host is
    // a loopback address. Nothing is contacted. `flags` is set to 0.
    virtual std::int32_t InternetGetConnectedState(std::uint32_t &flags) = 0;

    // A session. 0 only when the HTTP library cannot be loaded.
    virtual InternetHandle InternetOpenA(std::u16string_view agent) = 0;

    // The server of a session; touches no network. 0 on an empty host. Port 0 is the default port.
    // Without a user name no credentials are sent, whatever the password says.
    virtual InternetHandle InternetConnectA(InternetHandle session, std::u16string_view host,
                                            std::int32_t port,
                                            std::optional<std::u16string_view> user,
                                            std::u16string_view password,
                                            std::uint32_t service) = 0;

    virtual InternetHandle HttpOpenRequestA(InternetHandle connection, std::u16string_view verb,
                                            std::u16string_view object, std::u16string_view version,
                                            std::uint32_t flags) = 0;

    // `headers`: lines that each end in CR LF; may be empty.
    virtual bool HttpAddRequestHeadersA(InternetHandle request, std::u16string_view headers,
                                        std::uint32_t modifiers) = 0;

    // One jar in memory for the run.
    virtual bool InternetSetCookieA(std::u16string_view url, std::u16string_view name,
                                    std::u16string_view data) = 0;
    // Absent when the jar holds none for the address. At most `capacity` bytes fit.
    virtual std::optional<std::u16string>
    InternetGetCookieA(std::u16string_view url, std::u16string_view name, std::size_t capacity) = 0;

    // Looks the name up, connects, sends, and waits for the final response's header. Redirects are
    // followed within http and https, at most 10. `bodyLength`: how many bytes of the converted
    // body go out.
    virtual bool HttpSendRequestA(InternetHandle request, std::u16string_view body,
                                  std::size_t bodyLength) = 0;

    // The final response's status line and fields as received, in their case and order, each ended
    // by NUL. Absent when there is no response or it takes more than `capacity` bytes.
    virtual std::optional<std::string> HttpQueryInfoA(InternetHandle request, std::uint32_t what,
                                                      std::size_t capacity) = 0;

    // The next `count` bytes of the body, fewer only at its end; after a cut what came, then false.
    // True with nothing is the end. Less than 1 KB in 5 s is a cut. Chunks are undone, gzip is not.
    virtual bool InternetReadFile(InternetHandle request, std::size_t count,
                                  std::string &bytes) = 0;

    virtual bool InternetCloseHandle(InternetHandle handle) = 0;

    // There is no cache; the call stands for those who count on it.
    virtual bool DeleteUrlCacheEntryA(std::u16string_view url) = 0;

    // Fetches a whole file. 0 only when the final status was 200 to 299, the body arrived whole and
    // lies under `path`; it is written beside the target and renamed. Any failure, an empty address
    // or a relative path among them, leaves the target untouched and gives another number. Below 1
    // KB/s for 30 s is a stall. What comes meanwhile to a place at which nothing was is not
    // replaced: that is a failure.
    virtual std::int32_t URLDownloadToFileA(std::u16string_view url, std::u16string_view path,
                                            const FileLimits &limits) = 0;

    // "MSXML2.XMLHTTP" with "GET", synchronous: `Open`, `send`, `responseBody`. Any status is a
    // page; gzip is undone. Absent when the request did not complete its answer (ReadyState is not
    // 4). Raises RunTimeError when the send fails, beyond 16 MB and beyond 60 s.
    virtual std::optional<std::string> XmlHttpGet(std::u16string_view url) = 0;

    // "adodb.stream" read as text: the bytes in a named charset ("gb2312" and "GB2312" as GB18030,
    // the way the web reads it: a bad lead byte gives U+FFFD and the ASCII byte behind it stays;
    // "utf-8"; the legacy pages). Raises RunTimeError for a charset nobody knows.
    virtual std::u16string decodeCharset(std::string_view bytes, std::u16string_view charset) = 0;
};

} // namespace velmora::platform
