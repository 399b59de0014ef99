#pragma once

// A form's design as data: what a .form file says, read and checked. The compiler turns it into
// code; tests (and a preview) load it as it is.
//
// Grammar: one thing or one property a line, 4 spaces a level, "#" begins a comment. `form NAME`
// comes first; a line that begins with a kind of control opens a control; every other line is a
// property of the thing above it that stands one level to its left. A control at the form's own
// level, or one level deeper, lies on the form; deeper ones lie in the control above. Order in the
// file is z-order. A long text of a text box is given as one `line "..."` for each of its lines.
// A caption, tip or text that follows the language is given as @ENTRY of the texts (texts.h).

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::formc {

struct KindRow;
struct PropertyRow;

// A fault in a design, at a line of the file (from 1).
struct Fault {
    int line = 0;
    std::string text;
};

struct FontSpec {
    std::u16string name;
    double points = 0;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strike = false;
    friend bool operator==(const FontSpec &, const FontSpec &) = default;
};

// One property with its value; which member holds it follows from the row's shape.
struct Setting {
    const PropertyRow *row = nullptr;
    int line = 0;
    std::vector<double> numbers;
    std::u16string text;
    std::string entry; // of the texts, when the text follows the language
    std::string word;  // picture, pointer, alignment, control or routine
    // The form that the skin hands it out from, and of a picture the image there; empty without.
    std::string fromForm;
    std::string fromImage;
    FontSpec font;
    std::uint32_t colour = 0; // 0x00BBGGRR
};

struct Thing {
    const KindRow *kind = nullptr;
    std::string name;
    int line = 0;
    std::vector<Setting> settings;
    std::vector<Thing> children;

    // Null when the property is not given.
    const Setting *find(std::string_view property) const;
    bool has(std::string_view property) const { return find(property) != nullptr; }
};

// The routine that answers an event of the thing: the one it names, else NAME_EVENT.
std::string routineOf(const Thing &thing, const Setting &answer);

// The names a design may use beside its own.
struct Skin {
    std::map<std::string, std::uint32_t, std::less<>> palette; // name to 0x00BBGGRR
    std::set<std::string, std::less<>> pictures;
    // Entries of the texts, and what each says in the first language.
    std::map<std::string, std::u16string, std::less<>> texts;
    // The form whose pictures and hand the skin hands out, and its images with their pictures.
    std::string model{};
    std::map<std::string, std::string, std::less<>> modelPictures{};
};

struct Design {
    Thing form;
    std::vector<Fault> faults; // in the order of the lines; empty when the design is good

    // Every control, containers ahead of what they hold.
    std::vector<const Thing *> all() const;
};

// Reads and checks a design. Never throws for what the text holds: all faults are listed.
Design parseDesign(std::string_view text, const Skin &skin);

// The skin with the form that it hands out from. What is wrong in that file is told where it is
// compiled itself. Throws std::runtime_error (file:line: fault) when it cannot be read.
Skin withModel(Skin skin, const std::string &file);

// The skin of a folder: its palette.txt and the names of its .svg files; it has no texts and no
// model. Throws std::runtime_error (file:line: fault) when the palette cannot be read.
Skin readSkin(const std::string &folder);

} // namespace velmora::formc
