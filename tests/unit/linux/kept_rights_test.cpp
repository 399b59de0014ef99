// What a file keeps besides its content when it is written over.

#include "platform/backends/linux/atomic_write.h"

#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <sys/xattr.h>

#include <cstring>

namespace velmora::platform {
namespace {

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

} // namespace
} // namespace velmora::platform
