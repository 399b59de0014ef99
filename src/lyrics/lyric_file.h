#pragma once

// A lyric's lines on the disk. The directory search ignores case, so the file that it finds for a
// path is the one that is read and written: a lyric never lies there twice in two spellings.

#include "base/run_time_error.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

namespace platform {
struct Platform;
}

// The path under which the directory search finds the file; the path itself when it finds none.
std::u16string pathOnDisk(const platform::Platform &platform, std::u16string_view path);

struct LyricLines {
    std::vector<std::u16string> lines;   // those without blanks alone, untrimmed, in order
    std::optional<RunTimeError> failure; // what ended the reading before the file's end
};

// Reads a text file whose lines decide together in which code page it is. A file of more than 16 MB
// is refused as an unreadable one: read in part it would later be saved in part.
LyricLines readLyricFile(const platform::Platform &platform, std::u16string_view path);

} // namespace velmora
