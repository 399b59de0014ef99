// The 70 ms tick of the main window: lyric line, state, scroll bars.

#include "tests/unit/playback/tick_fixture.h"

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "playback/display.h"

namespace velmora {
namespace {

// --- with nothing open ---------------------------------------------------------------------------

TEST_F(Tick, WithNothingOpenSetsTheStoppedLook) {
    main().playInfo_Show.setCaption(u"x");
    main().playButton.setVisible(false);
    tickMain();
    EXPECT_EQ(main().playInfo_Show.caption(), u"Welcome to Velmora");
    EXPECT_TRUE(main().playButton.visible());
}

TEST_F(Tick, WithNothingOpenAsksLengthThenModeTwice) {
    tickMain();
    EXPECT_EQ(media.texts(),
              (Texts{u"status NOWMUSIC length", u"status NOWMUSIC mode", u"status NOWMUSIC mode"}));
}

TEST_F(Tick, ThatChangesNothingDrawsNothing) {
    main().show();
    tickMain();
    auto *window = fakes::FakeWindows::windowOf(main());
    const int paints = window->paints;
    tickMain();
    tickMain();
    EXPECT_EQ(window->paints, paints);
}

TEST_F(Tick, ThatChangesNothingWhilePausedDrawsNothing) {
    play();
    app.player().pause_Sub();
    app.lrcForm().nowLrcLine = u"a line";
    main().show();
    tickMain();
    auto *window = fakes::FakeWindows::windowOf(main());
    const int paints = window->paints;
    tickMain();
    EXPECT_EQ(window->paints, paints);
}

// --- playing -------------------------------------------------------------------------------------

TEST_F(Tick, WhilePlayingShowsStateTimesAndTitle) {
    play();
    media.advance(30'000);
    tickMain();
    EXPECT_FALSE(main().playButton.visible());
    EXPECT_TRUE(main().pauseButton.visible());
    EXPECT_EQ(main().play_Time.caption(), u"00:00:30 - 00:01:00");
    EXPECT_EQ(main().playInfo_Show.caption(), u"〖1/2〗 a");
    EXPECT_EQ(main().load_Played.width(),
              static_cast<Twips>(app.player().get_PlayedWidth(PlayerWindow::Main)));
}

TEST_F(Tick, WhilePlayingAsksInThisOrder) {
    play();
    media.advance(10'000);
    tickMain();
    EXPECT_EQ(media.texts(), (Texts{u"status NOWMUSIC length", u"status NOWMUSIC mode",
                                    u"status NOWMUSIC position", u"status NOWMUSIC length",
                                    u"status NOWMUSIC position", u"status NOWMUSIC length"}));
}

TEST_F(Tick, AtPosition0FillsTheWholeBar) {
    play();
    tickMain();
    EXPECT_EQ(main().load_Played.width(), std::nearbyint(main().load_Played_BG.width()));
}

TEST_F(Tick, WhilePausedLeavesTimeBarAndLineAndShowsPlay) {
    play();
    media.advance(10'000);
    app.lrcForm().nowLrcLine = u"a line";
    tickMain();
    const auto time = main().play_Time.caption();
    const auto width = main().load_Played.width();
    app.player().pause_Sub();
    tickMain();
    EXPECT_EQ(main().play_Time.caption(), time);
    EXPECT_EQ(main().load_Played.width(), width);
    EXPECT_EQ(main().lrc_Text.caption(), u"a line");
    EXPECT_TRUE(main().playButton.visible());
    EXPECT_FALSE(main().pauseButton.visible());
}

TEST_F(Tick, WhilePausedAsksTheModeTwice) {
    play();
    app.player().pause_Sub();
    media.clearCommands();
    tickMain();
    EXPECT_EQ(media.count(u"status NOWMUSIC mode"), 2U);
}

// --- the end of a track --------------------------------------------------------------------------

TEST_F(Tick, AtATracksEndStartsTheNextAndShowsTheStoppedLookForOneTick) {
    play();
    media.reachEnd();
    app.player().nowPlay_Index = 1;
    tickMain();
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(main().playInfo_Show.caption(), u"Welcome to Velmora");
    tickMain();
    EXPECT_EQ(main().playInfo_Show.caption(), u"〖2/2〗 b");
    EXPECT_TRUE(main().pauseButton.visible());
}

TEST_F(Tick, AtATracksEndAsksTheModeTwiceAndStartsOnlyOneTrack) {
    play();
    media.reachEnd();
    app.player().nowPlay_Index = 1;
    tickMain();
    EXPECT_EQ(media.count(u"status NOWMUSIC mode"), 2U);
    EXPECT_EQ(app.player().nowPlay_Index, 2);
}

TEST_F(Tick, AtATracksEndWithoutAutoPlayShowsTheStoppedLook) {
    app.setControl().isAutoPlay = 1;
    play();
    media.reachEnd();
    tickMain();
    EXPECT_EQ(main().play_Time.caption(), u"00:00:00 - 00:00:00");
    EXPECT_TRUE(media.isOpen());
    EXPECT_EQ(app.player().nowPlay_File, u"/m/a.mp3");
}

TEST_F(Tick, RunsByItsTimerEvery70Milliseconds) {
    play();
    main().Timer1.setRunning(true);
    EXPECT_EQ(main().Timer1.interval(), 70);
    app.lrcForm().Timer1.setRunning(false);
    windows.advance(700);
    EXPECT_EQ(main().play_Time.caption(), u"00:00:00 - 00:01:00");
    // miniForm and the video window may ask as well; Main alone asks for the length ten times.
    EXPECT_GE(media.count(u"status NOWMUSIC length"), 10U);
}

TEST_F(Tick, IsOffAtDesign) { EXPECT_FALSE(main().Timer1.running()); }

// --- the lyric line ------------------------------------------------------------------------------

TEST_F(Tick, CentresALineThatFits) {
    play();
    app.lrcForm().nowLrcLine = u"short";
    tickMain();
    EXPECT_EQ(main().lrc_Text.caption(), u"short");
    EXPECT_EQ(main().lrc_Text.alignment(), forms::Alignment::Centre);
    EXPECT_EQ(main().lrc_Text.left(), main().lrcBox.width() / 2 - main().lrc_Text.width() / 2);
}

TEST_F(Tick, DoesNotRollALineOfExactlyTheBoxsWidth) {
    play();
    app.lrcForm().nowLrcLine = u"just as wide";
    main().lrc_Text.setCaption(app.lrcForm().nowLrcLine);
    main().lrcBox.setWidth(main().lrc_Text.width());
    tickMain();
    EXPECT_EQ(main().lrc_Text.alignment(), forms::Alignment::Centre);
    EXPECT_EQ(main().lrc_Text.left(), 0);
}

TEST_F(Tick, RollsAWideLineLeftUntilItsEndIs200BeyondThenRightUntilItIsAt200) {
    play();
    app.lrcForm().nowLrcLine = wide(main().lrcBox);
    main().lrc_Text.setTag(u"");
    tickMain();
    auto &label = main().lrc_Text;
    EXPECT_EQ(label.alignment(), forms::Alignment::Left);
    EXPECT_EQ(label.left(), -50);
    const Twips turn = -(label.width() - main().lrcBox.width()) - 200;
    while (label.tag() != u"1") {
        const Twips before = label.left();
        ASSERT_GT(before, turn);
        tickMain();
        ASSERT_EQ(label.left(), before - 50);
    }
    EXPECT_LE(label.left(), turn);
    EXPECT_GT(label.left(), turn - 50);
    while (label.tag() == u"1") {
        const Twips before = label.left();
        ASSERT_LT(before, 200);
        tickMain();
        ASSERT_EQ(label.left(), before + 50);
    }
    EXPECT_EQ(label.tag(), u"2");
    EXPECT_GE(label.left(), 200);
    const Twips before = label.left();
    tickMain();
    EXPECT_EQ(label.left(), before - 50);
}

TEST_F(Tick, ANewWideLineRestartsAtTheLeftEdgeAndKeepsTheDirection) {
    play();
    app.lrcForm().nowLrcLine = wide(main().lrcBox);
    tickMain();
    main().lrc_Text.setTag(u"1");
    main().lrc_Text.setLeft(-700);
    app.lrcForm().nowLrcLine = wide(main().lrcBox, 9);
    tickMain();
    EXPECT_EQ(main().lrc_Text.left(), 50) << "from 0, still moving right";
    EXPECT_EQ(main().lrc_Text.tag(), u"1");
}

TEST_F(Tick, TheSameWideLineGoesOnWhereItWas) {
    play();
    app.lrcForm().nowLrcLine = wide(main().lrcBox);
    tickMain();
    tickMain();
    tickMain();
    EXPECT_EQ(main().lrc_Text.left(), -150);
}

// --- scroll bars ---------------------------------------------------------------------------------

template <typename Window> void expectBar(Window &window, bool visible) {
    EXPECT_EQ(window.P1.visible(), visible);
    EXPECT_EQ(window.P2.visible(), visible);
    EXPECT_EQ(window.P3.visible(), visible);
    EXPECT_EQ(window.P4.visible(), visible);
}

void fill(forms::ListBox &list, int count) {
    list.clear();
    for (int row = 0; row < count; ++row)
        list.addItem(u"row");
}

template <typename Window> Twips travel(const Window &window) {
    return window.P4.height() - window.P2.height();
}

TEST_F(Tick, ShowsTheScrollBarOfAListOnlyWhenItHasMoreRowsThanFit) {
    auto &list = app.playList_Form();
    list.show();
    fill(list.playList_Item, 17);
    tickMain();
    expectBar(list, false);
    fill(list.playList_Item, 18);
    tickMain();
    expectBar(list, true);
}

TEST_F(Tick, PlacesTheThumbByTheTopRow) {
    auto &list = app.playList_Form();
    list.show();
    fill(list.playList_Item, 37);
    list.playList_Item.setTopIndex(5);
    tickMain();
    EXPECT_FLOAT_EQ(list.P2.top(), 5.0F / 20 * travel(list));
}

TEST_F(Tick, LeavesAThumbThatIsDragged) {
    auto &list = app.playList_Form();
    list.show();
    fill(list.playList_Item, 37);
    list.playList_Item.setTopIndex(5);
    list.P2.setTag(u"1");
    list.P2.setTop(7);
    tickMain();
    EXPECT_EQ(list.P2.top(), 7);
    list.P2.setTag(u"");
    tickMain();
    EXPECT_NE(list.P2.top(), 7);
}

TEST_F(Tick, LeavesTheScrollBarOfAHiddenWindow) {
    auto &list = app.playList_Form();
    fill(list.playList_Item, 40);
    list.P1.setVisible(false);
    tickMain();
    EXPECT_FALSE(list.P1.visible());
}

TEST_F(Tick, CountsTheEditorsRowsByThePlayListsCapacity) {
    auto &editor = app.doLrcForm();
    editor.show();
    app.playList_Form().visibleRows = 20;
    fill(editor.lrcList, 20);
    tickMain();
    expectBar(editor, false);
    fill(editor.lrcList, 30);
    editor.lrcList.setTopIndex(4);
    tickMain();
    expectBar(editor, true);
    EXPECT_FLOAT_EQ(editor.P2.top(),
                    static_cast<float>(editor.lrcList.topIndex()) / 10 * travel(editor));
}

TEST_F(Tick, CountsTheLyricSearchByItsOwnCapacity) {
    auto &form = app.search_Lrc_Internet_Form();
    form.show();
    fill(form.search_Lrc_List, 11);
    tickMain();
    expectBar(form, false);
    fill(form.search_Lrc_List, 31);
    form.search_Lrc_List.setTopIndex(10);
    tickMain();
    expectBar(form, true);
    EXPECT_FLOAT_EQ(form.P2.top(),
                    static_cast<float>(form.search_Lrc_List.topIndex()) / 20 * travel(form));
}

TEST_F(Tick, TestsTheSongSearchByTheLyricSearchsCapacityAndPlacesByItsOwn) {
    auto &form = app.search_Song_Internet_Form();
    form.show();
    app.search_Lrc_Internet_Form().visibleRows = 15;
    form.visibleRows = 10;
    fill(form.search_Song_List, 15);
    tickMain();
    expectBar(form, false);
    fill(form.search_Song_List, 30);
    form.search_Song_List.setTopIndex(10);
    tickMain();
    expectBar(form, true);
    EXPECT_FLOAT_EQ(form.P2.top(),
                    static_cast<float>(form.search_Song_List.topIndex()) / 20 * travel(form));
}

TEST_F(Tick, PassesOverAThumbThatCannotBePlaced) {
    auto &form = app.search_Song_Internet_Form();
    form.show();
    app.search_Lrc_Internet_Form().visibleRows = 5;
    form.visibleRows = 10;
    fill(form.search_Song_List, 10); // more than 5, and nothing beyond 10 to divide by
    form.P2.setTop(33);
    tickMain();
    expectBar(form, true);
    EXPECT_EQ(form.P2.top(), 33);
}

TEST_F(Tick, AloneWritesWhetherTheLyricEditorIsOpen) {
    app.doLrcForm().show();
    EXPECT_EQ(app.player().isDoLrc_Open, 0);
    tickMain();
    EXPECT_EQ(app.player().isDoLrc_Open, -1);
    app.doLrcForm().hide();
    EXPECT_EQ(app.player().isDoLrc_Open, -1);
    tickMain();
    EXPECT_EQ(app.player().isDoLrc_Open, 0);
}

// --- the rolling caption -------------------------------------------------------------------------

class Caption : public Tick {
protected:
    std::u16string whole() {
        return u" " + main().title.caption() + u" - " + app.player().nowPlay_Title;
    }
};

TEST_F(Caption, StaysWithNothingOpen) {
    main().setCaption(u"as it was");
    tickCaption();
    EXPECT_EQ(main().caption(), u"as it was");
    EXPECT_TRUE(windows.appTitles.empty());
}

TEST_F(Caption, LosesOneCharacterMoreWithEachTick) {
    play();
    tickCaption();
    EXPECT_EQ(main().caption(), whole().substr(1) + u"  -  " + whole());
    tickCaption();
    EXPECT_EQ(main().caption(), whole().substr(2) + u"  -  " + whole());
    EXPECT_EQ(windows.appTitles.back(), main().caption());
    EXPECT_EQ(main().rotation_Text, main().caption());
}

TEST_F(Caption, StartsOverOnlyOnceTheCounterIsBeyondTheText) {
    play();
    const auto length = static_cast<std::int16_t>(whole().size());
    main().rotation_Count = static_cast<std::int16_t>(length - 1);
    tickCaption();
    EXPECT_EQ(main().rotation_Count, length);
    EXPECT_EQ(main().caption(), u"  -  " + whole());
    tickCaption();
    EXPECT_EQ(main().rotation_Count, length + 1);
    EXPECT_EQ(main().caption(), u"  -  " + whole());
    tickCaption();
    EXPECT_EQ(main().rotation_Count, 1);
}

TEST_F(Caption, RunsEvery250MillisecondsFromTheCreationOfMain) {
    EXPECT_EQ(main().Timer2.interval(), 250);
    EXPECT_TRUE(main().Timer2.running());
    play();
    main().rotation_Count = 0;
    windows.advance(1000);
    EXPECT_EQ(main().rotation_Count, 4);
}

TEST_F(Caption, IsThePlainTitleAgainAfterAStop) {
    play();
    tickCaption();
    main().stop_Sub();
    EXPECT_EQ(main().caption(), main().title.caption());
}

} // namespace
} // namespace velmora
