// What the sound device costs and how soon it is heard, on a private server with a null sink:
//   sound_probe FILE [SECONDS]
// plays the file and prints a table in Markdown. The first part runs without anybody listening, the
// second one records the sink's monitor; there the rate of the file should be 44100 Hz.

#include "platform/backends/sound/device/sound.h"
#include "tests/engine/pulse_server.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

using namespace velmora;
using Clock = std::chrono::steady_clock;
using platform::media::Device;
using platform::media::DeviceOpener;
using tests::MonitorRecorder;
using tests::PulseServer;

double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void rest(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

double cpuMs() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_usec) / 1000;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// The number behind a name in a file of the process file system.
double number(const std::string &path, const std::string &name) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(name))
            return std::atof(line.c_str() + name.size());
    return 0;
}

double wakeUps() {
    double sum = 0;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task"))
        sum += number(task.path().string() + "/status", "voluntary_ctxt_switches:");
    return sum;
}

double pssKb() { return number("/proc/self/smaps_rollup", "Pss:"); }

void row(const char *what, double value, const char *unit) {
    std::printf("| %-44s | %9.3f %s |\n", what, value, unit);
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

void costs(const PulseServer &server, const std::string &file, int seconds) {
    platform::sound::SoundOptions options;
    options.server = server.address();
    const double before = pssKb();
    const auto opener = platform::sound::makeSoundOpener(options);
    row("opener made, PSS added", pssKb() - before, "kB");
    auto start = Clock::now();
    auto device = opener->open({file, "MPEGVideo"});
    if (!device) {
        std::fprintf(stderr, "%s does not open\n", file.c_str());
        std::exit(1);
    }
    row("first open", msSince(start), "ms");
    device->play();
    while (device->positionMs() == 0)
        rest(1);
    row("first open to position moving", msSince(start), "ms");
    rest(3000);
    row("playing, PSS added", pssKb() - before, "kB");
    const double cpu = cpuMs();
    const double woken = wakeUps();
    start = Clock::now();
    rest(seconds * 1000);
    const double passed = msSince(start);
    row("playing, CPU of a core", (cpuMs() - cpu) / passed * 100, "%");
    row("playing, wake-ups a second", (wakeUps() - woken - 1) / passed * 1000, "");
    std::vector<double> sets;
    for (int level = 0; level <= 1000; level += 6) {
        const auto at = Clock::now();
        device->setVolume(level);
        sets.push_back(msSince(at) * 1000);
        rest(1);
    }
    row("a change of volume, median", median(sets), "us");
    row("a change of volume, worst of 167", *std::max_element(sets.begin(), sets.end()), "us");
    device->pause();
    rest(500);
    const double pausedCpu = cpuMs();
    const double pausedWoken = wakeUps();
    start = Clock::now();
    rest(3000);
    row("paused, CPU of a core", (cpuMs() - pausedCpu) / msSince(start) * 100, "%");
    row("paused, wake-ups a second", (wakeUps() - pausedWoken - 1) / msSince(start) * 1000, "");
    std::vector<double> opens;
    for (int i = 0; i < 20; ++i) {
        device.reset();
        start = Clock::now();
        device = opener->open({file, "MPEGVideo"});
        opens.push_back(msSince(start));
        rest(5);
    }
    row("open, median of 20", median(opens), "ms");
    device.reset();
    rest(300);
    row("closed again, PSS added", pssKb() - before, "kB");
}

// Runs the action and waits for what it should change; how long until that arrived, in ms.
double heardAfter(const MonitorRecorder &recorder, const std::function<void()> &action,
                  const std::function<std::size_t(std::size_t)> &find) {
    const std::size_t from = recorder.frames();
    const auto start = Clock::now();
    action();
    const std::size_t frame = find(from);
    if (frame == MonitorRecorder::frameNone)
        return -1;
    return std::chrono::duration<double, std::milli>(recorder.arrivalOf(frame) - start).count();
}

void latencies(const PulseServer &server, const std::string &file) {
    const MonitorRecorder recorder(server);
    rest(2500); // until the sink, idle so far, is in step with its listener
    platform::sound::SoundOptions options;
    options.server = server.address();
    const auto opener = platform::sound::makeSoundOpener(options);
    const auto loud = [&](std::size_t from) { return recorder.waitForLoud(0.02F, from, 3000); };
    const auto quiet = [&](std::size_t from) {
        return recorder.waitForSilence(0.0002F, 60, from, 3000);
    };
    std::unique_ptr<Device> device;
    std::vector<double> opened, muted, raised, paused, resumed, sought;
    for (int i = 0; i < 7; ++i) {
        device.reset();
        rest(300);
        opened.push_back(heardAfter(
            recorder,
            [&] {
                device = opener->open({file, "MPEGVideo"});
                device->play();
            },
            loud));
        rest(1500 + i * 7);
        muted.push_back(heardAfter(
            recorder, [&] { device->setVolume(0); }, quiet));
        rest(100 + i * 7);
        raised.push_back(heardAfter(
            recorder, [&] { device->setVolume(1000); }, loud));
        rest(300 + i * 7);
        paused.push_back(heardAfter(
            recorder, [&] { device->pause(); }, quiet));
        rest(200 + i * 7);
        resumed.push_back(heardAfter(
            recorder, [&] { device->play(); }, loud));
        rest(300 + i * 7);
        // Out of silence, so that the new place is what is heard first.
        device->setVolume(0);
        rest(100);
        sought.push_back(heardAfter(
            recorder,
            [&] {
                device->seek(device->lengthMs() / 2);
                device->play();
                device->setVolume(1000);
            },
            loud));
        rest(100);
    }
    row("open and play to heard, first", opened.front(), "ms");
    row("open and play to heard, median", median(opened), "ms");
    row("volume to 0 to silent, median", median(muted), "ms");
    row("volume to 1000 to heard, median", median(raised), "ms");
    row("pause to silent, median", median(paused), "ms");
    row("play after pause to heard, median", median(resumed), "ms");
    row("seek and play to heard, median", median(sought), "ms");
}

} // namespace

int main(int count, char **arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: %s FILE [SECONDS]\n", arguments[0]);
        return 2;
    }
    const int seconds = count > 2 ? std::atoi(arguments[2]) : 15;
    const PulseServer server;
    if (!server.running()) {
        std::fprintf(stderr, "no sound server could be started\n");
        return 1;
    }
    std::printf("| %-44s | %-12s |\n|---|---|\n", "sound device", "");
    costs(server, arguments[1], seconds);
    latencies(server, arguments[1]);
    return 0;
}
