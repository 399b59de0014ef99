#include "network/addresses.h"

#include "base/numbers.h"
#include "base/text.h"

#include <array>
#include <optional>
#include <vector>

namespace velmora {

namespace {

struct Server {
    bool encrypted = false;
    std::u16string host; // lower case, without port and brackets
    std::u16string port; // empty: the scheme's own
};

// Nothing for what is no web address, and for one with a user in it, which only looks like another.
std::optional<Server> serverOf(std::u16string_view address) {
    const std::u16string text = lower(address);
    Server server;
    std::u16string_view rest = text;
    if (startsWith(rest, u"https://"))
        server.encrypted = true;
    else if (!startsWith(rest, u"http://"))
        return std::nullopt;
    rest.remove_prefix(rest.find(u"//") + 2);
    rest = rest.substr(0, rest.find_first_of(u"/?#\\"));
    if (rest.empty() || contains(rest, u"@"))
        return std::nullopt;
    const bool bracketed = rest.front() == u'[';
    const std::size_t hostEnd = bracketed ? rest.find(u']') : rest.find(u':');
    if (bracketed && hostEnd == std::u16string_view::npos)
        return std::nullopt;
    server.host = rest.substr(bracketed ? 1 : 0, bracketed ? hostEnd - 1 : hostEnd);
    const std::size_t colon = rest.find(u':', bracketed ? hostEnd : 0);
    if (colon != std::u16string_view::npos)
        server.port = rest.substr(colon + 1);
    if (server.port == (server.encrypted ? u"443" : u"80"))
        server.port.clear();
    return server;
}

// The four numbers of an address written with points.
std::optional<std::array<std::int32_t, 4>> numbersOf(std::u16string_view host) {
    const std::vector<std::u16string> parts = split(host, u'.');
    std::array<std::int32_t, 4> numbers{};
    if (parts.size() != numbers.size())
        return std::nullopt;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto number = strictInt32(parts[i]);
        if (!number || *number < 0 || *number > 255)
            return std::nullopt;
        numbers[i] = *number;
    }
    return numbers;
}

bool isPrivate(const std::array<std::int32_t, 4> &numbers) {
    const auto [a, b, c, d] = numbers;
    return a == 10 || a == 127 || (a == 172 && b >= 16 && b <= 31) || (a == 192 && b == 168) ||
           (a == 169 && b == 254);
}

bool endsWith(std::u16string_view text, std::u16string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// Names without a point and those of the local domain are answered in the house alone.
bool isNear(std::u16string_view host) {
    if (contains(host, u":")) // link-local and unique local ones, and this machine
        return host == u"::1" || startsWith(host, u"fe8") || startsWith(host, u"fe9") ||
               startsWith(host, u"fea") || startsWith(host, u"feb") || startsWith(host, u"fc") ||
               startsWith(host, u"fd");
    if (const auto numbers = numbersOf(host))
        return isPrivate(*numbers);
    return !contains(host, u".") || endsWith(host, u".local") || endsWith(host, u".localhost");
}

} // namespace

bool isAddressForTheDesktop(std::u16string_view address) {
    const std::u16string text = lower(address);
    if (startsWith(text, u"mailto:"))
        return !contains(text, u"attach");
    return startsWith(text, u"http://") || startsWith(text, u"https://");
}

bool mayFetchProgram(std::u16string_view maker, std::u16string_view address) {
    const auto own = serverOf(maker);
    const auto from = serverOf(address);
    if (!own || !from || (own->encrypted && !from->encrypted))
        return false;
    if (own->encrypted)
        return true;
    if (own->host != from->host)
        return false;
    return from->encrypted || (own->port == from->port && isNear(from->host));
}

} // namespace velmora
