#include "platform/backends/curl/header_block.h"

#include <algorithm>
#include <strings.h>

namespace velmora::platform::http {

namespace {

bool beginsWith(std::string_view line, std::string_view beginning) noexcept {
    return line.size() >= beginning.size() &&
           strncasecmp(line.data(), beginning.data(), beginning.size()) == 0;
}

bool isDigit(char byte) noexcept { return byte >= '0' && byte <= '9'; }

// The number behind the first blank; 0 where there is none.
int statusOf(std::string_view line) noexcept {
    std::size_t at = line.find(' ');
    int status = 0;
    while (at != std::string_view::npos && at < line.size() && line[at] == ' ')
        ++at;
    for (std::size_t i = at; i < line.size() && i < at + 3 && isDigit(line[i]); ++i)
        status = status * 10 + (line[i] - '0');
    return status;
}

std::string_view withoutEnd(std::string_view line) noexcept {
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.remove_suffix(1);
    return line;
}

} // namespace

bool HeaderBlock::take(std::string_view line) {
    taken_ += line.size();
    if (taken_ > most)
        return false;
    if (complete_)
        return true;
    const std::string_view text = withoutEnd(line);
    if (text.empty()) {
        end();
        return true;
    }
    if (beginsWith(text, "HTTP/"))
        begin(text);
    constexpr std::string_view place = "Location:";
    if (beginsWith(text, place))
        hasPlace_ = hasPlace_ || text.find_first_not_of(" \t", place.size()) != text.npos;
    bytes_ += text;
    bytes_ += '\0';
    return true;
}

void HeaderBlock::begin(std::string_view statusLine) {
    bytes_.clear();
    status_ = statusOf(statusLine);
    hasPlace_ = false;
    leadsElsewhere_ = false;
}

void HeaderBlock::end() {
    leadsElsewhere_ = status_ >= 300 && status_ < 400 && hasPlace_;
    complete_ = status_ >= 200 && !leadsElsewhere_;
}

} // namespace velmora::platform::http
