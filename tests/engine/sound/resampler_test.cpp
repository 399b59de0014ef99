#include "platform/backends/sound/readers/resampler.h"

#include "sound_testing.h"

#include <gtest/gtest.h>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

struct Rates {
    int from;
    int to;
};
std::ostream &operator<<(std::ostream &out, const Rates &rates) {
    return out << rates.from << " to " << rates.to;
}

class Resampled : public testing::TestWithParam<Rates> {
protected:
    // A second of two sines, left and right, pushed in pieces of odd sizes.
    static std::vector<float> resample(double left, double right) {
        const auto [from, to] = GetParam();
        Resampler resampler(from, to, 2);
        std::vector<float> in;
        for (int i = 0; i < from; ++i) {
            const double time = 2 * M_PI * i / from;
            in.push_back(static_cast<float>(0.5 * std::sin(time * left)));
            in.push_back(static_cast<float>(0.25 * std::sin(time * right)));
        }
        std::vector<float> out;
        std::size_t piece = 2;
        for (std::size_t at = 0; at < in.size(); at += piece) {
            piece = std::min(piece * 3 % 4001 / 2 * 2 + 2, in.size() - at);
            resampler.push(std::span<const float>(in).subspan(at, piece), out);
        }
        resampler.flush(out);
        return out;
    }
    static std::vector<float> channel(const std::vector<float> &sound, std::size_t number) {
        std::vector<float> one;
        for (std::size_t i = number; i < sound.size(); i += 2)
            one.push_back(sound[i]);
        return one;
    }
};

TEST_P(Resampled, LastsAsLong) {
    EXPECT_NEAR(static_cast<double>(resample(440, 440).size()) / 2, GetParam().to, 2);
}

TEST_P(Resampled, KeepsPitchLevelAndPlace) {
    const auto sound = resample(440, 1000);
    const auto left = channel(sound, 0);
    const auto right = channel(sound, 1);
    const double rate = GetParam().to;
    EXPECT_NEAR(amplitudeAt(left, 440, rate), 0.5, 0.002);
    EXPECT_NEAR(amplitudeAt(right, 1000, rate), 0.25, 0.002);
    EXPECT_LT(amplitudeAt(left, 1000, rate), 0.0005);
    double furthest = 0; // from the sine itself
    for (std::size_t i = 200; i + 200 < left.size(); ++i) {
        const double exact = 0.5 * std::sin(2 * M_PI * 440 * static_cast<double>(i) / rate);
        furthest = std::max(furthest, std::abs(left[i] - exact));
    }
    EXPECT_LT(furthest, 0.001);
}

TEST_P(Resampled, WhatTheLowerRateCannotHoldIsLeftOut) {
    const auto [from, to] = GetParam();
    if (to >= from)
        return; // nothing is too high
    const double tooHigh = to * 0.5 + (from - to) * 0.5 * 0.9;
    EXPECT_LT(rms(channel(resample(tooHigh, 440), 0)), 0.02);
}

INSTANTIATE_TEST_SUITE_P(Of, Resampled,
                         testing::Values(Rates{44100, 48000}, Rates{48000, 44100},
                                         Rates{22050, 44100}, Rates{44100, 22050},
                                         Rates{8000, 48000}, Rates{48000, 8000},
                                         Rates{44100, 44100}));

} // namespace
} // namespace velmora::platform::sound
