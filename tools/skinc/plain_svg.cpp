#include "emit.h"

#include <array>
#include <cstdio>

namespace velmora::skinc {

namespace {

std::string number(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.4g", value);
    return text.data();
}

std::string rgb(Argb colour) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "#%06X", static_cast<unsigned>(colour & 0xFFFFFF));
    return text.data();
}

std::string opacity(const char *name, Argb colour) {
    const unsigned alpha = colour >> 24;
    return alpha == 255 ? std::string()
                        : std::string(" ") + name + "=\"" + number(alpha / 255.0) + "\"";
}

std::string pathData(const Path &path) {
    static constexpr std::array<char, 4> letters = {'M', 'L', 'C', 'Z'};
    static constexpr std::array<std::size_t, 4> counts = {1, 1, 3, 0};
    std::string text;
    std::size_t at = 0;
    for (const Verb verb : path.verbs) {
        const auto index = static_cast<std::size_t>(verb);
        text += letters[index];
        for (std::size_t i = 0; i < counts[index]; ++i, ++at)
            text += (i ? " " : "") + number(path.points[at].x) + " " + number(path.points[at].y);
    }
    return text;
}

class PlainWriter {
public:
    std::string write(const Drawing &drawing) {
        std::string body;
        for (const Shape &shape : drawing.shapes)
            body += element(shape);
        const std::string defs = defs_.empty() ? "" : "  <defs>\n" + defs_ + "  </defs>\n";
        return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" + number(drawing.left) + " " +
               number(drawing.top) + " " + number(drawing.width) + " " + number(drawing.height) +
               "\">\n" + defs + body + "</svg>\n";
    }

private:
    std::string paint(const char *attribute, const char *opacityName, const Paint &paint) {
        const std::string begin = std::string(" ") + attribute + "=\"";
        switch (paint.kind) {
        case PaintKind::None:
        case PaintKind::Hole:
            return begin + "none\"";
        case PaintKind::Solid:
            return begin + rgb(paint.colour) + "\"" + opacity(opacityName, paint.colour);
        case PaintKind::Gradient:
            break;
        }
        const std::string id = "g" + std::to_string(++gradients_);
        const Gradient &gradient = paint.gradient;
        defs_ += "    <linearGradient id=\"" + id + "\" gradientUnits=\"userSpaceOnUse\" x1=\"" +
                 number(gradient.from.x) + "\" y1=\"" + number(gradient.from.y) + "\" x2=\"" +
                 number(gradient.to.x) + "\" y2=\"" + number(gradient.to.y) + "\">\n";
        for (const Stop &stop : gradient.stops)
            defs_ += "      <stop offset=\"" + number(stop.offset) + "\" stop-color=\"" +
                     rgb(stop.colour) + "\"" + opacity("stop-opacity", stop.colour) + "/>\n";
        defs_ += "    </linearGradient>\n";
        return begin + "url(#" + id + ")\"";
    }

    std::string element(const Shape &shape) {
        static constexpr std::array<const char *, 3> caps = {"butt", "round", "square"};
        static constexpr std::array<const char *, 3> joins = {"miter", "round", "bevel"};
        std::string text = "  <path d=\"" + pathData(shape.path) + "\"" +
                           paint("fill", "fill-opacity", shape.fill);
        if (shape.evenOdd)
            text += " fill-rule=\"evenodd\"";
        if (shape.stroke.kind != PaintKind::None)
            text += paint("stroke", "stroke-opacity", shape.stroke) + " stroke-width=\"" +
                    number(shape.strokeWidth) + "\" stroke-linecap=\"" +
                    caps[static_cast<std::size_t>(shape.cap)] + "\" stroke-linejoin=\"" +
                    joins[static_cast<std::size_t>(shape.join)] + "\"";
        return text + "/>\n";
    }

    std::string defs_;
    int gradients_ = 0;
};

} // namespace

std::string plainSvg(const Drawing &drawing) { return PlainWriter().write(drawing); }

} // namespace velmora::skinc
