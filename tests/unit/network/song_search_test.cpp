// Searching songs: cells, records, links and labels.

#include "tests/unit/network/network_fixture.h"

#include "base/run_time_error.h"

namespace velmora {
namespace {

class SongSearch : public NetworkFixture {
protected:
    const std::u16string address = songPageAddress(u"w");
    bool searchPage(const std::string &page) {
        net.setPage(address, page);
        return songs.searchSong(u"w");
    }
    static std::string cell(const std::string &record, const std::string &pieces) {
        return "<td class=\"data\">" + record + "@@FI" + pieces + "</td>";
    }
    Texts shown() { return rowsOf(songWindow().search_Song_List); }
    Texts links() { return rowsOf(songWindow().List1); }
    Texts records() { return rowsOf(songWindow().List2); }
    void expectRows(const Texts &rows) {
        EXPECT_EQ(shown(), rows);
        EXPECT_EQ(links().size(), rows.size());
        EXPECT_EQ(records().size(), rows.size());
    }
};

TEST_F(SongSearch, asksForTheWordAsItIsAndFetchesThePageTwice) {
    const std::u16string odd = songPageAddress(u"歌 a/b");
    net.setPage(odd, "nothing");
    EXPECT_TRUE(songs.searchSong(u"歌 a/b"));
    EXPECT_EQ(net.log, (Texts{u"XmlHttpGet " + odd, u"decodeCharset GB2312", u"XmlHttpGet " + odd,
                              u"decodeCharset GB2312"}));
    EXPECT_EQ(songs.songSearchUrl, odd);
    EXPECT_EQ(songs.songSearchPage, u"nothing");
    EXPECT_FALSE(songs.songScanDone);
    EXPECT_TRUE(songs.songResults.empty());
}

TEST_F(SongSearch, scansThePageOfItsAddressWithOtherSeparators) {
    net.setPage(songPageAddress(u"a\\b"), "first");
    net.setPage(songPageAddress(u"a/b"), " " + cell("r", "http://1;;"));
    EXPECT_TRUE(songs.searchSong(u"a\\b"));
    expectRows({u"0、http://1"});
    EXPECT_EQ(songs.songSearchPage, u"first");
}

TEST_F(SongSearch, pumpsAheadOfItsFetchesItsScanAndItsCounts) {
    std::vector<int> fetchesBefore;
    windows.onPump = [&] { fetchesBefore.push_back(countLog(u"XmlHttpGet")); };
    searchPage(" " + cell("r", "http://1;;http://2;;"));
    EXPECT_EQ(fetchesBefore, (std::vector<int>{0, 1, 1, 1, 2})); // and none for a row
}

TEST_F(SongSearch, fillsThreeListsWithOneRowForEachLink) {
    searchPage("<table>" + cell("0@@Name@@Album", "http://h/a.mp3;Fast;https://h/B.mp3;;"));
    EXPECT_EQ(shown(), (Texts{u"0、【FAST】http://h/a.mp3", u"1、https://h/b.mp3"}));
    EXPECT_EQ(links(), (Texts{u"HTTP://H/A.MP3", u"HTTPS://H/B.MP3"}));
    EXPECT_EQ(records(), (Texts{u"0@@NAME@@ALBUM", u"0@@NAME@@ALBUM"}));
}

TEST_F(SongSearch, numbersRowsFromZeroAcrossCellsAndAnewWithEachScan) {
    const std::string page = " " + cell("a", "http://1;l;") + "x" + cell("b", "http://2;;");
    searchPage(page);
    expectRows({u"0、【L】http://1", u"1、http://2"});
    songs.searchSong(u"w"); // which only appends
    expectRows({u"0、【L】http://1", u"1、http://2", u"0、【L】http://1", u"1、http://2"});
}

TEST_F(SongSearch, takesNoLinkFromTheLastPiece) {
    searchPage(" " + cell("r", "http://1"));
    expectRows({});
    searchPage(" " + cell("r", "x;http://1;http://2"));
    expectRows({u"0、【HTTP://2】http://1"});
}

TEST_F(SongSearch, passesOverPiecesThatAreNoLinks) {
    searchPage(" " + cell("r", "ftp://1;l; http://2;l;http:/3;l;httphttp://;l;HtTp://4;l;"));
    expectRows({u"0、【L】http://4"});
}

TEST_F(SongSearch, takesALinkAlsoForTheLabelOfTheOneAhead) {
    searchPage(" " + cell("r", "http://1;http://2;x"));
    expectRows({u"0、【HTTP://2】http://1", u"1、【X】http://2"});
}

TEST_F(SongSearch, countsNoMarkerAtTheFirstUnit) {
    searchPage(cell("r", "http://1;;"));
    expectRows({});
    searchPage("\n" + cell("r", "http://1;;"));
    expectRows({u"0、http://1"});
}

TEST_F(SongSearch, takesTheMarkerInAnyCaseAndInOneSpelling) {
    searchPage(" <TD Class=\"daTA\">r@@fihttp://1;;</Td>");
    expectRows({u"0、http://1"});
    songWindow().search_Song_List.clear();
    songWindow().List1.clear();
    songWindow().List2.clear();
    net.setPage(songPageAddress(u"x"), " <td  class=\"data\">r@@FIhttp://1;;</td>"
                                       "<td class='data'>r@@FIhttp://1;;</td>");
    EXPECT_TRUE(songs.searchSong(u"x"));
    expectRows({});
}

TEST_F(SongSearch, endsSilentlyAtACellWithoutALinkPart) {
    EXPECT_TRUE(searchPage(" " + cell("a", "http://1;;") + "<td class=\"data\">no links</td>" +
                           std::string(2000, ' ') + cell("b", "http://2;;")));
    expectRows({u"0、http://1"});
}

TEST_F(SongSearch, looksAtNoMoreThan2000UnitsOfACell) {
    // Marker 17, record 1, separator 4, "http://1;;" 10, then the end of the cell.
    const auto page = [](std::size_t padding) {
        return " <td class=\"data\">r@@FIhttp://1;;" + std::string(padding, 'x') + "</td>" +
               std::string(3000, ' ');
    };
    searchPage(page(2000 - 17 - 1 - 4 - 10 - 5));
    expectRows({u"0、http://1"});
    net.setPage(songPageAddress(u"x"), page(2000 - 17 - 1 - 4 - 10 - 5 + 1));
    EXPECT_TRUE(songs.searchSong(u"x"));
    expectRows({u"0、http://1"}); // a cell that is cut adds nothing
}

TEST_F(SongSearch, readsACutCellsRecordForLinksInstead) {
    searchPage(" <td class=\"data\">r;http://1;l;@@FIhttp://2;;" + std::string(2000, 'x'));
    expectRows({u"0、【L】http://1"});
    EXPECT_EQ(records(), Texts{u"R;HTTP://1;L;"});
}

TEST_F(SongSearch, readsNoFurtherThanTheNextSeparator) {
    // The end of the cell lies behind a second separator: the cell counts as cut.
    searchPage(" <td class=\"data\">r@@FIhttp://1;;@@FI</td>");
    expectRows({});
    net.setPage(songPageAddress(u"x"), " " + cell("r", "http://1;;</td>@@FIhttp://2;;"));
    songs.searchSong(u"x");
    expectRows({u"0、http://1"});
}

TEST_F(SongSearch, cutsARecordAtAFieldThatBeginsWithFi) {
    searchPage(" " + cell("0@@fine@@x", "http://1;;"));
    expectRows({});
    EXPECT_EQ(songs.songSearchPage.size(), 1U + 17 + 10 + 4 + 10 + 5);
}

TEST_F(SongSearch, failsWithoutAPageAndSucceedsWithoutASong) {
    net.addRaise(address);
    EXPECT_FALSE(songs.searchSong(u"w"));
    EXPECT_EQ(songs.songSearchPage, u"");
    const std::u16string other = songPageAddress(u"x");
    net.addIncomplete(other);
    EXPECT_FALSE(songs.searchSong(u"x"));
    net.setPage(songPageAddress(u"y"), "");
    EXPECT_FALSE(songs.searchSong(u"y"));
    net.setPage(songPageAddress(u"z"), "page");
    net.addRaise(songPageAddress(u"z"));
    EXPECT_TRUE(songs.searchSong(u"z"));
    expectRows({});
}

TEST_F(SongSearch, forgetsTheLastPageWhenAFetchRaises) {
    searchPage("page");
    EXPECT_FALSE(songs.searchSong(u"refused"));
    EXPECT_EQ(songs.songSearchPage, u"");
}

TEST_F(SongSearch, failsAtOnceWithoutAnEngine) {
    fake.registry.removeValue(hostsKey, u"songSearch");
    EXPECT_FALSE(songs.searchSong(u"w"));
    EXPECT_EQ(countLog(u"XmlHttpGet http"), 0);
}

TEST_F(SongSearch, scansItsOwnPageThoughAnEarlierScanWasLeftAsDone) {
    songs.songScanDone = true;
    searchPage(" " + cell("r", "http://a;;"));
    expectRows({u"0、http://a"});
}

TEST_F(SongSearch, leftAsDoneScansNothing) {
    songs.songScanDone = true;
    songs.songResults = {u"left over"};
    songs.scanSongPage(address);
    EXPECT_EQ(net.log, Texts());
    EXPECT_TRUE(songs.songResults.empty());
}

// At whichever of its pumps.
TEST_F(SongSearch, asksForItsOwnPageThoughAnotherSearchRunsInside) {
    net.setPage(songPageAddress(u"inner"), " " + cell("r", "http://inner;;"));
    net.setPage(address, " " + cell("r", "http://outer;;"));
    bool isReached = true;
    int at = 0;
    for (; isReached; ++at) {
        isReached = false;
        int pump = 0;
        windows.onPump = [&] {
            if (isReached || pump++ != at)
                return;
            isReached = true;
            const std::size_t before = net.log.size();
            EXPECT_TRUE(songs.searchSong(u"inner"));
            net.log.resize(before);
        };
        net.log.clear();
        EXPECT_TRUE(songs.searchSong(u"w"));
        windows.onPump = nullptr;
        EXPECT_EQ(countLog(u"XmlHttpGet " + address), 2) << at;
        EXPECT_EQ(countLog(u"XmlHttpGet"), 2) << at;
        EXPECT_TRUE(contains(songs.songSearchPage, u"outer")) << at;
        EXPECT_EQ(songs.songSearchUrl, address) << at;
    }
    EXPECT_GT(at, 4);
}

TEST_F(SongSearch, endsWhenTheListsAreFull) {
    for (int i = 0; i < 32'766; ++i) {
        songWindow().search_Song_List.addItem(u"x");
        songWindow().List1.addItem(u"x");
        songWindow().List2.addItem(u"x");
    }
    EXPECT_TRUE(searchPage(" " + cell("r", "http://1;;http://2;;http://3;;")));
    EXPECT_EQ(songWindow().search_Song_List.listCount(), 32'767);
    EXPECT_EQ(songWindow().List1.listCount(), 32'767);
    EXPECT_EQ(songWindow().List2.listCount(), 32'767);
}

} // namespace
} // namespace velmora
