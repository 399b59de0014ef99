#pragma once

// A drawing as the painter gets it: filled and stroked outlines in the order of painting.
//
// One unit of the view box is one logical pixel. A drawing scales uniformly and is centred in its
// target, unless it has insets (`data-slice="left top right bottom"`): then what lies within an
// inset keeps its distance to that edge and the middle stretches.
//
// Solid #C7C7C7 as a fill is a hole. Shapes with edges along the axes are placed on device pixels
// when the drawing has insets, or where `data-snap="on"` stands; `data-snap="off"` stops it. The
// attribute is inherited.

#include "palette.h"
#include "path.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::skinc {

enum class PaintKind : std::uint8_t { None, Solid, Gradient, Hole };

struct Stop {
    double offset = 0;
    Argb colour = 0;
};

struct Gradient {
    Point from; // view box units
    Point to;
    std::vector<Stop> stops;
};

struct Paint {
    PaintKind kind = PaintKind::None;
    Argb colour = 0;
    Gradient gradient;
};

enum class Cap : std::uint8_t { Butt, Round, Square };
enum class Join : std::uint8_t { Miter, Round, Bevel };

struct Shape {
    Path path;
    Paint fill;
    Paint stroke;
    double strokeWidth = 1;
    Cap cap = Cap::Butt;
    Join join = Join::Miter;
    bool evenOdd = false;
    bool snap = false;
};

struct Drawing {
    std::string name;
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
    bool sliced = false;
    std::array<double, 4> slice = {}; // left, top, right, bottom
    std::vector<Shape> shapes;
};

// Compiles one source. `file` names it in messages; `name` is the drawing's own. Throws
// CompileError for anything that the painter would not show as it is written: unknown elements,
// attributes, colours, units and references.
Drawing compileDrawing(const std::string &file, const std::string &name, std::string_view text,
                       const Palette &palette);

} // namespace velmora::skinc
