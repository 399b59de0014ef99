// A result page of the lyric search from outside: the first page, and every further page it leads
// to, on lines that take their time. Whatever it holds, the search ends, in its time too, and rows
// and links keep to their bounds. The scan that is asked for by itself goes on where it was left.

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

namespace {

constexpr std::int64_t fetchMs = 15'000; // of each page; a whole search has three minutes

class SlowPage : public OnePage {
public:
    explicit SlowPage(fakes::FakePlatform &fake) : OnePage(fake.ansi, fake.files), fake_(fake) {}
    std::optional<std::string> XmlHttpGet(std::u16string_view address) override {
        fake_.windows.advance(fetchMs);
        return OnePage::XmlHttpGet(address);
    }

private:
    fakes::FakePlatform &fake_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fakes::FakePlatform fake;
    SlowPage internet(fake);
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
    const std::int32_t rows = list.listCount();
    internet.fetches = 0;
    const bool goesOn = search.lrcFirstPageDone;
    passOver([&] { search.scanLrcPages(u"http://e/m?pn=1"); });
    require(list.listCount() >= rows && (search.lrcFirstPageDone || !goesOn));
    return 0;
}
