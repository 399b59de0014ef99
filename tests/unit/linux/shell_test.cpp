#include "platform/backends/linux/linux_shell.h"

#include "platform/backends/linux/start_program.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <sstream>
#include <thread>

namespace velmora::platform {
namespace {

// Waits until something is so, ten seconds at most.
bool soon(const std::function<bool()> &condition) {
    for (int i = 0; i < 2000; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

struct ShellTest : testing::Test {
    TempFolder folder;
    std::string own = folder.bytes("app/velmora");
    LinuxShell shell{own};
    std::string pathBefore = std::getenv("PATH");

    void SetUp() override {
        folder.makeFolder("app");
        folder.makeFolder("bin");
        ::setenv("PATH", (folder.bytes("bin") + ":/usr/bin:/bin").c_str(), 1);
        script("bin/xdg-open", "opened");
        script("bin/gio", "gio");
    }
    void TearDown() override { ::setenv("PATH", pathBefore.c_str(), 1); }

    // A program that writes its arguments, one a line, into a file.
    void script(const std::string &name, const std::string &output, unsigned mode = 0755) const {
        folder.write(name, "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + folder.bytes(output) +
                               ".part' && /bin/mv '" + folder.bytes(output) + ".part' '" +
                               folder.bytes(output) + "'\n");
        folder.mode(name, mode);
    }
    // What the script was started with.
    std::string arguments(const std::string &output) const {
        EXPECT_TRUE(soon([&] { return folder.exists(output); })) << output << " never ran";
        return folder.read(output);
    }
    std::int32_t open(const std::u16string &target) {
        return shell.ShellExecuteA(0, u"open", target, 1);
    }
};

// --- what is handed to the desktop ---------------------------------------------------------------

TEST_F(ShellTest, handsAFileToTheDesktopAsItIs) {
    const std::string name = "a \"b\" $(touch x) `y` ;曲\xFF.log";
    folder.write(name, "");
    EXPECT_GT(open(folder.text(name)), 32);
    EXPECT_EQ(arguments("opened"), folder.bytes(name) + "\n");
    EXPECT_FALSE(folder.exists("x"));
}

TEST_F(ShellTest, handsAFolderToTheDesktop) {
    EXPECT_GT(open(folder.text("app") + u"/"), 32);
    EXPECT_EQ(arguments("opened"), folder.bytes("app") + "/\n");
}

TEST_F(ShellTest, handsAddressesToTheDesktopWithBlanksAsPercentTwenty) {
    EXPECT_GT(open(u"http://host/a b?c=d e"), 32);
    EXPECT_EQ(arguments("opened"), "http://host/a%20b?c=d%20e\n");
}

TEST_F(ShellTest, handsMailAddressesToTheDesktop) {
    EXPECT_GT(shell.ShellExecuteA(0, u"", u"mailto:someone@example.org", 1), 32);
    EXPECT_EQ(arguments("opened"), "mailto:someone@example.org\n");
}

TEST_F(ShellTest, aRelativeNameIsNeverAnOption) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    folder.write("--help", "");
    EXPECT_GT(open(u"--help"), 32);
    std::filesystem::current_path(before);
    EXPECT_EQ(arguments("opened"), "./--help\n");
}

TEST_F(ShellTest, refusesOtherSchemesAndWhatIsNotThere) {
    folder.pipe("pipe");
    for (const std::u16string &target :
         {std::u16string(u"file:///etc/passwd"), std::u16string(u"ftp://host/x"),
          std::u16string(u"javascript:alert(1)"), std::u16string(u""), std::u16string(u"0"),
          folder.text("missing"), folder.text("pipe"), std::u16string(u"C:\\Windows\\notepad.exe"),
          std::u16string(u"http://a\0b", 10)})
        EXPECT_LE(open(target), 32);
    EXPECT_FALSE(folder.exists("opened"));
}

TEST_F(ShellTest, neverExecutesAFileThatIsNotItsOwn) {
    script("other", "ran");
    EXPECT_GT(open(folder.text("other")), 32);
    EXPECT_EQ(arguments("opened"), folder.bytes("other") + "\n");
    EXPECT_FALSE(folder.exists("ran"));
}

TEST_F(ShellTest, asksTheOtherOpenerWhereTheFirstIsMissing) {
    std::filesystem::remove(folder.bytes("bin/xdg-open"));
    ::setenv("PATH", folder.bytes("bin").c_str(), 1);
    EXPECT_GT(open(u"https://host/"), 32);
    EXPECT_EQ(arguments("gio"), "open\nhttps://host/\n");
    std::filesystem::remove(folder.bytes("bin/gio"));
    EXPECT_LE(open(u"https://host/"), 32);
}

// --- the program itself --------------------------------------------------------------------------

TEST_F(ShellTest, executesItsOwnRestartByAnyOfItsNames) {
    for (const std::string name : {"velmora", "velmora.exe", "velmora.bat"}) {
        script("app/" + name, "ran-" + name);
        EXPECT_GT(open(folder.text("app/" + name)), 32) << name;
        EXPECT_EQ(arguments("ran-" + name), "\n");
    }
    EXPECT_FALSE(folder.exists("opened"));
}

TEST_F(ShellTest, givesADownloadedSuccessorItsExecuteBit) {
    script("app/zkPlayer [1.2.3].exe", "ran", 0644);
    EXPECT_GT(open(folder.text("app/zkPlayer [1.2.3].exe")), 32);
    EXPECT_EQ(arguments("ran"), "\n");
    EXPECT_EQ(folder.mode("app/zkPlayer [1.2.3].exe"), 0755U);
}

TEST_F(ShellTest, givesNoOtherFileAnExecuteBit) {
    script("app/velmora", "ran", 0644);
    EXPECT_LE(open(folder.text("app/velmora")), 32);
    script("zkPlayer [1].exe", "ran", 0644);
    EXPECT_GT(open(folder.text("zkPlayer [1].exe")), 32); // elsewhere: a file for the desktop
    EXPECT_EQ(arguments("opened"), folder.bytes("zkPlayer [1].exe") + "\n");
    EXPECT_EQ(folder.mode("zkPlayer [1].exe"), 0644U);
    EXPECT_FALSE(folder.exists("ran"));
}

TEST_F(ShellTest, failsWhereTheSuccessorIsMissingOrNoProgram) {
    EXPECT_LE(open(folder.text("app/zkPlayer [9].exe")), 32);
    folder.makeFolder("app/zkPlayer [8].exe");
    EXPECT_LE(open(folder.text("app/zkPlayer [8].exe")), 32);
    EXPECT_LE(open(folder.text("app/velmora.exe")), 32);
}

TEST(ShellTarget, isToldByItsText) {
    const std::string own = "/opt/v/velmora.exe";
    const std::pair<const char16_t *, TargetKind> rows[] = {
        {u"http://x", TargetKind::Address},
        {u"HTTPS://x", TargetKind::Address},
        {u"MailTo:a@b", TargetKind::Address},
        {u"/opt/v/velmora.exe", TargetKind::Restart},
        {u"/opt/v/velmora", TargetKind::Restart},
        {u"/opt/v/velmora.bat", TargetKind::Restart},
        {u"/opt/v/velmora.sh", TargetKind::Local},
        {u"/opt/velmora", TargetKind::Local},
        {u"/opt/v/zkPlayer [2.0.0].exe", TargetKind::Successor},
        {u"/opt/v/zkPlayer [].exe", TargetKind::Local},
        {u"/opt/v/zkPlayer [2].exe.sh", TargetKind::Local},
        {u"/opt/v/sub/zkPlayer [2].exe", TargetKind::Local},
        {u"/opt/v/zkPlayer [../x].exe", TargetKind::Local},
        {u"file:/x", TargetKind::Refused},
        {u"about:blank", TargetKind::Refused},
        {u"C:\\x", TargetKind::Local},
        {u"/music/a:b.mp3", TargetKind::Local},
        {u"1", TargetKind::Local},
    };
    for (const auto &[target, kind] : rows)
        EXPECT_EQ(targetKind(target, own), kind) << pathBytes(target);
}

// --- starting programs ---------------------------------------------------------------------------

TEST_F(ShellTest, startedProgramsLeaveNoZombie) {
    ASSERT_EQ(startProgram({"true"}), 0);
    // A waiter of its own takes its end: sooner or later no child is left.
    EXPECT_TRUE(soon([] {
        ::siginfo_t info{};
        return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
    }));
}

TEST_F(ShellTest, startedProgramsHaveASessionAndDefaultSignalsOfTheirOwn) {
    folder.write("bin/show", "#!/bin/sh\ncut -d' ' -f6 /proc/$$/stat > '" + folder.bytes("s.part") +
                                 "'; echo $$ >> '" + folder.bytes("s.part") + "'; mv '" +
                                 folder.bytes("s.part") + "' '" + folder.bytes("session") + "'\n");
    folder.mode("bin/show", 0755);
    ASSERT_EQ(startProgram({"show"}), 0);
    std::istringstream text(arguments("session"));
    long session = 0;
    long process = 0;
    text >> session >> process;
    EXPECT_NE(session, 0);
    EXPECT_EQ(session, process);
}

TEST(StartProgram, tellsWhyItFailed) {
    EXPECT_EQ(startProgram({"velmora-no-such-program"}), ENOENT);
    EXPECT_EQ(startProgram({"/"}), EACCES);
}

// --- the two commands ----------------------------------------------------------------------------

TEST_F(ShellTest, deletesOneRegularFile) {
    folder.write("a b.tmp", "");
    folder.write("*", "");
    shell.Shell_(u"cmd /c del \"" + folder.text("*") + u"\"");
    EXPECT_FALSE(folder.exists("*"));
    EXPECT_TRUE(folder.exists("a b.tmp"));
    shell.Shell_(u"cmd /c del \"" + folder.text("a b.tmp") + u"\"");
    EXPECT_FALSE(folder.exists("a b.tmp"));
    shell.Shell_(u"cmd /c del \"" + folder.text("missing") + u"\"");
}

TEST_F(ShellTest, deletesNothingElse) {
    folder.makeFolder("sub");
    folder.pipe("pipe");
    folder.write("target", "");
    folder.link("link", "target");
    for (const char *name : {"sub", "pipe", "link", ""})
        shell.Shell_(u"cmd /c del \"" + folder.text(name) + u"\"");
    EXPECT_EQ(folder.names(),
              (std::vector<std::string>{"app", "bin", "link", "pipe", "sub", "target"}));
}

TEST_F(ShellTest, takesQuotesInAPathForPartOfIt) {
    folder.write("a\" & echo \"b", "");
    shell.Shell_(u"cmd /c del \"" + folder.text("a\" & echo \"b") + u"\"");
    EXPECT_FALSE(folder.exists("a\" & echo \"b"));
}

TEST_F(ShellTest, makesAFolderWithItsParents) {
    shell.Shell_(u"cmd /c md \"" + folder.text("Program Files/Norvane软件/Velmora") + u"\"");
    EXPECT_TRUE(std::filesystem::is_directory(folder.bytes("Program Files/Norvane软件/Velmora")));
    shell.Shell_(u"cmd /c md \"" + folder.text("Program Files/Norvane软件/Velmora") + u"\"");
    folder.write("file", "");
    shell.Shell_(u"cmd /c md \"" + folder.text("file/below") + u"\"");
    EXPECT_TRUE(std::filesystem::is_regular_file(folder.bytes("file")));
}

TEST_F(ShellTest, makesNothingInTheRootOrOfAnEmptyName) {
    for (const char16_t *path :
         {u"/velmora-test/x", u"/velmora-test", u"//velmora-test/x", u"/", u"", u"///"})
        shell.Shell_(u"cmd /c md \"" + std::u16string(path) + u"\"");
    EXPECT_FALSE(std::filesystem::exists("/velmora-test"));
}

TEST_F(ShellTest, knowsNoOtherCommand) {
    folder.write("f", "");
    for (const std::u16string &before :
         {std::u16string(u"del "), std::u16string(u"cmd /c rd "), std::u16string(u"cmd /c del"),
          std::u16string(u"cmd /c erase "), std::u16string(u"x cmd /c del ")})
        shell.Shell_(before + u"\"" + folder.text("f") + u"\"");
    shell.Shell_(u"cmd /c del " + folder.text("f")); // no quotes
    shell.Shell_(u"cmd /c del \"" + folder.text("f") + u"\" x");
    shell.Shell_(u"cmd /c del \"");
    shell.Shell_(u"");
    EXPECT_TRUE(folder.exists("f"));
}

} // namespace
} // namespace velmora::platform
