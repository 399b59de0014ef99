// The lyric search window: what it shows, asks and fetches.

#include "base/numbers.h"
#include "lyrics/lrcForm.h"
#include "playback/MenuForm.h"
#include "playlist/playInfo_Form.h"
#include "tests/unit/network/network_fixture.h"
#include "tests/unit/pointer.h"

namespace velmora {
namespace {

const std::u16string introduction =
    u"搜索中，请填写完整，以保证搜索的准确性，本搜索由百度搜索引擎搜索提供，歌词网站提供下载支持，"
    u"播放的曲目如果搜索不到或不准确请在在此设置搜索！\r\n我们不保证您搜索到的歌词准确性！";
const std::u16string foundNothing =
    u"无法搜索到匹配的歌词，请更换搜索词重新搜索！\r\n可能服务器无法链接。";

class LyricWindow : public NetworkFixture {
protected:
    velmora::search_Lrc_Internet_Form &form = lrcWindow();

    LyricWindow() {
        files.addFolder(u"/lrc/own");
        files.addFolder(u"/m");
        app.setControl().Path_Lrc = u"/lrc/own";
        app.Main().title.setCaption(u"Velmora 2011");
        speak(0);
        form.show();
    }

    void look(std::u16string_view name, std::u16string_view singer) {
        form.songName_Text.setText(name);
        form.singer_Str.setText(singer);
    }
    std::u16string label() { return form.show_Label.caption(); }
    void expectSaving(bool enabled) {
        EXPECT_EQ(form.save.enabled(), enabled);
        EXPECT_EQ(form.anotherSave.enabled(), enabled);
    }
    // Two rows, as a search leaves them.
    void haveRows() {
        haveRow(u"http://sitea/asp/lrc.asp?1");
        haveRow(u"http://siteb/lrcdown/2.lrc");
    }
    void haveRow(std::u16string_view link) {
        form.search_Lrc_List.addItem(link);
        form.save.setEnabled(true);
        form.anotherSave.setEnabled(true);
    }
    static void click(zkButton &button) { clickOn(button); }
};

// --- opening ------------------------------------------------------------------------------------

TEST_F(LyricWindow, isToggledByTheMainWindowAndTheMenuAndPreparedWhenItShows) {
    openTrack(u"/m/Song.mp3");
    form.hide();
    haveRows();
    app.Main().search_Lrc_Internet.on().Click();
    EXPECT_TRUE(form.visible());
    EXPECT_EQ(form.search_Lrc_List.listCount(), 0);
    EXPECT_EQ(form.songName_Text.text(), u"Song");
    haveRows();
    app.Main().search_Lrc_Internet.on().Click();
    EXPECT_FALSE(form.visible());
    EXPECT_EQ(form.search_Lrc_List.listCount(), 2); // hiding prepares nothing
    app.MenuForm().search_Lrc_To_Internet.on().Click();
    EXPECT_TRUE(form.visible());
    EXPECT_EQ(form.search_Lrc_List.listCount(), 0);
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

// --- fetching -----------------------------------------------------------------------------------

TEST_F(LyricWindow, aDoubleClickFetchesTheLyricOverTheOldOneAndMatchesIt) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    files.addFile(u"/lrc/own/Song.LRC", "old");
    app.playInfo_Form().lrcInfo_Frame.setEnabled(false);
    net.setDownload(u"http://siteb/lrcdown/2.lrc", "[00:01.00]words\r\n");
    windows.atNextPump([this] { EXPECT_EQ(label(), u"正在下载..."); });
    doubleClick(form.search_Lrc_List, 1);
    EXPECT_EQ(label(), u"下载成功！");
    EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC"), "[00:01.00]words\r\n");
    EXPECT_TRUE(app.lrcForm().hasLrc);
    EXPECT_EQ(app.lrcForm().lrcPath, u"/lrc/own/Song.LRC");
    EXPECT_TRUE(app.playInfo_Form().lrcInfo_Frame.enabled());
    EXPECT_EQ(net.log, (Texts{u"DeleteUrlCacheEntryA http://siteb/lrcdown/2.lrc",
                              u"URLDownloadToFileA http://siteb/lrcdown/2.lrc /lrc/own/Song.LRC"}));
}

TEST_F(LyricWindow, aDoubleClickDuringPlayMatchesTheLyricOfWhatPlays) {
    openTrack(u"/m/Song.mp3");
    app.player().play_Sub(); // finds no lyric
    haveRows();
    ASSERT_FALSE(app.playInfo_Form().lrcInfo_Frame.enabled());
    ASSERT_FALSE(app.lrcForm().hasLrc);
    const std::size_t plays = media.commands().size();
    net.setDownload(u"http://siteb/lrcdown/2.lrc", "[00:01.00]words\r\n");
    doubleClick(form.search_Lrc_List, 1);
    EXPECT_TRUE(app.lrcForm().hasLrc);
    EXPECT_TRUE(app.playInfo_Form().lrcInfo_Frame.enabled());
    for (std::size_t i = plays; i < media.commands().size(); ++i)
        EXPECT_FALSE(startsWith(media.commands()[i].text, u"play")) << "nothing starts anew";
}

TEST_F(LyricWindow, oneLyricIsNeverTwoFiles) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    files.addFile(u"/lrc/own/song.lrc", "old");
    net.setDownload(u"http://siteb/lrcdown/2.lrc", "[00:01.00]new\r\n");
    doubleClick(form.search_Lrc_List, 1);
    EXPECT_EQ(files.contents(u"/lrc/own/song.lrc"), "[00:01.00]new\r\n");
    EXPECT_FALSE(files.hasFile(u"/lrc/own/Song.LRC"));
}

TEST_F(LyricWindow, aLyricThatCouldNotBeReadIsKeptBesideTheOneThatReplacesIt) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    net.setDownload(u"http://sitea/asp/lrc.asp?1", "[00:01.00]new\r\n");
    const std::string lossy = "[00:01]\xFF words\n";
    const std::string gbk = "[00:01]\xD4\xC2\xC1\xC1\n";
    form.search_Lrc_List.userClicked(0, 0, false);
    for (int fetch = 0; fetch < 2; ++fetch) {
        files.addFile(u"/lrc/own/Song.LRC", lossy);
        click(form.save);
        EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC"), "[00:01.00]new\r\n");
    }
    EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC.old"), lossy);
    // One that could be read goes without a word, whatever its page.
    files.addFile(u"/m/chosen.lrc", gbk);
    fake.dialogs.expectSave(u"/m/chosen.lrc");
    click(form.anotherSave);
    EXPECT_EQ(files.contents(u"/m/chosen.lrc"), "[00:01.00]new\r\n");
    EXPECT_EQ(files.files(), (Texts{u"/lrc/own/Song.LRC", u"/lrc/own/Song.LRC.old", u"/m/Song.mp3",
                                    u"/m/chosen.lrc"}));
}

TEST_F(LyricWindow, fetchesNothingOverALyricThatCouldBeNeitherReadNorKept) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    files.addFile(u"/lrc/own/Song.LRC", "[00:01]words");
    files.setUnreadable(u"/lrc/own/Song.LRC");
    doubleClick(form.search_Lrc_List, 0);
    EXPECT_EQ(label(), u"无法下载改歌词，请选择其他链接！");
    EXPECT_EQ(countLog(u"URLDownloadToFileA"), 0);
    EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC"), "[00:01]words");
}

TEST_F(LyricWindow, theLyricOfATrackIsNotShownToTheNext) {
    openTrack(u"/m/Song.mp3");
    app.player().play_Sub();
    haveRows();
    net.setDownload(u"http://siteb/lrcdown/2.lrc", "[00:01.00]words\r\n");
    windows.onPump = [&] { app.player().nowPlay_File = u"/m/Next.mp3"; };
    doubleClick(form.search_Lrc_List, 1);
    windows.onPump = {};
    EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC"), "[00:01.00]words\r\n");
    EXPECT_FALSE(app.lrcForm().hasLrc);
}

TEST_F(LyricWindow, fetchesTheRowThatWasChosenAheadOfTheDialog) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    form.search_Lrc_List.userClicked(0, 0, false);
    fake.dialogs.expectSave(u"/m/chosen.lrc", [&] {
        form.search_Lrc_List.userClicked(1, 0, false);
        app.player().nowPlay_File = u"/m/Next.mp3";
    });
    net.setDownload(u"http://sitea/asp/lrc.asp?1", "[00:01.00]first\r\n");
    click(form.anotherSave);
    EXPECT_EQ(files.contents(u"/m/chosen.lrc"), "[00:01.00]first\r\n");
    EXPECT_EQ(countLog(u"URLDownloadToFileA"), 1);
}

TEST_F(LyricWindow, fetchesTheRowThatWasPressedThoughTheListIsAnotherBeforeTheFetch) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    net.setDownload(u"http://sitea/asp/lrc.asp?1", "[00:01.00]first\r\n");
    for (const bool isPressedTwice : {true, false}) {
        form.search_Lrc_List.clear();
        haveRows();
        form.search_Lrc_List.userClicked(0, 0, false);
        windows.atNextPump([&] {
            form.search_Lrc_List.clear();
            haveRow(u"http://siteb/lrcdown/2.lrc");
            form.search_Lrc_List.userClicked(0, 0, false);
        });
        if (isPressedTwice)
            form.search_Lrc_List.userDoubleClicked(0);
        else
            click(form.save);
        EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC"), "[00:01.00]first\r\n");
        files.remove(u"/lrc/own/Song.LRC");
    }
    EXPECT_EQ(countLog(u"URLDownloadToFileA"), 2);
}

TEST_F(LyricWindow, aLyricThatCameBeforeTheFetchAndCouldNotBeReadIsKept) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    const std::string lossy = "[00:01]\xFF words\n";
    windows.atNextPump([&] { files.addFile(u"/lrc/own/Song.LRC", lossy); });
    net.setDownload(u"http://sitea/asp/lrc.asp?1", "[00:01.00]new\r\n");
    form.search_Lrc_List.userClicked(0, 0, false);
    click(form.save);
    EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC"), "[00:01.00]new\r\n");
    EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC.old"), lossy);
}

TEST_F(LyricWindow, anEmptyListIsNotDoubleClicked) {
    openTrack(u"/m/Song.mp3");
    form.show_Label.setCaption(u"before");
    form.search_Lrc_List.userDoubleClicked(-1);
    EXPECT_EQ(label(), u"before");
    EXPECT_TRUE(net.log.empty());
    EXPECT_TRUE(files.changes().empty());
}

TEST_F(LyricWindow, aDoubleClickDoesNotMatchOnceTheTrackHasEnded) {
    openTrack(u"/m/Song.mp3");
    app.player().play_Sub();
    haveRows();
    app.setControl().isAutoPlay = 1; // ended stays ended
    media.reachEnd();
    net.setDownload(u"http://siteb/lrcdown/2.lrc", "[00:01.00]words\r\n");
    doubleClick(form.search_Lrc_List, 1);
    EXPECT_EQ(label(), u"下载成功！");
    EXPECT_FALSE(app.lrcForm().hasLrc);
}

TEST_F(LyricWindow, fetchesTheRowsAddressInLowerCase) {
    openTrack(u"/m/Song.mp3");
    haveRow(u"HTTP://SiteA/X");
    net.setDownload(u"http://sitea/x", "[00:01.00]words\r\n");
    form.search_Lrc_List.userClicked(0, 0, false);
    click(form.save);
    EXPECT_EQ(label(), u"下载成功！");
}

TEST_F(LyricWindow, savingFetchesWithoutMatching) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    net.setDownload(u"http://sitea/asp/lrc.asp?1", "[00:01.00]words\r\n");
    form.search_Lrc_List.userClicked(0, 0, false);
    click(form.save);
    EXPECT_EQ(label(), u"下载成功！");
    EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC"), "[00:01.00]words\r\n");
    EXPECT_FALSE(app.lrcForm().hasLrc);
}

TEST_F(LyricWindow, saysThatItFetchesInEachOfItsWays) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    net.setDownload(u"http://sitea/asp/lrc.asp?1", "[00:01.00]words\r\n");
    Texts meanwhile;
    const auto watch = [&] {
        windows.atNextPump([&] { meanwhile.push_back(label()); }); // ahead of the request
    };
    watch();
    doubleClick(form.search_Lrc_List, 0);
    watch();
    click(form.save);
    watch();
    fake.dialogs.expectSave(u"/m/chosen.lrc");
    click(form.anotherSave);
    EXPECT_EQ(meanwhile, Texts(3, u"正在下载..."));
}

TEST_F(LyricWindow, savingNeedsAChosenRow) {
    haveRows();
    for (zkButton *button : {&form.save, &form.anotherSave}) {
        windows.expectMsgBox(boxOf(u"未选择指定下载链接！", platform::MsgBoxIcon::Critical,
                                   app.Language().msg_Error),
                             platform::MsgBoxResult::Ok);
        form.show_Label.setCaption(u"before");
        click(*button);
        EXPECT_EQ(label(), u"before");
    }
}

TEST_F(LyricWindow, saysWhatCannotBeFetchedAndKeepsTheOldLyric) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    files.addFile(u"/lrc/own/Song.LRC", "old");
    doubleClick(form.search_Lrc_List, 1);
    EXPECT_EQ(label(), u"无法下载改歌词，请选择其他链接！");
    EXPECT_EQ(files.contents(u"/lrc/own/Song.LRC"), "old");
    EXPECT_FALSE(app.lrcForm().hasLrc);
    form.show_Label.setCaption(u"");
    click(form.save);
    EXPECT_EQ(label(), u"无法下载改歌词，请选择其他链接！");
}

TEST_F(LyricWindow, saysWhenTheFolderRefuses) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    form.search_Lrc_List.userClicked(0, 0, false);
    files.setReadOnly(u"/lrc/own");
    click(form.save);
    EXPECT_EQ(label(), u"歌词保存目录无法创建文件！");
    form.show_Label.setCaption(u"");
    doubleClick(form.search_Lrc_List, 0);
    EXPECT_EQ(label(), u"歌词保存目录无法创建文件！");
    fake.dialogs.expectSave(u"/lrc/own/x.lrc");
    click(form.anotherSave);
    EXPECT_EQ(label(), u"您所选择的地址目录无法创建文件！");
    app.setControl().Path_Lrc = u"";
    click(form.save);
    EXPECT_EQ(label(), u"歌词保存目录无法创建文件！");
    EXPECT_EQ(net.log, Texts());
}

TEST_F(LyricWindow, savesWhereTheUserSays) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    form.search_Lrc_List.userClicked(0, 0, false);
    fake.dialogs.expectSave(u"/m/Chosen name.lrc");
    net.setDownload(u"http://sitea/asp/lrc.asp?1", "[00:01.00]words\r\n");
    click(form.anotherSave);
    EXPECT_EQ(label(), u"下载成功！");
    EXPECT_EQ(files.contents(u"/m/Chosen name.lrc"), "[00:01.00]words\r\n");
    EXPECT_FALSE(app.lrcForm().hasLrc);
    ASSERT_EQ(fake.dialogs.files.size(), 1U);
    const platform::OPENFILENAME &asked = fake.dialogs.files[0];
    EXPECT_EQ(asked.title, u"选择要保存歌词同步文件的地址 - Velmora 2011");
    EXPECT_EQ(untilNul(asked.file), u"Song");
    EXPECT_EQ(asked.filter, std::u16string(u"歌词同步文件（*.LRC）\0*.LRC\0", 20));
}

TEST_F(LyricWindow, savesNothingWhenTheUserCancels) {
    openTrack(u"/m/Song.mp3");
    haveRows();
    form.search_Lrc_List.userClicked(0, 0, false);
    form.show_Label.setCaption(u"before");
    fake.dialogs.expectSave(std::nullopt);
    click(form.anotherSave);
    EXPECT_EQ(label(), u"before");
    EXPECT_EQ(net.log, Texts());
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
    form.close.on().Click();
    EXPECT_FALSE(form.visible());
    form.show();
    form.closeRequested();
    EXPECT_FALSE(form.visible());
}

} // namespace
} // namespace velmora
