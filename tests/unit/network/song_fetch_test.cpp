// Fetching a song: the three ways, the questions, the progress, every end.

#include "lyrics/lrcForm.h"
#include "playback/startLoad_Form.h"
#include "playlist/Search.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/unit/network/song_window_fixture.h"

namespace velmora {
namespace {

const std::u16string question =
    u"该曲目文件已存在，是否覆盖？如果指定文件是当前播放的文件，将停止当前播放的曲目！";
const std::u16string failed = u"曲目网络搜索 - 无法下载改曲目，请选择其他链接！";

class SongFetch : public SongWindowFixture {
protected:
    void expectQuestion(platform::MsgBoxResult answer) {
        windows.expectMsgBox(
            {question, platform::MsgBoxButtons::YesNo, platform::MsgBoxIcon::None, u"Velmora 2011"},
            answer);
    }
    // Every title there was, in order.
    Texts headings;
    void watchHeadings() {
        windows.onPump = [this] { headings.push_back(heading()); };
    }
};

// --- the three ways ------------------------------------------------------------------------------

TEST_F(SongFetch, aDoubleClickFetchesIntoTheCacheAndPlays) {
    addSong();
    playable(cached);
    answerWith("sound");
    fetchByDoubleClick();
    EXPECT_EQ(files.contents(cached), "sound");
    EXPECT_EQ(heading(), u"曲目网络搜索 - 下载成功！");
    EXPECT_EQ(app.player().nowPlay_File, cached);
    EXPECT_EQ(app.player().get_PlayStatus(), statusPlaying);
    EXPECT_EQ(rowsOf(app.playList_Form().List1), Texts{cached});
    EXPECT_EQ(form.wd.URL, u"http://songs/a/b.mp3"); // the lower-cased link
    EXPECT_EQ(form.wd.FileName, cached);
    expectIdle();
}

TEST_F(SongFetch, savingFetchesIntoTheCacheAlone) {
    addSong();
    answerWith("sound");
    choose(0);
    click(form.save);
    EXPECT_EQ(files.contents(cached), "sound");
    EXPECT_EQ(heading(), u"曲目网络搜索 - 下载成功！");
    EXPECT_EQ(rows(), 0);
    expectIdle();
}

TEST_F(SongFetch, savesWhereTheUserSays) {
    addSong();
    answerWith("sound");
    choose(0);
    fake.dialogs.expectSave(u"/m/Mine?.mp3"); // the user's own name is not tested
    click(form.anotherSave);
    EXPECT_EQ(files.contents(u"/m/Mine?.mp3"), "sound");
    EXPECT_EQ(rows(), 0);
    ASSERT_EQ(fake.dialogs.files.size(), 1U);
    const platform::OPENFILENAME &asked = fake.dialogs.files[0];
    EXPECT_EQ(asked.title, u"选择要保存曲目的地址 - Velmora 2011");
    EXPECT_EQ(untilNul(asked.file), u"SINGER NAME.MP3");
    EXPECT_EQ(asked.filter, std::u16string(u"所有文件（*.*）\0*.*\0", 14));
    EXPECT_EQ(asked.owner, form.hWnd());
}

TEST_F(SongFetch, savesNothingWhenTheUserCancels) {
    addSong();
    choose(0);
    fake.dialogs.expectSave(std::nullopt);
    click(form.anotherSave);
    EXPECT_EQ(heading(), u"曲目网络搜索");
    EXPECT_EQ(net.log, Texts());
}

TEST_F(SongFetch, savingNeedsAChosenRow) {
    addSong();
    for (zkButton *button : {&form.save, &form.anotherSave}) {
        windows.expectMsgBox(boxOf(u"未选择指定下载链接！", platform::MsgBoxIcon::Critical,
                                   app.Language().msg_Error),
                             platform::MsgBoxResult::Ok);
        form.title.setCaption(u"before");
        click(*button);
        EXPECT_EQ(heading(), u"before");
    }
}

TEST_F(SongFetch, aDoubleClickWithoutARowDoesNothing) {
    form.search_Song_List.userDoubleClicked(-1);
    EXPECT_EQ(net.log, Texts());
    EXPECT_TRUE(fake.processes.endStatuses.empty());
}

TEST_F(SongFetch, saysAtOnceThatItFetches) {
    addSong();
    choose(0);
    const int before = fakes::FakeWindows::windowOf(form)->refreshes;
    fake.dialogs.expectSave(std::nullopt);
    click(form.anotherSave);
    EXPECT_EQ(fakes::FakeWindows::windowOf(form)->refreshes, before + 1);
    files.setReadOnly(u"/data/cache");
    click(form.save);
    EXPECT_EQ(fakes::FakeWindows::windowOf(form)->refreshes, before + 2);
}

TEST_F(SongFetch, triesHostsAnewThatDidNotAnswerAsEachSearchDoes) {
    look(u"name", u"singer");
    net.triedAnew = 0;
    click(form.search_Button);
    EXPECT_EQ(net.triedAnew, 1);
    addSong();
    choose(0);
    answerWith("sound");
    click(form.save);
    EXPECT_EQ(net.triedAnew, 2);
}

TEST_F(SongFetch, fetchesTheRowThatItAskedAboutThoughAnotherIsChosenMeanwhile) {
    addSong();
    addSong(u"0@@OTHER@@A@@S@@1@@MP3", u"HTTP://SONGS/OTHER");
    choose(0);
    files.addFile(u"/data/cache/SINGER NAME.MP3", "old");
    windows.expectMsgBox(
        {u"该曲目文件已存在，是否覆盖？如果指定文件是当前播放的文件，将停止当前播放"
         u"的曲目！",
         platform::MsgBoxButtons::YesNo, platform::MsgBoxIcon::None, u"Velmora 2011"},
        platform::MsgBoxResult::Yes, [&] { choose(1); });
    answerWith("sound");
    click(form.save);
    EXPECT_EQ(form.wd.URL, u"http://songs/a/b.mp3");
    EXPECT_EQ(files.contents(u"/data/cache/SINGER NAME.MP3"), "sound");
}

// --- names ---------------------------------------------------------------------------------------

TEST_F(SongFetch, namesTheFileByTheRecordOrTheLink) {
    struct Case {
        const char16_t *packed, *link, *name;
    };
    for (const Case &one : {Case{u"0@@NAME@@A@@SINGER@@1@@MP3", u"HTTP://H/X", u"SINGER NAME.MP3"},
                            Case{u"0@@NAME@@A@@@@1@@MP3", u"HTTP://H/X", u"NAME.MP3"},
                            Case{u"0@@NAME@@A@@S@@1@@", u"HTTP://H/X", u"S NAME."},
                            Case{u"0@@@@A@@S@@1@@MP3", u"HTTP://H/X", u"S .MP3"},
                            Case{u"0@@@@A@@@@1@@MP3", u"HTTP://H/X", u".MP3"},
                            Case{u"0@@@@A@@S@@1@@", u"HTTP://H/P/LAST.MP3", u"LAST.MP3"}}) {
        const std::int32_t row = form.search_Song_List.listCount();
        addSong(one.packed, one.link);
        answerWith("sound");
        choose(row);
        click(form.save);
        EXPECT_TRUE(files.hasFile(std::u16string(u"/data/cache/") + one.name)) << toUtf8(one.name);
    }
}

TEST_F(SongFetch, refusesNamesThatAreNoneOrLeaveTheFolder) {
    std::u16string withNul = u"0@@A?B@@A@@S@@1@@MP3";
    withNul[4] = u'\0';
    const std::u16string longName(219, u'X');
    struct Case {
        std::u16string packed;
        const char16_t *link;
    };
    for (const Case &one :
         {Case{u"0@@../NAME@@A@@S@@1@@MP3", u"HTTP://H/X"}, Case{u"0@@A/B@@A@@S@@1@@MP3", u"X"},
          Case{u"0@@C:\\X@@A@@S@@1@@MP3", u"X"}, Case{u"0@@A?@@A@@S@@1@@MP3", u"X"},
          Case{withNul, u"X"}, Case{u"0@@" + longName + u"@@A@@@@1@@MP3", u"X"}, // 223 units
          Case{u"0@@@@A@@S@@1@@", u"HTTP://H/X.MP3?Q"}, Case{u"0@@@@A@@S@@1@@", u"HTTP://H/"}}) {
        const std::int32_t row = form.search_Song_List.listCount();
        addSong(one.packed, one.link);
        choose(row);
        click(form.save);
        EXPECT_EQ(heading(), u"曲目网络搜索 - 保存的文件名不正确！") << toUtf8(one.packed);
        form.title.setCaption(u"");
    }
    EXPECT_EQ(net.log, Texts());
    EXPECT_TRUE(form.search_Song_List.enabled());
    addSong(u"0@@" + longName.substr(1) + u"@@A@@@@1@@MP3"); // 222 units
    answerWith("sound");
    choose(form.search_Song_List.listCount() - 1);
    click(form.save);
    EXPECT_EQ(heading(), u"曲目网络搜索 - 下载成功！");
}

TEST_F(SongFetch, survivesNamesOfDotsAlone) {
    addSong(u"0@@.@@A@@@@1@@");
    files.addFolder(u"/data/cache/.."); // as every folder has it
    answerWith("sound");
    choose(0);
    click(form.save); // the file "..": no file can be made there
    expectIdle();
    EXPECT_EQ(files.files(), Texts());
}

TEST_F(SongFetch, endsTheProgramOverARecordWithTooFewFields) {
    for (const std::u16string_view packed : {u"0@@N@@A@@S@@1", u"", u"@@@@@@@@"}) {
        fake.processes.endStatuses.clear();
        const std::int32_t row = form.search_Song_List.listCount();
        addSong(packed);
        choose(row);
        ::testing::internal::CaptureStderr();
        EXPECT_THROW(click(form.save), fakes::ProcessEnded);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  "velmora: a song's record has too few fields\n");
        EXPECT_EQ(fake.processes.endStatuses, std::vector<int>{1});
        EXPECT_EQ(net.log, Texts());
    }
}

// --- refusals ------------------------------------------------------------------------------------

TEST_F(SongFetch, saysWhenTheFolderRefuses) {
    addSong();
    choose(0);
    files.setReadOnly(u"/data/cache");
    const std::u16string refused = u"曲目网络搜索 - 歌曲缓存目录无法创建文件！";
    click(form.save);
    EXPECT_EQ(heading(), refused);
    form.title.setCaption(u"");
    fetchByDoubleClick();
    EXPECT_EQ(heading(), refused);
    form.title.setCaption(u"");
    fake.dialogs.expectSave(u"/data/cache/x.mp3"); // also for a folder that the user chose
    click(form.anotherSave);
    EXPECT_EQ(heading(), refused);
    EXPECT_EQ(net.log, Texts());
}

TEST_F(SongFetch, testsTheFolderAheadOfTheName) {
    addSong(u"0@@A?@@A@@S@@1@@MP3");
    choose(0);
    files.setReadOnly(u"/data/cache");
    click(form.save);
    EXPECT_EQ(heading(), u"曲目网络搜索 - 歌曲缓存目录无法创建文件！");
}

TEST_F(SongFetch, asksBeforeItReplacesAFile) {
    addSong();
    choose(0);
    files.addFile(cached, "old");
    expectQuestion(platform::MsgBoxResult::No);
    click(form.save);
    EXPECT_EQ(heading(), u"曲目网络搜索");
    EXPECT_EQ(files.contents(cached), "old");
    EXPECT_EQ(net.log, Texts());
    expectQuestion(platform::MsgBoxResult::Yes);
    answerWith("new");
    click(form.save);
    EXPECT_EQ(files.contents(cached), "new");
}

TEST_F(SongFetch, closesTheMediumThatItReplaces) {
    addSong();
    choose(0);
    addTrack(cached);
    openAndPlay(cached);
    expectQuestion(platform::MsgBoxResult::No);
    click(form.save);
    EXPECT_EQ(app.player().get_PlayStatus(), statusPlaying);
    expectQuestion(platform::MsgBoxResult::Yes);
    answerWith("new");
    net.meanwhile = [this] { EXPECT_EQ(app.player().get_Length(), 0); };
    click(form.save);
    EXPECT_EQ(app.player().get_Length(), 0); // and it does not go on afterwards
}

TEST_F(SongFetch, leavesAnotherMediumAlone) {
    addSong();
    choose(0);
    files.addFile(cached, "old");
    openAndPlay(addTrack(u"/m/other.mp3"));
    expectQuestion(platform::MsgBoxResult::Yes);
    answerWith("new");
    click(form.save);
    EXPECT_EQ(app.player().get_PlayStatus(), statusPlaying);
}

TEST_F(SongFetch, saysInTheEndThatItFailedWhateverTheErrorSaid) {
    addSong();
    choose(0);
    watchHeadings();
    click(form.save); // refused
    EXPECT_EQ(heading(), failed);
    expectIdle();
    answerWith("page", "text/html");
    form.wd.Error = [this, before = form.wd.Error](std::int32_t code) {
        before(code);
        headings.push_back(heading());
    };
    click(form.save);
    EXPECT_EQ(headings, Texts{u"曲目网络搜索 - 类型不匹配..."});
    EXPECT_EQ(heading(), failed);
    EXPECT_FALSE(files.hasFile(cached));
}

// --- during a transfer ---------------------------------------------------------------------------

TEST_F(SongFetch, showsWhatItFetchesAndHowFar) {
    addSong();
    choose(0);
    answerWith(std::string(3000, 's'));
    net.meanwhile = [this] { fake.clock.sinceMidnight += 0.5; };
    std::vector<Texts> infos;
    std::vector<double> bars;
    windows.onPump = [&] {
        infos.push_back(downInfo());
        bars.push_back(form.zkProgress1.value());
        EXPECT_EQ(heading(), u"曲目网络搜索 - 开始接收数据...");
        EXPECT_TRUE(form.DownFileBox.visible());
        EXPECT_FALSE(form.search_Song_List.enabled());
        EXPECT_FALSE(form.search_Button.enabled());
        expectSaving(false);
        EXPECT_TRUE(form.goto_Internet.enabled());
    };
    click(form.save);
    windows.onPump = nullptr;
    ASSERT_EQ(infos.size(), 3U);
    const Texts head = {u"文件名：SINGER NAME.MP3", u"存放到：" + cached,
                        u"来  源：http://songs/a/b.mp3"};
    const auto expectInfo = [&](std::size_t packet, const char16_t *progress,
                                const char16_t *speed) {
        Texts expected = head;
        expected.emplace_back(progress);
        expected.emplace_back(speed);
        EXPECT_EQ(infos[packet], expected);
    };
    expectInfo(0, u"下载进度：1.00 KB of 2.92 KB (34.13%)", u"下载速度：2.00 KB /s");
    expectInfo(1, u"下载进度：2.00 KB of 2.92 KB (68.27%)", u"下载速度：2.00 KB /s");
    expectInfo(2, u"下载进度：2.92 KB of 2.92 KB (100%)", u"下载速度：1.95 KB /s");
    EXPECT_EQ(bars, (std::vector<double>{34, 68, 100}));
    EXPECT_EQ(downInfo(), (Texts{u"", u"", u"", u"", u""}));
}

TEST_F(SongFetch, countsAnUnknownOrOddSizeAsAllOrNothing) {
    const auto shown = [this](const std::string &length) {
        addSong(u"0@@N@@A@@S@@1@@" + fromAscii(length));
        choose(form.search_Song_List.listCount() - 1);
        net.respond({"HTTP/1.1 200 OK" + std::string(1, '\0') + "Content-Type: audio/x" +
                         std::string(1, '\0') + "Content-Length: " + length + std::string(1, '\0'),
                     "sound", std::nullopt});
        std::u16string text;
        windows.onPump = [&] { text = form.downInfo_3.caption(); };
        click(form.save);
        windows.onPump = nullptr;
        return text;
    };
    EXPECT_EQ(shown("none"), u"下载进度：5 bytes of 1 bytes (100%)");
    EXPECT_EQ(shown("2000"), u"下载进度：5 bytes of 1.95 KB (0.25%)");
    EXPECT_EQ(shown("-7"), u"下载进度：5 bytes of 3.99 GB (0%)");
}

TEST_F(SongFetch, sayEachStageInItsTitle) {
    addSong();
    choose(0);
    answerWith("sound");
    form.wd.Status = [this, before = form.wd.Status](std::int32_t code) {
        before(code);
        headings.push_back(heading());
    };
    click(form.save);
    EXPECT_EQ(headings, (Texts{u"曲目网络搜索 - 开始会话...", u"曲目网络搜索 - 连接服务器...",
                               u"曲目网络搜索 - 发送请求...", u"曲目网络搜索 - 请求成功...",
                               u"曲目网络搜索 - 开始接收数据...", u"曲目网络搜索 - 下载结束..."}));
    form.wd.Status(7);
    EXPECT_EQ(heading(), u"曲目网络搜索 - 未知状态...");
    form.wd.Status(0);
    EXPECT_EQ(heading(), u"曲目网络搜索 - 未知状态...");
}

TEST_F(SongFetch, hasATextForEachError) {
    const char16_t *texts[] = {u"会话失败...",       u"连接服务器失败...",
                               u"发送请求失败...",   u"下载被中止...",
                               u"文件已经存在...",   u"创建目录出错...",
                               u"打开文件时出错...", u"文件大小为0，无效...",
                               u"类型不匹配...",     u"文件正在使用，无法删除...",
                               u"未知出错..."};
    std::int32_t code = 0;
    for (const char16_t *text : texts) {
        form.wd.Error(++code);
        EXPECT_EQ(heading(), std::u16string(u"曲目网络搜索 - ") + text);
    }
    form.wd.Error(-1);
    EXPECT_EQ(heading(), u"曲目网络搜索 - 未知出错...");
}

TEST_F(SongFetch, stoppedByTheUserRemovesItsPart) {
    addSong();
    choose(0);
    answerWith(std::string(3000, 's'));
    fake.shell.onCommandLine = [this](std::u16string_view) {
        EXPECT_EQ(countLog(u"InternetCloseHandle"), 3) << "stopped ahead of the removal";
        EXPECT_TRUE(files.hasFile(cached));
    };
    windows.atNextPump([this] { click(form.downFileStop); });
    click(form.save);
    EXPECT_FALSE(files.hasFile(cached));
    EXPECT_EQ(fake.shell.commandLines, Texts{u"cmd /c del \"" + cached + u"\""});
    EXPECT_EQ(countLog(u"InternetReadFile"), 1);
    EXPECT_EQ(heading(), failed);
    EXPECT_EQ(downInfo(), (Texts{u"", u"", u"", u"", u""}));
    expectIdle();
}

TEST_F(SongFetch, overTheTrackThatPlaysClosesItWithItsLyricAndTellsOfIt) {
    addSong();
    files.addFile(u"/data/cache/SINGER NAME.lrc", "[00:01]a\r\n");
    openAndPlay(addTrack(cached));
    ASSERT_EQ(app.lrcForm().List1.listCount(), 1);
    windows.flashes.clear();
    answerWith("new");
    choose(0);
    expectQuestion(platform::MsgBoxResult::Yes);
    click(form.save);
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
    EXPECT_FALSE(windows.flashes.empty());
    EXPECT_EQ(files.contents(cached), "new");
}

// The panel with the button stands until the song has faded in and its lyric was looked for.
TEST_F(SongFetch, aSongThatIsThereIsNotTakenAwayByTheButtonThatStopsItsTransfer) {
    addSong();
    playable(cached);
    answerWith(std::string(3000, 's'));
    int presses = 0;
    windows.onPump = [&] {
        if (app.player().nowPlay_File != cached)
            return;
        EXPECT_TRUE(form.DownFileBox.visible());
        ++presses;
        click(form.downFileStop);
    };
    fetchByDoubleClick();
    windows.onPump = nullptr;
    EXPECT_GT(presses, 0);
    EXPECT_EQ(files.contents(cached), std::string(3000, 's'));
    EXPECT_TRUE(fake.shell.commandLines.empty());
    EXPECT_EQ(app.player().get_PlayStatus(), statusPlaying);
    EXPECT_EQ(heading(), u"曲目网络搜索 - 下载成功！");
    expectIdle();
}

TEST_F(SongFetch, stoppedByClosingTheWindowLeavesItsPart) {
    addSong();
    choose(0);
    answerWith(std::string(3000, 's'));
    windows.atNextPump([this] { clickOn(form.close); });
    click(form.save);
    EXPECT_EQ(files.contents(cached), std::string(1024, 's'));
    EXPECT_FALSE(form.visible());
    EXPECT_TRUE(fake.shell.commandLines.empty());
    EXPECT_EQ(heading(), failed);
    expectIdle();
    // Which the next attempt finds, and asks about.
    expectQuestion(platform::MsgBoxResult::No);
    click(form.save);
}

TEST_F(SongFetch, stoppedFetchesAgain) {
    addSong();
    choose(0);
    answerWith(std::string(3000, 's'));
    windows.atNextPump([this] { click(form.downFileStop); });
    click(form.save);
    answerWith("all of it");
    click(form.save);
    EXPECT_EQ(files.contents(cached), "all of it");
}

TEST_F(SongFetch, comesOutOfATransferAlsoWhenTheListIsFull) {
    for (int i = 0; i < 32'767; ++i)
        addRowOnly(u"/m/x.mp3");
    addSong();
    answerWith("sound");
    fetchByDoubleClick();
    EXPECT_EQ(files.contents(cached), "sound");
    EXPECT_EQ(app.playList_Form().List1.listCount(), 32'767);
    expectIdle();
}

} // namespace
} // namespace velmora
