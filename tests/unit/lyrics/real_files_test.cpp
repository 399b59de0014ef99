// Lyrics on a real disk: what counts as one, what cannot be read, and saves that fail.

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/linux/linux_files.h"
#include "playlist/Search.h"
#include "tests/fakes/instead.h"
#include "tests/unit/linux/temp_folder.h"
#include "tests/unit/plain_user.h"
#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"
#include "tests/unit/write_limit.h"

#include <filesystem>
#include <unistd.h>

namespace velmora {
namespace {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;
using platform::MsgBoxResult;

class LyricsOnDisk : public testing::Test {
protected:
    TempFolder folder;
    fakes::FakePlatform fake;
    // The system's own code page, which tells UTF-8 from the legacy page.
    std::unique_ptr<platform::AnsiText> ansi =
        platform::makeAnsiText([] { return std::u16string(); });
    platform::LinuxFiles disk{*ansi};
    Velmora app{platform()};

    void SetUp() override {
        folder.makeFolder("lyrics");
        folder.makeFolder("music");
        folder.write("music/Song.mp3", "sound");
        app.setControl().Path_Lrc = folder.text("lyrics");
        app.lrcForm().lrcMissText = u"none";
        app.Main().title.setCaption(u"Velmora 2011");
        app.player().nowPlay_File = folder.text("music/Song.mp3");
    }

    // The platform in memory but for the disk and its texts.
    platform::Platform platform() {
        return fakes::with(fake.bundle(), {.ansi = ansi.get(), .files = &disk});
    }

    void find() { app.Search().findTrackLyric(folder.text("music/Song.mp3")); }
    Texts lines() { return rowsOf(app.lrcForm().List1); }
    static Texts rowsOf(const forms::ListBox &list) {
        Texts rows;
        for (std::int32_t row = 0; row < list.listCount(); ++row)
            rows.push_back(list.list(row));
        return rows;
    }

    // The editor with two lines of its own.
    void edit() {
        folder.write("words.txt", "one\ntwo");
        app.doLrcForm().addFile_To_List(folder.text("words.txt"));
    }
    void expectFailure() {
        fake.windows.expectMsgBox({u"曲目：Song\r\n保存失败，请确定您有写入权限！\r\n\r\n地址：" +
                                       folder.text("lyrics/Song.Lrc"),
                                   MsgBoxButtons::Ok, MsgBoxIcon::Critical, u"Velmora 2011"},
                                  MsgBoxResult::Ok);
    }
    void expectQuestion() {
        fake.windows.expectMsgBox(
            {u"该歌词文件已存在，是否覆盖？\r\n\r\n【Y】：覆盖\r\n【N】：另存为",
             MsgBoxButtons::YesNoCancel, MsgBoxIcon::None, u"Velmora 2011"},
            MsgBoxResult::Yes);
    }
    void save() { clickOn(app.doLrcForm().save_Button); }
};

TEST_F(LyricsOnDisk, AreFoundUnderTheirNameInAnotherCaseAndStayOneFile) {
    folder.write("lyrics/SONG.lrc", "[00:01]words");
    find();
    EXPECT_TRUE(app.lrcForm().hasLrc);
    EXPECT_EQ(lines(), Texts{u"[00:01]words"});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.bytes("lyrics")), {}), 1);
}

TEST_F(LyricsOnDisk, BesideTheTrackAreCopiedIntoTheLyricFolder) {
    folder.write("music/song.LRC", "[00:01]words");
    find();
    EXPECT_TRUE(app.lrcForm().hasLrc);
    EXPECT_NE(folder.read("lyrics/Song.Lrc").find("[00:01]words"), std::string::npos);
    EXPECT_EQ(folder.read("music/song.LRC"), "[00:01]words");
}

TEST_F(LyricsOnDisk, AreNeitherAFolderNorADanglingLinkNorAPipe) {
    folder.makeFolder("lyrics/Song.LRC");
    folder.link("music/Song.LRC", "nowhere");
    find();
    EXPECT_FALSE(app.lrcForm().hasLrc);
    std::filesystem::remove(folder.bytes("music/Song.LRC"));
    folder.pipe("music/Song.LRC");
    find();
    EXPECT_FALSE(app.lrcForm().hasLrc);
    EXPECT_EQ(app.lrcForm().nowLrcLine, u"none");
}

TEST_F(LyricsOnDisk, MayBeALinkToAFile) {
    folder.write("elsewhere.txt", "[00:01]words");
    folder.link("lyrics/Song.LRC", folder.bytes("elsewhere.txt"));
    find();
    EXPECT_EQ(lines(), Texts{u"[00:01]words"});
}

TEST_F(LyricsOnDisk, OfAFolderThatVanishedAreNone) {
    folder.write("lyrics/Song.lrc", "[00:01]words");
    find();
    ASSERT_TRUE(app.lrcForm().hasLrc);
    std::filesystem::remove_all(folder.bytes("lyrics"));
    find();
    EXPECT_FALSE(app.lrcForm().hasLrc);
    EXPECT_TRUE(lines().empty());
    std::filesystem::remove_all(folder.bytes("music"));
    EXPECT_NO_THROW(find());
    EXPECT_FALSE(app.lrcForm().hasLrc);
}

TEST_F(LyricsOnDisk, InTheLegacyPageAreReadAsSuch) {
    folder.write("lyrics/Song.lrc", "[00:01]\xD4\xC2\xC1\xC1\n[00:02]a\r[00:03]b\r\n");
    find();
    EXPECT_EQ(lines(), (Texts{u"[00:01]月亮", u"[00:02]a", u"[00:03]b"}));
}

TEST_F(LyricsOnDisk, InUtf16OrFullOfNulBytesDoNoHarm) {
    folder.write("lyrics/Song.lrc", std::string("\xFF\xFE[\0"
                                                "0\0"
                                                "\r\0\n\0",
                                                10));
    EXPECT_NO_THROW(find());
    folder.write("lyrics/Song.lrc", std::string(70'000, '\0'));
    EXPECT_NO_THROW(find());
    EXPECT_TRUE(app.lrcForm().hasLrc);
}

TEST_F(LyricsOnDisk, ThatCannotBeReadRaiseAndTheMusicGoesOn) {
    const std::u16string track = folder.text("music/Song.mp3");
    fake.media.addMedium(disk.GetShortPathNameA(track), 60'000, false);
    app.player().open_File(track);
    folder.write("lyrics/Song.lrc", "[00:01]words");
    folder.mode("lyrics/Song.lrc", 0200);
    const PlainUser user(folder.path());
    EXPECT_THROW(find(), RunTimeError);
    EXPECT_TRUE(lines().empty());
    EXPECT_NO_THROW(app.player().play_Sub());
    EXPECT_EQ(fake.media.mode(), u"playing");
}

TEST_F(LyricsOnDisk, Of200MegabytesAreRefusedUnread) {
    folder.write("lyrics/Song.lrc", "");
    std::filesystem::resize_file(folder.bytes("lyrics/Song.lrc"), 200'000'000);
    EXPECT_THROW(find(), RunTimeError);
    EXPECT_TRUE(lines().empty());
}

TEST_F(LyricsOnDisk, SavedIntoAFolderThatVanishedTellAndStayInTheEditor) {
    edit();
    std::filesystem::remove_all(folder.bytes("lyrics"));
    folder.write("lyrics", "a file where the folder was");
    expectFailure();
    save();
    EXPECT_EQ(rowsOf(app.doLrcForm().lrcList), (Texts{u"one", u"two"}));
    EXPECT_FALSE(app.lrcForm().hasLrc);
}

TEST_F(LyricsOnDisk, StayWholeWhereverASaveOverThemIsCutShort) {
    const std::string old = "[00:01]the old words\r\n";
    folder.write("lyrics/Song.lrc", old);
    edit();
    for (const ::rlim_t bytes : {::rlim_t{0}, ::rlim_t{1}, ::rlim_t{20}, ::rlim_t{33}}) {
        expectQuestion();
        expectFailure();
        {
            const WriteLimit limit(bytes);
            save();
        }
        EXPECT_EQ(folder.read("lyrics/Song.lrc"), old) << bytes;
        EXPECT_EQ(rowsOf(app.doLrcForm().lrcList), (Texts{u"one", u"two"})) << bytes;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.bytes("lyrics")), {}), 1)
            << "half a file stays behind";
    }
}

} // namespace
} // namespace velmora
