// Finer points of keys, menus, docking and dragging.

#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/welcomeForm.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/listControl_Form.h"
#include "playlist/playInfo_Form.h"
#include "settings/playSetForm.h"
#include "ui/aboutForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

using Positioning = fakes::FakeWindows::Positioning;

constexpr auto fromMain = u"main";
constexpr auto fromList = u"playlist_Form";

class WindowRules : public ProgramFixture {
protected:
    WindowRules() {
        speak(1);
        setVolumeBar(0);
        for (const char16_t *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
            addRow(path);
    }
    void press(std::int16_t key, std::u16string_view from = fromMain, std::int16_t shift = 0) {
        app.formSet().form_KeyDown(key, shift, from);
    }
    void playSecond() {
        app.player().nowPlay_Index = 2;
        openAndPlay(u"/m/b.mp3");
        media.clearCommands();
    }
};

// --- keys ----------------------------------------------------------------------------------------

TEST_F(WindowRules, TheListsNameIsComparedInUpperCaseToo) {
    app.playList_Form().playList_Item.setSelected(2, true);
    press(13, u"PLAYLIST_form");
    EXPECT_EQ(media.openPath(), u"/m/c.mp3");
}

TEST_F(WindowRules, TheListsF8HidesAHiddenListAgainAndDocksNothing) {
    for (const auto *from : {fromMain, fromList}) {
        app.Main().setLeft(123);
        app.playList_Form().show();
        press(119, from);
        EXPECT_FALSE(app.playList_Form().visible());
        press(119, from);
        EXPECT_FALSE(app.playList_Form().visible()) << "it only hides";
        EXPECT_EQ(app.Main().left(), 123);
    }
}

TEST_F(WindowRules, F8BringsAHiddenMainWindowBack) {
    app.Main().hide();
    press(119, fromList);
    EXPECT_TRUE(app.Main().visible());
}

TEST_F(WindowRules, F5AndF6StepFromBothWindows) {
    playSecond();
    for (const auto *from : {fromMain, fromList}) {
        press(117, from);
        EXPECT_EQ(media.openPath(), u"/m/c.mp3");
        press(116, from);
        EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    }
}

TEST_F(WindowRules, CtrlSWorksInTheListToo) {
    press(83, fromList, forms::ctrlMask);
    EXPECT_TRUE(app.playSetForm().visible());
    EXPECT_FALSE(app.Main().enabled());
    EXPECT_FALSE(app.playList_Form().enabled());
}

TEST_F(WindowRules, F11PutsTheVideoWindowOnTopOnlyWhenItIsShownAfterwards) {
    app.Main().videoScreen_Button.setVisible(true);
    const auto topmost = [&] {
        return std::count(windows.positionings.begin(), windows.positionings.end(),
                          Positioning{"VideoScreen_Form", -1, 3});
    };
    press(122);
    EXPECT_EQ(topmost(), 1);
    press(122);
    EXPECT_FALSE(app.VideoScreen_Form().visible());
    EXPECT_EQ(topmost(), 1);
}

TEST_F(WindowRules, F12NamesMainToTheAboutWindow) {
    press(123, fromMain);
    EXPECT_EQ(app.aboutForm().caller_Name, fromMain);
    EXPECT_FALSE(app.Main().enabled());
    EXPECT_FALSE(app.playList_Form().enabled());
}

TEST_F(WindowRules, CtrlAKeepsTheTopRow) {
    for (int row = 0; row < 40; ++row)
        addRowOnly(u"/m/" + std::u16string(1, static_cast<char16_t>(0x4e00 + row)) + u".mp3");
    app.playList_Form().playList_Item.setTopIndex(4);
    press(65, fromList, forms::ctrlMask);
    EXPECT_EQ(app.playList_Form().playList_Item.topIndex(), 4);
    EXPECT_EQ(app.playList_Form().playList_Item.selCount(), 43);
}

TEST_F(WindowRules, CtrlADeleteAsksOnceAndEmptiesTheList) {
    app.setControl().init_PlaySet();
    press(65, fromList, forms::ctrlMask);
    windows.expectMsgBox({u"是否决定该操作？", platform::MsgBoxButtons::YesNo,
                          platform::MsgBoxIcon::None, app.Main().title.caption()},
                         platform::MsgBoxResult::Yes);
    press(46, fromList);
    EXPECT_EQ(rows(), 0);
}

TEST_F(WindowRules, NoKeyOfTheTableWorksOnTheListAloneAndInMainAlikeButF2AndF7) {
    playSecond();
    app.player().pause_Sub();
    app.playList_Form().playList_Item.setSelected(0, true);
    press(113, fromMain);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    press(113, fromList);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

// --- menus ---------------------------------------------------------------------------------------

TEST_F(WindowRules, TheRemovalOfTheMenuSavesEvenWithNothingSelected) {
    app.setControl().init_PlaySet();
    windows.expectMsgBox({u"是否决定该操作？", platform::MsgBoxButtons::YesNo,
                          platform::MsgBoxIcon::None, app.Main().title.caption()},
                         platform::MsgBoxResult::Yes);
    app.MenuForm().playlist_DelSelect.choose();
    EXPECT_EQ(files.contents(app.setControl().Path_List + u"/zkPlayList.m3u"),
              "/m/a.mp3\r\n/m/b.mp3\r\n/m/c.mp3\r\n");
}

TEST_F(WindowRules, TheMenusHelpShowsTheSettingsAsTheyAreStored) {
    app.playSetForm().autoUpdate.setValue(0);
    fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\playSet", u"AutoUpadate", u"1");
    app.MenuForm().help.choose();
    EXPECT_TRUE(app.playSetForm().visible());
    EXPECT_EQ(app.playSetForm().autoUpdate.value(), 1);
}

TEST_F(WindowRules, TheMenusPlayReopensAStoppedTrackAsTheButtonDoes) {
    playSecond();
    app.MenuForm().stop.choose();
    EXPECT_FALSE(media.isOpen());
    app.MenuForm().play.choose();
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(WindowRules, TheMenusModeBringsTheListBackThatWasOpen) {
    app.Main().show();
    app.MenuForm().playlist.choose();
    app.MenuForm().mode.choose();
    EXPECT_FALSE(app.playList_Form().visible());
    app.MenuForm().mode.choose();
    EXPECT_TRUE(app.playList_Form().visible());
    EXPECT_EQ(app.playList_Form().left(), app.Main().left() + app.Main().width());
}

// --- docking -------------------------------------------------------------------------------------

TEST_F(WindowRules, TheUndockedMainWindowIsCentredByTheWorkAreasRightEdgeAlone) {
    windows.workArea = {100, 50, 1380, 760};
    app.Main().move({0, 1234, 7200, 3240});
    app.formSet().dock_PlayList(false);
    EXPECT_EQ(app.Main().left(), (1380 * 15 - 7200) / 2.0F);
    EXPECT_EQ(app.Main().top(), 1234);
    EXPECT_EQ(app.formSet().saved_Top, 1234);
}

TEST_F(WindowRules, TheUndockedMainWindowStandsAtAWholeTwip) {
    app.Main().setTop(100.6F);
    app.formSet().dock_PlayList(false);
    EXPECT_EQ(app.Main().top(), 101);
}

TEST_F(WindowRules, DockingLeavesTheListsSizeAndMainsTop) {
    app.Main().move({6000, 1234, 7200, 3240});
    const Twips width = app.playList_Form().width();
    const Twips height = app.playList_Form().height();
    app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().top(), 1234);
    EXPECT_EQ(app.playList_Form().top(), 1234);
    EXPECT_EQ(app.playList_Form().width(), width);
    EXPECT_EQ(app.playList_Form().height(), height);
}

// A hand's width is 120 pixels, and Main 480 wide.
TEST_F(WindowRules, DockingAgainAndAgainLeavesAHandsWidthOfMainOnTheScreen) {
    app.Main().move({60, 3000, 7200, 3240});
    for (int i = 0; i < 6; ++i)
        app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().left(), (120 - 480) * 15);
    EXPECT_EQ(app.playList_Form().left(), 120 * 15) << "and the list beside it";
}

TEST_F(WindowRules, DockingGoesOnOverAMonitorBesideAndStopsAtItsEdge) {
    windows.otherMonitors = {{-1000, 0, 0, 800}};
    app.Main().move({0, 3000, 7200, 3240});
    app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().left(), -3600) << "all of it is seen";
    for (int i = 0; i < 6; ++i)
        app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().left(), (-1000 + 120 - 480) * 15);
}

TEST_F(WindowRules, AMonitorThatShowsNothingOfAWindowAddsNothingToWhatIsSeen) {
    windows.otherMonitors = {{2000, 0, 3000, 800}};
    // A twip less than a hand's width would be left.
    app.Main().move({120 * 15 - 1 - 7200 + 3600, 3000, 7200, 3240});
    app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().left(), (120 - 480) * 15);
}

TEST_F(WindowRules, AMonitorThatDoesNotReachTheTitleRowHoldsNoWindow) {
    windows.otherMonitors = {{-1000, 400, 0, 1200}};
    app.Main().move({0, 3000, 7200, 3240});
    for (int i = 0; i < 6; ++i)
        app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().left(), (120 - 480) * 15);
}

TEST_F(WindowRules, DockingLeavesAHandsWidthOfTheListAtTheRightEdge) {
    app.Main().move({1270 * 15, 3000, 7200, 3240});
    app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().left(), (1270 - 240) * 15) << "the formula stands";
    EXPECT_EQ(app.playList_Form().left(), (1280 - 120) * 15);
}

TEST_F(WindowRules, WhatLiesBelowAllScreensIsDockedByTheFormulaAlone) {
    app.Main().move({-3600, 900 * 15, 7200, 3240});
    app.formSet().dock_PlayList(true);
    EXPECT_EQ(app.Main().left(), -7200);
}

TEST_F(WindowRules, UndockingLeavesTheListWhereItIs) {
    app.playList_Form().move({900, 800, 3000, 3000});
    app.formSet().dock_PlayList(false);
    EXPECT_EQ(app.playList_Form().left(), 900);
    EXPECT_EQ(app.playList_Form().top(), 800);
}

// --- dragging ------------------------------------------------------------------------------------

TEST_F(WindowRules, ThePlaceOfAPressIsRoundedToAWholeTwip) {
    windows.cursorFails = true;
    auto &form = app.check_SoundDriver_Form();
    form.move({0, 0, form.width(), form.height()});
    form.on().MouseDown({forms::leftButton, 0, 100.6F, 50.4F});
    EXPECT_EQ(app.formSet().drag_X, 101);
    EXPECT_EQ(app.formSet().drag_Y, 50);
    form.on().MouseMove({forms::leftButton, 0, 131, 80});
    EXPECT_EQ(form.left(), 30);
    EXPECT_EQ(form.top(), 30);
}

TEST_F(WindowRules, AWindowIsDraggedWhileASecondButtonIsHeldAsWell) {
    auto &form = app.check_SoundDriver_Form();
    form.move({1500, 1500, form.width(), form.height()});
    windows.cursor = {110, 110};
    form.on().MouseDown({forms::leftButton, 0, 0, 0});
    windows.cursor = {120, 110};
    form.on().MouseMove({forms::leftButton | forms::rightButton, 0, 0, 0});
    EXPECT_EQ(form.left(), 1650);
}

TEST_F(WindowRules, ADragKeepsTheWindowsSize) {
    auto &form = app.check_SoundDriver_Form();
    const auto before = form.place();
    windows.cursor = {110, 110};
    form.on().MouseDown({forms::leftButton, 0, 0, 0});
    windows.cursor = {170, 20};
    form.on().MouseMove({forms::leftButton, 0, 0, 0});
    EXPECT_EQ(form.width(), before.width);
    EXPECT_EQ(form.height(), before.height);
}

// --- the window manager's close ------------------------------------------------------------------

TEST_F(WindowRules, AWishToCloseHidesAWindowAndNeverLetsItGo) {
    forms::Form *const all[] = {&app.aboutForm(),        &app.another_PlayInfo_Form(),
                                &app.doLrcForm(),        &app.listControl_Form(),
                                &app.playInfo_Form(),    &app.playList_Form(),
                                &app.playSetForm(),      &app.search_Lrc_Internet_Form(),
                                &app.VideoScreen_Form(), &app.search_Song_Internet_Form(),
                                &app.welcomeForm(),      &app.check_SoundDriver_Form()};
    for (forms::Form *form : all) {
        SCOPED_TRACE(form->name());
        bool isGone = false;
        form->on().Unload = [&isGone] { isGone = true; };
        form->show();
        form->closeRequested();
        EXPECT_FALSE(form->visible());
        EXPECT_FALSE(isGone);
    }
}

TEST_F(WindowRules, EachWindowsOwnCloseButtonHidesIt) {
    const auto expectClosing = [](auto &form) {
        SCOPED_TRACE(form.name());
        form.show();
        form.setEnabled(true);
        clickOn(form.close);
        EXPECT_FALSE(form.visible());
    };
    expectClosing(app.aboutForm());
    expectClosing(app.another_PlayInfo_Form());
    expectClosing(app.check_SoundDriver_Form());
    expectClosing(app.doLrcForm());
    expectClosing(app.listControl_Form());
    expectClosing(app.playInfo_Form());
    expectClosing(app.playList_Form());
    expectClosing(app.playSetForm());
    expectClosing(app.search_Lrc_Internet_Form());
    expectClosing(app.search_Song_Internet_Form());
    expectClosing(app.VideoScreen_Form());
    expectClosing(app.welcomeForm());
}

TEST_F(WindowRules, TheDesktopLineStaysWhereAWindowManagerWouldCloseIt) {
    app.lrcForm().show();
    app.lrcForm().closeRequested();
    EXPECT_TRUE(app.lrcForm().visible());
}

// --- the settings window -------------------------------------------------------------------------

TEST_F(WindowRules, AStoredValueThatIsNeitherYesNorNoLeavesItsBox) {
    const auto *const key = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";
    auto &form = app.playSetForm();
    for (const char16_t *name : {u"AutoUpadate", u"isAutoPlay", u"VideoInterface"})
        fake.registry.setText(key, name, u"7");
    for (const std::int16_t value : {std::int16_t{0}, std::int16_t{1}}) {
        form.autoUpdate.setValue(value);
        form.isAutoPlay.setValue(value);
        form.openVideo_Interface.setValue(value);
        app.formSet().open_PlaySet();
        EXPECT_EQ(form.autoUpdate.value(), value);
        EXPECT_EQ(form.isAutoPlay.value(), value);
        EXPECT_EQ(form.openVideo_Interface.value(), value);
    }
}

// --- the tray ------------------------------------------------------------------------------------

TEST_F(WindowRules, ATraysLeftClickPrefersAMinimisedMainToTheMiniStrip) {
    app.formSet().tray_Add(app.Main());
    app.Main().show();
    app.Main().setWindowState(forms::WindowState::Minimised);
    app.miniForm().show();
    windows.send(app.Main().hWnd(), 2025, 0, 0x202);
    EXPECT_EQ(app.Main().windowState(), forms::WindowState::Normal);
    EXPECT_TRUE(app.miniForm().visible());
}

TEST_F(WindowRules, ATraysLeftClickLeavesMainWhereItIsWhenTheMiniModeEnds) {
    app.formSet().tray_Add(app.Main());
    app.Main().playList_Shown = -1;
    app.Main().setLeft(4321);
    app.miniForm().show();
    windows.send(app.Main().hWnd(), 2025, 0, 0x202);
    EXPECT_TRUE(app.Main().visible());
    EXPECT_EQ(app.Main().left(), 4321) << "nothing docks";
    EXPECT_EQ(app.Main().playList_Shown, -1);
}

// What comes up for it may take the keyboard from another program.
TEST_F(WindowRules, ATraysLeftClickIsAskedByThePerson) {
    app.formSet().tray_Add(app.Main());
    app.Main().show();
    windows.send(app.Main().hWnd(), 2025, 0, 0x202);
    EXPECT_EQ(windows.asks, 1);
}

} // namespace
} // namespace velmora
