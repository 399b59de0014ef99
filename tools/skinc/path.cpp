#include "path.h"

#include <algorithm>
#include <cmath>

namespace velmora::skinc {

namespace {

// The distance of control points that makes a quarter circle of radius 1.
constexpr double quarter = 0.5522847498;

} // namespace

void Path::move(Point to) {
    verbs.push_back(Verb::Move);
    points.push_back(to);
}

void Path::line(Point to) {
    verbs.push_back(Verb::Line);
    points.push_back(to);
}

void Path::cubic(Point control1, Point control2, Point to) {
    verbs.push_back(Verb::Cubic);
    points.insert(points.end(), {control1, control2, to});
}

void Path::close() { verbs.push_back(Verb::Close); }

Transform Transform::after(const Transform &inner) const {
    Transform result;
    result.a = a * inner.a + c * inner.b;
    result.b = b * inner.a + d * inner.b;
    result.c = a * inner.c + c * inner.d;
    result.d = b * inner.c + d * inner.d;
    const Point shift = apply({inner.e, inner.f});
    result.e = shift.x;
    result.f = shift.y;
    return result;
}

double Transform::scale() const { return std::sqrt(std::abs(a * d - b * c)); }

Path rectangle(double x, double y, double width, double height, double radiusX, double radiusY) {
    const double rx = std::min(radiusX, width / 2);
    const double ry = std::min(radiusY, height / 2);
    const double right = x + width;
    const double bottom = y + height;
    Path path;
    if (rx <= 0 || ry <= 0) {
        path.move({x, y});
        path.line({right, y});
        path.line({right, bottom});
        path.line({x, bottom});
        path.close();
        return path;
    }
    const double kx = rx * (1 - quarter);
    const double ky = ry * (1 - quarter);
    path.move({x + rx, y});
    path.line({right - rx, y});
    path.cubic({right - kx, y}, {right, y + ky}, {right, y + ry});
    path.line({right, bottom - ry});
    path.cubic({right, bottom - ky}, {right - kx, bottom}, {right - rx, bottom});
    path.line({x + rx, bottom});
    path.cubic({x + kx, bottom}, {x, bottom - ky}, {x, bottom - ry});
    path.line({x, y + ry});
    path.cubic({x, y + ky}, {x + kx, y}, {x + rx, y});
    path.close();
    return path;
}

Path ellipse(Point centre, double radiusX, double radiusY) {
    const double kx = radiusX * quarter;
    const double ky = radiusY * quarter;
    const auto [x, y] = centre;
    Path path;
    path.move({x + radiusX, y});
    path.cubic({x + radiusX, y + ky}, {x + kx, y + radiusY}, {x, y + radiusY});
    path.cubic({x - kx, y + radiusY}, {x - radiusX, y + ky}, {x - radiusX, y});
    path.cubic({x - radiusX, y - ky}, {x - kx, y - radiusY}, {x, y - radiusY});
    path.cubic({x + kx, y - radiusY}, {x + radiusX, y - ky}, {x + radiusX, y});
    path.close();
    return path;
}

Path polyline(const std::vector<double> &coordinates, bool closed) {
    if (coordinates.size() < 4 || coordinates.size() % 2 != 0)
        throw GeometryError("points come in pairs, two pairs at least");
    Path path;
    path.move({coordinates[0], coordinates[1]});
    for (std::size_t i = 2; i < coordinates.size(); i += 2)
        path.line({coordinates[i], coordinates[i + 1]});
    if (closed)
        path.close();
    return path;
}

Path transformed(const Path &path, const Transform &transform) {
    Path result = path;
    for (Point &point : result.points)
        point = transform.apply(point);
    return result;
}

std::array<double, 4> bounds(const Path &path) {
    if (path.points.empty())
        return {0, 0, 0, 0};
    std::array<double, 4> box = {path.points[0].x, path.points[0].y, path.points[0].x,
                                 path.points[0].y};
    for (const Point &point : path.points) {
        box[0] = std::min(box[0], point.x);
        box[1] = std::min(box[1], point.y);
        box[2] = std::max(box[2], point.x);
        box[3] = std::max(box[3], point.y);
    }
    return box;
}

} // namespace velmora::skinc
