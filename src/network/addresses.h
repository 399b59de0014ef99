#pragma once

// Which addresses that a server names are followed.

#include <string>
#include <string_view>

namespace velmora {

// "http://", "https://", or "mailto:" that attaches no file.
bool isAddressForTheDesktop(std::u16string_view address);

// Whether a program may be fetched from an address that the maker's information names: encrypted
// where the maker's own is, otherwise from this machine or a private network alone; and from the
// maker's own server, unless both are encrypted.
bool mayFetchProgram(std::u16string_view maker, std::u16string_view address);

} // namespace velmora
