#pragma once

// A lyric's lines on the disk. The directory search ignores case, so the file that it finds for a
// path is the one that is read.

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

// Makes a new file of the lines of another that are not blank, each with its own bytes and ended by
// CR LF. Raises where that is not possible; what lies under the new name stays as it is then.
void copyLyricFile(const platform::Platform &platform, std::u16string_view from,
                   std::u16string_view to);

// What a lyric is written over by: the editor's rows, which as a rule were read from it, or a
// lyric from elsewhere.
enum class WrittenOverBy { Itself, Another };

// Whether the file under this exact path holds bytes that would be lost with it, so that it has to
// be kept before it is written over: one that could not be read as text without losses, or not
// whole, and, by its own words, one that would be written with other bytes than it was read from,
// since the page that it was read in may have been the wrong one.
bool isOnlyPlaceOf(const platform::Platform &platform, std::u16string_view path,
                   WrittenOverBy newWords);

} // namespace velmora
