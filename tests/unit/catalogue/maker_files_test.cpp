#include "catalogue/maker_files.h"

#include "base/text.h"
#include "catalogue/library_reader.h"
#include "music_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

constexpr char16_t base[] = u"http://host:1";

class MakerFiles : public ::testing::Test {
protected:
    static platform::IniText parsed(const std::string &bytes) {
        std::vector<std::u16string> lines;
        for (const platform::FileLine &line : platform::linesOf(bytes)) {
            EXPECT_EQ(line.next - line.end, 2U) << "every line ends with CR LF";
            lines.push_back(
                fromUtf8(std::string_view(bytes).substr(line.begin, line.end - line.begin)));
        }
        return platform::IniText(lines);
    }
    static std::u16string value(const platform::IniText &ini, std::u16string_view section,
                                std::u16string_view key) {
        const platform::IniText::Place *place = ini.find(section, key);
        return place != nullptr ? place->value : u"(none)";
    }
    platform::IniText welcome() {
        OwnTagReader tags;
        const auto library = LibraryReader(folder_, tags, nullptr).read();
        return parsed(welcomeFile(base, *library, readSettings(folder_)));
    }
    platform::IniText update() {
        const platform::IniText settings = readSettings(folder_);
        return parsed(updateFile(base, settings, offerOf(settings, folder_)));
    }

    MusicFolder music_;
    Folder folder_{music_.path()};
};

TEST_F(MakerFiles, WelcomeHasEverythingThatIsAskedFor) {
    const platform::IniText ini = welcome();
    for (const char16_t *key :
         {u"title", u"provider", u"providerLink", u"buttonStr0", u"buttonStr1", u"buttonStr2"})
        EXPECT_GT(value(ini, u"config", key).size(), 1U) << toUtf8(key);
    EXPECT_EQ(value(ini, u"config", u"providerLink"), u"http://host:1/");
    EXPECT_EQ(split(value(ini, u"check", u"vesion"), u'.').size(), 3U);
    EXPECT_EQ(value(ini, u"check", u"update"), u"0");
    EXPECT_EQ(value(ini, u"config", u"databaseFrame_BackColor"), u"1840143");
    EXPECT_EQ(value(ini, u"config", u"databaseStr_Color"), u"13623387");
    EXPECT_EQ(value(ini, u"databases", u"databases_0_Ubound"), u"0");
}

TEST_F(MakerFiles, WelcomeShowsWhatIsNewInTheLibrary) {
    music_.putTagged("a.mp3", "Song", "Singer", "");
    music_.put("a.lrc", "[00:01.00]x");
    music_.put("Film.avi", "x");
    const platform::IniText ini = welcome();
    EXPECT_EQ(value(ini, u"databases", u"databases_0_Ubound"), u"2");
    EXPECT_EQ(value(ini, u"databases", u"databases_1_Ubound"), u"1");
    EXPECT_EQ(value(ini, u"databases", u"databases_1_0_Str"), u"Song - Singer");
    EXPECT_TRUE(
        startsWith(value(ini, u"databases", u"databases_1_0_Link"), u"http://host:1/LrcDown/"));
    EXPECT_EQ(value(ini, u"databases", u"databases_2_Ubound"), u"1");
    EXPECT_EQ(value(ini, u"databases", u"databases_2_0_Str"), u"Film");
    EXPECT_EQ(value(ini, u"Advertising", u"AdvertisingNumbers"), u"2");
}

TEST_F(MakerFiles, WelcomeCountsWhatItHolds) {
    for (int i = 0; i < 30; ++i)
        music_.put("song" + std::to_string(i) + ".mp3", "x");
    const platform::IniText ini = welcome();
    EXPECT_EQ(value(ini, u"databases", u"databases_0_Ubound"), u"10");
    EXPECT_NE(ini.find(u"databases", u"databases_0_9_Str"), nullptr);
    EXPECT_EQ(ini.find(u"databases", u"databases_0_10_Str"), nullptr);
}

TEST_F(MakerFiles, WelcomeSaysWhatTheHouseholdWrote) {
    music_.put("catalogue.ini", "[welcome]\ntitle=Ours\nbanner0=Hi|there|http://x/\n"
                                "banner1=Plain\ntab1=Films\ntab1_line0=One|https://y/\n");
    const platform::IniText ini = welcome();
    EXPECT_EQ(value(ini, u"config", u"title"), u"Ours");
    EXPECT_EQ(value(ini, u"config", u"buttonStr1"), u"Films");
    EXPECT_EQ(value(ini, u"Advertising", u"AdvertisingNumbers"), u"2");
    EXPECT_EQ(value(ini, u"Advertising", u"index_0_Str"), u"Hi|there");
    EXPECT_EQ(value(ini, u"Advertising", u"index_0_Link"), u"http://x/");
    EXPECT_EQ(value(ini, u"Advertising", u"index_1_Link"), u"http://host:1/");
    EXPECT_EQ(value(ini, u"databases", u"databases_1_Ubound"), u"1");
    EXPECT_EQ(value(ini, u"databases", u"databases_1_0_Link"), u"https://y/");
}

TEST_F(MakerFiles, WelcomeReadsSettingsInTheLegacyPageToo) {
    music_.put("catalogue.ini", "[welcome]\ntitle=\xD6\xD0\xCE\xC4\n");
    EXPECT_EQ(value(welcome(), u"config", u"title"), u"中文");
}

TEST_F(MakerFiles, ValuesAreOneLineOfAtMostTheLengthThatIsRead) {
    music_.put("catalogue.ini", "[welcome]\ntitle=" + std::string(5000, 'x') +
                                    "\nprovider=\"'quoted'\"\nbanner0=a|\xE2\x96\xA0|b\n");
    const platform::IniText ini = welcome();
    EXPECT_EQ(value(ini, u"config", u"title").size(), 999U);
    EXPECT_EQ(value(ini, u"config", u"provider"), u"'quoted'");
    EXPECT_EQ(value(ini, u"Advertising", u"index_0_Str"), u"a b");
}

TEST_F(MakerFiles, UpdateWithoutAnOfferIsNotNewerThanAnyPlayer) {
    const platform::IniText ini = update();
    EXPECT_EQ(split(value(ini, u"check", u"vesion"), u'.').size(), 3U);
    EXPECT_EQ(leftPart(value(ini, u"check", u"vesion"), 2), u"1.");
    EXPECT_EQ(value(ini, u"check", u"download"), u"http://host:1/program");
}

TEST_F(MakerFiles, UpdateOffersAProgramOfTheFolder) {
    music_.put("bin/velmora", "\x7F"
                              "ELF rest");
    music_.put("catalogue.ini", "[update]\nversion=9.10.11\nprogram=bin/velmora\n"
                                "english=new|better\n");
    const platform::IniText ini = update();
    EXPECT_EQ(value(ini, u"check", u"vesion"), u"9.10.11");
    EXPECT_EQ(value(ini, u"Updates", u"Updates_English"), u"new|better");
    EXPECT_EQ(value(ini, u"Updates", u"Updates_Chinese"), u"");
}

TEST_F(MakerFiles, UpdateOffersNothingThatIsNoProgramOfTheFolderOrHasNoVersion) {
    music_.put("text", "#!/bin/sh");
    music_.put("program", "\x7F"
                          "ELF");
    std::filesystem::create_symlink("/bin/true", music_ / "link");
    for (const char *settings :
         {"version=9.0.0\nprogram=text", "version=9.0.0\nprogram=none", "version=9.0.0",
          "version=9.0.0\nprogram=/bin/true", "version=9.0.0\nprogram=../../../bin/true",
          "version=9.0.0\nprogram=link", "program=program", "version=9.0\nprogram=program",
          "version=9.0.x\nprogram=program", "version=9..0\nprogram=program",
          "version=9.0.999999\nprogram=program"}) {
        music_.put("catalogue.ini", std::string("[update]\n") + settings + "\n");
        EXPECT_EQ(leftPart(value(update(), u"check", u"vesion"), 2), u"1.") << settings;
    }
}

} // namespace

} // namespace velmora::catalogue
