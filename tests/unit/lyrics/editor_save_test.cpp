// The lyric editor's save and save as.

#include "tests/unit/lyrics/lyrics_fixture.h"

namespace velmora {
namespace {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;
using platform::MsgBoxResult;

class EditorSave : public LyricsFixture {
protected:
    EditorSave() {
        app.player().nowPlay_File = u"/m/Song.mp3";
        files.addFile(u"/m/words.txt", "one\ntwo");
        editor().addFile_To_List(u"/m/words.txt");
    }
    void press(std::int16_t key, std::int16_t shift) {
        forms::KeyEvent event{key, shift};
        editor().lrcList.on().KeyDown(event);
    }
    void expectTold(std::u16string_view outcome, std::u16string_view path, MsgBoxIcon icon) {
        windows.expectMsgBox(boxOf(u"曲目：Song\r\n" + std::u16string(outcome) + u"\r\n\r\n地址：" +
                                       std::u16string(path),
                                   icon, u"Velmora 2011"),
                             MsgBoxResult::Ok);
    }
    void expectQuestion(MsgBoxResult answer) {
        windows.expectMsgBox({u"该歌词文件已存在，是否覆盖？\r\n\r\n【Y】：覆盖\r\n【N】：另存为",
                              MsgBoxButtons::YesNoCancel, MsgBoxIcon::None, u"Velmora 2011"},
                             answer);
    }
    static constexpr std::int16_t keyS = 83;
    static constexpr auto written = "[Ti:]\r\n[Ar:]\r\n[Al:]\r\n[By:]\r\none\r\ntwo\r\n";
};

TEST_F(EditorSave, WritesUnderTheTracksNameLoadsItAndTells) {
    expectTold(u"已成功保存，并匹配！", u"/lrc/Song.Lrc", MsgBoxIcon::Information);
    clickOn(editor().save_Button);
    EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), written);
    EXPECT_TRUE(lyric().hasLrc);
    EXPECT_EQ(lyric().lrcPath, u"/lrc/Song.Lrc");
    EXPECT_TRUE(info().lrcInfo_Frame.enabled());
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one", u"two", u""})) << "refilled from the file";
}

TEST_F(EditorSave, OverAnExistingLyricAsksAndYesOverwritesIt) {
    files.addFile(u"/lrc/SONG.lrc", "old");
    expectQuestion(MsgBoxResult::Yes);
    expectTold(u"已成功保存，并匹配！", u"/lrc/Song.Lrc", MsgBoxIcon::Information);
    press(keyS, forms::ctrlMask);
    EXPECT_EQ(files.contents(u"/lrc/SONG.lrc"), written);
    EXPECT_FALSE(files.hasFile(u"/lrc/Song.Lrc"));
}

class OtherAnswers : public EditorSave, public ::testing::WithParamInterface<MsgBoxResult> {};

TEST_P(OtherAnswers, GoToSaveAs) {
    files.addFile(u"/lrc/Song.lrc", "old");
    expectQuestion(GetParam());
    fake.dialogs.expectSave(std::nullopt);
    clickOn(editor().save_Button);
    EXPECT_EQ(fake.dialogs.files.size(), 1U);
    EXPECT_EQ(files.contents(u"/lrc/Song.lrc"), "old");
    EXPECT_FALSE(lyric().hasLrc);
}

INSTANTIATE_TEST_SUITE_P(All, OtherAnswers,
                         ::testing::Values(MsgBoxResult::No, MsgBoxResult::Cancel));

TEST_F(EditorSave, ThatFailsTellsAndKeepsTheLines) {
    files.setReadOnly(u"/lrc");
    expectTold(u"保存失败，请确定您有写入权限！", u"/lrc/Song.Lrc", MsgBoxIcon::Critical);
    clickOn(editor().save_Button);
    EXPECT_EQ(rowsOf(editor().lrcList), (Texts{u"one", u"two"}));
    EXPECT_FALSE(lyric().hasLrc);
}

TEST_F(EditorSave, OnAFullDiskLeavesTheOldLyricWhole) {
    files.addFile(u"/lrc/Song.Lrc", "old");
    files.setFreeSpace(2);
    expectQuestion(MsgBoxResult::Yes);
    expectTold(u"保存失败，请确定您有写入权限！", u"/lrc/Song.Lrc", MsgBoxIcon::Critical);
    clickOn(editor().save_Button);
    EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), "old");
}

TEST_F(EditorSave, AsWritesWhereTheUserSaysAndLoadsNothing) {
    fake.dialogs.expectSave(u"/m/other.lrc");
    expectTold(u"已成功保存！", u"/m/other.lrc", MsgBoxIcon::Information);
    press(keyS, forms::shiftMask);
    ASSERT_EQ(fake.dialogs.files.size(), 1U);
    EXPECT_EQ(fake.dialogs.files[0].title, u"选择要保存歌词同步文件的地址 - Velmora 2011");
    EXPECT_EQ(fake.dialogs.files[0].filter, std::u16string(u"歌词同步文件（*.LRC）\0*.lrc\0", 20));
    EXPECT_TRUE(fake.dialogs.files[0].file.starts_with(u"Song\0"));
    EXPECT_EQ(fake.dialogs.files[0].initialDirectory, u"") << "where the last one was";
    EXPECT_EQ(fake.dialogs.files[0].defaultExtension, u"lrc");
    EXPECT_EQ(files.contents(u"/m/other.lrc"), written);
    EXPECT_FALSE(lyric().hasLrc);
    EXPECT_EQ(editor().savePath, u"/m/other.lrc");
}

TEST_F(EditorSave, AsGoesUnderExactlyTheNameThatWasChosen) {
    files.addFile(u"/lrc/Song.Lrc", "kept");
    fake.dialogs.expectSave(u"/lrc/Song.lrc");
    expectTold(u"已成功保存！", u"/lrc/Song.lrc", MsgBoxIcon::Information);
    press(keyS, forms::shiftMask);
    EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), "kept");
    EXPECT_EQ(files.contents(u"/lrc/Song.lrc"), written);
}

// Nothing lets another track begin while the question stands but a command from outside.
TEST_F(EditorSave, SavesTheLinesThatItWasAskedForThoughAnotherTrackBegins) {
    for (const MsgBoxResult answer : {MsgBoxResult::Yes, MsgBoxResult::No}) {
        app.player().nowPlay_File = u"/m/Song.mp3";
        editor().addFile_To_List(u"/m/words.txt");
        files.addFile(u"/lrc/Song.Lrc", "old");
        files.addFile(u"/lrc/Next.Lrc", "[00:01]next");
        windows.expectMsgBox({u"该歌词文件已存在，是否覆盖？\r\n\r\n【Y】：覆盖\r\n【N】：另存为",
                              MsgBoxButtons::YesNoCancel, MsgBoxIcon::None, u"Velmora 2011"},
                             answer, [&] {
                                 app.player().nowPlay_File = u"/m/Next.mp3";
                                 lyric().startLoad(u"/lrc/Next.Lrc");
                             });
        const std::u16string path =
            answer == MsgBoxResult::Yes ? u"/lrc/Song.Lrc" : u"/lrc/other.lrc";
        if (answer == MsgBoxResult::No)
            fake.dialogs.expectSave(path);
        expectTold(u"已成功保存！", path, MsgBoxIcon::Information);
        press(keyS, forms::ctrlMask);
        EXPECT_EQ(files.contents(path), written);
        EXPECT_EQ(files.contents(u"/lrc/Next.Lrc"), "[00:01]next");
        EXPECT_EQ(lyric().lrcPath, u"/lrc/Next.Lrc") << "the lyric of the track that plays";
    }
}

TEST_F(EditorSave, AsThatFailsTells) {
    fake.dialogs.expectSave(u"/gone/other.lrc");
    expectTold(u"保存失败，请确定您有写入权限！", u"/gone/other.lrc", MsgBoxIcon::Critical);
    clickOn(editor().anotherSave_Button);
}

TEST_F(EditorSave, AsThatIsCancelledDoesNothing) {
    fake.dialogs.expectSave(std::nullopt);
    clickOn(editor().anotherSave_Button);
    EXPECT_TRUE(files.changes().empty());
}

TEST_F(EditorSave, WritesBackATagThatCameFromTheLyric) {
    files.addFile(u"/m/words.txt", "[ar:Me]\none");
    editor().addFile_To_List(u"/m/words.txt");
    expectTold(u"已成功保存，并匹配！", u"/lrc/Song.Lrc", MsgBoxIcon::Information);
    press(keyS, forms::ctrlMask);
    EXPECT_EQ(files.contents(u"/lrc/Song.Lrc"), "[Ti:]\r\n[Ar:Me]\r\n[Al:]\r\n[By:]\r\none\r\n");
}

TEST_F(EditorSave, CtrlOOpens) {
    fake.dialogs.expectOpen(std::nullopt);
    press(79, forms::ctrlMask);
    EXPECT_EQ(fake.dialogs.files.size(), 1U);
}

TEST_F(EditorSave, PlainLettersDoNothing) {
    press(keyS, 0);
    press(79, 0);
    press(79, forms::shiftMask);
    EXPECT_TRUE(fake.dialogs.files.empty());
    EXPECT_TRUE(files.changes().empty());
}

} // namespace
} // namespace velmora
