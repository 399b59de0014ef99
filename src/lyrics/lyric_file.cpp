#include "lyrics/lyric_file.h"

#include "base/text.h"
#include "platform/ansi.h"
#include "platform/files.h"
#include "platform/platform.h"

#include <cstdint>
#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t largestFile = std::int64_t{16} * 1024 * 1024; // bytes
// Far beyond what a list takes: short lines must not grow to many times the file in memory.
constexpr std::size_t mostLines = std::size_t{1} << 18;

bool isBlank(std::string_view line) noexcept {
    return line.find_first_not_of(' ') == std::string_view::npos;
}

// The length is counted as well as asked for: a file may grow meanwhile, or tell no length.
void readLines(platform::LineReader &reader, std::vector<std::string> &lines) {
    std::int64_t total = 0;
    while (!reader.endOfFile()) {
        std::string line = reader.readLine();
        total += static_cast<std::int64_t>(line.size()) + 1;
        if (total > largestFile + 1) {
            raise(ErrorNumber::DeviceIo);
        }
        if (!isBlank(line)) {
            if (lines.size() == mostLines) {
                raise(ErrorNumber::Overflow);
            }
            lines.push_back(std::move(line));
        }
    }
}

} // namespace

std::u16string pathOnDisk(const platform::Platform &platform, std::u16string_view path) {
    const std::u16string name = platform.files.Dir(path);
    const std::size_t folder = path.rfind(platform.files.separatorOf(path));
    if (name.empty() || folder == std::u16string_view::npos) {
        return std::u16string(path);
    }
    return std::u16string(path.substr(0, folder + 1)) + name;
}

LyricLines readLyricFile(const platform::Platform &platform, std::u16string_view path) {
    LyricLines result;
    std::vector<std::string> bytes;
    try {
        const std::u16string onDisk = pathOnDisk(platform, path);
        if (platform.files.FileLen(onDisk) > largestFile) {
            raise(ErrorNumber::DeviceIo);
        }
        readLines(*platform.files.openInput(onDisk), bytes);
    } catch (const RunTimeError &failure) {
        result.failure = failure;
    }
    result.lines = platform.ansi.decodeTogether(bytes, false);
    return result;
}

} // namespace velmora
