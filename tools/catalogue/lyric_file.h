#pragma once

// Lyric files as readers take them, from whatever a household keeps.

#include <optional>
#include <string>
#include <string_view>

namespace velmora::catalogue {

struct LyricFile {
    std::string bytes; // UTF-8 without a mark, CR LF behind every line
    std::u16string title;
    std::u16string artist;
};

// UTF-8, the legacy page or UTF-16 with its mark; any line ends. Minutes of one digit get their
// second. Absent when nothing but blanks is in it.
std::optional<LyricFile> readLyric(std::string_view bytes);

} // namespace velmora::catalogue
