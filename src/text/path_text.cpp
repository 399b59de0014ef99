#include "text/path_text.h"

#include "base/ascii.h"
#include "base/utf8.h"
#include "text/utf8_units.h"

namespace velmora::platform {

namespace {

constexpr char16_t byteUnits = 0xDC00;

bool isLetter(char16_t unit) noexcept {
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

} // namespace

std::string pathBytes(std::u16string_view path) {
    std::string result;
    result.resize(path.size() * 3);
    char *out = result.data();
    for (std::size_t i = 0; i < path.size(); ++i) {
        const char16_t unit = path[i];
        if (unit < 0x80)
            *out++ = static_cast<char>(unit);
        else if (isHighSurrogate(unit) && i + 1 < path.size() && isLowSurrogate(path[i + 1]))
            out = putUtf8(pairCodePoint(unit, path[++i]), out);
        else if (isFileNameUnit(unit))
            *out++ = static_cast<char>(unit - byteUnits);
        else
            out = putUtf8((unit & 0xF800) == 0xD800 ? 0xFFFD : unit, out);
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

std::u16string pathFromBytes(std::string_view bytes) {
    std::u16string result;
    result.resize(bytes.size());
    char16_t *out = result.data();
    const auto putUnit = [&](char byte) {
        *out++ = static_cast<char16_t>(byteUnits + static_cast<unsigned char>(byte));
    };
    while (!bytes.empty()) {
        const unsigned char front = static_cast<unsigned char>(bytes.front());
        if (front == '\r' || front == '\n') {
            putUnit(bytes.front());
            bytes.remove_prefix(1);
        } else if (front < 0x80) {
            *out++ = front;
            bytes.remove_prefix(1);
        } else {
            const Utf8Sequence sequence = utf8SequenceAt(bytes);
            if (sequence.valid)
                out = putUtf16(sequence.codePoint, out);
            else
                for (std::size_t i = 0; i < sequence.taken; ++i)
                    putUnit(bytes[i]);
            bytes.remove_prefix(sequence.taken);
        }
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

char16_t pathSeparatorOf(std::u16string_view path) noexcept {
    const bool drive = path.size() >= 2 && isLetter(path[0]) && path[1] == u':';
    return drive || path.substr(0, 2) == u"\\\\" ? u'\\' : u'/';
}

std::u16string_view baseName(std::u16string_view path) noexcept {
    return path.substr(folderPart(path).size());
}

std::u16string_view folderPart(std::u16string_view path) noexcept {
    const std::size_t last = path.rfind(pathSeparatorOf(path));
    return last == std::u16string_view::npos ? std::u16string_view() : path.substr(0, last + 1);
}

std::u16string typedFolder(std::u16string_view text, std::u16string_view home) {
    const bool atHome = text == u"~" || text.substr(0, 2) == u"~/";
    if (!atHome || home.empty())
        return std::u16string(text);
    return std::u16string(home).append(text.substr(1));
}

std::u16string shortPath(std::u16string_view path) {
    std::u16string result;
    for (const char byte : pathBytes(path)) {
        const bool plain = byte > ' ' && byte < 0x7F && byte != '"' && byte != '%';
        if (plain)
            result += static_cast<char16_t>(byte);
        else
            addEscaped(result, byte);
    }
    return result;
}

std::optional<std::string> decodeShortPath(std::u16string_view shortPath) {
    std::string bytes;
    bytes.reserve(shortPath.size());
    for (std::size_t i = 0; i < shortPath.size(); ++i) {
        const bool escape = shortPath[i] == u'%';
        const int byte = escape ? escapedByte(shortPath, i) : shortPath[i];
        // A NUL byte is in no name, however it is written.
        if (byte <= 0 || (!escape && (byte <= ' ' || byte > '~')))
            return std::nullopt;
        bytes += static_cast<char>(byte);
        i += escape ? 2 : 0;
    }
    if (bytes.empty())
        return std::nullopt;
    return bytes;
}

} // namespace velmora::platform
