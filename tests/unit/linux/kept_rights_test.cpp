// What a file keeps besides its content when it is written over, and what an interrupted writing
// leaves.

#include "platform/linux/atomic_write.h"
#include "platform/linux/passing_name.h"

#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <sys/file.h>
#include <sys/wait.h>
#include <sys/xattr.h>

#include <csignal>
#include <cstring>

namespace velmora::platform {
namespace {

using Names = std::vector<std::string>;

constexpr char accessRights[] = "system.posix_acl_access";
constexpr char defaultRights[] = "system.posix_acl_default";

// A list of rights in the system's form: user::rw-, user:NUMBER:rw-, group::---, mask::rw-,
// other::---.
std::string rightsOfUser(std::uint32_t user) {
    std::string bytes("\2\0\0\0", 4);
    const auto add = [&](std::uint16_t tag, std::uint16_t rights, std::uint32_t who) {
        char entry[8];
        std::memcpy(entry, &tag, 2);
        std::memcpy(entry + 2, &rights, 2);
        std::memcpy(entry + 4, &who, 4);
        bytes.append(entry, sizeof entry);
    };
    constexpr std::uint32_t nobody = 0xFFFFFFFF;
    add(0x01, 6, nobody);
    add(0x02, 6, user);
    add(0x04, 0, nobody);
    add(0x10, 6, nobody);
    add(0x20, 0, nobody);
    return bytes;
}

struct KeptRights : testing::Test {
    TempFolder folder;

    bool set(const std::string &name, const char *attribute, const std::string &value) {
        return ::setxattr(folder.bytes(name).c_str(), attribute, value.data(), value.size(), 0) ==
               0;
    }
    std::string get(const std::string &name, const char *attribute) {
        char value[256];
        const ssize_t size = ::getxattr(folder.bytes(name).c_str(), attribute, value, sizeof value);
        return size < 0 ? "none" : std::string(value, static_cast<std::size_t>(size));
    }
    void rewrite(const std::string &name, AtomicFile::While writing) {
        AtomicFile file(folder.bytes(name), writing);
        file.write("new");
        file.commit(false);
        EXPECT_EQ(folder.read(name), "new");
    }
};

constexpr AtomicFile::While bothWays[] = {AtomicFile::While::Unnamed, AtomicFile::While::Named};

TEST_F(KeptRights, AttributesOfPeopleAndProgramsStay) {
    folder.write("f", "old");
    if (!set("f", "user.velmora.test", "noted"))
        GTEST_SKIP() << "the file system of " << folder.path() << " keeps no attributes";
    for (const auto writing : bothWays) {
        rewrite("f", writing);
        EXPECT_EQ(get("f", "user.velmora.test"), "noted");
    }
}

TEST_F(KeptRights, RightsOfSingleUsersStay) {
    folder.write("f", "old");
    if (!set("f", accessRights, rightsOfUser(4711)))
        GTEST_SKIP() << "the file system of " << folder.path()
                     << " keeps no rights of single users";
    for (const auto writing : bothWays) {
        rewrite("f", writing);
        EXPECT_EQ(get("f", accessRights), rightsOfUser(4711));
        EXPECT_EQ(folder.mode("f"), 0660U);
    }
}

TEST_F(KeptRights, AFileGetsNoRightsFromItsFolderThatItHadNot) {
    folder.write("f", "old");
    folder.mode("f", 0640);
    if (!set(".", defaultRights, rightsOfUser(4711)))
        GTEST_SKIP() << "the file system of " << folder.path()
                     << " keeps no rights of single users";
    for (const auto writing : bothWays) {
        rewrite("f", writing);
        EXPECT_EQ(get("f", accessRights), "none");
        EXPECT_EQ(folder.mode("f"), 0640U);
    }
}

TEST_F(KeptRights, AnotherUsersFileWrittenByRootStaysThatUsers) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser gives files away";
    folder.write("f", "old");
    ASSERT_EQ(::chown(folder.bytes("f").c_str(), 4711, 4712), 0);
    for (const auto writing : bothWays) {
        rewrite("f", writing);
        struct ::stat info {};
        ASSERT_EQ(::stat(folder.bytes("f").c_str(), &info), 0);
        EXPECT_EQ(info.st_uid, 4711U);
        EXPECT_EQ(info.st_gid, 4712U);
    }
}

// --- what was cut short --------------------------------------------------------------------------

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

} // namespace
} // namespace velmora::platform
