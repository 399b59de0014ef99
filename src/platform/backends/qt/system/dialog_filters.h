#pragma once

#include <QStringList>

#include <string_view>

namespace velmora::platform::qt {

// Descriptions and patterns in turns, each ended by NUL, as the toolkit's name filters. Patterns
// ignore case; "*.*" takes every file, as its name says on the design's platform.
QStringList nameFilters(std::u16string_view pairs);

// Whether one of their patterns takes the name, which ends as it says then.
bool matchesFilter(std::u16string_view pairs, const QString &name);

} // namespace velmora::platform::qt
