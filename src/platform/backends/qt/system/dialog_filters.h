#pragma once

#include <QStringList>

#include <string_view>

namespace velmora::platform::qt {

// Descriptions and patterns in turns, each ended by NUL, as the toolkit's name filters. Patterns
// ignore case.
QStringList nameFilters(std::u16string_view pairs);

} // namespace velmora::platform::qt
