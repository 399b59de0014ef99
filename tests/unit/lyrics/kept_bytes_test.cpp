// What the editor's save writes over: bytes that it would lose are kept beside the lyric first.

#include "tests/unit/lyrics/lyrics_fixture.h"

namespace velmora {
namespace {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;
using platform::MsgBoxResult;

class KeptBytes : public LyricsFixture {
protected:
    KeptBytes() { app.player().nowPlay_File = u"/m/Song.mp3"; }

    static constexpr auto path = u"/lrc/Song.Lrc";
    static constexpr auto kept = u"/lrc/Song.Lrc.old";

    // The track's lyric, loaded, as the editor takes it.
    void have(const std::string &bytes) { load(bytes, path); }
    void save(bool works = true) {
        windows.expectMsgBox({u"该歌词文件已存在，是否覆盖？\r\n\r\n【Y】：覆盖\r\n【N】：另存为",
                              MsgBoxButtons::YesNoCancel, MsgBoxIcon::None, u"Velmora 2011"},
                             MsgBoxResult::Yes);
        tell(works ? u"已成功保存，并匹配！" : u"保存失败，请确定您有写入权限！", path, works);
        clickOn(editor().save_Button);
    }
    void saveAs(std::u16string_view chosen) {
        fake.dialogs.expectSave(std::u16string(chosen));
        tell(u"已成功保存！", chosen, true);
        clickOn(editor().anotherSave_Button);
    }

private:
    void tell(std::u16string_view outcome, std::u16string_view where, bool works) {
        windows.expectMsgBox(boxOf(u"曲目：Song\r\n" + std::u16string(outcome) + u"\r\n\r\n地址：" +
                                       std::u16string(where),
                                   works ? MsgBoxIcon::Information : MsgBoxIcon::Critical,
                                   u"Velmora 2011"),
                             MsgBoxResult::Ok);
    }
};

const std::string big5 = "[00:01]\xA4\xEB\xAB\x47\n";     // read as other characters
const std::string shiftJis = "[00:01]\x83\x65\x81\x99\n"; // the same
const std::string lossy = "[00:01]\xFF words \xFE\xFE\n"; // no text in any page
const std::string wide("\xFF\xFE[\0000\0001\0\n\0", 10);

TEST_F(KeptBytes, AreThoseOfALyricThatIsNotUtf8) {
    for (const std::string &bytes : {big5, shiftJis, lossy, wide}) {
        have(bytes);
        save();
        EXPECT_EQ(files.contents(kept), bytes);
        EXPECT_NE(files.contents(path), bytes);
        files.remove(kept);
    }
}

TEST_F(KeptBytes, AreNotThoseOfALyricThatComesBackAsItWas) {
    have("[00:01]月亮\n\n[00:02]\xEF\xBF\xBD\n");
    save();
    have("[00:01]plain\n");
    save();
    EXPECT_FALSE(files.hasFile(kept));
}

TEST_F(KeptBytes, SurviveEverySaveBehindTheFirst) {
    have(lossy);
    save();
    save();
    save();
    EXPECT_EQ(files.contents(kept), lossy);
    EXPECT_EQ(files.files(), (Texts{path, kept}));
}

TEST_F(KeptBytes, LeaveThoseThatWereKeptBefore) {
    files.addFile(kept, "of another lyric");
    have(lossy);
    save();
    EXPECT_EQ(files.contents(kept), "of another lyric");
    EXPECT_EQ(files.contents(u"/lrc/Song.Lrc.old.1"), lossy);
}

TEST_F(KeptBytes, AreKeptOnceThoughTheSaveBehindThemFails) {
    have(lossy);
    files.failNext("writeWhole");
    save(false);
    EXPECT_EQ(files.contents(path), lossy);
    have(lossy);
    save();
    EXPECT_EQ(files.contents(kept), lossy);
    EXPECT_EQ(files.files(), (Texts{path, kept}));
}

TEST_F(KeptBytes, ThatCannotBeKeptAreNotWrittenOver) {
    have(lossy);
    files.failNext("keepAs", ErrorNumber::DiskFull);
    save(false);
    EXPECT_EQ(files.contents(path), lossy);
    EXPECT_FALSE(files.hasFile(kept));
}

TEST_F(KeptBytes, AreThoseOfWhatSaveAsGoesOver) {
    load("[00:01]words");
    files.addFile(u"/m/chosen.lrc", lossy);
    saveAs(u"/m/chosen.lrc");
    EXPECT_EQ(files.contents(u"/m/chosen.lrc.old"), lossy);
    saveAs(u"/m/new.lrc");
    EXPECT_FALSE(files.hasFile(u"/m/new.lrc.old"));
}

TEST_F(KeptBytes, AreThoseOfALyricThatCouldNotBeTakenWhole) {
    load("[00:01]words");
    std::string many;
    for (int line = 0; line < 32'768; ++line)
        many += "x\n";
    files.addFile(u"/m/chosen.lrc", many);
    saveAs(u"/m/chosen.lrc");
    EXPECT_TRUE(files.contents(u"/m/chosen.lrc.old") == many);
    files.addFile(u"/m/broken.lrc", "one\ntwo\nthree");
    files.failReadAtLine(u"/m/broken.lrc", 1);
    saveAs(u"/m/broken.lrc");
    EXPECT_EQ(files.contents(u"/m/broken.lrc.old"), "one\ntwo\nthree");
}

TEST_F(KeptBytes, AreThoseOfAFileTooLongToBeRead) {
    load("[00:01]words");
    files.addFile(u"/m/chosen.lrc", "the beginning of much");
    files.setLength(u"/m/chosen.lrc", 17 << 20);
    saveAs(u"/m/chosen.lrc");
    EXPECT_EQ(files.contents(u"/m/chosen.lrc.old"), "the beginning of much");
}

} // namespace
} // namespace velmora
