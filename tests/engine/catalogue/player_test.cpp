// The program's own readers, over the real network, against the real catalogue.

#include "base/text.h"
#include "catalogue/server.h"
#include "music_folder.h"
#include "network/WininetDownClass.h"
#include "network/lrc_Internet_Search.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/song_Internet_Search.h"
#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/linux/linux.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "velmora.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

constexpr char16_t hostsKey[] = u"SOFTWARE\\Norvane\\zkPlayer\\hosts";

class CataloguePlayer : public ::testing::Test {
protected:
    // Call once the folder is as it should be.
    void serve() {
        catalogue_.emplace(music_.path(), "127.0.0.1");
        catalogue_->readNow();
        server_.emplace(*catalogue_, "127.0.0.1", 0);
        host_ = fromAscii("http://" + server_->hostAndPort());
        for (const char16_t *name :
             {u"lrcSearch", u"lrcSiteA", u"lrcSiteB", u"songSearch", u"maker"})
            fake_.registry.setText(hostsKey, name, host_);
    }
    bool searchLyric(std::u16string_view word) {
        app_.search_Lrc_Internet_Form().search_Lrc_List.clear();
        return app_.lrc_Internet_Search().searchLrc(word);
    }
    std::int32_t lyricRows() { return app_.search_Lrc_Internet_Form().search_Lrc_List.listCount(); }
    LinkArray &links() { return app_.lrc_Internet_Search().lrcDownloadLinks; }
    // What lies behind a link, by way of a file as the program does it.
    std::string fetched(const std::u16string &link) {
        const std::string target = (music_ / ".fetched").string();
        if (internet_->URLDownloadToFileA(link, fromUtf8(target), platform::programFile) != 0)
            return "(nothing)";
        std::ifstream file(target, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    platform::Platform bundle() {
        return fakes::with(fake_.bundle(), {.internet = internet_.get()});
    }

    MusicFolder music_;
    fakes::FakePlatform fake_;
    std::unique_ptr<platform::AnsiText> ansi_ =
        platform::makeAnsiText([] { return std::u16string(); });
    std::unique_ptr<platform::Internet> internet_ =
        platform::makeInternet(*ansi_, [this] { return std::vector<std::u16string>{host_}; });
    Velmora app_{bundle()};
    std::u16string host_;

private:
    std::optional<Catalogue> catalogue_;
    std::optional<Server> server_;
};

TEST_F(CataloguePlayer, FindsOneLyricByItsWordsAndFetchesItByItself) {
    music_.put("Stesul - Hello.lrc", "[1:02.30]hello");
    serve();
    ASSERT_TRUE(searchLyric(u"Hello Stesul"));
    EXPECT_EQ(lyricRows(), 1);
    EXPECT_NE(links().upperBound(), 1) << "that would count as none";
    EXPECT_EQ(fetched(links().at(0)), "[01:02.30]hello\r\n");
}

TEST_F(CataloguePlayer, FindsManyLyricsTheBestFirst) {
    for (int i = 0; i < 5; ++i)
        music_.put("Hello " + std::to_string(i) + ".lrc", "[00:01.00]" + std::to_string(i));
    music_.put("Hello.lrc", "[00:01.00]best");
    serve();
    for (const char16_t *word : {u"hello", u"Hello ", u"HELLO"}) {
        ASSERT_TRUE(searchLyric(word));
        EXPECT_EQ(lyricRows(), 6);
        EXPECT_EQ(links().upperBound(), 6);
        EXPECT_EQ(fetched(links().at(0)), "[00:01.00]best\r\n");
        // A row is the same link in small letters.
        EXPECT_EQ(fetched(app_.search_Lrc_Internet_Form().search_Lrc_List.list(5)).substr(0, 10),
                  "[00:01.00]");
    }
}

TEST_F(CataloguePlayer, FindsTwoLyrics) {
    music_.put("A - Hello.lrc", "[00:01.00]a");
    music_.put("B - Hello.lrc", "[00:01.00]b");
    serve();
    ASSERT_TRUE(searchLyric(u"hello"));
    EXPECT_EQ(lyricRows(), 2);
    EXPECT_EQ(links().upperBound(), 2);
    EXPECT_EQ(fetched(links().at(0)), "[00:01.00]a\r\n");
}

TEST_F(CataloguePlayer, FindsNoLyricWhereThereIsNone) {
    music_.put("Hello.lrc", "[00:01.00]x");
    serve();
    for (const char16_t *word : {u"goodbye", u"", u"hello goodbye"}) {
        ASSERT_TRUE(searchLyric(word)) << "a page came";
        EXPECT_EQ(lyricRows(), 0);
        EXPECT_EQ(links().upperBound(), 0);
        EXPECT_EQ(links().at(0), u"");
    }
}

TEST_F(CataloguePlayer, FindsLyricsWhoseNamesLookLikeMarkup) {
    music_.put("a href=\"x\" mailto + #.lrc", "[00:01.00]x");
    music_.put("<a HREF>.lrc", "[00:01.00]y");
    serve();
    ASSERT_TRUE(searchLyric(u"href"));
    EXPECT_EQ(lyricRows(), 2);
    EXPECT_EQ(links().upperBound(), 2);
}

TEST_F(CataloguePlayer, FindsAsManyLyricsAsAPageShows) {
    for (int i = 0; i < 150; ++i)
        music_.put("Hello " + std::to_string(i) + ".lrc", "[00:01.00]x");
    serve();
    ASSERT_TRUE(searchLyric(u"hello"));
    EXPECT_EQ(lyricRows(), 100);
    EXPECT_EQ(links().upperBound(), 100);
}

TEST_F(CataloguePlayer, FindsSongsWithTheirRecords) {
    music_.putTagged("x.mp3", "Fidelio @@ ;", "Fi", "");
    music_.putTagged("y.mp3", "Other Fidelio", "Somebody", "Album");
    serve();
    auto &form = app_.search_Song_Internet_Form();
    ASSERT_TRUE(app_.song_Internet_Search().searchSong(u"fidelio"));
    ASSERT_EQ(form.search_Song_List.listCount(), 2);
    for (std::int16_t row = 0; row < 2; ++row) {
        const std::u16string link = form.List1.list(row);
        EXPECT_TRUE(startsWith(link, upper(host_) + u"/SONG/")) << toUtf8(link);
        const std::u16string record = form.List2.list(row);
        std::size_t fields = 1;
        for (std::size_t at = 0; (at = record.find(u"@@", at)) != std::u16string::npos; at += 2)
            ++fields;
        EXPECT_EQ(fields, 7U) << toUtf8(record);
    }
}

TEST_F(CataloguePlayer, FetchesASongByItsRowsLink) {
    music_.putTagged("x.mp3", "Hello", "Stesul", "");
    serve();
    auto &form = app_.search_Song_Internet_Form();
    ASSERT_TRUE(app_.song_Internet_Search().searchSong(u"Stesul Hello"));
    ASSERT_EQ(form.search_Song_List.listCount(), 1);
    std::u16string link = form.List1.list(0);
    EXPECT_EQ(fetched(link).size(), 4298U) << "in upper case, as the page was read";
    for (char16_t &unit : link)
        if (unit >= u'A' && unit <= u'Z')
            unit = static_cast<char16_t>(unit + (u'a' - u'A'));
    EXPECT_EQ(fetched(link).size(), 4298U) << "in lower case, as it is fetched";
}

} // namespace

} // namespace velmora::catalogue
