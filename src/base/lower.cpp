#include "base/text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace velmora {

namespace {

#include "base/lower_table.inc"

} // namespace

char16_t lowerUnit(char16_t unit) noexcept {
    if (unit < 0x80)
        return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
    // The gap of the scripts of East Asia, in which nothing has case.
    if (unit >= 0x2E80 && unit < 0xA640)
        return unit;
    const LowerRun *run =
        std::lower_bound(std::begin(lowerRuns), std::end(lowerRuns), unit,
                         [](const LowerRun &row, char16_t key) { return row.last < key; });
    if (run == std::end(lowerRuns) || unit < run->first || (unit - run->first) % run->step != 0)
        return unit;
    return static_cast<char16_t>(unit + run->distance);
}

std::u16string lower(std::u16string_view text) {
    std::u16string result(text);
    for (char16_t &unit : result)
        unit = lowerUnit(unit);
    return result;
}

} // namespace velmora
