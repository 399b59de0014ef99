// Finer points of the main window: what its buttons start in the windows that they open, its drag
// with more than one mouse button, the exact levels of its volume bar.

#include "tests/unit/playback/main_window_fixture.h"

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "playback/miniForm.h"
#include "playlist/playInfo_Form.h"

namespace velmora {
namespace {

using Positioning = fakes::FakeWindows::Positioning;

// --- other windows -------------------------------------------------------------------------------

TEST_F(MainWindow, TheEditorReadsTheLyricAnewWhetherItIsShownOrHidden) {
    doLrcForm &editor = app.doLrcForm();
    for (const bool shown : {true, false}) {
        editor.lrc_Ti_Str.setText(u"left over");
        click(main().do_Lrc);
        EXPECT_EQ(editor.visible(), shown);
        EXPECT_EQ(editor.lrc_Ti_Str.text(), u"");
    }
}

TEST_F(MainWindow, TheLyricSearchBeginsAnewWhenItIsShownAndKeepsItsFindingsWhenHidden) {
    search_Lrc_Internet_Form &form = app.search_Lrc_Internet_Form();
    form.search_Lrc_List.addItem(u"left over");
    click(main().search_Lrc_Internet);
    EXPECT_EQ(form.search_Lrc_List.listCount(), 0);
    form.search_Lrc_List.addItem(u"found");
    click(main().search_Lrc_Internet);
    EXPECT_FALSE(form.visible());
    EXPECT_EQ(form.search_Lrc_List.listCount(), 1);
}

TEST_F(MainWindow, TheSongSearchBeginsAnewWhenItIsShownAndKeepsItsFindingsWhenHidden) {
    search_Song_Internet_Form &form = app.search_Song_Internet_Form();
    form.search_Song_List.addItem(u"left over");
    click(main().search_Song_Internet);
    EXPECT_EQ(form.search_Song_List.listCount(), 0);
    form.search_Song_List.addItem(u"found");
    click(main().search_Song_Internet);
    EXPECT_FALSE(form.visible());
    EXPECT_EQ(form.search_Song_List.listCount(), 1);
}

// The lyric's own window is shown all the time: what counts is the track information's.
TEST_F(MainWindow, DesktopLyricOfAnUnusedMediumAsksWhetherTrackInformationIsOpen) {
    play();
    app.lrcForm().hasLrc = true;
    app.lrcForm().Timer1.setRunning(false);
    app.lrcForm().show();
    windows.expectMsgBox(boxOf(app.Language().msg_No_Track_Desktop_Lrc,
                               platform::MsgBoxIcon::Exclamation, app.Language().msg_Error),
                         platform::MsgBoxResult::Ok);
    const bool before = app.lrcForm().lrc_Text.visible();
    click(main().desktop_Lrc);
    EXPECT_EQ(app.lrcForm().lrc_Text.visible(), before);
    app.playInfo_Form().show();
    click(main().desktop_Lrc);
    EXPECT_NE(app.lrcForm().lrc_Text.visible(), before);
}

TEST_F(MainWindow, DesktopLyricWithoutATrackLeavesTrackInformationOpen) {
    app.playInfo_Form().show();
    windows.expectMsgBox(boxOf(app.Language().msg_No_Track_Desktop_Lrc,
                               platform::MsgBoxIcon::Exclamation, app.Language().msg_Error),
                         platform::MsgBoxResult::Ok);
    click(main().desktop_Lrc);
    EXPECT_TRUE(app.playInfo_Form().visible());
}

TEST_F(MainWindow, TrackInformationIsHiddenOnlyAfterItsMessageWasRead) {
    app.playInfo_Form().show();
    bool visible = false;
    windows.expectMsgBox(boxOf(app.Language().msg_No_Track_Info, platform::MsgBoxIcon::Exclamation,
                               app.Language().msg_Error),
                         platform::MsgBoxResult::Ok,
                         [&] { visible = app.playInfo_Form().visible(); });
    click(main().playInfo);
    EXPECT_TRUE(visible);
    EXPECT_FALSE(app.playInfo_Form().visible());
}

TEST_F(MainWindow, EnteringTheMiniModePutsTheSmallWindowsOnTopAgain) {
    main().show();
    app.miniForm();
    app.lrcForm();
    windows.positionings.clear();
    click(main().mini_Button);
    EXPECT_EQ(windows.positionings,
              (std::vector<Positioning>{{"miniForm", -1, 3}, {"lrcForm", -1, 3}}));
}

TEST_F(MainWindow, GoToListLeavesTheSelectionOfATrackThatIsNotInTheList) {
    openAndPlay(u"/m/a.mp3");
    app.player().nowPlay_File = u"/elsewhere/x.mp3";
    app.playList_Form().playList_Item.setSelected(0, false);
    click(main().song_GoTo_List);
    EXPECT_TRUE(app.playList_Form().visible());
    EXPECT_FALSE(app.playList_Form().playList_Item.selected(0));
}

// --- dragging ------------------------------------------------------------------------------------

TEST_F(MainWindow, TheReleaseOfAnyButtonTakesBothOffTheTop) {
    app.playList_Form();
    app.miniForm();
    app.lrcForm();
    windows.expectPopup("menu", "");
    windows.positionings.clear();
    main().on().MouseUp({forms::rightButton, 0, 1, 1});
    EXPECT_EQ(
        windows.positionings,
        (std::vector<Positioning>{
            {"Main", -2, 3}, {"playList_Form", -2, 3}, {"miniForm", -1, 3}, {"lrcForm", -1, 3}}));
}

TEST_F(MainWindow, ADragGoesOnWhileASecondButtonIsHeldAsWell) {
    app.playList_Form();
    main().move({1500, 1500, main().width(), main().height()});
    windows.cursor = {120, 110};
    main().on().MouseDown({forms::leftButton, 0, 1, 1});
    windows.cursor = {130, 110};
    main().on().MouseMove({forms::leftButton | forms::rightButton, 0, 1, 1});
    EXPECT_EQ(main().left(), 1650);
}

// --- the volume bar ------------------------------------------------------------------------------

TEST_F(MainWindow, TheLevelIsRoundedToTheNearestAndAHalfToTheEven) {
    play();
    const auto levelAt = [&](Twips x) {
        media.clearCommands();
        release(main().Volume_Set_BG, x);
        return media.texts().front();
    };
    EXPECT_EQ(levelAt(250.4F), u"setaudio NOWMUSIC volume to 250");
    EXPECT_EQ(levelAt(250.5F), u"setaudio NOWMUSIC volume to 250");
    EXPECT_EQ(levelAt(250.75F), u"setaudio NOWMUSIC volume to 251");
    EXPECT_EQ(levelAt(251.5F), u"setaudio NOWMUSIC volume to 252");
    EXPECT_EQ(main().Volume_Set.width(), 251.5F) << "the fill is where the release was";
}

TEST_F(MainWindow, AReleaseLeftOfTheVolumeBarAsksForTheLevelZero) {
    play();
    release(main().Volume_Set_BG, 400);
    media.clearCommands();
    release(main().Volume_Set_BG, -50);
    EXPECT_EQ(media.texts(), Texts{u"setaudio NOWMUSIC volume to 0"});
    EXPECT_EQ(main().Volume_Set.width(), 0);
}

TEST_F(MainWindow, ALevelSetAfterMuteIsTheOneThatTheNextPlayFadesTo) {
    play();
    click(main().Volume_ICO);
    release(main().Volume_Set_BG, 600);
    app.player().play_Sub();
    EXPECT_EQ(media.volume(), 600);
}

// --- the seek bar --------------------------------------------------------------------------------

TEST_F(MainWindow, AClickOnItsRightEdgeLeavesCaptionPointerAndLyric) {
    play();
    app.lrcForm().hasLrc = true;
    app.lrcForm().nowLrcLine = u"a line";
    const std::u16string before = main().playInfo_Show.caption();
    const std::int16_t pointer = main().load_Played_BG.mousePointer();
    release(main().load_Played_BG, main().load_Played_BG.width());
    EXPECT_EQ(main().playInfo_Show.caption(), before);
    EXPECT_EQ(main().load_Played_BG.mousePointer(), pointer);
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"a line");
}

} // namespace
} // namespace velmora
