// The transport buttons of the main window, and taking in a file that was picked.

#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/miniForm.h"

namespace velmora {
namespace {

class Transport : public ProgramFixture {
protected:
    Transport() {
        speak(1);
        setVolumeBar(0);
        for (const char16_t *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
            addRow(path);
        app.setControl().Path_List = u"/lists";
        files.addFolder(u"/lists");
    }
    void click(forms::Control &control) { clickOn(control); }
    Main &main() { return app.Main(); }
};

// --- play ----------------------------------------------------------------------------------------

TEST_F(Transport, PlayReopensAStoppedFile) {
    openAndPlay(u"/m/a.mp3");
    click(main().stopButton);
    media.clearCommands();
    click(main().playButton);
    EXPECT_EQ(media.actions(),
              (Texts{u"close NOWMUSIC", u"close NOWMUSIC",
                     u"open /m/a.mp3 type MPEGVideo alias NOWMUSIC style child ",
                     u"set NOWMUSIC time format milliseconds", u"setaudio NOWMUSIC volume to 0",
                     u"play NOWMUSIC", u"setaudio NOWMUSIC volume to 0",
                     u"setaudio  NOWMUSIC source to stereo"}));
}

TEST_F(Transport, PlayResumesAPausedMediumWithAFadeIn) {
    setVolumeBar(8);
    openAndPlay(u"/m/a.mp3");
    media.advance(3000);
    click(main().pauseButton);
    media.clearCommands();
    click(main().playButton);
    EXPECT_EQ(
        media.actions(),
        (Texts{u"setaudio NOWMUSIC volume to 0", u"play NOWMUSIC", u"setaudio NOWMUSIC volume to 0",
               u"setaudio NOWMUSIC volume to 6", u"setaudio NOWMUSIC volume to 7",
               u"setaudio NOWMUSIC volume to 8", u"setaudio  NOWMUSIC source to stereo"}));
    EXPECT_EQ(media.positionMs(), 3000);
}

TEST_F(Transport, PlayWithNothingKnownBringsTheStoppedLook) {
    main().play_Time.setCaption(u"x");
    click(main().playButton);
    EXPECT_EQ(media.actions(), (Texts{u"setaudio NOWMUSIC volume to 0", u"play NOWMUSIC"}));
    EXPECT_EQ(main().play_Time.caption(), u"00:00:00 - 00:00:00");
}

TEST_F(Transport, PlayOfAStoppedFileThatIsGoneOpensNothing) {
    openAndPlay(u"/m/a.mp3");
    click(main().stopButton);
    files.remove(u"/m/a.mp3");
    media.clearCommands();
    click(main().playButton);
    EXPECT_EQ(media.actions(), (Texts{u"setaudio NOWMUSIC volume to 0", u"play NOWMUSIC"}));
}

TEST_F(Transport, PlayStartsATrackAgainThatEndedWithoutAutoPlay) {
    app.setControl().isAutoPlay = 1;
    openAndPlay(u"/m/a.mp3");
    media.reachEnd();
    tickMain();
    click(main().playButton);
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(media.positionMs(), 0);
}

// --- the others ----------------------------------------------------------------------------------

TEST_F(Transport, PauseSendsOneCommand) {
    openAndPlay(u"/m/a.mp3");
    tickMain(); // shows the button
    media.clearCommands();
    click(main().pauseButton);
    EXPECT_EQ(media.texts(), Texts{u"pause NOWMUSIC"});
}

TEST_F(Transport, StopShowsTheLookAheadOfTheClose) {
    openAndPlay(u"/m/a.mp3");
    app.lrcForm().nowLrcLine = u"line";
    media.clearCommands();
    click(main().stopButton);
    EXPECT_EQ(media.texts(), Texts{u"close NOWMUSIC"});
    EXPECT_FALSE(app.lrcForm().Timer1.running());
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"");
    EXPECT_EQ(app.player().nowPlay_File, u"/m/a.mp3");
}

TEST_F(Transport, NextAndPreviousWalkTheList) {
    app.player().nowPlay_Index = 1;
    click(main().nextButton);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    click(main().upButton);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(Transport, NextAndPreviousWalkTheListInRepeatModeToo) {
    app.setControl().PlayMode = 2;
    app.player().nowPlay_Index = 1;
    click(main().nextButton);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    click(main().upButton);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(Transport, NextAndPreviousDrawInRandomModeButNeverTheLastRow) {
    app.setControl().PlayMode = 1;
    for (int press = 0; press < 60; ++press) {
        fake.clock.advance(91);
        click(press % 2 == 0 ? static_cast<forms::Control &>(main().nextButton)
                             : static_cast<forms::Control &>(main().upButton));
        EXPECT_NE(media.openPath(), u"/m/c.mp3");
    }
}

TEST_F(Transport, NextAndPreviousGoInOrderWhateverTheDrawWouldBe) {
    for (int press = 0; press < 20; ++press) {
        fake.clock.advance(91);
        app.player().nowPlay_Index = 3;
        click(main().upButton);
        EXPECT_EQ(media.openPath(), u"/m/b.mp3");
        click(main().nextButton);
        EXPECT_EQ(media.openPath(), u"/m/c.mp3");
    }
}

TEST_F(Transport, BothDrawInRandomMode) {
    app.setControl().PlayMode = 1;
    for (forms::Control *button : {static_cast<forms::Control *>(&main().nextButton),
                                   static_cast<forms::Control *>(&main().upButton)}) {
        Texts opened;
        for (int press = 0; press < 40; ++press) {
            fake.clock.advance(91);
            app.player().nowPlay_Index = 1;
            click(*button);
            opened.push_back(media.openPath());
        }
        EXPECT_THAT(opened, testing::Contains(u"/m/a.mp3"));
        EXPECT_THAT(opened, testing::Contains(u"/m/b.mp3"));
    }
}

// --- the stopped look ----------------------------------------------------------------------------

TEST_F(Transport, TheStoppedLookIsTheSameSixSettingsOnBothWindows) {
    main().setCaption(u"rolling");
    main().lrc_Text.setCaption(u"line");
    main().playInfo_Show.setCaption(u"title");
    main().load_Played.setWidth(300);
    main().playButton.setVisible(false);
    main().pauseButton.setVisible(true);
    auto &mini = app.miniForm();
    mini.setCaption(u"its own");
    mini.lrc_Text.setCaption(u"line");
    mini.load_Played.setWidth(300);
    mini.playButton.setVisible(false);
    mini.pauseButton.setVisible(true);
    app.lrcForm().nowLrcLine = u"line";
    app.lrcForm().lrc_Text.setCaption(u"line");
    media.clearCommands();

    main().stop_Sub();

    EXPECT_TRUE(media.commands().empty()) << "the look alone; the engine is not told";
    EXPECT_EQ(main().caption(), main().title.caption());
    EXPECT_EQ(main().lrc_Text.caption(), u"");
    EXPECT_EQ(main().playInfo_Show.caption(), u"Welcome to Velmora");
    EXPECT_EQ(main().playInfo_Show.left(),
              main().nameBox.width() / 2 - main().playInfo_Show.width() / 2);
    EXPECT_EQ(main().play_Time.caption(), u"00:00:00 - 00:00:00");
    EXPECT_EQ(main().load_Played.width(), 15);
    EXPECT_TRUE(main().playButton.visible());
    EXPECT_FALSE(main().pauseButton.visible());
    EXPECT_EQ(mini.caption(), u"its own") << "no caption rolls there";
    EXPECT_EQ(mini.lrc_Text.caption(), u"");
    EXPECT_EQ(mini.playInfo_Show.caption(), u"Welcome to Velmora");
    EXPECT_EQ(mini.playInfo_Show.left(), mini.nameBox.width() / 2 - mini.playInfo_Show.width() / 2);
    EXPECT_EQ(mini.play_Time.caption(), u"00:00:00 - 00:00:00");
    EXPECT_EQ(mini.load_Played.width(), 15);
    EXPECT_TRUE(mini.playButton.visible());
    EXPECT_FALSE(mini.pauseButton.visible());
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"");
    EXPECT_EQ(app.lrcForm().lrc_Text.caption(), u"");
}

// --- a file that was picked ----------------------------------------------------------------------

TEST_F(Transport, APickedFileIsAppendedPlayedAndSaved) {
    addTrack(u"/m/new.mp3");
    main().take_Chosen_File(u"/m/new.mp3");
    EXPECT_EQ(rows(), 4);
    EXPECT_EQ(app.playList_Form().playList_Item.list(3), u"new");
    EXPECT_EQ(app.playList_Form().List1.list(3), u"/m/new.mp3");
    EXPECT_EQ(media.openPath(), u"/m/new.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(files.contents(u"/lists/zkPlayList.m3u"),
              "/m/a.mp3\r\n/m/b.mp3\r\n/m/c.mp3\r\n/m/new.mp3\r\n");
}

TEST_F(Transport, APickedFileCountsAsOneBeyondItsRowSoThatNextWraps) {
    addTrack(u"/m/new.mp3");
    main().take_Chosen_File(u"/m/new.mp3");
    EXPECT_EQ(app.player().nowPlay_Index, 5);
    app.player().next_Sub(1);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(Transport, APickedFileClosesAPlayingMediumFirst) {
    openAndPlay(u"/m/a.mp3");
    addTrack(u"/m/new.mp3");
    media.clearCommands();
    main().take_Chosen_File(u"/m/new.mp3");
    const auto actions = media.actions();
    EXPECT_EQ(actions[0], u"close NOWMUSIC");
    EXPECT_EQ(actions[1], u"close NOWMUSIC"); // the opening's own
}

TEST_F(Transport, APickedFileOfTheListIsSelectedAndTheMusicStays) {
    openAndPlay(u"/m/a.mp3");
    app.playList_Form().playList_Item.setSelected(2, true);
    media.clearCommands();
    main().take_Chosen_File(u"/m/b.mp3");
    EXPECT_TRUE(media.commands().empty());
    EXPECT_TRUE(app.playList_Form().playList_Item.selected(1));
    EXPECT_EQ(app.playList_Form().playList_Item.selCount(), 1);
    EXPECT_FALSE(files.hasFile(u"/lists/zkPlayList.m3u"));
}

TEST_F(Transport, APickedFileOfTheListSelectsAllRowsOfItsName) {
    addRowOnly(u"/other/b.mp3");
    main().take_Chosen_File(u"/m/b.mp3");
    EXPECT_TRUE(app.playList_Form().playList_Item.selected(1));
    EXPECT_TRUE(app.playList_Form().playList_Item.selected(3));
    EXPECT_EQ(app.playList_Form().playList_Item.selCount(), 2);
}

TEST_F(Transport, APickedFileWithoutAStemIsRefusedWithAMessage) {
    addTrack(u"/m.d/song");
    windows.expectMsgBox(boxOf(app.Language().msg_Bad_Path, platform::MsgBoxIcon::Critical,
                               app.Language().msg_Error),
                         platform::MsgBoxResult::Ok);
    main().take_Chosen_File(u"/m.d/song");
    EXPECT_EQ(rows(), 3);
    EXPECT_FALSE(media.isOpen());
    EXPECT_TRUE(files.hasFile(u"/lists/zkPlayList.m3u"));
}

TEST_F(Transport, APickedFileThatDoesNotOpenStaysInTheListAndBringsTheStoppedLook) {
    files.addFile(u"/m/broken.mp3");
    main().play_Time.setCaption(u"x");
    main().take_Chosen_File(u"/m/broken.mp3");
    EXPECT_EQ(rows(), 4);
    EXPECT_EQ(main().play_Time.caption(), u"00:00:00 - 00:00:00");
}

TEST_F(Transport, APickedFileThatDoesNotOpenTakesTheLyricOfTheOneThatPlayedAlong) {
    openAndPlay(u"/m/a.mp3");
    app.lrcForm().List1.addItem(u"[00:01]words");
    main().take_Chosen_File(u"/m/none.mp3");
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
}

TEST_F(Transport, APickedFileOfTheListBringsItsRowIntoView) {
    for (int row = 0; row < 40; ++row)
        addRowOnly(u"/m/" + fromAscii(std::to_string(row)) + u".mp3");
    main().take_Chosen_File(u"/m/39.mp3");
    const forms::ListBox &names = app.playList_Form().playList_Item;
    EXPECT_EQ(names.topIndex(), names.listCount() - names.designRows());
}

TEST_F(Transport, APickedFileOfTheListDeselectsItsFirstRowToo) {
    forms::ListBox &names = app.playList_Form().playList_Item;
    names.setSelected(0, true);
    main().take_Chosen_File(u"/m/b.mp3");
    EXPECT_FALSE(names.selected(0));
    EXPECT_TRUE(names.selected(1));
}

TEST_F(Transport, NoPickedFileChangesNothingButGivesTheWindowsBack) {
    main().setEnabled(false);
    app.playList_Form().setEnabled(false);
    main().take_Chosen_File(u"");
    EXPECT_TRUE(main().enabled());
    EXPECT_TRUE(app.playList_Form().enabled());
    EXPECT_TRUE(media.commands().empty());
    EXPECT_EQ(rows(), 3);
    EXPECT_EQ(main().chosen_File, u"");
}

} // namespace
} // namespace velmora
