#include "base/text.h"

#include <cstdint>
#include <cstring>

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

namespace {

// The first place of a unit from `at` on, or `end`. Four units at a time: a list of tens of
// thousands of rows, or a lyric at every tick, is searched unit by unit.
std::size_t findUnit(const char16_t *text, std::size_t at, std::size_t end,
                     char16_t unit) noexcept {
    constexpr std::uint64_t ones = 0x0001000100010001U;
    constexpr std::uint64_t tops = 0x8000800080008000U;
    const std::uint64_t wanted = ones * unit;
    for (; at + 4 <= end; at += 4) {
        std::uint64_t four = 0;
        std::memcpy(&four, text + at, sizeof four);
        four ^= wanted;
        if (((four - ones) & ~four & tops) != 0)
            break; // one of the four, told apart below
    }
    while (at < end && text[at] != unit)
        ++at;
    return at;
}

} // namespace

// A mark is less likely than a letter to stand in a text by chance.
TextPart::TextPart(std::u16string_view part) noexcept : part_(part) {
    const std::size_t mark = part.find_first_of(u":;,.!?'\"()[]{}&#@_-+=/\\");
    rare_ = mark == std::u16string_view::npos ? 0 : mark;
}

bool TextPart::isIn(std::u16string_view text) const noexcept {
    if (part_.empty())
        return true;
    if (part_.size() > text.size())
        return false;
    const std::size_t end = text.size() - part_.size() + rare_ + 1;
    for (std::size_t at = rare_; (at = findUnit(text.data(), at, end, part_[rare_])) < end; ++at)
        if (std::memcmp(text.data() + at - rare_, part_.data(), part_.size() * sizeof(char16_t)) ==
            0)
            return true;
    return false;
}

bool contains(std::u16string_view text, std::u16string_view part) noexcept {
    return TextPart(part).isIn(text);
}

std::u16string fromAscii(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

} // namespace velmora
