// Playing a song that was fetched.

#include "lyrics/lrcForm.h"
#include "playlist/Search.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/unit/network/song_window_fixture.h"

namespace velmora {
namespace {

class SongPlay : public SongWindowFixture {};

TEST_F(SongPlay, anEmptyPathIsNotPlayed) {
    form.play_Downloaded(u"");
    EXPECT_TRUE(media.commands().empty());
    EXPECT_TRUE(files.changes().empty());
}

TEST_F(SongPlay, aNewFileIsAddedCountedAndSaved) {
    addRow(u"/m/first.mp3");
    addTrack(cached);
    form.play_Downloaded(cached);
    EXPECT_EQ(rowsOf(app.playList_Form().playList_Item), (Texts{u"first", u"SINGER NAME"}));
    EXPECT_EQ(rowsOf(app.playList_Form().List1), (Texts{u"/m/first.mp3", cached}));
    EXPECT_EQ(app.player().nowPlay_Index, 3); // one beyond the new row
    EXPECT_EQ(app.player().nowPlay_File, cached);
    EXPECT_EQ(files.contents(u"/data/cache/zkPlayList.m3u"),
              "/m/first.mp3\r\n/data/cache/SINGER NAME.MP3\r\n");
}

TEST_F(SongPlay, aFileOfTheListIsSelectedWithItsNamesakesAndPlayed) {
    addRow(u"/m/other.mp3");
    addRow(u"/m/Name.mp3");
    addRow(u"/n/Name.wav");
    forms::ListBox &list = app.playList_Form().playList_Item;
    list.setSelected(0, true);
    app.player().nowPlay_Index = 1;
    form.play_Downloaded(u"/m/Name.mp3");
    EXPECT_FALSE(list.selected(0));
    EXPECT_TRUE(list.selected(1));
    EXPECT_EQ(rows(), 3);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
    EXPECT_EQ(app.player().nowPlay_File, u"/m/Name.mp3");
    EXPECT_EQ(app.player().get_PlayStatus(), statusPlaying);
}

TEST_F(SongPlay, aLineEndInARecordIsPartOfTheNameAndOfOneRowOfTheList) {
    const std::u16string path = u"/data/cache/S NA\xDC0D\xDC0AME.MP3";
    addSong(u"0@@NA\r\nME@@A@@S@@1@@MP3");
    playable(path);
    answerWith("sound");
    fetchByDoubleClick();
    EXPECT_EQ(files.contents(path), "sound");
    EXPECT_EQ(rowsOf(app.playList_Form().List1), Texts{path});
    ASSERT_TRUE(app.saveOrOpenFile().loadPlayList());
    EXPECT_EQ(rowsOf(app.playList_Form().List1), Texts{path});
}

TEST_F(SongPlay, namesakesOfAFileThatDoesNotOpenStaySelected) {
    addRow(u"/m/other.mp3");
    addRowOnly(u"/m/Name.mp3");
    addRow(u"/n/Name.wav");
    forms::ListBox &list = app.playList_Form().playList_Item;
    list.setSelected(0, true);
    form.play_Downloaded(u"/m/Name.mp3");
    EXPECT_FALSE(list.selected(0));
    EXPECT_TRUE(list.selected(1));
    EXPECT_TRUE(list.selected(2));
}

TEST_F(SongPlay, theLastRowThatFitsIsPlayedAndSaved) {
    forms::ListBox &names = app.playList_Form().playList_Item;
    for (int row = 0; row < 32766; ++row) {
        names.addItem(u"x");
        app.playList_Form().List1.addItem(u"/x");
    }
    addTrack(cached);
    form.play_Downloaded(cached);
    EXPECT_EQ(app.player().nowPlay_File, cached);
    EXPECT_EQ(app.player().nowPlay_Index, 32767);
    EXPECT_TRUE(files.contents(u"/data/cache/zkPlayList.m3u").ends_with("SINGER NAME.MP3\r\n"));
}

TEST_F(SongPlay, whatPlaysIsClosedAhead) {
    openAndPlay(addTrack(u"/m/before.mp3"));
    addTrack(cached);
    media.clearCommands();
    form.play_Downloaded(cached);
    EXPECT_EQ(app.player().nowPlay_File, cached);
    EXPECT_EQ(app.player().get_PlayStatus(), statusPlaying);
}

TEST_F(SongPlay, whatPlaysIsClosedAlsoForAFileThatIsNotThere) {
    openAndPlay(addTrack(u"/m/before.mp3"));
    app.Main().setCaption(u"rolled");
    form.play_Downloaded(u"/m/none.mp3");
    EXPECT_EQ(app.player().get_Length(), 0);
    EXPECT_EQ(app.Main().caption(), app.Main().title.caption());
    EXPECT_EQ(rowsOf(app.playList_Form().List1), Texts{u"/m/none.mp3"});
}

TEST_F(SongPlay, whatIsClosedTakesItsLyricAlong) {
    openAndPlay(addTrack(u"/m/before.mp3"));
    app.lrcForm().List1.addItem(u"[00:01]words");
    form.play_Downloaded(u"/m/none.mp3");
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
}

TEST_F(SongPlay, whatIsPausedStaysForAFileThatIsNotThere) {
    openAndPlay(addTrack(u"/m/before.mp3"));
    app.player().pause_Sub();
    form.play_Downloaded(u"/m/none.mp3");
    EXPECT_NE(app.player().get_Length(), 0);
}

TEST_F(SongPlay, aFileWithoutAStemIsRefused) {
    windows.expectMsgBox(boxOf(app.Language().msg_Bad_Path, platform::MsgBoxIcon::Critical,
                               app.Language().msg_Error),
                         platform::MsgBoxResult::Ok);
    addTrack(u"/data/cache/.MP3");
    form.play_Downloaded(u"/data/cache/.MP3");
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(app.player().nowPlay_File, u"");
}

TEST_F(SongPlay, aFileWithoutAStemShowsThatWhatPlayedWasClosed) {
    openAndPlay(addTrack(u"/m/before.mp3"));
    tickMain();
    windows.expectMsgBox(boxOf(app.Language().msg_Bad_Path, platform::MsgBoxIcon::Critical,
                               app.Language().msg_Error),
                         platform::MsgBoxResult::Ok);
    form.play_Downloaded(u"/data/cache/.MP3");
    EXPECT_FALSE(media.isOpen());
    EXPECT_TRUE(app.Main().playButton.visible());
    EXPECT_FALSE(app.Main().pauseButton.visible());
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:00:00");
}

TEST_F(SongPlay, aSongThatPlaysIsNotShownAsStopped) {
    addTrack(cached);
    windows.atNextPump([this] { tickMain(); });
    form.play_Downloaded(cached);
    EXPECT_TRUE(app.Main().pauseButton.visible());
    EXPECT_FALSE(app.Main().playButton.visible());
}

TEST_F(SongPlay, aFileThatCannotBePlayedStops) {
    files.addFile(cached, "no sound");
    app.Main().playButton.setVisible(false);
    app.lrcForm().nowLrcLine = u"left over";
    app.Main().setCaption(u"rolled");
    form.play_Downloaded(cached);
    EXPECT_EQ(app.Main().caption(), app.Main().title.caption());
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"");
    EXPECT_EQ(app.player().get_Length(), 0);
    EXPECT_TRUE(app.Main().playButton.visible());
    EXPECT_EQ(rows(), 1);
}

} // namespace
} // namespace velmora
