#include "open/lyric_clock.h"

#include <algorithm>

namespace velmora::open_tool {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// "mm:ss", "mm:ss.c", "mm:ss.cc" or "mm:ss.ccc"; ":" may stand for the point.
std::optional<std::int64_t> timeOf(std::string_view label) {
    const auto number = [&label](std::size_t most) -> std::optional<std::int64_t> {
        std::int64_t value = 0;
        std::size_t digits = 0;
        for (; digits < label.size() && digits < most && isDigit(label[digits]); ++digits)
            value = value * 10 + (label[digits] - '0');
        label.remove_prefix(digits);
        return digits > 0 ? std::optional(value) : std::nullopt;
    };
    const auto minutes = number(4);
    if (!minutes || !label.starts_with(':'))
        return std::nullopt;
    label.remove_prefix(1);
    const auto seconds = number(2);
    if (!seconds)
        return std::nullopt;
    std::int64_t ms = (*minutes * 60 + *seconds) * 1000;
    if (label.empty())
        return ms;
    if (label.front() != '.' && label.front() != ':')
        return std::nullopt;
    label.remove_prefix(1);
    std::int64_t worth = 100;
    for (; !label.empty() && isDigit(label.front()); label.remove_prefix(1), worth /= 10)
        ms += (label.front() - '0') * worth;
    return label.empty() ? std::optional(ms) : std::nullopt;
}

} // namespace

LyricClock::LyricClock(std::string_view lyric) {
    while (!lyric.empty()) {
        const std::size_t end = lyric.find('\n');
        takeLine(lyric.substr(0, end));
        lyric.remove_prefix(end == std::string_view::npos ? lyric.size() : end + 1);
    }
    std::stable_sort(lines_.begin(), lines_.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
}

void LyricClock::takeLine(std::string_view line) {
    std::vector<std::int64_t> times;
    while (line.starts_with('[')) {
        const std::size_t end = line.find(']');
        if (end == std::string_view::npos)
            break;
        if (const auto time = timeOf(line.substr(1, end - 1)))
            times.push_back(*time);
        line.remove_prefix(end + 1);
    }
    for (const std::int64_t time : times)
        lines_.emplace_back(time, line);
}

std::string_view LyricClock::lineAt(std::int64_t ms) const {
    const auto behind =
        std::upper_bound(lines_.begin(), lines_.end(), ms,
                         [](std::int64_t time, const auto &line) { return time < line.first; });
    return behind == lines_.begin() ? std::string_view() : std::prev(behind)->second;
}

std::optional<std::int64_t> LyricClock::nextAfter(std::int64_t ms) const {
    const auto behind =
        std::upper_bound(lines_.begin(), lines_.end(), ms,
                         [](std::int64_t time, const auto &line) { return time < line.first; });
    return behind == lines_.end() ? std::nullopt : std::optional(behind->first);
}

} // namespace velmora::open_tool
