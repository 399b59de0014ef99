#pragma once

// The whole skin from its sources.

#include "drawing.h"

#include <string>
#include <vector>

namespace velmora::skinc {

struct SourceText {
    std::string path;
    std::string text;
};

struct Skin {
    Palette palette;
    std::vector<Drawing> drawings; // by name
};

struct SkinResult {
    Skin skin;
    std::vector<std::string> faults; // file:line: what; empty when all is well
};

// The first source is the palette, the others are drawings named by their file's stem. Goes on
// after a fault, so that one run shows all of them.
SkinResult compileSkin(const std::vector<SourceText> &sources);

} // namespace velmora::skinc
