// The mini strip: its transport, its tick, and its slide at the edge of the screen.

#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"
#include "playlist/playInfo_Form.h"
#include "ui/formSet.h"

#include <cmath>

namespace velmora {
namespace {

class Mini : public ProgramFixture {
protected:
    Mini() {
        speak(1);
        setVolumeBar(0);
        app.formSet().wait_Ms = 1;
        addRow(u"/m/a.mp3");
        addRow(u"/m/b.mp3");
        app.player().nowPlay_Index = 1;
        mini().move({3000, 0, 10980, 690}); // 200 to 932, 46 high in pixels
        mini().show();
        windows.cursor = {300, 20};
    }
    miniForm &mini() { return app.miniForm(); }
    static void click(forms::Control &control) { clickOn(control); }
    void tick() { mini().Timer1.onTimer(); }
    void play() {
        openAndPlay(u"/m/a.mp3");
        media.clearCommands();
    }
};

TEST_F(Mini, AsksForThePointerOnlyAtTheEdgeAndWhileItMayHide) {
    const auto asks = [this] {
        const int before = windows.pointerAsks;
        tick();
        return windows.pointerAsks - before;
    };
    EXPECT_EQ(asks(), 1);
    mini().setTop(300);
    EXPECT_EQ(asks(), 0);
    mini().setTop(0);
    click(mini().auto_Hide_Lock_False);
    EXPECT_EQ(asks(), 0);
}

// --- transport -----------------------------------------------------------------------------------

TEST_F(Mini, PlayReopensAStoppedFileWithoutMainsStop) {
    play();
    app.player().close_Sub(0);
    media.clearCommands();
    click(mini().playButton);
    EXPECT_EQ(media.actions().front(), u"close NOWMUSIC");
    EXPECT_EQ(media.count(u"close NOWMUSIC"), 1U) << "the opening's own alone";
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(Mini, PlayResumesAPausedMedium) {
    play();
    tick(); // shows the button of a pause, then that of a play
    click(mini().pauseButton);
    EXPECT_EQ(media.mode(), u"paused");
    tick();
    click(mini().playButton);
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(media.count(u"close NOWMUSIC"), 0U);
}

TEST_F(Mini, PlayOfAFileThatIsGoneOnlyPlays) {
    play();
    app.player().close_Sub(0);
    files.remove(u"/m/a.mp3");
    media.clearCommands();
    click(mini().playButton);
    EXPECT_EQ(media.count(u"close NOWMUSIC"), 0U);
    EXPECT_EQ(media.count(u"play NOWMUSIC"), 1U);
    EXPECT_FALSE(media.isOpen());
}

TEST_F(Mini, ButtonsOfNextAndPreviousRepeatInTheModeOfOneTrack) {
    app.setControl().PlayMode = 2;
    play();
    click(mini().nextButton);
    EXPECT_EQ(app.player().nowPlay_Index, 2) << "the buttons step all the same";
    click(mini().upButton);
    EXPECT_EQ(app.player().nowPlay_Index, 1);
}

TEST_F(Mini, StopClosesAheadOfTheLook) {
    play();
    app.lrcForm().nowLrcLine = u"line";
    click(mini().stopButton);
    EXPECT_EQ(media.actions(), Texts{u"close NOWMUSIC"});
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"");
}

TEST_F(Mini, NextAndPreviousWalkTheList) {
    play();
    click(mini().nextButton);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    click(mini().upButton);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(Mini, NextDrawsInRandomMode) {
    app.setControl().PlayMode = 1;
    play();
    app.player().nowPlay_Index = 2;
    click(mini().nextButton);
    EXPECT_EQ(app.player().nowPlay_Index, 1) << "of two rows only the first can be drawn";
}

TEST_F(Mini, SeekBarSeeksByItsOwnWidth) {
    play();
    mini().load_Played_BG.setWidth(660);
    mini().load_Played_BG.on().MouseUp({forms::leftButton, 0, 300, 1});
    EXPECT_EQ(media.actions().front(), u"seek NOWMUSIC to 30000");
    EXPECT_EQ(mini().load_Played_BG.mousePointer(), 99);
}

TEST_F(Mini, VolumeBarLeadsAndTheOthersFollow) {
    play();
    mini().Volume_Set_BG.setWidth(400);
    app.Main().Volume_Set_BG.setWidth(1000);
    app.VideoScreen_Form().Volume_Set_BG.setWidth(1600);
    mini().Volume_Set_BG.on().MouseUp({forms::leftButton, 0, 100, 1});
    EXPECT_EQ(media.volume(), 250);
    EXPECT_EQ(mini().Volume_Set.width(), 100);
    EXPECT_EQ(app.Main().Volume_Set.width(), 250);
    EXPECT_EQ(app.VideoScreen_Form().Volume_Set.width(), 400);
    mini().Volume_Set_BG.on().MouseUp({forms::leftButton, 0, 371, 1});
    EXPECT_EQ(media.volume(), 250) << "the last 30 twips are dead";
}

TEST_F(Mini, MuteEmptiesAllThreeFills) {
    play();
    app.Main().Volume_Set.setWidth(500);
    click(mini().Volume_ICO);
    EXPECT_EQ(app.Main().Volume_Set.width(), 0);
    EXPECT_EQ(mini().Volume_Set.width(), 0);
}

TEST_F(Mini, OpensTrackInformationAndDesktopLyricAsMainDoes) {
    play();
    click(mini().playInfo);
    EXPECT_TRUE(app.playInfo_Form().visible());
    app.player().close_Sub(0);
    app.playInfo_Form().hide();
    windows.expectMsgBox(boxOf(app.Language().msg_No_Track_Desktop_Lrc,
                               platform::MsgBoxIcon::Exclamation, app.Language().msg_Error),
                         platform::MsgBoxResult::Ok);
    click(mini().desktop_Lrc);
}

TEST_F(Mini, DoubleClickAnywhereOnItLeadsBack) {
    for (forms::ControlEvents *area :
         {static_cast<forms::ControlEvents *>(&mini().on()), &mini().title_ICO.on(),
          &mini().lrcBox.on(), &mini().nameBox.on(), &mini().lrc_Text.on(),
          &mini().playInfo_Show.on()}) {
        app.Main().hide();
        mini().show();
        area->DblClick();
        EXPECT_TRUE(app.Main().visible());
        EXPECT_FALSE(mini().visible());
    }
}

TEST_F(Mini, IsDraggedAloneByItsGroundItsIconAndItsLines) {
    const auto list = app.playList_Form().place();
    const auto main = app.Main().place();
    for (forms::ControlEvents *area :
         {static_cast<forms::ControlEvents *>(&mini().on()), &mini().title_ICO.on(),
          &mini().lrcBox.on(), &mini().nameBox.on(), &mini().lrc_Text.on(),
          &mini().playInfo_Show.on()}) {
        mini().move({3000, 0, 9000, 690});
        windows.cursor = {300, 20};
        area->MouseDown({forms::leftButton, 0, 1, 1});
        windows.cursor = {310, 60};
        area->MouseMove({forms::leftButton, 0, 1, 1});
        EXPECT_EQ(mini().left(), 3150);
        EXPECT_EQ(mini().top(), 600);
    }
    EXPECT_EQ(app.playList_Form().place(), list);
    EXPECT_EQ(app.Main().place(), main);
}

TEST_F(Mini, HasNoKeysThoughItsTipsNameThem) {
    EXPECT_FALSE(mini().on().KeyDown);
    EXPECT_EQ(mini().playButton.toolTip(), u"播放(F2)");
    EXPECT_EQ(mini().close.toolTip(), u"退出(Esc)");
}

TEST_F(Mini, ItsCloseEndsTheProgram) {
    play();
    expectEnd([this] { click(mini().close); });
    EXPECT_EQ(media.actions(), Texts{u"close NOWMUSIC"});
}

TEST_F(Mini, AWishToCloseItEndsTheProgram) {
    expectEnd([this] { mini().closeRequested(); });
}

TEST_F(Mini, StaysOnTop) { EXPECT_TRUE(mini().topmost()); }

TEST_F(Mini, LeavingWithoutTheListShowsTheMainWindowAlone) {
    app.Main().playList_Shown = 0;
    click(mini().mini_Button);
    EXPECT_TRUE(app.Main().visible());
    EXPECT_FALSE(app.playList_Form().visible());
}

TEST_F(Mini, LeavingBringsTheListBackThatWasOpenBefore) {
    app.Main().show();
    click(app.Main().playListButton);
    ASSERT_TRUE(app.playList_Form().visible());
    click(app.Main().mini_Button);
    EXPECT_FALSE(app.Main().visible());
    EXPECT_FALSE(app.playList_Form().visible());
    mini().lrc_Text.on().DblClick();
    EXPECT_FALSE(mini().visible());
    EXPECT_TRUE(app.Main().visible());
    EXPECT_TRUE(app.playList_Form().visible());
    EXPECT_EQ(app.playList_Form().left(), app.Main().left() + app.Main().width());
}

TEST_F(Mini, RightReleaseOpensTheMenu) {
    windows.expectPopup("menu", "");
    mini().on().MouseUp({forms::rightButton, 0, 1, 1});
}

// --- the tick ------------------------------------------------------------------------------------

TEST_F(Mini, TickShowsLineTimesAndTitleOfAPlayingTrack) {
    play();
    media.advance(30'000);
    app.lrcForm().nowLrcLine = u"a line";
    tick();
    EXPECT_EQ(mini().lrc_Text.caption(), u"a line");
    EXPECT_EQ(mini().play_Time.caption(), u"00:00:30 - 00:01:00");
    EXPECT_EQ(mini().playInfo_Show.caption(), u"〖1/2〗 a");
    EXPECT_TRUE(mini().pauseButton.visible());
    EXPECT_FALSE(mini().playButton.visible());
    EXPECT_EQ(mini().load_Played.width(),
              static_cast<Twips>(app.player().get_PlayedWidth(PlayerWindow::miniForm)));
}

TEST_F(Mini, TickOfAPausedTrackKeepsTimesAndShowsThePlayButton) {
    play();
    media.advance(30'000);
    tick();
    click(mini().pauseButton);
    const auto width = mini().load_Played.width();
    tick();
    EXPECT_EQ(mini().play_Time.caption(), u"00:00:30 - 00:01:00");
    EXPECT_EQ(mini().load_Played.width(), width);
    EXPECT_TRUE(mini().playButton.visible());
    EXPECT_FALSE(mini().pauseButton.visible());
}

TEST_F(Mini, TickRollsALineThatIsWiderThanItsBox) {
    play();
    app.lrcForm().nowLrcLine = std::u16string(100, u'x');
    tick();
    EXPECT_EQ(mini().lrc_Text.alignment(), forms::Alignment::Left);
    EXPECT_EQ(mini().lrc_Text.left(), -50);
    tick();
    EXPECT_EQ(mini().lrc_Text.left(), -100);
    app.lrcForm().nowLrcLine = std::u16string(100, u'y');
    tick();
    EXPECT_EQ(mini().lrc_Text.left(), -50) << "another line starts anew";
    app.lrcForm().nowLrcLine = u"short";
    tick();
    EXPECT_EQ(mini().lrc_Text.alignment(), forms::Alignment::Centre);
    EXPECT_EQ(mini().lrc_Text.left(), mini().lrcBox.width() / 2 - mini().lrc_Text.width() / 2);
}

TEST_F(Mini, TickRollsATitleThatIsWiderThanItsBox) {
    play();
    app.player().nowPlay_Title = std::u16string(100, u'x');
    mini().playInfo_Show.setLeft(0);
    tick();
    EXPECT_EQ(mini().playInfo_Show.left(), -30);
    app.player().nowPlay_Title = u"short";
    tick();
    EXPECT_EQ(mini().playInfo_Show.left(),
              mini().nameBox.width() / 2 - mini().playInfo_Show.width() / 2);
}

TEST_F(Mini, TickWithNothingOpenLeavesTheLookAsItIs) {
    mini().lrc_Text.setCaption(u"left over");
    app.lrcForm().nowLrcLine = u"other";
    tick();
    EXPECT_EQ(mini().lrc_Text.caption(), u"left over");
    EXPECT_TRUE(mini().playButton.visible());
}

TEST_F(Mini, TickOfTheHiddenStripAsksAndAdvances) {
    play();
    media.reachEnd();
    mini().hide();
    tick();
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
}

TEST_F(Mini, RunsFromItsCreationEvery70Milliseconds) {
    EXPECT_TRUE(mini().Timer1.running());
    EXPECT_EQ(mini().Timer1.interval(), 70);
}

// --- the slide -----------------------------------------------------------------------------------

TEST_F(Mini, StaysWhileThePointerIsOnIt) {
    tick();
    EXPECT_EQ(mini().top(), 0);
}

TEST_F(Mini, SlidesOut100TwipsATickOnceThePointerIsBelow) {
    windows.cursor = {300, 47};
    for (int step = 1; step <= 7; ++step) {
        tick();
        EXPECT_EQ(mini().top(), -100 * step);
    }
    tick();
    EXPECT_EQ(mini().top(), -700) << "out of sight";
}

TEST_F(Mini, SleepsItsMillisecondWithEachStep) {
    windows.cursor = {300, 100};
    tick();
    EXPECT_EQ(fake.waitableTimers.dues.back(), (fakes::FakeWaitableTimers::Due{-10'000, -1}));
}

TEST_F(Mini, StaysWithThePointerOnItsLastRow) {
    windows.cursor = {300, 46};
    tick();
    EXPECT_EQ(mini().top(), 0);
}

TEST_F(Mini, SlidesOutWithThePointerBesidesIt) {
    windows.cursor = {199, 20};
    tick();
    EXPECT_EQ(mini().top(), -100);
    windows.cursor = {933, 20};
    tick();
    EXPECT_EQ(mini().top(), -200);
    windows.cursor = {200, 20};
    tick();
    windows.cursor = {932, 20};
    tick();
    EXPECT_EQ(mini().top(), -200);
}

TEST_F(Mini, ComesBackAtOnceWithThePointerAtTheTopInItsColumns) {
    for (const auto &[from, steps] : std::vector<std::pair<Twips, int>>{
             {-700, 7}, {-690, 7}, {-601, 7}, {-600, 6}, {-1, 1}, {0, 0}}) {
        for (const std::int32_t x : {200, 300, 800}) {
            mini().setTop(from);
            windows.cursor = {x, 0};
            std::vector<Twips> tops;
            fake.waitableTimers.onWait = [&] { tops.push_back(mini().top()); };
            tick();
            EXPECT_EQ(mini().top(), 0) << from;
            std::vector<Twips> expected;
            for (int step = 1; step <= steps; ++step)
                expected.push_back(from + 100 * static_cast<Twips>(step));
            EXPECT_EQ(tops, expected) << "a step, then a sleep, from " << from;
        }
    }
    fake.waitableTimers.onWait = {};
}

TEST_F(Mini, DoesNotComeBackWithThePointerAPixelBesidesItsColumns) {
    for (const std::int32_t x : {199, 933}) {
        mini().setTop(-689);
        windows.cursor = {x, 0};
        tick();
        EXPECT_EQ(mini().top(), -789) << "it goes on out of sight";
        mini().setTop(-690);
        tick();
        EXPECT_EQ(mini().top(), -690) << "as far as its height";
    }
}

TEST_F(Mini, ComesBackFromAnywhereAboveWithThePointerOnTheFirstRowAlone) {
    mini().setTop(-300);
    windows.cursor = {300, 1};
    tick();
    EXPECT_EQ(mini().top(), -300) << "neither below it nor at the top of the screen";
}

TEST_F(Mini, AStripASlideLeftBelowTheEdgeIsPutOnIt) {
    mini().setTop(10);
    windows.cursor = {300, 0};
    tick();
    EXPECT_EQ(mini().top(), 0);
}

TEST_F(Mini, IsLowEnoughToHideWithinHalfASecond) {
    const miniForm_Design designed(windows);
    EXPECT_LE(designed.height() / twipsPerPixel, 46);
    const int steps = static_cast<int>(std::ceil(designed.height() / 100));
    EXPECT_LE(steps * designed.Timer1.interval(), 500);
}

TEST_F(Mini, DoesNotComeBackWithThePointerAtTheTopBesidesIt) {
    mini().setTop(-300);
    windows.cursor = {100, 0};
    tick();
    EXPECT_EQ(mini().top(), -400);
}

TEST_F(Mini, DraggedAwayFromTheEdgeDoesNotSlide) {
    windows.cursor = {300, 500};
    mini().setTop(11);
    tick();
    EXPECT_EQ(mini().top(), 11);
    mini().setTop(10);
    tick();
    EXPECT_EQ(mini().top(), -90);
}

TEST_F(Mini, LockedStaysWhereverThePointerGoes) {
    click(mini().auto_Hide_Lock_False);
    EXPECT_EQ(mini().auto_Hide, 0);
    EXPECT_TRUE(mini().auto_Hide_Lock_True.visible());
    EXPECT_FALSE(mini().auto_Hide_Lock_False.visible());
    windows.cursor = {300, 500};
    tick();
    EXPECT_EQ(mini().top(), 0);
    click(mini().auto_Hide_Lock_True);
    EXPECT_EQ(mini().auto_Hide, -1);
    EXPECT_FALSE(mini().auto_Hide_Lock_True.visible());
    EXPECT_TRUE(mini().auto_Hide_Lock_False.visible());
    tick();
    EXPECT_EQ(mini().top(), -100);
}

TEST_F(Mini, TheTickOfAHiddenStripAsksForThePointerAndSlides) {
    mini().hide();
    windows.cursor = {300, 500};
    const auto *window = fakes::FakeWindows::windowOf(mini());
    const int paints = window == nullptr ? 0 : window->paints;
    tick();
    EXPECT_EQ(mini().top(), -100);
    EXPECT_EQ(window == nullptr ? 0 : window->paints, paints) << "nobody sees it";
}

TEST_F(Mini, EnteringBringsAStripThatSlidOutWhileHiddenBackToTheEdge) {
    mini().hide();
    mini().setTop(-700);
    app.Main().show();
    click(app.Main().mini_Button);
    EXPECT_EQ(mini().top(), 0);
    EXPECT_TRUE(mini().visible());
}

TEST_F(Mini, StaysWhereThePointerIsUnknown) {
    windows.cursorFails = true;
    tick();
    EXPECT_EQ(mini().top(), 0);
}

TEST_F(Mini, GoesOnWithItsTickWhenTheSleepFails) {
    play();
    media.advance(1000);
    fake.waitableTimers.creationFails = true;
    windows.cursor = {300, 500};
    tick();
    EXPECT_EQ(mini().play_Time.caption(), u"00:00:01 - 00:01:00");
}

} // namespace
} // namespace velmora
