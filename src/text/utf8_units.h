#pragma once

// UTF-8 as files, settings and names use it here: with the units that stand for file-name bytes.
//
// A byte of a file name that is no UTF-8, and CR and LF inside a file name, live in memory as the
// lone unit U+DC00 + byte. In files they have the three-byte form of that unit, which counts as
// valid.

#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

// U+DC0A, U+DC0D and U+DC80 to U+DCFF.
bool isFileNameUnit(char16_t unit) noexcept;

// Text to bytes; file-name units become their three-byte form, any other half surrogate "?".
std::string encodeUtf8Units(std::u16string_view text);
// The same, onto the end of `bytes`.
void appendUtf8Units(std::string &bytes, std::u16string_view text);
std::size_t utf8UnitsByteCount(std::u16string_view text) noexcept;

// Absent when the bytes are not valid as a whole. `dropCutEnd`: an incomplete character at the end
// is dropped and does not count.
std::optional<std::u16string> decodeUtf8Units(std::string_view bytes, bool dropCutEnd = false);

// The same with U+FFFD for each maximal invalid part.
std::u16string decodeUtf8UnitsAnyway(std::string_view bytes, bool dropCutEnd = false);

} // namespace velmora::platform
