// Finer points of the video window: its keys beside the play mode, its strip, a put that fails.

#include "tests/unit/playback/video_fixture.h"

namespace velmora {
namespace {

TEST_F(Video, F5AndF6StepThroughTheListInRandomModeToo) {
    for (const char16_t *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"})
        addRow(path);
    app.setControl().PlayMode = 1;
    app.player().nowPlay_Index = 1;
    play();
    for (const char16_t *next :
         {u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3", u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"}) {
        key(117);
        EXPECT_EQ(media.openPath(), next);
    }
    for (const char16_t *before : {u"/m/b.mp3", u"/m/a.mp3", u"/m/a.mp3"}) {
        key(116);
        EXPECT_EQ(media.openPath(), before);
    }
}

TEST_F(Video, F2PlaysAndReopensNothing) {
    play();
    app.player().close_Sub(0);
    media.clearCommands();
    key(113);
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(media.count(u"play NOWMUSIC"), 1U);
}

TEST_F(Video, TheStripIsShownInTheFormsColourWithEachSize) {
    auto &strip = window().videoScreen_Control;
    for (const bool full : {false, true}) {
        strip.setVisible(false);
        strip.setBackColor(window().backColor() ^ 0xFFU);
        full ? window().setFullScreen(true) : window().setScreenSize(12000, 9000, true);
        EXPECT_TRUE(strip.visible());
        EXPECT_EQ(strip.backColor(), window().backColor());
    }
}

TEST_F(Video, TheFullScreenFlagIsSetOnlyBehindThePut) {
    play();
    media.failBeginningWith(u"put");
    key(13);
    EXPECT_EQ(app.player().isFullScreen, -1);
    EXPECT_TRUE(app.videoScreenLoaded()) << "play has made a fresh one meanwhile";
    EXPECT_EQ(window().width(), 10950) << "when the flag was not yet set";
}

TEST_F(Video, HasNoMenuWhileItsPlayIsDisabled) {
    window().playButton.setEnabled(false);
    window().on().MouseUp({forms::rightButton, 0, 0, 0}); // an unscripted popup fails the test
    window().playButton.setEnabled(true);
    window().on().MouseUp({forms::leftButton, 0, 0, 0});
    windows.expectPopup("menu", "");
    window().title.on().MouseUp({forms::rightButton, 0, 0, 0});
}

TEST_F(Video, ItsKeysOfMainAreNotThere) {
    play();
    for (const std::int16_t code : {46, 65, 83, 118, 119, 120, 121, 123}) {
        forms::KeyEvent event{code, forms::ctrlMask};
        window().on().KeyDown(event);
    }
    EXPECT_TRUE(media.actions().empty());
    EXPECT_TRUE(app.Main().enabled());
    EXPECT_TRUE(window().visible());
}

} // namespace
} // namespace velmora
