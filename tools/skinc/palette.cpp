#include "palette.h"

#include "base/ascii.h"
#include "error.h"

#include <algorithm>

namespace velmora::skinc {

namespace {

bool parseHex(std::string_view digits, Argb &colour) {
    if (digits.size() != 3 && digits.size() != 6)
        return false;
    Argb value = 0;
    for (const char c : digits) {
        const int digit = hexValue(c);
        if (digit < 0)
            return false;
        value = value * 16 + static_cast<Argb>(digit);
        if (digits.size() == 3)
            value = value * 16 + static_cast<Argb>(digit);
    }
    colour = 0xFF000000U | value;
    return true;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isName(std::string_view name) {
    const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
    return !name.empty() && isLetter(name.front()) &&
           std::all_of(name.begin(), name.end(),
                       [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '_'; });
}

PaletteEntry parseLine(const std::string &file, int number, std::string_view line) {
    const std::size_t blank = line.find_first_of(" \t");
    if (blank == std::string_view::npos)
        throw CompileError(file, number, "expected 'name #RRGGBB  # purpose'");
    PaletteEntry entry;
    entry.name = line.substr(0, blank);
    if (!isName(entry.name))
        throw CompileError(file, number, "'" + entry.name + "' is no palette name");
    const std::string_view rest = trimmed(line.substr(blank));
    const std::size_t end = rest.find_first_of(" \t");
    if (rest.empty() || rest.front() != '#' || !parseHex(rest.substr(1, end - 1), entry.colour))
        throw CompileError(file, number, "the colour of '" + entry.name + "' is not #RRGGBB");
    const std::string_view tail =
        end == std::string_view::npos ? std::string_view() : trimmed(rest.substr(end));
    if (tail.size() < 2 || tail.front() != '#' || trimmed(tail.substr(1)).empty())
        throw CompileError(file, number, "'" + entry.name + "' does not say what it is for");
    entry.comment = trimmed(tail.substr(1));
    return entry;
}

} // namespace

const PaletteEntry *Palette::find(std::string_view name) const {
    for (const PaletteEntry &entry : entries)
        if (entry.name == name)
            return &entry;
    return nullptr;
}

Palette parsePalette(const std::string &file, std::string_view text) {
    Palette palette;
    int number = 0;
    while (!text.empty()) {
        ++number;
        const std::size_t end = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.empty() || line.front() == '#')
            continue;
        PaletteEntry entry = parseLine(file, number, line);
        if (palette.find(entry.name))
            throw CompileError(file, number, "'" + entry.name + "' stands twice");
        palette.entries.push_back(std::move(entry));
    }
    return palette;
}

bool parseColour(const Palette &palette, std::string_view text, Argb &colour) {
    if (text.starts_with('#'))
        return parseHex(text.substr(1), colour);
    if (!text.starts_with('@'))
        return false;
    const PaletteEntry *entry = palette.find(text.substr(1));
    if (!entry)
        return false;
    colour = entry->colour;
    return true;
}

} // namespace velmora::skinc
