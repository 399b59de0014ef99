#include "platform/backends/linux/atomic_write.h"
#include "platform/backends/linux/linux_files.h"

#include "base/run_time_error.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/unit/error_of.h"
#include "tests/unit/linux/temp_folder.h"
#include "tests/unit/small_disk.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

namespace velmora::platform {
namespace {

using Names = std::vector<std::string>;

struct Writing : testing::Test {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    LinuxFiles files{ansi};
};

// --- writing whole files -------------------------------------------------------------------------

TEST_F(Writing, makesAndReplacesAFileWithExactlyTheseBytes) {
    for (const bool durable : {false, true}) {
        files.writeWhole(folder.text("f"), "first content", durable);
        EXPECT_EQ(folder.read("f"), "first content");
        files.writeWhole(folder.text("f"), std::string("\0\r\n\xFF", 4), durable);
        EXPECT_EQ(folder.read("f"), std::string("\0\r\n\xFF", 4));
        files.writeWhole(folder.text("f"), "", durable);
        EXPECT_EQ(folder.read("f"), "");
        EXPECT_EQ(folder.names(), Names{"f"});
    }
}

TEST_F(Writing, keepsTheModeOfTheFile) {
    folder.write("f", "old");
    folder.mode("f", 0640);
    files.writeWhole(folder.text("f"), "new", false);
    EXPECT_EQ(folder.mode("f"), 0640U);
    folder.mode("f", 0755);
    files.writeWhole(folder.text("f"), "new", true);
    EXPECT_EQ(folder.mode("f"), 0755U);
}

TEST_F(Writing, givesANewFileTheUsualMode) {
    const mode_t before = ::umask(027);
    files.writeWhole(folder.text("f"), "new", false);
    ::umask(before);
    EXPECT_EQ(folder.mode("f"), 0640U);
}

TEST_F(Writing, followsLinksAndLeavesThemLinks) {
    folder.makeFolder("sub");
    folder.write("sub/real", "old");
    folder.link("one", "sub/real");
    folder.link("two", "one");
    files.writeWhole(folder.text("two"), "new", false);
    EXPECT_EQ(folder.read("sub/real"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.bytes("one")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.bytes("two")));
    EXPECT_EQ(folder.names(), (Names{"one", "sub", "two"}));
}

TEST_F(Writing, makesTheFileThatADanglingLinkNames) {
    folder.makeFolder("sub");
    folder.link("link", "sub/new");
    files.writeWhole(folder.text("link"), "x", false);
    EXPECT_EQ(folder.read("sub/new"), "x");
    folder.link("absolute", folder.bytes("sub/other"));
    files.writeWhole(folder.text("absolute"), "y", false);
    EXPECT_EQ(folder.read("sub/other"), "y");
}

TEST_F(Writing, refusesALoopOfLinks) {
    folder.link("a", "b");
    folder.link("b", "a");
    EXPECT_EQ(errorOf([&] { files.writeWhole(folder.text("a"), "x", false); }),
              ErrorNumber::PathNotFound);
    EXPECT_EQ(folder.names(), (Names{"a", "b"}));
}

TEST_F(Writing, refusesATargetThatIsNoRegularFile) {
    folder.makeFolder("sub");
    folder.pipe("pipe");
    EXPECT_EQ(errorOf([&] { files.writeWhole(folder.text("sub"), "x", false); }),
              ErrorNumber::PermissionDenied);
    EXPECT_EQ(errorOf([&] { files.writeWhole(folder.text("pipe"), "x", false); }),
              ErrorNumber::DeviceIo);
    EXPECT_EQ(errorOf([&] { files.writeWhole(u"/dev/null", "x", false); }), ErrorNumber::DeviceIo);
    EXPECT_EQ(folder.names(), (Names{"pipe", "sub"}));
}

TEST_F(Writing, refusesAFileWithoutAnyWriteBitWhoeverAsks) {
    folder.write("f", "old");
    folder.mode("f", 0444);
    std::u16string description;
    EXPECT_EQ(errorOf([&] { files.writeWhole(folder.text("f"), "x", false); }, &description),
              ErrorNumber::PermissionDenied);
    EXPECT_EQ(description, u"Permission denied");
    EXPECT_EQ(folder.read("f"), "old");
    EXPECT_EQ(folder.names(), Names{"f"});
}

TEST_F(Writing, raisesWhereTheFolderIsMissing) {
    EXPECT_EQ(errorOf([&] { files.writeWhole(folder.text("no/f"), "x", false); }),
              ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { files.writeWhole(u"", "x", false); }), ErrorNumber::FileNotFound);
    folder.write("f", "");
    EXPECT_EQ(errorOf([&] { files.writeWhole(folder.text("f/below"), "x", false); }),
              ErrorNumber::PathNotFound);
}

TEST_F(Writing, neverWritesDirectlyBelowTheRoot) {
    EXPECT_EQ(errorOf([&] { files.writeWhole(u"/velmora-test-file", "x", false); }),
              ErrorNumber::PermissionDenied);
    EXPECT_EQ(errorOf([&] {
                  files.CreateFileSystemObject()->CreateTextFile(u"/velmora-test-file", u"x");
              }),
              ErrorNumber::PermissionDenied);
    EXPECT_FALSE(std::filesystem::exists("/velmora-test-file"));
}

TEST_F(Writing, writesANameOfTheGreatestLength) {
    const std::string name(255, 'n');
    files.writeWhole(folder.text(name), "x", true);
    EXPECT_EQ(folder.read(name), "x");
    EXPECT_EQ(errorOf([&] { files.writeWhole(folder.text(name + "n"), "x", true); }),
              ErrorNumber::PathNotFound);
    EXPECT_EQ(folder.names(), Names{name});
}

// --- a disk that fills up ------------------------------------------------------------------------

// While it lives no file can grow beyond a size: the write that passes it comes back short, the
// next one fails.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        const ::rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    ::rlimit before_{};
    void (*handler_)(int);
};

TEST_F(Writing, leavesTheOldFileWholeWhenTheWriteComesBackShort) {
    files.writeWhole(folder.text("f"), "the old content", true);
    for (const bool durable : {false, true}) {
        const SizeLimit limit(4096);
        errorOf([&] { files.writeWhole(folder.text("f"), std::string(100'000, 'n'), durable); });
    }
    EXPECT_EQ(folder.read("f"), "the old content");
    EXPECT_EQ(folder.names(), Names{"f"});
}

TEST_F(Writing, leavesNothingBehindWhenANewFileCannotBeWritten) {
    {
        const SizeLimit limit(10);
        errorOf([&] { files.writeWhole(folder.text("new"), "more than ten bytes", false); });
        errorOf([&] {
            files.CreateFileSystemObject()->CreateTextFile(folder.text("new"), u"more than ten");
        });
    }
    EXPECT_EQ(folder.names(), Names{});
}

TEST_F(Writing, leavesTheOldFileWholeOnAFullDisk) {
    folder.makeFolder("disk");
    const int answer = onSmallDisk(folder.bytes("disk"), "64k", [&] {
        files.writeWhole(folder.text("disk/f"), std::string(30'000, 'o'), true);
        int wrong = 0;
        std::u16string description;
        for (const bool durable : {false, true})
            wrong +=
                errorOf(
                    [&] {
                        files.writeWhole(folder.text("disk/f"), std::string(60'000, 'n'), durable);
                    },
                    &description) != ErrorNumber::DiskFull;
        wrong += description != u"No space left on device";
        wrong += folder.read("disk/f") != std::string(30'000, 'o');
        wrong += std::distance(std::filesystem::directory_iterator(folder.bytes("disk")), {}) != 1;
        // What fits is still written.
        files.writeWhole(folder.text("disk/f"), "small", true);
        wrong += folder.read("disk/f") != "small";
        return wrong;
    });
    if (answer == noSmallDisk)
        GTEST_SKIP() << "no file system can be mounted here";
    EXPECT_EQ(answer, 0);
}

// --- the file while it is written ----------------------------------------------------------------

TEST_F(Writing, aFileThatIsNotCompleteHasNoName) {
    folder.write("f", "old");
    {
        AtomicFile file(folder.bytes("f"));
        file.write("half of the new");
        EXPECT_EQ(folder.names(), Names{"f"});
    }
    EXPECT_EQ(folder.read("f"), "old");
}

TEST_F(Writing, aPassingNameGoesWithTheFileThatHadIt) {
    folder.write("f", "old");
    folder.mode("f", 0604);
    {
        AtomicFile file(folder.bytes("f"), AtomicFile::While::Named);
        file.write("half of the new");
        EXPECT_EQ(folder.names().size(), 2U);
    }
    EXPECT_EQ(folder.names(), Names{"f"});
    AtomicFile file(folder.bytes("f"), AtomicFile::While::Named);
    file.write("first ");
    file.write("second");
    file.commit(true);
    EXPECT_EQ(folder.read("f"), "first second");
    EXPECT_EQ(folder.mode("f"), 0604U);
    EXPECT_EQ(folder.names(), Names{"f"});
}

TEST_F(Writing, passesNamesThatAreTaken) {
    const std::string taken = ".velmora-" + std::to_string(::getpid()) + "-0";
    folder.write(taken, "somebody's");
    files.writeWhole(folder.text("f"), "x", false);
    EXPECT_EQ(folder.read(taken), "somebody's");
    EXPECT_EQ(folder.read("f"), "x");
}

TEST_F(Writing, aKilledWriterLeavesTheOldFileAndNothingElse) {
    folder.write("f", "old");
    const pid_t child = ::fork();
    if (child == 0) {
        AtomicFile file(folder.bytes("f"));
        file.write(std::string(100'000, 'n'));
        ::kill(::getpid(), SIGKILL);
    }
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(folder.read("f"), "old");
    EXPECT_EQ(folder.names(), Names{"f"});
}

// --- other ways to write -------------------------------------------------------------------------

TEST_F(Writing, textFilesHoldTheAnsiForm) {
    files.CreateFileSystemObject()->CreateTextFile(folder.text("f"), u"é曲\r\n");
    EXPECT_EQ(folder.read("f"), "é曲\r\n");
    const fakes::FakeAnsi gbk(936);
    LinuxFiles(gbk).CreateFileSystemObject()->CreateTextFile(folder.text("f"), u"中");
    EXPECT_EQ(folder.read("f"), "\xD6\xD0");
    EXPECT_EQ(folder.names(), Names{"f"});
}

TEST_F(Writing, keepsTheOldFileUnderAnotherName) {
    const std::string content = std::string(3'000'000, 'k') + "end";
    folder.write("list", content);
    folder.mode("list", 0600);
    files.keepAs(folder.text("list"), folder.text("list.old"));
    EXPECT_EQ(folder.read("list.old"), content);
    EXPECT_EQ(folder.read("list"), content);
    EXPECT_EQ(folder.mode("list.old"), 0600U);
    EXPECT_EQ(folder.names(), (Names{"list", "list.old"}));
    EXPECT_EQ(errorOf([&] { files.keepAs(folder.text("list"), folder.text("list.old")); }),
              ErrorNumber::FileExists);
    errorOf([&] { files.keepAs(folder.text("missing"), folder.text("kept")); });
    EXPECT_FALSE(folder.exists("kept"));
}

TEST_F(Writing, keepsAllOfTheOldFileOrNothing) {
    folder.write("list", std::string(100'000, 'k'));
    {
        const SizeLimit limit(4096);
        errorOf([&] { files.keepAs(folder.text("list"), folder.text("list.old")); });
    }
    EXPECT_EQ(folder.names(), Names{"list"});
}

// --- renaming ------------------------------------------------------------------------------------

TEST_F(Writing, renamesAFile) {
    folder.write("old", "x");
    files.Name(folder.text("old"), folder.text("new 曲.mp3"));
    EXPECT_EQ(folder.names(), Names{"new 曲.mp3"});
}

TEST_F(Writing, renamingNeverReplaces) {
    folder.write("a", "A");
    folder.write("b", "B");
    std::u16string description;
    EXPECT_EQ(errorOf([&] { files.Name(folder.text("a"), folder.text("b")); }, &description),
              ErrorNumber::FileExists);
    EXPECT_EQ(description, u"File exists");
    folder.link("link", "nowhere");
    EXPECT_EQ(errorOf([&] { files.Name(folder.text("a"), folder.text("link")); }),
              ErrorNumber::FileExists);
    EXPECT_EQ(folder.read("a"), "A");
    EXPECT_EQ(folder.read("b"), "B");
}

TEST_F(Writing, renamingToTheSamePathIsSuccessWithoutAction) {
    folder.write("a", "A");
    files.Name(folder.text("a"), folder.text("a"));
    EXPECT_EQ(folder.read("a"), "A");
    files.Name(folder.text("missing"), folder.text("missing"));
}

TEST_F(Writing, renamesWhereOnlyTheCaseDiffers) {
    folder.write("song", "x");
    files.Name(folder.text("song"), folder.text("Song"));
    EXPECT_EQ(folder.names(), Names{"Song"});
}

TEST_F(Writing, refusesNewNamesThatAreNone) {
    folder.write("a", "A");
    folder.makeFolder("sub");
    for (const std::u16string_view name :
         {std::u16string_view(u"sub/b"), std::u16string_view(u"../b"), std::u16string_view(u"."),
          std::u16string_view(u".."), std::u16string_view(u""), std::u16string_view(u"b\0c", 3)})
        EXPECT_EQ(errorOf([&] {
                      files.Name(folder.text("a"), folder.text() + u"/" + std::u16string(name));
                  }),
                  ErrorNumber::InvalidCall);
    EXPECT_EQ(folder.names(), (Names{"a", "sub"}));
}

TEST_F(Writing, renamingWhatIsMissingRaises) {
    EXPECT_EQ(errorOf([&] { files.Name(folder.text("no"), folder.text("new")); }),
              ErrorNumber::FileNotFound);
}

TEST_F(Writing, renamesALinkAndNotItsTarget) {
    folder.write("target", "x");
    folder.link("link", "target");
    files.Name(folder.text("link"), folder.text("other"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.bytes("other")));
    EXPECT_EQ(folder.names(), (Names{"other", "target"}));
}

// --- deleting ------------------------------------------------------------------------------------

TEST_F(Writing, deletesTheExactNameOnly) {
    folder.write("Song.mp3", "x");
    const auto object = files.CreateFileSystemObject();
    EXPECT_EQ(errorOf([&] { object->DeleteFile(folder.text("song.mp3")); }),
              ErrorNumber::FileNotFound);
    EXPECT_EQ(errorOf([&] { object->DeleteFile(folder.text("*.mp3")); }),
              ErrorNumber::FileNotFound);
    object->DeleteFile(folder.text("Song.mp3"));
    EXPECT_EQ(folder.names(), Names{});
}

TEST_F(Writing, deletesALinkAndNeverItsTarget) {
    folder.write("target", "x");
    folder.mode("target", 0444);
    folder.link("link", "target");
    folder.link("dangling", "nowhere");
    const auto object = files.CreateFileSystemObject();
    object->DeleteFile(folder.text("link"));
    object->DeleteFile(folder.text("dangling"));
    EXPECT_EQ(folder.names(), Names{"target"});
}

TEST_F(Writing, doesNotDeleteAFolderOrAReadOnlyFile) {
    folder.makeFolder("sub");
    folder.write("f", "x");
    folder.mode("f", 0444);
    const auto object = files.CreateFileSystemObject();
    std::u16string description;
    EXPECT_EQ(errorOf([&] { object->DeleteFile(folder.text("sub")); }, &description),
              ErrorNumber::PermissionDenied);
    EXPECT_EQ(description, u"Is a directory");
    EXPECT_EQ(errorOf([&] { object->DeleteFile(folder.text("f")); }, &description),
              ErrorNumber::PermissionDenied);
    EXPECT_EQ(description, u"Permission denied");
    EXPECT_EQ(errorOf([&] { object->DeleteFile(u""); }), ErrorNumber::FileNotFound);
    EXPECT_EQ(folder.names(), (Names{"f", "sub"}));
    folder.mode("f", 0020); // one write bit of anybody is enough
    object->DeleteFile(folder.text("f"));
    EXPECT_EQ(folder.names(), Names{"sub"});
}

} // namespace
} // namespace velmora::platform
