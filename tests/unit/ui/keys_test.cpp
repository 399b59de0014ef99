// The key table of the main window and the play list, and the menu entries.

#include "tests/unit/program_fixture.h"

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "settings/playSetForm.h"
#include "ui/aboutForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

constexpr auto fromMain = u"main";
constexpr auto fromList = u"playlist_Form";

class Keys : public ProgramFixture {
protected:
    Keys() {
        speak(1);
        setVolumeBar(0);
        for (const char16_t *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
            addRow(path);
        app.player().nowPlay_Index = 2;
        openAndPlay(u"/m/b.mp3");
        media.clearCommands();
    }
    void press(std::int16_t key, std::u16string_view from = fromMain, std::int16_t shift = 0) {
        app.formSet().form_KeyDown(key, shift, from);
    }
};

TEST_F(Keys, EscapeEndsTheProgramFromMain) {
    expectEnd([&] { press(27); });
}

TEST_F(Keys, EscapeEndsTheProgramFromTheList) {
    expectEnd([&] { press(27, fromList); });
}

TEST_F(Keys, F2IsThePlayButtonInMainAlone) {
    app.player().pause_Sub();
    press(113);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(Keys, F3PausesFromBoth) {
    press(114);
    EXPECT_EQ(media.mode(), u"paused");
    media.setMode(u"playing");
    press(114, fromList);
    EXPECT_EQ(media.mode(), u"paused");
}

TEST_F(Keys, F4ClosesAheadOfTheStoppedLook) {
    app.lrcForm().nowLrcLine = u"line";
    press(115);
    EXPECT_EQ(media.actions(), Texts{u"close NOWMUSIC"});
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"");
    EXPECT_FALSE(app.lrcForm().Timer1.running());
}

TEST_F(Keys, F5AndF6StepThroughTheListInRandomModeToo) {
    app.setControl().PlayMode = 1;
    press(117);
    EXPECT_EQ(media.openPath(), u"/m/c.mp3");
    press(116, fromList);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
}

TEST_F(Keys, F8HidesTheListClearsItsFlagAndBringsMainForward) {
    app.playList_Form().show();
    app.Main().show();
    app.Main().playList_Shown = -1;
    const auto left = app.Main().left();
    windows.shown.clear();
    press(119, fromList);
    EXPECT_FALSE(app.playList_Form().visible());
    EXPECT_EQ(app.Main().playList_Shown, 0);
    EXPECT_EQ(windows.shown, std::vector<std::string>{"Main"});
    EXPECT_EQ(app.Main().left(), left) << "no docking";
}

TEST_F(Keys, F11TogglesTheVideoWindowOnlyWhileItsButtonShows) {
    press(122);
    EXPECT_FALSE(app.VideoScreen_Form().visible());
    app.Main().videoScreen_Button.setVisible(true);
    press(122);
    EXPECT_TRUE(app.VideoScreen_Form().visible());
    EXPECT_TRUE(app.VideoScreen_Form().topmost());
    press(122, fromList);
    EXPECT_FALSE(app.VideoScreen_Form().visible());
}

TEST_F(Keys, F12ShowsTheAboutWindowForItsCaller) {
    press(123, fromList);
    EXPECT_TRUE(app.aboutForm().visible());
    EXPECT_EQ(app.aboutForm().caller_Name, fromList);
    EXPECT_FALSE(app.Main().enabled());
    EXPECT_FALSE(app.playList_Form().enabled());
}

TEST_F(Keys, CtrlSOpensTheSettings) {
    press(83);
    EXPECT_FALSE(app.playSetForm().visible());
    press(83, fromMain, forms::ctrlMask);
    EXPECT_TRUE(app.playSetForm().visible());
    EXPECT_FALSE(app.Main().enabled());
    EXPECT_FALSE(app.playList_Form().enabled());
}

TEST_F(Keys, CtrlIsTestedWithAMask) {
    press(83, fromMain, forms::ctrlMask | forms::shiftMask);
    EXPECT_TRUE(app.playSetForm().visible());
}

TEST_F(Keys, CtrlASelectsEveryRowFromTheListAloneAndPumpsForEach) {
    press(65, fromMain, forms::ctrlMask);
    EXPECT_LT(app.playList_Form().playList_Item.selCount(), 3);
    const int pumps = windows.pumps;
    bool enabledMeanwhile = true;
    windows.atNextPump([&] { enabledMeanwhile = app.playList_Form().playList_Item.enabled(); });
    press(65, fromList, forms::ctrlMask);
    EXPECT_EQ(app.playList_Form().playList_Item.selCount(), 3);
    EXPECT_EQ(windows.pumps - pumps, 3);
    EXPECT_FALSE(enabledMeanwhile);
    EXPECT_TRUE(app.playList_Form().playList_Item.enabled());
}

TEST_F(Keys, F7OpensAndPlaysFromMainAndOnlyAddsFromTheList) {
    addTrack(u"/m/new.mp3");
    addTrack(u"/m/newer.mp3");
    fake.dialogs.expectOpen(u"/m/new.mp3");
    press(118);
    EXPECT_EQ(media.openPath(), u"/m/new.mp3");
    fake.dialogs.expectOpen(u"/m/newer.mp3");
    press(118, fromList);
    EXPECT_EQ(rows(), 5);
    EXPECT_EQ(media.openPath(), u"/m/new.mp3");
}

TEST_F(Keys, EnterAndF2PlayTheSelectedRowFromTheListAlone) {
    app.playList_Form().playList_Item.setSelected(2, true);
    press(13);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    press(113);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    press(13, fromList);
    EXPECT_EQ(media.openPath(), u"/m/c.mp3");
    app.playList_Form().playList_Item.setSelected(0, true);
    press(113, fromList);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(Keys, F4StopsFromTheListAsWell) {
    press(115, fromList);
    EXPECT_FALSE(media.isOpen());
}

TEST_F(Keys, DeleteIsForTheListAlone) {
    press(46); // a question that nobody expected fails the test
    press(46, fromMain, forms::shiftMask);
    EXPECT_EQ(rows(), 3);
}

TEST_F(Keys, F9OpensTheFolderOfTheCurrentRowFromBoth) {
    fake.shell.executions.clear();
    press(120);
    press(120, fromList);
    ASSERT_EQ(fake.shell.executions.size(), 2U);
    EXPECT_EQ(fake.shell.executions[0].target, u"/m/");
    EXPECT_EQ(fake.shell.executions[1].target, u"/m/");
}

TEST_F(Keys, F10CopiesTheSelectionFromBoth) {
    for (const auto *from : {fromMain, fromList}) {
        fake.dialogs.expectFolder(u"/usb");
        fake.dialogs.expectCopy({});
        press(121, from);
    }
    EXPECT_EQ(fake.dialogs.operations.size(), 2U);
}

TEST_F(Keys, LettersWithoutCtrlDoNothing) {
    press(65, fromList);
    press(83, fromList, forms::shiftMask);
    EXPECT_LT(app.playList_Form().playList_Item.selCount(), 3);
    EXPECT_FALSE(app.playSetForm().visible());
}

TEST_F(Keys, CompareTheNameOfTheFormInUpperCase) {
    press(114, u"MAIN");
    EXPECT_EQ(media.mode(), u"paused");
}

TEST_F(Keys, OfAnotherFormDoNothing) {
    for (std::int16_t key = 8; key < 130; ++key)
        press(key, u"miniForm", forms::ctrlMask);
    EXPECT_TRUE(media.commands().empty());
    EXPECT_TRUE(fake.processes.endStatuses.empty());
}

TEST_F(Keys, OfMainsWindowReachTheTable) {
    forms::KeyEvent key{114, 0};
    app.Main().on().KeyDown(key);
    EXPECT_EQ(media.mode(), u"paused");
}

// --- menus ---------------------------------------------------------------------------------------

class MenuEntries : public Keys {
protected:
    MenuForm &menu() { return app.MenuForm(); }
};

TEST_F(MenuEntries, PlayPauseAndStop) {
    menu().pause.choose();
    EXPECT_EQ(media.mode(), u"paused");
    menu().play.choose();
    EXPECT_EQ(media.mode(), u"playing");
    media.clearCommands();
    menu().stop.choose();
    EXPECT_EQ(media.actions(), Texts{u"close NOWMUSIC"});
}

TEST_F(MenuEntries, NextAndPreviousIgnoreThePlayMode) {
    app.setControl().PlayMode = 1;
    menu().nextSong.choose();
    EXPECT_EQ(media.openPath(), u"/m/c.mp3");
    menu().upSong.choose();
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
}

TEST_F(MenuEntries, ModeTogglesTheMiniWindow) {
    app.Main().show();
    menu().mode.choose();
    EXPECT_FALSE(app.Main().visible());
    EXPECT_TRUE(app.miniForm().visible());
    menu().mode.choose();
    EXPECT_TRUE(app.Main().visible());
    EXPECT_FALSE(app.miniForm().visible());
}

TEST_F(MenuEntries, ModeWithBothHiddenDoesNothing) {
    menu().mode.choose();
    EXPECT_FALSE(app.Main().visible());
    EXPECT_FALSE(app.miniForm().visible());
}

TEST_F(MenuEntries, WindowsOpen) {
    menu().playlist.choose();
    EXPECT_TRUE(app.playList_Form().visible());
    menu().doLrc.choose();
    EXPECT_TRUE(app.doLrcForm().visible());
    menu().check_SoundDriver.choose();
    EXPECT_TRUE(app.check_SoundDriver_Form().visible());
    menu().playSet.choose();
    EXPECT_TRUE(app.playSetForm().visible());
    menu().playlist_Hide.choose();
    EXPECT_FALSE(app.playList_Form().visible());
}

TEST_F(MenuEntries, AboutIsForTheSettingsWhenTheyAreOpen) {
    menu().about.choose();
    EXPECT_EQ(app.aboutForm().caller_Name, u"main");
    app.aboutForm().close_Click();
    app.playSetForm().show();
    menu().about.choose();
    EXPECT_EQ(app.aboutForm().caller_Name, u"playset");
    EXPECT_FALSE(app.playSetForm().enabled());
}

TEST_F(MenuEntries, HelpOpensItsPageOfTheSettings) {
    menu().help.choose();
    EXPECT_TRUE(app.playSetForm().visible());
    EXPECT_TRUE(app.playSetForm().help_Frame.visible());
    EXPECT_FALSE(app.Main().enabled());
    EXPECT_FALSE(app.playList_Form().enabled());
}

TEST_F(MenuEntries, CloseEndsTheProgram) {
    expectEnd([&] { menu().close.choose(); });
}

} // namespace
} // namespace velmora
