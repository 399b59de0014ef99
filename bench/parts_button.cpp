// A tick of a fading button, without a toolkit: the blend of its pictures.

#include "bench/bench_program.h"
#include "ui/zkButton.h"

#include <benchmark/benchmark.h>

namespace velmora::bench {
namespace {

constexpr std::int64_t tickMs = 20;

// To hot and back again: 9 ticks up, 255 down, and the one that finds nothing to do.
void WholeFade(benchmark::State &state) {
    Program program;
    program.app.playList_Form().show();
    zkButton &button = program.app.playList_Form().addFile;
    Twips x = 15;
    std::int64_t ticks = 0;
    for (auto _ : state) {
        x = x == 15 ? 30 : 15; // a pointer that stands still is no move
        button.mouseMove({0, 0, x, 60});
        for (int i = 0; i < 9; ++i, ++ticks)
            program.fake.windows.advance(tickMs);
        button.mouseMove({0, 0, -x, -60});
        for (; button.ticking(); ++ticks)
            program.fake.windows.advance(tickMs);
    }
    state.counters["ticks"] =
        benchmark::Counter(static_cast<double>(ticks), benchmark::Counter::kAvgIterations);
}
BENCHMARK(WholeFade)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace velmora::bench
