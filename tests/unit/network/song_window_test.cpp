// The song search window: opening, searching, what its rows tell.

#include "base/numbers.h"
#include "tests/unit/network/song_window_fixture.h"

namespace velmora {
namespace {

const std::u16string foundNothing =
    u"无法搜索到匹配的曲目，请更换搜索词重新搜索！\r\n可能服务器无法链接。";

class SongWindow : public SongWindowFixture {};

// --- opening ------------------------------------------------------------------------------------

TEST_F(SongWindow, isToggledByTheMainWindowAndPreparedWhenItShows) {
    openTrack(u"/m/Song.mp3");
    form.hide();
    addSong();
    clickOn(app.Main().search_Song_Internet);
    EXPECT_TRUE(form.visible());
    EXPECT_EQ(form.search_Song_List.listCount(), 0);
    EXPECT_EQ(form.songName_Text.text(), u"Song");
    addSong();
    clickOn(app.Main().search_Song_Internet);
    EXPECT_FALSE(form.visible());
    EXPECT_EQ(form.search_Song_List.listCount(), 1);
}

TEST_F(SongWindow, looksForTheTagOrTheFileName) {
    openTrack(u"/m/Some song.mp3");
    look(u"old", u"old");
    form.setControlsEnabled(true);
    form.startLoad();
    EXPECT_EQ(form.songName_Text.text(), u"Some song");
    EXPECT_EQ(form.singer_Str.text(), u"");
    EXPECT_EQ(heading(), u"曲目网络搜索");
    EXPECT_EQ(label(), u"搜索中，请填写完整，以保证搜索的准确性，本搜索由搜搜搜索引擎搜索提供！");
    expectSaving(false);
    openTrack(u"/m/a.mp3", "Title", "Artist");
    form.startLoad();
    EXPECT_EQ(form.songName_Text.text() + u"/" + form.singer_Str.text(), u"Title/Artist");
    openTrack(u"/m/b.mp3", "", "Other");
    form.startLoad();
    EXPECT_EQ(form.songName_Text.text() + u"/" + form.singer_Str.text(), u"b/Other");
}

TEST_F(SongWindow, hasAClientWithItsDefaults) {
    EXPECT_TRUE(form.wd.ReDown);
    EXPECT_EQ(form.wd.Pakesize, 1024);
    EXPECT_EQ(form.wd.URL + form.wd.FileName, u"");
    EXPECT_EQ(form.visibleRows, 11);
    EXPECT_EQ(form.windowKey(), Colour{0xC7C7C7});
    EXPECT_EQ(form.search_Song_List.font().size(), app.playList_Form().playList_Item.font().size());
}

// --- searching ----------------------------------------------------------------------------------

TEST_F(SongWindow, asksForBothWordsSingerFirst) {
    struct Case {
        const char16_t *name, *singer, *word;
    };
    for (const Case &one : {Case{u"name", u"", u"name"}, Case{u"name", u"singer", u"singer name"},
                            Case{u"", u"singer", u"singer"}}) {
        look(one.name, one.singer);
        net.setPage(songPageAddress(one.word), "nothing");
        click(form.search_Button);
        EXPECT_EQ(countLog(u"XmlHttpGet " + songPageAddress(one.word)), 2);
    }
}

TEST_F(SongWindow, saysWhatItFound) {
    look(u"w", u"");
    addSong();
    form.title.setCaption(u"left over");
    net.setPage(songPageAddress(u"w"), " <td class=\"data\">r@@FIhttp://1;;http://2;l;</td>");
    net.meanwhile = [this] {
        EXPECT_EQ(label(), u"正在搜索...");
        EXPECT_EQ(heading(), u"曲目网络搜索");
        expectSaving(false);
    };
    click(form.search_Button);
    EXPECT_EQ(label(), u"搜索到可提供下载的曲目：2条。\r\n双击曲目地址下载！");
    EXPECT_EQ(rowsOf(form.search_Song_List), (Texts{u"0、http://1", u"1、【L】http://2"}));
    EXPECT_EQ(form.List1.listCount(), 2);
    EXPECT_EQ(form.List2.listCount(), 2);
    expectSaving(true);
}

TEST_F(SongWindow, offersTheOneSongThatItFound) {
    look(u"w", u"");
    net.setPage(songPageAddress(u"w"), " <td class=\"data\">r@@FIhttp://1;;l;</td>");
    click(form.search_Button);
    ASSERT_EQ(form.search_Song_List.listCount(), 1);
    EXPECT_EQ(label(), u"搜索到可提供下载的曲目：1条。\r\n双击曲目地址下载！");
    expectSaving(true);
}

TEST_F(SongWindow, saysWhenItShowsWhatASearchIs) {
    openTrack(u"/m/Song.mp3");
    form.hide();
    form.title.setCaption(u"left over");
    clickOn(app.Main().search_Song_Internet);
    EXPECT_EQ(heading(), u"曲目网络搜索");
}

TEST_F(SongWindow, saysThatItFoundNothingOrReachedNobody) {
    look(u"w", u"");
    addSong();
    form.setControlsEnabled(true);
    click(form.search_Button);
    EXPECT_EQ(label(), foundNothing);
    EXPECT_EQ(form.search_Song_List.listCount() + form.List1.listCount() + form.List2.listCount(),
              0);
    expectSaving(false);
    net.setPage(songPageAddress(u"w"), "nothing");
    click(form.search_Button);
    EXPECT_EQ(label(), foundNothing);
}

TEST_F(SongWindow, searchesNothingWithoutAWordOrANetwork) {
    addSong();
    form.setControlsEnabled(true);
    look(u"", u"");
    click(form.search_Button);
    EXPECT_EQ(label(), u"无法搜索到匹配的曲目，请将搜索词输入完整！");
    EXPECT_EQ(form.search_Song_List.listCount(), 0);
    expectSaving(false);
    EXPECT_EQ(net.log, Texts());
    net.connectedState = 0;
    look(u"w", u"");
    click(form.search_Button);
    EXPECT_EQ(label(), u"无法执行搜索，您的电脑未连接网络！");
    expectSaving(false);
    EXPECT_EQ(net.log, Texts{u"InternetGetConnectedState"});
}

TEST_F(SongWindow, opensTheEnginesPageWithTheWordEncoded) {
    look(u"a", u"歌");
    click(form.goto_Internet);
    ASSERT_EQ(fake.shell.executions.size(), 1U);
    EXPECT_EQ(fake.shell.executions[0].verb, u"open");
    EXPECT_EQ(fake.shell.executions[0].target, songPageAddress(u"%E6%AD%8C%20%61"));
    fake.registry.removeValue(hostsKey, u"songSearch");
    click(form.goto_Internet);
    EXPECT_EQ(fake.shell.executions.size(), 1U);
}

// --- hovering -----------------------------------------------------------------------------------

TEST_F(SongWindow, tellsTheSongUnderThePointer) {
    addSong();
    addSong(u"0@@OTHER@@A@@S@@0@@WMA@@7");
    moveOver(form.search_Song_List, 0);
    EXPECT_EQ(label(), u"曲名：NAME\r\n作者：SINGER\r\n专辑：ALBUM\r\n大小：1,234,567"
                       u"（以实际为主）  格式：MP3   下载速率：98%");
    EXPECT_EQ(form.search_Song_List.toolTip(), u"双击下载该曲目，并播放");
    moveOver(form.search_Song_List, form.search_Song_List.rowHeight() * 1.5F);
    EXPECT_EQ(
        label(),
        u"曲名：OTHER\r\n作者：S\r\n专辑：A\r\n大小：（以实际为主）  格式：WMA   下载速率：7%");
    // Off the rows the text stays.
    moveOver(form.search_Song_List, form.search_Song_List.rowHeight() * 2.5F);
    EXPECT_EQ(form.search_Song_List.toolTip(), u"");
    EXPECT_THAT(toUtf8(label()), ::testing::HasSubstr("OTHER"));
    moveOver(form.search_Song_List, -100);
    EXPECT_EQ(form.search_Song_List.toolTip(), u"");
}

TEST_F(SongWindow, callsTheAlbumUnknownForWhateverIsEmpty) {
    struct Case {
        const char16_t *packed, *text;
    };
    const Case cases[] = {
        {u"0@@@@A@@S@@1@@F@@5",
         u"曲名：未知\r\n作者：S\r\n专辑：A\r\n大小：1（以实际为主）  格式：F   下载速率：5%"},
        {u"0@@N@@@@S@@1@@F@@5",
         u"曲名：N\r\n作者：S\r\n专辑：未知\r\n大小：1（以实际为主）  格式：F   下载速率：5%"},
        {u"0@@N@@A@@@@1@@F@@5",
         u"曲名：N\r\n作者：\r\n专辑：未知\r\n大小：1（以实际为主）  格式：F   下载速率：5%"},
        {u"0@@N@@A@@S@@@@F@@5",
         u"曲名：N\r\n作者：S\r\n专辑：未知\r\n大小：（以实际为主）  格式：F   下载速率：5%"},
        {u"0@@N@@A@@S@@1@@@@5",
         u"曲名：N\r\n作者：S\r\n专辑：未知\r\n大小：1（以实际为主）  格式：   下载速率：5%"},
        {u"0@@N@@A@@S@@1@@F@@",
         u"曲名：N\r\n作者：S\r\n专辑：A\r\n大小：1（以实际为主）  格式：F   下载速率：%"},
        {u"0@@N@@A@@S@@UNKNOWN@@F@@5@@MORE",
         u"曲名：N\r\n作者：S\r\n专辑：A\r\n大小：UNKNOWN（以实际为主）  格式：F   下载速率：5%"},
    };
    std::int32_t row = 0;
    for (const Case &one : cases) {
        addSong(one.packed);
        moveOver(form.search_Song_List,
                 form.search_Song_List.rowHeight() * (static_cast<Twips>(row++) + 0.5F));
        EXPECT_EQ(label(), one.text);
    }
}

TEST_F(SongWindow, endsTheProgramOverARecordWithTooFewFields) {
    addSong(u"0@@N@@A@@S@@1@@F"); // enough for fetching
    openTrack(u"/m/a.mp3");
    ::testing::internal::CaptureStderr();
    EXPECT_THROW(moveOver(form.search_Song_List, 0), fakes::ProcessEnded);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "velmora: a song's record has too few fields\n");
    EXPECT_EQ(fake.processes.endStatuses, std::vector<int>{1});
    EXPECT_EQ(media.openPath(), u"");
}

// --- closing ------------------------------------------------------------------------------------

TEST_F(SongWindow, closesByHidingAndStopsWhateverRuns) {
    clickOn(form.close);
    EXPECT_FALSE(form.visible());
    EXPECT_EQ(countLog(u"InternetCloseHandle"), 3);
    form.show();
    form.closeRequested();
    EXPECT_FALSE(form.visible());
    EXPECT_EQ(countLog(u"InternetCloseHandle"), 6);
}

TEST_F(SongWindow, scrollsByItsArrows) {
    for (int i = 0; i < 40; ++i)
        addSong();
    form.P3.on().Click();
    form.P3.on().Click();
    form.P1.on().Click();
    EXPECT_EQ(form.search_Song_List.topIndex(), 1);
}

} // namespace
} // namespace velmora
