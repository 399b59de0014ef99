#pragma once

// The two later stages of reading a design; design.h is what others include.

#include "design.h"
#include "design_line.h"
#include "design_rows.h"

namespace velmora::formc {

// Reads the words behind a property into `setting`. Returns the fault, empty when there is none.
std::string readValues(const PropertyRow &row, const std::vector<Token> &values, const Skin &skin,
                       Setting &setting);

// Names, what must be given, what lies outside its container. Adds to the design's faults.
void checkDesign(Design &design);

} // namespace velmora::formc
