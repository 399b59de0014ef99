// What a tick does when the engine contradicts itself between two of its questions.

#include "tests/unit/program_fixture.h"

#include "lyrics/lrcForm.h"

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

} // namespace
} // namespace velmora
