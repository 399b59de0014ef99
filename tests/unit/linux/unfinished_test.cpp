// What a writing leaves that was cut short, and the end of it.

#include "platform/backends/linux/atomic_write.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/linux/passing_name.h"

#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <functional>

namespace velmora::platform {
namespace {

using Names = std::vector<std::string>;

struct Unfinished : testing::Test {
    TempFolder folder;

    // A process that is killed in the middle of writing a file with a passing name.
    void killAWriter() {
        const pid_t child = ::fork();
        if (child == 0) {
            AtomicFile file(folder.bytes("f"), AtomicFile::While::Named);
            file.write(std::string(100'000, 'n'));
            ::kill(::getpid(), SIGKILL);
        }
        ::waitpid(child, nullptr, 0);
    }
};

TEST_F(Unfinished, FilesOfAKilledWriterAreCleared) {
    folder.write("f", "old");
    killAWriter();
    EXPECT_EQ(folder.names().size(), 2U);
    clearUnfinished(folder.path());
    EXPECT_EQ(folder.names(), Names{"f"});
    EXPECT_EQ(folder.read("f"), "old");
}

TEST_F(Unfinished, FilesThatAreBeingWrittenStay) {
    AtomicFile file(folder.bytes("f"), AtomicFile::While::Named);
    file.write("half");
    clearUnfinished(folder.path());
    EXPECT_EQ(folder.names().size(), 1U);
    file.commit(false);
    EXPECT_EQ(folder.names(), Names{"f"});
}

TEST_F(Unfinished, FilesWithoutAWriteBitAreClearedToo) {
    const std::string path = passingName(folder.path(), 7);
    const std::string name = path.substr(folder.path().size() + 1);
    folder.write(name, "copied");
    folder.mode(name, 0444);
    clearUnfinished(folder.path());
    EXPECT_EQ(folder.names(), Names{});
}

TEST_F(Unfinished, NothingElseIsCleared) {
    const Names names = {".velmora",       ".velmora-",     ".velmora-1",     ".velmora-1-",
                         ".velmora-1-2.x", ".velmora-a-1",  ".velmora-1-2-3", "velmora-1-2",
                         ".velmora--1",    ".velmora-1 - 2"};
    for (const std::string &name : names)
        folder.write(name, "a person's");
    folder.makeFolder(".velmora-1-2");
    folder.write("target", "a person's");
    folder.link(".velmora-3-4", "target");
    folder.pipe(".velmora-5-6");
    clearUnfinished(folder.path());
    EXPECT_EQ(folder.names().size(), names.size() + 4);
    clearUnfinished(folder.bytes("gone"));
}

// --- from start to start -------------------------------------------------------------------------

struct FromStartToStart : testing::Test {
    TempFolder folder;
    HomeFolders homes;

    void SetUp() override {
        folder.makeFolder("elsewhere");
        homes.cache = folder.bytes("cache");
    }
    // What a process does that is killed by `strike`, on calls as the program has them.
    void inAKilledProcess(const std::function<void(FileCalls &calls)> &work) {
        const pid_t child = ::fork();
        if (child == 0) {
            FileCalls calls = makeFileCalls(homes);
            work(calls);
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it lived on";
    }
    static int strike() { return ::kill(::getpid(), SIGKILL); }
    Names in(const std::string &place) const {
        Names names;
        for (const auto &entry : std::filesystem::directory_iterator(folder.bytes(place)))
            names.push_back(entry.path().filename());
        return names;
    }
};

TEST_F(FromStartToStart, FilesInAnyFolderAreClearedByTheNextStart) {
    folder.write("elsewhere/f", "old");
    // Ahead of the moment at which the new file takes the place of the old one.
    inAKilledProcess([&](FileCalls &calls) {
        calls.rename = [](auto &&...) { return strike(); };
        AtomicFile file(folder.bytes("elsewhere/f"), AtomicFile::While::Unnamed,
                        AtomicFile::Over::OldFile, calls);
        file.write("new");
        file.commit(false);
    });
    // Where files have a name from their beginning, in the midst of the writing.
    inAKilledProcess([&](FileCalls &calls) {
        calls.openNameless = [](auto &&...) {
            errno = ENOTSUP;
            return -1;
        };
        AtomicFile file(folder.bytes("elsewhere/g"), AtomicFile::While::Unnamed,
                        AtomicFile::Over::OldFile, calls);
        file.write("new");
        strike();
    });
    EXPECT_EQ(in("elsewhere").size(), 2U) << "the second start clears what the first left";
    makeFileCalls(homes);
    EXPECT_EQ(in("elsewhere"), Names{"f"});
    EXPECT_EQ(folder.read("elsewhere/f"), "old");
    EXPECT_EQ(in("cache/velmora"), Names{});
}

TEST_F(FromStartToStart, FilesOfARunThatLivesAreLeftByAStartBesideIt) {
    const FileCalls calls = makeFileCalls(homes);
    AtomicFile file(folder.bytes("elsewhere/f"), AtomicFile::While::Named,
                    AtomicFile::Over::OldFile, calls);
    file.write("new");
    makeFileCalls(homes);
    EXPECT_EQ(in("elsewhere").size(), 1U);
    EXPECT_EQ(in("cache/velmora").size(), 1U) << "its note stays as well";
    file.commit(false);
    EXPECT_EQ(folder.read("elsewhere/f"), "new");
}

TEST_F(FromStartToStart, AFolderIsNotedOnceAndNothingWhereNoFileHasAPassingName) {
    const FileCalls calls = makeFileCalls(homes);
    const auto write = [&](const std::string &name) {
        AtomicFile file(folder.bytes(name), AtomicFile::While::Unnamed, AtomicFile::Over::OldFile,
                        calls);
        file.write("new");
        file.commit(false);
    };
    write("elsewhere/f");
    EXPECT_FALSE(folder.exists("cache/velmora")) << "a new file takes its name at once";
    for (int time = 0; time < 3; ++time)
        write("elsewhere/f");
    ASSERT_EQ(in("cache/velmora").size(), 1U);
    EXPECT_EQ(folder.read("cache/velmora/" + in("cache/velmora").front()),
              folder.bytes("elsewhere") + '\0');
}

TEST_F(FromStartToStart, NotesThatAreNoneClearNothing) {
    folder.write("elsewhere/.velmora-1-2", "left");
    folder.makeFolder("cache/velmora");
    // A half note, one of a folder that is gone, an empty one.
    folder.write("cache/velmora/unfinished-1", folder.bytes("elsewhere"));
    folder.write("cache/velmora/unfinished-2", folder.bytes("gone") + '\0' + '\0');
    folder.write("cache/velmora/unfinished-3", "");
    folder.makeFolder("cache/velmora/unfinished-4");
    folder.write("cache/velmora/other", folder.bytes("elsewhere") + '\0');
    makeFileCalls(homes);
    EXPECT_EQ(in("elsewhere"), Names{".velmora-1-2"});
    EXPECT_EQ(in("cache/velmora").size(), 2U);
}

TEST_F(FromStartToStart, FilesAreWrittenWhereNothingCanBeNoted) {
    for (const std::string &cache :
         {std::string(), folder.bytes("elsewhere/f"), std::string("/proc")}) {
        homes.cache = cache;
        AtomicFile file(folder.bytes("elsewhere/f"), AtomicFile::While::Named,
                        AtomicFile::Over::OldFile, makeFileCalls(homes));
        file.write("new");
        file.commit(false);
        EXPECT_EQ(in("elsewhere"), Names{"f"});
    }
}

} // namespace
} // namespace velmora::platform
