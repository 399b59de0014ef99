#include "catalogue/browser_pages.h"

#include "base/text.h"
#include "catalogue/catalogue.h"
#include "catalogue/lyric_lines.h"
#include "music_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class BrowserPages : public ::testing::Test {
protected:
    void SetUp() override {
        music_.putTagged("Singer/First/01.mp3", "Dawn", "Singer", "First");
        music_.putTagged("Singer/First/02.mp3", "Dusk", "Singer", "First");
        music_.putTagged("Singer/Second/01.mp3", "Night", "Singer", "Second");
        music_.put("Singer/First/02.lrc", "[ti:Dusk]\n[00:05.50]later\n[00:01.00][00:09.00]soon\n");
        music_.put("Plain.wav", "x");
    }
    Catalogue &catalogue() {
        if (!catalogue_) {
            catalogue_.emplace(music_.path(), "own:1");
            catalogue_->readNow();
        }
        return *catalogue_;
    }
    std::string page(const std::string &target, const std::string &language = "en") {
        const Answer answer = catalogue().answer(target, "host:1", language);
        EXPECT_EQ(answer.status, 200U) << target;
        return answer.bytes;
    }
    std::string idOf(const std::string &path) { return catalogue::idOf(path); }

    MusicFolder music_;

private:
    std::optional<Catalogue> catalogue_;
};

TEST(LanguageFor, IsTheOneThatIsLikedBest) {
    EXPECT_EQ(languageFor(""), Language::Chinese);
    EXPECT_EQ(languageFor("de-DE,de;q=0.9"), Language::English);
    EXPECT_EQ(languageFor("ja"), Language::Japanese);
    EXPECT_EQ(languageFor("de, fr-CA;q=0.8, en;q=0.5"), Language::French);
    EXPECT_EQ(languageFor("en;q=0.3,ZH-cn;q=0.7"), Language::Chinese);
    EXPECT_EQ(languageFor("fr;q=0,ja;q=0.001"), Language::Japanese);
    EXPECT_EQ(languageFor("french"), Language::English);
    EXPECT_EQ(languageFor(",,;q=,fr;q=9999999999999"), Language::French);
}

TEST_F(BrowserPages, SpeakTheLanguageOfTheBrowser) {
    EXPECT_THAT(page("/", "en"), AllOf(HasSubstr("<html lang=\"en\">"), HasSubstr("Albums")));
    EXPECT_THAT(page("/", "fr"), AllOf(HasSubstr("<html lang=\"fr\">"), HasSubstr("Dossiers")));
    EXPECT_THAT(page("/", "ja"), AllOf(HasSubstr("<html lang=\"ja\">"), HasSubstr("フォルダー")));
    EXPECT_THAT(page("/", "zh"), AllOf(HasSubstr("<html lang=\"zh\">"), HasSubstr("文件夹")));
}

TEST_F(BrowserPages, LoadNothingFromElsewhereAndRunNoScriptOfTheirOwn) {
    for (const std::string &target :
         {std::string("/"), std::string("/search?q=singer"), std::string("/albums"),
          "/listen/" + idOf("Singer/First/02.mp3")}) {
        const Answer answer = catalogue().answer(target, "host:1", "en");
        EXPECT_THAT(answer.bytes, AllOf(Not(HasSubstr("//")), Not(HasSubstr(" style=")),
                                        Not(HasSubstr("onclick")), HasSubstr("viewport")))
            << target;
        std::string policy;
        for (const auto &[name, value] : answer.fields)
            policy += name == "Content-Security-Policy" ? value : "";
        EXPECT_THAT(policy, AllOf(HasSubstr("default-src 'none'"), Not(HasSubstr("unsafe"))));
    }
    EXPECT_EQ(catalogue().answer("/look.css", "host:1").type, "text/css; charset=utf-8");
    EXPECT_EQ(catalogue().answer("/follow.js", "host:1").type, "text/javascript; charset=utf-8");
}

TEST_F(BrowserPages, FindSongsAndLyrics) {
    const std::string found = page("/search?q=dusk");
    EXPECT_THAT(found, HasSubstr("/listen/" + idOf("Singer/First/02.mp3")));
    EXPECT_THAT(found, HasSubstr("/LrcDown/" + idOf("Singer/First/02.lrc") + ".lrc"));
    EXPECT_THAT(found, Not(HasSubstr(idOf("Singer/First/01.mp3"))));
    EXPECT_THAT(page("/search?q=nobody"), HasSubstr("Nothing was found."));
    EXPECT_THAT(page("/search?q=%22%3E%3Cscript%3E"), Not(HasSubstr("<script>")));
}

TEST_F(BrowserPages, SayWhichPartOfManySongsTheyShow) {
    for (int i = 100; i < 350; ++i)
        music_.put("many/word " + std::to_string(i) + ".mp3", "x");
    EXPECT_THAT(page("/search?q=word"), AllOf(HasSubstr("1–100 of 250"), HasSubstr("page=2"),
                                              HasSubstr("word 100<"), Not(HasSubstr("word 200<"))));
    EXPECT_THAT(page("/search?q=word&page=3"),
                AllOf(HasSubstr("201–250 of 250"), HasSubstr("word 349<"), HasSubstr("Previous")));
    for (const char *number : {"0", "-1", "99999999999999999999", "x", "4"})
        EXPECT_THAT(page(std::string("/search?q=word&page=") + number), HasSubstr(" of 250"))
            << number;
}

TEST_F(BrowserPages, GoThroughAlbumsAndFolders) {
    EXPECT_THAT(page("/albums"), AllOf(HasSubstr(">First<"), HasSubstr(">Second<")));
    EXPECT_THAT(page("/album/" + idOf("Singer/First/01.mp3")),
                AllOf(HasSubstr("Dawn"), HasSubstr("Dusk"), Not(HasSubstr("Night"))));
    EXPECT_THAT(page("/folder"), AllOf(HasSubstr("/folder?at=Singer%2F"), HasSubstr("Plain"),
                                       Not(HasSubstr("Dawn"))));
    EXPECT_THAT(page("/folder?at=Singer%2F"),
                AllOf(HasSubstr("First/"), HasSubstr("Second/"), Not(HasSubstr("Dawn"))));
    EXPECT_THAT(page("/folder?at=Singer/First"), AllOf(HasSubstr("Dawn"), HasSubstr("Dusk")));
    EXPECT_THAT(page("/folder?at=../.."), Not(HasSubstr("Dawn")));
}

TEST_F(BrowserPages, PlayASongWithItsLyricInTheOrderOfTime) {
    const std::string listen = page("/listen/" + idOf("Singer/First/02.mp3"));
    EXPECT_THAT(listen, HasSubstr("<audio controls"));
    EXPECT_THAT(listen, HasSubstr("/song/" + idOf("Singer/First/02.mp3") + ".mp3"));
    EXPECT_THAT(listen, HasSubstr("<li data-at=\"1000\">soon</li>\n<li data-at=\"5500\">later</li>"
                                  "\n<li data-at=\"9000\">soon</li>"));
    EXPECT_THAT(listen, HasSubstr("/listen/" + idOf("Singer/First/01.mp3") + "\" rel=\"prev\""));
    EXPECT_THAT(page("/listen/" + idOf("Singer/First/01.mp3")),
                AllOf(HasSubstr("rel=\"next\""), Not(HasSubstr("<ol"))));
    EXPECT_EQ(catalogue().answer("/listen/none", "host:1").status, 404U);
    EXPECT_EQ(catalogue().answer("/listen/" + idOf("Singer/First/02.lrc"), "host:1").status, 404U);
}

TEST(LyricLines, AreThoseWithATimeOrElseAll) {
    const auto texts = [](const char *lyric) {
        std::string all;
        for (const LyricLine &line : lyricLines(lyric))
            all += std::to_string(line.atMs) + toUtf8(line.text) + ";";
        return all;
    };
    EXPECT_EQ(texts("[ar:x]\r\nplain\r\n[01:02]two\r\n[00:00.5]one\r\n"), "500one;62000two;");
    EXPECT_EQ(texts("[00:01.234]a\r\n[00:01:23]b\r\n[00:02.00]\r\n"), "1230b;1234a;2000;");
    EXPECT_EQ(texts("[ti:x]\r\nplain\r\n\r\nlines\r\n"), "0plain;0lines;");
    EXPECT_EQ(texts("[0x:01]a\r\n[00:01b\r\n"), "");
    EXPECT_EQ(texts("[9999:99.999]end\r\n"), "600039999end;");
}

TEST(QueryValue, IsTheFirstOfItsName) {
    EXPECT_EQ(queryValue("a=1&q=x+y%20z&q=2", "q"), "x y z");
    EXPECT_EQ(queryValue("qq=1&", "q"), "");
    EXPECT_EQ(queryValue("q", "q"), "");
    EXPECT_EQ(queryValue("&&q=%4&=", "q"), "%4");
}

} // namespace

} // namespace velmora::catalogue
