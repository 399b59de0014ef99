// Compiles the drawings and the palette of the skin into source text.
//
//   velmora_skinc PALETTE DRAWING.svg... [--ids FILE] [--palette FILE] [--table FILE]
//                 [--plain NAME FILE]
//
// Without an output it only checks. A file is written only when its text has changed, so that a
// drawing's new shape does not rebuild what depends on the names alone. All faults are reported,
// one a line as file:line: fault, and the exit status is 1.

#include "emit.h"
#include "skin.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

using namespace velmora::skinc;

namespace {

struct Arguments {
    std::vector<std::string> sources; // the palette first
    std::string ids, palette, table, plainName, plain;
};

bool parseArguments(int count, char **values, Arguments &arguments) {
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = values[i];
        const auto next = [&](std::string &into) {
            if (i + 1 >= count)
                return false;
            into = values[++i];
            return true;
        };
        bool good = true;
        if (argument == "--ids")
            good = next(arguments.ids);
        else if (argument == "--palette")
            good = next(arguments.palette);
        else if (argument == "--table")
            good = next(arguments.table);
        else if (argument == "--plain")
            good = next(arguments.plainName) && next(arguments.plain);
        else
            arguments.sources.emplace_back(argument);
        if (!good)
            return false;
    }
    return !arguments.sources.empty();
}

std::string readFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error(path + ": cannot be read");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeFile(const std::string &path, const std::string &text) {
    if (path.empty())
        return;
    if (std::filesystem::exists(path) && readFile(path) == text)
        return;
    if (const auto folder = std::filesystem::path(path).parent_path(); !folder.empty())
        std::filesystem::create_directories(folder);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out)
        throw std::runtime_error(path + ": cannot be written");
}

void write(const Arguments &arguments, const Skin &skin) {
    writeFile(arguments.ids, pictureIdsHeader(skin.drawings));
    writeFile(arguments.palette, paletteHeader(skin.palette));
    writeFile(arguments.table, pictureTable(skin.drawings));
    if (arguments.plain.empty())
        return;
    for (const Drawing &drawing : skin.drawings) {
        if (drawing.name == arguments.plainName) {
            writeFile(arguments.plain, plainSvg(drawing));
            return;
        }
    }
    throw std::runtime_error("there is no drawing '" + arguments.plainName + "'");
}

} // namespace

int main(int count, char **values) {
    Arguments arguments;
    if (!parseArguments(count, values, arguments)) {
        std::cerr << "usage: velmora_skinc PALETTE DRAWING.svg... [--ids FILE] [--palette FILE] "
                     "[--table FILE] [--plain NAME FILE]\n";
        return 2;
    }
    try {
        std::vector<SourceText> sources;
        for (const std::string &path : arguments.sources)
            sources.push_back({path, readFile(path)});
        const SkinResult result = compileSkin(sources);
        for (const std::string &fault : result.faults)
            std::cerr << fault << '\n';
        if (!result.faults.empty())
            return 1;
        write(arguments, result.skin);
        return 0;
    } catch (const std::exception &fault) {
        std::cerr << fault.what() << '\n';
        return 1;
    }
}
