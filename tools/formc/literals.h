#pragma once

#include <string>
#include <string_view>

namespace velmora::formc {

// A text as the code has it, in ASCII.
std::string literal(std::u16string_view text);

} // namespace velmora::formc
