// Video in the program's own window, and the window that is let go and made anew.

#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

#include "base/numbers.h"
#include "playback/VideoScreen_Form.h"

namespace velmora {
namespace {

class OwnWindow : public ProgramFixture {
protected:
    OwnWindow() {
        setVolumeBar(0);
        app.setControl().VideoInterface = 1;
        addTrack(u"/m/film.avi", 60'000, true);
        addTrack(u"/m/sound.mp3");
        addTrack(u"/m/sound.wav");
    }
    std::u16string openCommand() {
        for (const auto &text : media.actions())
            if (startsWith(text, u"open "))
                return text;
        return {};
    }
    std::u16string putCommand() {
        const auto &picture = app.VideoScreen_Form().videoScreen;
        return u"put NOWMUSIC window at 0 0 " +
               decimal(roundToInt32(picture.scaleWidth() / twipsPerPixel)) + u" " +
               decimal(roundToInt32(picture.scaleHeight() / twipsPerPixel));
    }
};

TEST_F(OwnWindow, IsNamedAsTheParentInTheOpenCommand) {
    app.player().open_File(u"/m/film.avi");
    EXPECT_EQ(openCommand(),
              u"open /m/film.avi type MPEGVideo alias NOWMUSIC parent " +
                  decimal(static_cast<std::int64_t>(app.VideoScreen_Form().videoScreen.hWnd())) +
                  u" style CHILD ");
}

TEST_F(OwnWindow, IsNamedForAnMp3AsWell) {
    app.player().open_File(u"/m/sound.mp3");
    EXPECT_TRUE(contains(openCommand(), u" parent "));
    EXPECT_TRUE(contains(openCommand(), u" style CHILD "));
}

TEST_F(OwnWindow, IsNotNamedForADeviceWithoutPictures) {
    app.player().open_File(u"/m/sound.wav");
    EXPECT_EQ(openCommand(), u"open /m/sound.wav type Waveaudio alias NOWMUSIC");
}

TEST_F(OwnWindow, AsksForTheEnginesWindowAheadOfTheOpenAndPutsBehindIt) {
    app.player().open_File(u"/m/film.avi");
    const auto texts = media.texts();
    ASSERT_EQ(texts.size(), 5U);
    EXPECT_EQ(texts[0], u"close NOWMUSIC");
    EXPECT_EQ(texts[1], u"status NOWMUSIC window handle");
    EXPECT_EQ(media.commands()[1].returnSize, 80);
    EXPECT_TRUE(startsWith(texts[2], u"open "));
    EXPECT_EQ(texts[3], putCommand());
    EXPECT_EQ(texts[4], u"set NOWMUSIC time format milliseconds");
    EXPECT_EQ(app.player().video_Hwnd, 0);
}

TEST_F(OwnWindow, ShowsForAVideoAndSoDoesItsButton) {
    app.player().open_File(u"/m/film.avi");
    EXPECT_TRUE(app.Main().videoScreen_Button.visible());
    EXPECT_TRUE(app.VideoScreen_Form().visible());
    EXPECT_EQ(std::count(windows.shown.begin(), windows.shown.end(), "VideoScreen_Form"), 2)
        << "shown, hidden and shown once more";
}

TEST_F(OwnWindow, OfSoundIsLetGoAndItsButtonHides) {
    app.Main().videoScreen_Button.setVisible(true);
    app.player().open_File(u"/m/sound.mp3");
    EXPECT_FALSE(app.Main().videoScreen_Button.visible());
    EXPECT_FALSE(app.videoScreenLoaded());
}

TEST_F(OwnWindow, OfASoundDeviceTriesThePutAllTheSame) {
    app.player().open_File(u"/m/sound.wav");
    EXPECT_EQ(std::count_if(media.commands().begin(), media.commands().end(),
                            [](const auto &c) { return startsWith(c.text, u"put NOWMUSIC"); }),
              1);
    EXPECT_FALSE(app.Main().videoScreen_Button.visible());
}

TEST_F(OwnWindow, IsAFreshOneForEachMedium) {
    app.player().open_File(u"/m/film.avi");
    const auto first = app.VideoScreen_Form().hWnd();
    app.player().open_File(u"/m/film.avi");
    EXPECT_NE(app.VideoScreen_Form().hWnd(), first);
}

TEST_F(OwnWindow, IsNotUsedWithTheEnginesOwnOne) {
    app.setControl().VideoInterface = 0;
    app.player().open_File(u"/m/film.avi");
    EXPECT_EQ(openCommand(), u"open /m/film.avi type MPEGVideo alias NOWMUSIC style child ");
    for (const auto &text : media.texts()) {
        EXPECT_FALSE(startsWith(text, u"put")) << toUtf8(text);
        EXPECT_FALSE(startsWith(text, u"status NOWMUSIC window")) << toUtf8(text);
    }
}

TEST_F(OwnWindow, OfARealPlayerFileIsNotAsked) {
    app.player().open_File(addTrack(u"/m/film.rmvb"));
    EXPECT_EQ(media.texts(), Texts{u"close NOWMUSIC"});
}

// --- put -----------------------------------------------------------------------------------------

TEST_F(OwnWindow, PutSendsTheRectangleAsDecimals) {
    app.player().open_File(u"/m/film.avi");
    media.clearCommands();
    EXPECT_EQ(app.player().put_VideoWindow(1, -2, 300, 200), -1);
    EXPECT_EQ(media.texts(), Texts{u"put NOWMUSIC window at 1 -2 300 200"});
}

TEST_F(OwnWindow, PutInAWindowBelowTheDefaultSizeSendsNothingAndLetsItGo) {
    app.player().open_File(u"/m/film.avi");
    for (const bool narrow : {true, false}) {
        auto &window = app.VideoScreen_Form();
        if (narrow)
            window.setWidth(10949);
        else
            window.setHeight(7874);
        media.clearCommands();
        EXPECT_EQ(app.player().put_VideoWindow(0, 0, 10, 10), 0);
        EXPECT_TRUE(media.commands().empty());
        EXPECT_FALSE(app.videoScreenLoaded());
    }
}

TEST_F(OwnWindow, PutThatTheEngineRefusesLetsTheWindowGo) {
    app.player().open_File(u"/m/film.avi");
    media.failBeginningWith(u"put");
    EXPECT_EQ(app.player().put_VideoWindow(0, 0, 10, 10), 0);
    EXPECT_FALSE(app.videoScreenLoaded());
}

TEST_F(OwnWindow, HasTheDefaultSizeWhenLoaded) {
    EXPECT_EQ(app.VideoScreen_Form().width(), 10950);
    EXPECT_EQ(app.VideoScreen_Form().height(), 7875);
}

TEST_F(OwnWindow, ClosedByTheUserIsOnlyHiddenAndTheSoundGoesOn) {
    openAndPlay(u"/m/film.avi");
    auto &window = app.VideoScreen_Form();
    media.clearCommands();
    clickOn(window.close);
    EXPECT_FALSE(window.visible());
    window.show();
    window.closeRequested();
    EXPECT_FALSE(window.visible());
    EXPECT_TRUE(app.videoScreenLoaded());
    EXPECT_TRUE(media.commands().empty());
}

// --- letting go ----------------------------------------------------------------------------------

TEST_F(OwnWindow, MayBeLetGoByAHandlerOfItsOwn) {
    auto &window = app.VideoScreen_Form();
    window.show();
    bool handlerWentOn = false;
    window.stopButton.on().Click = [&] {
        app.unloadVideoScreen();
        handlerWentOn = window.stopButton.visible();
    };
    clickOn(window.stopButton);
    EXPECT_FALSE(app.videoScreenLoaded());
    windows.advance(1);
    EXPECT_TRUE(handlerWentOn);
}

TEST_F(OwnWindow, LetGoStopsItsTick) {
    auto &window = app.VideoScreen_Form();
    ASSERT_TRUE(window.Timer1.running());
    app.unloadVideoScreen();
    EXPECT_FALSE(window.Timer1.running()) << "the old model lives until no handler is active";
}

TEST_F(OwnWindow, IsGoneForTheWindowSystemOnceNothingIsActive) {
    const auto number = app.VideoScreen_Form().hWnd();
    app.unloadVideoScreen();
    windows.advance(1);
    EXPECT_EQ(windows.formOf(number), nullptr);
}

TEST_F(OwnWindow, LetGoTwiceOrNeverTouchedIsNothing) {
    app.unloadVideoScreen();
    app.VideoScreen_Form();
    app.unloadVideoScreen();
    app.unloadVideoScreen();
    EXPECT_FALSE(app.videoScreenLoaded());
}

TEST_F(OwnWindow, TheFullScreenFlagOutlivesIt) {
    app.player().isFullScreen = -1;
    app.unloadVideoScreen();
    EXPECT_EQ(app.player().isFullScreen, -1);
}

} // namespace
} // namespace velmora
