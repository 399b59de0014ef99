#pragma once

// Turns sound of one rate into another: what is joined to a piece of another rate is heard at the
// pitch and for the time that it has by itself.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velmora::platform::sound {

class Resampler {
public:
    Resampler(int fromRate, int toRate, int channels);

    // Takes interleaved samples on and adds to `out` what they give. What comes last stays inside
    // until `flush`.
    void push(std::span<const float> in, std::vector<float> &out);
    void flush(std::vector<float> &out);

private:
    void pull(std::vector<float> &out);
    // The kernel at so many input samples from its middle.
    float weight(double distance) const;

    const double step_; // input samples to an output sample
    const std::size_t channels_;
    const double cutoff_; // of the input's own highest frequency
    const std::int64_t reach_;
    std::vector<float> kernel_;
    std::vector<float> held_;   // input, from the sample `heldFrom_` on
    std::int64_t heldFrom_ = 0; // silence is in front of the first
    std::int64_t given_ = 0;    // output samples
};

} // namespace velmora::platform::sound
