// A result page of the lyric search from outside: the first page, and every further page it leads
// to. Whatever it holds, the search ends, and rows and links keep to their bounds.

#include "base/run_time_error.h"
#include "base/text.h"
#include "network/lrc_Internet_Search.h"
#include "network/search_Lrc_Internet_Form.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "tests/fuzz/network/one_page.h"
#include "velmora.h"

#include <cstdint>
#include <cstdlib>
#include <string>

using namespace velmora;
using namespace velmora::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fakes::FakePlatform fake;
    OnePage internet(fake.ansi, fake.files);
    internet.page.assign(reinterpret_cast<const char *>(data), size);
    Velmora app(fakes::with(fake.bundle(), {.internet = &internet}));
    constexpr char16_t hosts[] = u"SOFTWARE\\Norvane\\zkPlayer\\hosts";
    fake.registry.setText(hosts, u"lrcSearch", u"http://e");
    fake.registry.setText(hosts, u"lrcSiteA", u"http://a");
    fake.registry.setText(hosts, u"lrcSiteB", u"http://b");

    lrc_Internet_Search &search = app.lrc_Internet_Search();
    const bool found = search.searchLrc(u"w");
    require(found == !search.lrcSearchPage.empty());
    std::int32_t stored = 0;
    passOver([&] { stored = search.lrcDownloadLinks.upperBound() + 1; });
    const forms::ListBox &list = app.search_Lrc_Internet_Form().search_Lrc_List;
    // Further pages add what fits and one row more.
    require(list.listCount() <= stored + 1);
    for (std::int32_t row = 0; row < list.listCount(); ++row) {
        require(startsWith(list.list(row), u"http://a/asp/lrc.asp") ||
                startsWith(list.list(row), u"http://b/lrcdown/"));
        require(list.list(row).size() <= 300 + 8 || contains(list.list(row), u"http://e"));
        if (row < stored)
            require(lower(search.lrcDownloadLinks.at(row)) == list.list(row));
    }
    return 0;
}
