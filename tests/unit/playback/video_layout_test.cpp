// The sizes of the video window, and where its controls stand in each.

#include "tests/unit/playback/video_fixture.h"
#include "tests/unit/pointer.h"

#include "settings/skinSet.h"

namespace velmora {
namespace {

// --- layout --------------------------------------------------------------------------------------

TEST_F(Video, StripStandsAtTheFootAndTakesItsHeightFromThePicture) {
    inEachSize([this](Twips wide, Twips high, bool full) {
        auto &strip = window().videoScreen_Control;
        EXPECT_EQ(strip.left(), 0);
        EXPECT_EQ(strip.width(), wide);
        EXPECT_EQ(strip.height(), 495 + 50 + 300);
        EXPECT_EQ(strip.top(), high - strip.height());
        EXPECT_TRUE(strip.visible());
        EXPECT_EQ(strip.backColor(), window().backColor());
        const Twips titleEnd = window().title_ICO.top() + window().title_ICO.height();
        EXPECT_EQ(window().videoScreen.place(),
                  full ? (RectTwips{0, 0, wide, high - 845})
                       : (RectTwips{0, titleEnd + 10, wide, high - titleEnd - 845}));
    });
}

void expectTransportByTheTable(const VideoScreen_Form &w) {
    EXPECT_EQ(w.load_Played.place(), (RectTwips{150, 90, 0, 120}));
    EXPECT_EQ(w.playButton.place(), (RectTwips{100, 300, 495, 495}));
    EXPECT_EQ(w.pauseButton.place(), w.playButton.place());
    EXPECT_EQ(w.stopButton.place(), (RectTwips{595, 300, 495, 495}));
    EXPECT_EQ(w.upButton.place(), (RectTwips{1090, 300, 495, 495}));
    EXPECT_EQ(w.nextButton.place(), (RectTwips{1585, 300, 495, 495}));
    EXPECT_EQ(w.play_Time.left(), 2180);
}

TEST_F(Video, SeekBarAndTransportStandByTheTable) {
    inEachSize([this](Twips wide, Twips, bool) {
        auto &w = window();
        EXPECT_EQ(w.load_Played_BG.place(), (RectTwips{100, 50, wide - 200, 200}));
        expectTransportByTheTable(w);
    });
}

TEST_F(Video, WhateverStoodElsewhereIsPutBackByTheTable) {
    auto &w = window();
    for (forms::Control *control : std::initializer_list<forms::Control *>{
             &w.load_Played, &w.playButton, &w.pauseButton, &w.stopButton, &w.upButton,
             &w.nextButton, &w.play_Time, &w.Volume_Set_BG, &w.fullScreen_Button})
        control->move({7000, 7000, 30, 30});
    w.setScreenSize(10951, 7876, true);
    expectTransportByTheTable(w);
    EXPECT_EQ(w.Volume_Set_BG.width(), 1600);
    EXPECT_EQ(w.Volume_Set_BG.height(), 200);
    EXPECT_EQ(w.fullScreen_Button.left(), 10951 - 3240);
}

TEST_F(Video, RightSideOfTheStripStandsByTheTable) {
    inEachSize([this](Twips wide, Twips, bool) {
        auto &w = window();
        EXPECT_EQ(rightOf(w.nowTime), wide - 100);
        EXPECT_EQ(w.Volume_Set_BG.width(), 1600);
        EXPECT_EQ(w.Volume_Set_BG.height(), 200);
        EXPECT_EQ(rightOf(w.Volume_Set_BG), w.nowTime.left() - 100);
        EXPECT_EQ(rightOf(w.Volume_ICO), w.Volume_Set_BG.left() - 100);
        EXPECT_EQ(rightOf(w.fullScreen_imgButton), w.Volume_ICO.left() - 100);
        EXPECT_EQ(rightOf(w.AudioSource_H), w.fullScreen_imgButton.left() - 100);
        EXPECT_EQ(w.AudioSource_L.place(), w.AudioSource_H.place());
        EXPECT_EQ(w.AudioSource_R.place(), w.AudioSource_H.place());
        for (const forms::Control *control : std::initializer_list<const forms::Control *>{
                 &w.play_Time, &w.nowTime, &w.Volume_Set_BG, &w.Volume_ICO, &w.fullScreen_imgButton,
                 &w.AudioSource_H})
            EXPECT_NEAR(middleOf(*control), middleOf(w.upButton), 0.5) << control->name();
    });
}

TEST_F(Video, WhateverStandsInTheStripGoesToItsMiddleAnew) {
    auto &w = window();
    forms::Control *const controls[] = {
        &w.play_Time,    &w.nowTime, &w.Volume_Set_BG, &w.Volume_ICO, &w.fullScreen_imgButton,
        &w.AudioSource_H};
    for (forms::Control *control : controls)
        control->setTop(5000);
    w.setScreenSize(10951, 7876, true);
    for (const forms::Control *control : controls)
        EXPECT_NEAR(middleOf(*control), middleOf(w.upButton), 0.5) << control->name();
}

TEST_F(Video, VolumeFillComesFromMainsProportion) {
    setVolumeBar(500);
    auto &w = window();
    EXPECT_EQ(w.Volume_Set.place(), (RectTwips{w.Volume_Set_BG.left() + 50,
                                               w.Volume_Set_BG.top() + 40, 0.5F * 1600 - 70, 120}));
}

TEST_F(Video, AnEmptyVolumeGivesAnEmptyFill) {
    EXPECT_EQ(window().Volume_Set.width(), 0) << "70 twips less than nothing is nothing";
    EXPECT_EQ(app.player().isFullScreen, 0);
    EXPECT_GT(window().Volume_ICO.left(), 0) << "the rest stands";
}

TEST_F(Video, AnErrorLeavesTheLayoutWhereItArose) {
    window();
    app.Main().Volume_Set_BG.setWidth(0); // the proportion divides by it
    window().setFullScreen(true);
    EXPECT_EQ(app.player().isFullScreen, 0);
    EXPECT_FALSE(window().topmost());
    EXPECT_EQ(window().width(), 1280 * 15) << "what came ahead of it has been done";
}

TEST_F(Video, TextAreaStandsOnTheTitleRowAndEndsAheadOfTheChannel) {
    inEachSize([this](Twips, Twips, bool) {
        auto &w = window();
        EXPECT_EQ(w.nameBox.left(), rightOf(w.title) + 200);
        EXPECT_EQ(w.nameBox.height(), w.title.height());
        EXPECT_EQ(w.nameBox.top(), roundHalfEven(50 + (300 - w.title.height()) / 2));
        EXPECT_LT(w.nameBox.top() + w.nameBox.height(),
                  w.title_ICO.top() + w.title_ICO.height() + 10);
        EXPECT_EQ(rightOf(w.nameBox), w.AudioSource_H.left() - 200);
        EXPECT_EQ(w.playInfo_Show.width(), w.AudioSource_H.left() - 200 - w.nameBox.left());
    });
}

TEST_F(Video, TextAreaFollowsALongerTitle) {
    auto &w = window();
    const Twips before = w.nameBox.left();
    w.title.setCaption(u"A title that is longer than the one before");
    w.set_Str_ControlVideo_Place();
    EXPECT_GT(w.nameBox.left(), before);
    EXPECT_EQ(w.nameBox.left(), rightOf(w.title) + 200);
}

TEST_F(Video, TextAreaStandsBehindTheTitleAfterANewSizeToo) {
    auto &w = window();
    w.title.setCaption(u"A title that is longer than the one before");
    w.setScreenSize(9000, 6000, true);
    EXPECT_EQ(w.nameBox.left(), rightOf(w.title) + 200);
}

TEST_F(Video, AFreshOneSpeaksTheLanguageInForce) {
    const std::pair<std::int32_t, std::u16string> captions[] = {{0, u"视频窗口(F11)"},
                                                                {1, u"Video Window(F11)"}};
    for (const auto &[language, caption] : captions) {
        app.unloadVideoScreen();
        speak(language);
        EXPECT_EQ(window().title.caption(), caption);
        EXPECT_EQ(window().caption(), caption);
        EXPECT_EQ(window().nameBox.left(), rightOf(window().title) + 200);
    }
}

TEST_F(Video, NothingOfTheStripLiesOutsideIt) {
    inEachSize([this](Twips, Twips, bool) {
        auto &w = window();
        for (const forms::Control *control : w.videoScreen_Control.controls()) {
            EXPECT_GE(control->left(), 0) << control->name();
            EXPECT_LE(rightOf(*control), w.videoScreen_Control.width()) << control->name();
            EXPECT_LE(control->top() + control->height(), w.videoScreen_Control.height())
                << control->name();
        }
    });
}

// --- sizes ---------------------------------------------------------------------------------------

TEST_F(Video, FullScreenCoversTheScreenAndHidesTheTitleRow) {
    play();
    window().setFullScreen(true);
    auto &w = window();
    EXPECT_EQ(w.place(), (RectTwips{0, 0, 1280 * 15, 800 * 15}));
    EXPECT_EQ(w.videoScreen.left(), 0);
    EXPECT_EQ(w.videoScreen.top(), 0);
    EXPECT_EQ(w.videoScreen.width(), 1280 * 15);
    EXPECT_EQ(w.videoScreen.height(), 800 * 15 - w.videoScreen_Control.height());
    for (const forms::Control *control : std::initializer_list<const forms::Control *>{
             &w.title_ICO, &w.title, &w.close, &w.fullScreen_Button})
        EXPECT_FALSE(control->visible()) << control->name();
    EXPECT_EQ(app.player().isFullScreen, -1);
    EXPECT_TRUE(w.topmost());
    EXPECT_TRUE(media.commands().empty()) << "kept: no command goes to the engine";
}

TEST_F(Video, FullScreenWithoutKeepPausesPutsAndPlays) {
    play();
    window().setFullScreen(false);
    const auto actions = media.actions();
    ASSERT_GE(actions.size(), 4U);
    EXPECT_EQ(actions[0], u"pause NOWMUSIC");
    EXPECT_EQ(actions[1],
              u"put NOWMUSIC window at 0 0 1280 " +
                  decimal(roundToInt32((800 * 15 - window().videoScreen_Control.height()) / 15)));
    EXPECT_EQ(actions[3], u"play NOWMUSIC");
}

TEST_F(Video, BackToTheDefaultSizeShowsTheTitleRowAndSendsNothing) {
    play();
    window().setFullScreen(true);
    window().setScreenSize_Default();
    EXPECT_EQ(window().width(), 10950);
    EXPECT_EQ(window().height(), 7875);
    for (const forms::Control *control : std::initializer_list<const forms::Control *>{
             &window().title_ICO, &window().title, &window().close, &window().fullScreen_Button})
        EXPECT_TRUE(control->visible()) << control->name();
    EXPECT_EQ(app.player().isFullScreen, 0);
    EXPECT_EQ(puts(), 0);
}

TEST_F(Video, ASizeWithoutKeepPausesPutsAndPlays) {
    play();
    window().setScreenSize(12000, 9000, false);
    EXPECT_EQ(window().width(), 12000);
    EXPECT_EQ(media.actions()[0], u"pause NOWMUSIC");
    EXPECT_EQ(puts(), 1);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(Video, FullScreenButtonGoesThereAndBack) {
    play();
    clickOn(window().fullScreen_Button);
    EXPECT_EQ(app.player().isFullScreen, -1);
    EXPECT_EQ(puts(), 1);
    clickOn(window().fullScreen_imgButton);
    EXPECT_EQ(app.player().isFullScreen, 0);
    EXPECT_EQ(puts(), 1);
    window().videoScreen.on().DblClick();
    EXPECT_EQ(app.player().isFullScreen, -1);
    window().videoScreen_Control.on().DblClick();
    EXPECT_EQ(app.player().isFullScreen, 0);
}

TEST_F(Video, FullScreenButtonGoesBackToTheDefaultSize) {
    play();
    window().setScreenSize(12000, 9000, true);
    clickOn(window().fullScreen_Button);
    EXPECT_EQ(window().width(), 1280 * 15);
    clickOn(window().fullScreen_imgButton);
    EXPECT_EQ(window().width(), VideoScreen_Form::defaultWidth);
    EXPECT_EQ(window().height(), VideoScreen_Form::defaultHeight);
}

TEST_F(Video, InFullScreenFollowsTheScreenWithoutAPause) {
    app.lrcForm();
    play();
    window().setFullScreen(true);
    media.clearCommands();
    windows.screen = {1024, 768};
    windows.onScreensChanged();
    EXPECT_EQ(window().width(), 1024 * 15);
    EXPECT_EQ(media.count(u"pause NOWMUSIC"), 0U);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(Video, FromFullScreenItComesBackToItsPlaceWithItsTitleRowInSight) {
    auto &w = window();
    w.move({4125, 2070, w.width(), w.height()});
    const Twips closeLeft = w.close.left();
    const Twips labelLeft = w.fullScreen_Button.left();
    w.setFullScreen(true);
    w.setFullScreen(true);                 // the screen's size changed meanwhile
    app.skinSet().skin_VideoScreen_Form(); // as a put does
    EXPECT_GT(w.close.left(), closeLeft);
    w.setScreenSize_Default();
    EXPECT_EQ(w.left(), 4125);
    EXPECT_EQ(w.top(), 2070);
    EXPECT_EQ(w.close.left(), closeLeft);
    EXPECT_LE(w.close.left() + w.close.width(), w.width());
    EXPECT_EQ(w.fullScreen_Button.left(), labelLeft);
    w.setScreenSize(12000, 9000, true);
    EXPECT_EQ(w.left(), 4125);
    EXPECT_EQ(w.close.left(), closeLeft + 1050);
    EXPECT_EQ(w.fullScreen_Button.left(), labelLeft + 1050);
}

TEST_F(Video, InFullScreenFollowsTheScreen) {
    app.lrcForm(); // loaded by the start
    auto &w = window();
    w.move({4125, 2070, w.width(), w.height()});
    w.setFullScreen(true);
    windows.screen = {1024, 768};
    windows.onScreensChanged();
    EXPECT_EQ(w.width(), 1024 * 15);
    EXPECT_EQ(w.height(), 768 * 15);
    EXPECT_EQ(app.player().isFullScreen, -1);
    w.setScreenSize_Default();
    EXPECT_EQ(w.left(), 4125) << "its place before is still known";
    windows.screen = {1280, 800};
    windows.onScreensChanged();
    EXPECT_EQ(w.width(), VideoScreen_Form::defaultWidth) << "in its window it stays as it is";
}

TEST_F(Video, ComesBackInFullScreenForTheNextTrack) {
    play();
    window().setFullScreen(true);
    openAndPlay(u"/m/film.avi");
    EXPECT_EQ(window().width(), 1280 * 15);
    EXPECT_FALSE(window().close.visible());
    EXPECT_TRUE(window().visible());
}

TEST_F(Video, NothingTakesItFromTheTopBeforeItIsLetGo) {
    play();
    EXPECT_FALSE(window().topmost());
    key(13);
    EXPECT_TRUE(window().topmost());
    key(27);
    EXPECT_TRUE(window().topmost()) << "back in the default size, but still on top";
    key(27);
    window().show();
    EXPECT_TRUE(window().topmost());
    play();
    EXPECT_FALSE(window().topmost()) << "a fresh window";
}

TEST_F(Video, TheNextTracksWindowInFullScreenIsOnTop) {
    play();
    key(13);
    play();
    EXPECT_TRUE(window().topmost());
}

TEST_F(Video, ASmallerSizeWithoutKeepLetsTheWindowGo) {
    for (const auto &[wide, high] : {std::pair{10949, 7875}, std::pair{10950, 7874}}) {
        play();
        auto &old = window();
        old.setScreenSize(wide, high, false);
        EXPECT_EQ(puts(), 0);
        EXPECT_NE(&window(), &old);
        EXPECT_FALSE(window().visible());
        EXPECT_EQ(window().width(), 10950) << "the one that is touched next is a fresh one";
        EXPECT_EQ(media.mode(), u"playing") << "the sound goes on";
    }
}

TEST_F(Video, ASmallerSizeWithKeepStays) {
    play();
    window().setScreenSize(6000, 5000, true);
    EXPECT_EQ(window().width(), 6000);
    EXPECT_TRUE(window().visible());
    EXPECT_TRUE(media.commands().empty());
}

TEST_F(Video, APutThatIsRefusedInFullScreenLetsTheWindowGo) {
    play();
    media.failBeginningWith(u"put");
    auto &old = window();
    key(13);
    EXPECT_FALSE(old.visible());
    EXPECT_EQ(app.player().isFullScreen, -1) << "the layout goes on to its end";
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(Video, ASuccessfulPutHandsTheSkinToAShownWindowAndShowsItOnceMore) {
    play();
    window().close.setPicture(forms::Picture{});
    window().hide();
    windows.shown.clear();
    EXPECT_EQ(app.player().put_VideoWindow(0, 0, 10, 10), -1);
    EXPECT_EQ(windows.shown, (std::vector<std::string>{"VideoScreen_Form", "VideoScreen_Form"}))
        << "hidden and shown once more";
    EXPECT_EQ(window().close.picture(), app.Main().closeButton.picture());
}

TEST_F(Video, FullScreenFollowsTheScreensSize) {
    windows.screen = {1920, 1080};
    window().setFullScreen(true);
    EXPECT_EQ(window().place(), (RectTwips{0, 0, 1920 * 15, 1080 * 15}));
}

TEST_F(Video, PlayAndTheVolumeBarsBringItIntoBeing) {
    addRow(u"/m/a.mp3");
    ASSERT_FALSE(app.videoScreenLoaded());
    openAndPlay(u"/m/a.mp3");
    EXPECT_TRUE(app.videoScreenLoaded());
    EXPECT_FALSE(window().visible());
    app.unloadVideoScreen();
    app.Main().Volume_Set_BG.on().MouseUp({forms::leftButton, 0, 100, 1});
    EXPECT_TRUE(app.videoScreenLoaded());
    app.unloadVideoScreen();
    clickOn(app.miniForm().Volume_ICO);
    EXPECT_TRUE(app.videoScreenLoaded());
}

} // namespace
} // namespace velmora
