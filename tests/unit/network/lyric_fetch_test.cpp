// Fetching a lyric from the window: what is written where, kept and matched.

#include "tests/unit/network/lyric_window_fixture.h"

namespace velmora {
namespace {

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
    EXPECT_EQ(asked.owner, form.hWnd());
    EXPECT_EQ(asked.initialDirectory, u"") << "where the last one was";
    EXPECT_EQ(asked.defaultExtension, u"lrc");
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

} // namespace
} // namespace velmora
