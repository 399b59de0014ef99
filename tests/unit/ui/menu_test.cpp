// The order of the two popup menus, and the entries that lead to other windows.

#include "tests/unit/program_fixture.h"

#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "playback/MenuForm.h"
#include "playback/miniForm.h"
#include "playlist/playInfo_Form.h"
#include "settings/playSetForm.h"
#include "ui/aboutForm.h"

namespace velmora {
namespace {

using Names = std::vector<std::string>;

class Menus : public ProgramFixture {
protected:
    Menus() {
        speak(1);
        setVolumeBar(0);
        addRow(u"/m/a.mp3");
        addRow(u"/m/b.mp3");
    }
    MenuForm &menus() { return app.MenuForm(); }
    // The entries' names in order; a separator ahead of its name has a dash.
    static Names entriesOf(const forms::Menu &menu) {
        Names names;
        for (const forms::Menu *entry : menu.entries())
            names.push_back((entry->separator() ? "-" : "") + std::string(entry->name()));
        return names;
    }
};

TEST_F(Menus, TheMainWindowsEntriesStandInTheirOrder) {
    EXPECT_EQ(
        entriesOf(menus().menu),
        (Names{"playControl", "-null_5", "mode", "playlist", "playSet", "desktop_Lrc", "song_Info",
               "song_GoTo_List", "doLrc", "check_SoundDriver", "search_Lrc_To_Internet", "-null_3",
               "detection_Update", "about", "-null_2", "help", "-null_1", "close"}));
    EXPECT_EQ(entriesOf(menus().playControl),
              (Names{"play", "pause", "stop", "-null_4", "nextSong", "upSong"}));
}

TEST_F(Menus, ThePlayListsEntriesStandInTheirOrder) {
    EXPECT_EQ(entriesOf(menus().playlist_Menu),
              (Names{"playlist_Play", "-null_6", "playlist_Add", "playlist_Del", "hardDrive_Del",
                     "-null_7", "playlist_afreshLoad", "playlist_Search", "playlist_Alter",
                     "playlist_OpenFolder", "playlist_Send", "-null_8", "playlist_Hide"}));
    EXPECT_EQ(entriesOf(menus().playlist_Add), (Names{"playlist_AddFile", "playlist_AddFolder"}));
    EXPECT_EQ(entriesOf(menus().playlist_Del), (Names{"playlist_DelSelect", "playlist_DelAll"}));
    EXPECT_EQ(entriesOf(menus().hardDrive_Del), (Names{"hardDrive_DelSelect", "hardDrive_DelAll"}));
}

TEST_F(Menus, StopEmptiesTheLookAsWell) {
    openAndPlay(u"/m/a.mp3");
    app.lrcForm().nowLrcLine = u"a line";
    app.Main().play_Time.setCaption(u"left over");
    menus().stop.choose();
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"");
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:00:00");
}

TEST_F(Menus, TheDesktopLyricIsReversed) {
    openAndPlay(u"/m/a.mp3");
    app.lrcForm().hasLrc = true;
    app.lrcForm().lrc_Text.setVisible(false);
    menus().desktop_Lrc.choose();
    EXPECT_TRUE(app.lrcForm().lrc_Text.visible());
}

TEST_F(Menus, TrackInformationIsShown) {
    openAndPlay(u"/m/a.mp3");
    menus().song_Info.choose();
    EXPECT_TRUE(app.playInfo_Form().visible());
}

TEST_F(Menus, ThePlayingTrackIsFoundInTheList) {
    openAndPlay(u"/m/b.mp3");
    app.playList_Form().playList_Item.setSelected(1, false);
    menus().song_GoTo_List.choose();
    EXPECT_TRUE(app.playList_Form().playList_Item.selected(1));
    EXPECT_TRUE(app.playList_Form().visible());
}

TEST_F(Menus, TheLyricSearchIsShown) {
    menus().search_Lrc_To_Internet.choose();
    EXPECT_TRUE(app.search_Lrc_Internet_Form().visible());
}

TEST_F(Menus, TheUpdateCheckSpeaksToTheUser) {
    fake.internet.connectedState = 0;
    windows.expectMsgBox(boxOf(app.Language().msg_No_Network, platform::MsgBoxIcon::Critical,
                               app.Main().title.caption()),
                         platform::MsgBoxResult::Ok);
    menus().detection_Update.choose();
}

TEST_F(Menus, AboutDisablesBothWindows) {
    menus().about.choose();
    EXPECT_TRUE(app.aboutForm().visible());
    EXPECT_FALSE(app.Main().enabled());
    EXPECT_FALSE(app.playList_Form().enabled());
}

TEST_F(Menus, AboutOverTheSettingsLeavesTheBothWindowsAlone) {
    app.playSetForm().show();
    menus().about.choose();
    EXPECT_TRUE(app.Main().enabled());
    EXPECT_TRUE(app.playList_Form().enabled());
}

TEST_F(Menus, ModeWithBothShownEntersTheMiniWindow) {
    app.Main().show();
    app.miniForm().show();
    menus().mode.choose();
    EXPECT_FALSE(app.Main().visible());
    EXPECT_TRUE(app.miniForm().visible());
}

TEST_F(Menus, TheListIsReadAgainFromItsFile) {
    app.setControl().init_PlaySet();
    addRowOnly(u"/m/c.mp3");
    files.addFile(app.setControl().Path_List + u"/zkPlayList.m3u", "/m/b.mp3\r\n");
    menus().playlist_afreshLoad.choose();
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(app.playList_Form().List1.list(0), u"/m/b.mp3");
}

} // namespace
} // namespace velmora
