// What a change of the language and a confirmed settings window cost, without a toolkit: texts into
// every form, and the settings into a registry on the disk.

#include "bench/bench_program.h"
#include "settings/playSetForm.h"
#include "settings/skinSet.h"
#include "ui/formSet.h"

#include <benchmark/benchmark.h>

namespace velmora::bench {
namespace {

void LanguageChange(benchmark::State &state) {
    Program program;
    program.app.skinSet().skin_All();
    std::int32_t language = 0;
    for (auto _ : state) {
        language = (language + 1) % 4;
        program.app.setControl().Language_Index = language;
        program.app.Language_Set().apply_Language();
    }
}
BENCHMARK(LanguageChange)->Unit(benchmark::kMicrosecond);

void OpenSettings(benchmark::State &state) {
    Program program(Program::Settings::OnDisk);
    program.app.skinSet().skin_All();
    program.app.setControl().save_PlaySet();
    for (auto _ : state) {
        program.app.formSet().open_PlaySet();
        program.app.playSetForm().hide();
    }
}
BENCHMARK(OpenSettings)->Unit(benchmark::kMicrosecond);

void ApplySettings(benchmark::State &state) {
    Program program(Program::Settings::OnDisk);
    program.app.skinSet().skin_All();
    playSetForm &form = program.app.playSetForm();
    form.show();
    std::int32_t language = 0;
    for (auto _ : state) {
        language = (language + 1) % 4;
        form.language_Load(language);
        form.apply_PlaySet();
    }
}
BENCHMARK(ApplySettings)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace velmora::bench
