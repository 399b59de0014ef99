// Compiles a form's design, or the texts that follow the language, into source text.
//
//   velmora_formc DESIGN.form --folder FOLDER --skin SKIN_FOLDER --texts TEXTS_FOLDER
//                 [--model MODEL.form] [--header FILE --source FILE]
//   velmora_formc --texts TEXTS_FOLDER [--constants FILE --header FILE --source FILE]
//   velmora_formc DESIGN.form --skin SKIN_FOLDER --texts TEXTS_FOLDER [--model MODEL.form] --places
//
// FOLDER is the design's folder below src, MODEL.form what the skin hands out from. Without outputs
// it only checks; --places tells on the standard output where the form's controls are. A file is
// written only when its text has changed. All faults are reported, one a line as file:line: fault,
// and the exit status is 1; 2 means that the command line was wrong.

#include "design.h"
#include "design_code.h"
#include "design_places.h"
#include "texts.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>

using namespace velmora::formc;

namespace {

using Options = std::map<std::string, std::string, std::less<>>;

std::string readFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error(path + ":1: cannot be read");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeIfChanged(const std::string &path, const std::string &text) {
    if (path.empty())
        return;
    if (std::ifstream in(path, std::ios::binary); in) {
        std::ostringstream present;
        present << in.rdbuf();
        if (present.str() == text)
            return;
    }
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream out(path, std::ios::binary);
    out << text;
    if (!out.flush())
        throw std::runtime_error(path + ":1: cannot be written");
}

bool parseArguments(int count, char **values, Options &options) {
    for (int i = 1; i < count; ++i) {
        const std::string argument = values[i];
        if (!argument.starts_with("--")) {
            options["design"] = argument;
        } else if (argument == "--places") {
            options["places"] = argument;
        } else if (argument == "--folder" || argument == "--skin" || argument == "--texts" ||
                   argument == "--model" || argument == "--constants" || argument == "--header" ||
                   argument == "--source") {
            if (++i == count)
                return false;
            options[argument.substr(2)] = values[i];
        } else {
            return false;
        }
    }
    return options.contains("texts") && options.contains("design") == options.contains("skin") &&
           (options.contains("design") || !options.contains("places"));
}

// False when the folder has faults, which have been told.
bool tellFaults(const TextTable &table, const std::string &folder) {
    for (const TextFault &fault : table.faults)
        std::cerr << folder << '/' << fault.file << ':' << fault.line << ": " << fault.text << '\n';
    return table.faults.empty();
}

int compileTexts(const TextTable &table, Options &options) {
    writeIfChanged(options["constants"], writeTexts(table));
    const MessageCode code = writeMessages(table);
    writeIfChanged(options["header"], code.header);
    writeIfChanged(options["source"], code.source);
    return 0;
}

int compileDesign(const TextTable &table, Options &options) {
    const std::string &file = options["design"];
    Skin skin = withTexts(readSkin(options["skin"]), table);
    if (options.contains("model"))
        skin = withModel(std::move(skin), options["model"]);
    Design design = parseDesign(readFile(file), skin);
    if (design.form.name != std::filesystem::path(file).stem().string())
        design.faults.push_back({design.form.line, "the form must have the name of its file"});
    for (const Fault &fault : design.faults)
        std::cerr << file << ':' << fault.line << ": " << fault.text << '\n';
    if (!design.faults.empty())
        return 1;
    if (options.contains("places")) {
        std::cout << writePlaces(design);
        return 0;
    }
    const Code code = writeCode(design, options["folder"]);
    writeIfChanged(options["header"], code.header);
    writeIfChanged(options["source"], code.source);
    return 0;
}

} // namespace

int main(int count, char **values) {
    Options options;
    if (!parseArguments(count, values, options)) {
        std::cerr << "usage: velmora_formc DESIGN.form --folder FOLDER --skin SKIN_FOLDER "
                     "--texts TEXTS_FOLDER [--model MODEL.form] [--header FILE --source FILE]\n"
                     "       velmora_formc --texts TEXTS_FOLDER "
                     "[--constants FILE --header FILE --source FILE]\n"
                     "       velmora_formc DESIGN.form --skin SKIN_FOLDER --texts TEXTS_FOLDER "
                     "[--model MODEL.form] --places\n";
        return 2;
    }
    try {
        const TextTable table = readTexts(options["texts"]);
        if (!tellFaults(table, options["texts"]))
            return 1;
        return options.contains("design") ? compileDesign(table, options)
                                          : compileTexts(table, options);
    } catch (const std::exception &error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
