// A result page of the song search from outside, and what its records make the window do: hover,
// fetch, save. Nothing is written outside the cache folder; a record with too few fields ends the
// program in order.

#include "base/run_time_error.h"
#include "base/text.h"
#include "network/search_Song_Internet_Form.h"
#include "network/song_Internet_Search.h"
#include "settings/setControl.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "tests/fuzz/network/one_page.h"
#include "velmora.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace velmora;
using namespace velmora::fuzz;

void useRow(Velmora &app, std::int32_t row) {
    search_Song_Internet_Form &form = app.search_Song_Internet_Form();
    form.search_Song_List.setTopIndex(row);
    form.search_Song_List.on().MouseMove({0, 0, 0, form.search_Song_List.rowHeight() * 0.5F});
    form.search_Song_List.setListIndex(row);
    form.save_Click();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fakes::FakePlatform fake;
    OnePage internet(fake.ansi, fake.files);
    internet.page.assign(reinterpret_cast<const char *>(data), size);
    Velmora app(fakes::with(fake.bundle(), {.internet = &internet}));
    fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\hosts", u"songSearch", u"http://s");
    fake.files.addFolder(u"/d/cache");
    app.setControl().Path_Cache = u"/d/cache";

    const bool found = app.song_Internet_Search().searchSong(u"w");
    require(found == !app.song_Internet_Search().songSearchPage.empty());
    search_Song_Internet_Form &form = app.search_Song_Internet_Form();
    const std::int32_t rows = form.search_Song_List.listCount();
    require(form.List1.listCount() == rows && form.List2.listCount() == rows);
    for (std::int32_t row = 0; row < std::min(rows, 20); ++row) {
        require(startsWith(form.List1.list(row), u"HTTP://") ||
                startsWith(form.List1.list(row), u"HTTPS://"));
        require(form.List2.list(row).size() < 2000);
        // A question about a file that exists would fail here, so each row gets a clean folder.
        for (const std::u16string &path : fake.files.files())
            fake.files.remove(path);
        internet.respond(fakes::FakeInternet::answer("sound"));
        try {
            useRow(app, row);
        } catch (const fakes::ProcessEnded &ended) {
            require(ended.status == 1);
        }
        for (const std::u16string &path : fake.files.files())
            require(startsWith(path, u"/d/cache/") && !contains(path.substr(9), u"/"));
        internet.forgetResponses();
    }
    // A scan that is done is not done again; one whose page does not come is over at once.
    song_Internet_Search &search = app.song_Internet_Search();
    search.songScanDone = true;
    passOver([&] { search.scanSongPage(u"http://s"); });
    search.songScanDone = false;
    internet.page.clear();
    passOver([&] { search.scanSongPage(u"http://s"); });
    require(form.search_Song_List.listCount() == rows);
    return 0;
}
