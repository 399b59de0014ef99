// Files of every rate up to the highest sound from their first to their last sample, whatever the
// sink was doing when they began.

#include "device_fixture.h"

#include <cmath>
#include <optional>
#include <ostream>
#include <string_view>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

constexpr auto none = MonitorRecorder::frameNone;
constexpr int longMs = 4000;  // asks the sink for parts of two seconds, the longest it has
constexpr int soundMs = 5000; // several refills, and more than a server ever holds

// A sine at half scale on both sides that rises from 300 Hz by 200 Hz each second, so that each
// piece of it tells its place.
Bytes chirpFile(int rate, int ms) {
    Bytes bytes;
    const auto number = [&bytes](std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i)
            bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    };
    const auto text = [&bytes](std::string_view name) {
        for (const char letter : name)
            bytes.push_back(static_cast<std::uint8_t>(letter));
    };
    const auto frames = static_cast<std::uint32_t>(std::int64_t{rate} * ms / 1000);
    text("RIFF");
    number(36 + frames * 4, 4);
    text("WAVE");
    text("fmt ");
    number(16, 4);
    number(1, 2);
    number(2, 2);
    number(static_cast<std::uint32_t>(rate), 4);
    number(static_cast<std::uint32_t>(rate) * 4, 4);
    number(4, 2);
    number(16, 2);
    text("data");
    number(frames * 4, 4);
    for (std::uint32_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / rate;
        const double wave = std::sin(2 * M_PI * (300 * t + 100 * t * t));
        const auto sample = static_cast<std::uint16_t>(static_cast<int>(std::lround(wave * 16383)));
        number(sample, 2);
        number(sample, 2);
    }
    return bytes;
}

enum class Sink {
    Idle,       // nobody plays; two seconds of silence are mixed already
    Running,    // somebody listens to it: it mixes in short parts
    WithOthers, // another program plays, in parts of two seconds
};

struct Situation {
    int rate;
    Sink sink;
};

void PrintTo(const Situation &situation, std::ostream *out) {
    *out << situation.rate << " Hz, sink " << static_cast<int>(situation.sink);
}

int gapsBetween(const MonitorRecorder &recorder, std::size_t from, std::size_t to) {
    int gaps = 0;
    const auto piece = static_cast<std::size_t>(recorder.rate() / 50);
    for (std::size_t at = from + piece; at + piece * 2 < to; at += piece)
        gaps += std::abs(rms(recorder.channel(0, at, piece)) - 0.3535) > 0.02 ? 1 : 0;
    return gaps;
}

class EveryRate : public testing::TestWithParam<Situation> {
protected:
    void SetUp() override {
        ASSERT_TRUE(server_.running());
        SoundOptions options;
        options.server = server_.address();
        opener_ = makeSoundOpener(options);
        if (GetParam().sink == Sink::WithOthers)
            other_.emplace(server_, longMs);
    }

    PulseServer server_;
    std::optional<SilentPlayer> other_;
    std::unique_ptr<DeviceOpener> opener_;
    TemporaryFolder folder_;
};

TEST_P(EveryRate, SoundsWithoutAGapToItsEnd) {
    const bool isRunning = GetParam().sink == Sink::Running;
    const MonitorRecorder recorder(server_, isRunning ? 20 : longMs);
    ASSERT_EQ(server_.mixesAheadMs() > 1900, !isRunning);
    // The most that ever lies between a player and being heard.
    ASSERT_TRUE(isRunning || waitFor(60000, [&] { return server_.mixedMs() > 1700; }));
    const std::string path = folder_.write("chirp.wav", chirpFile(GetParam().rate, soundMs));
    const auto device = opener_->open({path, "Waveaudio"});
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->play());
    const auto start = Clock::now();
    ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() > 0; }));
    EXPECT_LT(msSince(start), startLimitMs);
    ASSERT_TRUE(waitFor(soundMs * 3, [&] { return device->mode() == Mode::Stopped; }));
    const std::size_t began = recorder.waitForLoud(0.05F, 0, longMs * 3);
    ASSERT_NE(began, none);
    const std::size_t end = recorder.waitForSilence(0.0005F, 200, began + 4410, longMs * 3);
    ASSERT_NE(end, none);
    // The server tells a recorder of a sink that mixed far ahead some of the silence that it takes
    // back from the sink itself: the first moments are not in the record.
    EXPECT_GT(static_cast<double>(end - began) / recorder.rate(), soundMs / 1000.0 - 0.7);
    EXPECT_EQ(gapsBetween(recorder, began, end), 0) << "of 20 ms each";
    for (std::size_t at = began; at + 4410 <= end; at += 4410) {
        const double heard = placeInChirp(recorder.channel(0, at, 4410), recorder.rate()) - 0.05;
        const double toEnd = static_cast<double>(end - at) / recorder.rate();
        ASSERT_NEAR(heard, soundMs / 1000.0 - toEnd, 0.03);
    }
}

TEST(HighRate, ADeviceOfThatRateNeedNotMixInItsShortestParts) {
    PulseServer::Options options;
    options.rate = 384000;
    const PulseServer server(options);
    ASSERT_TRUE(server.running());
    const TemporaryFolder folder;
    SoundOptions soundOptions;
    soundOptions.server = server.address();
    const auto opener = makeSoundOpener(soundOptions);
    const auto device =
        opener->open({folder.write("chirp.wav", chirpFile(384000, 3000)), "Waveaudio"});
    ASSERT_TRUE(device);
    EXPECT_TRUE(waitFor(60000, [&] { return server.mixesAheadMs() == 60; }));
}

// The ordinary run takes each rate once, and each state of the sink twice.
std::vector<Situation> situations() {
    constexpr int rates[] = {44100, 96000, 176400, 192000, 352800, 384000};
    constexpr Sink sinks[] = {Sink::Idle, Sink::Running, Sink::WithOthers};
    std::vector<Situation> all;
    for (std::size_t rate = 0; rate < std::size(rates); ++rate)
        for (std::size_t sink = 0; sink < std::size(sinks); ++sink)
            if (isWholeRun() || rate % std::size(sinks) == sink)
                all.push_back({rates[rate], sinks[sink]});
    return all;
}

std::string nameOf(const testing::TestParamInfo<Situation> &situation) {
    static const char *const sinks[] = {"Idle", "Running", "WithOthers"};
    return std::to_string(situation.param.rate) + sinks[static_cast<int>(situation.param.sink)];
}

INSTANTIATE_TEST_SUITE_P(Rates, EveryRate, testing::ValuesIn(situations()), nameOf);

} // namespace
} // namespace velmora::platform::sound
