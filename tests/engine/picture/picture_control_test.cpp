// Volume, channels, delays and the end of a medium, as the null sink records them.

#include "picture_listening.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace velmora::tests {
namespace {

class PictureControl : public PictureHeard {
protected:
    // Lets a change that was made be heard, and whatever lies in buffers pass.
    static void settle(int ms = 400) {
        recorder_->waitForFrames(recorder_->frames() + recorder_->framesOf(ms), 30000);
    }

    // The middle of five measures, so that what the machine does to one or two of them tells
    // nothing of the device.
    static double middleOfFive(const std::function<double(std::size_t)> &measure) {
        std::array<double, 5> measures{};
        for (std::size_t i = 0; i < measures.size(); ++i)
            measures[i] = measure(i);
        std::sort(measures.begin(), measures.end());
        return measures[2];
    }
    // In pieces of 20 ms, one behind the other.
    static testing::AssertionResult isAmplitude(double frequency, int speaker, double expected,
                                                double tolerance) {
        const std::size_t from = recorder_->frames();
        const double measured = middleOfFive([&](std::size_t piece) {
            return amplitudeOf(frequency,
                               heard(speaker, from + piece * recorder_->framesOf(20), 20));
        });
        if (std::abs(measured - expected) <= tolerance)
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << measured << " instead of " << expected << " on speaker " << speaker;
    }

    // Milliseconds from a change to its being heard.
    static double delayOf(const std::function<void()> &prepare, const std::function<void()> &change,
                          const std::function<std::size_t(std::size_t from)> &noticed) {
        return middleOfFive([&](std::size_t) {
            prepare();
            settle();
            const auto when = Clock::now();
            const std::size_t from = recorder_->frames();
            change();
            const std::size_t frame = noticed(from);
            EXPECT_NE(frame, MonitorRecorder::frameNone);
            return delay(frame, when);
        });
    }

    static std::size_t silence(std::size_t from) {
        return recorder_->waitForSilence(loud, 8, from, 30000);
    }
    static std::size_t sound(std::size_t from) { return waitForSound(from); }
};

// What a person is to hear after, and what the record itself may add.
constexpr double heardWithinMs = 30.0;
constexpr double recordMs = 15.0;

TEST_F(PictureControl, AVolumeIsLinearInAmplitude) {
    const auto device = open("tone.tta");
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 200));
    settle();
    constexpr double full = 0.5;
    EXPECT_TRUE(isAmplitude(1000.0, 0, full, 0.01 * full));
    for (const int level : {500, 100, 10, 1, 1000}) {
        ASSERT_TRUE(device->setVolume(level));
        settle();
        const double share = level / 1000.0;
        EXPECT_TRUE(isAmplitude(1000.0, 0, share * full, (0.01 * share + 2e-5) * full));
    }
    ASSERT_TRUE(device->setVolume(0));
    settle();
    EXPECT_TRUE(isAmplitude(1000.0, 0, 0.0, 1e-6));
}

TEST_F(PictureControl, AVolumeSetBeforePlayHoldsFromTheFirstSample) {
    const auto device = open("tone.tta");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->setVolume(0));
    const std::size_t from = recorder_->frames();
    ASSERT_TRUE(playUpTo(*device, 500));
    for (const float sample : heard(0, from, 400))
        ASSERT_EQ(sample, 0.0F);
}

TEST_F(PictureControl, AVolumeOutsideItsRangeIsRefused) {
    const auto device = open("tone.tta");
    ASSERT_TRUE(device);
    EXPECT_FALSE(device->setVolume(-1));
    EXPECT_FALSE(device->setVolume(1001));
    EXPECT_TRUE(device->setVolume(1000));
}

TEST_F(PictureControl, AFadeInStepsOfOneMillisecondMakesNoClicks) {
    const auto device = open("tone.tta");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->setVolume(0));
    ASSERT_TRUE(playUpTo(*device, 300));
    settle();
    const std::size_t from = recorder_->frames();
    for (int level = 0; level <= 1000; level += 6) {
        device->setVolume(level);
        const auto next = Clock::now() + std::chrono::milliseconds(1);
        waitUntil([&] { return Clock::now() >= next; });
    }
    // A tone of 1000 Hz and amplitude 0.5 moves by at most 0.071 from sample to sample.
    const auto piece = heard(0, from, 600);
    float greatest = 0;
    for (std::size_t i = 1; i < piece.size(); ++i)
        greatest = std::max(greatest, std::fabs(piece[i] - piece[i - 1]));
    EXPECT_LT(greatest, 0.1F);
    EXPECT_GT(greatest, 0.06F);
}

class Sides : public PictureControl,
              public testing::WithParamInterface<std::pair<const char *, double>> {};

// The files hold 1000 Hz on the left and 2000 Hz on the right at the amplitude given.
TEST_P(Sides, StereoIsBothAndASideIsThatAloneOnBothSpeakers) {
    const double level = GetParam().second;
    const auto device = open(GetParam().first);
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 200));
    const auto expect = [&](int speaker, double low, double high) {
        settle();
        EXPECT_TRUE(isAmplitude(1000.0, speaker, low * level, 0.02 * level));
        EXPECT_TRUE(isAmplitude(2000.0, speaker, high * level, 0.02 * level));
    };
    expect(0, 1.0, 0.0);
    expect(1, 0.0, 1.0);
    ASSERT_TRUE(device->setChannel(Channel::Left));
    expect(0, 1.0, 0.0);
    expect(1, 1.0, 0.0);
    ASSERT_TRUE(device->setChannel(Channel::Right));
    expect(0, 0.0, 1.0);
    expect(1, 0.0, 1.0);
    ASSERT_TRUE(device->setChannel(Channel::Stereo));
    expect(0, 1.0, 0.0);
    expect(1, 0.0, 1.0);
}

INSTANTIATE_TEST_SUITE_P(Files, Sides,
                         testing::Values(std::pair{"two_tones.tta", 0.5},
                                         std::pair{"surround.flac", 0.3}));

TEST_F(PictureControl, AMonoMediumIsTheSameOnEverySide) {
    const auto device = open("mono_tone.tta");
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 200));
    for (const Channel channel : {Channel::Stereo, Channel::Left, Channel::Right}) {
        ASSERT_TRUE(device->setChannel(channel));
        settle();
        EXPECT_TRUE(isAmplitude(1000.0, 0, 0.5, 0.01));
        EXPECT_TRUE(isAmplitude(1000.0, 1, 0.5, 0.01));
    }
}

TEST_F(PictureControl, AChannelSetBeforePlayHoldsFromTheFirstSample) {
    const auto device = open("two_tones.tta");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->setChannel(Channel::Left));
    const std::size_t from = recorder_->frames();
    ASSERT_TRUE(device->play());
    const std::size_t first = waitForSound(from);
    ASSERT_NE(first, MonitorRecorder::frameNone);
    EXPECT_LT(amplitudeOf(2000.0, heard(1, first, 300)), 0.01);
}

TEST_F(PictureControl, TheSameChannelAgainLeavesTheSoundWhole) {
    const auto device = open("tone.tta");
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 300));
    const std::size_t from = recorder_->frames();
    ASSERT_TRUE(device->setChannel(Channel::Stereo));
    EXPECT_NEAR(amplitudeOf(1000.0, heard(0, from, 300)), 0.5, 0.01);
}

class Delay : public PictureControl, public testing::WithParamInterface<const char *> {};

TEST_P(Delay, AVolumeIsHeardAtOnce) {
    const auto device = open(GetParam());
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->play());
    const auto set = [&](int level) { return [&, level] { device->setVolume(level); }; };
    EXPECT_LT(delayOf(set(1000), set(0), silence), heardWithinMs + recordMs);
    EXPECT_LT(delayOf(set(0), set(1000), sound), heardWithinMs + recordMs);
}

TEST_P(Delay, APauseIsHeardAtOnce) {
    const auto device = open(GetParam());
    ASSERT_TRUE(device);
    const auto play = [&] { device->play(); };
    const auto pause = [&] { device->pause(); };
    EXPECT_LT(delayOf(play, pause, silence), heardWithinMs + recordMs);
    EXPECT_LT(delayOf(pause, play, sound), heardWithinMs + recordMs);
}

TEST_P(Delay, ASeekSilencesTheOldPlaceAtOnce) {
    const auto device = open(GetParam());
    ASSERT_TRUE(device);
    const auto play = [&] { device->play(); };
    EXPECT_LT(delayOf(
                  play, [&] { device->seek(5000); }, silence),
              heardWithinMs + recordMs);
}

INSTANTIATE_TEST_SUITE_P(Files, Delay, testing::Values("long.m4a", "tone_film.mp4"),
                         [](const auto &file) {
                             return std::string(file.param) == "long.m4a" ? "sound" : "film";
                         });

class ChannelDelay : public PictureControl, public testing::WithParamInterface<const char *> {};

// A film takes its sound stream up again at the picture's time, which costs some frames; the side
// that was switched off must be gone as soon as in a sound.
TEST_P(ChannelDelay, AChangeIsHeardAtOnce) {
    const auto device = open(GetParam());
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->setChannel(Channel::Right));
    ASSERT_TRUE(device->play());
    const auto set = [&](Channel channel) { return [&, channel] { device->setChannel(channel); }; };
    // The right side of these files is silent.
    EXPECT_LT(delayOf(set(Channel::Left), set(Channel::Right), silence), heardWithinMs + recordMs);
    const bool isFilm = std::string(GetParam()).find("film") != std::string::npos;
    EXPECT_LT(delayOf(set(Channel::Right), set(Channel::Left), sound),
              heardWithinMs + recordMs + (isFilm ? 30.0 : 0.0));
}

INSTANTIATE_TEST_SUITE_P(Files, ChannelDelay,
                         testing::Values("left_tone.m4a", "left_tone_film.mp4"),
                         [](const auto &file) {
                             return std::string(file.param) == "left_tone.m4a" ? "sound" : "film";
                         });

TEST_F(PictureControl, TheEndIsToldWhenTheLastSoundIsHeard) {
    const auto device = open("sound.tta");
    ASSERT_TRUE(device);
    const int length = device->lengthMs();
    ASSERT_TRUE(device->seek(length - 800));
    const std::size_t from = recorder_->frames();
    ASSERT_TRUE(device->play());
    ASSERT_TRUE(waitUntil([&] { return device->mode() == Mode::Stopped; }, 5000));
    const auto when = Clock::now();
    const std::size_t first = waitForSound(from);
    const std::size_t quiet = recorder_->waitForSilence(loud, 50, first, 30000);
    ASSERT_NE(quiet, MonitorRecorder::frameNone);
    const double heardMs = static_cast<double>(quiet - first) * 1000.0 / recorder_->rate();
    EXPECT_NEAR(heardMs, 800.0, 60.0);
    // Not before the last sound (but for the record's own doubt), and soon after.
    EXPECT_LT(delay(quiet, when), recordMs);
    EXPECT_GT(delay(quiet, when), -250.0);
}

TEST_F(PictureControl, ASoundShorterThanEveryBufferIsHeardWhole) {
    const auto device = open("short.tta");
    ASSERT_TRUE(device);
    EXPECT_EQ(device->lengthMs(), 150);
    settle();
    const std::size_t from = recorder_->frames();
    ASSERT_TRUE(device->play());
    ASSERT_TRUE(waitUntil([&] { return device->mode() == Mode::Stopped; }, 5000));
    const std::size_t first = waitForSound(from);
    ASSERT_NE(first, MonitorRecorder::frameNone);
    const std::size_t quiet = recorder_->waitForSilence(loud, 50, first, 30000);
    EXPECT_NEAR(static_cast<double>(quiet - first) * 1000.0 / recorder_->rate(), 150.0, 15.0);
}

TEST_F(PictureControl, PlayAfterTheEndIsHeardFromTheBeginning) {
    const auto device = open("sound.tta");
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->seek(device->lengthMs() - 100));
    ASSERT_TRUE(device->play());
    ASSERT_TRUE(waitUntil([&] { return device->mode() == Mode::Stopped; }, 5000));
    settle();
    const std::size_t from = recorder_->frames();
    ASSERT_TRUE(device->play());
    const std::size_t first = waitForSound(from);
    ASSERT_NE(first, MonitorRecorder::frameNone);
    const auto match = source_->find(heard(0, first, 250), 0, 0.0, 1.0);
    EXPECT_GT(match.correlation, isPart);
    EXPECT_LT(match.seconds, 0.05);
}

TEST_F(PictureControl, ACloseIsSilentAtOnceAndTheNextMediumSounds) {
    auto device = open("tone.tta");
    ASSERT_TRUE(device);
    ASSERT_TRUE(playUpTo(*device, 300));
    std::size_t from = recorder_->frames();
    device.reset();
    EXPECT_NE(recorder_->waitForSilence(loud, 50, from, 30000), MonitorRecorder::frameNone);
    device = open("two_tones.tta");
    ASSERT_TRUE(device);
    from = recorder_->frames();
    ASSERT_TRUE(device->play());
    EXPECT_NE(waitForSound(from), MonitorRecorder::frameNone);
}

} // namespace
} // namespace velmora::tests
