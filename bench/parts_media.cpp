// Opening media: the interpreter, the limit of time, and the reader that finds out the length.

#include "platform/backends/media/mci_interpreter.h"
#include "platform/backends/sound/device/sound.h"
#include "platform/backends/sound/readers/reader.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace velmora::bench {
namespace {

using namespace platform;

// Silent frames of 128 kbit/s; gone with the object.
class Mp3 {
public:
    Mp3(std::size_t size, bool withHeader)
        : path_("/tmp/velmora-bench-" + std::to_string(::getpid()) + ".mp3") {
        std::string frame(417, '\0');
        frame.replace(0, 4, "\xFF\xFB\x90\x40");
        std::string bytes;
        while (bytes.size() < size)
            bytes += frame;
        if (withHeader)
            bytes.replace(
                36, 16, "Info" + number(3) + number(bytes.size() / 417 - 1) + number(bytes.size()));
        std::ofstream(path_, std::ios::binary) << bytes;
    }
    ~Mp3() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    const std::string &path() const { return path_; }

private:
    static std::string number(std::size_t value) {
        std::string text;
        for (int shift = 24; shift >= 0; shift -= 8)
            text.push_back(static_cast<char>(value >> shift));
        return text;
    }
    std::string path_;
};

// No server is there to be played to: the time is that of opening alone.
media::MciInterpreter interpreter() {
    sound::SoundOptions options;
    options.server = "unix:/there/is/none";
    return {sound::makeSoundOpener(options), nullptr};
}

void openAndClose(benchmark::State &state, const Mp3 &mp3) {
    auto mci = interpreter();
    const std::u16string open = u"open " + std::u16string(mp3.path().begin(), mp3.path().end()) +
                                u" type MPEGVideo alias A";
    for (auto _ : state) {
        if (mci.mciSendStringA(open, 0).error != 0)
            state.SkipWithError("does not open");
        mci.mciSendStringA(u"close A", 0);
    }
}

void OpenMp3WithHeader(benchmark::State &state) { openAndClose(state, Mp3(5'000'000, true)); }
BENCHMARK(OpenMp3WithHeader)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

// A thousand files of a folder, each counted through.
void OpenThousandMp3WithoutHeader(benchmark::State &state) {
    openAndClose(state, Mp3(5'000'000, false));
}
BENCHMARK(OpenThousandMp3WithoutHeader)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Iterations(1000);

// The same by the reader alone: the difference is what the limit of time and the device cost.
void ReadMp3WithHeader(benchmark::State &state) {
    const Mp3 mp3(5'000'000, true);
    sound::DecoderLibraries libraries{sound::LibraryNames{}};
    for (auto _ : state)
        benchmark::DoNotOptimize(sound::openReader(mp3.path(), libraries, {}, false));
}
BENCHMARK(ReadMp3WithHeader)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

} // namespace
} // namespace velmora::bench
