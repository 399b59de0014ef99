// The ticks of the main window, without a toolkit: what the program's own logic costs.

#include "bench/bench_program.h"

#include <benchmark/benchmark.h>

namespace velmora::bench {
namespace {

void IdleTick(benchmark::State &state) {
    Program program;
    program.app.Main().show();
    for (auto _ : state)
        program.app.Main().Timer1.onTimer();
}
BENCHMARK(IdleTick)->Unit(benchmark::kMicrosecond);

void PlayingTick(benchmark::State &state) {
    Program program;
    program.app.Main().show();
    program.fake.media.addMedium(u"/m/a.mp3", 240'000);
    program.fake.media.mciSendStringA(u"open /m/a.mp3 type MPEGVideo alias NOWMUSIC", 0);
    program.fake.media.mciSendStringA(u"play NOWMUSIC", 0);
    for (auto _ : state) {
        program.fake.media.advance(1);
        program.app.Main().Timer1.onTimer();
        if (program.fake.media.commands().size() > 100000) {
            program.fake.media.clearCommands();
            program.fake.media.mciSendStringA(u"seek NOWMUSIC to 0", 0);
            program.fake.media.mciSendStringA(u"play NOWMUSIC", 0);
        }
    }
}
BENCHMARK(PlayingTick)->Unit(benchmark::kMicrosecond);

void StartSequence(benchmark::State &state) {
    for (auto _ : state) {
        Program program;
        program.fake.waveOut.addDevice();
        program.app.start();
    }
}
BENCHMARK(StartSequence)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace velmora::bench
