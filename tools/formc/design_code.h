#pragma once

// A good design as C++ source text.

#include "design.h"

#include <string>

namespace velmora::formc {

struct Code {
    std::string header;
    std::string source;
};

// `folder` is the design's folder below src ("playback"). The design must be free of faults.
Code writeCode(const Design &design, const std::string &folder);

} // namespace velmora::formc
