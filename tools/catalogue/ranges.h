#pragma once

// The part of a file that a browser asks for when it seeks.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::catalogue {

struct Part {
    std::int64_t first = 0;
    std::int64_t bytes = 0;
    friend bool operator==(const Part &, const Part &) = default;
};

// What is sent for a field "Range" of a file of so many bytes.
struct PartAsked {
    bool whole = true;    // nothing, several parts or nonsense was asked for
    bool possible = true; // false: the part lies behind the end
    Part part;            // the whole file where it is not a part
};
PartAsked partOf(std::string_view field, std::int64_t fileBytes);

// "bytes 0-99/1000", and of a part that is not there "bytes */1000".
std::string contentRange(const PartAsked &asked, std::int64_t fileBytes);

} // namespace velmora::catalogue
