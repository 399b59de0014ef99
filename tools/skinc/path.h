#pragma once

// Outlines as four verbs. Every shape a drawing may hold is brought to this form when it is
// compiled, so that the painter knows nothing else.

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace velmora::skinc {

struct Point {
    double x = 0;
    double y = 0;
};

enum class Verb : std::uint8_t { Move, Line, Cubic, Close };

struct Path {
    std::vector<Verb> verbs;
    std::vector<Point> points; // Move and Line take one, Cubic three, Close none

    void move(Point to);
    void line(Point to);
    void cubic(Point control1, Point control2, Point to);
    void close();
};

// x' = a x + c y + e, y' = b x + d y + f.
struct Transform {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    Point apply(Point p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    // First `inner`, then this.
    Transform after(const Transform &inner) const;
    // How much longer a stroke's width becomes; the transforms that drawings use keep proportions.
    double scale() const;
};

// What the functions below throw; the caller adds file and line.
class GeometryError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Numbers separated by blanks and commas.
std::vector<double> parseNumbers(std::string_view text);

// The path data of the `d` attribute: M L H V C Q A Z, absolute and relative.
Path parsePathData(std::string_view text);

// translate, scale and rotate, one after the other.
Transform parseTransform(std::string_view text);

Path rectangle(double x, double y, double width, double height, double radiusX, double radiusY);
Path ellipse(Point centre, double radiusX, double radiusY);
Path polyline(const std::vector<double> &coordinates, bool closed);

Path transformed(const Path &path, const Transform &transform);

// Left, top, right, bottom of all points, control points included.
std::array<double, 4> bounds(const Path &path);

} // namespace velmora::skinc
