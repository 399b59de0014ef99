#include "catalogue/ranges.h"

#include "base/ascii.h"

#include <algorithm>
#include <charconv>

namespace velmora::catalogue {

namespace {

// Absent for no number, and for one that no file is as long as.
std::optional<std::int64_t> numberOf(std::string_view text) {
    std::int64_t value = 0;
    const char *end = text.data() + text.size();
    if (text.empty() || text.front() < '0' || text.front() > '9')
        return std::nullopt;
    const auto [at, error] = std::from_chars(text.data(), end, value);
    return at == end && error == std::errc() ? std::optional(value) : std::nullopt;
}

PartAsked lastBytes(std::int64_t count, std::int64_t fileBytes) {
    const std::int64_t bytes = std::min(count, fileBytes);
    return {false, bytes > 0, {fileBytes - bytes, bytes}};
}

} // namespace

PartAsked partOf(std::string_view field, std::int64_t fileBytes) {
    constexpr std::string_view unit = "bytes=";
    const PartAsked whole{true, true, {0, fileBytes}};
    if (lowerAscii(field.substr(0, unit.size())) != unit)
        return whole;
    const std::string_view range = field.substr(unit.size());
    const std::size_t dash = range.find('-');
    if (dash == std::string_view::npos)
        return whole;
    const auto first = numberOf(range.substr(0, dash));
    const auto last = numberOf(range.substr(dash + 1));
    const bool open = dash + 1 == range.size();
    if (dash == 0)
        return last ? lastBytes(*last, fileBytes) : whole;
    if (!first || (!last && !open) || (last && *last < *first))
        return whole;
    if (*first >= fileBytes)
        return {false, false, {0, 0}};
    const std::int64_t end = last ? std::min(*last, fileBytes - 1) : fileBytes - 1;
    return {false, true, {*first, end - *first + 1}};
}

std::string contentRange(const PartAsked &asked, std::int64_t fileBytes) {
    const std::string all = "/" + std::to_string(fileBytes);
    if (!asked.possible)
        return "bytes *" + all;
    return "bytes " + std::to_string(asked.part.first) + "-" +
           std::to_string(asked.part.first + asked.part.bytes - 1) + all;
}

} // namespace velmora::catalogue
