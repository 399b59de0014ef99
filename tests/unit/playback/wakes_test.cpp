// How often the program wakes, and that whatever a tick does is done at its time all the same.

#include "tests/unit/playback/tick_fixture.h"

#include "lyrics/doLrcForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"
#include "playback/remoteControl.h"
#include "playlist/playInfo_Form.h"

#include <algorithm>
#include <utility>

namespace velmora {
namespace {

class Wakes : public Tick {
protected:
    Wakes() {
        app.remoteControl().start();
        main().show();
        main().Timer1.setRunning(true);
        app.miniForm().hide();
        app.playInfo_Form().hide();
        longestSleep();
    }
    forms::TimerQueue &timers() { return windows.timers(); }
    std::int64_t untilNextWake() {
        return timers().nextWakeMs().value_or(1'000'000) - fake.clock.steadyMs();
    }
    // The longest sleep of the loop within a few seconds.
    std::int64_t longestSleep() {
        std::int64_t longest = 0;
        const std::int64_t end = fake.clock.steadyMs() + 4000;
        while (fake.clock.steadyMs() + untilNextWake() <= end) {
            longest = std::max(longest, untilNextWake());
            fake.clock.advance(std::max<std::int64_t>(untilNextWake(), 0));
            timers().runDue();
        }
        return longest;
    }
    // What a handler has done, and the tick that the loop then wakes for.
    template <typename Work> void handlerAndTick(Work &&work) {
        ASSERT_GT(longestSleep(), 900) << "at rest ahead of it";
        timers().stir();
        std::forward<Work>(work)();
        timers().stir();
        ASSERT_LE(untilNextWake(), 70);
        windows.advance(70);
    }
};

TEST_F(Wakes, ASecondApartWithNothingOpen) { EXPECT_GT(longestSleep(), 900); }

TEST_F(Wakes, ASecondApartBehindAMediumThatTheEngineRefused) {
    files.addFile(u"/m/broken.mp3", "no sound");
    addRowOnly(u"/m/broken.mp3");
    play(u"/m/broken.mp3");
    timers().stir();
    EXPECT_GT(longestSleep(), 900);
}

TEST_F(Wakes, AtEveryTickWhilePlayingAndPaused) {
    play();
    timers().stir();
    EXPECT_LE(longestSleep(), 70);
    app.player().pause_Sub();
    EXPECT_LE(longestSleep(), 70);
}

TEST_F(Wakes, AtEveryTickWhileAMediumOfNoLengthIsOpenWhateverItDoes) {
    addRow(u"/m/none.mp3", 0);
    play(u"/m/none.mp3");
    for (const auto *mode : {u"playing", u"paused", u"seeking"}) {
        media.setMode(mode);
        timers().stir();
        EXPECT_LE(longestSleep(), 70);
    }
}

TEST_F(Wakes, AtEveryTickBehindTheEndOfAMediumThatStaysOpen) {
    app.setControl().isAutoPlay = -1;
    play();
    media.reachEnd();
    timers().stir();
    EXPECT_LE(longestSleep(), 70);
}

TEST_F(Wakes, AtEveryTickWhileTheStripMindsThePointer) {
    app.miniForm().show();
    app.miniForm().setTop(0);
    timers().stir();
    EXPECT_LE(longestSleep(), 70);
    app.miniForm().auto_Hide = 0;
    timers().stir();
    EXPECT_GT(longestSleep(), 900);
}

TEST_F(Wakes, AtEveryTickWhileTheTrackInformationIsUp) {
    app.playInfo_Form().show();
    timers().stir();
    EXPECT_LE(longestSleep(), 70);
}

TEST_F(Wakes, AtEveryTickWhileTheFilmsWindowShowsTheTime) {
    app.VideoScreen_Form().show();
    timers().stir();
    EXPECT_LE(longestSleep(), 70);
    app.VideoScreen_Form().hide();
    timers().stir();
    EXPECT_GT(longestSleep(), 900);
}

TEST_F(Wakes, ForTheStoppedLookThatAHandlerChanged) {
    handlerAndTick([this] {
        main().playInfo_Show.setCaption(u"x");
        main().playButton.setVisible(false);
    });
    EXPECT_EQ(main().playInfo_Show.caption(), u"Welcome to Velmora");
    EXPECT_TRUE(main().playButton.visible());
}

TEST_F(Wakes, ForTheStateOfATrackThatAHandlerStarted) {
    handlerAndTick([this] { play(); });
    EXPECT_TRUE(main().pauseButton.visible());
    EXPECT_EQ(main().playInfo_Show.caption(), app.player().nowPlay_Title);
}

TEST_F(Wakes, ForTheScrollBarsOfAListThatAHandlerFilled) {
    app.playList_Form().show();
    handlerAndTick([this] {
        for (int row = 0; row < 20; ++row)
            addRowOnly(u"/m/more.mp3");
    });
    EXPECT_TRUE(app.playList_Form().P1.visible());
}

TEST_F(Wakes, ForTheLyricEditorThatAHandlerOpened) {
    handlerAndTick([this] { app.doLrcForm().show(); });
    EXPECT_EQ(app.player().isDoLrc_Open, -1);
}

TEST_F(Wakes, ForTheRestOfTheDesktopThatIsToldOfAChange) {
    handlerAndTick([this] { app.setControl().PlayMode = 1; });
    ASSERT_FALSE(fake.remote.published.empty());
    EXPECT_TRUE(fake.remote.now().shuffle);
}

TEST_F(Wakes, ForFilesFromOutsideThatHadToWait) {
    addTrack(u"/m/c.mp3");
    main().setEnabled(false);
    timers().stir();
    fake.remote.player->open({u"/m/c.mp3"}, true);
    handlerAndTick([this] { main().setEnabled(true); });
    EXPECT_EQ(rows(), 3);
}

TEST_F(Wakes, ForTheStripThatAHandlerBroughtUp) {
    windows.cursor = {300, 500};
    handlerAndTick([this] {
        app.miniForm().show();
        app.miniForm().setTop(0);
    });
    EXPECT_LT(app.miniForm().top(), 0);
}

TEST_F(Wakes, AtEveryTickWhileAStripSlidesUnseen) {
    app.miniForm().setTop(0);
    windows.cursor = {300, 500};
    timers().stir();
    for (Twips top = 0; top > -app.miniForm().height(); top -= 100) {
        EXPECT_EQ(app.miniForm().top(), top);
        EXPECT_LE(untilNextWake(), 70);
        windows.advance(70);
    }
    EXPECT_GT(longestSleep(), 900);
}

TEST_F(Wakes, ForTheLyricLineOfTheTrackInformation) {
    handlerAndTick([this] {
        app.playInfo_Form().show();
        app.playInfo_Form().lrc_Text.setCaption(u"a line of another track");
    });
    EXPECT_EQ(app.playInfo_Form().lrc_Text.caption(), u"");
}

TEST_F(Wakes, ForTheTimeInTheFilmsWindow) {
    handlerAndTick([this] {
        app.VideoScreen_Form().show();
        app.VideoScreen_Form().nowTime.setCaption(u"");
    });
    EXPECT_NE(app.VideoScreen_Form().nowTime.caption(), u"");
}

} // namespace
} // namespace velmora
