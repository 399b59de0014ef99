#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/backends/linux/linux.h"
#include "text/ini_profiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace velmora::platform {

namespace {

namespace fs = std::filesystem;

class ProfilesTest : public ::testing::Test {
protected:
    ProfilesTest() {
        std::string pattern = (fs::temp_directory_path() / "velmora-ini-XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data());
    }
    ~ProfilesTest() override { fs::remove_all(folder_); }

    std::string path() const { return (folder_ / "file.ini").string(); }
    void have(const std::string &bytes) { std::ofstream(path(), std::ios::binary) << bytes; }
    std::string bytes() const {
        std::ifstream file(path(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::u16string value(std::u16string_view section, std::u16string_view key,
                         std::size_t size = 1000) {
        return profiles_->GetPrivateProfileStringA(section, key, u"(none)", size, fromUtf8(path()));
    }
    bool write(std::u16string_view section, std::u16string_view key,
               std::optional<std::u16string_view> text) {
        return profiles_->WritePrivateProfileStringA(section, key, text, fromUtf8(path()));
    }

    fs::path folder_;
    std::unique_ptr<AnsiText> ansi_ = makeAnsiText([] { return std::u16string(); });
    std::unique_ptr<FileSystem> files_ = makeFileSystem(*ansi_);
    std::unique_ptr<Profiles> profiles_ = makeProfiles(*files_, *ansi_);
};

TEST_F(ProfilesTest, ReadAValueWithoutRegardToTheCaseOfItsNames) {
    have("[Check]\r\nVesion=3.0.1\r\n");
    EXPECT_EQ(value(u"check", u"vesion"), u"3.0.1");
    EXPECT_EQ(value(u"CHECK", u"VESION"), u"3.0.1");
}

TEST_F(ProfilesTest, TakeTheFirstSectionAndTheFirstKeyOfAName) {
    have("[a]\r\nk=1\r\nK=2\r\n[b]\r\nk=3\r\n[A]\r\nk=4\r\nonly=5\r\n");
    EXPECT_EQ(value(u"a", u"k"), u"1");
    EXPECT_EQ(value(u"b", u"k"), u"3");
    EXPECT_EQ(value(u"a", u"only"), u"(none)");
}

TEST_F(ProfilesTest, TrimValuesOfBlanksAndTabsAndTakeOnePairOfQuotesOff) {
    have("[a]\n k = \t x y \t\nd=\"'q'\"\ns=' q '\nodd=\"q'\none=\"\nempty=\"\"\n");
    EXPECT_EQ(value(u"a", u"k"), u"x y");
    EXPECT_EQ(value(u"a", u"d"), u"'q'");
    EXPECT_EQ(value(u"a", u"s"), u" q ");
    EXPECT_EQ(value(u"a", u"odd"), u"\"q'");
    EXPECT_EQ(value(u"a", u"one"), u"\"");
    EXPECT_EQ(value(u"a", u"empty"), u"");
}

TEST_F(ProfilesTest, TakeASemicolonForACommentOnlyAtALinesStart) {
    have("[a]\r\n;k=1\r\nk=2;3\r\n");
    EXPECT_EQ(value(u"a", u"k"), u"2;3");
    EXPECT_EQ(value(u"a", u";k"), u"(none)");
}

TEST_F(ProfilesTest, KeepFurtherEqualsSigns) {
    have("[a]\r\nk=http://x/?a=b\r\n");
    EXPECT_EQ(value(u"a", u"k"), u"http://x/?a=b");
}

TEST_F(ProfilesTest, GiveTheEmptyTextForAKeyWithoutValue) {
    have("[a]\r\nk=\r\nalone\r\n");
    EXPECT_EQ(value(u"a", u"k"), u"");
    EXPECT_EQ(value(u"a", u"alone"), u"");
}

TEST_F(ProfilesTest, GiveTheFallbackForWhatIsNotThere) {
    EXPECT_EQ(value(u"a", u"k"), u"(none)");
    have("k=0\r\n[a\r\n[b]\r\nx=1\r\n");
    EXPECT_EQ(value(u"a", u"k"), u"(none)");
    EXPECT_EQ(value(u"", u"k"), u"(none)");
    EXPECT_EQ(value(u"b", u"x"), u"1");
}

TEST_F(ProfilesTest, ReadEveryKindOfLineEnd) {
    have("[a]\rk=1\rl=2\nm=3\r\nn=4");
    EXPECT_EQ(value(u"a", u"k") + value(u"a", u"l") + value(u"a", u"m") + value(u"a", u"n"),
              u"1234");
}

TEST_F(ProfilesTest, CutValuesAtTheSizeAndNeverInsideAPair) {
    have("[a]\r\nk=" + std::string(5000, 'x') + "\r\np=ab\xF0\x9F\x8E\xB5z\r\n");
    EXPECT_EQ(value(u"a", u"k").size(), 999U);
    EXPECT_EQ(value(u"a", u"p", 4), u"ab");
    EXPECT_EQ(value(u"a", u"p", 5), u"ab\xD83C\xDFB5");
    EXPECT_EQ(value(u"a", u"p", 1), u"");
    EXPECT_EQ(value(u"a", u"p", 0), u"");
    EXPECT_EQ(value(u"a", u"none", 3), u"(n");
}

TEST_F(ProfilesTest, ReadTheLegacyPageWhereMostLinesAreInIt) {
    have("[a]\r\nk=\xD6\xD0\xCE\xC4\r\n");
    EXPECT_EQ(value(u"a", u"k"), u"\x4E2D\x6587");
    have("[a]\r\nk=\xE4\xB8\xAD\r\n");
    EXPECT_EQ(value(u"a", u"k"), u"\x4E2D");
}

TEST_F(ProfilesTest, SeeAFileThatChanged) {
    have("[a]\r\nk=1\r\n");
    EXPECT_EQ(value(u"a", u"k"), u"1");
    have("[a]\r\nk=2\r\n");
    EXPECT_EQ(value(u"a", u"k"), u"2");
}

TEST_F(ProfilesTest, TakeKeysOfAMegabyte) {
    const std::string key(1'000'000, 'k');
    have("[a]\r\n" + key + "=1\r\nb=2\r\n");
    EXPECT_EQ(value(u"a", fromAscii(key)), u"1");
    EXPECT_EQ(value(u"a", u"b"), u"2");
}

TEST_F(ProfilesTest, RefuseAFileThatIsTooLong) {
    have("[a]\r\nk=1\r\n");
    fs::resize_file(path(), IniProfiles::longestFile);
    EXPECT_EQ(value(u"a", u"k"), u"1");
    fs::resize_file(path(), IniProfiles::longestFile + 1);
    EXPECT_EQ(value(u"a", u"k"), u"(none)");
    EXPECT_FALSE(write(u"a", u"x", u"1"));
    EXPECT_FALSE(write(u"a", u"k", std::nullopt));
}

TEST_F(ProfilesTest, RemoveAKeyAndNothingElse) {
    have("; mine\r\n[a]\r\nk=1\r\n\r\nk=2\r\nz=3\n[b]\r\nk=4");
    EXPECT_TRUE(write(u"A", u"K", std::nullopt));
    EXPECT_EQ(bytes(), "; mine\r\n[a]\r\n\r\nk=2\r\nz=3\n[b]\r\nk=4");
    EXPECT_TRUE(write(u"b", u"k", std::nullopt));
    EXPECT_EQ(bytes(), "; mine\r\n[a]\r\n\r\nk=2\r\nz=3\n[b]\r\n");
}

TEST_F(ProfilesTest, DoNotTouchAFileWithoutTheKeyToRemove) {
    have("[a]\r\nk=1\r\n");
    const auto before = fs::last_write_time(path()) - std::chrono::hours(1);
    fs::last_write_time(path(), before);
    EXPECT_TRUE(write(u"a", u"other", std::nullopt));
    EXPECT_EQ(fs::last_write_time(path()), before);
}

TEST_F(ProfilesTest, MakeNoFileForAKeyToRemove) {
    EXPECT_TRUE(write(u"a", u"k", std::nullopt));
    EXPECT_FALSE(fs::exists(path()));
}

TEST_F(ProfilesTest, WriteValuesWhereTheyBelong) {
    EXPECT_TRUE(write(u"a", u"k", u"1"));
    EXPECT_EQ(bytes(), "[a]\r\nk=1\r\n");
    have("[a]\r\nk=1\r\n\r\n[b]\r\nx=2");
    EXPECT_TRUE(write(u"A", u"K", u"\x4E2D"));
    EXPECT_TRUE(write(u"a", u"l", u"3"));
    EXPECT_TRUE(write(u"b", u"y", u"4"));
    EXPECT_TRUE(write(u"c", u"z", u"5"));
    EXPECT_EQ(bytes(), "[a]\r\nK=\xE4\xB8\xAD\r\nl=3\r\n\r\n[b]\r\nx=2\r\ny=4\r\n[c]\r\nz=5\r\n");
}

TEST_F(ProfilesTest, WriteNoLineEndsIntoALine) {
    EXPECT_FALSE(write(u"a", u"k", u"1\r\n[b]"));
    EXPECT_FALSE(write(u"a\n", u"k", u"1"));
    EXPECT_FALSE(fs::exists(path()));
}

// --- a file that is held ---

TEST_F(ProfilesTest, HeldRemoveTogetherWhatWouldBeRemovedOneByOne) {
    const std::string text = "; mine\r\n[a]\r\nk=\r\nL = x\nm=\r\n\r\n[b]\r\nk=\rz=";
    have(text);
    {
        const auto held = profiles_->holdFile(fromUtf8(path()));
        EXPECT_EQ(value(u"A", u"K"), u"");
        EXPECT_TRUE(write(u"a", u"k", std::nullopt));
        EXPECT_EQ(value(u"a", u"k"), u"(none)");
        EXPECT_TRUE(write(u"a", u"k", std::nullopt));
        EXPECT_TRUE(write(u"a", u"none", std::nullopt));
        EXPECT_TRUE(write(u"none", u"k", std::nullopt));
        EXPECT_TRUE(write(u"b", u"z", std::nullopt));
        EXPECT_EQ(value(u"a", u"l"), u"x");
        EXPECT_EQ(bytes(), text) << "not yet";
    }
    EXPECT_EQ(bytes(), "; mine\r\n[a]\r\nL = x\nm=\r\n\r\n[b]\r\nk=\r");
    EXPECT_EQ(value(u"a", u"k"), u"(none)");
}

TEST_F(ProfilesTest, HeldFindTheNextKeyOfANameThatWasRemoved) {
    have("[a]\r\nk=\r\nK=2\r\nb=1\r\nk=3\r\n");
    {
        const auto held = profiles_->holdFile(fromUtf8(path()));
        EXPECT_EQ(profiles_->GetPrivateProfileKeysA(u"a", fromUtf8(path())),
                  (std::vector<std::u16string>{u"B", u"K"}));
        EXPECT_TRUE(write(u"a", u"k", std::nullopt));
        EXPECT_EQ(value(u"a", u"k"), u"2");
        EXPECT_TRUE(write(u"a", u"k", std::nullopt));
        EXPECT_EQ(value(u"a", u"k"), u"3");
        EXPECT_TRUE(write(u"a", u"b", std::nullopt));
        EXPECT_EQ(profiles_->GetPrivateProfileKeysA(u"a", fromUtf8(path())),
                  std::vector<std::u16string>{u"K"});
    }
    EXPECT_EQ(bytes(), "[a]\r\nk=3\r\n");
}

TEST_F(ProfilesTest, HeldWriteAValueAtOnce) {
    have("[a]\r\nk=\r\nl=1\r\n");
    const auto held = profiles_->holdFile(fromUtf8(path()));
    EXPECT_TRUE(write(u"a", u"k", std::nullopt));
    EXPECT_TRUE(write(u"a", u"l", u"2"));
    EXPECT_EQ(bytes(), "[a]\r\nl=2\r\n");
    EXPECT_EQ(value(u"a", u"l"), u"2");
    EXPECT_TRUE(write(u"a", u"l", std::nullopt));
    EXPECT_EQ(value(u"a", u"l"), u"(none)");
    EXPECT_EQ(bytes(), "[a]\r\nl=2\r\n");
}

TEST_F(ProfilesTest, HeldLeaveAFileAloneFromWhichNothingWent) {
    have("[a]\r\nk=1\r\n");
    const auto before = fs::last_write_time(path()) - std::chrono::hours(1);
    fs::last_write_time(path(), before);
    {
        const auto held = profiles_->holdFile(fromUtf8(path()));
        EXPECT_EQ(value(u"a", u"k"), u"1");
        EXPECT_TRUE(write(u"a", u"other", std::nullopt));
    }
    EXPECT_EQ(fs::last_write_time(path()), before);
    fs::remove(path());
    {
        const auto held = profiles_->holdFile(fromUtf8(path()));
        EXPECT_EQ(value(u"a", u"k"), u"(none)");
        EXPECT_TRUE(write(u"a", u"k", std::nullopt));
    }
    EXPECT_FALSE(fs::exists(path()));
}

TEST_F(ProfilesTest, HeldReadOtherFilesAsTheyAre) {
    have("[a]\r\nk=1\r\n");
    const std::u16string other = fromUtf8((folder_ / "other.ini").string());
    std::ofstream(folder_ / "other.ini") << "[a]\r\nk=\r\n";
    const auto held = profiles_->holdFile(fromUtf8(path()));
    EXPECT_TRUE(profiles_->WritePrivateProfileStringA(u"a", u"k", std::nullopt, other));
    EXPECT_EQ(fs::file_size(folder_ / "other.ini"), 5U);
    EXPECT_EQ(value(u"a", u"k"), u"1");
}

TEST_F(ProfilesTest, HeldKeepAFileThatCannotBeWritten) {
    have("[a]\r\nk=\r\n");
    fs::permissions(path(), fs::perms::owner_read);
    {
        const auto held = profiles_->holdFile(fromUtf8(path()));
        EXPECT_TRUE(write(u"a", u"k", std::nullopt));
    }
    EXPECT_EQ(bytes(), "[a]\r\nk=\r\n");
}

TEST_F(ProfilesTest, HeldTakeATimeThatGrowsWithTheFileAlone) {
    std::string text = "[a]\r\n";
#ifdef VELMORA_SANITIZED
    constexpr int count = 100'000; // each takes ten times as long
#else
    constexpr int count = 500'000;
#endif
    for (int i = 0; i < count; ++i)
        text += "index_" + std::to_string(i) + "_Str=\r\n";
    text += "end=1\r\n";
    have(text);
    ASSERT_LT(static_cast<std::int64_t>(text.size()), IniProfiles::longestFile);
    const auto begin = std::chrono::steady_clock::now();
    {
        const auto held = profiles_->holdFile(fromUtf8(path()));
        for (int i = 0; i < count; ++i) {
            const std::u16string key = fromAscii("index_" + std::to_string(i) + "_Str");
            ASSERT_EQ(value(u"a", key), u"");
            write(u"a", key, std::nullopt);
        }
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(40));
    EXPECT_EQ(bytes(), "[a]\r\nend=1\r\n");
}

TEST_F(ProfilesTest, SayWhenTheyCannotWrite) {
    have("[a]\r\nk=1\r\n");
    fs::permissions(path(), fs::perms::owner_read);
    EXPECT_FALSE(write(u"a", u"k", u"2"));
    EXPECT_EQ(bytes(), "[a]\r\nk=1\r\n");
}

TEST_F(ProfilesTest, TellSizesWithThreeDigitsCutNotRounded) {
    const auto size = [&](std::int32_t bytes) {
        return toUtf8(profiles_->StrFormatByteSizeA(bytes));
    };
    EXPECT_EQ(size(0), "0 bytes");
    EXPECT_EQ(size(1023), "1023 bytes");
    EXPECT_EQ(size(1024), "1.00 KB");
    EXPECT_EQ(size(1340), "1.30 KB");
    EXPECT_EQ(size(2532), "2.47 KB");
    EXPECT_EQ(size(10'239), "9.99 KB");
    EXPECT_EQ(size(10'240), "10.0 KB");
    EXPECT_EQ(size(23'506), "22.9 KB");
    EXPECT_EQ(size(240'716), "235 KB");
    EXPECT_EQ(size(1'023'999), "999 KB");
    EXPECT_EQ(size(1'024'000), "0.97 MB");
    EXPECT_EQ(size(2'465'132), "2.35 MB");
    EXPECT_EQ(size(132'465'132), "126 MB");
    EXPECT_EQ(size(2'147'483'647), "1.99 GB");
}

} // namespace

} // namespace velmora::platform
