#include "style.h"

#include "error.h"

#include <algorithm>
#include <cmath>

namespace velmora::skinc {

namespace {

constexpr std::string_view presentation[] = {"fill",           "stroke",          "opacity",
                                             "fill-opacity",   "stroke-opacity",  "stroke-width",
                                             "stroke-linecap", "stroke-linejoin", "fill-rule",
                                             "transform",      "data-snap",       "id"};
constexpr std::string_view ofRoot[] = {"viewBox", "data-slice", "xmlns", "width", "height"};
constexpr std::string_view ofPath[] = {"d"};
constexpr std::string_view ofRect[] = {"x", "y", "width", "height", "rx", "ry"};
constexpr std::string_view ofCircle[] = {"cx", "cy", "r"};
constexpr std::string_view ofEllipse[] = {"cx", "cy", "rx", "ry"};
constexpr std::string_view ofLine[] = {"x1", "y1", "x2", "y2"};
constexpr std::string_view ofPolygon[] = {"points"};
constexpr std::string_view ofGradient[] = {"id", "x1", "y1", "x2", "y2", "gradientUnits"};
constexpr std::string_view ofStop[] = {"offset", "stop-color", "stop-opacity"};

bool contains(std::span<const std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

Argb withOpacity(Argb colour, double opacity) {
    const double alpha = (colour >> 24) * std::clamp(opacity, 0.0, 1.0);
    return (colour & 0x00FFFFFFU) | (static_cast<Argb>(std::lround(alpha)) << 24);
}

} // namespace

void Source::fail(int line, const std::string &what) const { throw CompileError(file, line, what); }

std::vector<double> Source::numbers(const XmlAttribute &attribute) const {
    try {
        return parseNumbers(attribute.value);
    } catch (const GeometryError &fault) {
        fail(attribute.line, attribute.name + ": " + fault.what());
    }
}

double Source::number(const XmlAttribute &attribute) const {
    const std::vector<double> all = numbers(attribute);
    if (all.size() != 1)
        fail(attribute.line, attribute.name + " is one number");
    return all.front();
}

double Source::number(const XmlElement &element, const char *name) const {
    const XmlAttribute *attribute = element.find(name);
    return attribute ? number(*attribute) : 0;
}

Argb Source::colour(const XmlAttribute &attribute) const {
    Argb result = 0;
    if (!parseColour(palette, attribute.value, result))
        fail(attribute.line, "'" + attribute.value + "' is neither #RRGGBB nor a palette colour");
    return result;
}

void Source::allow(const XmlElement &element, std::span<const std::string_view> geometry) const {
    for (const XmlAttribute &attribute : element.attributes)
        if (!contains(presentation, attribute.name) && !contains(geometry, attribute.name))
            fail(attribute.line, "<" + element.name + "> does not know " + attribute.name);
}

std::span<const std::string_view> Source::geometryOf(std::string_view element) {
    if (element == "path")
        return ofPath;
    if (element == "rect")
        return ofRect;
    if (element == "circle")
        return ofCircle;
    if (element == "ellipse")
        return ofEllipse;
    if (element == "line")
        return ofLine;
    if (element == "polyline" || element == "polygon")
        return ofPolygon;
    return {};
}

void Source::addGradient(const XmlElement &element) {
    for (const XmlAttribute &attribute : element.attributes)
        if (!contains(ofGradient, attribute.name))
            fail(attribute.line, "<linearGradient> does not know " + attribute.name);
    const XmlAttribute *id = element.find("id");
    if (!id || gradients.contains(id->value))
        fail(element.line, "a gradient needs an id of its own");
    NamedGradient result;
    if (const XmlAttribute *units = element.find("gradientUnits"))
        result.ofBox = units->value != "userSpaceOnUse";
    result.gradient.from = {number(element, "x1"), number(element, "y1")};
    result.gradient.to = {element.find("x2") ? number(element, "x2") : 1, number(element, "y2")};
    for (const XmlElement &child : element.children) {
        if (child.name != "stop" || !child.find("stop-color"))
            fail(child.line, "a gradient holds stops with a stop-color");
        for (const XmlAttribute &attribute : child.attributes)
            if (!contains(ofStop, attribute.name))
                fail(attribute.line, "<stop> does not know " + attribute.name);
        Stop stop;
        stop.offset = number(child, "offset");
        stop.colour = colour(*child.find("stop-color"));
        if (const XmlAttribute *opacity = child.find("stop-opacity"))
            stop.colour = withOpacity(stop.colour, number(*opacity));
        if (stop.offset < 0 || stop.offset > 1 ||
            (!result.gradient.stops.empty() && stop.offset < result.gradient.stops.back().offset))
            fail(child.line, "offsets go from 0 to 1 in order");
        result.gradient.stops.push_back(stop);
    }
    if (result.gradient.stops.size() < 2)
        fail(element.line, "a gradient has two stops at least");
    gradients.emplace(id->value, std::move(result));
}

Style Source::styled(const Style &outer, const XmlElement &element) const {
    if (element.name == "svg")
        allow(element, ofRoot);
    else if (element.name == "g")
        allow(element, {});
    Style style = outer;
    const auto choose = [&](const XmlAttribute &attribute,
                            std::initializer_list<std::string_view> names) {
        const auto *found = std::find(names.begin(), names.end(), attribute.value);
        if (found == names.end())
            fail(attribute.line, attribute.name + " cannot be '" + attribute.value + "'");
        return static_cast<int>(found - names.begin());
    };
    for (const XmlAttribute &attribute : element.attributes) {
        if (attribute.name == "fill")
            style.fill = attribute.value;
        else if (attribute.name == "stroke")
            style.stroke = attribute.value;
        else if (attribute.name == "opacity")
            style.opacity *= number(attribute);
        else if (attribute.name == "fill-opacity")
            style.fillOpacity = number(attribute);
        else if (attribute.name == "stroke-opacity")
            style.strokeOpacity = number(attribute);
        else if (attribute.name == "stroke-width")
            style.strokeWidth = number(attribute);
        else if (attribute.name == "stroke-linecap")
            style.cap = static_cast<Cap>(choose(attribute, {"butt", "round", "square"}));
        else if (attribute.name == "stroke-linejoin")
            style.join = static_cast<Join>(choose(attribute, {"miter", "round", "bevel"}));
        else if (attribute.name == "fill-rule")
            style.evenOdd = choose(attribute, {"nonzero", "evenodd"}) == 1;
        else if (attribute.name == "data-snap")
            style.snap = choose(attribute, {"off", "on"}) == 1;
        else if (attribute.name == "transform") {
            try {
                style.transform = style.transform.after(parseTransform(attribute.value));
            } catch (const GeometryError &fault) {
                fail(attribute.line, fault.what());
            }
        }
    }
    return style;
}

Paint Source::paint(const std::string &text, double opacity, const std::array<double, 4> &box,
                    const Style &style, int line) const {
    Paint paint;
    if (text == "none")
        return paint;
    if (!text.starts_with("url(#")) {
        if (!parseColour(palette, text, paint.colour))
            fail(line, "'" + text + "' is neither #RRGGBB, a palette colour nor a gradient");
        paint.kind = paint.colour == keyArgb ? PaintKind::Hole : PaintKind::Solid;
        if (paint.kind == PaintKind::Hole && opacity != 1)
            fail(line, "a hole has no opacity");
        paint.colour = withOpacity(paint.colour, opacity);
        return paint;
    }
    const auto found = gradients.find(std::string_view(text).substr(5, text.size() - 6));
    if (found == gradients.end())
        fail(line, "there is no gradient '" + text + "'");
    paint.kind = PaintKind::Gradient;
    paint.gradient = found->second.gradient;
    for (Stop &stop : paint.gradient.stops)
        stop.colour = withOpacity(stop.colour, opacity);
    for (Point *end : {&paint.gradient.from, &paint.gradient.to}) {
        if (found->second.ofBox)
            *end = {box[0] + end->x * (box[2] - box[0]), box[1] + end->y * (box[3] - box[1])};
        *end = style.transform.apply(*end);
    }
    return paint;
}

} // namespace velmora::skinc
