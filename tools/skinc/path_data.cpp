// Reading the texts that describe geometry: number lists, transforms and path data.

#include "path.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace velmora::skinc {

namespace {

constexpr double pi = 3.14159265358979323846;

class Numbers {
public:
    explicit Numbers(std::string_view text) : text_(text) {}

    void skipSeparators() {
        while (at_ < text_.size() && std::string_view(" \t\r\n,").find(text_[at_]) != text_.npos)
            ++at_;
    }
    bool atEnd() {
        skipSeparators();
        return at_ >= text_.size();
    }
    bool atNumber() {
        return !atEnd() && std::string_view("+-.0123456789").find(text_[at_]) != text_.npos;
    }
    char letter() { return text_[at_++]; }

    double number() {
        skipSeparators();
        std::size_t from = at_;
        if (from < text_.size() && text_[from] == '+')
            ++from;
        double value = 0;
        const auto [end, fault] =
            std::from_chars(text_.data() + from, text_.data() + text_.size(), value);
        if (fault != std::errc() || !std::isfinite(value))
            throw GeometryError("expected a number at '" + std::string(text_.substr(at_, 12)) +
                                "'");
        at_ = static_cast<std::size_t>(end - text_.data());
        return value;
    }

    // The flags of an arc may stand without blanks between them.
    bool flag() {
        skipSeparators();
        if (at_ >= text_.size() || (text_[at_] != '0' && text_[at_] != '1'))
            throw GeometryError("an arc's flag is 0 or 1");
        return text_[at_++] == '1';
    }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

double angleBetween(Point from, Point to) {
    return std::atan2(from.x * to.y - from.y * to.x, from.x * to.x + from.y * to.y);
}

struct Arc {
    double radiusX = 0;
    double radiusY = 0;
    double rotation = 0; // radians
    bool large = false;
    bool sweep = false;
};

// An elliptical arc as cubics of at most a quarter turn each: first its centre from its two ends.
void appendArc(Path &path, Point from, Arc arc, Point to) {
    if (from.x == to.x && from.y == to.y)
        return;
    double rx = std::abs(arc.radiusX);
    double ry = std::abs(arc.radiusY);
    if (rx == 0 || ry == 0) {
        path.line(to);
        return;
    }
    const double cosine = std::cos(arc.rotation);
    const double sine = std::sin(arc.rotation);
    const Point half = {(from.x - to.x) / 2, (from.y - to.y) / 2};
    const Point p = {cosine * half.x + sine * half.y, -sine * half.x + cosine * half.y};
    const double reach = (p.x * p.x) / (rx * rx) + (p.y * p.y) / (ry * ry);
    if (reach > 1) {
        rx *= std::sqrt(reach);
        ry *= std::sqrt(reach);
    }
    const double numerator = rx * rx * ry * ry - rx * rx * p.y * p.y - ry * ry * p.x * p.x;
    const double denominator = rx * rx * p.y * p.y + ry * ry * p.x * p.x;
    const double factor =
        std::sqrt(std::max(0.0, numerator / denominator)) * (arc.large == arc.sweep ? -1 : 1);
    const Point c = {factor * rx * p.y / ry, -factor * ry * p.x / rx};
    const Point centre = {cosine * c.x - sine * c.y + (from.x + to.x) / 2,
                          sine * c.x + cosine * c.y + (from.y + to.y) / 2};
    const Point start = {(p.x - c.x) / rx, (p.y - c.y) / ry};
    const Point end = {(-p.x - c.x) / rx, (-p.y - c.y) / ry};
    const double first = angleBetween({1, 0}, start);
    double turn = angleBetween(start, end);
    if (arc.sweep && turn < 0)
        turn += 2 * pi;
    if (!arc.sweep && turn > 0)
        turn -= 2 * pi;
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(turn) / (pi / 2) - 1e-9)));
    const double step = turn / pieces;
    const double reachOfControls = 4.0 / 3.0 * std::tan(step / 4);
    const auto place = [&](double x, double y) {
        return Point{centre.x + cosine * rx * x - sine * ry * y,
                     centre.y + sine * rx * x + cosine * ry * y};
    };
    for (int i = 0; i < pieces; ++i) {
        const double a = first + i * step;
        const double b = a + step;
        const Point last = i + 1 == pieces ? to : place(std::cos(b), std::sin(b));
        path.cubic(place(std::cos(a) - reachOfControls * std::sin(a),
                         std::sin(a) + reachOfControls * std::cos(a)),
                   place(std::cos(b) + reachOfControls * std::sin(b),
                         std::sin(b) - reachOfControls * std::cos(b)),
                   last);
    }
}

class PathReader {
public:
    explicit PathReader(std::string_view text) : in_(text) {}

    Path read() {
        char command = '\0';
        while (!in_.atEnd()) {
            if (!in_.atNumber())
                command = in_.letter();
            else if (command == '\0' || command == 'Z' || command == 'z')
                throw GeometryError("path data needs a command ahead of its numbers");
            if (path_.verbs.empty() && command != 'M' && command != 'm')
                throw GeometryError("path data begins with M");
            relative_ = command >= 'a';
            step(command);
            // Further pairs behind a move are lines.
            if (command == 'M')
                command = 'L';
            if (command == 'm')
                command = 'l';
        }
        if (path_.verbs.empty())
            throw GeometryError("path data is empty");
        return path_;
    }

private:
    Point point() {
        const double x = in_.number();
        const double y = in_.number();
        return relative_ ? Point{now_.x + x, now_.y + y} : Point{x, y};
    }

    void lineTo(Point to) {
        path_.line(to);
        now_ = to;
    }

    void step(char command) {
        switch (command) {
        case 'M':
        case 'm':
            now_ = start_ = point();
            path_.move(now_);
            break;
        case 'L':
        case 'l':
            lineTo(point());
            break;
        case 'H':
        case 'h':
            lineTo({in_.number() + (relative_ ? now_.x : 0), now_.y});
            break;
        case 'V':
        case 'v':
            lineTo({now_.x, in_.number() + (relative_ ? now_.y : 0)});
            break;
        case 'C':
        case 'c': {
            const Point control1 = point();
            const Point control2 = point();
            const Point to = point();
            path_.cubic(control1, control2, to);
            now_ = to;
            break;
        }
        case 'Q':
        case 'q': {
            const Point control = point();
            const Point to = point();
            const auto toward = [&](Point from) {
                return Point{from.x + (control.x - from.x) * 2 / 3,
                             from.y + (control.y - from.y) * 2 / 3};
            };
            path_.cubic(toward(now_), toward(to), to);
            now_ = to;
            break;
        }
        case 'A':
        case 'a': {
            Arc arc;
            arc.radiusX = in_.number();
            arc.radiusY = in_.number();
            arc.rotation = in_.number() * pi / 180;
            arc.large = in_.flag();
            arc.sweep = in_.flag();
            const Point to = point();
            appendArc(path_, now_, arc, to);
            now_ = to;
            break;
        }
        case 'Z':
        case 'z':
            path_.close();
            now_ = start_;
            break;
        default:
            throw GeometryError(std::string("unknown path command '") + command + "'");
        }
    }

    Numbers in_;
    Path path_;
    Point now_;
    Point start_;
    bool relative_ = false;
};

Transform named(std::string_view name, const std::vector<double> &v) {
    Transform t;
    if (name == "translate" && (v.size() == 1 || v.size() == 2)) {
        t.e = v[0];
        t.f = v.size() == 2 ? v[1] : 0;
    } else if (name == "scale" && (v.size() == 1 || v.size() == 2)) {
        t.a = v[0];
        t.d = v.size() == 2 ? v[1] : v[0];
    } else if (name == "rotate" && (v.size() == 1 || v.size() == 3)) {
        const double angle = v[0] * pi / 180;
        t.a = t.d = std::cos(angle);
        t.b = std::sin(angle);
        t.c = -t.b;
        if (v.size() == 3) {
            t.e = v[1] - t.a * v[1] - t.c * v[2];
            t.f = v[2] - t.b * v[1] - t.d * v[2];
        }
    } else {
        throw GeometryError("unknown transform '" + std::string(name) + "'");
    }
    return t;
}

} // namespace

std::vector<double> parseNumbers(std::string_view text) {
    Numbers in(text);
    std::vector<double> result;
    while (!in.atEnd())
        result.push_back(in.number());
    return result;
}

Path parsePathData(std::string_view text) { return PathReader(text).read(); }

Transform parseTransform(std::string_view text) {
    Transform result;
    while (true) {
        const std::size_t begin = text.find_first_not_of(" \t\r\n,");
        if (begin == text.npos)
            return result;
        const std::size_t open = text.find('(', begin);
        const std::size_t close = text.find(')', begin);
        if (open == text.npos || close == text.npos || close < open)
            throw GeometryError("a transform reads name(numbers)");
        const std::string_view name = text.substr(begin, open - begin);
        result = result.after(named(name, parseNumbers(text.substr(open + 1, close - open - 1))));
        text = text.substr(close + 1);
    }
}

} // namespace velmora::skinc
