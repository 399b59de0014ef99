// The tick of the lyric: the line by the text of the clock, and the desktop line.

#include "tests/unit/program_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/miniForm.h"
#include "playlist/playInfo_Form.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

class Lyric : public ProgramFixture {
protected:
    Lyric() { app.lrcForm().move({0, 0, 19200, 600}); }
    lrcForm &form() { return app.lrcForm(); }
    void lines(std::initializer_list<const char16_t *> texts) {
        form().List1.clear();
        for (const char16_t *text : texts)
            form().List1.addItem(text);
    }
    // One tick at this position.
    std::u16string at(std::u16string_view ms) {
        media.answerAlways(u"status NOWMUSIC position", {0, std::u16string(ms)});
        form().Timer1.onTimer();
        return form().nowLrcLine;
    }
};

TEST_F(Lyric, OfTheSameSecondIsTheHigherLine) {
    lines({u"[00:05.10]A", u"[00:05.90]B"});
    EXPECT_EQ(at(u"5000"), u"A");
    EXPECT_EQ(at(u"5400"), u"A");
    EXPECT_EQ(at(u"5900"), u"A");
}

TEST_F(Lyric, WithSeveralLabelsIsShownAtEach) {
    lines({u"[00:05.10][00:20.00]A", u"[00:10.00]B"});
    EXPECT_EQ(at(u"5000"), u"A");
    EXPECT_EQ(at(u"10000"), u"B");
    EXPECT_EQ(at(u"20000"), u"A");
}

TEST_F(Lyric, IsFoundByATimeInItsWords) {
    lines({u"[00:30.00]see you at 00:45"});
    EXPECT_EQ(at(u"30000"), u"see you at 00:45");
    form().nowLrcLine = u"between";
    EXPECT_EQ(at(u"45000"), u"see you at 00:45");
}

TEST_F(Lyric, ShowsTheStampsOfSingleWordsAndIsFoundByThemToo) {
    lines({u"[00:30.00]<00:30.00>one <00:32.00>two"});
    EXPECT_EQ(at(u"30000"), u"<00:30.00>one <00:32.00>two");
    form().nowLrcLine = u"between";
    EXPECT_EQ(at(u"32000"), u"<00:30.00>one <00:32.00>two");
}

TEST_F(Lyric, IsMovedByNoOffset) {
    lines({u"[offset:2000]", u"[00:05.00]A", u"[00:07.00]B"});
    EXPECT_EQ(at(u"5000"), u"A");
    EXPECT_EQ(at(u"7000"), u"B");
}

TEST_F(Lyric, StaysBetweenTwoLabels) {
    lines({u"[00:05.00]A", u"[00:10.00]B"});
    at(u"5000");
    EXPECT_EQ(at(u"9000"), u"A");
    EXPECT_EQ(form().lineIndex, -1);
}

TEST_F(Lyric, AfterASeekBetweenLabelsKeepsTheWaitingText) {
    lines({u"[01:05.00]A", u"[01:20.00]B"});
    form().nowLrcLine = u"Music...";
    EXPECT_EQ(at(u"70000"), u"Music...");
    EXPECT_EQ(at(u"80000"), u"B");
}

TEST_F(Lyric, ComesUpToHalfASecondEarly) {
    lines({u"[00:06.00]A"});
    EXPECT_EQ(at(u"5500"), u"A"); // 5.5 goes to the even 6
}

TEST_F(Lyric, OfALabelWithoutWordsBlanksTheDisplay) {
    lines({u"[00:01.00]A", u"[00:02.00]"});
    at(u"1000");
    EXPECT_EQ(at(u"2000"), u"");
}

TEST_F(Lyric, OfALineWithoutABracketIsTheWholeLine) {
    lines({u"at 00:03 plain"});
    EXPECT_EQ(at(u"3000"), u"at 00:03 plain");
}

TEST_F(Lyric, RestsFromTheTenthMinuteOn) {
    lines({u"[09:59.00]A", u"[10:00.00]B"});
    EXPECT_EQ(at(u"599000"), u"A");
    EXPECT_EQ(at(u"600000"), u"A");
    EXPECT_EQ(at(u"601000"), u"A");
}

TEST_F(Lyric, OfADeviceThatAnswersNothingIsLookedForAt0) {
    lines({u"[00:00.00]intro"});
    EXPECT_EQ(at(u""), u"intro");
}

TEST_F(Lyric, AsksTheDeviceOnceATick) {
    lines({u"[00:01.00]A"});
    media.clearCommands();
    form().Timer1.onTimer();
    EXPECT_EQ(media.texts(), Texts{u"status NOWMUSIC position"});
}

TEST_F(Lyric, IsSearchedFromTheTopAsPlainText) {
    lines({u"[ar:x]", u"[00:01.00]A", u"[00:01.00]B"});
    EXPECT_EQ(form().ListIndex(u"00:01"), 1);
    EXPECT_EQ(form().ListIndex(u"00:09"), -1);
    EXPECT_EQ(form().ListIndex(u"AR:"), -1) << "upper and lower case differ";
}

// --- the desktop line ----------------------------------------------------------------------------

class DesktopLine : public Lyric {
protected:
    void showLine(std::u16string line) {
        form().nowLrcLine = std::move(line);
        form().Timer1.onTimer();
    }
    static std::u16string wideLine(std::size_t units = 400) { return std::u16string(units, u'w'); }
};

TEST_F(DesktopLine, ThatFitsIsCentredOverTheFormsWidth) {
    showLine(u"short");
    EXPECT_EQ(form().lrc_Text.caption(), u"short");
    EXPECT_EQ(form().lrc_Text.alignment(), forms::Alignment::Centre);
    EXPECT_EQ(form().lrc_Text.left(), 0);
    EXPECT_EQ(form().lrc_Text.top(), 0);
    EXPECT_EQ(form().lrc_Text.width(), form().width());
}

TEST_F(DesktopLine, ThatFitsIsCentredBehindOneThatRolled) {
    showLine(wideLine());
    ASSERT_EQ(form().lrc_Text.alignment(), forms::Alignment::Left);
    showLine(u"short");
    EXPECT_EQ(form().lrc_Text.alignment(), forms::Alignment::Centre);
    EXPECT_EQ(form().lrc_Text.left(), 0);
}

TEST_F(DesktopLine, ThatIsTooWideRollsInStepsOf150) {
    showLine(wideLine());
    EXPECT_EQ(form().lrc_Text.alignment(), forms::Alignment::Left);
    EXPECT_EQ(form().lrc_Text.left(), -150);
    showLine(wideLine());
    EXPECT_EQ(form().lrc_Text.left(), -300);
    EXPECT_EQ(form().lrcShownLine, wideLine());
}

TEST_F(DesktopLine, ThatIsNewRestartsAtTheLeftEdgeWithTheOldDirection) {
    showLine(wideLine());
    form().lrc_Text.setTag(u"1");
    showLine(wideLine(410));
    EXPECT_EQ(form().lrc_Text.left(), 150);
    EXPECT_EQ(form().lrc_Text.tag(), u"1");
}

TEST_F(DesktopLine, TurnsAtMarginsOf1000) {
    showLine(wideLine());
    auto &label = form().lrc_Text;
    const Twips turn = -(label.width() - form().width()) - 1000;
    label.setLeft(turn + 151);
    showLine(wideLine());
    EXPECT_NE(label.tag(), u"1");
    showLine(wideLine());
    EXPECT_EQ(label.tag(), u"1");
    EXPECT_EQ(label.left(), turn + 1) << "the tick that turns it moves it back already";
    label.setLeft(851);
    showLine(wideLine());
    EXPECT_EQ(label.tag(), u"2");
}

TEST_F(DesktopLine, ThatIsExactlyAsWideAsTheFormDoesNotRoll) {
    auto &label = form().lrc_Text;
    label.setCaption(u"just as wide");
    const Twips width = label.width();
    form().setWidth(width);
    showLine(u"just as wide");
    EXPECT_EQ(label.alignment(), forms::Alignment::Centre);
    EXPECT_EQ(label.left(), 0);
    form().setWidth(width - 1);
    showLine(u"just as wide");
    EXPECT_EQ(label.alignment(), forms::Alignment::Left);
    EXPECT_EQ(label.left(), -150);
}

TEST_F(DesktopLine, ThatFitsLeavesDirectionAndRememberedLine) {
    showLine(wideLine());
    form().lrc_Text.setTag(u"1");
    showLine(u"short");
    EXPECT_EQ(form().lrc_Text.tag(), u"1");
    EXPECT_EQ(form().lrcShownLine, wideLine());
    // The same wide line again goes on from where the short one was put.
    showLine(wideLine());
    EXPECT_EQ(form().lrc_Text.left(), 150);
}

TEST_F(DesktopLine, RollsByItselfInEachWindow) {
    setVolumeBar(0);
    openAndPlay(addTrack(u"/m/a.mp3"));
    app.lrcForm().nowLrcLine = wideLine();
    tickMain();
    tickMain();
    EXPECT_EQ(app.Main().lrc_Text.left(), -100);
    for (forms::Label *label : {&app.miniForm().lrc_Text, &app.playInfo_Form().lrc_Text})
        label->setLeft(700);
    app.miniForm().Timer1.onTimer();
    EXPECT_EQ(app.miniForm().lrc_Text.left(), -50);
    app.playInfo_Form().show();
    app.playInfo_Form().Timer1.onTimer();
    EXPECT_EQ(app.playInfo_Form().lrc_Text.left(), -50);
}

TEST_F(DesktopLine, ThatStandsStillIsNotDrawnAgain) {
    form().show();
    showLine(u"short");
    auto *window = fakes::FakeWindows::windowOf(form());
    const int paints = window->paints;
    showLine(u"short");
    showLine(u"short");
    EXPECT_EQ(window->paints, paints);
}

TEST_F(DesktopLine, InANewFontIsFittedAnew) {
    const std::u16string line(30, u'w');
    showLine(line);
    EXPECT_EQ(form().lrc_Text.alignment(), forms::Alignment::Centre);
    forms::Font large = form().lrc_Text.font();
    large.setSize(72);
    form().lrc_Text.setFont(large);
    showLine(line);
    EXPECT_EQ(form().lrc_Text.alignment(), forms::Alignment::Left);
}

TEST_F(DesktopLine, HasNoTextWhenLoaded) { EXPECT_EQ(form().lrc_Text.caption(), u""); }

TEST_F(DesktopLine, LiesAcrossTheScreenAboveTheTaskBarWhoseHeightCountsInPixels) {
    windows.workArea = {0, 20, 1280, 760};
    windows.taskBar = {0, 760, 1280, 800};
    form().lrc_Text.setHeight(555);
    form().position();
    EXPECT_EQ(form().place(), (RectTwips{0, 740 * 15 - 40 - 555, 1280 * 15, 555}));
    EXPECT_EQ(form().lrc_Text.place(), (RectTwips{0, 0, 1280 * 15, 555}));
    EXPECT_TRUE(form().visible());
    EXPECT_TRUE(form().topmost());
}

TEST_F(DesktopLine, IsHiddenAndShownAgainWhenItIsPlaced) {
    form().position();
    windows.shown.clear();
    form().position();
    EXPECT_EQ(windows.shown, std::vector<std::string>{"lrcForm"});
}

TEST_F(DesktopLine, IsBroughtToTheTopWheneverItIsPlaced) {
    form().position();
    app.formSet().set_Topmost(form().hWnd(), false);
    ASSERT_FALSE(form().topmost());
    form().position();
    EXPECT_TRUE(form().topmost());
}

TEST_F(DesktopLine, IsPlacedAgainWhenTheScreensChange) {
    form().position();
    windows.screen = {800, 600};
    windows.workArea = {0, 0, 800, 570};
    windows.taskBar = {0, 570, 800, 600};
    windows.onScreensChanged();
    const Twips high = form().lrc_Text.height();
    EXPECT_EQ(form().place(), (RectTwips{0, 570 * 15 - 30 - high, 800 * 15, high}));
    EXPECT_TRUE(form().visible());
}

TEST_F(DesktopLine, OfAnySizeStaysWithinTheScreensHeight) {
    forms::Font font = form().lrc_Text.font();
    for (const float size : {512.0F, 2160.0F}) {
        font.setSize(size);
        form().dress(font);
        form().position();
        EXPECT_GE(form().top(), 0);
        EXPECT_LE(form().top() + form().height(), windows.workArea.bottom * 15);
        EXPECT_GT(form().height(), 700 * 15) << "far smaller than it had to be";
        EXPECT_EQ(form().lrc_Text.height(), form().height());
    }
}

TEST_F(DesktopLine, HasItsOwnSizeAgainWhereThereIsRoomForIt) {
    forms::Font font = form().lrc_Text.font();
    font.setSize(200);
    form().dress(font);
    form().position();
    EXPECT_EQ(form().lrc_Text.font().size(), 200);
    windows.workArea = {0, 0, 320, 240};
    windows.onScreensChanged();
    EXPECT_LT(form().lrc_Text.font().size(), 200);
    EXPECT_LE(form().height(), 240 * 15);
    windows.workArea = {0, 0, 1280, 760};
    windows.onScreensChanged();
    EXPECT_EQ(form().lrc_Text.font().size(), 200);
}

TEST_F(DesktopLine, IsAsSmallAsCanBeWhereTheTaskBarLeavesATwip) {
    windows.workArea = {0, 0, 1280, 1};
    windows.taskBar = {0, 1, 1280, 15};
    form().position();
    EXPECT_EQ(form().lrc_Text.font().size(), 1);
}

TEST_F(DesktopLine, KeepsItsSizeWhereTheScreenIsNotKnown) {
    windows.workArea = {0, 0, 0, 0};
    form().position();
    EXPECT_EQ(form().lrc_Text.font().size(), 36);
}

TEST_F(DesktopLine, ThatNoLongerFitsANarrowerScreenRolls) {
    form().position();
    const std::u16string line(40, u'w');
    showLine(line);
    ASSERT_EQ(form().lrc_Text.alignment(), forms::Alignment::Centre);
    windows.screen = {320, 240};
    windows.onScreensChanged();
    showLine(line);
    EXPECT_EQ(form().lrc_Text.alignment(), forms::Alignment::Left);
    EXPECT_EQ(form().lrc_Text.left(), -150);
}

TEST_F(DesktopLine, HasTheKeyColourAndStaysOnTopFromItsLoading) {
    EXPECT_TRUE(form().layered());
    EXPECT_EQ(form().windowKey(), keyColour);
    EXPECT_TRUE(form().topmost());
}

TEST_F(DesktopLine, IsNeverUnloaded) {
    form().show();
    form().closeRequested();
    EXPECT_TRUE(form().visible());
}

} // namespace
} // namespace velmora
