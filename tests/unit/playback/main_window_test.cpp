// The main window's drag, and the buttons that open other windows.

#include "tests/unit/playback/main_window_fixture.h"

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "playlist/playInfo_Form.h"
#include "settings/playSetForm.h"
#include "ui/aboutForm.h"

namespace velmora {
namespace {

using Positioning = fakes::FakeWindows::Positioning;

// --- dragging ------------------------------------------------------------------------------------

TEST_F(MainWindow, DragMovesBothWindowsByTheSame) {
    auto &list = app.playList_Form();
    main().move({1500, 1500, main().width(), main().height()});
    list.move({9000, 1500, list.width(), list.height()});
    for (forms::ControlEvents *area : {static_cast<forms::ControlEvents *>(&main().on()),
                                       &main().title.on(), &main().title_ICO.on()}) {
        const auto mainBefore = main().place();
        const auto listBefore = list.place();
        windows.cursor = {120, 110};
        area->MouseDown({forms::leftButton, 0, 1, 1});
        windows.cursor = {125, 100};
        area->MouseMove({forms::leftButton, 0, 1, 1});
        EXPECT_EQ(main().left(), mainBefore.left + 75);
        EXPECT_EQ(main().top(), mainBefore.top - 150);
        EXPECT_EQ(list.left(), listBefore.left + 75);
        EXPECT_EQ(list.top(), listBefore.top - 150);
        area->MouseUp({forms::leftButton, 0, 1, 1});
    }
}

TEST_F(MainWindow, DragKeepsBothOnTopForItsTimeAndTheSmallWindowsAfterwards) {
    app.playList_Form();
    app.miniForm();
    app.lrcForm();
    windows.positionings.clear();
    main().on().MouseDown({forms::leftButton, 0, 1, 1});
    EXPECT_EQ(windows.positionings,
              (std::vector<Positioning>{{"Main", -1, 3}, {"playList_Form", -1, 3}}));
    windows.positionings.clear();
    main().on().MouseUp({forms::leftButton, 0, 1, 1});
    EXPECT_EQ(
        windows.positionings,
        (std::vector<Positioning>{
            {"Main", -2, 3}, {"playList_Form", -2, 3}, {"miniForm", -1, 3}, {"lrcForm", -1, 3}}));
}

TEST_F(MainWindow, DragIsForTheLeftButtonAlone) {
    app.playList_Form();
    const auto place = main().place();
    windows.positionings.clear();
    main().on().MouseDown({forms::rightButton, 0, 1, 1});
    EXPECT_TRUE(windows.positionings.empty());
    windows.cursor = {300, 300};
    main().on().MouseMove({forms::rightButton, 0, 1, 1});
    EXPECT_EQ(main().place(), place);
}

TEST_F(MainWindow, RightReleaseOpensTheMenuWhilePlayIsEnabled) {
    windows.expectPopup("menu", "");
    main().on().MouseUp({forms::rightButton, 0, 1, 1});
    main().playButton.setEnabled(false);
    main().on().MouseUp({forms::rightButton, 0, 1, 1}); // an unscripted popup fails the test
}

TEST_F(MainWindow, DoubleClickGoesToTheMiniWindow) {
    main().show();
    main().on().DblClick();
    EXPECT_TRUE(app.miniForm().visible());
    app.miniForm().mini_Button_Click();
    main().title.on().DblClick();
    EXPECT_TRUE(app.miniForm().visible());
    app.miniForm().mini_Button_Click();
    main().title_ICO.on().DblClick();
    EXPECT_TRUE(app.miniForm().visible());
}

TEST_F(MainWindow, DoubleClickOnTheFormNeedsPlayEnabledAndOnTheTitleDoesNot) {
    main().show();
    main().playButton.setEnabled(false);
    main().on().DblClick();
    EXPECT_FALSE(app.miniForm().visible());
    main().title.on().DblClick();
    EXPECT_TRUE(app.miniForm().visible());
}

// --- other windows -------------------------------------------------------------------------------

TEST_F(MainWindow, ListButtonShowsAndDocksThenHidesAndCentres) {
    main().move({6000, 3000, 7200, 3240});
    click(main().playListButton);
    EXPECT_TRUE(app.playList_Form().visible());
    EXPECT_EQ(main().playList_Shown, -1);
    EXPECT_EQ(main().left(), 2400);
    EXPECT_EQ(app.playList_Form().left(), 9600);
    click(main().playListButton);
    EXPECT_FALSE(app.playList_Form().visible());
    EXPECT_EQ(main().playList_Shown, 0);
    EXPECT_EQ(main().left(), (1280 * 15 - 7200) / 2.0F);
}

TEST_F(MainWindow, GoToListSelectsThePlayingRowAndShowsAHiddenList) {
    addRow(u"/m/b.mp3");
    openAndPlay(u"/m/b.mp3");
    app.playList_Form().playList_Item.setSelected(0, true);
    click(main().song_GoTo_List);
    EXPECT_TRUE(app.playList_Form().visible());
    EXPECT_EQ(main().playList_Shown, -1);
    EXPECT_FALSE(app.playList_Form().playList_Item.selected(0));
    EXPECT_TRUE(app.playList_Form().playList_Item.selected(1));
    const auto left = main().left();
    click(main().song_GoTo_List);
    EXPECT_TRUE(app.playList_Form().visible());
    EXPECT_EQ(main().left(), left) << "a list that is shown is not docked again";
}

TEST_F(MainWindow, MinimiseHidesTheListClearsItsFlagAndMinimises) {
    click(main().playListButton);
    click(main().minimizeButton);
    EXPECT_FALSE(app.playList_Form().visible());
    EXPECT_EQ(main().playList_Shown, 0);
    EXPECT_EQ(main().windowState(), forms::WindowState::Minimised);
    EXPECT_EQ(main().left(), (1280 * 15 - main().width()) / 2);
}

TEST_F(MainWindow, MiniModeHidesBothAndComesBackWithTheListThatWasOpen) {
    main().show();
    click(main().playListButton);
    click(main().mini_Button);
    EXPECT_FALSE(main().visible());
    EXPECT_FALSE(app.playList_Form().visible());
    EXPECT_TRUE(app.miniForm().visible());
    EXPECT_EQ(app.miniForm().top(), 0);
    EXPECT_TRUE(app.miniForm().topmost());
    click(app.miniForm().mini_Button);
    EXPECT_TRUE(main().visible());
    EXPECT_TRUE(app.playList_Form().visible());
    EXPECT_EQ(app.playList_Form().left(), main().left() + main().width());
}

TEST_F(MainWindow, MiniModeComesBackWithoutAListThatWasClosed) {
    main().show();
    click(main().mini_Button);
    click(app.miniForm().mini_Button);
    EXPECT_TRUE(main().visible());
    EXPECT_FALSE(app.playList_Form().visible());
}

TEST_F(MainWindow, VideoButtonTogglesTheVideoWindow) {
    app.setControl().VideoInterface = 1;
    addTrack(u"/m/film.avi", 60'000, true);
    openAndPlay(u"/m/film.avi");
    ASSERT_TRUE(app.VideoScreen_Form().visible());
    click(main().videoScreen_Button);
    EXPECT_FALSE(app.VideoScreen_Form().visible());
    click(main().videoScreen_Button);
    EXPECT_TRUE(app.VideoScreen_Form().visible());
}

TEST_F(MainWindow, TrackInformationNeedsAnOpenTrack) {
    app.playInfo_Form().show();
    windows.expectMsgBox(boxOf(app.Language().msg_No_Track_Info, platform::MsgBoxIcon::Exclamation,
                               app.Language().msg_Error),
                         platform::MsgBoxResult::Ok);
    click(main().playInfo);
    EXPECT_FALSE(app.playInfo_Form().visible());
}

TEST_F(MainWindow, TrackInformationIsToggledWhileATrackIsOpen) {
    play();
    click(main().playInfo);
    EXPECT_TRUE(app.playInfo_Form().visible());
    click(main().playInfo);
    EXPECT_FALSE(app.playInfo_Form().visible());
}

TEST_F(MainWindow, TrackInformationOfAnUnusedMediumCanBeClosedButNotOpened) {
    play();
    app.lrcForm().Timer1.setRunning(false);
    app.playInfo_Form().show();
    click(main().playInfo);
    EXPECT_FALSE(app.playInfo_Form().visible());
    windows.expectMsgBox(boxOf(app.Language().msg_No_Track_Info, platform::MsgBoxIcon::Exclamation,
                               app.Language().msg_Error),
                         platform::MsgBoxResult::Ok);
    click(main().playInfo);
}

TEST_F(MainWindow, DesktopLyricNeedsAnOpenTrack) {
    windows.expectMsgBox(boxOf(app.Language().msg_No_Track_Desktop_Lrc,
                               platform::MsgBoxIcon::Exclamation, app.Language().msg_Error),
                         platform::MsgBoxResult::Ok);
    click(main().desktop_Lrc);
}

TEST_F(MainWindow, DesktopLyricDoesNothingWithoutALyric) {
    play();
    const bool visible = app.lrcForm().lrc_Text.visible();
    click(main().desktop_Lrc);
    EXPECT_EQ(app.lrcForm().lrc_Text.visible(), visible);
    EXPECT_FALSE(app.lrcForm().desktopLrcOn);
    EXPECT_FALSE(app.lrcForm().visible());
}

TEST_F(MainWindow, DesktopLyricReversesTheLineAndPlacesIt) {
    play();
    app.lrcForm().hasLrc = true;
    app.lrcForm().lrc_Text.setVisible(false);
    click(main().desktop_Lrc);
    EXPECT_TRUE(app.lrcForm().lrc_Text.visible());
    EXPECT_TRUE(app.lrcForm().desktopLrcOn);
    EXPECT_TRUE(app.lrcForm().visible());
    click(main().desktop_Lrc);
    EXPECT_FALSE(app.lrcForm().lrc_Text.visible());
    EXPECT_FALSE(app.lrcForm().desktopLrcOn);
    EXPECT_TRUE(app.lrcForm().visible()) << "only the line goes; the window stays";
}

TEST_F(MainWindow, EditorAndSearchesAreToggled) {
    click(main().do_Lrc);
    EXPECT_TRUE(app.doLrcForm().visible());
    click(main().do_Lrc);
    EXPECT_FALSE(app.doLrcForm().visible());
    click(main().search_Lrc_Internet);
    EXPECT_TRUE(app.search_Lrc_Internet_Form().visible());
    click(main().search_Lrc_Internet);
    EXPECT_FALSE(app.search_Lrc_Internet_Form().visible());
    click(main().search_Song_Internet);
    EXPECT_TRUE(app.search_Song_Internet_Form().visible());
    click(main().search_Song_Internet);
    EXPECT_FALSE(app.search_Song_Internet_Form().visible());
}

TEST_F(MainWindow, SoundCheckIsShown) {
    click(main().check_SoundDriver);
    EXPECT_TRUE(app.check_SoundDriver_Form().visible());
    click(app.check_SoundDriver_Form().close);
    EXPECT_FALSE(app.check_SoundDriver_Form().visible());
}

TEST_F(MainWindow, SettingsDisableBothWindows) {
    click(main().playSet_Button);
    EXPECT_TRUE(app.playSetForm().visible());
    EXPECT_FALSE(main().enabled());
    EXPECT_FALSE(app.playList_Form().enabled());
}

TEST_F(MainWindow, AboutDisablesBothWindowsAndNamesItsCaller) {
    click(main().CopyRight_ICO);
    EXPECT_TRUE(app.aboutForm().visible());
    EXPECT_EQ(app.aboutForm().caller_Name, u"main");
    EXPECT_FALSE(main().enabled());
    EXPECT_FALSE(app.playList_Form().enabled());
}

TEST_F(MainWindow, LinkOpensItsCaption) {
    main().link.setCaption(u"http://example.invalid/");
    click(main().link);
    ASSERT_EQ(fake.shell.executions.size(), 1U);
    EXPECT_EQ(fake.shell.executions[0].target, u"http://example.invalid/");
}

TEST_F(MainWindow, FocusIsHideAndShow) {
    main().show();
    windows.shown.clear();
    main().get_Focus();
    EXPECT_EQ(windows.shown, std::vector<std::string>{"Main"});
}

TEST_F(MainWindow, FlashesOnceACallWhileRequestedForEver) {
    windows.flashes.clear();
    main().Flash_Window();
    EXPECT_TRUE(windows.flashes.empty());
    main().flash_Request = -1;
    for (int call = 1; call <= 5; ++call) {
        main().Flash_Window();
        EXPECT_EQ(windows.flashes.size(), static_cast<std::size_t>(call));
    }
    EXPECT_EQ(main().flash_Request, -1);
}

TEST_F(MainWindow, EveryButtonAndBarCanBeDisabledAtOnce) {
    const std::vector<forms::Control *> controls = {
        &main().playButton,           &main().pauseButton,    &main().upButton,
        &main().nextButton,           &main().stopButton,     &main().openFile_Button,
        &main().load_Played_BG,       &main().Volume_Set_BG,  &main().Volume_ICO,
        &main().mini_Button,          &main().AudioSource_H,  &main().AudioSource_L,
        &main().AudioSource_R,        &main().song_GoTo_List, &main().do_Lrc,
        &main().check_SoundDriver,    &main().desktop_Lrc,    &main().playInfo,
        &main().playSet_Button,       &main().playListButton, &main().search_Lrc_Internet,
        &main().search_Song_Internet,
    };
    main().meActiveControl_Enabled(false);
    for (const forms::Control *control : controls)
        EXPECT_FALSE(control->enabled()) << control->name();
    EXPECT_TRUE(main().closeButton.enabled());
    EXPECT_TRUE(main().minimizeButton.enabled());
    main().meActiveControl_Enabled(true);
    for (const forms::Control *control : controls)
        EXPECT_TRUE(control->enabled()) << control->name();
}

} // namespace
} // namespace velmora
