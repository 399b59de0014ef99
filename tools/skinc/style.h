#pragma once

// The presentation attributes of a source: what is inherited, what they may say, gradients by name.

#include "drawing.h"
#include "xml.h"

#include <map>
#include <span>
#include <string>

namespace velmora::skinc {

struct Style {
    std::string fill = "#000000";
    std::string stroke = "none";
    double opacity = 1; // of all groups around, multiplied
    double fillOpacity = 1;
    double strokeOpacity = 1;
    double strokeWidth = 1;
    Cap cap = Cap::Butt;
    Join join = Join::Miter;
    bool evenOdd = false;
    bool snap = false;
    Transform transform;
};

// One source file and what was found in it so far.
struct Source {
    const std::string &file;
    const Palette &palette;

    struct NamedGradient {
        Gradient gradient;
        bool ofBox = true; // coordinates are parts of the painted shape's box
    };
    std::map<std::string, NamedGradient, std::less<>> gradients;

    [[noreturn]] void fail(int line, const std::string &what) const;

    std::vector<double> numbers(const XmlAttribute &attribute) const;
    double number(const XmlAttribute &attribute) const;
    // 0 when absent.
    double number(const XmlElement &element, const char *name) const;
    Argb colour(const XmlAttribute &attribute) const;

    // Fails for an attribute that is neither a presentation attribute nor among `geometry`.
    void allow(const XmlElement &element, std::span<const std::string_view> geometry) const;
    // What places a shape; empty for an element that is no shape.
    static std::span<const std::string_view> geometryOf(std::string_view element);

    void addGradient(const XmlElement &element);
    Style styled(const Style &outer, const XmlElement &element) const;
    // `box` is the shape's own, ahead of the transform.
    Paint paint(const std::string &text, double opacity, const std::array<double, 4> &box,
                const Style &style, int line) const;
};

} // namespace velmora::skinc
