// The play list: reading, saving, selecting, searching, removing.

#include "bench/bench_program.h"
#include "playlist/listControl_Form.h"
#include "ui/formSet.h"

#include <benchmark/benchmark.h>

namespace velmora::bench {
namespace {

void SaveList(benchmark::State &state) {
    Program program;
    program.fill(static_cast<int>(state.range(0)));
    for (auto _ : state)
        program.app.saveOrOpenFile().savePlayList(SaveKind::Step);
}
BENCHMARK(SaveList)->Arg(1000)->Arg(10000)->Arg(32767)->Unit(benchmark::kMillisecond);

void SaveListSynced(benchmark::State &state) {
    Program program;
    program.fill(static_cast<int>(state.range(0)));
    for (auto _ : state)
        program.app.saveOrOpenFile().savePlayList();
}
BENCHMARK(SaveListSynced)->Arg(32767)->Unit(benchmark::kMillisecond);

void LoadList(benchmark::State &state) {
    Program program;
    program.fill(static_cast<int>(state.range(0)));
    program.app.saveOrOpenFile().savePlayList();
    for (auto _ : state)
        program.app.saveOrOpenFile().loadPlayList();
}
BENCHMARK(LoadList)->Arg(1000)->Arg(10000)->Arg(32767)->Unit(benchmark::kMillisecond);

void SelectAll(benchmark::State &state) {
    Program program;
    program.fill(32767);
    for (auto _ : state)
        program.app.formSet().form_KeyDown(65, 2, u"playlist_Form");
}
BENCHMARK(SelectAll)->Unit(benchmark::kMillisecond);

void SearchList(benchmark::State &state) {
    Program program;
    program.fill(32767);
    program.app.listControl_Form().listControl_Result = u"length 99";
    for (auto _ : state)
        program.app.playList_Form().search_Jieguo();
}
BENCHMARK(SearchList)->Unit(benchmark::kMillisecond);

void RemoveThousandOfTenThousand(benchmark::State &state) {
    Program program;
    for (auto _ : state) {
        state.PauseTiming();
        program.fill(10000);
        forms::ListBox &names = program.app.playList_Form().playList_Item;
        names.contains(u"the index is there"); // as behind a load
        for (int row = 0; row < 10000; row += 10)
            names.setSelected(row, true);
        program.fake.windows.expectMsgBox({u"是否决定该操作？", platform::MsgBoxButtons::YesNo,
                                           platform::MsgBoxIcon::None,
                                           program.app.Main().title.caption()},
                                          platform::MsgBoxResult::Yes);
        state.ResumeTiming();
        program.app.playList_Form().delOne(0, false);
    }
}
BENCHMARK(RemoveThousandOfTenThousand)->Unit(benchmark::kMillisecond)->Iterations(2);

} // namespace
} // namespace velmora::bench
