#pragma once

// Which reader a file's content calls for. Names and extensions play no part.

#include "platform/backends/sound/readers/byte_source.h"

#include <cstdint>

namespace velmora::platform::sound {

enum class Content {
    Other,     // nothing for this device
    Mpeg,      // MPEG audio frames, bare, behind a tag or inside a RIFF file
    SoundFile, // a form that libsndfile reads
    Midi,      // a standard MIDI file, bare or inside a RIFF file
};

struct Sniffed {
    Content content = Content::Other;
    // The part of the file that the reader is to see.
    std::int64_t start = 0;
    std::int64_t size = 0;
};

// Reads at most some 100 kB of the source.
Sniffed sniff(const ByteSource &source);

} // namespace velmora::platform::sound
