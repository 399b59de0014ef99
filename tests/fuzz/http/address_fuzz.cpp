// Addresses and cookies: what is escaped has nothing left to escape, a host has no parts of another
// kind, and a cookie's line has its seven fields and goes where it came from.

#include "platform/backends/curl/addresses.h"
#include "platform/backends/curl/cookies.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace {

using namespace velmora::platform::http;

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    const std::size_t middle = std::min(bytes.find('\n'), bytes.size());
    const std::string_view address = bytes.substr(0, middle);
    const std::string_view cookie = bytes.substr(std::min(middle + 1, bytes.size()));

    const std::string plain = escaped(address);
    require(escaped(plain) == plain);
    require(std::all_of(plain.begin(), plain.end(),
                        [](char byte) { return byte > ' ' && byte < '\x7F' && byte != '"'; }));
    const AddressParts parts = partsOf(plain);
    require(parts.host.find_first_of("/?#") == std::string::npos);
    require(!parts.path.empty() && parts.path.find_first_of("?#") == std::string::npos);
    isLoopback(parts.host);
    isHostText(address);

    const auto line = jarLine(parts, "", cookie, 1000, [](const std::string &) { return 2000; });
    if (line) {
        require(std::count(line->begin(), line->end(), '\t') == 6);
        require(line->find_first_of("\r\n") == std::string::npos);
    }
    // A name may be given beside the data; a control sign in it is no line of the jar.
    const auto named = jarLine(parts, cookie.substr(0, 8), cookie, 1000,
                               [](const std::string &) { return std::time_t{-1}; });
    require(!named || std::count(named->begin(), named->end(), '\t') == 6);
    const std::vector<std::string> jar{std::string(cookie), "#HttpOnly_" + std::string(cookie),
                                       line.value_or("")};
    const std::string sent = cookiesFor(jar, parts, "", 1000);
    require(sent.find_first_of("\r\n\t") == std::string::npos ||
            cookie.find_first_of("\r\n") != std::string::npos);
    require(cookiesFor(jar, parts, "name", 1000).size() <= sent.size());
    return 0;
}
