// What is asked of the player from outside: each command is the click on the button it names.

#include "tests/unit/playback/remote_fixture.h"

#include "lyrics/lrcForm.h"
#include "playlist/list_work.h"
#include "settings/playSetForm.h"
#include "tests/unit/pointer.h"

namespace velmora {
namespace {

using platform::RemoteCommand;
using platform::RemoteLoop;
using platform::RemoteStatus;

class RemoteCommands : public RemoteFixture {
protected:
    void pauseAndEndTheCall() {
        ASSERT_EQ(media.mode(), u"playing");
        ask(RemoteCommand::Pause);
        settle();
        media.clearCommands();
        app.remoteControl().quiet(false);
        EXPECT_THAT(media.actions(), ::testing::IsEmpty());
        EXPECT_EQ(media.mode(), u"paused");
    }
};

TEST_F(RemoteCommands, PlayWhilePlayingDoesNothing) {
    play();
    ask(RemoteCommand::Play);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
}

TEST_F(RemoteCommands, PauseWhilePausedDoesNothing) {
    play();
    ask(RemoteCommand::Pause);
    EXPECT_EQ(media.actions(), Texts{u"pause NOWMUSIC"});
    settle();
    media.clearCommands();
    ask(RemoteCommand::Pause);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
}

TEST_F(RemoteCommands, PlayPausePausesWhatPlaysAndPlaysWhatIsPaused) {
    play();
    ask(RemoteCommand::PlayPause);
    EXPECT_EQ(media.mode(), u"paused");
    settle();
    ask(RemoteCommand::PlayPause);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(RemoteCommands, ACallPausesWhatPlaysAndItsEndGoesOn) {
    play();
    app.remoteControl().quiet(true);
    EXPECT_EQ(media.mode(), u"paused");
    settle();
    app.remoteControl().quiet(false);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(RemoteCommands, TheEndOfACallStartsNothingThatDidNotPlay) {
    play();
    ask(RemoteCommand::Pause);
    settle();
    app.remoteControl().quiet(true);
    settle();
    app.remoteControl().quiet(false);
    EXPECT_EQ(media.mode(), u"paused");
}

TEST_F(RemoteCommands, TheEndOfACallLeavesAloneWhatAPersonStartedAndPausedMeanwhile) {
    play();
    app.remoteControl().quiet(true);
    settle();
    ask(RemoteCommand::Play);
    settle();
    pauseAndEndTheCall();
}

TEST_F(RemoteCommands, TheEndOfACallLeavesAloneATrackThatAPersonWentOnToAndPausedMeanwhile) {
    play();
    app.remoteControl().quiet(true);
    settle();
    ask(RemoteCommand::Next);
    settle();
    pauseAndEndTheCall();
}

TEST_F(RemoteCommands, TheEndOfACallLeavesAloneWhatAPersonStartedAndPausedRightAheadOfIt) {
    play();
    app.remoteControl().quiet(true);
    settle();
    ask(RemoteCommand::Play);
    settle();
    app.player().pause_Sub();
    media.clearCommands();
    app.remoteControl().quiet(false);
    EXPECT_EQ(media.mode(), u"paused");
}

TEST_F(RemoteCommands, PlayAfterAStopOpensTheTrackAgain) {
    play();
    ask(RemoteCommand::Stop);
    EXPECT_FALSE(media.isOpen());
    settle();
    ask(RemoteCommand::Play);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(RemoteCommands, NextAndPreviousPlayAtOnceEvenFromAPause) {
    play();
    app.player().nowPlay_Index = 1;
    ask(RemoteCommand::Pause);
    settle();
    ask(RemoteCommand::Next);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    ask(RemoteCommand::Previous);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(RemoteCommands, NextAndPreviousInAListOfOneTrackPlayItFromItsBeginning) {
    for (const RemoteCommand command : {RemoteCommand::Next, RemoteCommand::Previous}) {
        app.playList_Form().playList_Item.clear();
        app.playList_Form().List1.clear();
        addRow(u"/m/a.mp3", 60'000);
        play();
        media.advance(10'000);
        ask(command);
        EXPECT_EQ(media.openPath(), u"/m/a.mp3");
        EXPECT_EQ(player().positionMs(), 0);
    }
}

TEST_F(RemoteCommands, NextWithAnEmptyListDoesNothing) {
    app.playList_Form().playList_Item.clear();
    app.playList_Form().List1.clear();
    ask(RemoteCommand::Next);
    ask(RemoteCommand::Previous);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
}

TEST_F(RemoteCommands, ADisabledMainTakesNoneOfThem) {
    play();
    main().setEnabled(false);
    for (const RemoteCommand command :
         {RemoteCommand::Pause, RemoteCommand::PlayPause, RemoteCommand::Stop, RemoteCommand::Next,
          RemoteCommand::Previous, RemoteCommand::Quit})
        ask(command);
    player().seekBy(5000);
    player().seekTo(now().track, 5000);
    player().setVolume(0.5);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
    EXPECT_EQ(main().Volume_Set.width(), 0);
}

TEST_F(RemoteCommands, WorkOnTheListTakesNoneOfThem) {
    play();
    const ListWork work(app);
    ask(RemoteCommand::Pause);
    ask(RemoteCommand::Next);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
}

TEST_F(RemoteCommands, ABoxThatIsUpTakesNoneOfThem) {
    play();
    windows.modal = true;
    ask(RemoteCommand::Next);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
    windows.modal = false;
    ask(RemoteCommand::Next);
    EXPECT_THAT(media.actions(), ::testing::Not(::testing::IsEmpty()));
}

TEST_F(RemoteCommands, TheLastThatIsAskedForDuringTheStartIsDoneAtItsEndAndOnce) {
    main().Timer1.setRunning(false);
    ask(RemoteCommand::Previous);
    ask(RemoteCommand::Next);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
    main().Timer1.setRunning(true);
    windows.advance(1000);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    windows.advance(3000);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(RemoteCommands, ToBeFoundAgainDuringTheStartTakesNothingBackThatWasAskedForAheadOfIt) {
    main().Timer1.setRunning(false);
    ask(RemoteCommand::Next);
    ask(RemoteCommand::Raise);
    main().Timer1.setRunning(true);
    windows.advance(1000);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(RemoteCommands, WhatIsAskedForDuringTheStartWaitsForABoxToBeAnswered) {
    main().Timer1.setRunning(false);
    ask(RemoteCommand::Next);
    main().Timer1.setRunning(true);
    main().setEnabled(false);
    windows.advance(3000);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
    main().setEnabled(true);
    windows.advance(1000);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(RemoteCommands, WhatIsAskedForDuringTheStartWaitsForABoxThatComesUpAtItsEnd) {
    main().Timer1.setRunning(false);
    ask(RemoteCommand::Next);
    main().Timer1.setRunning(true);
    tickMain();
    windows.modal = true;
    windows.advance(0);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
    windows.modal = false;
    windows.advance(1000);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(RemoteCommands, QuitIsTheCloseButton) {
    expectEnd([&] { ask(RemoteCommand::Quit); });
}

TEST_F(RemoteCommands, RaiseEndsTheMiniWindow) {
    main().show();
    main().mini_Button_Click();
    ASSERT_FALSE(main().visible());
    ask(RemoteCommand::Raise);
    EXPECT_TRUE(main().visible());
    EXPECT_FALSE(app.miniForm().visible());
}

TEST_F(RemoteCommands, RaiseBringsAMinimisedPlayerBackWhileItIsDisabled) {
    main().show();
    main().minimizeButton_Click();
    main().setEnabled(false);
    ask(RemoteCommand::Raise);
    EXPECT_EQ(main().windowState(), forms::WindowState::Normal);
}

TEST_F(RemoteCommands, ManyAtOnceDoNotPileUpOneInsideTheOther) {
    setVolumeBar(100);
    int asked = 0;
    int deep = 0;
    int deepest = 0;
    windows.onPump = [&] {
        if (++asked > 50)
            return;
        deepest = std::max(deepest, ++deep);
        ask(RemoteCommand::Next);
        --deep;
    };
    ask(RemoteCommand::Next);
    windows.onPump = {};
    EXPECT_LE(deepest, 8);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(RemoteCommands, AnyNumberOneBehindTheOtherIsDone) {
    play();
    for (int i = 0; i < 10; ++i) {
        ask(RemoteCommand::Pause);
        EXPECT_EQ(media.mode(), u"paused") << i;
        settle();
        ask(RemoteCommand::Play);
        EXPECT_EQ(media.mode(), u"playing") << i;
        settle();
    }
}

TEST_F(RemoteCommands, StopWhileStoppedDoesNothing) {
    play();
    ask(RemoteCommand::Stop);
    settle();
    media.clearCommands();
    ask(RemoteCommand::Stop);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
}

// --- seeking -------------------------------------------------------------------------------------

TEST_F(RemoteCommands, SeekingGoesByTheWayAndTellsOfTheJumpOnce) {
    play();
    media.advance(10'000);
    player().seekBy(5'000);
    EXPECT_EQ(media.count(u"seek NOWMUSIC to 15000"), 1U);
    EXPECT_EQ(remote.jumps, std::vector<std::int32_t>{15'000});
}

TEST_F(RemoteCommands, SeekingBelowTheBeginningIsTheBeginning) {
    play();
    media.advance(10'000);
    player().seekBy(INT64_MIN);
    EXPECT_EQ(media.count(u"seek NOWMUSIC to 0"), 1U);
}

TEST_F(RemoteCommands, SeekingBeyondTheEndIsTheNextTrack) {
    play();
    app.player().nowPlay_Index = 1;
    player().seekBy(INT64_MAX);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_TRUE(remote.jumps.empty());
}

TEST_F(RemoteCommands, APositionIsSetForTheTrackThatPlaysAndInsideIt) {
    play();
    const std::uint32_t track = now().track;
    player().seekTo(track + 1, 1'000);
    player().seekTo(track, -1);
    player().seekTo(track, 60'001);
    EXPECT_THAT(media.actions(), ::testing::IsEmpty());
    player().seekTo(track, 60'000);
    EXPECT_EQ(media.count(u"seek NOWMUSIC to 60000"), 1U);
}

TEST_F(RemoteCommands, AJumpThatTheEngineRefusedIsNone) {
    play();
    media.failBeginningWith(u"seek");
    player().seekBy(1'000);
    EXPECT_TRUE(remote.jumps.empty());
}

TEST_F(RemoteCommands, AClickOnTheBarIsAJumpAndATrackChangeIsNone) {
    play();
    clickOn(main().nextButton);
    settle();
    EXPECT_TRUE(remote.jumps.empty());
    main().load_Played_BG_MouseUp(main().load_Played_BG.width() / 2);
    EXPECT_EQ(remote.jumps.size(), 1U);
}

TEST_F(RemoteCommands, AfterASeekTheLineWaitsForTheNextOne) {
    files.addFile(u"/m/a.lrc", "[00:50.00]late\r\n");
    play();
    app.lrcForm().lrcWaitText = u"wait";
    player().seekBy(1'000);
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"wait");
}

TEST_F(RemoteCommands, ThePositionIsThatOfTheMediumAndNoneWhenStopped) {
    play();
    media.advance(12'345);
    EXPECT_EQ(player().positionMs(), 12'345);
    ask(RemoteCommand::Stop);
    settle();
    EXPECT_EQ(player().positionMs(), 0);
}

TEST_F(RemoteCommands, AskingForThePositionNeverStartsTheNextTrack) {
    play();
    media.reachEnd();
    player().positionMs();
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    EXPECT_EQ(media.count(u"status NOWMUSIC mode"), 0U);
}

TEST_F(RemoteCommands, SeekingToTheVeryEndAndTheVeryBeginningStaysInTheTrack) {
    play();
    media.advance(10'000);
    player().seekBy(50'000);
    EXPECT_EQ(media.count(u"seek NOWMUSIC to 60000"), 1U);
    player().seekTo(now().track, 0);
    EXPECT_EQ(media.count(u"seek NOWMUSIC to 0"), 1U);
    EXPECT_EQ(player().positionMs(), 0);
}

// --- volume and order ----------------------------------------------------------------------------

TEST_F(RemoteCommands, TheVolumeIsTheBarsAndReachesAllThreeOfThem) {
    play();
    player().setVolume(0.5);
    EXPECT_EQ(media.volume(), 500);
    EXPECT_EQ(main().Volume_Set.width(), 500);
    EXPECT_EQ(app.miniForm().Volume_Set.width(), app.miniForm().Volume_Set_BG.width() / 2);
}

TEST_F(RemoteCommands, TheVolumeStopsWhereTheBarDoes) {
    play();
    player().setVolume(-3);
    EXPECT_EQ(media.volume(), 0);
    player().setVolume(7);
    EXPECT_EQ(media.volume(), 970);
}

TEST_F(RemoteCommands, LoopAndShuffleAreThePlayModes) {
    velmora::setControl &settings = app.setControl();
    EXPECT_TRUE(player().setShuffle(true));
    EXPECT_EQ(settings.PlayMode, 1);
    EXPECT_TRUE(player().setLoop(RemoteLoop::Playlist));
    EXPECT_EQ(settings.PlayMode, 1);
    EXPECT_TRUE(player().setLoop(RemoteLoop::Track));
    EXPECT_EQ(settings.PlayMode, 2);
    EXPECT_TRUE(player().setShuffle(false));
    EXPECT_EQ(settings.PlayMode, 2);
    EXPECT_TRUE(player().setLoop(RemoteLoop::Playlist));
    EXPECT_EQ(settings.PlayMode, 0);
    EXPECT_FALSE(player().setLoop(RemoteLoop::None));
    EXPECT_EQ(settings.PlayMode, 0);
}

TEST_F(RemoteCommands, AnOrderThatWasChosenIsKeptAndShowsInTheSettings) {
    player().setLoop(RemoteLoop::Track);
    EXPECT_EQ(app.setControl().get_PlayMode(), 2);
    EXPECT_TRUE(app.playSetForm().Play_RepeatPlay.value());
    EXPECT_FALSE(app.playSetForm().Play_Order.value());
}

TEST_F(RemoteCommands, WhereTracksDoNotFollowEachOtherThereIsNoOrder) {
    app.setControl().isAutoPlay = 1;
    EXPECT_FALSE(player().setLoop(RemoteLoop::Track));
    EXPECT_FALSE(player().setShuffle(true));
    EXPECT_EQ(app.setControl().PlayMode, 0);
}

TEST_F(RemoteCommands, AnOrderIsNotChangedWhileABoxIsUp) {
    windows.modal = true;
    EXPECT_TRUE(player().setLoop(RemoteLoop::Track));
    EXPECT_EQ(app.setControl().PlayMode, 0);
}

TEST_F(RemoteCommands, TheOrderThatHoldsIsNotWrittenAgain) {
    ASSERT_EQ(app.setControl().PlayMode, 0);
    fake.registry.clearLog();
    EXPECT_TRUE(player().setShuffle(false));
    EXPECT_TRUE(fake.registry.log().empty());
}

// --- full screen ---------------------------------------------------------------------------------

class RemoteFilm : public RemoteCommands {
protected:
    RemoteFilm() {
        addTrack(u"/m/film.avi", 60'000, true);
        app.setControl().VideoInterface = 1;
        play(u"/m/film.avi");
    }
    bool isWhole() { return app.player().isFullScreen != 0; }
};

TEST_F(RemoteFilm, ThatFillsTheScreenAlreadyGoesOnDoingSo) {
    player().setFullscreen(false);
    EXPECT_FALSE(isWhole());
    player().setFullscreen(true);
    player().setFullscreen(true);
    EXPECT_TRUE(isWhole());
}

TEST_F(RemoteFilm, StaysAsItIsWhileABoxIsUp) {
    windows.modal = true;
    player().setFullscreen(true);
    EXPECT_FALSE(isWhole());
}

TEST_F(RemoteFilm, ThatIsOverFillsNoScreen) {
    play();
    player().setFullscreen(true);
    EXPECT_FALSE(isWhole());
}

} // namespace
} // namespace velmora
