#pragma once

// Cookies between their two forms: what a caller writes and reads, and the jar's lines (seven
// fields between tabs: domain, with what lies below it or not, path, secure, end, name, value).

#include "platform/backends/curl/addresses.h"

#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform::http {

// The jar's line for "value" (or "name=value" where the name is empty) with ";" and attributes
// (path, expires, max-age, secure) behind. Absent when it cannot be one. `dateOf` reads a date,
// below 0 for none.
std::optional<std::string> jarLine(const AddressParts &address, std::string_view name,
                                   std::string_view data, std::time_t now,
                                   const std::function<std::time_t(const std::string &)> &dateOf);

// "name=value" of all lines that an address is sent, "; " between them; only the one of that name
// unless it is empty.
std::string cookiesFor(const std::vector<std::string> &lines, const AddressParts &address,
                       std::string_view name, std::time_t now);

} // namespace velmora::platform::http
