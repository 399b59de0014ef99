#pragma once

// The lines of a lyric in the order of their times.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::open_tool {

class LyricClock {
public:
    // A text with labels of the form [mm:ss.cc] ahead of its lines; a line may have several.
    explicit LyricClock(std::string_view lyric);

    // The line at a time (ms); empty ahead of the first.
    std::string_view lineAt(std::int64_t ms) const;
    // The time of the first line behind that; absent behind the last.
    std::optional<std::int64_t> nextAfter(std::int64_t ms) const;

private:
    void takeLine(std::string_view line);

    std::vector<std::pair<std::int64_t, std::string>> lines_; // by time
};

} // namespace velmora::open_tool
