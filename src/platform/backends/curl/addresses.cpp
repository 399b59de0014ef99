#include "platform/backends/curl/addresses.h"

#include "base/ascii.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>

namespace velmora::platform::http {

namespace {

bool endsWith(std::string_view text, std::string_view end) noexcept {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string hostOf(std::string_view authority) {
    authority.remove_prefix(authority.rfind('@') + 1); // npos + 1 is 0
    if (!authority.empty() && authority.front() == '[')
        authority = authority.substr(1, authority.find(']') - 1);
    else if (std::count(authority.begin(), authority.end(), ':') < 2)
        authority = authority.substr(0, authority.find(':'));
    return lowerAscii(authority);
}

} // namespace

std::string escaped(std::string_view bytes) {
    std::string result;
    result.reserve(bytes.size());
    for (const char byte : bytes) {
        const bool plain = byte > ' ' && byte < 0x7F && byte != '"';
        if (plain)
            result += byte;
        else
            addEscaped(result, byte);
    }
    return result;
}

AddressParts partsOf(std::string_view address) {
    AddressParts parts;
    const std::size_t colon = address.find("://");
    if (colon != std::string_view::npos) {
        parts.secure = lowerAscii(address.substr(0, colon)) == "https";
        address.remove_prefix(colon + 3);
    }
    const std::size_t end = std::min(address.find_first_of("/?#"), address.size());
    parts.host = hostOf(address.substr(0, end));
    address.remove_prefix(end);
    parts.path = address.substr(0, address.find_first_of("?#"));
    if (parts.path.empty())
        parts.path = "/";
    return parts;
}

bool isLoopback(std::string_view host) {
    if (host == "localhost" || endsWith(host, ".localhost"))
        return true;
    const std::string text(host);
    in_addr four{};
    in6_addr six{};
    if (inet_pton(AF_INET, text.c_str(), &four) == 1)
        return (ntohl(four.s_addr) >> 24) == 127;
    return inet_pton(AF_INET6, text.c_str(), &six) == 1 && IN6_IS_ADDR_LOOPBACK(&six);
}

bool isHostText(std::string_view host) noexcept {
    return !host.empty() &&
           std::none_of(
               host.begin(), host.end(),
               [](char byte) {
                   const auto value = static_cast<unsigned char>(byte);
                   return value <= ' ' || value == 0x7F ||
                          std::string_view("/?#@\\").find(byte) != std::string_view::npos;
               });
}

} // namespace velmora::platform::http
