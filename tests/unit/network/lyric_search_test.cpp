// Searching lyrics: the pages that are asked for, what is taken from them, and where it ends.

#include "tests/unit/network/network_fixture.h"

#include "base/numbers.h"
#include "base/run_time_error.h"

#include <chrono>

namespace velmora {
namespace {

class LyricSearch : public NetworkFixture {
protected:
    const std::u16string first = lyricAddress(u"w");
    static std::string a(int number) {
        return link("http://sitea/asp/lrc.asp?i=" + std::to_string(number));
    }
    static std::string b(int number) {
        return link("http://siteb/LrcDown/" + std::to_string(number) + ".lrc");
    }
    static std::string pageLink(int number) { return link("/m?f=ms&pn=" + std::to_string(number)); }
    static std::u16string pageAddress(int number) {
        return u"http://engine/m?f=ms&pn=" + decimal(number);
    }
    static std::u16string rowA(int number) {
        return u"http://sitea/asp/lrc.asp?i=" + decimal(number);
    }
    static std::u16string storedA(int number) {
        return u"HTTP://SITEA/ASP/LRC.ASP?I=" + decimal(number);
    }
    Texts rows() { return rowsOf(lrcWindow().search_Lrc_List); }
    bool searchPage(const std::string &page) {
        net.setPage(first, page);
        return search.searchLrc(u"w");
    }
};

// --- the search ---------------------------------------------------------------------------------

TEST_F(LyricSearch, asksForTheWordAsItIsAndFetchesTheFirstPageTwice) {
    const std::u16string address = lyricAddress(u"歌 & a/b");
    net.setPage(address, "nothing");
    EXPECT_TRUE(search.searchLrc(u"歌 & a/b"));
    EXPECT_EQ(net.log,
              (Texts{u"DeleteUrlCacheEntryA " + address, u"XmlHttpGet " + address,
                     u"decodeCharset GB2312", u"XmlHttpGet " + address, u"decodeCharset GB2312"}));
    EXPECT_EQ(search.lrcSearchUrl, address);
    EXPECT_EQ(search.lrcSearchPage, u"nothing");
    EXPECT_TRUE(search.lrcFirstPageDone);
}

TEST_F(LyricSearch, passesOverACacheThatRefuses) {
    net.failNext("DeleteUrlCacheEntryA");
    EXPECT_TRUE(searchPage(a(1)));
}

TEST_F(LyricSearch, takesLinksToTheTwoSites) {
    EXPECT_TRUE(searchPage(a(7) + b(8) + link("http://other/x")));
    EXPECT_EQ(rows(), (Texts{rowA(7), u"http://siteb/lrcdown/8.lrc"}));
    EXPECT_EQ(textsOf(search.lrcDownloadLinks),
              (Texts{storedA(7), u"HTTP://SITEB/LRCDOWN/8.LRC", u""}));
    EXPECT_EQ(textsOf(search.lrcPageLinks), Texts{u""});
}

TEST_F(LyricSearch, takesALinkByItsBeginningAndTheSecondSitesByItsEndToo) {
    for (const char *address :
         {"http://sitea/asp/lrc.as", "http://siteax/asp/lrc.asp", "https://sitea/asp/lrc.asp",
          "http://siteb/LrcDown/x.lrcx", "http://siteb/LrcDown/x", "http://siteb/LrcDow/x.lrc",
          "http://siteb:80/LrcDown/x.lrc", "xhttp://sitea/asp/lrc.asp"}) {
        searchPage(link(address));
        EXPECT_EQ(rows(), Texts()) << address;
    }
}

TEST_F(LyricSearch, comparesAndTakesInAnyCase) {
    setHost(u"lrcSiteA", u"HTTP://SiteA");
    searchPage(link("hTTp://sItEa/aSp/LRC.asp?Q") + link("http://siteb/lrcdown/Q.LrC"));
    EXPECT_EQ(rows(), (Texts{u"http://sitea/asp/lrc.asp?q", u"http://siteb/lrcdown/q.lrc"}));
}

TEST_F(LyricSearch, takesALinkThatIsRelativeToTheEngine) {
    setHost(u"lrcSiteA", u"http://engine");
    setHost(u"lrcSiteB", u"http://engine");
    searchPage(link("/asp/lrc.asp?Q=1") + link("LrcDown/Q.LRC"));
    EXPECT_EQ(textsOf(search.lrcDownloadLinks),
              (Texts{u"http://engine/ASP/LRC.ASP?Q=1", u"http://engine/lrcdown/q.lrc"}));
}

TEST_F(LyricSearch, keepsPageLinksInLowerCaseByTheDigitsAtTheirEnd) {
    searchPage(link("/m?a&pn=5") + link("/m?a&PN=15") + link("HTTP://engine/mp?pn=0") +
               link("/m?a&pn=115") + link("/m?a&pn=") + link("/m?a&pn=5x") + link("/x?pn=5") +
               link("/m?a&pn=x5") + link("http://other/m?pn=5") + link("/m?a&n=5"));
    EXPECT_EQ(textsOf(search.lrcPageLinks),
              (Texts{u"http://engine/m?a&pn=5", u"http://engine/m?a&pn=15",
                     u"http://engine/mp?pn=0", u""}));
    EXPECT_EQ(rows(), Texts());
}

TEST_F(LyricSearch, pumpsOnceForEachAcceptedLink) {
    searchPage("nothing");
    const int without = windows.pumps;
    const std::u16string other = lyricAddress(u"x");
    net.setPage(other,
                a(1) + link("http://other/") + link("has a blank") + a(2) + link("javascript:x"));
    search.searchLrc(u"x");
    // Four links, and the count over the one address of further pages does not come.
    EXPECT_EQ(windows.pumps - without, without + 4);
}

TEST_F(LyricSearch, pumpsAheadOfItsFetchesItsScanAndItsCounts) {
    // Twice for a page, once for the scan, once for the signs of the address and once for those of
    // the page.
    Texts order;
    windows.onPump = [&] { order.push_back(u"pump " + decimal(countLog(u"XmlHttpGet"))); };
    searchPage("nothing");
    EXPECT_EQ(order, (Texts{u"pump 0", u"pump 1", u"pump 1", u"pump 1", u"pump 2"}));
}

TEST_F(LyricSearch, pumpsOnceForEachAcceptedLinkOfAFurtherPage) {
    net.setPage(pageAddress(1),
                link("http://a/") + link("has a blank") + link("http://b/") + link("http://c/"));
    int pumps = 0;
    windows.onPump = [&] { pumps += countLog(u"XmlHttpGet") == 3; };
    searchPage(pageLink(1) + pageLink(2) + link("http://other/"));
    EXPECT_EQ(pumps, 1 + 3); // the count over the page, and the links
}

TEST_F(LyricSearch, scansThePageOfItsAddressWithOtherSeparators) {
    net.setPage(lyricAddress(u"a\\b"), "first");
    net.setPage(lyricAddress(u"a/b"), a(1));
    EXPECT_TRUE(search.searchLrc(u"a\\b"));
    EXPECT_EQ(rows(), Texts{rowA(1)});
    EXPECT_EQ(search.lrcSearchPage, u"first");
}

TEST_F(LyricSearch, addsALinkOnceForEachSiteItIsOf) {
    setHost(u"lrcSiteB", u"http://sitea/asp/lrc.asp");
    const std::string both = link("http://sitea/asp/lrc.asp/LrcDown/1.lrc");
    const std::u16string row = u"http://sitea/asp/lrc.asp/lrcdown/1.lrc";
    // The bounds are those ahead of the tests: the second has no place and ends the scan.
    EXPECT_TRUE(searchPage(both + a(2)));
    EXPECT_EQ(rows(), (Texts{row, row}));
    EXPECT_EQ(textsOf(search.lrcDownloadLinks), Texts{upper(row)});
    EXPECT_FALSE(search.lrcFirstPageDone);
}

TEST_F(LyricSearch, onlyAddsToTheWindowsList) {
    lrcWindow().search_Lrc_List.addItem(u"there");
    searchPage(a(1));
    EXPECT_EQ(rows(), (Texts{u"there", rowA(1)}));
}

// --- failures -----------------------------------------------------------------------------------

TEST_F(LyricSearch, failsWithoutAFirstPageAndKeepsTheLastResults) {
    searchPage(a(1) + a(2));
    const std::u16string other = lyricAddress(u"x");
    for (const bool raises : {true, false}) {
        if (raises)
            net.addRaise(other);
        else
            net.addIncomplete(other);
        EXPECT_FALSE(search.searchLrc(u"x"));
        EXPECT_EQ(search.lrcSearchPage, u"");
        EXPECT_EQ(textsOf(search.lrcDownloadLinks), (Texts{storedA(1), storedA(2)}));
        EXPECT_TRUE(search.lrcFirstPageDone);
        EXPECT_EQ(rows().size(), 2U);
    }
    net.setPage(other, "");
    EXPECT_FALSE(search.searchLrc(u"x"));
}

TEST_F(LyricSearch, succeedsWithNothingWhenTheSecondFetchFails) {
    searchPage(a(1));
    const std::u16string other = lyricAddress(u"x");
    net.setPage(other, a(2));
    net.addRaise(other);
    EXPECT_TRUE(search.searchLrc(u"x"));
    EXPECT_THROW((void)search.lrcDownloadLinks.upperBound(), RunTimeError);
    EXPECT_FALSE(search.lrcFirstPageDone);
    EXPECT_EQ(rows(), Texts{rowA(1)});
}

TEST_F(LyricSearch, ofAPageWithoutLinksLeavesTheArraysUnallocated) {
    EXPECT_TRUE(searchPage("<a href=\"has a blank\">HREF=\"x+y\""));
    EXPECT_THROW((void)search.lrcPageLinks.upperBound(), RunTimeError);
    EXPECT_THROW((void)search.lrcDownloadLinks.upperBound(), RunTimeError);
    EXPECT_EQ(rows(), Texts());
}

// --- hosts --------------------------------------------------------------------------------------

TEST_F(LyricSearch, failsAtOnceWithoutAnEngine) {
    fake.registry.removeValue(hostsKey, u"lrcSearch");
    EXPECT_FALSE(search.searchLrc(u"w"));
    EXPECT_EQ(countLog(u"XmlHttpGet http"), 0);
}

TEST_F(LyricSearch, matchesNoLinkToASiteThatIsNotSet) {
    fake.registry.removeValue(hostsKey, u"lrcSiteA");
    fake.registry.removeValue(hostsKey, u"lrcSiteB");
    searchPage(a(1) + b(1) + link("/asp/lrc.asp?x") + link("/LrcDown/x.lrc"));
    EXPECT_EQ(rows(), Texts());
}

TEST_F(LyricSearch, readsTheHostsAnew) {
    searchPage(a(1) + link("http://moved/asp/lrc.asp?1"));
    setHost(u"lrcSiteA", u"http://moved");
    search.searchLrc(u"w");
    EXPECT_EQ(rows(), (Texts{rowA(1), u"http://moved/asp/lrc.asp?1"}));
}

// --- bounds -------------------------------------------------------------------------------------

// The arrays grow ahead of the tests of each accepted link: a lyric link at the end of the page
// fills the last element, any other leaves an empty one.
TEST_F(LyricSearch, givesTheArrayTheBoundOfTheLastAcceptedLink) {
    const auto bound = [this](const std::string &page) {
        const std::u16string address = lyricAddress(u"b");
        net.setPage(address, page);
        net.setPage(address, page);
        search.searchLrc(u"b");
        return search.lrcDownloadLinks.upperBound();
    };
    const std::string other = link("http://other/");
    EXPECT_EQ(bound(a(1)), 0);
    EXPECT_EQ(bound(a(1) + a(2)), 1);
    EXPECT_EQ(bound(a(1) + other), 1);
    EXPECT_EQ(bound(other + a(1)), 0);
    EXPECT_EQ(bound(other), 0);
    EXPECT_EQ(bound(a(1) + a(2) + other + link("a b")), 2);
}

TEST_F(LyricSearch, leavesOutTheLastTwoPageLinks) {
    const std::string page = pageLink(1) + pageLink(2) + pageLink(3) + pageLink(4) + a(1);
    // Four page links and a lyric behind them: bounds 0 to 4, so the pages 0 to 2.
    for (int number = 1; number <= 3; ++number)
        net.setPage(pageAddress(number), "nothing");
    EXPECT_TRUE(searchPage(page));
    EXPECT_EQ(countLog(u"XmlHttpGet http://engine/m?f=ms&pn="), 3);
    EXPECT_EQ(search.lrcPageIndex, 2);
}

TEST_F(LyricSearch, leavesOutThreePagesWhenAPageLinkComesLast) {
    net.setPage(pageAddress(1), "nothing");
    EXPECT_TRUE(searchPage(a(1) + pageLink(1) + pageLink(2) + pageLink(3)));
    EXPECT_EQ(countLog(u"XmlHttpGet http://engine/m?f=ms&pn="), 1);
}

TEST_F(LyricSearch, addsOneRowMoreThanTheArrayHoldsFromFurtherPages) {
    // Bound 1 behind the last other link, with element 0 taken.
    net.setPage(pageAddress(1), a(2) + a(3) + a(4));
    searchPage(a(1) + pageLink(1) + pageLink(2) + link("http://other/"));
    EXPECT_EQ(rows(), (Texts{rowA(1), rowA(2), rowA(3)}));
    EXPECT_EQ(textsOf(search.lrcDownloadLinks), (Texts{storedA(1), storedA(2)}));
}

TEST_F(LyricSearch, addsOneRowWhenALyricLinkCameLast) {
    net.setPage(pageAddress(1), a(2) + a(3));
    searchPage(pageLink(1) + pageLink(2) + a(1));
    EXPECT_EQ(rows(), (Texts{rowA(1), rowA(2)}));
    EXPECT_EQ(textsOf(search.lrcDownloadLinks), Texts{storedA(1)});
}

TEST_F(LyricSearch, ofAFirstPageWithoutLyricsTakesAtMostTwoFromTheOthers) {
    net.setPage(pageAddress(1), a(1) + a(2) + a(3));
    searchPage(pageLink(1) + pageLink(2) + link("http://other/"));
    EXPECT_EQ(rows(), (Texts{rowA(1), rowA(2)}));
    EXPECT_EQ(textsOf(search.lrcDownloadLinks), Texts{storedA(1)});
}

TEST_F(LyricSearch, followsNoPageLinkOfAFurtherPage) {
    net.setPage(pageAddress(1), pageLink(7) + link("/m?pn=8"));
    searchPage(pageLink(1) + pageLink(2) + link("http://other/"));
    EXPECT_EQ(countLog(u"XmlHttpGet http://engine/m?f=ms&pn="), 1);
    EXPECT_EQ(search.lrcPageLinks.upperBound(), 2);
}

TEST_F(LyricSearch, readsRelativeLinksOfAFurtherPageFromItsOwnPlace) {
    setHost(u"lrcSiteA", u"http://engine/m/deep");
    const std::u16string deep = u"http://engine/m/deep/x?pn=1";
    net.setPage(deep, link("asp/lrc.asp?1"));
    searchPage(link("/m/deep/x?pn=1") + pageLink(2) + link("http://other/"));
    EXPECT_EQ(rows(), Texts{u"http://engine/m/deep/asp/lrc.asp?1"});
}

TEST_F(LyricSearch, endsAtAFurtherPageThatDoesNotCome) {
    const std::string page =
        pageLink(1) + pageLink(2) + pageLink(3) + pageLink(4) + pageLink(5) + link("http://other/");
    for (const bool raises : {true, false}) {
        const auto word = raises ? u"raise" : u"empty";
        if (raises)
            net.addRaise(pageAddress(2));
        else
            net.addIncomplete(pageAddress(2));
        net.setPage(pageAddress(1), "nothing");
        net.setPage(lyricAddress(word), page);
        net.log.clear();
        EXPECT_TRUE(search.searchLrc(word));
        EXPECT_EQ(countLog(u"XmlHttpGet http://engine/m?f=ms&pn="), 2);
        EXPECT_TRUE(search.lrcFirstPageDone);
    }
}

// Each page may take a minute, and a page may name thirty thousand others.
TEST_F(LyricSearch, asksForNoFurtherPageAfterThreeMinutes) {
    std::string page = a(100);
    for (int i = 1; i <= 8; ++i) {
        page += pageLink(i);
        if (i <= 6)
            net.setPage(pageAddress(i), "nothing");
    }
    net.meanwhile = [&] { fake.clock.steadyTime += 30'000; };
    EXPECT_TRUE(searchPage(page));
    // The first page twice, then what begins ahead of the 180th second.
    EXPECT_EQ(countLog(u"XmlHttpGet http://engine/m?f=ms&pn="), 4);
    EXPECT_EQ(rows(), Texts{rowA(100)}) << "what was found stays";
    net.meanwhile = nullptr;
    net.log.clear();
    EXPECT_TRUE(searchPage(page));
    EXPECT_EQ(countLog(u"XmlHttpGet http://engine/m?f=ms&pn="), 6) << "the next has its own time";
}

TEST_F(LyricSearch, scannedAgainGoesStraightToTheFurtherPages) {
    searchPage(pageLink(1) + pageLink(2) + pageLink(3)); // bounds 0 to 2
    EXPECT_EQ(search.lrcPageIndex, 0);
    net.setPage(pageAddress(1), a(5));
    net.log.clear();
    EXPECT_TRUE(passOver([this] { search.scanLrcPages(first); }));
    EXPECT_EQ(countLog(u"XmlHttpGet"), 1);
    EXPECT_EQ(rows(), Texts{rowA(5)});
    EXPECT_EQ(textsOf(search.lrcDownloadLinks).front(), storedA(5));
}

TEST_F(LyricSearch, scannedAgainAsksForNoFurtherPageWhereTheFirstIsGone) {
    searchPage(pageLink(1) + pageLink(2) + pageLink(3));
    search.lrcFirstPageDone = false;
    search.lrcPageIndex = 7;
    const std::u16string gone = lyricAddress(u"x");
    net.setPage(gone, "");
    net.log.clear();
    EXPECT_TRUE(passOver([&] { search.scanLrcPages(gone); }));
    EXPECT_EQ(countLog(u"XmlHttpGet"), 1);
    EXPECT_FALSE(search.lrcFirstPageDone);
    EXPECT_EQ(search.lrcPageIndex, 7);
}

TEST_F(LyricSearch, ofTenMegabytesOfMarkersTakesATimeThatGrowsWithThePageAlone) {
    std::string page;
    for (int i = 0; i < 2'500'000; ++i)
        page += "HREF";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(searchPage(page));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20)); // usually 0.2
    EXPECT_EQ(rows(), Texts());
}

// --- meanwhile ----------------------------------------------------------------------------------

TEST_F(LyricSearch, survivesAnotherSearchInsideOne) {
    net.setPage(lyricAddress(u"inner"), a(8) + a(9) + link("http://other/"));
    net.setPage(first, a(1) + a(2) + a(3));
    int links = 0;
    windows.onPump = [&] {
        if (++links == 5) {
            windows.onPump = nullptr;
            EXPECT_TRUE(search.searchLrc(u"inner"));
        }
    };
    EXPECT_TRUE(search.searchLrc(u"w"));
    EXPECT_EQ(rows().size(), 5U);
    EXPECT_TRUE(search.lrcFirstPageDone);
}

// At whichever of its pumps.
TEST_F(LyricSearch, asksAndKeepsWhatIsItsOwnThoughAnotherSearchRunsInside) {
    net.setPage(lyricAddress(u"inner"),
                a(8) + a(9) + pageLink(8) + pageLink(9) + link("http://o/"));
    net.setPage(pageAddress(8), "nothing");
    net.setPage(first, a(1) + pageLink(1) + a(2) + pageLink(2) + link("http://other/"));
    net.setPage(pageAddress(1), a(3));
    bool isReached = true;
    int at = 0;
    for (; isReached; ++at) {
        isReached = false;
        int pump = 0;
        Texts asked;
        windows.onPump = [&] {
            if (isReached || pump++ != at)
                return;
            isReached = true;
            const std::size_t before = net.log.size();
            EXPECT_TRUE(search.searchLrc(u"inner"));
            net.log.resize(before);
        };
        net.log.clear();
        EXPECT_TRUE(search.searchLrc(u"w"));
        windows.onPump = nullptr;
        EXPECT_EQ(countLog(u"XmlHttpGet " + first), 2) << at;
        EXPECT_EQ(countLog(u"XmlHttpGet " + pageAddress(1)), 1) << at;
        EXPECT_EQ(countLog(u"XmlHttpGet"), 3) << at;
        EXPECT_EQ(textsOf(search.lrcDownloadLinks), (Texts{storedA(1), storedA(2), storedA(3)}))
            << at;
        EXPECT_EQ(search.lrcSearchUrl, first) << at;
    }
    EXPECT_GT(at, 10);
}

TEST_F(LyricSearch, endsWhenTheListIsFull) {
    for (int i = 0; i < 32'766; ++i)
        lrcWindow().search_Lrc_List.addItem(u"x");
    EXPECT_TRUE(searchPage(a(1) + a(2) + a(3)));
    EXPECT_EQ(lrcWindow().search_Lrc_List.listCount(), 32'767);
    EXPECT_FALSE(search.lrcFirstPageDone);
}

TEST_F(LyricSearch, endsOnMorePageLinksThanANumberOf16BitsCounts) {
    std::string page;
    // The last is the 65,541st: cut to 16 bits it would be a small one.
    for (int i = 0; i < 65'546; ++i)
        page += "<a href=\"/m?pn=1\">";
    EXPECT_TRUE(searchPage(page));
    EXPECT_EQ(countLog(u"XmlHttpGet"), 2);
}

} // namespace
} // namespace velmora
