// The keys, buttons and tick of the video window.

#include "tests/unit/playback/video_fixture.h"
#include "tests/unit/pointer.h"

namespace velmora {
namespace {

// --- keys ----------------------------------------------------------------------------------------

TEST_F(Video, EscapeLeavesFullScreenThenHides) {
    play();
    window().setFullScreen(true);
    key(27);
    EXPECT_EQ(window().width(), 10950);
    EXPECT_TRUE(window().visible());
    key(27);
    EXPECT_FALSE(window().visible());
    EXPECT_TRUE(fake.processes.endStatuses.empty());
}

TEST_F(Video, EnterTogglesFullScreen) {
    play();
    key(13);
    EXPECT_EQ(app.player().isFullScreen, -1);
    key(13);
    EXPECT_EQ(app.player().isFullScreen, 0);
}

TEST_F(Video, EnterPutsThePictureOnTheWayThereAndKeepsItOnTheWayBack) {
    play();
    key(13);
    EXPECT_EQ(media.actions().front(), u"pause NOWMUSIC");
    EXPECT_EQ(puts(), 1);
    EXPECT_EQ(media.mode(), u"playing");
    media.clearCommands();
    key(13);
    EXPECT_EQ(puts(), 0);
    EXPECT_EQ(media.count(u"pause NOWMUSIC"), 0U);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(Video, EscapeAndF11InFullScreenKeepTheFlagAsTheyFindIt) {
    play();
    key(13);
    key(122);
    EXPECT_FALSE(window().visible());
    EXPECT_EQ(app.player().isFullScreen, -1) << "F11 only hides";
    window().show();
    key(27);
    EXPECT_EQ(app.player().isFullScreen, 0);
}

// The film ends while it fades in again; the window of the next one is another.
TEST_F(Video, AToggleIsForTheWindowWhoseKeyWasPressedAndNotForTheNextFilms) {
    addTrack(u"/m/next.avi", 60'000, true);
    for (const bool isFull : {false, true}) {
        app.player().isFullScreen = 0;
        play();
        if (isFull)
            key(13);
        windows.atNextPump([&] { openAndPlay(u"/m/next.avi"); });
        isFull ? window().setScreenSize(10950, 7875, false) : key(13);
        EXPECT_EQ(app.player().isFullScreen, isFull ? -1 : 0);
        EXPECT_EQ(window().width() == 10950, !isFull);
        EXPECT_EQ(window().topmost(), isFull);
    }
}

TEST_F(Video, OtherKeysDoNothing) {
    play();
    for (std::int16_t code = 1; code < 255; ++code) {
        const bool known =
            code == 13 || code == 27 || code == 32 || code == 122 || (code >= 113 && code <= 117);
        if (!known)
            key(code);
    }
    EXPECT_TRUE(media.actions().empty());
    EXPECT_TRUE(window().visible());
    EXPECT_EQ(app.player().isFullScreen, 0);
}

TEST_F(Video, SpaceAtTheEndOfATrackThatIsNotFollowedDoesNothing) {
    app.setControl().isAutoPlay = 1;
    play();
    media.reachEnd();
    key(32);
    EXPECT_EQ(media.count(u"play NOWMUSIC"), 0U);
    EXPECT_EQ(media.count(u"pause NOWMUSIC"), 0U);
}

TEST_F(Video, SpacePausesAndPlays) {
    play();
    key(32);
    EXPECT_EQ(media.mode(), u"paused");
    key(32);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(Video, F11Hides) {
    play();
    key(122);
    EXPECT_FALSE(window().visible());
}

TEST_F(Video, F2F3AndF4PlayPauseAndClose) {
    play();
    key(114);
    EXPECT_EQ(media.mode(), u"paused");
    key(113);
    EXPECT_EQ(media.mode(), u"playing");
    media.clearCommands();
    key(115);
    EXPECT_EQ(media.actions(), Texts{u"close NOWMUSIC"});
    EXPECT_FALSE(app.videoScreenLoaded());
}

TEST_F(Video, F5AndF6StepThroughTheList) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    app.player().nowPlay_Index = 1;
    play();
    key(117);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    key(116);
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

// --- buttons and tick ----------------------------------------------------------------------------

TEST_F(Video, ButtonsOfTheStripActOnTheOneTransport) {
    play();
    const auto tick = [this] { window().Timer1.onTimer(); }; // shows the one button or the other
    tick();
    clickOn(window().pauseButton);
    EXPECT_EQ(media.mode(), u"paused");
    tick();
    clickOn(window().playButton);
    EXPECT_EQ(media.mode(), u"playing");
    tick();
    clickOn(window().stopButton);
    EXPECT_FALSE(media.isOpen());
    clickOn(window().playButton);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(Video, TheLoudspeakerMutesAllWindows) {
    setVolumeBar(400);
    play();
    window().Volume_ICO.on().Click();
    EXPECT_EQ(media.volume(), 0);
    EXPECT_EQ(app.Main().Volume_Set.width(), 0);
    EXPECT_EQ(window().Volume_Set.width(), 0);
}

TEST_F(Video, BothButtonsAndBothDoubleClicksToggleTheWholeScreen) {
    play();
    const std::function<void()> ways[] = {
        [this] { window().fullScreen_Button.on().Click(); },
        [this] { window().fullScreen_imgButton.on().Click(); },
        [this] { window().videoScreen.on().DblClick(); },
        [this] { window().videoScreen_Control.on().DblClick(); },
    };
    for (const auto &way : ways) {
        way();
        EXPECT_EQ(app.player().isFullScreen, -1);
        way();
        EXPECT_EQ(app.player().isFullScreen, 0);
    }
}

TEST_F(Video, NextAndPreviousWalkTheList) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    app.player().nowPlay_Index = 1;
    play();
    window().nextButton.on().Click();
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    window().upButton.on().Click();
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
}

TEST_F(Video, BarsAreItsOwn) {
    play();
    window().load_Played_BG.setWidth(660);
    window().load_Played_BG.on().MouseUp({forms::leftButton, 0, 300, 1});
    EXPECT_EQ(media.actions().front(), u"seek NOWMUSIC to 30000");
    window().Volume_Set_BG.setWidth(1600);
    window().Volume_Set_BG.on().MouseUp({forms::leftButton, 0, 800, 1});
    EXPECT_EQ(media.volume(), 500);
    EXPECT_EQ(app.Main().Volume_Set.width(), 500);
}

TEST_F(Video, ChannelsGoRoundAndSwitchBothSetsOfImages) {
    play();
    forms::Image *const main[] = {&app.Main().AudioSource_H, &app.Main().AudioSource_L,
                                  &app.Main().AudioSource_R};
    forms::Image *const here[] = {&window().AudioSource_H, &window().AudioSource_L,
                                  &window().AudioSource_R};
    const char16_t *const sources[] = {u"stereo", u"left", u"right"};
    for (std::size_t click = 0; click < 4; ++click) {
        clickOn(*here[click % 3]);
        const std::size_t now = (click + 1) % 3;
        EXPECT_EQ(media.source(), sources[now]);
        for (std::size_t image = 0; image < 3; ++image) {
            EXPECT_EQ(here[image]->visible(), image == now) << click;
            EXPECT_EQ(main[image]->visible(), image == now) << click;
        }
    }
}

TEST_F(Video, TickShowsTheClockAndTheState) {
    play();
    media.advance(30'000);
    window().Timer1.onTimer();
    EXPECT_EQ(window().nowTime.caption(), u"2020-09-13 12:26:40");
    EXPECT_EQ(window().play_Time.caption(), u"00:00:30 - 00:01:00");
    EXPECT_TRUE(window().pauseButton.visible());
    EXPECT_EQ(window().load_Played.width(),
              static_cast<Twips>(app.player().get_PlayedWidth(PlayerWindow::VideoScreen_Form)));
}

TEST_F(Video, TickWithNothingOpenBringsTheStoppedLook) {
    app.Main().play_Time.setCaption(u"x");
    window().Timer1.onTimer();
    EXPECT_EQ(app.Main().play_Time.caption(), u"00:00:00 - 00:00:00");
}

TEST_F(Video, TickMayStartTheNextTrackAndLoseItsOwnWindow) {
    addRow(u"/m/a.mp3");
    play();
    media.reachEnd();
    auto &old = window();
    old.Timer1.onTimer();
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    windows.advance(1);
}

TEST_F(Video, TicksFromItsCreationEvery70Milliseconds) {
    EXPECT_TRUE(window().Timer1.running());
    EXPECT_EQ(window().Timer1.interval(), 70);
}

TEST_F(Video, IsDraggedAloneAndOpensTheMenu) {
    auto &w = window();
    const auto main = app.Main().place();
    const auto list = app.playList_Form().place();
    for (forms::ControlEvents *area :
         {static_cast<forms::ControlEvents *>(&w.on()), &w.title.on(), &w.title_ICO.on()}) {
        w.move({0, 0, w.width(), w.height()});
        windows.cursor = {10, 10};
        area->MouseDown({forms::leftButton, 0, 0, 0});
        windows.cursor = {20, 30};
        area->MouseMove({forms::leftButton, 0, 0, 0});
        EXPECT_EQ(w.left(), 150);
        EXPECT_EQ(w.top(), 300);
    }
    EXPECT_EQ(app.Main().place(), main);
    EXPECT_EQ(app.playList_Form().place(), list);
    windows.expectPopup("menu", "");
    w.on().MouseUp({forms::rightButton, 0, 0, 0});
}

TEST_F(Video, ItsPlayButtonGoesOnWithAPausedFilmAndOpensItNotAnew) {
    play();
    app.player().pause_Sub();
    media.clearCommands();
    clickOn(window().playButton);
    EXPECT_EQ(media.mode(), u"playing");
    for (const std::u16string &text : media.texts())
        EXPECT_FALSE(startsWith(text, u"open ")) << toUtf8(text);
}

TEST_F(Video, ItsTickLeavesTheLookOfAFilmThatPlays) {
    play();
    tickMain();
    tickMain();
    const std::u16string shown = app.Main().play_Time.caption();
    window().Timer1.onTimer();
    EXPECT_EQ(app.Main().play_Time.caption(), shown);
    EXPECT_NE(shown, u"00:00:00 - 00:00:00");
}

} // namespace
} // namespace velmora
