// Whole files and whole pages.

#include "platform/backends/curl/curl_client.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/backends/linux/open_file.h"

namespace velmora::platform::http {

namespace {

constexpr std::size_t pieceSize = std::size_t{64} << 10;
constexpr const char *ownAgent = "Velmora";

// What the operations answer, by the names of their own platform.
constexpr std::int32_t S_OK = 0;
constexpr std::int32_t E_OUTOFMEMORY = static_cast<std::int32_t>(0x8007000EU);
constexpr std::int32_t INET_E_DOWNLOAD_FAILURE = static_cast<std::int32_t>(0x800C0008U);

bool isWebAddress(std::u16string_view url) {
    const std::u16string beginning = upper(leftPart(url, 8));
    return startsWith(beginning, u"HTTP://") || beginning == u"HTTPS://";
}

} // namespace

bool CurlClient::receiveInto(Exchange &exchange, AtomicFile &file) {
    const int status = exchange.header().status();
    if (status < 200 || status > 299)
        return false;
    const auto least =
        static_cast<std::size_t>(limits_.stall.count()) * limits_.downloadBytesPerSecond / 1000;
    std::string bytes;
    do {
        exchange.read(pieceSize, least, bytes);
        file.write(bytes);
    } while (!bytes.empty());
    if (exchange.ending() != Ending::Whole)
        return false;
    file.commit(true);
    return true;
}

std::int32_t CurlClient::URLDownloadToFileA(std::u16string_view url, std::u16string_view path,
                                            const FileLimits &limits) {
    if (!isWebAddress(url) || path.empty() || path.front() != u'/')
        return INET_E_DOWNLOAD_FAILURE;
    if (!load())
        return E_OUTOFMEMORY;
    bool whole = false;
    passOver([&] {
        Request request;
        request.url = escaped(ansi_.encode(url));
        request.agent = ownAgent;
        request.headers = {"Pragma: no-cache"};
        request.mostBytes = limits.bytes;
        // Ahead of the request: what lies there now may be replaced, what comes from here on not.
        AtomicFile file(systemPathOrRaise(path), AtomicFile::While::Unnamed,
                        AtomicFile::Over::OldFile, calls_);
        const std::string address = request.url;
        Exchange exchange(*curl_, jar_, limits_, std::move(request));
        whole = start(exchange, address, std::chrono::steady_clock::now() + limits.time) &&
                receiveInto(exchange, file);
    });
    return whole ? S_OK : INET_E_DOWNLOAD_FAILURE;
}

std::optional<std::string> CurlClient::XmlHttpGet(std::u16string_view url) {
    const auto fail = [](const std::string &why) {
        throw RunTimeError(ErrorNumber::General, fromUtf8(why));
    };
    if (!isWebAddress(url))
        fail("The address is not valid");
    if (!load())
        fail("libcurl is not installed");
    Request request;
    request.url = escaped(ansi_.encode(url));
    request.agent = ownAgent;
    request.undoGzip = true;
    request.mostBytes = limits_.pageBytes;
    const std::string address = request.url;
    Exchange exchange(*curl_, jar_, limits_, std::move(request));
    if (!start(exchange, address, std::chrono::steady_clock::now() + limits_.page))
        fail(exchange.failure());
    std::string page;
    exchange.read(limits_.pageBytes + 1, 1, page);
    switch (exchange.ending()) {
    case Ending::Whole:
        return page;
    case Ending::Cut:
        return std::nullopt;
    case Ending::TooLong:
        fail("The page is too long");
        break;
    default:
        fail(exchange.failure());
    }
    return std::nullopt;
}

} // namespace velmora::platform::http
