#pragma once

// Texts in and out of arrays of bytes, in the code page in force.

#include <optional>
#include <string>
#include <string_view>

namespace velmora {

namespace platform {
class AnsiText;
}

// An array of bytes; absent: never allocated.
using ByteArray = std::optional<std::string>;

bool isBytesEmpty(const ByteArray &bytes) noexcept;

// An array that was never allocated becomes the bytes of the text. Any other keeps its size: the
// text is filled up with NULs to as many units, and as many bytes of it as fit are copied.
void textToBytes(const platform::AnsiText &ansi, ByteArray &bytes, std::u16string &text);

std::u16string bytesToText(const platform::AnsiText &ansi, const ByteArray &bytes);

} // namespace velmora
