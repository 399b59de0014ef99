// The lyric editor where its rules are blunt: what stays, what is lost, what an error ends.

#include "tests/unit/lyrics/lyrics_fixture.h"

namespace velmora {
namespace {

class EditorRules : public LyricsFixture {
protected:
    void open(std::string bytes) {
        files.addFile(u"/m/words.txt", std::move(bytes));
        editor().addFile_To_List(u"/m/words.txt");
    }
    void at(std::u16string_view ms) {
        media.answerAlways(u"status NOWMUSIC position", {0, std::u16string(ms)});
    }
    void press(std::int16_t key) {
        forms::KeyEvent event{key, 0};
        editor().lrcList.on().KeyDown(event);
    }
    void release(std::int16_t key) {
        forms::KeyEvent event{key, 0};
        editor().lrcList.on().KeyUp(event);
    }
    void expectToldEmpty() {
        windows.expectMsgBox(boxOf(u"您所选择的文件是空文件，无法将内容添加到编辑区！",
                                   platform::MsgBoxIcon::Critical, u"Velmora 2011"),
                             platform::MsgBoxResult::Ok);
    }
    static constexpr std::int16_t f9 = 120;
    static constexpr std::int16_t f10 = 121;
};

// --- stamps ---

TEST_F(EditorRules, F10RightBehindF9TakesTheStampOnlyAtItsSecondPress) {
    open("one\ntwo\nthree");
    at(u"1000");
    press(f9);
    press(f10);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[00:01.00]one", u"two", u"three"}));
    EXPECT_EQ(editor().nowRow, 0);
    press(f10);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one", u"two", u"three"}));
}

TEST_F(EditorRules, F10TakesOneStampOfSeveral) {
    open("[00:01.00][00:02.0][00:03]one");
    press(f10);
    EXPECT_EQ(editor().lrcList.list(0), u"[00:02.0][00:03]one");
    press(f10);
    EXPECT_EQ(editor().lrcList.list(0), u"[00:03]one");
    press(f10);
    EXPECT_EQ(editor().lrcList.list(0), u"one");
}

// The form is looked for behind the blanks, the cut is counted from the row's beginning.
TEST_F(EditorRules, F10OnARowThatBeginsWithBlanksLeavesPartOfItsStamp) {
    open("  [01:23.45]one");
    press(f10);
    EXPECT_EQ(editor().lrcList.list(0), u"5]one");
}

TEST_F(EditorRules, TheReleaseOfAStampKeyStaysOnTheRowThatThePressReached) {
    open("one\ntwo\nthree");
    at(u"1000");
    for (const std::int16_t row : {1, 2, 2}) {
        press(f9);
        release(f9);
        EXPECT_EQ(editor().nowRow, row);
    }
    press(f10);
    release(f10);
    EXPECT_EQ(editor().nowRow, 1);
}

// The row is not selected anew: its new text reaches the box with the release.
TEST_F(EditorRules, TypingBehindAStampOnTheLastRowKeepsTheStamp) {
    open("one");
    at(u"1000");
    press(f9);
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"one");
    release(f9);
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"[00:01.00]one");
    editor().lrc_Index_Text.userEdited(u"[00:01.00]ones");
    EXPECT_EQ(editor().lrcList.list(0), u"[00:01.00]ones");
}

TEST_F(EditorRules, TheLineToEditFollowsTheReleaseOfF10OnTheFirstRow) {
    open("[00:01.00]one\ntwo");
    press(f10);
    EXPECT_EQ(editor().lrcList.list(0), u"one");
    release(f10);
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"one");
}

TEST_F(EditorRules, TheLineToEditFollowsTheReleaseOfTheMouse) {
    open("one\ntwo");
    at(u"1000");
    press(f9);
    editor().lrcList.setSelected(0, true);
    press(f9); // the second row, which the mouse has left
    editor().lrcList.setListIndex(1);
    editor().lrcList.setList(1, u"changed by code");
    editor().lrcList.on().MouseUp({forms::leftButton, 0, 0, 0});
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"changed by code");
    EXPECT_EQ(editor().nowRow, 1);
}

TEST_F(EditorRules, TheRowThatIsStampedStaysInView) {
    std::string rows;
    for (int row = 0; row < 40; ++row)
        rows += "line\n";
    open(rows);
    for (int stamp = 0; stamp < 20; ++stamp) {
        press(f9);
        release(f9);
    }
    EXPECT_EQ(editor().nowRow, 20);
    EXPECT_EQ(editor().lrcList.topIndex(), 4);
    editor().lrcList.setTopIndex(23);
    press(f10);
    EXPECT_EQ(editor().nowRow, 19);
    EXPECT_EQ(editor().lrcList.topIndex(), 19);
}

TEST_F(EditorRules, ThePositionIsAskedForOnceAStamp) {
    open("one\ntwo");
    media.clearCommands();
    press(f9);
    EXPECT_EQ(media.texts(), Texts{u"status NOWMUSIC position"});
    media.clearCommands();
    press(f10);
    EXPECT_TRUE(media.texts().empty());
}

TEST_F(EditorRules, WithoutARowStampsAndEditsAreErrorsThatChangeNothing) {
    open("[ti:T]\n");
    EXPECT_THROW(press(f9), RunTimeError);
    EXPECT_THROW(press(f10), RunTimeError);
    editor().lrc_Index_Text.userEdited(u"x");
    EXPECT_EQ(editor().lrcList.listCount(), 0);
    EXPECT_EQ(editor().nowRow, 0);
}

// --- filling ---

TEST_F(EditorRules, AnotherFileStartsAtItsFirstRow) {
    open("one\ntwo\nthree");
    editor().nowRow = 2;
    open("[ar:A]\nfour\nfive");
    EXPECT_EQ(editor().nowRow, 0);
    EXPECT_TRUE(editor().lrcList.selected(0));
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"four");
    open("six");
    EXPECT_EQ(editor().lrc_Ar_Str.text(), u"") << "the boxes are emptied first";
}

TEST_F(EditorRules, AnEmptyFileEmptiesWhatWasThere) {
    open("[ti:T]\none");
    ASSERT_TRUE(editor().hasText);
    expectToldEmpty();
    open("");
    EXPECT_FALSE(editor().hasText);
    EXPECT_EQ(editor().lrcList.listCount(), 0);
    EXPECT_EQ(editor().lrc_Ti_Str.text(), u"");
    EXPECT_EQ(editor().lrc_Index_Text.text(), u"");
}

TEST_F(EditorRules, AFileThatCannotBeReadIsToldAsAnEmptyOne) {
    open("one");
    files.addFile(u"/m/secret.txt", "two");
    files.setUnreadable(u"/m/secret.txt");
    expectToldEmpty();
    editor().addFile_To_List(u"/m/secret.txt");
    EXPECT_EQ(editor().lrcList.listCount(), 0);
    EXPECT_FALSE(editor().lrcList.enabled());
}

TEST_F(EditorRules, AFileEnablesWhatNoLyricHadDisabled) {
    lyric().startLoad(u"");
    ASSERT_TRUE(editor().no_Lrc_Clew.visible());
    open("one");
    EXPECT_FALSE(editor().no_Lrc_Clew.visible());
    for (const forms::Control *control : std::initializer_list<const forms::Control *>{
             &editor().lrcList, &editor().lrc_Index_Text, &editor().lrc_Al_Str,
             &editor().lrc_Ar_Str, &editor().lrc_By_Str, &editor().lrc_Ti_Str,
             &editor().addTime_Label_Button, &editor().delTime_Label_Button, &editor().save_Button,
             &editor().anotherSave_Button})
        EXPECT_TRUE(control->enabled()) << control->name();
}

TEST_F(EditorRules, TheLyricTakenAgainEnablesWhatAnEmptyFileHadDisabled) {
    load("[00:01]a");
    expectToldEmpty();
    open("");
    ASSERT_FALSE(editor().lrcList.enabled());
    clickOn(editor().list_Load);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"[00:01]a", u""}));
    EXPECT_TRUE(editor().lrcList.enabled());
    EXPECT_FALSE(editor().no_Lrc_Clew.visible());
}

TEST_F(EditorRules, TakingTheLyricForgetsThatAFileHadText) {
    open("one\ntwo");
    load("[00:01]a");
    EXPECT_FALSE(editor().hasText);
    EXPECT_EQ(editor().nowRow, 0);
}

TEST_F(EditorRules, LosingTheLyricKeepsTheRowNumberAndWhetherAFileHadText) {
    open("one\ntwo\nthree");
    editor().nowRow = 2;
    lyric().startLoad(u"");
    EXPECT_EQ(editor().lrcList.listCount(), 0);
    EXPECT_EQ(editor().nowRow, 2);
    EXPECT_TRUE(editor().hasText);
}

// --- saving ---

TEST_F(EditorRules, ASaveAsksOnlyOverALyricOfExactlyTheTracksName) {
    app.player().nowPlay_File = u"/m/Song.mp3";
    open("one");
    files.addFile(u"/lrc/Song (live).lrc", "old");
    files.addFile(u"/lrc/Song.txt", "old");
    windows.expectMsgBox(boxOf(u"曲目：Song\r\n已成功保存，并匹配！\r\n\r\n地址：/lrc/Song.Lrc",
                               platform::MsgBoxIcon::Information, u"Velmora 2011"),
                         platform::MsgBoxResult::Ok);
    clickOn(editor().save_Button);
    EXPECT_TRUE(files.hasFile(u"/lrc/Song.Lrc"));
}

TEST_F(EditorRules, ASaveIsLoadedAndItsFrameOpenBeforeItIsTold) {
    app.player().nowPlay_File = u"/m/Song.mp3";
    open("[00:01.00]one\ntwo");
    editor().nowRow = 1;
    info().lrcInfo_Frame.setEnabled(false);
    bool wasOpen = false;
    Texts rows;
    windows.expectMsgBox(boxOf(u"曲目：Song\r\n已成功保存，并匹配！\r\n\r\n地址：/lrc/Song.Lrc",
                               platform::MsgBoxIcon::Information, u"Velmora 2011"),
                         platform::MsgBoxResult::Ok, [&] {
                             wasOpen = info().lrcInfo_Frame.enabled();
                             rows = rowsOf(lyric().List1);
                         });
    clickOn(editor().save_Button);
    EXPECT_TRUE(wasOpen);
    EXPECT_EQ(rows, (Texts{u"[Ti:]", u"[Ar:]", u"[Al:]", u"[By:]", u"[00:01.00]one", u"two"}));
    EXPECT_EQ(editor().nowRow, 0);
}

TEST_F(EditorRules, ASaveThatFailsLeavesTheFrameAsItWas) {
    app.player().nowPlay_File = u"/m/Song.mp3";
    open("one");
    files.setReadOnly(u"/lrc");
    windows.expectMsgBox(
        boxOf(u"曲目：Song\r\n保存失败，请确定您有写入权限！\r\n\r\n地址：/lrc/Song.Lrc",
              platform::MsgBoxIcon::Critical, u"Velmora 2011"),
        platform::MsgBoxResult::Ok);
    info().lrcInfo_Frame.setEnabled(false);
    clickOn(editor().save_Button);
    EXPECT_FALSE(info().lrcInfo_Frame.enabled());
}

} // namespace
} // namespace velmora
