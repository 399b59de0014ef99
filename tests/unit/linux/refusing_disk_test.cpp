// Writing and renaming where the file system refuses calls that others know: no modes to set, no
// second names, no renaming that spares, no files without a name.

#include "platform/backends/linux/atomic_write.h"
#include "platform/backends/linux/linux_files.h"

#include "base/run_time_error.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/unit/error_of.h"
#include "tests/unit/linux/refusing.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cerrno>
#include <functional>

namespace velmora::platform {
namespace {

using Names = std::vector<std::string>;

struct RefusingDisk : testing::Test {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    FileCalls calls;

    LinuxFiles files() { return LinuxFiles(ansi, calls); }
};

// --- modes ---------------------------------------------------------------------------------------

TEST_F(RefusingDisk, ThatSetsNoModeIsWrittenAllTheSame) {
    for (const int error : {EPERM, ENOTSUP, ENOSYS, EINVAL}) {
        calls.setMode = refusing(error);
        folder.write("old", "old");
        files().writeWhole(folder.text("old"), "content", true);
        EXPECT_EQ(folder.read("old"), "content") << error;
        files().writeWhole(folder.text("whole"), "content", true);
        files().writeNew(folder.text("new"), "content", true);
        files().CreateFileSystemObject()->CreateTextFile(folder.text("text"), u"content");
        files().keepAs(folder.text("old"), folder.text("kept"));
        for (const std::string &name : folder.names()) {
            EXPECT_EQ(folder.read(name), "content") << name;
            std::filesystem::remove(folder.bytes(name));
        }
    }
}

TEST_F(RefusingDisk, ThatFailsToSetAModeKeepsTheOldFile) {
    folder.write("f", "old");
    for (const int error : {EIO, EROFS, ENOSPC, EACCES}) {
        calls.setMode = refusing(error);
        errorOf([&] { files().writeWhole(folder.text("f"), "new", true); });
        errorOf([&] { files().writeNew(folder.text("g"), "new", true); });
        EXPECT_EQ(folder.read("f"), "old");
        EXPECT_EQ(folder.names(), Names{"f"});
    }
}

// --- power cuts ----------------------------------------------------------------------------------

TEST_F(RefusingDisk, ThatTakesNamesAheadOfContentHasTheContentSyncedOfWhatReplacesAFile) {
    std::string there;
    calls.putsContentFirst = [](int) { return false; };
    calls.syncContent = [&](int file) {
        there = folder.read("f");
        return ::fdatasync(file);
    };
    files().writeWhole(folder.text("f"), "first", false);
    EXPECT_EQ(there, "") << "there was nothing to be lost";
    files().writeWhole(folder.text("f"), "second", false);
    EXPECT_EQ(there, "first");
    EXPECT_EQ(folder.read("f"), "second");
    there.clear();
    calls.putsContentFirst = [](int) { return true; };
    files().writeWhole(folder.text("f"), "third", false);
    EXPECT_EQ(there, "") << "the disk sees to it";
    EXPECT_EQ(folder.read("f"), "third");
}

TEST_F(RefusingDisk, ThatCannotSyncTheContentKeepsTheOldFile) {
    folder.write("f", "old");
    calls.putsContentFirst = [](int) { return false; };
    for (const int error : {EIO, ENOSPC, EDQUOT}) {
        calls.syncContent = refusing(error);
        errorOf([&] { files().writeWhole(folder.text("f"), "new", false); });
        EXPECT_EQ(folder.read("f"), "old");
        EXPECT_EQ(folder.names(), Names{"f"});
    }
    calls.syncContent = refusing(EINVAL); // knows no syncing at all
    files().writeWhole(folder.text("f"), "new", false);
    EXPECT_EQ(folder.read("f"), "new");
}

// --- names ---------------------------------------------------------------------------------------

TEST_F(RefusingDisk, ThatCannotSpareRenamesByASecondName) {
    for (const int error : {EINVAL, ENOSYS, ENOTSUP}) {
        calls.rename = renamingOnlyPlainly(error);
        folder.write("a", "A");
        folder.write("b", "B");
        EXPECT_EQ(errorOf([&] { files().Name(folder.text("a"), folder.text("b")); }),
                  ErrorNumber::FileExists);
        files().Name(folder.text("a"), folder.text("c"));
        EXPECT_EQ(folder.names(), (Names{"b", "c"}));
        std::filesystem::remove(folder.bytes("c"));
    }
    EXPECT_EQ(folder.read("b"), "B");
}

TEST_F(RefusingDisk, ThatKnowsNoSecondNamesEitherRenamesAfterALook) {
    calls.rename = renamingOnlyPlainly(EINVAL);
    for (const int error : {EPERM, ENOSYS, ENOTSUP, EINVAL, EMLINK}) {
        calls.link = refusing(error);
        folder.write("a", "A");
        files().Name(folder.text("a"), folder.text("b"));
        EXPECT_EQ(folder.names(), Names{"b"}) << error;
        EXPECT_EQ(folder.read("b"), "A");
        std::filesystem::remove(folder.bytes("b"));
    }
}

TEST_F(RefusingDisk, NeverReplacesWhatTheLookShows) {
    calls.rename = renamingOnlyPlainly(EINVAL);
    calls.link = refusing(EPERM);
    folder.write("a", "A");
    folder.write("b", "B");
    folder.link("dangling", "nowhere");
    for (const char *name : {"b", "dangling"})
        EXPECT_EQ(errorOf([&] { files().Name(folder.text("a"), folder.text(name)); }),
                  ErrorNumber::FileExists);
    EXPECT_EQ(folder.read("a"), "A");
    EXPECT_EQ(folder.read("b"), "B");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.bytes("dangling")));
}

TEST_F(RefusingDisk, ThatFailsAtARenameIsNotAskedInAnotherWay) {
    folder.write("a", "A");
    bool isAsked = false;
    calls.link = [&](auto &&...) {
        isAsked = true;
        return -1;
    };
    for (const int error : {EIO, EROFS, EACCES, EPERM}) {
        calls.rename = renamingOnlyPlainly(error);
        errorOf([&] { files().Name(folder.text("a"), folder.text("b")); });
    }
    EXPECT_FALSE(isAsked);
    calls.rename = renamingOnlyPlainly(EINVAL);
    calls.link = refusing(EIO);
    EXPECT_EQ(errorOf([&] { files().Name(folder.text("a"), folder.text("b")); }),
              ErrorNumber::DeviceIo);
    EXPECT_EQ(folder.names(), Names{"a"});
}

// As one that ignores case does, where the new name finds the old file.
TEST_F(RefusingDisk, ThatIgnoresCaseSpellsItsFileAnew) {
    calls.rename = renamingOnlyPlainly(EEXIST);
    folder.write("song.mp3", "x");
    files().Name(folder.text("song.mp3"), folder.text("Song.MP3"));
    EXPECT_EQ(folder.names(), Names{"Song.MP3"});
    EXPECT_EQ(errorOf([&] { files().Name(folder.text("Song.MP3"), folder.text("other")); }),
              ErrorNumber::FileExists);
    folder.write("SONG.MP3", "another");
    EXPECT_EQ(errorOf([&] { files().Name(folder.text("Song.MP3"), folder.text("SONG.MP3")); }),
              ErrorNumber::FileExists);
    EXPECT_EQ(folder.read("Song.MP3"), "x");
    EXPECT_EQ(folder.read("SONG.MP3"), "another");
}

TEST_F(RefusingDisk, ThatKnowsNoSecondNamesTakesNewFilesAllTheSame) {
    for (const bool isNameless : {true, false}) {
        calls = FileCalls();
        calls.rename = renamingOnlyPlainly(EINVAL);
        calls.link = refusing(EPERM); // also for a file that has no name yet
        if (!isNameless)
            calls.openNameless = refusing(ENOTSUP);
        const std::string content(3'000'000, 'c');
        files().writeWhole(folder.text("f"), "old", true);
        folder.mode("f", 0604);
        files().writeWhole(folder.text("f"), content, true);
        files().writeNew(folder.text("g"), content, false);
        EXPECT_EQ(errorOf([&] { files().writeNew(folder.text("g"), "x", false); }),
                  ErrorNumber::FileExists);
        EXPECT_TRUE(folder.read("f") == content);
        EXPECT_TRUE(folder.read("g") == content);
        EXPECT_EQ(folder.mode("f"), 0604U);
        EXPECT_EQ(folder.names(), (Names{"f", "g"}));
        for (const char *name : {"f", "g"})
            std::filesystem::remove(folder.bytes(name));
    }
}

TEST_F(RefusingDisk, ThatGivesANamelessFileNoNameForWantOfRoomKeepsTheOldOne) {
    folder.write("f", "old");
    calls.link = refusing(ENOSPC);
    EXPECT_EQ(errorOf([&] { files().writeWhole(folder.text("f"), "new", true); }),
              ErrorNumber::DiskFull);
    EXPECT_EQ(errorOf([&] { files().writeNew(folder.text("g"), "new", true); }),
              ErrorNumber::DiskFull);
    EXPECT_EQ(folder.read("f"), "old");
    EXPECT_EQ(folder.names(), Names{"f"});
}

// --- what comes meanwhile ------------------------------------------------------------------------

TEST_F(RefusingDisk, OrNotWhatCameWhereNothingWasIsNotReplaced) {
    for (const auto writing : {AtomicFile::While::Unnamed, AtomicFile::While::Named}) {
        for (const bool isRefusing : {false, true}) {
            calls = FileCalls();
            if (isRefusing) {
                calls.rename = renamingOnlyPlainly(EINVAL);
                calls.link = refusing(EPERM);
            }
            {
                AtomicFile file(folder.bytes("f"), writing, AtomicFile::Over::OldFile, calls);
                file.write("new");
                folder.write("f", "came meanwhile");
                EXPECT_EQ(errorOf([&] { file.commit(false); }), ErrorNumber::FileExists);
            }
            EXPECT_EQ(folder.read("f"), "came meanwhile");
            EXPECT_EQ(folder.names(), Names{"f"});
            std::filesystem::remove(folder.bytes("f"));
        }
    }
}

} // namespace
} // namespace velmora::platform
