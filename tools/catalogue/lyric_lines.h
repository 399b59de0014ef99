#pragma once

// A lyric line by line, for a page that shows and follows it.

#include <string>
#include <string_view>
#include <vector>

namespace velmora::catalogue {

struct LyricLine {
    int atMs = 0;
    std::u16string text;
};

// What `readLyric` gives, in the order of time. Lines without a time are left out, unless there are
// no others.
std::vector<LyricLine> lyricLines(std::string_view lyric);

} // namespace velmora::catalogue
