#include "design.h"

#include "design_parts.h"
#include "palette.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace velmora::formc {

namespace {

class Reader {
public:
    Reader(const Skin &skin, Design &design) : skin_(skin), design_(design) {}

    void readLine(std::string_view text) {
        ++line_;
        LineText line = cutLine(text);
        if (!line.fault.empty())
            return fault(line.fault);
        if (line.tokens.empty())
            return;
        const std::string word = line.tokens.front().word;
        line.tokens.erase(line.tokens.begin());
        if (open_.empty())
            openForm(word, line);
        else if (const KindRow *kind = findKind(word))
            openControl(*kind, line);
        else
            readProperty(word, line);
    }

    int lines() const { return line_; }

private:
    // A thing that lines to come may still add to. `thing` is null when it was refused, so that
    // what belongs to it is passed over in silence.
    struct Open {
        int level = 0;
        Thing *thing = nullptr;
    };

    void fault(std::string text) { design_.faults.push_back({line_, std::move(text)}); }

    void openForm(const std::string &word, const LineText &line) {
        if (word != formKind().word || line.level != 0)
            return fault("a design begins with 'form NAME'");
        design_.form.kind = &formKind();
        open_.push_back({0, &design_.form});
        nameThing(design_.form, line);
    }

    void nameThing(Thing &thing, const LineText &line) {
        thing.line = line_;
        if (line.tokens.size() != 1 || line.tokens[0].word.empty())
            return fault("'" + std::string(thing.kind->word) + "' expects one name");
        thing.name = line.tokens[0].word;
    }

    // Drops what this line's level closes. The form never closes.
    Open &ownerAt(int level) {
        while (open_.size() > 1 && open_.back().level >= level)
            open_.pop_back();
        return open_.back();
    }

    void openControl(const KindRow &kind, const LineText &line) {
        const Open owner = ownerAt(line.level);
        if (line.level > owner.level + 1)
            return fault("indented too deep");
        Thing *made = nullptr;
        if (kind.bit == kinds::form) {
            fault("a design holds one form");
        } else if (owner.thing != nullptr && (owner.thing->kind->holds & kind.bit) == 0) {
            fault("'" + std::string(owner.thing->kind->word) + "' cannot hold '" +
                  std::string(kind.word) + "'");
        } else if (owner.thing != nullptr) {
            made = &owner.thing->children.emplace_back();
            made->kind = &kind;
            nameThing(*made, line);
        }
        open_.push_back({line.level, made});
    }

    void readProperty(const std::string &word, const LineText &line) {
        if (line.level == 0)
            return fault("'" + word + "' is no kind of control");
        const Open owner = ownerAt(line.level);
        if (line.level != owner.level + 1)
            return fault("indented too deep");
        if (owner.thing == nullptr)
            return;
        const PropertyRow *row = findProperty(word, owner.thing->kind->bit);
        if (row == nullptr)
            return fault(isProperty(word) ? "'" + std::string(owner.thing->kind->word) +
                                                "' has no property '" + word + "'"
                                          : "unknown property '" + word + "'");
        const bool again = owner.thing->has(word);
        if (again && !row->repeats)
            return fault("'" + word + "' is given twice");
        Setting setting;
        setting.row = row;
        setting.line = line_;
        if (auto bad = readValues(*row, line.tokens, skin_, setting); !bad.empty())
            fault(std::move(bad));
        if (again)
            addLine(*owner.thing, *row, setting.text);
        else
            owner.thing->settings.push_back(std::move(setting));
    }

    static void addLine(Thing &thing, const PropertyRow &row, std::u16string_view line) {
        const auto given = std::ranges::find(thing.settings, &row, &Setting::row);
        given->text.append(u"\r\n").append(line);
    }

    const Skin &skin_;
    Design &design_;
    std::vector<Open> open_;
    int line_ = 0;
};

std::string textOf(const std::string &file) {
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw std::runtime_error(file + ":1: cannot be read");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void collect(const Thing &thing, std::vector<const Thing *> &into) {
    for (const Thing &child : thing.children) {
        into.push_back(&child);
        collect(child, into);
    }
}

} // namespace

const Setting *Thing::find(std::string_view property) const {
    const auto found = std::ranges::find_if(
        settings, [&](const Setting &setting) { return setting.row->word == property; });
    return found == settings.end() ? nullptr : &*found;
}

std::string routineOf(const Thing &thing, const Setting &answer) {
    return answer.word.empty() ? thing.name + "_" + std::string(answer.row->call) : answer.word;
}

std::vector<const Thing *> Design::all() const {
    std::vector<const Thing *> things;
    collect(form, things);
    return things;
}

Design parseDesign(std::string_view text, const Skin &skin) {
    Design design;
    Reader reader(skin, design);
    while (!text.empty()) {
        const auto end = text.find('\n');
        reader.readLine(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    if (design.form.kind == nullptr) {
        design.form.kind = &formKind();
        if (design.faults.empty())
            design.faults.push_back({std::max(reader.lines(), 1), "the design is empty"});
        return design;
    }
    checkDesign(design);
    std::ranges::stable_sort(design.faults, {}, &Fault::line);
    return design;
}

Skin withModel(Skin skin, const std::string &file) {
    const Design model = parseDesign(textOf(file), skin);
    skin.model = model.form.name;
    for (const Thing *thing : model.all()) {
        const Setting *picture = thing->find("picture");
        if (picture != nullptr && thing->kind->bit == kinds::image)
            skin.modelPictures[thing->name] = picture->word;
    }
    return skin;
}

Skin readSkin(const std::string &folder) {
    const std::filesystem::path root(folder);
    const std::string file = (root / "palette.txt").string();
    Skin skin;
    for (const auto &entry : skinc::parsePalette(file, textOf(file)).entries) {
        const std::uint32_t rgb = entry.colour & 0xFFFFFFU;
        skin.palette[entry.name] = (rgb & 0xFFU) << 16U | (rgb & 0xFF00U) | rgb >> 16U;
    }
    for (const auto &entry : std::filesystem::directory_iterator(root))
        if (entry.path().extension() == ".svg")
            skin.pictures.insert(entry.path().stem().string());
    return skin;
}

} // namespace velmora::formc
