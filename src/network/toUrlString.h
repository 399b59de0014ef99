#pragma once

// A search word as it stands in an address.

#include <string>
#include <string_view>

namespace velmora {

namespace platform {
class AnsiText;
}

// Every byte of the text in the code page in force as "%" and its value in upper-case hexadecimal,
// letters and digits too. A byte below 16 gets one digit, without a leading zero.
std::u16string toUrlString(const platform::AnsiText &ansi, std::u16string_view text);

} // namespace velmora
