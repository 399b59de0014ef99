#pragma once

#include <string>
#include <string_view>

namespace velmora::formc {

std::string inQuotes(std::string_view word);

// Why a name cannot be one in the code that is written; empty when it can.
std::string faultOfName(std::string_view name);

} // namespace velmora::formc
