// The two windows that tell what is known of a track.

#include "lyrics/lrcForm.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playInfo_Form.h"
#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TrackWindows : public ProgramFixture {
protected:
    // As they are over a track with a tag and a lyric.
    TrackWindows() {
        info().show();
        info().anotherInfo_Button.setEnabled(true);
        info().lrcInfo_Frame.setEnabled(true);
    }
    playInfo_Form &info() { return app.playInfo_Form(); }
    another_PlayInfo_Form &tag() { return app.another_PlayInfo_Form(); }
};

TEST_F(TrackWindows, BothAreCutOutByTheKeyColour) {
    EXPECT_EQ(info().windowKey(), keyColour);
    EXPECT_EQ(tag().windowKey(), keyColour);
}

TEST_F(TrackWindows, TheButtonShowsTheTagAndDisablesTheWindowBehind) {
    info().show();
    clickOn(info().anotherInfo_Button);
    EXPECT_TRUE(tag().visible());
    EXPECT_FALSE(info().enabled());
    clickOn(tag().close);
    EXPECT_FALSE(tag().visible());
    EXPECT_TRUE(info().enabled());
}

TEST_F(TrackWindows, TheButtonHidesTheTagThatIsOpen) {
    tag().show();
    clickOn(info().anotherInfo_Button);
    EXPECT_FALSE(tag().visible());
    EXPECT_TRUE(info().enabled());
}

TEST_F(TrackWindows, ASystemCloseOfTheTagGivesTheWindowBehindBack) {
    clickOn(info().anotherInfo_Button);
    tag().closeRequested();
    EXPECT_FALSE(tag().visible());
    EXPECT_TRUE(info().enabled());
}

TEST_F(TrackWindows, ASystemCloseOnlyHides) {
    info().show();
    info().closeRequested();
    EXPECT_FALSE(info().visible());
    EXPECT_FALSE(info().unload());
}

TEST_F(TrackWindows, TheLyricsFolderIsOpened) {
    info().lrc_Path_Str.setText(u"/words/a.lrc");
    clickOn(info().openLrcFile);
    ASSERT_EQ(fake.shell.executions.size(), 1U);
    EXPECT_EQ(fake.shell.executions[0].target, u"/words/");
}

TEST_F(TrackWindows, APathWithoutAFolderSaysSo) {
    speak(1);
    windows.expectMsgBox(
        boxOf(u"歌词文件地址解析错误，无法打开！", platform::MsgBoxIcon::Critical, u"Error"),
        platform::MsgBoxResult::Ok);
    clickOn(info().openLrcFile);
    EXPECT_THAT(fake.shell.executions, IsEmpty());
}

TEST_F(TrackWindows, TheLineIsTheOneOfAllWindowsWhileItCanBeSeen) {
    app.lrcForm().nowLrcLine = u"la la";
    info().hide();
    info().Timer1.onTimer();
    EXPECT_NE(info().lrc_Text.caption(), u"la la");
    info().show();
    info().Timer1.onTimer();
    EXPECT_EQ(info().lrc_Text.caption(), u"la la");
}

TEST_F(TrackWindows, ALongLineRollsByFiftyTwipsATick) {
    info().show();
    app.lrcForm().nowLrcLine = std::u16string(400, u'x');
    info().Timer1.onTimer();
    EXPECT_EQ(info().lrc_Text.left(), -50);
    info().Timer1.onTimer();
    EXPECT_EQ(info().lrc_Text.left(), -100);
}

TEST_F(TrackWindows, ALineThatFitsIsCentred) {
    info().show();
    app.lrcForm().nowLrcLine = u"la";
    info().Timer1.onTimer();
    EXPECT_EQ(info().lrc_Text.alignment(), forms::Alignment::Centre);
    EXPECT_EQ(info().lrc_Text.left(), info().lrc.width() / 2 - info().lrc_Text.width() / 2);
}

TEST_F(TrackWindows, TheLineTicksEverySeventyMilliseconds) {
    EXPECT_EQ(info().Timer1.interval(), 70);
    EXPECT_TRUE(info().Timer1.running());
}

TEST_F(TrackWindows, TheLyricsFactsAreDisabledUntilALyricIsLoaded) {
    const auto fresh = std::make_unique<playInfo_Form>(app);
    EXPECT_FALSE(fresh->lrcInfo_Frame.enabled());
    EXPECT_FALSE(fresh->anotherInfo_Button.enabled());
}

} // namespace
} // namespace velmora
