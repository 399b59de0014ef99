// Searches: what a result page costs, fetched twice as a search does, whatever it holds.

#include "bench/bench_program.h"

#include "network/lrc_Internet_Search.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/song_Internet_Search.h"

#include <benchmark/benchmark.h>

#include <string>

namespace velmora::bench {
namespace {

constexpr char16_t hosts[] = u"SOFTWARE\\Norvane\\zkPlayer\\hosts";

std::string repeated(const std::string &text, int times) {
    std::string page = "<html>";
    for (int i = 0; i < times; ++i)
        page += text;
    return page;
}

struct Searcher {
    Searcher(const char16_t *engine, const char16_t *host) {
        for (const char16_t *name : {u"lrcSiteA", u"lrcSiteB", engine})
            fake.registry.setText(hosts, name, host);
        app.search_Lrc_Internet_Form();
        app.search_Song_Internet_Form();
    }
    fakes::FakePlatform fake;
    Velmora app{fake.bundle()};
};

void searchLyrics(benchmark::State &state, const std::string &page) {
    Searcher searcher(u"lrcSearch", u"http://h");
    searcher.fake.internet.setPage(searcher.app.lrc_Internet_Search().searchAddress(u"w"), page);
    for (auto _ : state) {
        searcher.app.search_Lrc_Internet_Form().search_Lrc_List.clear();
        benchmark::DoNotOptimize(searcher.app.lrc_Internet_Search().searchLrc(u"w"));
    }
}

void lyricPageOfAThousandLinks(benchmark::State &state) {
    searchLyrics(state,
                 repeated("<a href=\"http://h/LrcDown/1234567890.lrc\">a song</a>\r\n", 1000));
}
BENCHMARK(lyricPageOfAThousandLinks)->Unit(benchmark::kMillisecond);

void lyricPageOfTenMegabytesOfHref(benchmark::State &state) {
    searchLyrics(state, repeated("HREF", 2'500'000));
}
BENCHMARK(lyricPageOfTenMegabytesOfHref)->Unit(benchmark::kMillisecond);

// Every other marker has a link behind it that is accepted and matches nothing.
void lyricPageOfTenMegabytesOfOtherLinks(benchmark::State &state) {
    searchLyrics(state, repeated("href=x>", 1'428'571));
}
BENCHMARK(lyricPageOfTenMegabytesOfOtherLinks)->Unit(benchmark::kMillisecond);

void searchSongs(benchmark::State &state, const std::string &page) {
    Searcher searcher(u"songSearch", u"http://h");
    searcher.fake.internet.setPage(searcher.app.song_Internet_Search().searchAddress(u"w"), page);
    search_Song_Internet_Form &form = searcher.app.search_Song_Internet_Form();
    for (auto _ : state) {
        for (forms::ListBox *list : {&form.search_Song_List, &form.List1, &form.List2})
            list->clear();
        benchmark::DoNotOptimize(searcher.app.song_Internet_Search().searchSong(u"w"));
    }
}

void songPageOfAThousandLinks(benchmark::State &state) {
    searchSongs(state, repeated("<td class=\"data\">0@@Name@@Album@@Singer@@1234567@@mp3@@98@@FI"
                                "http://h/song/1234567890.mp3;128K;</td>\r\n",
                                1000));
}
BENCHMARK(songPageOfAThousandLinks)->Unit(benchmark::kMillisecond);

// As many cells as fit into one frame, each of which sees all the pieces behind them.
void songPageOfTenMegabytesOfMarkers(benchmark::State &state) {
    std::string frame;
    for (int i = 0; i < 58; ++i)
        frame += "<td class=\"data\">";
    searchSongs(state, repeated(frame + "@@FI" + std::string(1000, ';') + "</td>", 5'000));
}
BENCHMARK(songPageOfTenMegabytesOfMarkers)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace velmora::bench
