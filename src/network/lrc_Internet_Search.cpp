#include "network/lrc_Internet_Search.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "network/linkReader.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/webPage.h"
#include "platform/contracts/internet.h"
#include "platform/contracts/platform.h"
#include "platform/contracts/system.h"
#include "platform/contracts/windows.h"
#include "settings/setControl.h"
#include "velmora.h"

#include <optional>
#include <utility>

namespace velmora {

namespace {

constexpr std::int64_t longestSearchMs = 180'000;

bool beginsWith(std::u16string_view link, std::u16string_view address) {
    return !address.empty() && link.size() >= address.size() &&
           equalsIgnoringCase(link.substr(0, address.size()), address);
}

bool endsWith(std::u16string_view link, std::u16string_view ending) {
    return link.size() >= ending.size() &&
           equalsIgnoringCase(rightPart(link, static_cast<std::ptrdiff_t>(ending.size())), ending);
}

// Whether the link ends in "pn=" and exactly this many digits at its end.
bool endsInPageNumber(std::u16string_view link, std::size_t digits) {
    if (link.size() < digits || !endsWith(link.substr(0, link.size() - digits), u"pn="))
        return false;
    for (const char16_t unit : link.substr(link.size() - digits))
        if (unit < u'0' || unit > u'9')
            return false;
    return true;
}

// An address of the settings, and what lies below it; nothing where the host is not set.
std::u16string below(std::u16string host, std::u16string_view path) {
    return host.empty() ? std::u16string() : host.append(path);
}

// Calls `take` with each link of the page and what it is relative to, and handles input behind
// each. False when there is no page.
template <typename Take>
bool takeEachLink(const platform::Platform &platform, std::u16string address, const Take &take) {
    const std::u16string base = linkBase(platform.windows, address);
    const std::u16string page = upper(getWebPage(platform, address));
    if (page.empty())
        return false;
    std::vector<std::int32_t> positions;
    countText(platform.windows, page, linkMarker, &positions);
    LinkReader reader(page);
    for (const std::int32_t position : positions) {
        const std::optional<std::u16string_view> found = reader.read(position);
        if (!found)
            continue;
        take(*found, base);
        platform.windows.DoEvents();
    }
    return true;
}

} // namespace

struct lrc_Internet_Search::Addresses {
    std::u16string siteA;
    std::u16string siteB;
    std::u16string engine;

    bool isLyricOfA(std::u16string_view link) const { return beginsWith(link, siteA); }
    bool isLyricOfB(std::u16string_view link) const {
        return beginsWith(link, siteB) && endsWith(link, u".lrc");
    }
    bool isPage(std::u16string_view link) const {
        return beginsWith(link, engine) && (endsInPageNumber(link, 2) || endsInPageNumber(link, 1));
    }
};

lrc_Internet_Search::lrc_Internet_Search(Velmora &app) : app_(app) {}

std::u16string lrc_Internet_Search::searchAddress(std::u16string_view word) const {
    return app_.setControl()
        .get_LrcSearchHost()
        .append(u"/m?f=ms&rn=10&tn=baidump3lyric&ct=150994944&word=")
        .append(word)
        .append(u" &lm=-1");
}

bool lrc_Internet_Search::searchLrc(std::u16string_view word) {
    const std::u16string address = searchAddress(word);
    Scan scan = newScan();
    passOver([&] { app_.platform().internet.DeleteUrlCacheEntryA(address); });
    std::u16string page;
    passOver([&] { page = getWebPage(app_.platform(), address); });
    if (!page.empty()) {
        passOver([&] { scanPages(address, scan); });
        keepState(std::move(scan));
    }
    lrcSearchUrl = address;
    lrcSearchPage = std::move(page);
    return !lrcSearchPage.empty();
}

lrc_Internet_Search::Scan lrc_Internet_Search::newScan() const {
    Scan scan;
    scan.untilMs = app_.platform().clock.steadyMs() + longestSearchMs;
    return scan;
}

void lrc_Internet_Search::keepState(Scan &&scan) {
    lrcPageLinks = std::move(scan.pageLinks);
    lrcDownloadLinks = std::move(scan.downloadLinks);
    lrcFirstPageDone = scan.isFirstPageDone;
    lrcPageIndex = scan.pageIndex;
}

void lrc_Internet_Search::scanLrcPages(std::u16string address) {
    Scan scan = newScan();
    scan.pageLinks = lrcPageLinks;
    scan.downloadLinks = lrcDownloadLinks;
    scan.isFirstPageDone = lrcFirstPageDone;
    scan.pageIndex = lrcPageIndex;
    std::optional<RunTimeError> failure;
    try {
        scanPages(std::move(address), scan);
    } catch (const RunTimeError &error) {
        failure = error;
    }
    keepState(std::move(scan));
    if (failure)
        throw *failure;
}

void lrc_Internet_Search::scanPages(std::u16string address, Scan &scan) {
    app_.platform().windows.DoEvents();
    setControl &settings = app_.setControl();
    const Addresses addresses{below(settings.get_LrcSiteAHost(), u"/asp/lrc.asp"),
                              below(settings.get_LrcSiteBHost(), u"/LrcDown/"),
                              below(settings.get_LrcSearchHost(), u"/m")};
    if (!scan.isFirstPageDone && !scanFirstPage(std::move(address), addresses, scan))
        return;
    scanFurtherPages(addresses, scan);
}

// False when there is no page.
bool lrc_Internet_Search::scanFirstPage(std::u16string address, const Addresses &addresses,
                                        Scan &scan) {
    const auto take = [&](std::u16string_view found, const std::u16string &base) {
        // Ahead of the tests and on this page only: what a further page adds beyond these bounds
        // ends the scan.
        scan.pageLinks.resize(scan.pages);
        scan.downloadLinks.resize(scan.lyrics);
        const std::u16string link = normalLink(found, base);
        takeLyrics(link, addresses, scan);
        if (addresses.isPage(link))
            scan.pageLinks.store(scan.pages++, lower(link));
    };
    if (!takeEachLink(app_.platform(), std::move(address), take))
        return false;
    scan.isFirstPageDone = true;
    return true;
}

// The last two page links are left out.
void lrc_Internet_Search::scanFurtherPages(const Addresses &addresses, Scan &scan) {
    const std::int16_t last = toInt16(scan.pageLinks.upperBound() - 2);
    for (std::int16_t index = 0; index <= last; index = addInt16(index, 1)) {
        scan.pageIndex = index;
        // A page may name any number of further ones, and each may take its time.
        if (app_.platform().clock.steadyMs() >= scan.untilMs)
            raise(ErrorNumber::General);
        const auto take = [&](std::u16string_view found, const std::u16string &base) {
            takeLyrics(normalLink(found, base), addresses, scan);
        };
        if (!takeEachLink(app_.platform(), lower(scan.pageLinks.at(index)), take))
            return;
    }
}

// Where the one site lies below the other a link may be of both, and is taken twice.
void lrc_Internet_Search::takeLyrics(const std::u16string &link, const Addresses &addresses,
                                     Scan &scan) {
    if (addresses.isLyricOfA(link))
        takeLyric(link, scan);
    if (addresses.isLyricOfB(link))
        takeLyric(link, scan);
}

// The row comes first: the link that does not fit into the array any more is in the list.
void lrc_Internet_Search::takeLyric(const std::u16string &link, Scan &scan) {
    app_.search_Lrc_Internet_Form().search_Lrc_List.addItem(lower(link));
    scan.downloadLinks.store(scan.lyrics++, link);
}

} // namespace velmora
