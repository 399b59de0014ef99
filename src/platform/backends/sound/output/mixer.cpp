#include "platform/backends/sound/output/mixer.h"

#include <algorithm>

namespace velmora::platform::sound {

namespace {

float between(float from, float to, float part) { return from + (to - from) * part; }

} // namespace

GainMatrix gainMatrix(std::int32_t volume, media::Channel channel) {
    const float gain = static_cast<float>(std::clamp(volume, 0, 1000)) / 1000.0F;
    switch (channel) {
    case media::Channel::Left:
        return {gain, 0, gain, 0};
    case media::Channel::Right:
        return {0, gain, 0, gain};
    case media::Channel::Stereo:
        break;
    }
    return {gain, 0, 0, gain};
}

void GainRamp::set(const GainMatrix &gain) {
    from_ = to_ = gain;
    length_ = 0;
}

void GainRamp::rampTo(const GainMatrix &target, std::int64_t start, std::int64_t length) {
    from_ = at(start);
    to_ = target;
    start_ = start;
    length_ = length;
}

GainMatrix GainRamp::at(std::int64_t frame) const {
    if (length_ <= 0 || frame >= start_ + length_)
        return to_;
    if (frame <= start_)
        return from_;
    const float part = static_cast<float>(frame - start_) / static_cast<float>(length_);
    return {between(from_.leftToLeft, to_.leftToLeft, part),
            between(from_.rightToLeft, to_.rightToLeft, part),
            between(from_.leftToRight, to_.leftToRight, part),
            between(from_.rightToRight, to_.rightToRight, part)};
}

void GainRamp::apply(float *samples, std::int64_t start, std::size_t frames) const {
    const auto multiply = [samples](std::size_t i, const GainMatrix &gain) {
        const float left = samples[i * 2];
        const float right = samples[i * 2 + 1];
        samples[i * 2] = left * gain.leftToLeft + right * gain.rightToLeft;
        samples[i * 2 + 1] = left * gain.leftToRight + right * gain.rightToRight;
    };
    std::size_t i = 0;
    for (; i < frames && start + static_cast<std::int64_t>(i) < start_ + length_; ++i)
        multiply(i, at(start + static_cast<std::int64_t>(i)));
    const GainMatrix rest = to_;
    for (; i < frames; ++i)
        multiply(i, rest);
}

} // namespace velmora::platform::sound
