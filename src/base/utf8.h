#pragma once

// The parts of UTF-8 decoding that the plain conversion (base/text.h) and the platform's code page
// conversions share.

#include <cstddef>
#include <string_view>

namespace velmora {

// One sequence that begins with a byte above 127.
struct Utf8Sequence {
    char32_t codePoint = 0xFFFD; // U+FFFD where `valid` is false
    std::size_t taken = 1;       // bytes; the maximal well-formed beginning where `valid` is false
    bool valid = false;
    bool cut = false; // not valid only because the bytes end inside it
};

// `bytes` is not empty and begins with a byte above 127.
Utf8Sequence utf8SequenceAt(std::string_view bytes) noexcept;

// The number of bytes below 128 at the front.
std::size_t asciiRun(std::string_view bytes) noexcept;

// Copies the units below 128 at the front as bytes and returns their number. There must be room for
// as many bytes as the text has units.
std::size_t copyAscii(std::u16string_view text, char *out) noexcept;

// Writes one code point; returns the place behind it. Room for two units is needed.
inline char16_t *putUtf16(char32_t codePoint, char16_t *out) noexcept {
    if (codePoint < 0x10000) {
        *out++ = static_cast<char16_t>(codePoint);
    } else {
        *out++ = static_cast<char16_t>(0xD7C0 + (codePoint >> 10));
        *out++ = static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
    }
    return out;
}

inline bool isHighSurrogate(char16_t unit) noexcept { return (unit & 0xFC00) == 0xD800; }
inline bool isLowSurrogate(char16_t unit) noexcept { return (unit & 0xFC00) == 0xDC00; }

// The code point of a surrogate pair.
inline char32_t pairCodePoint(char16_t high, char16_t low) noexcept {
    return 0x10000U + ((high & 0x3FFU) << 10 | (low & 0x3FFU));
}

// Writes one code point (a lone surrogate too, as its three-byte form); returns the place behind
// it. Room for four bytes is needed.
char *putUtf8(char32_t codePoint, char *out) noexcept;

} // namespace velmora
