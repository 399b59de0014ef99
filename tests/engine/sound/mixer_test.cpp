#include "platform/backends/sound/output/mixer.h"
#include "platform/backends/sound/readers/stereo_mix.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace velmora::platform::sound {
namespace {

using media::Channel;

TEST(GainMatrix, VolumeIsLinearInAmplitude) {
    for (const int volume : {0, 1, 5, 6, 250, 500, 999, 1000}) {
        const GainMatrix gain = gainMatrix(volume, Channel::Stereo);
        EXPECT_FLOAT_EQ(gain.leftToLeft, static_cast<float>(volume) / 1000);
        EXPECT_FLOAT_EQ(gain.rightToRight, static_cast<float>(volume) / 1000);
        EXPECT_EQ(gain.rightToLeft, 0);
        EXPECT_EQ(gain.leftToRight, 0);
    }
}

TEST(GainMatrix, ASingleChannelGoesToBothSides) {
    const GainMatrix left = gainMatrix(500, Channel::Left);
    EXPECT_EQ(left, (GainMatrix{0.5F, 0, 0.5F, 0}));
    const GainMatrix right = gainMatrix(500, Channel::Right);
    EXPECT_EQ(right, (GainMatrix{0, 0.5F, 0, 0.5F}));
}

TEST(GainMatrix, VolumeBeyondItsRangeIsHeldInside) {
    EXPECT_EQ(gainMatrix(-7, Channel::Stereo), gainMatrix(0, Channel::Stereo));
    EXPECT_EQ(gainMatrix(1001, Channel::Stereo), gainMatrix(1000, Channel::Stereo));
}

TEST(GainRamp, GoesStraightFromOneGainToTheOther) {
    GainRamp ramp;
    ramp.set(gainMatrix(0, Channel::Stereo));
    ramp.rampTo(gainMatrix(1000, Channel::Stereo), 100, 10);
    EXPECT_FLOAT_EQ(ramp.at(99).leftToLeft, 0);
    EXPECT_FLOAT_EQ(ramp.at(100).leftToLeft, 0);
    EXPECT_FLOAT_EQ(ramp.at(105).leftToLeft, 0.5F);
    EXPECT_FLOAT_EQ(ramp.at(110).leftToLeft, 1);
    EXPECT_FLOAT_EQ(ramp.at(100000).leftToLeft, 1);
}

TEST(GainRamp, AChangeInMidRampBeginsWhereTheRampStands) {
    GainRamp ramp;
    ramp.set(gainMatrix(0, Channel::Stereo));
    ramp.rampTo(gainMatrix(1000, Channel::Stereo), 0, 10);
    ramp.rampTo(gainMatrix(0, Channel::Stereo), 5, 10);
    EXPECT_FLOAT_EQ(ramp.at(5).leftToLeft, 0.5F);
    EXPECT_FLOAT_EQ(ramp.at(10).leftToLeft, 0.25F);
    EXPECT_FLOAT_EQ(ramp.at(15).leftToLeft, 0);
}

TEST(GainRamp, NoStepIsLargerThanTheRampsOwn) {
    GainRamp ramp;
    ramp.set(gainMatrix(0, Channel::Left));
    std::vector<float> samples(2 * 1000, 1.0F);
    ramp.rampTo(gainMatrix(1000, Channel::Right), 300, 350);
    ramp.apply(samples.data(), 0, 1000);
    for (std::size_t i = 2; i < samples.size(); ++i)
        EXPECT_LE(std::abs(samples[i] - samples[i - 2]), 1.0F / 350 + 1e-6F) << i;
    EXPECT_FLOAT_EQ(samples[1999], 1);
}

TEST(GainRamp, AppliesInPartsAsInOne) {
    GainRamp ramp;
    ramp.set(gainMatrix(200, Channel::Stereo));
    ramp.rampTo(gainMatrix(900, Channel::Left), 17, 40);
    std::vector<float> whole(200);
    for (std::size_t i = 0; i < whole.size(); ++i)
        whole[i] = std::sin(static_cast<float>(i));
    std::vector<float> parts = whole;
    ramp.apply(whole.data(), 0, 100);
    ramp.apply(parts.data(), 0, 33);
    ramp.apply(parts.data() + 66, 33, 67);
    EXPECT_EQ(whole, parts);
}

TEST(StereoMix, OneChannelIsHeardOnBothSides) {
    const float in[] = {0.5F, -0.25F};
    float out[4];
    StereoMix(1).mix(in, out, 2);
    EXPECT_FLOAT_EQ(out[0], 0.5F);
    EXPECT_FLOAT_EQ(out[1], 0.5F);
    EXPECT_FLOAT_EQ(out[2], -0.25F);
    EXPECT_FLOAT_EQ(out[3], -0.25F);
}

TEST(StereoMix, TwoChannelsStayAsTheyAre) {
    const float in[] = {0.5F, -0.25F, 1.5F, 0};
    float out[4];
    StereoMix(2).mix(in, out, 2);
    EXPECT_EQ(std::vector<float>(out, out + 4), std::vector<float>(in, in + 4));
}

TEST(StereoMix, SurroundGoesToItsSideAndTheMiddleToBoth) {
    float out[2];
    const float middle[] = {0, 0, 1, 0, 0, 0};
    StereoMix(6).mix(middle, out, 1);
    EXPECT_GT(out[0], 0.2F);
    EXPECT_FLOAT_EQ(out[0], out[1]);
    const float rearLeft[] = {0, 0, 0, 0, 1, 0};
    StereoMix(6).mix(rearLeft, out, 1);
    EXPECT_GT(out[0], 0.2F);
    EXPECT_EQ(out[1], 0);
    const float rearRight[] = {0, 0, 0, 0, 0, 1};
    StereoMix(6).mix(rearRight, out, 1);
    EXPECT_EQ(out[0], 0);
    EXPECT_GT(out[1], 0.2F);
}

TEST(StereoMix, FullScaleInEveryChannelStaysFullScale) {
    for (int channels = 1; channels <= 64; ++channels) {
        const std::vector<float> in(static_cast<std::size_t>(channels), 1.0F);
        float out[2];
        StereoMix(channels).mix(in.data(), out, 1);
        EXPECT_LE(out[0], 1.0001F) << channels;
        EXPECT_LE(out[1], 1.0001F) << channels;
        EXPECT_GT(out[0], 0.7F) << channels;
        EXPECT_GT(out[1], 0.7F) << channels; // both sides keep one scale
    }
}

} // namespace
} // namespace velmora::platform::sound
