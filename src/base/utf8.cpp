#include "base/text.h"

#include <cstdint>
#include <cstring>

namespace velmora {

namespace {

constexpr char16_t replacement = u'\xFFFD';

bool isHigh(char16_t unit) noexcept { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) noexcept { return (unit & 0xFC00) == 0xDC00; }
bool isTail(unsigned char byte) noexcept { return (byte & 0xC0) == 0x80; }

// Length of the ASCII run at the front.
std::size_t asciiRun(const char *bytes, std::size_t size) noexcept {
    std::size_t at = 0;
    for (; at + 8 <= size; at += 8) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, bytes + at, 8);
        if ((eight & 0x8080808080808080U) != 0)
            break;
    }
    while (at < size && static_cast<unsigned char>(bytes[at]) < 0x80)
        ++at;
    return at;
}

// One sequence that begins with a byte above 127. `taken` is its length, or that of its maximal
// well-formed beginning when it is no character; then the code point is U+FFFD.
struct Sequence {
    char32_t codePoint = replacement;
    std::size_t taken = 1;
};

Sequence sequenceAt(const unsigned char *bytes, std::size_t size) noexcept {
    const unsigned char lead = bytes[0];
    std::size_t length = 0;
    unsigned char low = 0x80; // limits of the second byte: no over-long forms, no surrogates
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : low;
        high = lead == 0xED ? 0x9F : high;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : low;
        high = lead == 0xF4 ? 0x8F : high;
    } else {
        return {};
    }
    if (size < 2 || bytes[1] < low || bytes[1] > high)
        return {};
    char32_t codePoint = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (i >= size || !isTail(bytes[i]))
            return {replacement, i};
        codePoint = codePoint << 6 | (bytes[i] & 0x3FU);
    }
    return {codePoint, length};
}

} // namespace

std::string toUtf8(std::u16string_view text) {
    std::string result;
    result.resize(text.size() * 3);
    char *out = result.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
        char16_t unit = text[i];
        if (unit < 0x80) {
            *out++ = static_cast<char>(unit);
        } else if (unit < 0x800) {
            *out++ = static_cast<char>(0xC0 | unit >> 6);
            *out++ = static_cast<char>(0x80 | (unit & 0x3F));
        } else if (isHigh(unit) && i + 1 < text.size() && isLow(text[i + 1])) {
            const char32_t codePoint = 0x10000U + ((unit & 0x3FFU) << 10 | (text[++i] & 0x3FFU));
            *out++ = static_cast<char>(0xF0 | codePoint >> 18);
            *out++ = static_cast<char>(0x80 | (codePoint >> 12 & 0x3F));
            *out++ = static_cast<char>(0x80 | (codePoint >> 6 & 0x3F));
            *out++ = static_cast<char>(0x80 | (codePoint & 0x3F));
        } else {
            if (isHigh(unit) || isLow(unit))
                unit = replacement;
            *out++ = static_cast<char>(0xE0 | unit >> 12);
            *out++ = static_cast<char>(0x80 | (unit >> 6 & 0x3F));
            *out++ = static_cast<char>(0x80 | (unit & 0x3F));
        }
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

std::u16string fromUtf8(std::string_view bytes) {
    std::u16string result;
    result.reserve(bytes.size());
    std::size_t at = 0;
    while (at < bytes.size()) {
        const std::size_t run = asciiRun(bytes.data() + at, bytes.size() - at);
        result.append(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                      bytes.begin() + static_cast<std::ptrdiff_t>(at + run));
        at += run;
        if (at == bytes.size())
            break;
        const auto *rest = reinterpret_cast<const unsigned char *>(bytes.data() + at);
        const Sequence sequence = sequenceAt(rest, bytes.size() - at);
        if (sequence.codePoint >= 0x10000) {
            result += static_cast<char16_t>(0xD7C0 + (sequence.codePoint >> 10));
            result += static_cast<char16_t>(0xDC00 + (sequence.codePoint & 0x3FF));
        } else {
            result += static_cast<char16_t>(sequence.codePoint);
        }
        at += sequence.taken;
    }
    return result;
}

} // namespace velmora
