#include "skin.h"

#include "error.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string_view>

namespace velmora::skinc {

namespace {

// Words of the language that would not stand as an enumerator, of those a drawing might be called.
constexpr std::string_view reserved[] = {
    "None",   "auto",     "break",  "case",   "default", "delete", "do",    "export", "new",
    "public", "register", "return", "signed", "switch",  "this",   "union", "using",  "volatile"};

bool isIdentifier(const std::string &name) {
    const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
    return !name.empty() && isLetter(name.front()) &&
           std::all_of(name.begin(), name.end(),
                       [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '_'; }) &&
           std::find(std::begin(reserved), std::end(reserved), name) == std::end(reserved);
}

} // namespace

SkinResult compileSkin(const std::vector<SourceText> &sources) {
    SkinResult result;
    std::set<std::string> names;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const SourceText &source = sources[i];
        try {
            if (i == 0) {
                result.skin.palette = parsePalette(source.path, source.text);
                continue;
            }
            const std::string name = std::filesystem::path(source.path).stem().string();
            if (!isIdentifier(name))
                throw CompileError(source.path, 1, "'" + name + "' is no name for a drawing");
            if (!names.insert(name).second)
                throw CompileError(source.path, 1, "there are two drawings '" + name + "'");
            result.skin.drawings.push_back(
                compileDrawing(source.path, name, source.text, result.skin.palette));
        } catch (const CompileError &fault) {
            result.faults.emplace_back(fault.what());
        }
    }
    std::sort(result.skin.drawings.begin(), result.skin.drawings.end(),
              [](const Drawing &a, const Drawing &b) { return a.name < b.name; });
    return result;
}

} // namespace velmora::skinc
