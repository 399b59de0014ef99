// What a tick does when the engine contradicts itself between two of its questions.

#include "tests/unit/program_fixture.h"

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"

namespace velmora {
namespace {

constexpr auto lengthQuery = u"status NOWMUSIC length";
constexpr auto modeQuery = u"status NOWMUSIC mode";

class TickErrors : public ProgramFixture {
protected:
    TickErrors() {
        speak(1);
        setVolumeBar(0);
        openAndPlay(addRow(u"/m/a.mp3"));
        media.advance(5000);
        media.clearCommands();
    }
    Main &main() { return app.Main(); }
};

TEST_F(TickErrors, ALengthThatVanishesForTheBarLeavesTheBarAndPlacesTheTitle) {
    main().load_Played.setWidth(77);
    main().playInfo_Show.setLeft(9999);
    media.answerOnce(lengthQuery, {0, u"60000"}); // whether there is a medium
    media.answerOnce(lengthQuery, {0, u"60000"}); // its text
    media.answerOnce(lengthQuery, {0, u""});      // the bar
    tickMain();
    EXPECT_EQ(main().load_Played.width(), 77);
    EXPECT_EQ(main().playInfo_Show.left(),
              main().nameBox.width() / 2 - main().playInfo_Show.width() / 2);
    EXPECT_EQ(main().play_Time.caption(), u"00:00:05 - 00:01:00");
}

TEST_F(TickErrors, ASecondAnswerOfOtherShowsPlayAndLeavesTheRest) {
    main().play_Time.setCaption(u"as it was");
    media.answerOnce(modeQuery, {0, u"seeking"});
    media.answerOnce(modeQuery, {0, u"seeking"});
    tickMain();
    EXPECT_TRUE(main().playButton.visible());
    EXPECT_FALSE(main().pauseButton.visible());
    EXPECT_EQ(main().play_Time.caption(), u"as it was");
}

TEST_F(TickErrors, ASecondAnswerOfPlayingBringsTheStoppedLook) {
    main().play_Time.setCaption(u"as it was");
    media.answerOnce(modeQuery, {0, u"seeking"});
    tickMain(); // the second question meets the playing medium
    EXPECT_EQ(main().play_Time.caption(), u"00:00:00 - 00:00:00");
    EXPECT_EQ(main().playInfo_Show.caption(), app.Language().msg_Welcome);
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(TickErrors, AStoppedLookOfTheLengthDoesNotKeepTheStateFromBeingShown) {
    media.answerOnce(lengthQuery, {0, u""});
    app.lrcForm().nowLrcLine = u"line";
    tickMain();
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"") << "the stopped look of the first step";
    EXPECT_EQ(main().play_Time.caption(), u"00:00:05 - 00:01:00");
    EXPECT_TRUE(main().pauseButton.visible());
}

// --- windows that nobody sees --------------------------------------------------------------------

TEST_F(TickErrors, TheScrollBarsOfHiddenWindowsAreLeft) {
    const auto expectLeft = [this](auto &window, forms::ListBox &list) {
        for (int row = 0; row < 60; ++row)
            list.addItem(u"row");
        window.P1.setVisible(false);
        window.P2.setTop(7);
        window.P4.setVisible(true);
        tickMain();
        EXPECT_FALSE(window.P1.visible()) << window.name();
        EXPECT_EQ(window.P2.top(), 7) << window.name();
        EXPECT_TRUE(window.P4.visible()) << window.name();
    };
    expectLeft(app.playList_Form(), app.playList_Form().playList_Item);
    expectLeft(app.doLrcForm(), app.doLrcForm().lrcList);
    expectLeft(app.search_Lrc_Internet_Form(), app.search_Lrc_Internet_Form().search_Lrc_List);
    expectLeft(app.search_Song_Internet_Form(), app.search_Song_Internet_Form().search_Song_List);
}

// The ticks of the other windows run and ask, too.
TEST_F(TickErrors, HiddenWindowsAskForTheStateAsWell) {
    app.miniForm();
    app.VideoScreen_Form();
    ASSERT_FALSE(app.miniForm().visible());
    ASSERT_FALSE(app.VideoScreen_Form().visible());
    main().Timer1.setRunning(false);
    app.lrcForm().Timer1.setRunning(false);
    media.clearCommands();
    windows.advance(70);
    EXPECT_GE(media.count(modeQuery), 2U);
}

TEST_F(TickErrors, ATrackThatEndsUnderAHiddenMiniWindowIsFollowedByItsTick) {
    addRow(u"/m/b.mp3");
    app.player().nowPlay_Index = 1;
    main().Timer1.setRunning(false);
    app.unloadVideoScreen();
    ASSERT_FALSE(app.miniForm().visible());
    media.reachEnd();
    windows.advance(70);
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
}

} // namespace
} // namespace velmora
