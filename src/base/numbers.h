#pragma once

// The numeric conversions the program leans on everywhere, each once.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

// Rounds to the nearest whole number, a half going to the even neighbour.
double roundHalfEven(double value) noexcept;

// The same, stored in 32 or 16 bits; raises Overflow when it does not fit.
std::int32_t roundToInt32(double value);
std::int16_t roundToInt16(double value);

// The leading-number rule: skips leading blanks, then takes sign, digits, one point and digits; the
// rest is ignored. Nothing numeric in front gives 0. "12abc" is 12, " -3.5x" is -3.5, "abc" is 0.
double leadingNumber(std::u16string_view text) noexcept;

// `leadingNumber` rounded half to even and held to the range of 32 bits.
std::int32_t leadingInt32(std::u16string_view text) noexcept;

// The strict conversion: a whole number text between blanks, in the range of 32 bits; anything else
// is absent.
std::optional<std::int32_t> strictInt32(std::u16string_view text) noexcept;

// Sums and narrowing of 16-bit signed numbers that raise Overflow outside -32768 to 32767.
std::int16_t toInt16(std::int64_t value);
std::int16_t addInt16(std::int16_t a, std::int16_t b);

std::u16string decimal(std::int64_t value);

// "00": at least two digits.
std::u16string format00(std::int64_t value);
// "0.00": two decimals, point ".", half away from zero as the format routine rounds (it looks at
// 15 significant digits, so 2.675 gives "2.68"). No number at all (NaN) counts as 0.
std::u16string format0_00(double value);
// "###,###,####": groups of three by ",", and the empty text for 0.
std::u16string formatGrouped(std::int64_t value);
// The same pattern applied to a text: one that is a decimal number between blanks is rounded to a
// whole number (half away from zero) and grouped; any other text comes back as it stands.
std::u16string formatGrouped(std::u16string_view text);

} // namespace velmora
