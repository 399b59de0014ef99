#pragma once

// Pictures are drawn from vectors that the build compiles from assets/skin into the view's table;
// the program knows them by number.

#include <cstdint>

#include "platform/forms/picture_ids.h" // generated: enumerators of Picture, one for each drawing

namespace velmora::forms {

// `Picture::None` draws nothing.
using Picture = PictureId;

} // namespace velmora::forms
