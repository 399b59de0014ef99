#pragma once

// Where a FLAC frame ends, told by what is in it: its own end is marked by nothing, and a check sum
// comes out right by chance in one of some thousand places.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace velmora::platform::sound {

// What a frame's header tells of the sub-frames behind it.
struct FlacSubframes {
    std::size_t samples = 0;  // in each channel
    unsigned channelCode = 0; // as it stands there: one less than the channels, or one of the
                              // three ways to code two of them as their difference
    unsigned bits = 0;        // of a sample
};

// How many of these bytes the sub-frames take up that begin with the first. No value when they are
// cut short, or are none.
std::optional<std::size_t> flacSubframesSize(std::span<const std::uint8_t> bytes,
                                             const FlacSubframes &frame);

} // namespace velmora::platform::sound
