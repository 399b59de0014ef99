#pragma once

// Bytes in a named charset, read in the way of the web.

#include <string>
#include <string_view>

namespace velmora::platform::http {

// Labels compare without regard to case and blanks around them. Raises RunTimeError for a label
// that nobody knows.
std::u16string decodeLabelled(std::string_view bytes, std::u16string_view label);

} // namespace velmora::platform::http
