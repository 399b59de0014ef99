#include "lyrics/lyric_file.h"

#include "base/text.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "platform/contracts/platform.h"

#include <cstdint>
#include <limits>
#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t largestFile = std::int64_t{16} * 1024 * 1024; // bytes
// Far beyond what a list takes: short lines must not grow to many times the file in memory.
constexpr std::size_t mostLines = std::size_t{1} << 18;
constexpr char16_t lostByte = u'\xFFFD';
constexpr std::size_t mostRows = std::numeric_limits<std::int16_t>::max(); // of a list

bool isBlank(std::string_view line) noexcept {
    return line.find_first_not_of(' ') == std::string_view::npos;
}

// The length is counted as well as asked for: a file may grow meanwhile, or tell no length.
void readLines(platform::LineReader &reader, std::vector<std::string> &lines) {
    std::int64_t total = 0;
    while (!reader.endOfFile()) {
        std::string line = reader.readLine();
        total += static_cast<std::int64_t>(line.size()) + 1;
        if (total > largestFile + 1)
            raise(ErrorNumber::DeviceIo);
        if (!isBlank(line)) {
            if (lines.size() == mostLines)
                raise(ErrorNumber::Overflow);
            lines.push_back(std::move(line));
        }
    }
}

struct RawLines {
    std::vector<std::string> lines;
    std::optional<RunTimeError> failure;
};

RawLines readRawLines(const platform::Platform &platform, std::u16string_view path) {
    RawLines result;
    try {
        const std::u16string onDisk = pathOnDisk(platform, path);
        if (platform.files.FileLen(onDisk) > largestFile)
            raise(ErrorNumber::DeviceIo);
        readLines(*platform.files.openInput(onDisk), result.lines);
    } catch (const RunTimeError &failure) {
        result.failure = failure;
    }
    return result;
}

// Whether the bytes are needed no more once the file is written over.
bool mayGo(const platform::AnsiText &ansi, const RawLines &raw, WrittenOverBy newWords) {
    if (raw.failure || raw.lines.size() > mostRows)
        return false;
    const std::vector<std::u16string> texts = ansi.decodeTogether(raw.lines, false);
    for (std::size_t line = 0; line < texts.size(); ++line) {
        // A page is a guess: a wrong one gives wrong characters, and none of them looks lost.
        const bool isSuspect =
            newWords == WrittenOverBy::Itself || texts[line].find(lostByte) != std::u16string::npos;
        if (isSuspect && ansi.encode(texts[line]) != raw.lines[line])
            return false;
    }
    return true;
}

} // namespace

std::u16string pathOnDisk(const platform::Platform &platform, std::u16string_view path) {
    const std::u16string name = platform.files.Dir(path);
    const std::size_t folder = path.rfind(platform.files.separatorOf(path));
    if (name.empty() || folder == std::u16string_view::npos)
        return std::u16string(path);
    return std::u16string(path.substr(0, folder + 1)) + name;
}

LyricLines readLyricFile(const platform::Platform &platform, std::u16string_view path) {
    const RawLines raw = readRawLines(platform, path);
    return {platform.ansi.decodeTogether(raw.lines, false), raw.failure};
}

void copyLyricFile(const platform::Platform &platform, std::u16string_view from,
                   std::u16string_view to) {
    const RawLines raw = readRawLines(platform, from);
    if (raw.failure)
        throw RunTimeError(*raw.failure);
    std::string bytes;
    for (const std::string &line : raw.lines)
        bytes.append(line).append("\r\n");
    platform.files.writeNew(to, bytes, true);
}

bool isOnlyPlaceOf(const platform::Platform &platform, std::u16string_view path,
                   WrittenOverBy newWords) {
    const bool isThere = passOver([&] { platform.files.FileLen(path); });
    return isThere && !mayGo(platform.ansi, readRawLines(platform, path), newWords);
}

} // namespace velmora
