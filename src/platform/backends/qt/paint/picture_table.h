#pragma once

// The records of the generated table of drawings. Lengths are 1/64 of a drawing's unit, colours
// 0xAARRGGBB, indices count into the arrays of the table.

#include <cstdint>

namespace velmora::platform::qt::picture_table {

enum class PaintKind : std::uint8_t { None, Solid, Gradient, Hole };
enum class Verb : std::uint8_t { Move, Line, Cubic, Close };
enum class Cap : std::uint8_t { Butt, Round, Square };
enum class Join : std::uint8_t { Miter, Round, Bevel };

inline constexpr float unit = 64;

struct PaintRecord {
    PaintKind kind;
    std::uint32_t value; // the colour, or the gradient's index
};

struct StopRecord {
    std::uint16_t offset; // 0 to 65535
    std::uint32_t colour;
};

struct GradientRecord {
    std::int16_t fromX, fromY, toX, toY;
    std::uint16_t firstStop, stopCount;
};

struct ShapeRecord {
    std::uint16_t firstVerb, verbCount;
    std::uint32_t firstCoordinate; // x and y in turns
    PaintRecord fill, stroke;
    std::uint16_t strokeWidth;
    Cap cap;
    Join join;
    bool evenOdd;
    bool snap; // its edges along the axes lie on device pixels
};

struct PictureRecord {
    std::int16_t left, top;
    std::uint16_t width, height;
    // What keeps its distance to the left, top, right and bottom edge.
    std::uint16_t slice[4];
    bool sliced;
    std::uint16_t firstShape, shapeCount;
};

} // namespace velmora::platform::qt::picture_table
