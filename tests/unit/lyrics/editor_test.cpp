// The lyric editor: filling, selecting, editing, stamps.

#include "tests/unit/lyrics/lyrics_fixture.h"

namespace velmora {
namespace {

class LyricEditor : public LyricsFixture {
protected:
    // Lines without labels of their own, taken from a file, so without the extra row.
    void open(std::string bytes) {
        files.addFile(u"/m/words.txt", std::move(bytes));
        editor().addFile_To_List(u"/m/words.txt");
    }
    void at(std::int32_t ms) {
        media.answerAlways(u"status NOWMUSIC position", {0, decimalText(ms)});
    }
    static std::u16string decimalText(std::int32_t ms) {
        const std::string digits = std::to_string(ms);
        return {digits.begin(), digits.end()};
    }
    void press(std::int16_t key, std::int16_t shift = 0) {
        forms::KeyEvent event{key, shift};
        editor().lrcList.on().KeyDown(event);
    }
    bool isSelectedAlone(std::int32_t row) {
        return editor().lrcList.selCount() == 1 && editor().lrcList.selected(row);
    }
    static constexpr std::int16_t f9 = 120;
    static constexpr std::int16_t f10 = 121;
};

TEST_F(LyricEditor, TakesTheLyricWithOneEmptyRowMore) {
    load("[00:01]a\n[00:02]b\n[00:03]c");
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[00:01]a", u"[00:02]b", u"[00:03]c", u""}));
    EXPECT_TRUE(isSelectedAlone(0));
    EXPECT_EQ(editor().nowRow, 0);
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"[00:01]a");
    EXPECT_FALSE(editor().no_Lrc_Clew.visible());
}

TEST_F(LyricEditor, PutsTagsIntoBoxesAndDropsLinesOfLabelsOnly) {
    load("[ti:T]\n[ar:A]\n[al:L]\n[by:B]\n[offset:0]\n[00:05]\n[00:06][00:07] \n  text ");
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"  text ", u""}));
    EXPECT_EQ(editor().lrc_Ti_Str.text(), u"T");
    EXPECT_EQ(editor().lrc_Ar_Str.text(), u"A");
    EXPECT_EQ(editor().lrc_Al_Str.text(), u"L");
    EXPECT_EQ(editor().lrc_By_Str.text(), u"B");
}

TEST_F(LyricEditor, EmptiesTheBoxesOfTagsThatTheNextLyricDoesNotHave) {
    load("[by:me]\na");
    load("[ti:T]\nb");
    EXPECT_EQ(editor().lrc_By_Str.text(), u"");
    EXPECT_EQ(editor().lrc_Ti_Str.text(), u"T");
}

TEST_F(LyricEditor, WithoutALyricIsEmptyAndDisabledUnderItsPanel) {
    load("[ti:T]\n[00:01]a");
    lyric().startLoad(u"");
    EXPECT_EQ(editor().lrcList.listCount(), 0);
    EXPECT_EQ(editor().lrc_Ti_Str.text(), u"");
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"");
    for (const forms::Control *control : std::initializer_list<const forms::Control *>{
             &editor().lrcList, &editor().lrc_Index_Text, &editor().lrc_Al_Str,
             &editor().lrc_Ar_Str, &editor().lrc_By_Str, &editor().lrc_Ti_Str,
             &editor().addTime_Label_Button, &editor().delTime_Label_Button, &editor().save_Button,
             &editor().anotherSave_Button})
        EXPECT_FALSE(control->enabled()) << control->name();
    EXPECT_TRUE(editor().openFile_Button.enabled());
    EXPECT_TRUE(editor().list_Load.enabled());
    EXPECT_TRUE(editor().no_Lrc_Clew.visible());
}

TEST_F(LyricEditor, OfALyricWhoseTrackWasClosedHoldsTheExtraRowAlone) {
    load("[00:01]a");
    lyric().List1.clear(); // what closing a track does; the lyric counts as loaded still
    editor().startLoad();
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u""}));
    EXPECT_TRUE(editor().lrcList.enabled());
}

TEST_F(LyricEditor, ReloadsTheLyricByItsButton) {
    load("[00:01]a");
    editor().lrcList.setList(0, u"changed");
    editor().nowRow = 1;
    clickOn(editor().list_Load);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[00:01]a", u""}));
    EXPECT_EQ(editor().nowRow, 0);
}

TEST_F(LyricEditor, ReloadingWithoutALyricDisablesAndKeepsTheRows) {
    open("words");
    clickOn(editor().list_Load);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"words"}));
    EXPECT_FALSE(editor().lrcList.enabled());
    EXPECT_TRUE(editor().no_Lrc_Clew.visible());
}

// --- files ---

TEST_F(LyricEditor, TakesATextFileWithoutAnExtraRow) {
    open("[ti:T]\n\none\r\n   \ntwo\n[00:01]\n");
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one", u"two"}));
    EXPECT_EQ(editor().lrc_Ti_Str.text(), u"T");
    EXPECT_TRUE(editor().hasText);
    EXPECT_TRUE(editor().lrcList.enabled());
    EXPECT_TRUE(isSelectedAlone(0));
    EXPECT_FALSE(lyric().hasLrc) << "the lyric in memory is another matter";
}

TEST_F(LyricEditor, TheOneRowOfAFileIsSelected) {
    open("one\n");
    EXPECT_TRUE(isSelectedAlone(0));
}

TEST_F(LyricEditor, AFileOfNoTextLeavesNothingSelectedAndRaisesNothing) {
    windows.expectMsgBox(boxOf(u"您所选择的文件是空文件，无法将内容添加到编辑区！",
                               platform::MsgBoxIcon::Critical, u"Velmora 2011"),
                         platform::MsgBoxResult::Ok);
    files.addFile(u"/m/empty.txt", "");
    EXPECT_NO_THROW(editor().addFile_To_List(u"/m/empty.txt"));
    EXPECT_EQ(editor().lrcList.selCount(), 0);
}

TEST_F(LyricEditor, AFileOfTagsAloneIsTextButNoRows) {
    open("[ti:T]\n");
    EXPECT_EQ(editor().lrcList.listCount(), 0);
    EXPECT_TRUE(editor().hasText);
    EXPECT_TRUE(editor().lrcList.enabled());
}

TEST_F(LyricEditor, AnEmptyFileIsToldAndDisables) {
    windows.expectMsgBox(boxOf(u"您所选择的文件是空文件，无法将内容添加到编辑区！",
                               platform::MsgBoxIcon::Critical, u"Velmora 2011"),
                         platform::MsgBoxResult::Ok);
    open(" \r\n\r\n");
    EXPECT_FALSE(editor().hasText);
    EXPECT_FALSE(editor().lrcList.enabled());
    EXPECT_TRUE(editor().no_Lrc_Clew.visible());
}

TEST_F(LyricEditor, AnEmptyPathChangesNothing) {
    open("words");
    editor().addFile_To_List(u"");
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"words"}));
}

TEST_F(LyricEditor, AReadErrorEndsTheReadingAndWhatWasReadStays) {
    files.addFile(u"/m/words.txt", "one\ntwo\nthree\n");
    files.failReadAtLine(u"/m/words.txt", 2);
    editor().addFile_To_List(u"/m/words.txt");
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one", u"two"}));
    EXPECT_TRUE(editor().lrcList.enabled());
}

TEST_F(LyricEditor, MoreLinesThanTheListTakesStayOut) {
    std::string bytes;
    for (int i = 0; i < 33'000; ++i)
        bytes += "x\n";
    open(bytes);
    EXPECT_EQ(editor().lrcList.listCount(), 32'767);
    EXPECT_TRUE(editor().lrcList.enabled());
}

TEST_F(LyricEditor, OpensAFileByItsDialog) {
    files.addFile(u"/m/words.txt", "one");
    fake.dialogs.expectOpen(u"/m/words.txt");
    clickOn(editor().openFile_Button);
    ASSERT_EQ(fake.dialogs.files.size(), 1U);
    EXPECT_EQ(fake.dialogs.files[0].title, u"选择歌词同步文件 - Velmora 2011");
    EXPECT_EQ(fake.dialogs.files[0].filter,
              std::u16string(u"歌词同步文件（*.LRC;*.TXT）\0*.lrc;*.txt\0", 32));
    EXPECT_EQ(fake.dialogs.files[0].owner, editor().hWnd());
    EXPECT_EQ(editor().savePath, u"/m/words.txt");
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one"}));
}

TEST_F(LyricEditor, CancellingTheOpenDialogChangesNothing) {
    open("one");
    fake.dialogs.expectOpen(std::nullopt);
    clickOn(editor().openFile_Button);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one"}));
}

// --- rows ---

TEST_F(LyricEditor, ShowsTheRowThatIsClickedAndGoesThereOnRelease) {
    open("one\ntwo\nthree");
    editor().lrcList.userClicked(2, 0, false);
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"three");
    EXPECT_EQ(editor().nowRow, 0);
    editor().lrcList.on().MouseUp({});
    EXPECT_EQ(editor().nowRow, 2);
}

TEST_F(LyricEditor, FollowsTheKeysOnTheirRelease) {
    open("one\ntwo\nthree");
    editor().lrcList.userMoved(1, 0);
    forms::KeyEvent up;
    editor().lrcList.on().KeyUp(up);
    EXPECT_EQ(editor().nowRow, 1);
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"two");
}

TEST_F(LyricEditor, WritesEachEditBackIntoTheCurrentRow) {
    open("one\ntwo");
    editor().lrcList.userClicked(1, 0, false);
    editor().lrc_Index_Text.userEdited(u"twofold");
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one", u"twofold"}));
    editor().lrc_Index_Text.userEdited(u"");
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one", u""}));
}

// --- stamps ---

TEST_F(LyricEditor, F9StampsTheRowAndGoesToTheNext) {
    open("one\ntwo\nthree");
    at(83456);
    press(f9);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[01:23.45]one", u"two", u"three"}));
    EXPECT_TRUE(isSelectedAlone(1));
    EXPECT_EQ(editor().nowRow, 1);
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"two");
}

TEST_F(LyricEditor, F9OnTheLastRowStampsAndStays) {
    open("one\ntwo");
    at(1000);
    press(f9);
    at(2000);
    press(f9);
    EXPECT_EQ(editor().nowRow, 1);
    at(3000);
    press(f9);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[00:01.00]one", u"[00:03.00][00:02.00]two"}));
    EXPECT_EQ(editor().nowRow, 1);
}

TEST_F(LyricEditor, F9OnTheLastLineOfALyricGoesOnToItsEmptyRow) {
    load("one");
    at(1000);
    press(f9);
    EXPECT_EQ(editor().nowRow, 1);
    at(2000);
    press(f9);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[00:01.00]one", u"[00:02.00]"}));
    EXPECT_EQ(editor().nowRow, 1);
}

TEST_F(LyricEditor, F9WithoutATrackStampsZero) {
    open("one");
    press(f9);
    EXPECT_EQ(editor().lrcList.list(0), u"[00:00.0]one");
}

TEST_F(LyricEditor, F10CutsTheStampAndGoesOneRowUp) {
    open("[00:01.00]one\n[00:02.00]two\nthree");
    editor().lrcList.userClicked(1, 0, false);
    editor().lrcList.on().MouseUp({});
    press(f10);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[00:01.00]one", u"two", u"three"}));
    EXPECT_TRUE(isSelectedAlone(0));
    EXPECT_EQ(editor().nowRow, 0);
}

TEST_F(LyricEditor, F10OnTheFirstRowCutsAndStays) {
    open("[00:01.00]one\ntwo");
    press(f10);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one", u"two"}));
    EXPECT_EQ(editor().nowRow, 0);
    EXPECT_TRUE(isSelectedAlone(0));
}

TEST_F(LyricEditor, StampsByItsButtonsToo) {
    open("one\ntwo");
    at(1000);
    clickOn(editor().addTime_Label_Button);
    EXPECT_EQ(editor().lrcList.list(0), u"[00:01.00]one");
    editor().nowRow = 0;
    clickOn(editor().delTime_Label_Button);
    EXPECT_EQ(editor().lrcList.list(0), u"one");
}

// --- the window ---

TEST_F(LyricEditor, IsToggledAndRefilledByItsButton) {
    load("[00:01]a");
    editor().lrcList.setList(0, u"changed");
    clickOn(app.Main().do_Lrc);
    EXPECT_TRUE(editor().visible());
    EXPECT_EQ(editor().lrcList.list(0), u"[00:01]a");
    editor().lrcList.setList(0, u"changed");
    clickOn(app.Main().do_Lrc);
    EXPECT_FALSE(editor().visible());
    EXPECT_EQ(editor().lrcList.list(0), u"[00:01]a") << "hiding loses what was not saved, too";
}

TEST_F(LyricEditor, HidesByItsCloseButtonAndTheSystemsClose) {
    editor().show();
    clickOn(editor().close);
    EXPECT_FALSE(editor().visible());
    editor().show();
    bool cancel = false;
    editor().on().QueryUnload(cancel);
    EXPECT_TRUE(cancel);
    EXPECT_FALSE(editor().visible());
}

TEST_F(LyricEditor, LosesUnsavedStampsAtASeek) {
    addTrack(u"/m/Song.mp3");
    files.addFile(u"/lrc/Song.lrc", "one\ntwo");
    openAndPlay(u"/m/Song.mp3");
    press(f9);
    EXPECT_NE(editor().lrcList.list(0), u"one");
    app.player().seek_To(1000);
    EXPECT_EQ(editor().lrcList.list(0), u"one");
}

TEST_F(LyricEditor, ScrollsByItsArrowsAsFarAsThePlayListsRowsTell) {
    std::string bytes;
    for (int i = 0; i < 40; ++i)
        bytes += "x\n";
    open(bytes);
    app.playList_Form().visibleRows = 39;
    editor().P3.on().Click();
    EXPECT_EQ(editor().lrcList.topIndex(), 1);
    editor().P3.on().Click();
    EXPECT_EQ(editor().lrcList.topIndex(), 1);
    editor().P1.on().Click();
    EXPECT_EQ(editor().lrcList.topIndex(), 0);
}

} // namespace
} // namespace velmora
