#pragma once

// The palette: one colour a line, `name #RRGGBB  # what it is for`. Blank lines and lines that
// begin with '#' are skipped.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::skinc {

// 0xAARRGGBB.
using Argb = std::uint32_t;

// The colour that means a hole wherever it is painted.
inline constexpr Argb keyArgb = 0xFFC7C7C7;

struct PaletteEntry {
    std::string name;
    Argb colour = 0;
    std::string comment; // never empty: a colour without a purpose is refused
};

struct Palette {
    std::vector<PaletteEntry> entries;
    // Null when there is no such name.
    const PaletteEntry *find(std::string_view name) const;
};

// Throws CompileError for a malformed line, a name that is no lower-case identifier, a name that
// stands twice, a colour without a comment.
Palette parsePalette(const std::string &file, std::string_view text);

// #RGB, #RRGGBB or @name; false when it is none of these.
bool parseColour(const Palette &palette, std::string_view text, Argb &colour);

} // namespace velmora::skinc
