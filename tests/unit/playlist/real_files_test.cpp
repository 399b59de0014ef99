// The play list file on a real disk.

#include "platform/backends/linux/linux_files.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/fakes/instead.h"
#include "tests/unit/linux/temp_folder.h"
#include "tests/unit/plain_user.h"
#include "tests/unit/program_fixture.h"
#include "tests/unit/write_limit.h"

#include <gmock/gmock.h>

#include <unistd.h>

namespace velmora {
namespace {

using testing::ElementsAre;

constexpr char listName[] = "zkPlayList.m3u";
constexpr char oldName[] = "zkPlayList.m3u.old";

class TheListOnDisk : public testing::Test {
protected:
    TempFolder folder;
    fakes::FakePlatform fake;
    platform::LinuxFiles disk{fake.ansi};
    Velmora app{platform()};

    void SetUp() override { app.setControl().Path_List = folder.text(); }

    // The platform in memory but for the disk.
    platform::Platform platform() { return fakes::with(fake.bundle(), {.files = &disk}); }

    bool load() { return app.saveOrOpenFile().loadPlayList(); }
    bool save(SaveKind kind = SaveKind::Settled) { return app.saveOrOpenFile().savePlayList(kind); }
    std::int16_t rows() { return app.playList_Form().List1.listCount(); }
    void add(std::u16string_view path) {
        app.playList_Form().playList_Item.addItem(app.player().getFileStem(path));
        app.playList_Form().List1.addItem(path);
    }
    Texts paths() {
        Texts texts;
        for (std::int32_t row = 0; row < rows(); ++row)
            texts.push_back(app.playList_Form().List1.list(row));
        return texts;
    }
};

TEST_F(TheListOnDisk, IsSavedAndReadBack) {
    add(u"/m/a.mp3");
    add(u"/音乐/晚霞.mp3");
    EXPECT_TRUE(save());
    EXPECT_EQ(folder.read(listName), "/m/a.mp3\r\n/音乐/晚霞.mp3\r\n");
    EXPECT_TRUE(load());
    EXPECT_THAT(paths(), ElementsAre(u"/m/a.mp3", u"/音乐/晚霞.mp3"));
}

TEST_F(TheListOnDisk, LeavesNothingElseInItsFolder) {
    add(u"/m/a.mp3");
    save();
    save(SaveKind::Step);
    load();
    EXPECT_THAT(folder.names(), ElementsAre(listName));
}

TEST_F(TheListOnDisk, IsReadWithAnyLineEnds) {
    folder.write(listName, "/m/a.mp3\r/m/b.mp3\n\"/m/c.mp3\"\r\n\r\n  /m/d.mp3");
    EXPECT_TRUE(load());
    EXPECT_THAT(paths(), ElementsAre(u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"));
}

TEST_F(TheListOnDisk, MissingIsNone) { EXPECT_FALSE(load()); }

TEST_F(TheListOnDisk, AsAFolderAPipeALoopOrADanglingLinkIsNoneAndReturnsAtOnce) {
    folder.makeFolder(listName);
    EXPECT_FALSE(load());
    std::filesystem::remove(folder.bytes(listName));
    folder.pipe(listName);
    EXPECT_FALSE(load());
    std::filesystem::remove(folder.bytes(listName));
    folder.link(listName, listName);
    EXPECT_FALSE(load());
    std::filesystem::remove(folder.bytes(listName));
    folder.link(listName, "/nowhere/at/all");
    EXPECT_FALSE(load());
}

TEST_F(TheListOnDisk, AsAnEndlessDeviceIsNone) {
    folder.link(listName, "/dev/zero");
    EXPECT_FALSE(load());
}

TEST_F(TheListOnDisk, IsNotWrittenOverAFolderAPipeOrADevice) {
    add(u"/m/a.mp3");
    folder.makeFolder(listName);
    EXPECT_TRUE(save());
    EXPECT_TRUE(std::filesystem::is_directory(folder.bytes(listName)));
    std::filesystem::remove(folder.bytes(listName));
    folder.pipe(listName);
    EXPECT_TRUE(save());
    EXPECT_TRUE(std::filesystem::is_fifo(folder.bytes(listName)));
    std::filesystem::remove(folder.bytes(listName));
    folder.link(listName, "/dev/full");
    EXPECT_TRUE(save());
    EXPECT_TRUE(std::filesystem::is_symlink(folder.bytes(listName)));
    EXPECT_THAT(folder.names(), ElementsAre(listName));
}

TEST_F(TheListOnDisk, IsWrittenThroughALink) {
    folder.makeFolder("elsewhere");
    folder.write("elsewhere/list", "/m/old.mp3\r\n");
    folder.link(listName, "elsewhere/list");
    add(u"/m/a.mp3");
    save();
    EXPECT_TRUE(std::filesystem::is_symlink(folder.bytes(listName)));
    EXPECT_EQ(folder.read("elsewhere/list"), "/m/a.mp3\r\n");
}

TEST_F(TheListOnDisk, KeepsItsMode) {
    folder.write(listName, "");
    folder.mode(listName, 0640);
    add(u"/m/a.mp3");
    save();
    EXPECT_EQ(folder.mode(listName), 0640U);
}

TEST_F(TheListOnDisk, WithoutAWriteBitStays) {
    folder.write(listName, "/m/old.mp3\r\n");
    folder.mode(listName, 0444);
    add(u"/m/a.mp3");
    EXPECT_TRUE(save());
    EXPECT_EQ(folder.read(listName), "/m/old.mp3\r\n");
    EXPECT_THAT(folder.names(), ElementsAre(listName));
}

TEST_F(TheListOnDisk, WithoutReadPermissionEmptiesTheListAndIsKept) {
    folder.write(listName, "/m/secret.mp3\r\n");
    folder.mode(listName, 0200);
    const PlainUser user(folder.path());
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 0);
    add(u"/m/a.mp3");
    save();
    EXPECT_EQ(folder.read(listName), "/m/a.mp3\r\n");
    folder.mode(oldName, 0600);
    EXPECT_EQ(folder.read(oldName), "/m/secret.mp3\r\n");
}

TEST_F(TheListOnDisk, StaysWholeWhereverAWriteIsCutShort) {
    const std::string before = "/m/old.mp3\r\n";
    for (::rlim_t bytes = 0; bytes < 37; ++bytes) {
        folder.write(listName, before);
        load();
        add(u"/m/a.mp3");
        add(u"/m/晚霞.mp3");
        {
            const WriteLimit limit(bytes);
            EXPECT_TRUE(save());
        }
        EXPECT_EQ(folder.read(listName), before) << bytes;
        EXPECT_THAT(folder.names(), ElementsAre(listName)) << bytes;
    }
    save();
    EXPECT_EQ(folder.read(listName), before + "/m/a.mp3\r\n/m/晚霞.mp3\r\n");
}

TEST_F(TheListOnDisk, ThatWasNotReadIsKeptBeforeItIsWrittenOver) {
    folder.write(listName, "/m/1.mp3\r\n/m/2.mp3\r\n");
    folder.mode(listName, 0640);
    add(u"/m/a.mp3");
    save();
    EXPECT_EQ(folder.read(oldName), "/m/1.mp3\r\n/m/2.mp3\r\n");
    EXPECT_EQ(folder.read(listName), "/m/a.mp3\r\n");
    EXPECT_EQ(folder.mode(listName), 0640U);
}

TEST_F(TheListOnDisk, ThatWasNotReadIsKeptBesideTheLinkThatLeadsToIt) {
    folder.makeFolder("elsewhere");
    folder.link(listName, "elsewhere/list"); // to what comes later
    EXPECT_FALSE(load());
    folder.write("elsewhere/list", "/m/1.mp3\r\n");
    add(u"/m/a.mp3");
    save();
    EXPECT_EQ(folder.read(oldName), "/m/1.mp3\r\n");
    EXPECT_EQ(folder.read("elsewhere/list"), "/m/a.mp3\r\n");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.bytes(listName)));
}

TEST_F(TheListOnDisk, ThatWasNotReadStaysAloneWhereNothingMayBeMadeBesideIt) {
    folder.write(listName, "/m/1.mp3\r\n");
    folder.mode(".", 0555);
    const PlainUser user(folder.path());
    add(u"/m/a.mp3");
    save();
    folder.mode(".", 0755);
    EXPECT_EQ(folder.read(listName), "/m/1.mp3\r\n");
    EXPECT_THAT(folder.names(), ElementsAre(listName));
}

TEST_F(TheListOnDisk, InAnotherCaseIsReadAndSavedUnderItsName) {
    folder.write("zkplaylist.M3U", "/m/a.mp3\r\n");
    EXPECT_TRUE(load());
    add(u"/m/b.mp3");
    save();
    EXPECT_EQ(folder.read("zkplaylist.M3U"), "/m/a.mp3\r\n/m/b.mp3\r\n");
    EXPECT_THAT(folder.names(), ElementsAre("zkplaylist.M3U"));
}

TEST_F(TheListOnDisk, OfBinaryBytesDoesNoHarm) {
    std::string bytes;
    std::uint32_t state = 1;
    for (int i = 0; i < 200'000; ++i) {
        state = state * 1664525U + 1013904223U;
        bytes += static_cast<char>(state >> 24U);
    }
    folder.write(listName, bytes);
    EXPECT_TRUE(load());
    EXPECT_GT(rows(), 0);
    save();
    const Texts before = paths();
    EXPECT_TRUE(load());
    // Lines of quotes and blanks alone do not come back; the paths that files can have do.
    EXPECT_LE(rows(), static_cast<std::int16_t>(before.size()));
}

TEST_F(TheListOnDisk, OfTwoHundredMegabytesWithoutALineEndIsLeftAloneAndKept) {
    folder.write(listName, "/m/a.mp3\r\n");
    std::filesystem::resize_file(folder.bytes(listName), 200U << 20U);
    EXPECT_TRUE(load());
    EXPECT_THAT(paths(), ElementsAre(u"/m/a.mp3"));
    save(SaveKind::Step);
    EXPECT_EQ(std::filesystem::file_size(folder.bytes(oldName)), 200U << 20U);
    EXPECT_EQ(folder.read(listName), "/m/a.mp3\r\n");
}

TEST_F(TheListOnDisk, OfAMillionLinesFillsTheListAndIsKept) {
    std::string bytes;
    for (int row = 0; row < 1'000'000; ++row)
        bytes += "/m/" + std::to_string(row) + "\n";
    folder.write(listName, bytes);
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 32'767);
    save(SaveKind::Step);
    EXPECT_TRUE(folder.read(oldName) == bytes);
}

TEST_F(TheListOnDisk, TheProbeOfAFolderLeavesNothing) {
    EXPECT_TRUE(app.saveOrOpenFile().canWriteFolder(folder.text()));
    EXPECT_TRUE(folder.names().empty());
    EXPECT_FALSE(app.saveOrOpenFile().canWriteFolder(folder.text("gone")));
    EXPECT_FALSE(app.saveOrOpenFile().canWriteFolder(u"/proc"));
}

TEST_F(TheListOnDisk, TheProbeOfAFolderGoesThroughNoLinkAndTakesNoneAway) {
    folder.makeFolder("shared");
    folder.write("list.txt", "mine");
    folder.link("shared/zkPlay.tmp", folder.bytes("list.txt"));
    EXPECT_TRUE(app.saveOrOpenFile().canWriteFolder(folder.text("shared")));
    EXPECT_EQ(folder.read("list.txt"), "mine");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.bytes("shared/zkPlay.tmp")));
}

TEST_F(TheListOnDisk, ADeletionTakesALinkAndNotItsTarget) {
    folder.write("track.mp3", "sound");
    folder.link("link.mp3", "track.mp3");
    EXPECT_TRUE(app.saveOrOpenFile().deleteFileChecked(folder.text("link.mp3")));
    EXPECT_FALSE(folder.exists("link.mp3"));
    EXPECT_TRUE(folder.exists("track.mp3"));
    EXPECT_FALSE(app.saveOrOpenFile().deleteFileChecked(folder.text("gone.mp3")));
    EXPECT_FALSE(app.saveOrOpenFile().lastDeleteError.empty());
}

} // namespace
} // namespace velmora
