#include "emit.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace velmora::skinc {

namespace {

const char *const banner = "// Generated from assets/skin by velmora_skinc. Do not edit.\n";

std::string hex(Argb value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(value));
    return text.data();
}

// One entry after another, a line holding several.
class List {
public:
    void add(const std::string &entry) {
        if (line_ + entry.size() > 96) {
            text_ += "\n   ";
            line_ = 3;
        }
        text_ += " " + entry + ",";
        line_ += entry.size() + 2;
        ++count_;
    }
    std::size_t count() const { return count_; }
    std::string array(const std::string &type, const std::string &name) const {
        // An array cannot be empty.
        const std::string body = count_ == 0 ? "    {}," : text_;
        return "inline constexpr " + type + " " + name + "[] = {\n   " + body + "\n};\n\n";
    }

private:
    std::string text_;
    std::size_t line_ = 3;
    std::size_t count_ = 0;
};

class Table {
public:
    void add(const Drawing &drawing) {
        drawing_ = &drawing;
        const std::size_t first = shapes_.count();
        for (const Shape &shape : drawing.shapes)
            add(shape);
        pictures_.add("{" + fixed(drawing.left) + ", " + fixed(drawing.top) + ", " +
                      fixed(drawing.width) + ", " + fixed(drawing.height) + ", {" +
                      fixed(drawing.slice[0]) + ", " + fixed(drawing.slice[1]) + ", " +
                      fixed(drawing.slice[2]) + ", " + fixed(drawing.slice[3]) + "}, " +
                      (drawing.sliced ? "true" : "false") + ", " + index(first) + ", " +
                      index(drawing.shapes.size()) + "}");
    }

    std::string text() const {
        return std::string(banner) +
               "#pragma once\n\n#include \"platform/backends/qt/paint/picture_table.h\"\n\n"
               "namespace velmora::platform::qt::picture_table {\n\n" +
               verbs_.array("Verb", "verbs") + coordinates_.array("std::int16_t", "coordinates") +
               stops_.array("StopRecord", "stops") +
               gradients_.array("GradientRecord", "gradients") +
               shapes_.array("ShapeRecord", "shapes") +
               pictures_.array("PictureRecord", "pictures") +
               "} // namespace velmora::platform::qt::picture_table\n";
    }

private:
    [[noreturn]] void fail(const char *what) const {
        throw std::runtime_error(drawing_->name + ": " + what);
    }

    std::string fixed(double value) const {
        const double scaled = std::round(value * 64);
        if (!(scaled >= -32768 && scaled <= 32767))
            fail("a length is beyond 511 units");
        return std::to_string(static_cast<int>(scaled));
    }

    std::string index(std::size_t value) const {
        if (value > 65535)
            fail("the table is full");
        return std::to_string(value);
    }

    std::string paint(const Paint &paint) {
        static constexpr std::array<const char *, 4> kinds = {"None", "Solid", "Gradient", "Hole"};
        const std::string kind =
            std::string("PaintKind::") + kinds[static_cast<std::size_t>(paint.kind)];
        if (paint.kind != PaintKind::Gradient)
            return "{" + kind + ", " + hex(paint.colour) + "}";
        const std::size_t first = stops_.count();
        for (const Stop &stop : paint.gradient.stops)
            stops_.add("{" + std::to_string(std::lround(stop.offset * 65535)) + ", " +
                       hex(stop.colour) + "}");
        const Gradient &gradient = paint.gradient;
        gradients_.add("{" + fixed(gradient.from.x) + ", " + fixed(gradient.from.y) + ", " +
                       fixed(gradient.to.x) + ", " + fixed(gradient.to.y) + ", " + index(first) +
                       ", " + index(gradient.stops.size()) + "}");
        return "{" + kind + ", " + index(gradients_.count() - 1) + "}";
    }

    void add(const Shape &shape) {
        static constexpr std::array<const char *, 4> verbNames = {"Move", "Line", "Cubic", "Close"};
        static constexpr std::array<const char *, 3> caps = {"Butt", "Round", "Square"};
        static constexpr std::array<const char *, 3> joins = {"Miter", "Round", "Bevel"};
        const std::string firstVerb = index(verbs_.count());
        const std::string firstCoordinate = std::to_string(coordinates_.count());
        for (const Verb verb : shape.path.verbs)
            verbs_.add(std::string("Verb::") + verbNames[static_cast<std::size_t>(verb)]);
        for (const Point &point : shape.path.points) {
            coordinates_.add(fixed(point.x));
            coordinates_.add(fixed(point.y));
        }
        shapes_.add(
            "{" + firstVerb + ", " + index(shape.path.verbs.size()) + ", " + firstCoordinate +
            ", " + paint(shape.fill) + ", " + paint(shape.stroke) + ", " +
            fixed(shape.strokeWidth) + ", Cap::" + caps[static_cast<std::size_t>(shape.cap)] +
            ", Join::" + joins[static_cast<std::size_t>(shape.join)] + ", " +
            (shape.evenOdd ? "true" : "false") + ", " + (shape.snap ? "true" : "false") + "}");
    }

    const Drawing *drawing_ = nullptr;
    List verbs_, coordinates_, stops_, gradients_, shapes_, pictures_;
};

} // namespace

std::string pictureIdsHeader(const std::vector<Drawing> &drawings) {
    std::string text = std::string(banner) +
                       "#pragma once\n\n#include <cstdint>\n#include <string_view>\n\n"
                       "namespace velmora::forms {\n\n"
                       "// The drawings of the skin by their names; `None` draws nothing.\n"
                       "enum class PictureId : std::uint16_t {\n    None = 0,\n";
    std::string names = "    \"None\",\n";
    for (const Drawing &drawing : drawings) {
        text += "    " + drawing.name + ",\n";
        names += "    \"" + drawing.name + "\",\n";
    }
    return text + "};\n\n// How many there are, `None` counted.\n" +
           "inline constexpr std::uint16_t pictureCount = " + std::to_string(drawings.size() + 1) +
           ";\n\ninline constexpr std::string_view pictureNames[] = {\n" + names +
           "};\n\n} // namespace velmora::forms\n";
}

std::string paletteHeader(const Palette &palette) {
    std::string text = std::string(banner) +
                       "#pragma once\n\n#include \"base/geometry.h\"\n\n"
                       "// The colours of the skin, 0x00BBGGRR.\nnamespace velmora::palette {\n\n";
    for (const PaletteEntry &entry : palette.entries) {
        const Argb argb = entry.colour;
        const Argb colour = ((argb & 0xFF) << 16) | (argb & 0xFF00) | ((argb >> 16) & 0xFF);
        text += "inline constexpr Colour " + entry.name + " = " + hex(colour) + "; // " +
                entry.comment + "\n";
    }
    return text + "\n} // namespace velmora::palette\n";
}

std::string pictureTable(const std::vector<Drawing> &drawings) {
    Table table;
    for (const Drawing &drawing : drawings)
        table.add(drawing);
    return table.text();
}

} // namespace velmora::skinc
