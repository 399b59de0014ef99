#include "base/text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace velmora {

namespace {

#include "base/upper_table.inc"

} // namespace

char16_t upperUnit(char16_t unit) noexcept {
    if (unit < 0x80)
        return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 0x20) : unit;
    // The gap of the scripts of East Asia, in which nothing has case.
    if (unit >= 0x2E80 && unit < 0xA640)
        return unit;
    const UpperRun *run =
        std::lower_bound(std::begin(upperRuns), std::end(upperRuns), unit,
                         [](const UpperRun &row, char16_t key) { return row.last < key; });
    if (run == std::end(upperRuns) || unit < run->first || (unit - run->first) % run->step != 0)
        return unit;
    return static_cast<char16_t>(unit + run->distance);
}

std::u16string upper(std::u16string_view text) {
    std::u16string result(text);
    copyUpper(text, result.data());
    return result;
}

char16_t *copyUpper(std::u16string_view text, char16_t *out) noexcept {
    return std::transform(text.begin(), text.end(), out, upperUnit);
}

bool equalsIgnoringCase(std::u16string_view a, std::u16string_view b) noexcept {
    return a.size() == b.size() &&
           std::equal(
               a.begin(), a.end(), b.begin(),
               [](char16_t x, char16_t y) { return x == y || upperUnit(x) == upperUnit(y); });
}

} // namespace velmora
