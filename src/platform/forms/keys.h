#pragma once

// Codes of keys, as a KeyEvent carries them: Windows virtual keys.

#include <cstdint>

namespace velmora::forms {

inline constexpr std::int16_t keyEnter = 13;
inline constexpr std::int16_t keyEscape = 27;
inline constexpr std::int16_t keySpace = 32;
inline constexpr std::int16_t keyDelete = 46;
inline constexpr std::int16_t keyA = 'A';
inline constexpr std::int16_t keyO = 'O';
inline constexpr std::int16_t keyS = 'S';
inline constexpr std::int16_t keyF1 = 112;
inline constexpr std::int16_t keyF2 = 113;
inline constexpr std::int16_t keyF3 = 114;
inline constexpr std::int16_t keyF4 = 115;
inline constexpr std::int16_t keyF5 = 116;
inline constexpr std::int16_t keyF6 = 117;
inline constexpr std::int16_t keyF7 = 118;
inline constexpr std::int16_t keyF8 = 119;
inline constexpr std::int16_t keyF9 = 120;
inline constexpr std::int16_t keyF10 = 121;
inline constexpr std::int16_t keyF11 = 122;
inline constexpr std::int16_t keyF12 = 123;

} // namespace velmora::forms
