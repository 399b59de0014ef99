#include "platform/backends/linux/linux_processes.h"

#include "base/run_time_error.h"
#include "platform/backends/linux/linux_versions.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/unit/linux/child_process.h"
#include "tests/unit/linux/temp_folder.h"
#include "text/version/version_query.h"

#include <gtest/gtest.h>

#include <sys/file.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace velmora::platform {
namespace {

using Lines = std::vector<std::string>;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

const std::string helper = VELMORA_HELPER;

struct ProcessTest : testing::Test {
    TempFolder folder;

    ChildProcess::Environment environment(const std::string &config = "config") const {
        return {{"HOME", folder.path()}, {"XDG_CONFIG_HOME", folder.bytes(config)}};
    }
    static std::size_t count(const Lines &lines, const std::string &line) {
        return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), line));
    }
};

// --- the query -----------------------------------------------------------------------------------

TEST_F(ProcessTest, queryAnswersTheAskerAndItsEqualsWithTheSameConfiguration) {
    ChildProcess alone({helper, "query"}, environment());
    EXPECT_EQ(alone.lines(), Lines{helper});
    alone.wait(); // it is on its way out for a moment, and would be seen

    ChildProcess other({helper, "wait"}, environment());
    ChildProcess elsewhere({helper, "wait"}, environment("other"));
    ASSERT_EQ(other.line(), "ready");
    ASSERT_EQ(elsewhere.line(), "ready");
    ChildProcess asker({helper, "query"}, environment());
    EXPECT_EQ(asker.lines(), (Lines{helper, helper}));
}

TEST_F(ProcessTest, queryKnowsTheConfigurationByTheHomeToo) {
    ChildProcess other({helper, "wait"}, {{"HOME", folder.path()}});
    ASSERT_EQ(other.line(), "ready");
    ChildProcess asker({helper, "query"},
                       {{"HOME", "/nowhere"}, {"XDG_CONFIG_HOME", folder.bytes(".config/")}});
    EXPECT_EQ(asker.lines(), (Lines{helper, helper}));
}

TEST_F(ProcessTest, queryLeavesOutTheProcessThatStartedTheAsker) {
    ChildProcess starter({helper, "query-of-child"}, environment());
    EXPECT_EQ(starter.lines(), Lines{helper});
}

TEST_F(ProcessTest, queryTellsTheNameOfAProgramFileThatIsGone) {
    const std::string copy = folder.bytes("gone 曲");
    std::filesystem::copy_file(helper, copy);
    ChildProcess other({copy, "wait"}, environment());
    ASSERT_EQ(other.line(), "ready");
    std::filesystem::remove(copy);
    ChildProcess asker({helper, "query"}, environment());
    const Lines lines = asker.lines();
    EXPECT_EQ(lines.size(), 2U);
    EXPECT_EQ(count(lines, copy), 1U);
}

TEST_F(ProcessTest, queryIsQuick) {
    LinuxProcesses processes(homeFolders(), {});
    const auto begin = steady_clock::now();
    const auto found = processes.ExecQuery(u"", 0);
    EXPECT_LT(steady_clock::now() - begin, milliseconds(1000));
    EXPECT_FALSE(found.empty());
}

// --- the previous instance -----------------------------------------------------------------------

TEST_F(ProcessTest, theFirstInstanceHoldsTheLockForLife) {
    ChildProcess first({helper, "lock"}, environment());
    EXPECT_EQ(first.line(), "first");
    EXPECT_EQ(first.line(), "first");
    const auto begin = steady_clock::now();
    ChildProcess second({helper, "lock"}, environment());
    EXPECT_EQ(second.line(), "refused");
    EXPECT_GE(steady_clock::now() - begin, milliseconds(450)); // it may be ending
    EXPECT_EQ(second.line(), "refused");
    ChildProcess elsewhere({helper, "lock"}, environment("other"));
    EXPECT_EQ(elsewhere.line(), "first");
}

// Whether the process has the lock's file open and has gone to sleep over it, seen within a limit.
// Between opening and the first try it never sleeps.
bool waitsForTheLock(pid_t process) {
    const std::string place = "/proc/" + std::to_string(process);
    const auto giveUp = steady_clock::now() + milliseconds(10'000);
    while (steady_clock::now() < giveUp) {
        bool open = false;
        std::error_code gone;
        for (const auto &entry : std::filesystem::directory_iterator(place + "/fd", gone)) {
            const auto file = std::filesystem::read_symlink(entry.path(), gone);
            open = open || file.filename() == "instance.lock";
        }
        std::string state;
        std::getline(std::ifstream(place + "/stat"), state);
        const std::size_t name = state.rfind(") ");
        if (open && name != std::string::npos && state[name + 2] == 'S')
            return true;
        std::this_thread::yield();
    }
    return false;
}

TEST_F(ProcessTest, anInstanceThatIsJustEndingDoesNotRefuseItsSuccessor) {
    ChildProcess first({helper, "lock"}, environment());
    ASSERT_EQ(first.line(), "first");
    ChildProcess second({helper, "lock"}, environment());
    ASSERT_TRUE(waitsForTheLock(second.number()));
    first.kill();
    EXPECT_EQ(second.line(), "first");
}

TEST_F(ProcessTest, aKilledInstanceLeavesNoLock) {
    {
        ChildProcess first({helper, "lock"}, environment());
        ASSERT_EQ(first.line(), "first");
        first.kill();
        first.wait();
    }
    ChildProcess second({helper, "lock"}, environment());
    EXPECT_EQ(second.line(), "first");
}

TEST_F(ProcessTest, nobodyIsRefusedWhereNoLockCanBe) {
    folder.write("file", "");
    LinuxProcesses processes({folder.path(), folder.bytes("file"), "", "", ""}, {});
    EXPECT_FALSE(processes.previousInstance());
    folder.makeFolder("config/velmora/instance.lock");
    LinuxProcesses blocked({folder.path(), folder.bytes("config"), "", "", ""}, {});
    EXPECT_FALSE(blocked.previousInstance());
}

TEST_F(ProcessTest, theLockIsNotHandedToChildren) {
    LinuxProcesses processes({folder.path(), folder.bytes("config"), "", "", ""}, {});
    ASSERT_FALSE(processes.previousInstance());
    auto holder = std::make_unique<LinuxProcesses>(
        HomeFolders{folder.path(), folder.bytes("other"), "", "", ""}, nullptr);
    ASSERT_FALSE(holder->previousInstance());
    ChildProcess child({helper, "wait"}, environment());
    ASSERT_EQ(child.line(), "ready");
    holder.reset();
    LinuxProcesses next({folder.path(), folder.bytes("other"), "", "", ""}, {});
    EXPECT_FALSE(next.previousInstance());
}

// --- the process itself --------------------------------------------------------------------------

TEST_F(ProcessTest, endWritesWhatIsOwedAndRunsNothingElse) {
    ChildProcess child({helper, "end"}, environment());
    EXPECT_EQ(child.lines(), Lines{"flushed"});
    EXPECT_EQ(child.wait(), 7);
}

TEST_F(ProcessTest, knowsItsFolderAndStem) {
    const std::string folderName = std::filesystem::path(helper).parent_path();
    ChildProcess plain({helper, "name"}, environment());
    EXPECT_EQ(plain.lines(), (Lines{folderName, "linux_helper"}));

    for (const std::string name : {"zkPlayer [1.2.3].exe", "velmora.EXE", "曲.player"}) {
        std::filesystem::copy_file(helper, folder.bytes(name));
        ChildProcess copy({folder.bytes(name), "name"}, environment());
        EXPECT_EQ(copy.line(), std::filesystem::canonical(folder.path()).string());
        const std::string stem = copy.line();
        EXPECT_EQ(stem, name == "曲.player" ? name : name.substr(0, name.size() - 4));
    }
}

TEST(ProgramPath, losesOnlyAFinalExe) {
    EXPECT_EQ(stemOfProgram(u"/opt/velmora.exe"), u"velmora");
    EXPECT_EQ(stemOfProgram(u"/opt/velmora.exe.old"), u"velmora.exe.old");
    EXPECT_EQ(stemOfProgram(u"/opt/velmora-1.0"), u"velmora-1.0");
    EXPECT_EQ(stemOfProgram(u"/opt/velmora.bat"), u"velmora.bat");
    EXPECT_EQ(stemOfProgram(u"/opt/.exe"), u"");
}

TEST(ProgramPath, hasItsFolderWithoutASeparator) {
    EXPECT_EQ(folderOfProgram(u"/opt/velmora/velmora"), u"/opt/velmora");
    EXPECT_EQ(folderOfProgram(u"/velmora"), u"/");
    EXPECT_EQ(folderOfProgram(u""), u"");
}

TEST(Boot, isNeverSafeMode) { EXPECT_EQ(LinuxProcesses(HomeFolders{}, {}).cleanBoot(), 0); }

// --- the program's own version record ------------------------------------------------------------

TEST(OwnVersion, isReadFromTheProgramFile) {
    const fakes::FakeAnsi ansi;
    LinuxVersionRecords versions(ansi);
    const std::u16string path = pathFromBytes(helper);
    const std::uint32_t size = versions.GetFileVersionInfoSizeA(path);
    ASSERT_GT(size, 0U);
    const std::string record = versions.GetFileVersionInfoA(path, size);
    EXPECT_EQ(record.size(), size);
    const auto text = [&](const char16_t *name) {
        return versions.VerQueryValueA(record,
                                       std::u16string(u"\\StringFileInfo\\080404B0\\") + name);
    };
    EXPECT_EQ(versions.VerQueryValueA(record, u"\\VarFileInfo\\Translation"),
              std::string("\x04\x08\xB0\x04"));
    EXPECT_EQ(text(u"InternalName"), "zkPlayer");
    EXPECT_EQ(text(u"ProductName"), "Velmora");
    EXPECT_EQ(text(u"CompanyName"), "Norvane");
    const auto fixed = versions.VerQueryValueA(record, u"\\");
    ASSERT_TRUE(fixed);
    EXPECT_EQ(fixed->size(), 52U);
    const auto *words = reinterpret_cast<const unsigned char *>(fixed->data());
    EXPECT_EQ(words[10] | words[11] << 8, VELMORA_VERSION_MAJOR);
    EXPECT_EQ(words[8] | words[9] << 8, VELMORA_VERSION_MINOR);
}

TEST(OwnVersion, costsNextToNothingToRead) {
    const fakes::FakeAnsi ansi;
    LinuxVersionRecords versions(ansi);
    const std::u16string path = pathFromBytes(helper);
    versions.GetFileVersionInfoSizeA(path);
    const auto begin = steady_clock::now();
    constexpr int rounds = 100;
    for (int i = 0; i < rounds; ++i)
        versions.GetFileVersionInfoA(path, versions.GetFileVersionInfoSizeA(path));
    EXPECT_LT((steady_clock::now() - begin) / rounds, milliseconds(50)); // usually 0.1
}

} // namespace
} // namespace velmora::platform
