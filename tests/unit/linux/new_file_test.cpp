// Files that are only made, and never take the name of what is there.

#include "platform/backends/linux/atomic_write.h"
#include "platform/backends/linux/linux_files.h"

#include "base/run_time_error.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace velmora::platform {
namespace {

using Names = std::vector<std::string>;

struct NewFile : testing::Test {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    LinuxFiles files{ansi};

    bool isRefused(const std::string &name) {
        try {
            files.writeNew(folder.text(name), "new", true);
        } catch (const RunTimeError &error) {
            EXPECT_EQ(error.number(), ErrorNumber::FileExists);
            EXPECT_EQ(error.description(), u"File exists");
            return true;
        }
        return false;
    }
};

TEST_F(NewFile, hasTheseBytesAndTheUsualMode) {
    const mode_t before = ::umask(027);
    files.writeNew(folder.text("f"), std::string("\0\r\n\xFF", 4), true);
    ::umask(before);
    EXPECT_EQ(folder.read("f"), std::string("\0\r\n\xFF", 4));
    EXPECT_EQ(folder.mode("f"), 0640U);
    EXPECT_EQ(folder.names(), Names{"f"});
}

TEST_F(NewFile, leavesAFileAFolderAndAPipeOfItsName) {
    folder.write("f", "old");
    folder.makeFolder("sub");
    folder.pipe("pipe");
    for (const char *name : {"f", "sub", "pipe"})
        EXPECT_TRUE(isRefused(name)) << name;
    EXPECT_EQ(folder.read("f"), "old");
    EXPECT_EQ(folder.names(), (Names{"f", "pipe", "sub"}));
}

TEST_F(NewFile, followsNoLink) {
    folder.write("victim", "old");
    folder.link("link", "victim");
    folder.link("dangling", "nowhere");
    EXPECT_TRUE(isRefused("link"));
    EXPECT_TRUE(isRefused("dangling"));
    EXPECT_EQ(folder.read("victim"), "old");
    EXPECT_EQ(folder.names(), (Names{"dangling", "link", "victim"}));
}

// Both for a file without a name and for one with a passing name.
TEST_F(NewFile, leavesWhatCameWhileItWasWritten) {
    for (const auto writing : {AtomicFile::While::Unnamed, AtomicFile::While::Named}) {
        std::filesystem::remove(folder.bytes("f"));
        {
            AtomicFile file(folder.bytes("f"), writing, AtomicFile::Over::Nothing);
            file.write("new");
            folder.write("f", "came meanwhile");
            EXPECT_THROW(file.commit(false), RunTimeError);
        }
        EXPECT_EQ(folder.read("f"), "came meanwhile");
        EXPECT_EQ(folder.names(), Names{"f"});
    }
}

} // namespace
} // namespace velmora::platform
