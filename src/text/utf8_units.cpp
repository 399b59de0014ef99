#include "text/utf8_units.h"

#include "base/utf8.h"

#include <algorithm>

namespace velmora::platform {

namespace {

// The file-name unit whose three-byte form begins the bytes; 0 if none does.
char16_t unitFormAt(std::string_view bytes) noexcept {
    if (bytes.size() < 3 || bytes[0] != '\xED')
        return 0;
    const auto second = static_cast<unsigned char>(bytes[1]);
    const auto third = static_cast<unsigned char>(bytes[2]);
    if ((second & 0xC0) != 0x80 || (third & 0xC0) != 0x80)
        return 0;
    const auto unit = static_cast<char16_t>(0xD000 | (second & 0x3F) << 6 | (third & 0x3F));
    return isFileNameUnit(unit) ? unit : char16_t{0};
}

// Whether the bytes end inside the three-byte form of a file-name unit.
bool cutUnitFormAt(std::string_view bytes) noexcept {
    return bytes.size() == 2 && bytes[0] == '\xED' &&
           (bytes[1] == '\xB0' || bytes[1] == '\xB2' || bytes[1] == '\xB3');
}

enum class OnInvalid { Stop, Replace };

bool decodeInto(std::u16string &result, std::string_view bytes, bool dropCutEnd,
                OnInvalid onInvalid) {
    result.resize(bytes.size()); // no form has more units than bytes
    char16_t *out = result.data();
    while (!bytes.empty()) {
        const std::size_t run = asciiRun(bytes);
        out = std::copy_n(bytes.data(), run, out);
        bytes.remove_prefix(run);
        if (bytes.empty())
            break;
        const Utf8Sequence sequence = utf8SequenceAt(bytes);
        if (sequence.valid) {
            out = putUtf16(sequence.codePoint, out);
            bytes.remove_prefix(sequence.taken);
        } else if (const char16_t unit = unitFormAt(bytes); unit != 0) {
            *out++ = unit;
            bytes.remove_prefix(3);
        } else if (dropCutEnd && (sequence.cut || cutUnitFormAt(bytes))) {
            break;
        } else if (onInvalid == OnInvalid::Stop) {
            return false;
        } else {
            *out++ = u'\xFFFD';
            bytes.remove_prefix(sequence.taken);
        }
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return true;
}

} // namespace

bool isFileNameUnit(char16_t unit) noexcept {
    return (unit >= 0xDC80 && unit <= 0xDCFF) || unit == 0xDC0A || unit == 0xDC0D;
}

std::string encodeUtf8Units(std::u16string_view text) {
    std::string result;
    appendUtf8Units(result, text);
    return result;
}

void appendUtf8Units(std::string &bytes, std::u16string_view text) {
    const std::size_t begin = bytes.size();
    bytes.resize(begin + text.size() * 3);
    char *out = bytes.data() + begin;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit < 0x80)
            *out++ = static_cast<char>(unit);
        else if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1]))
            out = putUtf8(pairCodePoint(unit, text[++i]), out);
        else if ((unit & 0xF800) == 0xD800 && !isFileNameUnit(unit))
            *out++ = '?';
        else
            out = putUtf8(unit, out);
    }
    bytes.resize(static_cast<std::size_t>(out - bytes.data()));
}

std::size_t utf8UnitsByteCount(std::u16string_view text) noexcept {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit < 0x80) {
            count += 1;
        } else if (unit < 0x800) {
            count += 2;
        } else if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            count += 4;
            ++i;
        } else {
            count += (unit & 0xF800) == 0xD800 && !isFileNameUnit(unit) ? 1 : 3;
        }
    }
    return count;
}

std::optional<std::u16string> decodeUtf8Units(std::string_view bytes, bool dropCutEnd) {
    std::u16string result;
    if (!decodeInto(result, bytes, dropCutEnd, OnInvalid::Stop))
        return std::nullopt;
    return result;
}

std::u16string decodeUtf8UnitsAnyway(std::string_view bytes, bool dropCutEnd) {
    std::u16string result;
    decodeInto(result, bytes, dropCutEnd, OnInvalid::Replace);
    return result;
}

} // namespace velmora::platform
