#pragma once

#include <array>
#include <cstddef>

namespace velmora::platform::sound {

// Turns interleaved frames of any number of channels into stereo frames. One channel goes to both
// sides; of more than two, in the order of wave files, the middle and the surrounds go to their
// sides at -3 dB, and the whole is scaled so that it cannot grow beyond full scale.
class StereoMix {
public:
    explicit StereoMix(int channels);
    void mix(const float *in, float *out, std::size_t frames) const;

private:
    int channels_;
    std::array<float, 64> left_{};
    std::array<float, 64> right_{};
};

} // namespace velmora::platform::sound
