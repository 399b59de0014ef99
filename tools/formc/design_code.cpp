#include "design_code.h"

#include "design_relations.h"
#include "design_rows.h"
#include "literals.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

namespace velmora::formc {

namespace {

// A number as a float literal.
std::string number(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.9g", value);
    std::string result = text.data();
    if (result.find_first_of(".e") == std::string::npos)
        result += ".0";
    return result + "F";
}

std::string colour(std::uint32_t value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%06X", value);
    return text.data();
}

std::string fontCall(const FontSpec &font) {
    std::string text = "makeFont(" + literal(font.name) + ", " + number(font.points);
    for (const bool style : {font.bold, font.italic, font.underline, font.strike})
        text += style ? ", true" : ", false";
    return text + ")";
}

// Writes the body of the constructor.
class Body {
public:
    Body(const Design &design, std::ostream &out) : design_(design), out_(out) {}

    void write() {
        apply(design_.form, "this->");
        for (const Thing *thing : design_.all())
            apply(*thing, thing->name + ".");
    }

    bool usesFonts() const { return !fonts_.empty(); }

private:
    void apply(const Thing &thing, const std::string &target) {
        for (const Phase phase : {Phase::Look, Phase::Place, Phase::Late}) {
            if (phase == Phase::Look && thing.kind->bit != kinds::form)
                inheritFont(thing, target);
            if (phase == Phase::Place)
                place(thing, target);
            for (const Setting &setting : thing.settings)
                apply(setting, phase, target);
        }
    }

    void apply(const Setting &setting, Phase phase, const std::string &target) {
        if (setting.row->phase != phase || setting.row->call.empty() ||
            setting.row->shape == Shape::Answer)
            return;
        const std::string text = statement(setting); // may write a font's line first
        out_ << "    " << target << text << ";\n";
        if (setting.word == "hand")
            out_ << "    " << target << "setMouseIcon(forms::MouseIcon::Hand);\n";
    }

    // A control without a font of its own has the form's.
    void inheritFont(const Thing &thing, const std::string &target) {
        const Setting *formFont = design_.form.find("font");
        const PropertyRow *row = findProperty("font", thing.kind->bit);
        if (row == nullptr || formFont == nullptr || thing.has("font"))
            return;
        const std::string font = fontName(formFont->font);
        out_ << "    " << target << row->call << '(' << font << ");\n";
    }

    void place(const Thing &thing, const std::string &target) {
        const Setting *at = thing.find("at");
        const Setting *size = thing.find("size");
        if (size == nullptr)
            return;
        const std::vector<double> corner = at != nullptr ? at->numbers : std::vector<double>{0, 0};
        out_ << "    " << target << "move({" << number(corner[0]) << ", " << number(corner[1])
             << ", " << number(size->numbers[0]) << ", " << number(size->numbers[1]) << "});\n";
    }

    std::string statement(const Setting &setting) {
        std::string call(setting.row->call);
        switch (setting.row->shape) {
        case Shape::Flag:
            return call;
        case Shape::Whole:
            return call + "(" + whole(setting) + ")";
        case Shape::Ends:
            return call + "(" + list(setting.numbers) + ")";
        case Shape::Text:
        case Shape::Shown:
            return call + "(" + literal(setting.text) + ")";
        case Shape::Font:
            return call + "(" + fontName(setting.font) + ")";
        case Shape::Colour:
            return call + "(" + colour(setting.colour) + ")";
        case Shape::Picture:
            return call + "(forms::Picture::" + setting.word + ")";
        case Shape::Align:
            return call + "(forms::Alignment::" + alignment(setting.word) + ")";
        case Shape::Pointer:
            return call + pointer(setting.word);
        case Shape::Control:
            return call + setting.word + ")";
        case Shape::Point: // with the extent, by `place`
        case Shape::Extent:
        case Shape::Answer: // by `wire`
            break;
        }
        return {};
    }

    static std::string whole(const Setting &setting) {
        const auto value = static_cast<long>(setting.numbers.front());
        if ((setting.row->kinds & kinds::optionButton) != 0)
            return value != 0 ? "true" : "false";
        return std::to_string(value);
    }

    static std::string list(const std::vector<double> &numbers) {
        std::string text;
        for (const double value : numbers)
            text += (text.empty() ? "" : ", ") + number(value);
        return text;
    }

    static std::string alignment(const std::string &word) {
        return word == "left" ? "Left" : word == "right" ? "Right" : "Centre";
    }

    static std::string pointer(const std::string &word) {
        return word == "hand" ? "(forms::pointerCustom)" : "(forms::pointerHourglass)";
    }

    // Each font of the design is made once.
    std::string fontName(const FontSpec &font) {
        auto found = std::ranges::find(fonts_, font);
        if (found == fonts_.end()) {
            fonts_.push_back(font);
            found = fonts_.end() - 1;
            out_ << "    const forms::Font font" << fonts_.size() << " = " << fontCall(font)
                 << ";\n";
        }
        return "font" + std::to_string(found - fonts_.begin() + 1);
    }

    const Design &design_;
    std::ostream &out_;
    std::vector<FontSpec> fonts_;
};

void writeMembers(const Thing &container, const std::string &owner, std::ostream &out) {
    for (const Thing &thing : container.children) {
        out << "    " << thing.kind->type << ' ' << thing.name << "{" << owner << ", \""
            << thing.name << "\"};\n";
        writeMembers(thing, thing.name, out);
    }
}

// What follows the language, in the order of the design.
class LanguageRows {
public:
    explicit LanguageRows(const Design &design) : name_(design.form.name + "_Design") {
        add(design.form, "");
        for (const Thing *thing : design.all())
            add(*thing, thing->name + ".");
    }

    bool empty() const { return rows_.empty(); }

    std::string table() const {
        return "namespace {\n\nconstexpr texts::Row<" + name_ + "> rows[] = {\n" + rows_ +
               "};\n\n} // namespace\n\nstd::span<const texts::Row<" + name_ + ">> " + name_ +
               "::languageRows() { return rows; }\n\n";
    }

private:
    void add(const Thing &thing, const std::string &target) {
        for (const Setting &setting : thing.settings)
            if (!setting.entry.empty())
                rows_ += "    {[](" + name_ + " &form, std::u16string_view text) { form." + target +
                         std::string(setting.row->call) +
                         "(text); },\n     texts::" + setting.entry + "},\n";
    }

    std::string name_;
    std::string rows_;
};

std::string writeHeader(const Design &design, const std::string &path) {
    const std::string name = design.form.name + "_Design";
    std::set<std::string_view> includes{design.form.kind->include};
    for (const Thing *thing : design.all())
        includes.insert(thing->kind->include);
    std::ostringstream out;
    out << "// Generated from src/" << path << ".form by formc.\n#pragma once\n\n";
    for (const auto include : includes)
        out << "#include \"" << include << "\"\n";
    const bool speaks = !LanguageRows(design).empty();
    if (speaks)
        out << "\n#include <span>\n";
    out << "\nnamespace velmora {\n";
    if (speaks)
        out << "\nnamespace texts {\ntemplate <typename Owner> struct Row;\n}\n";
    if (const Handed handed(design); !handed.empty() && handed.model() != design.form.name)
        out << "\nclass " << handed.model() << "_Design;\n";
    out << "\nclass " << name << " : public forms::Form {\npublic:\n"
        << "    explicit " << name << "(forms::Host &windows);\n"
        << "    ~" << name << "() override;\n\n";
    if (speaks)
        out << "    static std::span<const texts::Row<" << name << ">> languageRows();\n\n";
    const Handed handed(design);
    if (!handed.empty())
        out << handed.declaration();
    writeMembers(design.form, "*this", out);
    out << answersOf(design, path) << "};\n\n} // namespace velmora\n";
    return out.str();
}

constexpr std::string_view makeFont = R"(namespace {

forms::Font makeFont(std::u16string_view name, float points, bool bold, bool italic,
                     bool underline, bool strike) {
    forms::Font font(name, points, bold);
    font.setItalic(italic);
    font.setUnderline(underline);
    font.setStrikethrough(strike);
    return font;
}

} // namespace

)";

std::string writeSource(const Design &design, const std::string &path) {
    const std::string name = design.form.name + "_Design";
    std::ostringstream statements;
    Body body(design, statements);
    body.write();
    std::ostringstream out;
    out << "// Generated from src/" << path << ".form by formc.\n"
        << "#include \"" << path << ".design.h\"\n";
    const LanguageRows rows(design);
    const Handed handed(design);
    if (!rows.empty() || !handed.empty())
        out << '\n';
    if (!rows.empty())
        out << "#include \"settings/language_rows.h\"\n";
    if (!handed.empty())
        out << "#include \"settings/skin_parts.h\"\n";
    out << "\nnamespace velmora {\n\n";
    if (body.usesFonts())
        out << makeFont;
    if (!rows.empty())
        out << rows.table();
    out << name << "::" << name << "(forms::Host &windows)\n    : forms::Form(windows, \""
        << design.form.name << "\") {\n"
        << statements.str() << "}\n\n"
        << (handed.empty() ? "" : handed.definition())
        << "// The window goes first: it must not be told of each control that follows.\n"
        << name << "::~" << name << "() { dropWindow(); }\n\n} // namespace velmora\n";
    return out.str();
}

} // namespace

Code writeCode(const Design &design, const std::string &folder) {
    const std::string path = (folder.empty() ? "" : folder + "/") + design.form.name;
    return {writeHeader(design, path), writeSource(design, path)};
}

} // namespace velmora::formc
