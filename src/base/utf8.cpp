#include "base/utf8.h"

#include "base/text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace velmora {

std::size_t asciiRun(std::string_view bytes) noexcept {
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, bytes.data() + at, 8);
        if ((eight & 0x8080808080808080U) != 0)
            break;
    }
    while (at < bytes.size() && static_cast<unsigned char>(bytes[at]) < 0x80)
        ++at;
    return at;
}

std::size_t copyAscii(std::u16string_view text, char *out) noexcept {
    // Blocks of one size, held apart from what they are copied to, become a few wide instructions.
    constexpr std::size_t block = 16;
    std::size_t at = 0;
    for (; at + block <= text.size(); at += block) {
        char16_t units[block];
        std::memcpy(units, text.data() + at, sizeof units);
        char16_t all = 0;
        for (const char16_t unit : units)
            all |= unit;
        if (all >= 0x80)
            break;
        char bytes[block];
        for (std::size_t i = 0; i < block; ++i)
            bytes[i] = static_cast<char>(units[i]);
        std::memcpy(out + at, bytes, sizeof bytes);
    }
    for (; at < text.size() && text[at] < 0x80; ++at)
        out[at] = static_cast<char>(text[at]);
    return at;
}

Utf8Sequence utf8SequenceAt(std::string_view bytes) noexcept {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = byte(0);
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
    char32_t codePoint = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (i == bytes.size())
            return {0xFFFD, i, false, true};
        if (byte(i) < low || byte(i) > high)
            return {0xFFFD, i, false, false};
        codePoint = codePoint << 6 | (byte(i) & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return {codePoint, length, true, false};
}

char *putUtf8(char32_t codePoint, char *out) noexcept {
    if (codePoint < 0x80) {
        *out++ = static_cast<char>(codePoint);
        return out;
    }
    if (codePoint < 0x800) {
        *out++ = static_cast<char>(0xC0 | codePoint >> 6);
    } else if (codePoint < 0x10000) {
        *out++ = static_cast<char>(0xE0 | codePoint >> 12);
        *out++ = static_cast<char>(0x80 | (codePoint >> 6 & 0x3F));
    } else {
        *out++ = static_cast<char>(0xF0 | codePoint >> 18);
        *out++ = static_cast<char>(0x80 | (codePoint >> 12 & 0x3F));
        *out++ = static_cast<char>(0x80 | (codePoint >> 6 & 0x3F));
    }
    *out++ = static_cast<char>(0x80 | (codePoint & 0x3F));
    return out;
}

std::string toUtf8(std::u16string_view text) {
    std::string result;
    result.resize(text.size() * 3); // a pair takes four bytes for its two units
    char *out = result.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit < 0x80)
            *out++ = static_cast<char>(unit);
        else if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1]))
            out = putUtf8(pairCodePoint(unit, text[++i]), out);
        else
            out = putUtf8((unit & 0xF800) == 0xD800 ? 0xFFFD : unit, out);
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

std::u16string fromUtf8(std::string_view bytes) {
    std::u16string result;
    result.resize(bytes.size()); // no form has more units than bytes
    char16_t *out = result.data();
    while (!bytes.empty()) {
        const std::size_t run = asciiRun(bytes);
        out = std::copy_n(bytes.data(), run, out);
        bytes.remove_prefix(run);
        if (bytes.empty())
            break;
        const Utf8Sequence sequence = utf8SequenceAt(bytes);
        out = putUtf16(sequence.codePoint, out);
        bytes.remove_prefix(sequence.taken);
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

} // namespace velmora
