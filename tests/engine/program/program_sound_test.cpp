// What the program's play, seek and channel sound like.

#include "program_heard.h"

#include <algorithm>
#include <ostream>

namespace velmora::tests {
namespace {

class ProgramSound : public ProgramHeard {
protected:
    // The newest piece of the record.
    static double amplitude(double frequency, int speaker) {
        const std::size_t count = recorder_->framesOf(100);
        return amplitudeOf(frequency,
                           recorder_->channel(speaker, recorder_->frames() - count, count));
    }
    // Waits until the record holds these amplitudes of both tones on both speakers.
    bool hears(double lowLeft, double highLeft, double lowRight, double highRight) {
        const auto near = [](double frequency, int speaker, double expected) {
            return std::abs(amplitude(frequency, speaker) - expected) < 0.02;
        };
        return runUntil(
            [&] {
                return near(500, 0, lowLeft) && near(2000, 0, highLeft) && near(500, 1, lowRight) &&
                       near(2000, 1, highRight);
            },
            3000);
    }
    // Loudness of pieces of 10 ms, five periods, from a frame to the newest one.
    static std::vector<double> loudnessFrom(std::size_t from) {
        std::vector<double> result;
        const std::size_t step = recorder_->framesOf(10);
        for (std::size_t at = from; at + step <= recorder_->frames(); at += step)
            result.push_back(amplitudeOf(500, recorder_->channel(0, at, step)));
        return result;
    }
};

TEST_F(ProgramSound, TheFadeInRisesInStepsToTheVolumeOfTheBar) {
    row(tone("low.wav", 500, 500, 30.0));
    app_.Main().Volume_Set.setWidth(app_.Main().Volume_Set_BG.width() / 2);
    const std::size_t from = recorder_->frames();
    playRow(1);
    listen(300);
    const std::vector<double> rise = loudnessFrom(waitForSound(from));
    ASSERT_FALSE(rise.empty());
    const double top = *std::max_element(rise.begin(), rise.end());
    const auto end =
        std::find_if(rise.begin(), rise.end(), [&](double level) { return level > top - 0.01; });
    EXPECT_NEAR(top, 0.25, 0.01);
    EXPECT_LT(rise.front(), 0.1);
    // Over 83 rounds of a millisecond or more, and never back.
    EXPECT_GE(end - rise.begin(), 5);
    EXPECT_TRUE(std::is_sorted(rise.begin(), end)) << testing::PrintToString(rise);
}

TEST_F(ProgramSound, LeftIsLeftAndRightIsRight) {
    row(tone("sides.wav", 500, 2000, 30.0));
    playRow(1);
    EXPECT_TRUE(hears(0.5, 0.0, 0.0, 0.5));
    // A chosen channel is heard on both speakers.
    app_.player().set_AudioSource(1);
    EXPECT_TRUE(hears(0.5, 0.0, 0.5, 0.0));
    app_.player().set_AudioSource(2);
    EXPECT_TRUE(hears(0.0, 0.5, 0.0, 0.5));
    app_.player().set_AudioSource(0);
    EXPECT_TRUE(hears(0.5, 0.0, 0.0, 0.5));
}

struct Kind {
    const char *file;
    // Silence that the encoder put in front and no header tells of.
    double codecDelayMs = 0.0;
};

void PrintTo(const Kind &kind, std::ostream *out) { *out << kind.file; }

class SeekInEveryKind : public ProgramHeard, public testing::WithParamInterface<Kind> {
protected:
    SourceSound::Match seekAndHear(std::int32_t target) {
        app_.player().pause_Sub();
        listen(150);
        const std::size_t from = recorder_->frames();
        EXPECT_EQ(app_.player().seek_To(target), -1);
        const std::size_t first = waitForSound(from);
        if (first == MonitorRecorder::frameNone)
            return {};
        return findFrom(first, 1, GetParam().file == std::string("mono.mp3") ? 0 : 1,
                        target / 1000.0, 0.6);
    }
};

TEST_P(SeekInEveryKind, IsHeardAtItsPlace) {
    row(mediaFile(GetParam().file));
    playRow(1);
    ASSERT_NEAR(app_.player().get_Length(), 12'000, 50);
    for (const std::int32_t target : {9040, 3515}) {
        const SourceSound::Match match = hearUntorn([&] { return seekAndHear(target); });
        EXPECT_GT(match.correlation, 0.6) << target;
        // It fades in: its first moment is too low to be heard, a longer one on a busy machine.
        const double place = match.seconds * 1000.0 + GetParam().codecDelayMs;
        EXPECT_GT(place, target - 50.0);
        EXPECT_LT(place, target + 400.0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, SeekInEveryKind,
    testing::Values(Kind{"cbr.mp3"}, Kind{"vbr.mp3"}, Kind{"vbr_headless.mp3"},
                    Kind{"rate8000.mp3"}, Kind{"rate48000.mp3"}, Kind{"mono.mp3"},
                    Kind{"bits8.wav"}, Kind{"source.wav"}, Kind{"bits24.wav"}, Kind{"bits32.wav"},
                    Kind{"float.wav"}, Kind{"sound.flac"}, Kind{"sound.ogg"}, Kind{"sound.opus"},
                    Kind{"sound.aiff"}, Kind{"sound.au"}, Kind{"sound.wma", 46.0},
                    Kind{"sound.tta"}, Kind{"sound.m4a"}, Kind{"film.mp4"}, Kind{"film.flv"},
                    Kind{"film.avi"}, Kind{"film.mpg"}, Kind{"film.wmv", 46.0}),
    [](const auto &kind) {
        std::string name = kind.param.file;
        std::replace(name.begin(), name.end(), '.', '_');
        return name;
    });

} // namespace
} // namespace velmora::tests
