#include "base/text.h"

namespace velmora {

std::u16string_view trim(std::u16string_view text) noexcept {
    while (!text.empty() && text.front() == u' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == u' ')
        text.remove_suffix(1);
    return text;
}

std::u16string_view untilNul(std::u16string_view text) noexcept {
    return text.substr(0, text.find(u'\0'));
}

std::vector<std::u16string> split(std::u16string_view text, char16_t separator) {
    std::vector<std::u16string> pieces;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = text.find(separator, begin);
        pieces.emplace_back(text.substr(begin, end - begin));
        if (end == std::u16string_view::npos)
            return pieces;
        begin = end + 1;
    }
}

std::u16string replaceAll(std::u16string_view text, std::u16string_view what,
                          std::u16string_view with) {
    std::u16string result;
    std::size_t begin = 0;
    while (!what.empty()) {
        const std::size_t found = text.find(what, begin);
        if (found == std::u16string_view::npos)
            break;
        result += text.substr(begin, found - begin);
        result += with;
        begin = found + what.size();
    }
    result += text.substr(begin);
    return result;
}

std::u16string_view leftPart(std::u16string_view text, std::ptrdiff_t count) noexcept {
    return count <= 0 ? std::u16string_view() : text.substr(0, static_cast<std::size_t>(count));
}

std::u16string_view rightPart(std::u16string_view text, std::ptrdiff_t count) noexcept {
    if (count <= 0)
        return {};
    const auto wanted = static_cast<std::size_t>(count);
    return wanted >= text.size() ? text : text.substr(text.size() - wanted);
}

bool startsWith(std::u16string_view text, std::u16string_view beginning) noexcept {
    return text.substr(0, beginning.size()) == beginning;
}

bool contains(std::u16string_view text, std::u16string_view part) noexcept {
    return text.find(part) != std::u16string_view::npos;
}

std::u16string fromAscii(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

} // namespace velmora
