#pragma once

// Where a design's controls are, for those who look at the form's window from outside.

#include "design.h"

#include <string>

namespace velmora::formc {

// A JSON object: by name the left, top, width and height in twips of the form ("form", at 0 0) and
// of each control that lies on the form itself. What is not given is 0. The design must be free of
// faults.
std::string writePlaces(const Design &design);

} // namespace velmora::formc
