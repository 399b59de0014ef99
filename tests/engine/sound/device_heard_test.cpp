// What is heard, recorded from the sink's monitor.

#include "device_fixture.h"

#include <algorithm>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr float silent = 0.0005F;
constexpr auto none = MonitorRecorder::frameNone;

// The greatest jump between neighbouring samples beyond what a 500 Hz sine of half scale makes.
double clickOf(const std::vector<float> &samples) {
    double jump = 0;
    for (std::size_t i = 2; i < samples.size(); ++i) {
        // The second difference of a smooth tone is small; a step shows in it in full.
        const double second = double{samples[i]} - 2 * double{samples[i - 1]} + samples[i - 2];
        jump = std::max(jump, std::abs(second));
    }
    return jump;
}
// A 500 Hz sine at half scale has 0.0026; in a ramp little more.
constexpr double clickLimit = 0.02;

TEST_F(Listened, IsHeardSoonAfterPlay) {
    auto device = open("tone.wav");
    listen(50);
    const std::size_t from = recorder().frames();
    const auto start = Clock::now();
    device->play();
    const std::size_t heard = recorder().waitForLoud(0.05F, from, comesLimitMs);
    ASSERT_NE(heard, none);
    EXPECT_LT(arrivedAfter(heard, start), 420); // usually some 20 ms
}

TEST_F(Listened, TheSamplesOfTheFileAreHeardAtTheirLevel) {
    auto device = playing("sides.wav");
    listen(700);
    const auto left = recorder().channel(0, began_ + recorder().framesOf(200), 22050 / 2);
    const auto right = recorder().channel(1, began_ + recorder().framesOf(200), 22050 / 2);
    EXPECT_NEAR(amplitudeAt(left, 440, rate()), 0.5, 0.005);
    EXPECT_NEAR(amplitudeAt(right, 1000, rate()), 0.5, 0.005);
    EXPECT_LT(amplitudeAt(left, 1000, rate()), 0.001);
    EXPECT_LT(amplitudeAt(right, 440, rate()), 0.001);
}

TEST_F(Listened, ThePositionIsWhatIsHeard) {
    auto device = playing("chirp.wav");
    for (int i = 0; i < 5; ++i) {
        listen(300);
        // The newest frame that arrived was heard at most some 40 ms ago.
        const int told = device->positionMs();
        const std::size_t end = recorder().frames();
        const auto piece = recorder().channel(0, end - 4410, 4410);
        const double heardMs = placeInChirp(piece, rate()) * 1000 + 50; // of its end
        EXPECT_NEAR(told, heardMs, 60 * 3);
    }
}

TEST_F(Listened, VolumeIsLinearInAmplitude) {
    auto device = playing("tone.wav");
    for (const int level : {1000, 500, 250, 100, 50, 10, 5, 1}) {
        ASSERT_TRUE(device->setVolume(level));
        listen(250);
        const auto piece = recorder().channel(0, recorder().frames() - 4410, 4410);
        // The sink itself has 16 bits.
        EXPECT_NEAR(amplitudeAt(piece, 500, rate()), 0.5 * level / 1000, 0.00003 + level * 1e-5)
            << level;
    }
}

TEST_F(Listened, VolumeZeroIsSilence) {
    auto device = playing("tone.wav");
    const std::size_t from = recorder().frames();
    const auto start = Clock::now();
    device->setVolume(0);
    const std::size_t quiet = recorder().waitForSilence(1e-6F, 200, from, comesLimitMs);
    ASSERT_NE(quiet, none);
    EXPECT_LT(arrivedAfter(quiet, start), heardLimitMs);
    EXPECT_EQ(device->mode(), Mode::Playing);
}

TEST_F(Listened, AChangeOfVolumeIsHeardSoonInSteadyPlayToo) {
    auto device = playing("tone.wav");
    device->setVolume(100);
    listen(2500); // the buffer is as full as it gets
    for (int round = 0; round < 3; ++round) {
        const std::size_t from = recorder().frames();
        const auto start = Clock::now();
        device->setVolume(1000);
        const std::size_t loud = recorder().waitForLoud(0.4F, from, comesLimitMs);
        ASSERT_NE(loud, none);
        EXPECT_LT(arrivedAfter(loud, start), heardLimitMs); // usually under 20 ms
        device->setVolume(100);
        listen(400);
    }
}

TEST_F(Listened, NoChangeOfVolumeClicks) {
    auto device = playing("tone.wav");
    listen(1200);
    const std::size_t from = recorder().frames();
    for (const int level : {0, 1000, 300, 1000, 0, 600}) {
        device->setVolume(level);
        listen(120);
    }
    for (int level = 0; level <= 1000; level += 6) { // the fade-in of a start
        device->setVolume(level);
        std::this_thread::sleep_for(Ms(1));
    }
    listen(1500);
    EXPECT_LT(clickOf(recorder().channel(0, from, recorder().frames() - from)), clickLimit);
}

TEST_F(Listened, AFadeRisesFromStepToStep) {
    auto device = open("tone.wav");
    device->setVolume(0);
    device->play();
    listen(600);
    const std::size_t from = recorder().frames();
    for (int level = 0; level <= 1000; level += 6) {
        device->setVolume(level);
        std::this_thread::sleep_for(Ms(1));
    }
    const std::size_t begin = recorder().waitForLoud(0.002F, from, comesLimitMs);
    ASSERT_NE(begin, none);
    ASSERT_NE(recorder().waitForLoud(0.49F, from, comesLimitMs), none);
    listen(100);
    // The loudness of pieces of 20 ms (ten periods) never falls until the top is reached.
    double last = 0;
    int rising = 0;
    for (std::size_t at = begin; at + 882 < recorder().frames(); at += 882) {
        const double level = rms(recorder().channel(0, at, 882));
        EXPECT_GE(level, last - 0.003);
        rising += level > last + 0.01 ? 1 : 0;
        last = std::max(last, level);
    }
    EXPECT_GE(rising, 5);
}

TEST_F(Listened, AChosenChannelIsHeardAloneOnBothSpeakers) {
    auto device = playing("sides.wav");
    const auto amplitude = [&](int side, double frequency) {
        const auto piece = recorder().channel(side, recorder().frames() - 8820, 8820);
        return amplitudeAt(piece, frequency, rate());
    };
    struct {
        Channel channel;
        double leftLow, leftHigh, rightLow, rightHigh;
    } const cases[] = {{Channel::Left, 0.5, 0, 0.5, 0},
                       {Channel::Right, 0, 0.5, 0, 0.5},
                       {Channel::Stereo, 0.5, 0, 0, 0.5},
                       {Channel::Left, 0.5, 0, 0.5, 0}};
    for (const auto &test : cases) {
        ASSERT_TRUE(device->setChannel(test.channel));
        listen(450);
        EXPECT_NEAR(amplitude(0, 440), test.leftLow, 0.005);
        EXPECT_NEAR(amplitude(0, 1000), test.leftHigh, 0.005);
        EXPECT_NEAR(amplitude(1, 440), test.rightLow, 0.005);
        EXPECT_NEAR(amplitude(1, 1000), test.rightHigh, 0.005);
    }
}

TEST_F(Listened, MonoIsHeardOnBothSpeakersWhateverIsChosen) {
    auto device = playing("mono.wav");
    for (const Channel channel : {Channel::Stereo, Channel::Left, Channel::Right}) {
        device->setChannel(channel);
        listen(300);
        for (const int side : {0, 1}) {
            const auto piece = recorder().channel(side, recorder().frames() - 4410, 4410);
            EXPECT_NEAR(rms(piece), 0.354, 0.02);
        }
    }
}

TEST_F(Listened, PauseIsSilentSoonAndWithoutAClick) {
    auto device = playing("tone.wav");
    listen(2000);
    const std::size_t from = recorder().frames();
    const auto start = Clock::now();
    device->pause();
    const std::size_t quiet = recorder().waitForSilence(silent, 300, from, comesLimitMs);
    ASSERT_NE(quiet, none);
    EXPECT_LT(arrivedAfter(quiet, start), heardLimitMs); // usually under 30 ms
    EXPECT_LT(clickOf(recorder().channel(0, from - 2000, 20000)), clickLimit);
}

TEST_F(Listened, PlayGoesOnWhereThePauseWas) {
    auto device = playing("chirp.wav");
    listen(1000);
    device->pause();
    const double place = device->positionMs() / 1000.0;
    const std::size_t from =
        recorder().waitForSilence(silent, 200, recorder().frames(), comesLimitMs);
    ASSERT_NE(from, none);
    const std::size_t after = recorder().frames();
    const auto start = Clock::now();
    device->play();
    const std::size_t heard = recorder().waitForLoud(0.1F, after, comesLimitMs);
    ASSERT_NE(heard, none);
    EXPECT_LT(arrivedAfter(heard, start), heardLimitMs);
    listen(300);
    EXPECT_NEAR(placeInChirp(recorder().channel(0, heard, 4410), rate()) - 0.05, place, 0.05);
}

TEST_F(Listened, ASeekIsHeardSoonAtItsPlaceAndWithoutAClick) {
    auto device = playing("chirp.wav");
    listen(1000);
    for (const int target : {7000, 2000, 9000, 500}) {
        const std::size_t from = recorder().frames();
        const auto start = Clock::now();
        ASSERT_TRUE(device->seek(target));
        ASSERT_TRUE(device->play());
        listen(400);
        // The first piece that is nearer to the new place than to the old one.
        std::size_t at = from;
        const auto place = [&](std::size_t frame) {
            return placeInChirp(recorder().channel(0, frame, 2205), rate()) * 1000;
        };
        while (at + 2205 < recorder().frames() && std::abs(place(at) - target) > 200)
            at += 221;
        ASSERT_LT(at + 2205, recorder().frames()) << target;
        EXPECT_LT(arrivedAfter(at, start), heardLimitMs) << target; // usually under 30 ms
        // From there on it runs from the target within 50 ms.
        const std::size_t later = at + recorder().framesOf(100);
        const double ran =
            std::chrono::duration<double, std::milli>(recorder().arrivalOf(later) - start).count();
        EXPECT_NEAR(place(later) - 25 - target, ran, 50 + heardLimitMs / 10.0) << target;
        EXPECT_LT(clickOf(recorder().channel(0, from - 1000, 15000)), 0.1) << target;
    }
}

// From the first to the last sample of a second and a half, and told when it is heard.
TEST_F(Listened, TheEndIsTheEndOfWhatIsHeard) {
    auto device = playing("short.wav");
    ASSERT_TRUE(waitFor(60000, [&] { return device->mode() == Mode::Stopped; }));
    const std::size_t told = recorder().frames();
    EXPECT_EQ(device->positionMs(), device->lengthMs());
    const std::size_t quiet = recorder().waitForSilence(silent, 200, began_ + 4410, comesLimitMs);
    ASSERT_NE(quiet, none);
    EXPECT_NEAR(static_cast<double>(quiet - began_) / rate(), 1.5, 0.01); // nothing is missing
    // Seconds from the told to the heard end.
    EXPECT_LT((static_cast<double>(quiet) - static_cast<double>(told)) / rate(), 0.1);
}

TEST_F(Listened, PlayAfterTheEndIsHeardFromTheBeginning) {
    auto device = playing("chirp.wav");
    ASSERT_TRUE(device->seek(device->lengthMs() - 200));
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return device->mode() == Mode::Stopped; }));
    listen(200);
    const std::size_t from = recorder().frames();
    device->play();
    const std::size_t heard = recorder().waitForLoud(0.05F, from, comesLimitMs);
    ASSERT_NE(heard, none);
    listen(300);
    const auto piece = recorder().channel(0, heard + recorder().framesOf(100), 4410);
    EXPECT_NEAR(placeInChirp(piece, rate()), 0.15, 0.05);
}

TEST_F(Listened, TheNextMediumFollowsAtOnce) {
    auto device = playing("short.wav");
    ASSERT_TRUE(waitFor(60000, [&] { return device->mode() == Mode::Stopped; }));
    const std::size_t from = recorder().frames();
    const auto start = Clock::now();
    device.reset();
    device = open("cbr.mp3");
    device->play();
    const std::size_t heard = recorder().waitForLoud(0.05F, from, comesLimitMs);
    ASSERT_NE(heard, none);
    EXPECT_LT(arrivedAfter(heard, start), 400); // usually 40 ms, the coder's own lead included
}

TEST_F(Listened, ClosingInPlayIsSilentSoonAndWithoutAClick) {
    auto device = playing("tone.wav");
    listen(1000);
    const std::size_t from = recorder().frames();
    const auto start = Clock::now();
    device.reset();
    const std::size_t quiet = recorder().waitForSilence(silent, 300, from, comesLimitMs);
    ASSERT_NE(quiet, none);
    EXPECT_LT(arrivedAfter(quiet, start), heardLimitMs);
    EXPECT_LT(clickOf(recorder().channel(0, from - 2000, 20000)), clickLimit);
}

TEST_F(Listened, OtherRatesThanTheSinksAreHeardAtTheirPitch) {
    for (const char *name :
         {"rate_8000.wav", "rate_22050.wav", "rate_96000.wav", "rate_32.mp3", "chirp.opus"}) {
        auto device = playing(name);
        listen(1000);
        const std::size_t end = recorder().frames();
        const double first = placeInChirp(recorder().channel(0, end - 33075, 4410), rate());
        const double second = placeInChirp(recorder().channel(0, end - 11025, 4410), rate());
        EXPECT_NEAR(second - first, 0.5, 0.03) << name;
    }
}

TEST_F(Listened, ChangesAtAnotherRateThanTheSinksDoNotClickLoudly) {
    auto device = playing("rate_22050.wav");
    listen(1500);
    const std::size_t from = recorder().frames();
    for (const int level : {500, 1000, 200, 1000}) {
        device->setVolume(level);
        listen(150);
    }
    EXPECT_LT(clickOf(recorder().channel(0, from, recorder().frames() - from)), 0.1);
}

TEST_F(Listened, LongPlayHasNoGaps) {
    auto device = playing("tone.wav");
    listen(4500); // over several refills
    const std::size_t from = began_ + recorder().framesOf(50);
    const auto all = recorder().channel(0, from, recorder().frames() - from);
    EXPECT_LT(clickOf(all), 0.01);
    for (std::size_t at = 0; at + 882 < all.size(); at += 882) {
        const std::vector<float> piece(all.begin() + static_cast<std::ptrdiff_t>(at),
                                       all.begin() + static_cast<std::ptrdiff_t>(at + 882));
        ASSERT_NEAR(rms(piece), 0.3535, 0.005) << at;
    }
}

} // namespace
} // namespace velmora::platform::sound
