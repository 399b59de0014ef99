#pragma once

// The three generated texts. Equal input gives equal bytes.

#include "drawing.h"

#include <string>
#include <vector>

namespace velmora::skinc {

// The header of the enumeration `PictureId`: None = 0, then the drawings in their order.
std::string pictureIdsHeader(const std::vector<Drawing> &drawings);

// The header of the palette's names as colours 0x00BBGGRR.
std::string paletteHeader(const Palette &palette);

// The painter's table (see platform/backends/qt/paint/picture_table.h for its records). Throws
// std::runtime_error when a coordinate does not fit the table.
std::string pictureTable(const std::vector<Drawing> &drawings);

// A drawing as plain SVG with its palette colours resolved, for the desktop's icon theme.
std::string plainSvg(const Drawing &drawing);

} // namespace velmora::skinc
