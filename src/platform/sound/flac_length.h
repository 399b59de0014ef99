#pragma once

// How much of a FLAC file is there: its header tells the length of the whole piece, also in a file
// that was cut short.

#include "platform/sound/byte_source.h"

#include <cstdint>
#include <optional>

namespace velmora::platform::sound {

// The number of samples (in each channel) in front of the end of the last whole frame, as the frame
// headers near the end of the file tell it. No value when there is no such header.
std::optional<std::int64_t> flacSamplesPresent(const ByteSource &source);

} // namespace velmora::platform::sound
