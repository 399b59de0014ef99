#pragma once

// How much of an Ogg file is there. A whole one tells its length by its last page; one that was cut
// short has none that is marked as the last.

#include "platform/backends/sound/readers/byte_source.h"

#include <cstdint>
#include <optional>

namespace velmora::platform::sound {

// The number of samples (in each channel) up to the end of the last whole page of the first stream,
// Vorbis or Opus. What that page tells beyond what its packets can hold does not count. No value
// when there is no such page.
std::optional<std::int64_t> oggSamplesPresent(const ByteSource &source);

// Whether the file is certainly not several joined to one, by a look at its end and at a few places
// on the way: all pages there are of the streams that it begins with, in their order.
bool oggIsOnePiece(const ByteSource &source);

// Whether a stream begins here: with a page that is whole by its check sum.
bool oggStreamBegins(const ByteSource &source, std::int64_t place);

} // namespace velmora::platform::sound
