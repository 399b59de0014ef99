#include "catalogue/lyric_file.h"

#include "base/text.h"
#include "catalogue/texts.h"
#include "text/ansi_conversion.h"
#include "text/ini_text.h"

#include <algorithm>
#include <vector>

namespace velmora::catalogue {

namespace {

constexpr char16_t byteOrderMark = 0xFEFF;

bool isDigit(char16_t unit) noexcept { return unit >= u'0' && unit <= u'9'; }

std::u16string fromUtf16(std::string_view bytes, bool bigEndian) {
    std::u16string result;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        result += static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    return result;
}

// Everything as UTF-8 or the legacy page.
std::string plainBytes(std::string_view bytes) {
    if (bytes.substr(0, 2) == "\xFF\xFE")
        return toUtf8(fromUtf16(bytes.substr(2), false));
    if (bytes.substr(0, 2) == "\xFE\xFF")
        return toUtf8(fromUtf16(bytes.substr(2), true));
    return std::string(bytes);
}

// "[1:02.30]" becomes "[01:02.30]", wherever it stands.
std::u16string withTwoDigits(std::u16string_view line) {
    std::u16string result;
    for (std::size_t i = 0; i < line.size(); ++i) {
        result += line[i];
        if (line[i] == u'[' && i + 3 < line.size() && isDigit(line[i + 1]) && line[i + 2] == u':' &&
            isDigit(line[i + 3]))
            result += u'0';
    }
    return result;
}

std::u16string tagOf(std::u16string_view line, std::u16string_view name) {
    line = trim(line);
    if (!equalsIgnoringCase(leftPart(line, 4), name) || line.back() != u']')
        return u"";
    return oneLine(line.substr(4, line.size() - 5));
}

} // namespace

std::optional<LyricFile> readLyric(std::string_view bytes) {
    const std::string plain = plainBytes(bytes);
    std::vector<std::string> lines;
    for (const platform::FileLine &line : platform::linesOf(plain))
        lines.push_back(plain.substr(line.begin, line.end - line.begin));
    const platform::AnsiConversion ansi([] { return std::u16string(); });
    LyricFile lyric;
    bool empty = true;
    for (std::u16string &line : ansi.decodeTogether(lines, false)) {
        std::replace(line.begin(), line.end(), u'\0', u' ');
        if (lyric.bytes.empty()) // marks of whatever encoding
            line.erase(0, std::min(line.find_first_not_of(byteOrderMark), line.size()));
        if (lyric.title.empty())
            lyric.title = tagOf(line, u"[ti:");
        if (lyric.artist.empty())
            lyric.artist = tagOf(line, u"[ar:");
        empty = empty && oneLine(line).empty();
        lyric.bytes += toUtf8(withTwoDigits(line)) + "\r\n";
    }
    if (empty)
        return std::nullopt;
    return lyric;
}

} // namespace velmora::catalogue
