#include "catalogue/catalogue.h"

#include "base/text.h"
#include "music_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace velmora::catalogue {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string upperAscii(std::string text) {
    for (char &byte : text)
        if (byte >= 'a' && byte <= 'z')
            byte = static_cast<char>(byte - ('a' - 'A'));
    return text;
}

class CatalogueTest : public ::testing::Test {
protected:
    Catalogue &catalogue() {
        if (!catalogue_) {
            catalogue_.emplace(music_.path(), "own:1");
            catalogue_->readNow();
        }
        return *catalogue_;
    }
    Answer ask(const std::string &target, const std::string &host = "host:8420") {
        return catalogue().answer(target, host);
    }
    std::string idOf(const std::string &path) {
        for (const auto *items :
             {&catalogue().library()->songs(), &catalogue().library()->lyrics()})
            for (const Item *item : *items)
                if (item->file.path == path)
                    return item->id();
        return "none";
    }
    static std::string contentOf(const Answer &answer) {
        if (!answer.file)
            return answer.bytes;
        std::string bytes(static_cast<std::size_t>(answer.file->bytes), '\0');
        const ssize_t got = ::pread(answer.file->file.number(), bytes.data(), bytes.size(), 0);
        bytes.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
        return bytes;
    }

    MusicFolder music_;

private:
    std::optional<Catalogue> catalogue_;
};

TEST_F(CatalogueTest, AnswersEverySearchAsTheSamePageEachTime) {
    music_.put("Song.lrc", "[00:01.00]x");
    for (const char *target :
         {"/m?f=ms&word=song%20&lm=-1", "/fcgi-bin/m.q?w=song&source=1&t=0", "/",
          "/source/mini/zkPlayerWelcome.php", "/source/softwareDate/zkPlayerUpdate.php"}) {
        const Answer first = ask(target);
        EXPECT_EQ(first.status, 200U) << target;
        EXPECT_EQ(ask(target).bytes, first.bytes) << target;
    }
}

TEST_F(CatalogueTest, FindsPathsInEveryCase) {
    music_.put("Song.lrc", "[00:01.00]x");
    music_.put("Song.mp3", "sound");
    for (const std::string &path :
         {"/LrcDown/" + idOf("Song.lrc") + ".lrc", "/asp/lrc.asp?id=" + idOf("Song.lrc")}) {
        EXPECT_EQ(ask(path).bytes, "[00:01.00]x\r\n") << path;
        EXPECT_EQ(ask(upperAscii(path)).bytes, "[00:01.00]x\r\n") << path;
    }
    const std::string song = "/song/" + idOf("Song.mp3") + ".mp3";
    EXPECT_EQ(contentOf(ask(song)), "sound");
    EXPECT_EQ(contentOf(ask(upperAscii(song))), "sound");
    EXPECT_EQ(ask(song).type, "audio/mpeg");
}

TEST_F(CatalogueTest, ReadsWordsInEveryEncoding) {
    music_.put("中文.lrc", "[00:01.00]x");
    const std::string link = "/LrcDown/" + idOf("中文.lrc");
    EXPECT_THAT(ask("/m?f=ms&word=%E4%B8%AD%E6%96%87%20&lm=-1").bytes, HasSubstr(link));
    EXPECT_THAT(ask("/m?f=ms&word=%D6%D0%CE%C4 &lm=-1").bytes, HasSubstr(link));
    EXPECT_THAT(ask("/m?word=%E4%B8%AD").bytes, HasSubstr(link));
    EXPECT_THAT(ask("/m?f=ms&word= &lm=-1").bytes, Not(HasSubstr(link)));
    EXPECT_THAT(ask("/m").bytes, Not(HasSubstr(link)));
}

TEST(SearchWords, HoldEverySign) {
    EXPECT_EQ(searchWords("f=ms&word=a&b=c+d%20&lm=-1", "word", "&lm="), u"a&b=c d ");
    EXPECT_EQ(searchWords("w=a&lm=&source=1&t=0", "w", "&source="), u"a&lm=");
    EXPECT_EQ(searchWords("W=x&SOURCE=1", "w", "&source="), u"x");
    EXPECT_EQ(searchWords("f=1&w=x", "w", "&source="), u"x");
    EXPECT_EQ(searchWords("&source=1&w=x", "w", "&source="), u"x") << "the end lies before";
    EXPECT_EQ(searchWords("word=x", "w", "&source="), u"");
    EXPECT_EQ(searchWords("w=", "w", "&source="), u"");
    EXPECT_EQ(searchWords("", "w", "&source="), u"");
    EXPECT_EQ(searchWords("w=100%", "w", "&source="), u"100%");
}

TEST_F(CatalogueTest, SpeaksOfItselfAsItWasAsked) {
    EXPECT_THAT(ask("/", "nas.local:8420").bytes, HasSubstr("action"));
    EXPECT_THAT(ask("/m", "nas.local:8420").bytes, HasSubstr("\"http://nas.local:8420/\""));
    EXPECT_THAT(ask("/m", "[::1]:5").bytes, HasSubstr("\"http://[::1]:5/\""));
    for (const std::string &host : {std::string(), std::string("a b"), std::string("x\"><script"),
                                    std::string("x/y"), std::string(300, 'x')})
        EXPECT_THAT(ask("/m", host).bytes, HasSubstr("\"http://own:1/\"")) << host;
}

TEST_F(CatalogueTest, AnswersOnThisMachineOnlyForThisMachine) {
    catalogue().acceptOnlyThisMachine();
    for (const char *host :
         {"127.0.0.1:1", "localhost:1", "localhost", "[::1]:1", "[::1]", "", "LOCALHOST:2"})
        EXPECT_EQ(ask("/", host).status, 200U) << host;
    for (const char *host : {"evil.example:1", "127.evil.example:1", "localhost.evil:1"})
        EXPECT_EQ(ask("/", host).status, 403U) << host;
}

TEST_F(CatalogueTest, AnswersTheHouseholdOnlyByNamesThatNoPageOfTheWebHas) {
    catalogue().acceptName("Music.Example.org");
    for (const char *host :
         {"192.168.1.5:1", "192.168.1.5", "[fe80::1]:1", "[fe80::1]", "nas", "nas:8420",
          "NAS.local:1", "music.example.org:8420", "MUSIC.example.org", ""})
        EXPECT_EQ(ask("/", host).status, 200U) << host;
    for (const char *host :
         {"evil.example:1", "evil.example", "192.168.1.5.evil.example", "nas.local.evil.example",
          "nas.local.:1", ".local", "evil.example.", "x.music.example.org"})
        EXPECT_EQ(ask("/", host).status, 403U) << host;
}

TEST_F(CatalogueTest, NamesASongForWhoeverSavesIt) {
    music_.put("sub/Fünf & 中文.mp3", "sound");
    music_.put(std::string(250, 'x') + ".mp3", "sound");
    std::string wide;
    for (int i = 0; i < 80; ++i)
        wide += "中";
    music_.put(wide + ".mp3", "sound");
    const auto named = [&](const std::string &path) {
        for (const auto &[name, value] : ask("/song/" + idOf(path) + ".mp3").fields)
            if (name == "Content-Disposition")
                return value;
        return std::string("nothing");
    };
    EXPECT_EQ(named("sub/Fünf & 中文.mp3"),
              "inline; filename*=UTF-8''F%C3%BCnf%20%26%20%E4%B8%AD%E6%96%87.mp3");
    EXPECT_EQ(named(std::string(250, 'x') + ".mp3"),
              "inline; filename*=UTF-8''" + std::string(250, 'x') + ".mp3");
    const std::string cut = named(wide + ".mp3");
    EXPECT_LE(cut.size(), 330U) << "the player takes a header of 1024 bytes";
    EXPECT_EQ(cut.substr(cut.size() - 7), "%AD.mp3") << "no half of a character";
}

TEST_F(CatalogueTest, ServesNothingButWhatItKnows) {
    music_.put("Song.mp3", "sound");
    music_.put("private.txt", "secret");
    music_.put("catalogue.ini", "[welcome]\ntitle=x\n");
    const std::string id = idOf("Song.mp3");
    for (const std::string &target :
         {std::string("/private.txt"), std::string("/catalogue.ini"), std::string("/Song.mp3"),
          std::string("/song/"), std::string("/song/../private.txt"), std::string("/song/x.mp3"),
          std::string("/../private.txt"), std::string("/%2e%2e/private.txt"),
          std::string("/song/%2e%2e/%2e%2e/etc/passwd"), "/LrcDown/" + id + ".lrc",
          "/asp/lrc.asp?id=" + id, std::string("/asp/lrc.asp"), std::string("/LrcDown/.lrc"),
          std::string("/program"), std::string(""), std::string("x"), std::string("/song/%00"),
          "/song/" + id + "/x", std::string("/m/")})
        EXPECT_EQ(ask(target).status, 404U) << target;
}

TEST_F(CatalogueTest, ServesNoSongThatBecameALink) {
    music_.put("Song.mp3", "sound");
    const std::string target = "/song/" + idOf("Song.mp3") + ".mp3";
    std::filesystem::remove(music_ / "Song.mp3");
    std::filesystem::create_symlink("/etc/passwd", music_ / "Song.mp3");
    EXPECT_EQ(ask(target).status, 404U);
}

TEST_F(CatalogueTest, OffersNoProgramOutOfTheMusic) {
    music_.put("new", "\x7F"
                      "ELF program");
    music_.put("catalogue.ini", "[update]\nversion=9.0.0\nprogram=new\n");
    EXPECT_EQ(ask("/program").status, 404U);
    EXPECT_THAT(ask("/source/softwareDate/zkPlayerUpdate.php").bytes,
                Not(HasSubstr("vesion=9.0.0")));
    EXPECT_TRUE(catalogue().hasUnheededOffer());
    const MusicFolder updates;
    EXPECT_FALSE(catalogue().offerUpdatesFrom(updates.path()));
    EXPECT_EQ(ask("/program").status, 404U);
}

TEST_F(CatalogueTest, ServesTheProgramOnOffer) {
    const MusicFolder updates;
    updates.put("new", "\x7F"
                       "ELF program");
    updates.put("catalogue.ini", "[update]\nversion=9.0.0\nprogram=new\n");
    ASSERT_TRUE(catalogue().offerUpdatesFrom(updates.path()));
    EXPECT_FALSE(catalogue().hasUnheededOffer());
    EXPECT_THAT(ask("/source/softwareDate/zkPlayerUpdate.php").bytes, HasSubstr("vesion=9.0.0"));
    const Answer answer = ask("/program");
    EXPECT_EQ(contentOf(answer), "\x7F"
                                 "ELF program");
    EXPECT_EQ(answer.type, "application/octet-stream");
}

TEST_F(CatalogueTest, PagesSayTheirCharset) {
    EXPECT_EQ(ask("/m").type, "text/html; charset=gb18030") << "as the player reads it";
    EXPECT_EQ(ask("/").type, "text/html; charset=utf-8");
    EXPECT_EQ(ask("/source/mini/zkPlayerWelcome.php").type, "text/plain; charset=utf-8");
}

} // namespace

} // namespace velmora::catalogue
