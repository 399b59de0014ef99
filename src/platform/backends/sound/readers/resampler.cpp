#include "platform/backends/sound/readers/resampler.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace velmora::platform::sound {

namespace {

// Enough for a band that ends a little below the lower of the two rates' highest frequencies.
constexpr double crossings = 24;
constexpr int pointsToCrossing = 512;
constexpr double passedPart = 0.95;

} // namespace

// The kernel is a sine over its argument under a window, tabled for one half.
Resampler::Resampler(int fromRate, int toRate, int channels)
    : step_(static_cast<double>(fromRate) / toRate), channels_(static_cast<std::size_t>(channels)),
      cutoff_(passedPart * std::min(1.0, 1 / step_)),
      reach_(static_cast<std::int64_t>(std::ceil(crossings / cutoff_))) {
    const auto points = static_cast<std::size_t>(crossings * pointsToCrossing);
    kernel_.resize(points + 2);
    for (std::size_t i = 0; i <= points; ++i) {
        const double x = std::numbers::pi * static_cast<double>(i) / pointsToCrossing;
        const double part = static_cast<double>(i) / static_cast<double>(points);
        const double window = 0.42 + 0.5 * std::cos(std::numbers::pi * part) +
                              0.08 * std::cos(2 * std::numbers::pi * part);
        kernel_[i] = static_cast<float>((i == 0 ? 1.0 : std::sin(x) / x) * window * cutoff_);
    }
    held_.resize(static_cast<std::size_t>(reach_) * channels_);
    heldFrom_ = -reach_;
}

float Resampler::weight(double distance) const {
    const double place = std::abs(distance) * cutoff_ * pointsToCrossing;
    const auto at = static_cast<std::size_t>(place);
    if (at + 1 >= kernel_.size())
        return 0;
    const auto part = static_cast<float>(place - static_cast<double>(at));
    return kernel_[at] + (kernel_[at + 1] - kernel_[at]) * part;
}

void Resampler::push(std::span<const float> in, std::vector<float> &out) {
    held_.insert(held_.end(), in.begin(), in.end());
    pull(out);
}

void Resampler::flush(std::vector<float> &out) {
    held_.resize(held_.size() + static_cast<std::size_t>(reach_) * channels_);
    pull(out);
}

void Resampler::pull(std::vector<float> &out) {
    const auto end = heldFrom_ + static_cast<std::int64_t>(held_.size() / channels_);
    const auto next = [this] { return static_cast<double>(given_) * step_; };
    const auto firstNeeded = [&] {
        return static_cast<std::int64_t>(std::floor(next())) - reach_ + 1;
    };
    for (; firstNeeded() + 2 * reach_ <= end; ++given_) {
        const double middle = next();
        const std::int64_t first = firstNeeded();
        const std::size_t place = out.size();
        out.resize(place + channels_);
        const float *in = held_.data() + static_cast<std::size_t>(first - heldFrom_) * channels_;
        for (std::int64_t i = first; i < first + 2 * reach_; ++i) {
            const float part = weight(static_cast<double>(i) - middle);
            for (std::size_t channel = 0; channel < channels_; ++channel)
                out[place + channel] += *in++ * part;
        }
    }
    const std::int64_t done =
        std::clamp<std::int64_t>(firstNeeded() - heldFrom_, 0, end - heldFrom_);
    held_.erase(held_.begin(), held_.begin() + done * static_cast<std::ptrdiff_t>(channels_));
    heldFrom_ += done;
}

} // namespace velmora::platform::sound
