#pragma once

// The gain of the two channels that are heard.

#include "platform/backends/media/device.h"

#include <cstddef>
#include <cstdint>

namespace velmora::platform::sound {

// What each of the two inputs gives to each of the two outputs.
struct GainMatrix {
    float leftToLeft = 0;
    float rightToLeft = 0;
    float leftToRight = 0;
    float rightToRight = 0;

    bool operator==(const GainMatrix &) const = default;
};

// Volume 0 to 1000, linear in amplitude. A single channel is heard on both speakers.
GainMatrix gainMatrix(std::int32_t volume, media::Channel channel);

// The gain along the output's frames: constant, or on a straight way from one value to the next, so
// that no change is a step in the sound.
class GainRamp {
public:
    // The same gain everywhere.
    void set(const GainMatrix &gain);
    // From the gain that holds at frame `start`, within `length` frames to `target`. What was
    // planned behind `start` is dropped.
    void rampTo(const GainMatrix &target, std::int64_t start, std::int64_t length);
    GainMatrix at(std::int64_t frame) const;
    const GainMatrix &target() const { return to_; }

    // Multiplies stereo frames in place; the first of them is the output's frame `start`.
    void apply(float *samples, std::int64_t start, std::size_t frames) const;

private:
    GainMatrix from_;
    GainMatrix to_;
    std::int64_t start_ = 0;
    std::int64_t length_ = 0;
};

} // namespace velmora::platform::sound
