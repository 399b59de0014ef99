#include "platform/backends/sound/readers/stereo_mix.h"

#include <algorithm>
#include <numeric>

namespace velmora::platform::sound {

namespace {

constexpr float minus3dB = 0.70710678F;

struct Place {
    float left;
    float right;
};
constexpr Place onLeft{1, 0}, onRight{0, 1}, middle{minus3dB, minus3dB}, none{0, 0};
constexpr Place surroundLeft{minus3dB, 0}, surroundRight{0, minus3dB}, back{0.5F, 0.5F};

// Speakers of wave files for 3 to 8 channels. The bass channel repeats what the others hold.
constexpr Place layouts[6][8] = {
    {onLeft, onRight, middle},
    {onLeft, onRight, surroundLeft, surroundRight},
    {onLeft, onRight, middle, surroundLeft, surroundRight},
    {onLeft, onRight, middle, none, surroundLeft, surroundRight},
    {onLeft, onRight, middle, none, back, surroundLeft, surroundRight},
    {onLeft, onRight, middle, none, surroundLeft, surroundRight, surroundLeft, surroundRight},
};

} // namespace

StereoMix::StereoMix(int channels) : channels_(std::clamp(channels, 1, 64)) {
    const auto count = static_cast<std::size_t>(channels_);
    for (std::size_t i = 0; i < count; ++i) {
        const Place place = channels_ >= 3 && channels_ <= 8 ? layouts[channels_ - 3][i]
                            : i % 2 == 0                     ? onLeft
                                                             : onRight;
        left_[i] = place.left;
        right_[i] = place.right;
    }
    if (channels_ == 1)
        right_[0] = 1;
    const float sum = std::max(std::accumulate(left_.begin(), left_.end(), 0.0F),
                               std::accumulate(right_.begin(), right_.end(), 0.0F));
    for (std::size_t i = 0; i < count; ++i) {
        left_[i] /= sum;
        right_[i] /= sum;
    }
}

void StereoMix::mix(const float *in, float *out, std::size_t frames) const {
    const auto channels = static_cast<std::size_t>(channels_);
    if (channels == 2) {
        std::copy_n(in, frames * 2, out);
        return;
    }
    for (std::size_t frame = 0; frame < frames; ++frame, in += channels) {
        float left = 0;
        float right = 0;
        for (std::size_t i = 0; i < channels; ++i) {
            left += in[i] * left_[i];
            right += in[i] * right_[i];
        }
        out[frame * 2] = left;
        out[frame * 2 + 1] = right;
    }
}

} // namespace velmora::platform::sound
