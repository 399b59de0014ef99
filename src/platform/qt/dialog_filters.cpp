#include "platform/qt/dialog_filters.h"

#include "base/text.h"
#include "platform/qt/text_convert.h"

namespace velmora::platform::qt {

namespace {

// The toolkit compares with case on this system, so each letter is given both ways.
QString ignoringCase(const QString &pattern) {
    QString both;
    for (const QChar unit : pattern) {
        if (unit.isLetter() && unit.toLower() != unit.toUpper()) {
            both += QLatin1Char('[') + unit.toLower() + unit.toUpper() + QLatin1Char(']');
        } else {
            both += unit;
        }
    }
    return both;
}

QString patternsOf(std::u16string_view patterns) {
    QStringList words;
    for (const std::u16string &one : split(patterns, u';')) {
        const QString pattern = toQString(trim(one));
        words += pattern == QLatin1String("*.*") ? QStringLiteral("*") : ignoringCase(pattern);
    }
    return words.join(QLatin1Char(' '));
}

// Brackets are the toolkit's own mark for patterns.
QString description(std::u16string_view text) {
    return toShown(text)
        .replace(QLatin1Char('('), QChar(0xFF08))
        .replace(QLatin1Char(')'), QChar(0xFF09));
}

} // namespace

QStringList nameFilters(std::u16string_view pairs) {
    const std::vector<std::u16string> parts = split(pairs, u'\0');
    QStringList filters;
    for (std::size_t i = 0; i + 1 < parts.size() && !parts[i].empty(); i += 2) {
        filters += description(parts[i]) + QLatin1String(" (") + patternsOf(parts[i + 1]) +
                   QLatin1Char(')');
    }
    if (filters.isEmpty()) {
        filters += QStringLiteral("*");
    }
    return filters;
}

} // namespace velmora::platform::qt
