#include "text/dialog_filters.h"

#include "base/text.h"

#include <algorithm>

namespace velmora::platform {

namespace {

// "*" is any text and "?" any one unit, as many of them as there may be: the last "*" alone ever
// has to give back what it took.
bool takes(std::u16string_view pattern, std::u16string_view name) {
    std::size_t at = 0;
    std::size_t taken = 0;
    std::size_t star = std::u16string_view::npos;
    std::size_t starTook = 0;
    while (taken < name.size()) {
        if (at < pattern.size() && pattern[at] == u'*') {
            star = at++;
            starTook = taken;
        } else if (at < pattern.size() && (pattern[at] == u'?' || pattern[at] == name[taken])) {
            ++at;
            ++taken;
        } else if (star != std::u16string_view::npos) {
            at = star + 1;
            taken = ++starTook;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(u'*', at) == std::u16string_view::npos;
}

} // namespace

std::vector<DialogFilter> dialogFilters(std::u16string_view pairs) {
    const std::vector<std::u16string> parts = split(pairs, u'\0');
    std::vector<DialogFilter> filters;
    for (std::size_t i = 0; i + 1 < parts.size() && !parts[i].empty(); i += 2) {
        DialogFilter filter{parts[i], {}};
        for (const std::u16string &one : split(parts[i + 1], u';')) {
            const std::u16string_view pattern = trim(one);
            filter.patterns.emplace_back(pattern == u"*.*" ? u"*" : pattern);
        }
        filters.push_back(std::move(filter));
    }
    return filters;
}

std::u16string ignoringCase(std::u16string_view pattern) {
    std::u16string both;
    for (const char16_t unit : pattern) {
        const char16_t low = lowerUnit(unit);
        const char16_t high = upperUnit(unit);
        if (low == high)
            both += unit;
        else
            both.append({u'[', low, high, u']'});
    }
    return both;
}

bool takesName(const std::vector<DialogFilter> &filters, std::u16string_view name) {
    const std::u16string sought = upper(name);
    return std::any_of(filters.begin(), filters.end(), [&](const DialogFilter &filter) {
        return std::any_of(
            filter.patterns.begin(), filter.patterns.end(),
            [&](const std::u16string &pattern) { return takes(upper(pattern), sought); });
    });
}

std::u16string completedName(const std::vector<DialogFilter> &filters, std::u16string_view name,
                             std::u16string_view extension) {
    std::u16string completed(name);
    if (!name.empty() && !extension.empty() && !takesName(filters, name))
        completed.append(u".").append(extension);
    return completed;
}

} // namespace velmora::platform
