// Lyrics: loading, the tick's search, the desktop line's steps.

#include "bench/bench_program.h"

#include "base/run_time_error.h"
#include "lyrics/lrcForm.h"
#include "platform/contracts/files.h"
#include "playback/player.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

namespace velmora::bench {
namespace {

// Lines as lyrics have them, one label each, a second apart.
std::string lyricOf(int lines) {
    std::string bytes = "[ti:Bench]\r\n[ar:Nobody]\r\n";
    for (int i = 0; i < lines; ++i) {
        char label[40];
        std::snprintf(label, sizeof label, "[%02d:%02d.%02d]", i / 60 % 100, i % 60, i * 7 % 100);
        bytes += label;
        bytes += "the words of line number " + std::to_string(i) + " \xe7\x81\xaf\xe7\x81\xab\r\n";
    }
    return bytes;
}

// A lyric on the real disk, loaded; gone with the object.
class Lyric {
public:
    Lyric(Program &program, int lines) : files_(program.app.platform().files), path_(path(lines)) {
        files_.writeWhole(path_, lyricOf(lines), false);
        program.app.lrcForm().startLoad(path_);
    }
    ~Lyric() {
        passOver([this] { files_.CreateFileSystemObject()->DeleteFile(path_); });
    }
    const std::u16string &path() const { return path_; }

private:
    static std::u16string path(int lines) {
        return u"/tmp/velmora-bench-" + decimal(::getpid()) + u"-" + decimal(lines) + u".lrc";
    }
    platform::FileSystem &files_;
    std::u16string path_;
};

void LoadLyric(benchmark::State &state) {
    Program program;
    const Lyric lyric(program, static_cast<int>(state.range(0)));
    for (auto _ : state)
        program.app.lrcForm().startLoad(lyric.path());
    state.SetComplexityN(state.range(0));
}
BENCHMARK(LoadLyric)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(3000)
    ->Arg(30000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// The search of one tick at its worst: nothing is found.
void SearchLine(benchmark::State &state) {
    Program program;
    const Lyric lyric(program, static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(program.app.lrcForm().ListIndex(u"98:76"));
}
BENCHMARK(SearchLine)->Arg(100)->Arg(1000)->Arg(30000)->Unit(benchmark::kMicrosecond);

// A whole tick over a line that is as it was.
void LyricTick(benchmark::State &state) {
    Program program;
    const Lyric lyric(program, 1000);
    program.app.lrcForm().lrc_Text.setVisible(true);
    program.app.lrcForm().show();
    program.fake.media.addMedium(u"/m/a.mp3", 240'000);
    program.fake.media.mciSendStringA(u"open /m/a.mp3 type MPEGVideo alias NOWMUSIC", 0);
    for (auto _ : state) {
        program.app.lrcForm().Timer1.onTimer();
        if (program.fake.media.commands().size() > 100000)
            program.fake.media.clearCommands();
    }
}
BENCHMARK(LyricTick)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace velmora::bench
