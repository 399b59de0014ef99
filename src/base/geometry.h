#pragma once

// Units of the window model. A twip is 1/1440 inch; at 96 dpi, and in the whole program, 15 twips
// are one logical pixel. The view scales logical pixels to the screen's real density.

#include <cstdint>

namespace velmora {

using Twips = float;

inline constexpr Twips twipsPerPixel = 15.0F;

struct PointTwips {
    Twips x = 0;
    Twips y = 0;
    friend bool operator==(const PointTwips &, const PointTwips &) = default;
};

struct RectTwips {
    Twips left = 0;
    Twips top = 0;
    Twips width = 0;
    Twips height = 0;
    friend bool operator==(const RectTwips &, const RectTwips &) = default;
};

// Screen measures are whole logical pixels, origin at the primary monitor's top left.
struct PointPixels {
    std::int32_t x = 0;
    std::int32_t y = 0;
    friend bool operator==(const PointPixels &, const PointPixels &) = default;
};

struct RectPixels {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
    friend bool operator==(const RectPixels &, const RectPixels &) = default;
};

// 0x00BBGGRR, or a system colour when the top bit is set (see forms/font.h).
using Colour = std::uint32_t;

// The key colour: what a window shows in it is a hole that clicks pass through.
inline constexpr Colour keyColour = 0x00C7C7C7;

} // namespace velmora
