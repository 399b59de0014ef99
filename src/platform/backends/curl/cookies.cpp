#include "platform/backends/curl/cookies.h"

#include <algorithm>
#include <cstdlib>
#include <strings.h>

namespace velmora::platform::http {

namespace {

constexpr std::string_view blanks = " \t";

std::string_view trimmed(std::string_view text) noexcept {
    const std::size_t from = std::min(text.find_first_not_of(blanks), text.size());
    text.remove_prefix(from);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

bool sameWord(std::string_view a, std::string_view b) noexcept {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// Cuts off the text up to a separator and the separator.
std::string_view nextPiece(std::string_view &text, char separator) noexcept {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view piece = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return piece;
}

std::vector<std::string_view> fieldsOf(std::string_view line) {
    std::vector<std::string_view> fields;
    while (!line.empty())
        fields.push_back(nextPiece(line, '\t'));
    return fields;
}

bool isBelow(std::string_view path, std::string_view cookiePath) noexcept {
    return path.substr(0, cookiePath.size()) == cookiePath &&
           (path.size() == cookiePath.size() || cookiePath.back() == '/' ||
            path[cookiePath.size()] == '/');
}

bool isOfHost(std::string_view host, std::string_view domain, bool below) noexcept {
    if (!domain.empty() && domain.front() == '.')
        domain.remove_prefix(1);
    if (sameWord(host, domain))
        return true;
    return below && host.size() > domain.size() && host[host.size() - domain.size() - 1] == '.' &&
           sameWord(host.substr(host.size() - domain.size()), domain);
}

bool isSent(const std::vector<std::string_view> &fields, const AddressParts &address,
            std::time_t now) {
    const long long end = std::strtoll(std::string(fields[4]).c_str(), nullptr, 10);
    return isOfHost(address.host, fields[0], fields[1] == "TRUE") &&
           isBelow(address.path, fields[2].empty() ? "/" : fields[2]) &&
           (fields[3] != "TRUE" || address.secure) && (end == 0 || end > now);
}

} // namespace

std::optional<std::string> jarLine(const AddressParts &address, std::string_view name,
                                   std::string_view data, std::time_t now,
                                   const std::function<std::time_t(const std::string &)> &dateOf) {
    const auto isControl = [](char byte) { return static_cast<unsigned char>(byte) < ' '; };
    if (address.host.empty() || std::any_of(name.begin(), name.end(), isControl) ||
        std::any_of(data.begin(), data.end(), isControl))
        return std::nullopt;
    std::string_view value = trimmed(nextPiece(data, ';'));
    if (name.empty()) {
        const std::size_t equals = value.find('=');
        if (equals == std::string_view::npos)
            return std::nullopt;
        name = trimmed(value.substr(0, equals));
        value = trimmed(value.substr(equals + 1));
    }
    if (name.empty() || name.find_first_of("=;") != std::string_view::npos)
        return std::nullopt;
    std::string path = "/";
    bool secure = false;
    long long end = 0;
    while (!data.empty()) {
        std::string_view text = nextPiece(data, ';');
        const std::string_view key = trimmed(nextPiece(text, '='));
        const std::string word(trimmed(text));
        if (sameWord(key, "path") && !word.empty() && word.front() == '/')
            path = word;
        else if (sameWord(key, "secure"))
            secure = true;
        else if (sameWord(key, "expires"))
            end = std::max<long long>(dateOf(word), 0);
        else if (sameWord(key, "max-age"))
            end = std::max<long long>(now + std::strtoll(word.c_str(), nullptr, 10) % 1'000'000'000,
                                      1);
    }
    std::string line = address.host + "\tFALSE\t" + path + (secure ? "\tTRUE\t" : "\tFALSE\t");
    return line + std::to_string(end) + "\t" + std::string(name) + "\t" + std::string(value);
}

std::string cookiesFor(const std::vector<std::string> &lines, const AddressParts &address,
                       std::string_view name, std::time_t now) {
    std::string result;
    for (std::string_view line : lines) {
        constexpr std::string_view hiddenMark = "#HttpOnly_"; // from scripts, which we are not
        if (line.substr(0, hiddenMark.size()) == hiddenMark)
            line.remove_prefix(hiddenMark.size());
        const std::vector<std::string_view> fields = fieldsOf(line);
        if (fields.size() < 6 || !isSent(fields, address, now) ||
            (!name.empty() && fields[5] != name))
            continue;
        result += result.empty() ? "" : "; ";
        result += fields[5];
        result += '=';
        if (fields.size() > 6)
            result += fields[6];
    }
    return result;
}

} // namespace velmora::platform::http
