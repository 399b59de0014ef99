// The lyric search window: what it shows and asks.

#include "network/searchWindow.h"
#include "tests/unit/network/lyric_window_fixture.h"

namespace velmora {
namespace {

const std::u16string introduction =
    u"搜索中，请填写完整，以保证搜索的准确性，本搜索由百度搜索引擎搜索提供，歌词网站提供下载支持，"
    u"播放的曲目如果搜索不到或不准确请在在此设置搜索！\r\n我们不保证您搜索到的歌词准确性！";
const std::u16string foundNothing =
    u"无法搜索到匹配的歌词，请更换搜索词重新搜索！\r\n可能服务器无法链接。";

// --- opening ------------------------------------------------------------------------------------

TEST_F(LyricWindow, isToggledByTheMainWindowAndTheMenuAndPreparedWhenItShows) {
    openTrack(u"/m/Song.mp3");
    form.hide();
    haveRows();
    clickOn(app.Main().search_Lrc_Internet);
    EXPECT_TRUE(form.visible());
    EXPECT_EQ(form.search_Lrc_List.listCount(), 0);
    EXPECT_EQ(form.songName_Text.text(), u"Song");
    haveRows();
    clickOn(app.Main().search_Lrc_Internet);
    EXPECT_FALSE(form.visible());
    EXPECT_EQ(form.search_Lrc_List.listCount(), 2); // hiding prepares nothing
    app.MenuForm().search_Lrc_To_Internet.on().Click();
    EXPECT_TRUE(form.visible());
    EXPECT_EQ(form.search_Lrc_List.listCount(), 0);
}

TEST_F(LyricWindow, canWriteNothingBesideANameWithoutAFolder) {
    files.addFolder(u"/songs");
    EXPECT_TRUE(canWriteBeside(app, u"/songs/a.lrc"));
    EXPECT_FALSE(canWriteBeside(app, u"a.lrc"));
}

TEST_F(LyricWindow, triesHostsAnewThatDidNotAnswerWithEachSearchAndEachFetch) {
    openTrack(u"/m/Song.mp3");
    look(u"name", u"singer");
    net.triedAnew = 0;
    click(form.search_Button);
    EXPECT_EQ(net.triedAnew, 1);
    haveRows();
    form.search_Lrc_List.userClicked(0, 0, false);
    click(form.save);
    EXPECT_EQ(net.triedAnew, 2);
}

TEST_F(LyricWindow, looksForTheFileNameOfATrackWithoutATag) {
    openTrack(u"/m/Some song.mp3");
    look(u"old", u"old");
    form.save.setEnabled(true);
    form.anotherSave.setEnabled(true);
    form.startLoad();
    EXPECT_EQ(form.songName_Text.text(), u"Some song");
    EXPECT_EQ(form.singer_Str.text(), u"");
    EXPECT_EQ(label(), introduction);
    expectSaving(false);
}

TEST_F(LyricWindow, looksForTheFileNameAloneThoughAnEarlierTracksTagIsStillShown) {
    openTrack(u"/m/Some song.mp3");
    app.another_PlayInfo_Form().playInfo_TitleText.setText(u"earlier");
    app.another_PlayInfo_Form().playInfo_ArtistText.setText(u"earlier");
    form.startLoad();
    EXPECT_EQ(form.songName_Text.text(), u"Some song");
    EXPECT_EQ(form.singer_Str.text(), u"");
}

TEST_F(LyricWindow, looksForWhatTheTagSays) {
    openTrack(u"/m/a.mp3", "Title", "Artist");
    form.startLoad();
    EXPECT_EQ(form.songName_Text.text(), u"Title");
    EXPECT_EQ(form.singer_Str.text(), u"Artist");
    openTrack(u"/m/b.mp3", "", "Other");
    form.startLoad();
    EXPECT_EQ(form.songName_Text.text(), u"b"); // in place of an empty title
    EXPECT_EQ(form.singer_Str.text(), u"Other");
}

TEST_F(LyricWindow, takesTheFontOfThePlayList) {
    EXPECT_EQ(form.search_Lrc_List.font().name(), app.playList_Form().playList_Item.font().name());
    EXPECT_EQ(form.search_Lrc_List.font().size(), app.playList_Form().playList_Item.font().size());
    EXPECT_EQ(form.visibleRows, 11);
    EXPECT_EQ(form.windowKey(), Colour{0xC7C7C7});
    Velmora other(fake.bundle());
    forms::ListBox &list = other.playList_Form().playList_Item;
    forms::Font large = list.font();
    large.setSize(20);
    list.setFont(large);
    EXPECT_EQ(other.search_Lrc_Internet_Form().search_Lrc_List.font().size(), 20);
}

// --- searching ----------------------------------------------------------------------------------

TEST_F(LyricWindow, asksForBothWordsNameFirst) {
    struct Case {
        const char16_t *name, *singer, *word;
    };
    for (const Case &one : {Case{u"name", u"", u"name"}, Case{u"name", u"singer", u"name singer"},
                            Case{u"", u"singer", u"singer"}}) {
        look(one.name, one.singer);
        net.setPage(lyricAddress(one.word), "nothing");
        click(form.search_Button);
        EXPECT_EQ(countLog(u"DeleteUrlCacheEntryA " + lyricAddress(one.word)), 1);
    }
}

TEST_F(LyricWindow, saysWhatItFound) {
    look(u"w", u"");
    const std::string one = link("http://sitea/asp/lrc.asp?1");
    net.setPage(lyricAddress(u"w"), one + one + one);
    haveRows();
    net.meanwhile = [this] { EXPECT_EQ(label(), u"正在搜索..."); };
    click(form.search_Button);
    EXPECT_EQ(form.search_Lrc_List.listCount(), 3);
    EXPECT_EQ(label(), u"搜索到可提供下载的歌词：3条。\r\n双击歌词地址下载，并与播放曲目匹配！");
    expectSaving(true);
}

TEST_F(LyricWindow, offersToSaveTheOnlyOneThatItFound) {
    look(u"w", u"");
    net.setPage(lyricAddress(u"w"), link("http://sitea/asp/lrc.asp?1"));
    click(form.search_Button);
    EXPECT_EQ(form.search_Lrc_List.listCount(), 1);
    EXPECT_EQ(label(), u"搜索到可提供下载的歌词：1条。\r\n双击歌词地址下载，并与播放曲目匹配！");
    expectSaving(true);
}

TEST_F(LyricWindow, saysThatItFoundNothingOrReachedNobody) {
    look(u"w", u"");
    form.save.setEnabled(true);
    form.anotherSave.setEnabled(true);
    haveRows();
    click(form.search_Button); // refused
    EXPECT_EQ(label(), foundNothing);
    EXPECT_EQ(form.search_Lrc_List.listCount(), 0);
    expectSaving(false);
    net.setPage(lyricAddress(u"w"), "nothing");
    form.save.setEnabled(true);
    click(form.search_Button);
    EXPECT_EQ(label(), foundNothing);
    expectSaving(false);
}

TEST_F(LyricWindow, searchesNothingWithoutAWord) {
    haveRows();
    look(u"", u"");
    form.save.setEnabled(true);
    click(form.search_Button);
    EXPECT_EQ(label(), u"无法搜索到匹配的歌词，请将搜索词输入完整！");
    EXPECT_EQ(form.search_Lrc_List.listCount(), 0);
    EXPECT_TRUE(form.save.enabled()); // left alone here
    EXPECT_EQ(net.log, Texts());
}

TEST_F(LyricWindow, searchesNothingWithoutANetwork) {
    look(u"w", u"");
    net.connectedState = 0;
    form.save.setEnabled(true);
    form.anotherSave.setEnabled(true);
    click(form.search_Button);
    EXPECT_EQ(label(), u"无法执行搜索，您的电脑未连接网络！");
    expectSaving(false);
    EXPECT_EQ(net.log, Texts{u"InternetGetConnectedState"});
}

TEST_F(LyricWindow, staysUsableDuringASearch) {
    look(u"w", u"");
    net.setPage(lyricAddress(u"w"), "nothing");
    net.meanwhile = [this] {
        EXPECT_TRUE(form.search_Button.enabled());
        EXPECT_TRUE(form.search_Lrc_List.enabled());
    };
    click(form.search_Button);
    form.hide();
    click(form.search_Button);
}

// --- the rest -----------------------------------------------------------------------------------

TEST_F(LyricWindow, opensTheEnginesPageWithTheWordEncoded) {
    look(u"a", u"歌");
    click(form.goto_Internet);
    EXPECT_EQ(fake.shell.executions,
              (std::vector<fakes::FakeShell::Execution>{
                  {form.hWnd(), u"open", lyricAddress(u"%61%20%E6%AD%8C"), 1}}));
    fake.shell.executions.clear();
    fake.registry.removeValue(hostsKey, u"lrcSearch");
    click(form.goto_Internet);
    EXPECT_TRUE(fake.shell.executions.empty());
}

TEST_F(LyricWindow, tellsTheAddressUnderThePointer) {
    haveRows();
    const Twips height = form.search_Lrc_List.rowHeight();
    const auto tip = [&](Twips y) {
        moveOver(form.search_Lrc_List, y);
        return form.search_Lrc_List.toolTip();
    };
    EXPECT_EQ(tip(0), u"http://sitea/asp/lrc.asp?1  双击下载并匹配当前播放歌词");
    EXPECT_EQ(tip(height * 1.5F), u"http://siteb/lrcdown/2.lrc  双击下载并匹配当前播放歌词");
    EXPECT_EQ(tip(height * 2.5F), u"");
    EXPECT_EQ(tip(0), u"http://sitea/asp/lrc.asp?1  双击下载并匹配当前播放歌词");
    EXPECT_EQ(tip(-height), u"");
}

TEST_F(LyricWindow, tellsTheAddressOfAScrolledList) {
    for (int i = 0; i < 40; ++i)
        form.search_Lrc_List.addItem(decimal(i));
    form.search_Lrc_List.setTopIndex(20);
    moveOver(form.search_Lrc_List, form.search_Lrc_List.rowHeight() * 1.5F);
    EXPECT_EQ(form.search_Lrc_List.toolTip(), u"21  双击下载并匹配当前播放歌词");
}

TEST_F(LyricWindow, scrollsByItsArrowsAndThumb) {
    for (int i = 0; i < 40; ++i)
        form.search_Lrc_List.addItem(u"x");
    form.P3.on().Click();
    form.P3.on().Click();
    form.P1.on().Click();
    EXPECT_EQ(form.search_Lrc_List.topIndex(), 1);
    form.P2.on().MouseDown({forms::leftButton, 0, 0, 0});
    EXPECT_EQ(form.P2.tag(), u"1");
    form.P2.on().MouseMove({forms::leftButton, 0, 0, 9000});
    EXPECT_EQ(form.search_Lrc_List.topIndex(), 40 - 11);
}

TEST_F(LyricWindow, closesByHiding) {
    clickOn(form.close);
    EXPECT_FALSE(form.visible());
    form.show();
    form.closeRequested();
    EXPECT_FALSE(form.visible());
}

} // namespace
} // namespace velmora
