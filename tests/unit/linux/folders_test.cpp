#include "platform/backends/linux/linux_folders.h"

#include "platform/backends/linux/user_dirs.h"
#include "tests/unit/linux/temp_folder.h"
#include "tests/unit/linux/variables.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace velmora::platform {
namespace {

// --- the environment -----------------------------------------------------------------------------

const std::vector<std::string> names = {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME",
                                        "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"};

TEST(HomeFolders, lieBelowTheHomeUnlessTheEnvironmentTellsOthers) {
    {
        const Variables variables(names, {{"HOME", "/home/user"}});
        const HomeFolders folders = homeFolders();
        EXPECT_EQ(folders.home, "/home/user");
        EXPECT_EQ(folders.config, "/home/user/.config");
        EXPECT_EQ(folders.data, "/home/user/.local/share");
        EXPECT_EQ(folders.cache, "/home/user/.cache");
        EXPECT_EQ(folders.runtime, "");
        EXPECT_EQ(folders.registryFile(), "/home/user/.config/velmora/registry.sqlite");
    }
    const Variables variables(names, {{"HOME", "/home/user"},
                                      {"XDG_CONFIG_HOME", "/c/"},
                                      {"XDG_DATA_HOME", "/d"},
                                      {"XDG_CACHE_HOME", "/k"},
                                      {"XDG_RUNTIME_DIR", "/run/user/1000"}});
    const HomeFolders folders = homeFolders();
    EXPECT_EQ(folders.config, "/c");
    EXPECT_EQ(folders.data, "/d");
    EXPECT_EQ(folders.cache, "/k");
    EXPECT_EQ(folders.runtime, "/run/user/1000");
}

TEST(HomeFolders, passOverVariablesThatAreNoAbsolutePath) {
    const Variables variables(names, {{"HOME", "/home/user"},
                                      {"XDG_CONFIG_HOME", "relative"},
                                      {"XDG_DATA_HOME", ""},
                                      {"XDG_RUNTIME_DIR", "./run"}});
    const HomeFolders folders = homeFolders();
    EXPECT_EQ(folders.config, "/home/user/.config");
    EXPECT_EQ(folders.data, "/home/user/.local/share");
    EXPECT_EQ(folders.runtime, "");
}

TEST(HomeFolders, comeFromTheUserWithoutAHome) {
    const Variables variables(names, {});
    EXPECT_EQ(homeFolders().home.substr(0, 1), "/");
}

TEST(HomeFolders, leadNowhereWithoutAnyHome) {
    const HomeFolders none;
    EXPECT_EQ(none.programConfig(), "");
    EXPECT_EQ(none.registryFile(), "");
}

TEST(ConfigHome, isReadFromAProcessesEnvironment) {
    const auto of = [](std::string_view block) { return configHomeOf(block); };
    using namespace std::string_view_literals;
    EXPECT_EQ(of("A=1\0HOME=/h\0B=2\0"sv), "/h/.config");
    EXPECT_EQ(of("HOME=/h\0XDG_CONFIG_HOME=/c//\0"sv), "/c");
    EXPECT_EQ(of("XDG_CONFIG_HOME=rel\0HOME=/h"sv), "/h/.config");
    EXPECT_EQ(of("NOTHOME=/x\0HOME=/h\0"sv), "/h/.config");
    EXPECT_EQ(of(""sv), of("A=1"sv)); // the user's own
}

TEST(MakeFolders, makesParentsAndTakesWhatIsThere) {
    const TempFolder folder;
    EXPECT_TRUE(makeFolders(folder.bytes("a/b/c"), 0700));
    EXPECT_TRUE(makeFolders(folder.bytes("a/b/c"), 0700));
    EXPECT_TRUE(makeFolders(folder.bytes("a//d/"), 0700));
    EXPECT_EQ(folder.mode("a/b"), 0700U);
    folder.write("file", "");
    EXPECT_FALSE(makeFolders(folder.bytes("file"), 0700));
    EXPECT_FALSE(makeFolders(folder.bytes("file/below"), 0700));
    EXPECT_FALSE(makeFolders("", 0700));
}

// --- the desktop's names -------------------------------------------------------------------------

TEST(UserDirs, takeAFolderBelowTheHomeOrAnAbsoluteOne) {
    const std::string text = "# comment\n"
                             "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                             "XDG_DOCUMENTS_DIR=\"/data/Documents\"\n"
                             "XDG_MUSIC_DIR=\"$HOME/\"\n";
    EXPECT_EQ(userDir(text, "DESKTOP", "/home/u"), "/home/u/Schreibtisch");
    EXPECT_EQ(userDir(text, "DOCUMENTS", "/home/u"), "/data/Documents");
    EXPECT_EQ(userDir(text, "MUSIC", "/home/u"), "/home/u");
    EXPECT_EQ(userDir(text, "VIDEOS", "/home/u"), std::nullopt);
}

TEST(UserDirs, letTheLastLineCountAndTakeBlanksAndEscapes) {
    EXPECT_EQ(userDir("XDG_A_DIR=\"/one\"\n  XDG_A_DIR = \"/two\" \r\n", "A", ""), "/two");
    EXPECT_EQ(userDir(R"(XDG_A_DIR="/with \"quotes\" and \\")", "A", ""),
              "/with \"quotes\" and \\");
    EXPECT_EQ(userDir("XDG_A_DIR=\"/中文 文档\"", "A", ""), "/中文 文档");
}

TEST(UserDirs, passOverLinesThatTellNothing) {
    for (const char *text :
         {"", "XDG_A_DIR", "XDG_A_DIR=", "XDG_A_DIR=/bare", "XDG_A_DIR=\"relative\"",
          "XDG_A_DIR=\"/open", "XDG_A_DIR=\"$HOMEx/y\"", "#XDG_A_DIR=\"/x\"", "XDG_AB_DIR=\"/x\"",
          "XDG_A_DIR=\"$OTHER/x\"", "XDG_A_DIR=\"\""})
        EXPECT_EQ(userDir(text, "A", "/h"), std::nullopt) << text;
}

// --- special folders -----------------------------------------------------------------------------

struct FolderTest : testing::Test {
    TempFolder folder;
    HomeFolders homes{folder.path(), folder.bytes("config"), folder.bytes("data"),
                      folder.bytes("cache"), folder.bytes("run")};
    LinuxFolders folders{homes};
};

TEST_F(FolderTest, documentsAreWhereTheDesktopSays) {
    EXPECT_EQ(folders.SHGetSpecialFolder(5), folder.text("Documents"));
    folder.makeFolder("config");
    folder.write("config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/我的文档\"\n");
    EXPECT_EQ(folders.SHGetSpecialFolder(5), folder.text("我的文档"));
    EXPECT_EQ(folders.SHGetSpecialFolder(0), folder.text("Desktop"));
}

TEST_F(FolderTest, documentsHaveADefaultWhateverLiesThere) {
    folder.makeFolder("config");
    folder.pipe("config/user-dirs.dirs");
    EXPECT_EQ(folders.SHGetSpecialFolder(5), folder.text("Documents"));
}

TEST_F(FolderTest, numbersWithoutAFolderHereAreAbsent) {
    for (const int number : {-1, 1, 3, 6, 8, 9, 19, 27, 33, 34, 36, 37, 38, 51, 1000})
        EXPECT_EQ(folders.SHGetSpecialFolder(number), std::nullopt) << number;
}

TEST_F(FolderTest, otherNumbersLeadWhereTheSystemKeepsSuchThings) {
    EXPECT_EQ(folders.SHGetSpecialFolder(26), folder.text("config"));
    EXPECT_EQ(folders.SHGetSpecialFolder(32), folder.text("cache"));
    EXPECT_EQ(folders.SHGetSpecialFolder(7), folder.text("config/autostart"));
    EXPECT_EQ(folders.SHGetSpecialFolder(20), folder.text("data/fonts"));
    EXPECT_EQ(folders.SHGetSpecialFolder(2), folder.text("data/applications"));
    EXPECT_EQ(folders.SHGetSpecialFolder(23), u"/usr/share/applications");
    EXPECT_EQ(folders.GetWindowsDirectoryA(), u"/usr");
}

TEST_F(FolderTest, theSystemFolderLiesBelowItsRoot) {
    const std::u16string system = folders.GetSystemDirectoryA();
    const std::u16string root = folders.rootPart(system);
    EXPECT_EQ(root, folder.text("data/velmora/"));
    EXPECT_EQ(system.substr(0, root.size()), root);
    EXPECT_EQ(folders.rootPart(u"C:\\WINDOWS\\system32"), u"C:\\");
    EXPECT_EQ(folders.rootPart(u"D:"), u"D:");
    EXPECT_EQ(folders.rootPart(u"\\\\server\\share"), root);
    EXPECT_EQ(folders.rootPart(u""), root);
}

TEST_F(FolderTest, aTypedFolderMayBeginAtTheHome) {
    EXPECT_EQ(folders.typedFolder(u"~/歌 词"), folder.text("歌 词"));
    EXPECT_EQ(folders.typedFolder(u"/songs"), u"/songs");
    EXPECT_EQ(LinuxFolders(HomeFolders{}).typedFolder(u"~/songs"), u"~/songs");
}

// --- the temporary folder ------------------------------------------------------------------------

TEST_F(FolderTest, temporaryFilesLieInTheRuntimeFolder) {
    folder.makeFolder("run");
    EXPECT_EQ(folders.GetTempPathA(), folder.text("run/velmora/"));
    EXPECT_EQ(folder.mode("run/velmora"), 0700U);
    EXPECT_EQ(folders.GetTempPathA(), folder.text("run/velmora/"));
}

TEST_F(FolderTest, temporaryFilesLieInTheCacheWithoutARuntimeFolder) {
    EXPECT_EQ(folders.GetTempPathA(), folder.text("cache/velmora/"));
    EXPECT_EQ(folder.mode("cache/velmora"), 0700U);
    EXPECT_FALSE(folder.exists("run"));
}

TEST_F(FolderTest, theTemporaryFolderIsClosedToOthers) {
    folder.makeFolder("run/velmora");
    folder.mode("run/velmora", 0777);
    EXPECT_EQ(folders.GetTempPathA(), folder.text("run/velmora/"));
    EXPECT_EQ(folder.mode("run/velmora"), 0700U);
}

TEST_F(FolderTest, theTemporaryFolderIsNoLink) {
    folder.makeFolder("run");
    folder.makeFolder("elsewhere");
    folder.link("run/velmora", folder.bytes("elsewhere"));
    EXPECT_EQ(folders.GetTempPathA(), folder.text("cache/velmora/"));
}

TEST_F(FolderTest, theTemporaryFolderBelongsToNobodyElse) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can give a folder away";
    folder.makeFolder("run/velmora");
    ASSERT_EQ(::chown(folder.bytes("run/velmora").c_str(), 65534, 65534), 0);
    EXPECT_EQ(folders.GetTempPathA(), folder.text("cache/velmora/"));
    ASSERT_EQ(::chown(folder.bytes("cache/velmora").c_str(), 65534, 65534), 0);
    EXPECT_EQ(folders.GetTempPathA(), u"/");
}

TEST_F(FolderTest, theTemporaryFolderStaysWhereItWasFound) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can give a folder away";
    folder.makeFolder("run");
    EXPECT_EQ(folders.GetTempPathA(), folder.text("run/velmora/"));
    // Now none would be found there any more.
    ASSERT_EQ(::chown(folder.bytes("run").c_str(), 65534, 65534), 0);
    EXPECT_EQ(folders.GetTempPathA(), folder.text("run/velmora/"));
    EXPECT_FALSE(folder.exists("cache"));
    std::filesystem::remove(folder.bytes("run/velmora"));
    EXPECT_EQ(folders.GetTempPathA(), folder.text("cache/velmora/"));
}

TEST_F(FolderTest, withoutAnyPlaceTheTemporaryFolderIsTheRoot) {
    folder.write("cache", "");
    EXPECT_EQ(folders.GetTempPathA(), u"/");
}

} // namespace
} // namespace velmora::platform
