#pragma once

// The filters of a file dialog, as the design's platform writes them: descriptions and patterns in
// turns, each ended by NUL, the patterns of one parted by ";".

#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

struct DialogFilter {
    std::u16string name;
    std::vector<std::u16string> patterns; // "*" stands for "*.*", which takes every file there
};

std::vector<DialogFilter> dialogFilters(std::u16string_view pairs);

// The pattern for what compares with case: each letter in brackets, both ways.
std::u16string ignoringCase(std::u16string_view pattern);

// Whether one of the patterns takes the name; case is ignored.
bool takesName(const std::vector<DialogFilter> &filters, std::u16string_view name);

// A name to save under as it will be written: one that no pattern takes gets the extension. An
// empty extension is none.
std::u16string completedName(const std::vector<DialogFilter> &filters, std::u16string_view name,
                             std::u16string_view extension);

} // namespace velmora::platform
