// The bars and channel images of the main window.

#include "tests/unit/playback/main_window_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"

namespace velmora {
namespace {

// --- the seek bar --------------------------------------------------------------------------------

TEST_F(MainWindow, SeekBarSeeksWhereItIsReleased) {
    play();
    main().load_Played_BG.setWidth(1060);
    release(main().load_Played_BG, 500);
    EXPECT_EQ(media.actions().front(), u"seek NOWMUSIC to 30000");
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(MainWindow, SeekBarIgnoresItsRightEdge) {
    play();
    release(main().load_Played_BG, main().load_Played_BG.width());
    release(main().load_Played_BG, main().load_Played_BG.width() + 100);
    EXPECT_TRUE(media.commands().empty());
}

TEST_F(MainWindow, SeekBarTakesAReleaseLeftOfItAsItsBeginning) {
    play();
    media.advance(5000);
    release(main().load_Played_BG, -400);
    EXPECT_EQ(media.actions().front(), u"seek NOWMUSIC to 0");
}

TEST_F(MainWindow, SeekBarShowsThatItSeeksWithABusyPointer) {
    play();
    main().load_Played_BG.setWidth(1060);
    std::u16string shown;
    std::int16_t pointer = 0;
    std::int16_t formPointer = 0;
    windows.atNextPump([&] {
        shown = main().playInfo_Show.caption();
        pointer = main().load_Played_BG.mousePointer();
        formPointer = main().mousePointer();
    });
    release(main().load_Played_BG, 500);
    EXPECT_EQ(shown, app.Language().msg_Seeking);
    EXPECT_EQ(pointer, 11);
    EXPECT_EQ(formPointer, 11);
    EXPECT_EQ(main().load_Played_BG.mousePointer(), 99);
    EXPECT_EQ(main().mousePointer(), 0);
    EXPECT_EQ(main().playInfo_Show.left(),
              main().nameBox.width() / 2 - main().playInfo_Show.width() / 2);
}

TEST_F(MainWindow, SeekBarPutsTheWaitingTextOnlyWithALyric) {
    play();
    app.lrcForm().lrcMissText = u"none";
    app.lrcForm().lrcWaitText = u"Music...";
    release(main().load_Played_BG, 10);
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"none");
    files.addFile(u"/m/a.lrc", "[00:59]line"); // each seek looks for the lyric again
    release(main().load_Played_BG, 10);
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"Music...");
}

TEST_F(MainWindow, SeekBarPutsNoWaitingTextOverTheNextTracksLine) {
    play();
    app.lrcForm().lrcWaitText = u"Music...";
    files.addFile(u"/m/a.lrc", "[00:59]line");
    files.addFile(u"/m/b.lrc", "[00:59]line");
    addTrack(u"/m/b.mp3");
    windows.atNextPump([&] {
        openAndPlay(u"/m/b.mp3");
        app.lrcForm().nowLrcLine = u"of b";
    });
    release(main().load_Played_BG, 10);
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"of b");
}

TEST_F(MainWindow, SeekBarWithNothingOpenShowsTheTextUntilTheNextTick) {
    release(main().load_Played_BG, 500);
    EXPECT_EQ(main().playInfo_Show.caption(), app.Language().msg_Seeking);
    tickMain();
    EXPECT_EQ(main().playInfo_Show.caption(), app.Language().msg_Welcome);
}

// --- the volume bar ------------------------------------------------------------------------------

TEST_F(MainWindow, VolumeBarSetsTheLevelAndAllThreeFills) {
    play();
    main().Volume_Set_BG.setWidth(1000);
    app.miniForm().Volume_Set_BG.setWidth(400);
    app.VideoScreen_Form().Volume_Set_BG.setWidth(1600);
    release(main().Volume_Set_BG, 250);
    EXPECT_EQ(media.texts(), Texts{u"setaudio NOWMUSIC volume to 250"});
    EXPECT_EQ(main().Volume_Set.width(), 250);
    EXPECT_EQ(app.miniForm().Volume_Set.width(), 100);
    EXPECT_EQ(app.VideoScreen_Form().Volume_Set.width(), 400);
}

TEST_F(MainWindow, VolumeBarIsDeadInItsLast30Twips) {
    play();
    main().Volume_Set_BG.setWidth(1000);
    release(main().Volume_Set_BG, 971);
    EXPECT_TRUE(media.commands().empty());
    EXPECT_EQ(main().Volume_Set.width(), 0);
    release(main().Volume_Set_BG, 970);
    EXPECT_EQ(media.volume(), 970);
}

TEST_F(MainWindow, VolumeBarTakesAReleaseLeftOfItAsSilence) {
    play();
    main().Volume_Set.setWidth(300);
    release(main().Volume_Set_BG, -50);
    EXPECT_EQ(media.volume(), 0);
    EXPECT_EQ(main().Volume_Set.width(), 0);
}

TEST_F(MainWindow, VolumeBarKeepsItsLevelWithNothingOpen) {
    main().Volume_Set_BG.setWidth(1000);
    release(main().Volume_Set_BG, 300);
    EXPECT_EQ(main().Volume_Set.width(), 300);
}

TEST_F(MainWindow, MuteHasNoMemory) {
    main().Volume_Set.setWidth(700);
    app.miniForm().Volume_Set.setWidth(100);
    app.VideoScreen_Form().Volume_Set.setWidth(100);
    play();
    click(main().Volume_ICO);
    EXPECT_EQ(media.texts(), Texts{u"setaudio NOWMUSIC volume to 0"});
    EXPECT_EQ(main().Volume_Set.width(), 0);
    EXPECT_EQ(app.miniForm().Volume_Set.width(), 0);
    EXPECT_EQ(app.VideoScreen_Form().Volume_Set.width(), 0);
    click(main().Volume_ICO);
    EXPECT_EQ(main().Volume_Set.width(), 0);
    app.player().play_Sub();
    EXPECT_EQ(media.volume(), 0);
}

// --- the channel ---------------------------------------------------------------------------------

TEST_F(MainWindow, ChannelCyclesStereoLeftRight) {
    play();
    const auto shown = [&] {
        return std::vector<bool>{main().AudioSource_H.visible(), main().AudioSource_L.visible(),
                                 main().AudioSource_R.visible()};
    };
    const auto shownInVideo = [&] {
        auto &video = app.VideoScreen_Form();
        return std::vector<bool>{video.AudioSource_H.visible(), video.AudioSource_L.visible(),
                                 video.AudioSource_R.visible()};
    };
    click(main().AudioSource_H);
    EXPECT_EQ(media.source(), u"left");
    EXPECT_EQ(shown(), (std::vector<bool>{false, true, false}));
    EXPECT_EQ(shownInVideo(), shown());
    click(main().AudioSource_L);
    EXPECT_EQ(media.source(), u"right");
    EXPECT_EQ(shown(), (std::vector<bool>{false, false, true}));
    EXPECT_EQ(shownInVideo(), shown());
    click(main().AudioSource_R);
    EXPECT_EQ(media.source(), u"stereo");
    EXPECT_EQ(shown(), (std::vector<bool>{true, false, false}));
    EXPECT_EQ(shownInVideo(), shown());
}

TEST_F(MainWindow, ChannelStaysWithNothingOpen) {
    click(main().AudioSource_H);
    EXPECT_EQ(media.texts(), Texts{u"setaudio  NOWMUSIC source to left"});
    EXPECT_TRUE(main().AudioSource_H.visible());
    EXPECT_FALSE(main().AudioSource_L.visible());
}

TEST_F(MainWindow, IsClickedThroughItsRealGeometry) {
    play();
    const auto at = [](const forms::Control &control) {
        const RectTwips place = control.placeInForm();
        return PointTwips{place.left + place.width / 2, place.top + place.height / 2};
    };
    main().pauseButton.setVisible(true);
    main().playButton.setVisible(false);
    main().pointerPressed(at(main().pauseButton), forms::leftButton, 0);
    main().pointerReleased(at(main().pauseButton), forms::leftButton, 0);
    EXPECT_EQ(media.mode(), u"paused");
}

} // namespace
} // namespace velmora
