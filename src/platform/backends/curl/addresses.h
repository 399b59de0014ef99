#pragma once

// Addresses as texts and bytes.

#include <string>
#include <string_view>

namespace velmora::platform::http {

// Blanks, control characters, double quotes and bytes above 127 as %XX; everything else stands as
// it is.
std::string escaped(std::string_view bytes);

// The parts of an address that cookies and proxies go by.
struct AddressParts {
    bool secure = false;
    std::string host; // lower case, without port and brackets; empty where there is none
    std::string path; // from its "/" on, without the query; "/" where there is none
};
AddressParts partsOf(std::string_view address);

// "localhost" and what lies below it, 127.0.0.0/8 and ::1. `host` as in AddressParts.
bool isLoopback(std::string_view host);

// What can stand between "http://" and the next "/": no blank, no control character, none of
// "/ ? # @ \".
bool isHostText(std::string_view host) noexcept;

} // namespace velmora::platform::http
