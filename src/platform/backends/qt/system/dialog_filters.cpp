#include "platform/backends/qt/system/dialog_filters.h"

#include "platform/backends/qt/screen/text_convert.h"
#include "text/dialog_filters.h"

namespace velmora::platform::qt {

namespace {

// Brackets are the toolkit's own mark for patterns.
QString description(std::u16string_view text) {
    return toShown(text)
        .replace(QLatin1Char('('), QChar(0xFF08))
        .replace(QLatin1Char(')'), QChar(0xFF09));
}

} // namespace

// The toolkit compares with case on this system.
QStringList nameFilters(std::u16string_view pairs) {
    QStringList filters;
    for (const DialogFilter &filter : dialogFilters(pairs)) {
        QStringList words;
        for (const std::u16string &pattern : filter.patterns)
            words += toQString(ignoringCase(pattern));
        filters += description(filter.name) + QLatin1String(" (") + words.join(QLatin1Char(' ')) +
                   QLatin1Char(')');
    }
    if (filters.isEmpty())
        filters += QStringLiteral("*");
    return filters;
}

} // namespace velmora::platform::qt
