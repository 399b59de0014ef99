#include "drawing.h"

#include "error.h"
#include "style.h"
#include "xml.h"

#include <algorithm>

namespace velmora::skinc {

namespace {

class Compiler {
public:
    Compiler(const std::string &file, const Palette &palette) : source_{file, palette, {}} {}

    Drawing compile(const std::string &name, const XmlElement &root) {
        if (root.name != "svg")
            source_.fail(root.line, "the root element is <" + root.name + ">, not <svg>");
        drawing_.name = name;
        readBox(root);
        collectGradients(root);
        Style style;
        style.snap = drawing_.sliced;
        children(root, source_.styled(style, root));
        if (drawing_.shapes.empty())
            source_.fail(root.line, "the drawing is empty");
        return std::move(drawing_);
    }

private:
    void readBox(const XmlElement &root) {
        const XmlAttribute *box = root.find("viewBox");
        if (!box)
            source_.fail(root.line, "<svg> has no viewBox");
        const std::vector<double> numbers = source_.numbers(*box);
        if (numbers.size() != 4 || numbers[2] <= 0 || numbers[3] <= 0)
            source_.fail(box->line, "a viewBox is x y width height");
        drawing_.left = numbers[0];
        drawing_.top = numbers[1];
        drawing_.width = numbers[2];
        drawing_.height = numbers[3];
        const XmlAttribute *slice = root.find("data-slice");
        if (!slice)
            return;
        const std::vector<double> insets = source_.numbers(*slice);
        if (insets.size() != 4 || *std::min_element(insets.begin(), insets.end()) < 0 ||
            insets[0] + insets[2] > drawing_.width || insets[1] + insets[3] > drawing_.height)
            source_.fail(slice->line, "data-slice is left top right bottom, within the viewBox");
        drawing_.sliced = true;
        std::copy(insets.begin(), insets.end(), drawing_.slice.begin());
    }

    void collectGradients(const XmlElement &element) {
        for (const XmlElement &child : element.children)
            if (child.name == "linearGradient")
                source_.addGradient(child);
            else
                collectGradients(child);
    }

    void children(const XmlElement &parent, const Style &style) {
        for (const XmlElement &child : parent.children)
            element(child, style);
    }

    void element(const XmlElement &element, const Style &outer) {
        if (element.name == "defs" || element.name == "title" || element.name == "desc" ||
            element.name == "linearGradient")
            return;
        const Style style = source_.styled(outer, element);
        if (element.name == "g") {
            children(element, style);
            return;
        }
        try {
            add(outline(element), style, element.line);
        } catch (const GeometryError &fault) {
            source_.fail(element.line, fault.what());
        }
    }

    Path outline(const XmlElement &element) {
        const auto number = [&](const char *name) { return source_.number(element, name); };
        const auto needed = [&](const char *name) {
            const XmlAttribute *attribute = element.find(name);
            if (!attribute)
                source_.fail(element.line, "<" + element.name + "> has no " + name);
            return attribute->value;
        };
        const auto geometry = Source::geometryOf(element.name);
        if (geometry.empty())
            source_.fail(element.line, "<" + element.name + "> is not part of a drawing");
        source_.allow(element, geometry);
        if (element.name == "path")
            return parsePathData(needed("d"));
        if (element.name == "rect") {
            const double rx = number(element.find("rx") ? "rx" : "ry");
            const double ry = number(element.find("ry") ? "ry" : "rx");
            return rectangle(number("x"), number("y"), number("width"), number("height"), rx, ry);
        }
        if (element.name == "circle")
            return ellipse({number("cx"), number("cy")}, number("r"), number("r"));
        if (element.name == "ellipse")
            return ellipse({number("cx"), number("cy")}, number("rx"), number("ry"));
        if (element.name == "line")
            return polyline({number("x1"), number("y1"), number("x2"), number("y2")}, false);
        return polyline(parseNumbers(needed("points")), element.name == "polygon");
    }

    void add(const Path &path, const Style &style, int line) {
        Shape shape;
        shape.path = transformed(path, style.transform);
        shape.strokeWidth = style.strokeWidth * style.transform.scale();
        shape.cap = style.cap;
        shape.join = style.join;
        shape.evenOdd = style.evenOdd;
        shape.snap = style.snap;
        const std::array<double, 4> box = bounds(path);
        shape.fill = source_.paint(style.fill, style.opacity * style.fillOpacity, box, style, line);
        shape.stroke =
            source_.paint(style.stroke, style.opacity * style.strokeOpacity, box, style, line);
        if (shape.stroke.kind == PaintKind::Hole)
            source_.fail(line, "only a fill can be a hole");
        if (shape.fill.kind != PaintKind::None || shape.stroke.kind != PaintKind::None)
            drawing_.shapes.push_back(std::move(shape));
    }

    Source source_;
    Drawing drawing_;
};

} // namespace

Drawing compileDrawing(const std::string &file, const std::string &name, std::string_view text,
                       const Palette &palette) {
    return Compiler(file, palette).compile(name, parseXml(file, text));
}

} // namespace velmora::skinc
