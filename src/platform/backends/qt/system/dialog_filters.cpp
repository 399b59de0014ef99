#include "platform/backends/qt/system/dialog_filters.h"

#include "base/text.h"
#include "platform/backends/qt/screen/text_convert.h"

#include <QDir>

#include <algorithm>

namespace velmora::platform::qt {

namespace {

// The toolkit compares with case on this system, so each letter is given both ways.
QString ignoringCase(const QString &pattern) {
    QString both;
    for (const QChar unit : pattern)
        if (unit.isLetter() && unit.toLower() != unit.toUpper())
            both += QLatin1Char('[') + unit.toLower() + unit.toUpper() + QLatin1Char(']');
        else
            both += unit;
    return both;
}

QStringList patternsOf(std::u16string_view patterns) {
    QStringList words;
    for (const std::u16string &one : split(patterns, u';')) {
        const QString pattern = toQString(trim(one));
        words += pattern == QLatin1String("*.*") ? QStringLiteral("*") : ignoringCase(pattern);
    }
    return words;
}

struct Filter {
    std::u16string name;
    std::u16string patterns;
};

std::vector<Filter> filtersOf(std::u16string_view pairs) {
    const std::vector<std::u16string> parts = split(pairs, u'\0');
    std::vector<Filter> filters;
    for (std::size_t i = 0; i + 1 < parts.size() && !parts[i].empty(); i += 2)
        filters.push_back({parts[i], parts[i + 1]});
    return filters;
}

// Brackets are the toolkit's own mark for patterns.
QString description(std::u16string_view text) {
    return toShown(text)
        .replace(QLatin1Char('('), QChar(0xFF08))
        .replace(QLatin1Char(')'), QChar(0xFF09));
}

} // namespace

QStringList nameFilters(std::u16string_view pairs) {
    QStringList filters;
    for (const Filter &filter : filtersOf(pairs)) {
        filters += description(filter.name) + QLatin1String(" (") +
                   patternsOf(filter.patterns).join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    if (filters.isEmpty())
        filters += QStringLiteral("*");
    return filters;
}

bool matchesFilter(std::u16string_view pairs, const QString &name) {
    const std::vector<Filter> filters = filtersOf(pairs);
    return std::any_of(filters.begin(), filters.end(), [&](const Filter &filter) {
        return QDir::match(patternsOf(filter.patterns), name);
    });
}

} // namespace velmora::platform::qt
