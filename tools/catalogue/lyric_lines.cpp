#include "catalogue/lyric_lines.h"

#include "base/text.h"
#include "catalogue/texts.h"

#include <algorithm>
#include <optional>

namespace velmora::catalogue {

namespace {

constexpr std::size_t mostLines = 5000;

// A number at the front, which is taken away.
std::optional<int> takeNumber(std::u16string_view &text, std::size_t mostDigits) {
    int value = 0;
    std::size_t digits = 0;
    while (digits < mostDigits && digits < text.size() && text[digits] >= u'0' &&
           text[digits] <= u'9')
        value = value * 10 + (text[digits++] - u'0');
    text.remove_prefix(digits);
    return digits != 0 ? std::optional(value) : std::nullopt;
}

bool take(std::u16string_view &text, std::u16string_view sign) {
    const bool there = startsWith(text, sign);
    text.remove_prefix(there ? sign.size() : 0);
    return there;
}

// "[mm:ss]", "[mm:ss.x]" to "[mm:ss.xxx]" at the front, which is taken away.
std::optional<int> takeTime(std::u16string_view &line) {
    std::u16string_view rest = line;
    if (!take(rest, u"["))
        return std::nullopt;
    const auto minutes = takeNumber(rest, 4);
    if (!minutes || !take(rest, u":"))
        return std::nullopt;
    const auto seconds = takeNumber(rest, 2);
    if (!seconds)
        return std::nullopt;
    int ms = 0;
    if (take(rest, u".") || take(rest, u":")) {
        const std::size_t before = rest.size();
        ms = takeNumber(rest, 3).value_or(0);
        for (std::size_t digits = before - rest.size(); digits < 3; ++digits)
            ms *= 10;
    }
    if (!take(rest, u"]"))
        return std::nullopt;
    line = rest;
    return (*minutes * 60 + *seconds) * 1000 + ms;
}

} // namespace

std::vector<LyricLine> lyricLines(std::string_view lyric) {
    std::vector<LyricLine> timed;
    std::vector<LyricLine> plain;
    for (const std::u16string &whole : split(fromUtf8(lyric), u'\n')) {
        std::u16string_view line = whole;
        std::vector<int> times;
        while (const auto time = takeTime(line))
            times.push_back(*time);
        const std::u16string text = oneLine(line);
        for (const int time : times)
            if (timed.size() < mostLines)
                timed.push_back({time, text});
        if (times.empty() && !text.empty() && text.front() != u'[' && plain.size() < mostLines)
            plain.push_back({0, text});
    }
    std::stable_sort(timed.begin(), timed.end(),
                     [](const LyricLine &a, const LyricLine &b) { return a.atMs < b.atMs; });
    return timed.empty() ? plain : timed;
}

} // namespace velmora::catalogue
