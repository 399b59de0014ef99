#include "platform/backends/linux/file_copy.h"

#include "base/run_time_error.h"
#include "platform/backends/linux/passing_name.h"
#include "tests/unit/error_of.h"
#include "tests/unit/linux/refusing.h"
#include "tests/unit/linux/temp_folder.h"
#include "tests/unit/write_limit.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <functional>

namespace velmora::platform {
namespace {

using Names = std::vector<std::string>;

struct Copying : testing::Test {
    TempFolder folder;
    FileCalls calls;
    const std::string content = std::string(2'500'000, 's') + "end";

    void SetUp() override {
        folder.makeFolder("music");
        folder.makeFolder("stick");
        folder.write("music/a.mp3", content);
        folder.mode("music/a.mp3", 0640);
        const std::timespec times[] = {{1'000'000'000, 5}, {1'100'000'000, 7}};
        ASSERT_EQ(::utimensat(AT_FDCWD, folder.bytes("music/a.mp3").c_str(), times, 0), 0);
    }

    FileCopy copyTo(const std::string &place) {
        return FileCopy(folder.bytes("music/a.mp3"), folder.bytes(place), calls);
    }
    // As the window does it, without a question.
    void copy(bool replacing = false) {
        FileCopy copying(folder.bytes("music/a.mp3"), folder.bytes("stick/"), calls);
        copying.begin();
        while (copying.copyPiece()) {
        }
        copying.finish(replacing);
    }
    Names onStick() const {
        Names names;
        for (const auto &entry : std::filesystem::directory_iterator(folder.bytes("stick")))
            names.push_back(entry.path().filename());
        return names;
    }
    // As on file systems that know nothing of all this.
    void refuseAll(int error) {
        calls.openNameless = refusing(ENOTSUP);
        calls.link = refusing(error);
        calls.setMode = refusing(error);
        calls.setTimes = refusing(error);
        calls.rename = renamingOnlyPlainly(EINVAL);
    }
};

TEST_F(Copying, BringsContentModeAndTime) {
    copy();
    EXPECT_TRUE(folder.read("stick/a.mp3") == content);
    EXPECT_EQ(folder.mode("stick/a.mp3"), 0640U);
    struct ::stat info {};
    ASSERT_EQ(::stat(folder.bytes("stick/a.mp3").c_str(), &info), 0);
    EXPECT_EQ(info.st_mtim.tv_sec, 1'100'000'000);
    EXPECT_EQ(info.st_mtim.tv_nsec, 7);
    EXPECT_EQ(onStick(), Names{"a.mp3"});
}

TEST_F(Copying, SucceedsWhereModesTimesAndSecondNamesAreRefused) {
    for (const int error : {EPERM, ENOTSUP, ENOSYS, EINVAL}) {
        refuseAll(error);
        copy();
        EXPECT_TRUE(folder.read("stick/a.mp3") == content) << error;
        EXPECT_EQ(onStick(), Names{"a.mp3"});
        std::filesystem::remove(folder.bytes("stick/a.mp3"));
    }
}

TEST_F(Copying, FailsWhereModesAndTimesFailForAnotherReason) {
    for (const int error : {EIO, EROFS, ENOSPC}) {
        calls = FileCalls();
        calls.setMode = refusing(error);
        errorOf([&] { copy(); });
        calls = FileCalls();
        calls.setTimes = refusing(error);
        errorOf([&] { copy(); });
        EXPECT_EQ(onStick(), Names{});
    }
}

TEST_F(Copying, HasNoNameUntilItIsComplete) {
    FileCopy copying(folder.bytes("music/a.mp3"), folder.bytes("stick"));
    copying.begin();
    EXPECT_TRUE(copying.copyPiece());
    EXPECT_EQ(onStick(), Names{});
}

TEST_F(Copying, CutShortByForceLeavesNothing) {
    const pid_t child = ::fork();
    if (child == 0) {
        FileCopy copying(folder.bytes("music/a.mp3"), folder.bytes("stick"));
        copying.begin();
        copying.copyPiece();
        ::kill(::getpid(), SIGKILL);
    }
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(onStick(), Names{});
}

TEST_F(Copying, CutShortWhereFilesHaveANameFromTheirBeginningIsClearedByTheNext) {
    refuseAll(EPERM);
    const pid_t child = ::fork();
    if (child == 0) {
        FileCopy copying(folder.bytes("music/a.mp3"), folder.bytes("stick"), calls);
        copying.begin();
        copying.copyPiece();
        ::kill(::getpid(), SIGKILL);
    }
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(onStick().size(), 1U);
    copy();
    EXPECT_EQ(onStick(), Names{"a.mp3"});
}

TEST_F(Copying, ThatDoesNotFitLeavesNothingAndTheOldFile) {
    folder.write("stick/a.mp3", "old");
    for (const bool isRefusing : {false, true}) {
        if (isRefusing)
            refuseAll(EPERM);
        const WriteLimit limit(1'500'000);
        errorOf([&] { copy(true); });
        EXPECT_EQ(onStick(), Names{"a.mp3"});
    }
    EXPECT_EQ(folder.read("stick/a.mp3"), "old");
}

// --- what lies there -----------------------------------------------------------------------------

TEST_F(Copying, TellsWhetherItsPlaceIsTaken) {
    EXPECT_FALSE(copyTo("stick").isTaken());
    folder.link("stick/a.mp3", "nowhere");
    EXPECT_TRUE(copyTo("stick").isTaken()) << "a dangling link";
    std::filesystem::remove(folder.bytes("stick/a.mp3"));
    folder.write("stick/a.mp3", "");
    EXPECT_TRUE(copyTo("stick").isTaken());
}

TEST_F(Copying, IsRefusedOntoItselfAndOntoAFolder) {
    EXPECT_EQ(errorOf([&] { copyTo("music").isTaken(); }), ErrorNumber::FileExists);
    folder.link("stick/a.mp3", folder.bytes("music/a.mp3"));
    EXPECT_EQ(errorOf([&] { copyTo("stick").isTaken(); }), ErrorNumber::FileExists);
    std::filesystem::remove(folder.bytes("stick/a.mp3"));
    folder.makeFolder("stick/a.mp3");
    EXPECT_EQ(errorOf([&] { copyTo("stick").isTaken(); }), ErrorNumber::PermissionDenied);
}

TEST_F(Copying, ReplacesWhatItWasToldTo) {
    folder.write("target", "target");
    folder.link("stick/a.mp3", folder.bytes("target"));
    copy(true);
    EXPECT_FALSE(std::filesystem::is_symlink(folder.bytes("stick/a.mp3")));
    EXPECT_TRUE(folder.read("stick/a.mp3") == content);
    EXPECT_EQ(folder.read("target"), "target");
    EXPECT_EQ(onStick(), Names{"a.mp3"});
}

TEST_F(Copying, LeavesWhatCameMeanwhileUntilItIsToldOtherwise) {
    for (const bool isRefusing : {false, true}) {
        calls = FileCalls();
        if (isRefusing)
            refuseAll(EPERM);
        FileCopy copying(folder.bytes("music/a.mp3"), folder.bytes("stick"), calls);
        EXPECT_FALSE(copying.isTaken());
        copying.begin();
        while (copying.copyPiece()) {
        }
        folder.write("stick/a.mp3", "came meanwhile");
        EXPECT_EQ(errorOf([&] { copying.finish(false); }), ErrorNumber::FileExists);
        EXPECT_EQ(folder.read("stick/a.mp3"), "came meanwhile");
        copying.finish(true);
        EXPECT_TRUE(folder.read("stick/a.mp3") == content);
        EXPECT_EQ(onStick(), Names{"a.mp3"});
        std::filesystem::remove(folder.bytes("stick/a.mp3"));
    }
}

// --- sources -------------------------------------------------------------------------------------

TEST_F(Copying, TakesRegularFilesAlone) {
    const auto copyOf = [&](const std::string &name) {
        return [&, name] { FileCopy(folder.bytes(name), folder.bytes("stick")); };
    };
    folder.pipe("pipe");
    EXPECT_EQ(errorOf(copyOf("pipe")), ErrorNumber::InvalidCall);
    EXPECT_EQ(errorOf(copyOf("music")), ErrorNumber::InvalidCall);
    EXPECT_EQ(errorOf(copyOf("gone")), ErrorNumber::FileNotFound);
}

TEST_F(Copying, TellsHowFarItIs) {
    FileCopy copying(folder.bytes("music/a.mp3"), folder.bytes("stick"));
    copying.begin();
    double before = -1.0;
    while (copying.copyPiece()) {
        EXPECT_GT(copying.share(), before);
        before = copying.share();
    }
    EXPECT_EQ(before, 1.0);
    folder.write("music/empty", "");
    EXPECT_EQ(FileCopy(folder.bytes("music/empty"), folder.bytes("stick")).share(), 0.0);
}

} // namespace
} // namespace velmora::platform
