#pragma once

// How much of a FLAC file is there: its header tells the length of the whole piece, also in a file
// that was cut short, and may tell none or a wrong one.

#include "platform/backends/sound/readers/byte_source.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace velmora::platform::sound {

// The number of samples (in each channel) up to the end of the last whole frame, as the frames near
// the end of the file tell it. Six bytes of sound may read as a frame's header by chance: only one
// whose frame is whole by its check sum counts, or one that a whole frame leads up to. Junk behind
// the last frame costs nothing. No value when nothing is certain, or when the file goes on behind
// its end with frames of another piece.
std::optional<std::int64_t> flacSamplesPresent(const ByteSource &source);

// The same file with another total in its header: decoders stop at the total, or refuse a file
// without one.
std::unique_ptr<ByteSource> withFlacTotal(std::unique_ptr<ByteSource> source, std::int64_t samples);

// The total in the header, 0 where it tells none or is no FLAC.
std::int64_t flacTotal(const ByteSource &source);

// Whether the file is certainly not several joined to one, by a look at its end and at a few places
// on the way: all its frames, in their order, are of the piece that its header tells of.
bool flacIsOnePiece(const ByteSource &source);

// Where the frames begin, behind all that is told ahead of them, of the file that begins here.
std::int64_t flacSoundStart(const ByteSource &source, std::int64_t start);

} // namespace velmora::platform::sound
