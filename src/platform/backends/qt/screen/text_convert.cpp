#include "platform/backends/qt/screen/text_convert.h"

namespace velmora::platform::qt {

QString toShown(std::u16string_view text) {
    QString shown = toQString(text);
    for (qsizetype i = 0; i < shown.size(); ++i) {
        const QChar unit = shown.at(i);
        if (unit.isHighSurrogate() && i + 1 < shown.size() && shown.at(i + 1).isLowSurrogate())
            ++i;
        else if (unit.isSurrogate() || unit.isNull())
            shown[i] = QChar::ReplacementCharacter;
    }
    return shown;
}

} // namespace velmora::platform::qt
