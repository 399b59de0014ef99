// The commands of the settings tool, over real registry files.

#include "registry_tool/commands.h"

#include "tests/unit/registry/sqlite_file.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace velmora::registry_tool {
namespace {

using platform::SqliteRegistry;
using testing::HasSubstr;
using testing::IsEmpty;

struct RegistryTool : platform::SqliteFile {
    std::ostringstream out;
    std::ostringstream err;

    int does(std::vector<std::string> words) {
        Job job;
        job.file = file;
        job.words = std::move(words);
        return runs(job);
    }
    int runs(const Job &job) {
        out.str("");
        err.str("");
        return run(job, out, err);
    }
    int hosts(const std::string &at, bool none = false) {
        Job job;
        job.file = file;
        job.words = {"hosts"};
        job.at = at;
        job.none = none;
        return runs(job);
    }
    int setNumber(const std::string &place, const std::string &text) {
        Job job;
        job.file = file;
        job.words = {"set", place, text};
        job.number = true;
        return runs(job);
    }
    // As the player reads it.
    std::optional<std::u16string> read(std::u16string_view subKey, std::u16string_view name) {
        SqliteRegistry registry(file, ansi);
        return registry.GetObject(u"StdRegProv")
            ->GetStringValue(platform::HKEY_LOCAL_MACHINE, subKey, name);
    }
};

constexpr char16_t playersKey[] = u"SOFTWARE\\Norvane\\zkPlayer";
constexpr char16_t hostsKey[] = u"SOFTWARE\\Norvane\\zkPlayer\\hosts";

// --- set and get ---------------------------------------------------------------------------------

TEST_F(RegistryTool, SetsATextThatThePlayerReads) {
    EXPECT_EQ(does({"set", "hosts/maker", "http://box:8420"}), done) << err.str();
    EXPECT_EQ(read(hostsKey, u"maker"), u"http://box:8420");
    EXPECT_EQ(does({"get", "hosts/maker"}), done);
    EXPECT_EQ(out.str(), "http://box:8420\n");
    EXPECT_THAT(err.str(), IsEmpty());
}

TEST_F(RegistryTool, FindsANameInAnyCaseAndWithEitherStroke) {
    does({"set", "hosts/maker", "x"});
    EXPECT_EQ(does({"get", "HOSTS\\Maker"}), done);
    EXPECT_EQ(does({"get", "software/norvane/ZKPLAYER/hosts/maker"}), done);
    EXPECT_EQ(out.str(), "x\n");
}

TEST_F(RegistryTool, SetsTheCodePageThatLiesInAKeyOfTheSystem) {
    EXPECT_EQ(does({"set", "SYSTEM/CurrentControlSet/Control/Nls/CodePage/ACP", "1252"}), done);
    EXPECT_EQ(read(u"SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage", u"ACP"), u"1252");
}

TEST_F(RegistryTool, SetsAValueOfThePlayersOwnKey) {
    EXPECT_EQ(does({"set", "here", "1"}), done);
    EXPECT_EQ(read(playersKey, u"here"), u"1");
}

TEST_F(RegistryTool, KeepsEveryCharacterAndCountsItsBytesAsThePlayerDoes) {
    does({"set", "playSet/name", "微软雅黑"});
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(stored(registry, u"name"),
              (SqliteRegistry::Value{platform::REG_SZ, 12, u"微软雅黑", 0}));
}

TEST_F(RegistryTool, KeepsANumberANumber) {
    EXPECT_EQ(setNumber("playSet/Language", "2"), done);
    EXPECT_EQ(does({"set", "playSet/Language", "3"}), done);
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(stored(registry, u"Language"),
              (SqliteRegistry::Value{platform::REG_DWORD, 4, u"", 3}));
    EXPECT_EQ(does({"get", "playSet/Language"}), done);
    EXPECT_EQ(out.str(), "3\n");
}

TEST_F(RegistryTool, RefusesATextForANumberAndLeavesItAsItWas) {
    setNumber("playSet/Language", "2");
    for (const char *text : {"two", "", "-1", "4294967296", "2x", " 2"}) {
        EXPECT_EQ(does({"set", "playSet/Language", text}), misused) << text;
        EXPECT_THAT(err.str(), HasSubstr("is a whole number"));
    }
    SqliteRegistry registry(file, ansi);
    EXPECT_EQ(stored(registry, u"Language").number, 2U);
}

TEST_F(RegistryTool, SaysWhatIsNotThere) {
    EXPECT_EQ(does({"get", "hosts/maker"}), failed);
    EXPECT_THAT(err.str(), HasSubstr("there is no file " + file));
    EXPECT_FALSE(std::filesystem::exists(file)) << "a look has made a file";
    does({"set", "hosts/maker", "x"});
    EXPECT_EQ(does({"get", "hosts/other"}), failed);
    EXPECT_THAT(err.str(), HasSubstr("there is no SOFTWARE\\Norvane\\zkPlayer\\hosts\\other"));
    EXPECT_THAT(out.str(), IsEmpty());
}

// --- list ----------------------------------------------------------------------------------------

TEST_F(RegistryTool, ListsAKeyWithAllBelowInOrder) {
    does({"set", "playSet/b", "two"});
    does({"set", "playSet/A", "one \"1\"\n"});
    setNumber("playSet/c", "3");
    does({"set", "other/x", "y"});
    EXPECT_EQ(does({"list", "playset"}), done);
    EXPECT_EQ(out.str(), "SOFTWARE\\Norvane\\zkPlayer\\playSet\\A = \"one \\\"1\\\"\\n\"\n"
                         "SOFTWARE\\Norvane\\zkPlayer\\playSet\\b = \"two\"\n"
                         "SOFTWARE\\Norvane\\zkPlayer\\playSet\\c = 3\n");
    does({"list"});
    EXPECT_THAT(out.str(), HasSubstr("other\\x = \"y\""));
    EXPECT_THAT(out.str(), HasSubstr("playSet\\b = \"two\""));
}

TEST_F(RegistryTool, ListsNoKeyWhoseNameOnlyBeginsAlike) {
    does({"set", "play/x", "1"});
    does({"set", "play/deep/x", "2"});
    does({"set", "playSet/x", "3"});
    EXPECT_EQ(does({"list", "play"}), done);
    EXPECT_THAT(out.str(), HasSubstr("play\\deep\\x"));
    EXPECT_THAT(out.str(), testing::Not(HasSubstr("playSet")));
}

TEST_F(RegistryTool, ShowsNoControlCharacterToTheTerminal) {
    does({"set", "x", "a\x1b[2Jb\x7f"});
    does({"list"});
    EXPECT_THAT(out.str(), HasSubstr("\"a\\x1b[2Jb\\x7f\""));
}

TEST_F(RegistryTool, SaysThatAKeyIsNotThere) {
    does({"set", "x", "1"});
    EXPECT_EQ(does({"list", "nothing"}), failed);
    EXPECT_THAT(err.str(), HasSubstr("there is no key"));
}

// --- delete --------------------------------------------------------------------------------------

TEST_F(RegistryTool, DeletesOneValueAlone) {
    does({"set", "hosts/maker", "x"});
    does({"set", "hosts/lrcSearch", "y"});
    EXPECT_EQ(does({"delete", "hosts/MAKER"}), done);
    EXPECT_EQ(read(hostsKey, u"maker"), std::nullopt);
    EXPECT_EQ(read(hostsKey, u"lrcSearch"), u"y");
    EXPECT_EQ(does({"delete", "hosts/maker"}), failed);
    EXPECT_THAT(err.str(), HasSubstr("there is no"));
}

TEST_F(RegistryTool, DeletesAKeyWithItsValuesButNotOneThatHasKeysBelow) {
    does({"set", "a/x", "1"});
    does({"set", "a/b/x", "2"});
    EXPECT_EQ(does({"delete", "a/"}), failed);
    EXPECT_THAT(err.str(), HasSubstr("there are keys below it"));
    EXPECT_EQ(does({"get", "a/x"}), done);
    EXPECT_EQ(does({"delete", "a/b/"}), done);
    EXPECT_EQ(does({"delete", "a/"}), done);
    EXPECT_EQ(does({"get", "a/x"}), failed);
}

// --- hosts ---------------------------------------------------------------------------------------

TEST_F(RegistryTool, NamesOneServerForEverything) {
    EXPECT_EQ(hosts("http://that-machine:8420"), done) << err.str();
    for (const char16_t *name : {u"lrcSearch", u"lrcSiteA", u"lrcSiteB", u"songSearch", u"maker"})
        EXPECT_EQ(read(hostsKey, name), u"http://that-machine:8420");
    EXPECT_EQ(hosts(""), done);
    EXPECT_THAT(out.str(), HasSubstr("songSearch = \"http://that-machine:8420\"\n"));
    EXPECT_EQ(hosts("", true), done);
    EXPECT_EQ(read(hostsKey, u"maker"), std::nullopt);
    EXPECT_EQ(hosts("", true), done) << "none is none";
    hosts("");
    EXPECT_THAT(out.str(), HasSubstr("maker = none"));
}

TEST_F(RegistryTool, TakesOnlyAnAddressThatAServerCanHave) {
    for (const char *text : {"that-machine", "http://", "https://x", "http://x/", "http://x y",
                             "http://x\n", "ftp://x"}) {
        EXPECT_EQ(hosts(text), misused) << text;
        EXPECT_FALSE(std::filesystem::exists(file));
    }
    EXPECT_EQ(hosts("http://[::1]:8420"), done);
    EXPECT_EQ(hosts("http://x", true), misused);
}

TEST_F(RegistryTool, IntroducesAServerToAPlayerThatNeverRan) {
    EXPECT_TRUE(nameServer("http://127.0.0.1:8420", file, err));
    EXPECT_EQ(read(hostsKey, u"maker"), u"http://127.0.0.1:8420");
    EXPECT_FALSE(nameServer("http://127.0.0.1:8420", "/proc/none/registry.sqlite", err));
    EXPECT_THAT(err.str(), HasSubstr("/proc/none/registry.sqlite"));
}

// --- beside the player ---------------------------------------------------------------------------

TEST_F(RegistryTool, SetsWhileThePlayerHasTheFileAndBothKeepWhatTheOtherWrote) {
    SqliteRegistry player(file, ansi);
    ASSERT_EQ(set(player, u"PlayMode", u"1"), platform::ERROR_SUCCESS);
    EXPECT_EQ(does({"set", "playSet/other", "2"}), done) << err.str();
    EXPECT_EQ(get(player, u"other"), u"2") << "the player that runs reads what was set";
    ASSERT_EQ(set(player, u"PlayMode", u"3"), platform::ERROR_SUCCESS);
    EXPECT_EQ(does({"get", "playSet/PlayMode"}), done);
    EXPECT_EQ(out.str(), "3\n");
}

TEST_F(RegistryTool, SaysThatAnotherProgramHasTheFileAndChangesNothing) {
    does({"set", "x", "1"});
    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE;", nullptr,
                           nullptr, nullptr),
              SQLITE_OK);
    EXPECT_EQ(does({"set", "x", "2"}), failed);
    EXPECT_THAT(err.str(), HasSubstr("another program has it locked"));
    EXPECT_EQ(does({"get", "x"}), failed) << "a lock is not taken for an entry that is missing";
    EXPECT_THAT(err.str(), HasSubstr("another program has it locked"));
    sqlite3_close(other);
    EXPECT_EQ(does({"get", "x"}), done);
    EXPECT_EQ(out.str(), "1\n");
}

// --- its description -----------------------------------------------------------------------------

// The commands that the description of the file gives, each as its words.
std::vector<std::vector<std::string>> describedCommands() {
    std::ifstream text(VELMORA_DOCS "/registry.md");
    std::vector<std::vector<std::string>> found;
    for (std::string line; std::getline(text, line);) {
        std::istringstream words(line);
        std::string word;
        if (!(words >> word) || word != "velmora-registry")
            continue;
        found.emplace_back();
        while (words >> word)
            found.back().push_back(word);
    }
    return found;
}

TEST_F(RegistryTool, DoesWhatTheDescriptionOfTheFileSays) {
    { SqliteRegistry(file, ansi).RegDeleteKeyA(platform::HKEY_LOCAL_MACHINE, platform::key); }
    ASSERT_EQ(does({"set", "begun", "1"}), done);
    const auto commands = describedCommands();
    ASSERT_EQ(commands.size(), 7U);
    for (const auto &words : commands) {
        const bool names = words.size() == 3 && words[1] == "--at";
        EXPECT_EQ(names ? hosts(words[2]) : does(words), done) << words[0] << ": " << err.str();
    }
    EXPECT_EQ(read(hostsKey, u"lrcSearch"), u"http://that-machine:8420");
    EXPECT_EQ(read(hostsKey, u"maker"), std::nullopt);
    EXPECT_EQ(read(hostsKey, u"makerPin").value_or(u"").size(), 8U + 44U);
    EXPECT_EQ(read(u"SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage", u"ACP"), u"1252");
}

// --- misuse --------------------------------------------------------------------------------------

TEST_F(RegistryTool, RefusesWordsThatMakeNoCommandAndTouchesNothing) {
    const std::vector<std::vector<std::string>> jobs = {{},
                                                        {"none"},
                                                        {"get"},
                                                        {"get", "a", "b"},
                                                        {"get", "a/"},
                                                        {"set", "a"},
                                                        {"set", ""},
                                                        {"set", "a/", "b"},
                                                        {"list", "a", "b"},
                                                        {"delete"},
                                                        {"delete", ""},
                                                        {"hosts", "x"},
                                                        {"set", "a", "b", "c"}};
    for (const auto &words : jobs) {
        EXPECT_EQ(does(words), misused);
        EXPECT_THAT(err.str(), HasSubstr("velmora-registry: "));
        EXPECT_FALSE(std::filesystem::exists(file));
    }
    Job job;
    job.file = file;
    job.words = {"get", "x"};
    job.number = true;
    EXPECT_EQ(runs(job), misused);
    job.number = false;
    job.at = "http://x";
    EXPECT_EQ(runs(job), misused);
}

} // namespace
} // namespace velmora::registry_tool
