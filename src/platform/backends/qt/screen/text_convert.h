#pragma once

// Between the program's text and the toolkit's.

#include <QColor>
#include <QString>

#include "base/geometry.h"
#include "platform/forms/font.h"

#include <string>
#include <string_view>

namespace velmora::platform::qt {

// As it stands, half surrogates included.
inline QString toQString(std::u16string_view text) {
    return QString(reinterpret_cast<const QChar *>(text.data()),
                   static_cast<qsizetype>(text.size()));
}

inline std::u16string fromQString(const QString &text) {
    return std::u16string(reinterpret_cast<const char16_t *>(text.utf16()),
                          static_cast<std::size_t>(text.size()));
}

// For drawing: a half surrogate and a NUL become U+FFFD.
QString toShown(std::u16string_view text);

// A form's colour, 0x00BBGGRR or a system colour.
inline QColor toQColor(Colour colour) {
    const Colour plain = forms::plainColour(colour);
    return QColor::fromRgb(static_cast<int>(plain & 0xFF), static_cast<int>((plain >> 8) & 0xFF),
                           static_cast<int>((plain >> 16) & 0xFF));
}

} // namespace velmora::platform::qt
