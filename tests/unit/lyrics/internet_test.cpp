// The lyric of the track that starts, when no disk has it: the tries on the Internet.

#include "tests/unit/lyrics/lyrics_fixture.h"

#include "network/lrc_Internet_Search.h"
#include "network/search_Lrc_Internet_Form.h"

#include <algorithm>

namespace velmora {
namespace {

class LyricFromTheNet : public LyricsFixture {
protected:
    LyricFromTheNet() {
        setHost(u"lrcSearch", u"http://engine");
        setHost(u"lrcSiteA", u"http://sitea");
        setHost(u"lrcSiteB", u"http://siteb");
    }
    void setHost(std::u16string_view name, std::u16string_view address) {
        fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\hosts", name, address);
    }
    void setTag(std::u16string_view title, std::u16string_view artist) {
        app.another_PlayInfo_Form().playInfo_TitleText.setText(title);
        app.another_PlayInfo_Form().playInfo_ArtistText.setText(artist);
    }
    std::u16string address(std::u16string_view word) {
        return app.lrc_Internet_Search().searchAddress(word);
    }
    // A page with `links` lyric links of site A.
    static std::string page(int links) {
        std::string html = "<html>";
        if (links > 0)
            html += "<a href=\"http://other/x\">";
        for (int i = 0; i < links; ++i)
            html += "<a href=\"http://sitea/asp/lrc.asp?id=" + std::to_string(i) + "\">";
        return html;
    }
    void setPage(std::u16string_view word, int links) {
        fake.internet.setPage(address(word), page(links));
    }
    // What is asked of the network and shown meanwhile, in order.
    Texts tries() {
        Texts seen;
        for (const std::u16string &line : fake.internet.log)
            if (startsWith(line, u"XmlHttpGet"))
                seen.push_back(line);
        return seen;
    }
    void find() { app.Search().findTrackLyric(u"/m/Song.mp3"); }
    static constexpr auto firstLink = u"HTTP://SITEA/ASP/LRC.ASP?ID=0";
};

TEST_F(LyricFromTheNet, IsSearchedByTitleAndArtistFirst) {
    setTag(u"Hello", u"Stesul");
    setPage(u"Hello Stesul", 3);
    fake.internet.setDownload(firstLink, "[00:01]words");
    find();
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_EQ(lyric().lrcPath, u"/lrc/Song.LRC");
    EXPECT_EQ(files.contents(u"/lrc/Song.LRC"), "[00:01]words");
    EXPECT_TRUE(info().lrcInfo_Frame.enabled());
}

TEST_F(LyricFromTheNet, IsTheFileThatCameMeanwhileThoughTheNetHasNone) {
    setPage(u"Song", 3);
    fake.internet.meanwhile = [this] { files.addFile(u"/lrc/Song.LRC", "[00:01]another's"); };
    find();
    EXPECT_EQ(rowsOf(lyric().List1), Texts{u"[00:01]another's"});
    EXPECT_TRUE(info().lrcInfo_Frame.enabled());
}

TEST_F(LyricFromTheNet, IsSearchedByTheTitleNext) {
    setTag(u"Hello", u"Stesul");
    setPage(u"Hello Stesul", 0);
    setPage(u"Hello", 3);
    fake.internet.setDownload(firstLink, "[00:01]words");
    find();
    EXPECT_TRUE(lyric().hasLrc);
}

TEST_F(LyricFromTheNet, IsSearchedByTheFileNameLast) {
    setTag(u"Hello", u"Stesul");
    setPage(u"Song", 3);
    fake.internet.setDownload(firstLink, "[00:01]words");
    find();
    EXPECT_TRUE(lyric().hasLrc);
}

TEST_F(LyricFromTheNet, WithoutATagIsSearchedByTheFileNameAtOnce) {
    setPage(u"Song", 3);
    fake.internet.setDownload(firstLink, "[00:01]words");
    find();
    EXPECT_TRUE(lyric().hasLrc);
    for (const std::u16string &line : tries())
        EXPECT_TRUE(contains(line, u"word=Song")) << toUtf8(line);
}

TEST_F(LyricFromTheNet, OfAnArtistAloneIsSearchedByTheEmptyTitleNext) {
    setTag(u"", u"Stesul");
    setPage(u"", 3);
    fake.internet.setDownload(firstLink, "[00:01]words");
    find();
    EXPECT_TRUE(lyric().hasLrc);
    ASSERT_FALSE(tries().empty());
    EXPECT_TRUE(contains(tries()[0], u"word=Stesul")) << toUtf8(tries()[0]);
}

TEST_F(LyricFromTheNet, OfATitleAloneIsSearchedByItTwiceAndThenByTheFileName) {
    setTag(u"Hello", u"");
    for (const std::u16string_view word : {u"Hello", u"Song"})
        setPage(word, 0);
    find();
    // A try asks for as many pages whatever its words are.
    const Texts asked = tries();
    ASSERT_EQ(asked.size() % 3, 0U);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        const bool isLastTry = i >= asked.size() / 3 * 2;
        EXPECT_TRUE(contains(asked[i], isLastTry ? u"word=Song" : u"word=Hello"))
            << toUtf8(asked[i]);
    }
}

TEST_F(LyricFromTheNet, ThatIsFoundIsSearchedNoFurther) {
    setTag(u"Hello", u"Stesul");
    setPage(u"Hello Stesul", 3);
    fake.internet.setDownload(firstLink, "[00:01]words");
    find();
    for (const std::u16string &line : tries())
        EXPECT_TRUE(contains(line, u"word=Hello Stesul")) << toUtf8(line);
    EXPECT_EQ(lyric().nowLrcLine, u"");
}

TEST_F(LyricFromTheNet, IsTakenFromTheFirstLinkOrNotAtAll) {
    setPage(u"Song", 3);
    find();
    Texts fetched;
    for (const std::u16string &line : fake.internet.log)
        if (startsWith(line, u"URLDownloadToFileA"))
            fetched.push_back(line);
    ASSERT_EQ(fetched.size(), 1U);
    EXPECT_TRUE(contains(fetched[0], firstLink)) << toUtf8(fetched[0]);
    EXPECT_FALSE(lyric().hasLrc);
}

TEST_F(LyricFromTheNet, WithAnUpperBoundOfExactlyOneIsAFailedTry) {
    setPage(u"Song", 1); // one link and one more resize behind it
    find();
    EXPECT_FALSE(lyric().hasLrc);
}

// Its bound is 0 then, not 1: what stands at the first place, no address at all, is fetched.
TEST_F(LyricFromTheNet, OfAPageWithOtherLinksAloneIsFetchedFromTheEmptyAddressInVain) {
    fake.internet.setPage(address(u"Song"), "<html><a href=\"http://other/x\">");
    find();
    EXPECT_EQ(app.lrc_Internet_Search().lrcDownloadLinks.upperBound(), 0);
    const auto isFetch = [](const std::u16string &line) {
        return startsWith(line, u"URLDownloadToFileA");
    };
    EXPECT_EQ(std::ranges::count_if(fake.internet.log, isFetch), 1);
    EXPECT_FALSE(files.hasFile(u"/lrc/Song.LRC"));
    EXPECT_FALSE(lyric().hasLrc);
}

TEST_F(LyricFromTheNet, ThatNobodyHasIsNoneAfterThreeTriesWithTheirTexts) {
    setTag(u"Hello", u"Stesul");
    Texts shown;
    windows.onPump = [&] {
        if (shown.empty() || shown.back() != lyric().nowLrcLine)
            shown.push_back(lyric().nowLrcLine);
    };
    setPage(u"Hello Stesul", 0);
    setPage(u"Hello", 0);
    setPage(u"Song", 0);
    find();
    EXPECT_EQ(shown, (Texts{u"正在以属性标志从可选网站搜索...", u"正在以文件名从可选网站搜索..."}));
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_EQ(lyric().nowLrcLine, u"none");
    EXPECT_FALSE(info().lrcInfo_Frame.enabled());
}

TEST_F(LyricFromTheNet, ShowsThatItDownloads) {
    setPage(u"Song", 3);
    std::u16string shown;
    windows.onPump = [&] { shown = lyric().nowLrcLine; };
    find(); // the link leads nowhere, so the try fails
    EXPECT_EQ(shown, u"正在下载歌词...");
    EXPECT_FALSE(lyric().hasLrc);
}

TEST_F(LyricFromTheNet, ThatIsEmptyStaysAndIsFoundNextTime) {
    setPage(u"Song", 3);
    fake.internet.setDownload(firstLink, "");
    find();
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_FALSE(info().lrcInfo_Frame.enabled());
    EXPECT_TRUE(files.hasFile(u"/lrc/Song.LRC"));
    const std::size_t asked = tries().size();
    find();
    EXPECT_EQ(tries().size(), asked) << "the empty file is found on the disk";
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_TRUE(info().lrcInfo_Frame.enabled());
}

TEST_F(LyricFromTheNet, OfAnUntaggedTrackIsSearchedByTheLastTag) {
    addTrack(u"/m/Song.mp3");
    setTag(u"Before", u"");
    setPage(u"Before", 3);
    fake.internet.setDownload(firstLink, "[00:01]words");
    openAndPlay(u"/m/Song.mp3");
    EXPECT_TRUE(lyric().hasLrc);
}

// --- what happens while it is searched ---

class LyricMeanwhile : public LyricFromTheNet {
protected:
    LyricMeanwhile() {
        setVolumeBar(0);
        addTrack(u"/m/Song.mp3");
        addTrack(u"/m/Next.mp3");
        setPage(u"Song", 3);
    }
    // The lyric that the search of the first track finds.
    void serve() { fake.internet.setDownload(firstLink, "[00:01]words"); }
    // Plays the track; in the pump of this number, counted from the first one of the search, the
    // work is done. False when the search has fewer of them.
    template <typename Work> bool playAndDo(int pump, Work work) {
        int count = 0;
        bool isDone = false;
        app.player().open_File(u"/m/Song.mp3");
        windows.onPump = [&] {
            if (contains(lyric().nowLrcLine, u"正在") && !isDone && count++ == pump) {
                isDone = true;
                work();
            }
        };
        app.player().play_Sub();
        windows.onPump = nullptr;
        return isDone;
    }
    static constexpr auto found = u"/lrc/Song.LRC";
};

TEST_F(LyricMeanwhile, OfATrackThatGaveWayIsKeptForItAndNotShownToTheNext) {
    serve();
    files.addFile(u"/lrc/Next.lrc", "[00:01]of the next");
    for (int pump = 0; playAndDo(pump, [&] { openAndPlay(u"/m/Next.mp3"); }); ++pump) {
        EXPECT_EQ(files.contents(found), "[00:01]words");
        EXPECT_EQ(lyric().lrcPath, u"/lrc/Next.LRC");
        EXPECT_EQ(rowsOf(lyric().List1), Texts{u"[00:01]of the next"});
        EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[00:01]of the next", u""}));
        EXPECT_EQ(info().lrc_Full.text(), u"of the next\r\n");
        EXPECT_EQ(lyric().nowLrcLine, u"");
        EXPECT_TRUE(lyric().Timer1.running());
        files.remove(found);
    }
    EXPECT_GT(tries().size(), 2U);
}

TEST_F(LyricMeanwhile, ThatNobodyHasForATrackThatGaveWayTakesNothingFromTheNext) {
    files.addFile(u"/lrc/Next.lrc", "[00:01]of the next");
    for (int pump = 0; playAndDo(pump, [&] { openAndPlay(u"/m/Next.mp3"); }); ++pump) {
        EXPECT_TRUE(lyric().hasLrc);
        EXPECT_TRUE(info().lrcInfo_Frame.enabled());
        EXPECT_EQ(lyric().nowLrcLine, u"");
    }
    EXPECT_FALSE(files.hasFile(found));
}

TEST_F(LyricMeanwhile, OfATrackThatGaveWaySaysNothingOfItsSearchToTheNext) {
    serve();
    setTag(u"Hello", u"Stesul");
    setPage(u"Hello Stesul", 0);
    setPage(u"Hello", 0);
    files.addFile(u"/lrc/Next.lrc", "[00:01]of the next");
    Texts shown;
    bool isNext = false;
    app.player().open_File(u"/m/Song.mp3");
    windows.onPump = [&] {
        if (isNext) {
            shown.push_back(lyric().nowLrcLine);
        } else if (contains(lyric().nowLrcLine, u"搜索")) {
            isNext = true;
            openAndPlay(u"/m/Next.mp3");
        }
    };
    app.player().play_Sub();
    windows.onPump = nullptr;
    ASSERT_FALSE(shown.empty());
    EXPECT_EQ(std::ranges::count(shown, u""), static_cast<std::ptrdiff_t>(shown.size()));
    EXPECT_EQ(files.contents(found), "[00:01]words");
}

TEST_F(LyricMeanwhile, OfATrackThatWasStoppedIsKeptAndShownWhenItPlaysAgain) {
    serve();
    for (int pump = 0; playAndDo(pump, [&] { app.Main().stopButton_Click(); }); ++pump) {
        EXPECT_EQ(files.contents(found), "[00:01]words");
        EXPECT_EQ(lyric().List1.listCount(), 0);
        EXPECT_EQ(lyric().nowLrcLine, u"");
        EXPECT_FALSE(lyric().Timer1.running());
        app.Main().playButton_Click();
        EXPECT_EQ(media.mode(), u"playing");
        EXPECT_EQ(rowsOf(lyric().List1), Texts{u"[00:01]words"});
        EXPECT_TRUE(lyric().Timer1.running());
        files.remove(found);
    }
}

TEST_F(LyricMeanwhile, IsTheOneOfItsOwnSearchThoughAnotherOneRanInside) {
    serve();
    fake.internet.setPage(address(u"Other"),
                          "<html><a href=\"http://sitea/asp/lrc.asp?id=8\">"
                          "<a href=\"http://sitea/asp/lrc.asp?id=9\"><a href=\"http://other/x\">");
    fake.internet.setDownload(u"HTTP://SITEA/ASP/LRC.ASP?ID=8", "[00:01]of another song");
    app.platform().internet.URLDownloadToFileA(u"HTTP://SITEA/ASP/LRC.ASP?ID=8", u"/m/other.lrc",
                                               platform::lyricFile);
    velmora::search_Lrc_Internet_Form &window = app.search_Lrc_Internet_Form();
    window.songName_Text.setText(u"Other");
    int pump = 0;
    while (playAndDo(pump, [&] { window.search_Button_Click(); })) {
        EXPECT_EQ(files.contents(found), "[00:01]words") << pump;
        files.remove(found);
        ++pump;
    }
    EXPECT_GT(pump, 5);
}

TEST_F(LyricMeanwhile, ThatWasSavedByHandIsNeverOverwritten) {
    serve();
    const std::u16string byHand = u"/lrc/song.lrc";
    int pump = 0;
    while (playAndDo(pump, [&] { files.addFile(byHand, "[00:01]by hand"); })) {
        EXPECT_EQ(files.contents(byHand), "[00:01]by hand") << pump;
        EXPECT_FALSE(files.hasFile(found)) << pump;
        EXPECT_EQ(rowsOf(lyric().List1), Texts{u"[00:01]by hand"}) << pump;
        files.remove(byHand);
        ++pump;
    }
    EXPECT_GT(pump, 5);
}

TEST_F(LyricMeanwhile, ThatWasSavedByHandWhileTheOtherCameIsNotOverwritten) {
    serve();
    fake.internet.duringDownload = [&] { files.addFile(found, "[00:01]by hand"); };
    openAndPlay(u"/m/Song.mp3");
    EXPECT_EQ(files.contents(found), "[00:01]by hand");
    EXPECT_EQ(rowsOf(lyric().List1), Texts{u"[00:01]by hand"});
    EXPECT_TRUE(info().lrcInfo_Frame.enabled());
}

// A second load would fill the editor anew.
TEST_F(LyricMeanwhile, ThatWasSavedByTheEditorLeavesWhatIsTypedThereSince) {
    files.addFile(u"/m/words.txt", "by hand");
    windows.expectMsgBox(boxOf(u"曲目：Song\r\n已成功保存，并匹配！\r\n\r\n地址：/lrc/Song.Lrc",
                               platform::MsgBoxIcon::Information, u"Velmora 2011"),
                         platform::MsgBoxResult::Ok);
    EXPECT_TRUE(playAndDo(2, [&] {
        editor().addFile_To_List(u"/m/words.txt");
        editor().save_Button_Click();
        editor().lrcList.setList(0, u"typed since");
    }));
    EXPECT_EQ(editor().lrcList.list(0), u"typed since");
    EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), "[Ti:]\r\n[Ar:]\r\n[Al:]\r\n[By:]\r\nby hand\r\n");
    EXPECT_FALSE(files.hasFile(found));
    EXPECT_TRUE(lyric().hasLrc);
}

// The next try may fill what an earlier one left empty.
TEST_F(LyricMeanwhile, TakesThePlaceOfAnEmptyOneOfAnEarlierTry) {
    serve();
    setTag(u"Hello", u"");
    fake.internet.setPage(address(u"Hello"), "<html><a href=\"http://other/x\">"
                                             "<a href=\"http://sitea/asp/lrc.asp?id=7\">");
    fake.internet.setDownload(u"HTTP://SITEA/ASP/LRC.ASP?ID=7", "");
    find();
    EXPECT_EQ(files.contents(found), "[00:01]words");
    EXPECT_TRUE(lyric().hasLrc);
}

TEST_F(LyricFromTheNet, WithNoHostSetAsksNoServer) {
    setHost(u"lrcSearch", u"");
    find();
    EXPECT_FALSE(lyric().hasLrc);
    for (const std::u16string &line : fake.internet.log)
        EXPECT_FALSE(contains(line, u"http")) << toUtf8(line);
}

TEST_F(LyricFromTheNet, IsNotAskedForWhereItCouldNotBeKept) {
    files.setReadOnly(u"/lrc");
    setTag(u"Hello", u"");
    find();
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_TRUE(fake.internet.log.empty());
    EXPECT_EQ(lyric().nowLrcLine, u"none");
}

TEST_F(LyricFromTheNet, WhoseSearchFailsIsNotTheOneThatAnEarlierSearchFound) {
    setPage(u"Other", 3);
    ASSERT_TRUE(app.lrc_Internet_Search().searchLrc(u"Other"));
    find();
    for (const std::u16string &asked : fake.internet.log)
        EXPECT_FALSE(contains(asked, firstLink)) << toUtf8(asked);
}

} // namespace
} // namespace velmora
