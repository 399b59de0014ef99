#include "catalogue/pages.h"

#include "base/text.h"
#include "catalogue/texts.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velmora::catalogue {

namespace {

using namespace std::string_literals;

constexpr char16_t base[] = u"http://127.0.0.1:8420";

std::u16string songId() { return fromAscii(idOf("song.mp3")); }

Item lyric(const std::string &name, std::u16string title = u"Title") {
    Item item;
    item.file.path = name + ".lrc";
    item.isLyric = true;
    item.tags.title = std::move(title);
    return item;
}

Item song(std::u16string title, std::u16string artist, std::u16string album) {
    Item item;
    item.file.path = "song.mp3";
    item.file.bytes = 12345;
    item.tags = {std::move(title), std::move(artist), std::move(album)};
    return item;
}

// What stands between the quotes of every link, as a reader of the upper-cased page finds it.
std::vector<std::u16string> linksOf(const std::u16string &page) {
    std::vector<std::u16string> links;
    const std::u16string text = upper(page);
    for (std::size_t at = 0; (at = text.find(u"HREF", at)) != std::u16string::npos; ++at) {
        EXPECT_EQ(text.substr(at, 6), u"HREF=\"");
        links.push_back(text.substr(at + 6, text.find(u'"', at + 6) - at - 6));
    }
    return links;
}

std::u16string lyricPageOf(std::size_t count, std::u16string title = u"Title") {
    std::vector<Item> items;
    for (std::size_t i = 0; i < count; ++i)
        items.push_back(lyric("a" + std::to_string(i), title));
    std::vector<const Item *> pointers;
    for (const Item &item : items)
        pointers.push_back(&item);
    return lyricPage(base, u"words", pointers);
}

// As a reader of the upper-cased page has it.
std::u16string linkOf(const std::string &name) {
    return upper(base + u"/LrcDown/"s + fromAscii(idOf(name + ".lrc")) + u".lrc");
}

constexpr char16_t home[] = u"HTTP://127.0.0.1:8420/";

TEST(LyricPage, WithoutALyricHasOneLinkHome) {
    EXPECT_EQ(linksOf(lyricPageOf(0)), std::vector<std::u16string>{home});
}

TEST(LyricPage, WithOneLyricEndsWithItsLink) {
    const std::vector<std::u16string> expected = {home, linkOf("a0")};
    EXPECT_EQ(linksOf(lyricPageOf(1)), expected);
}

TEST(LyricPage, WithMoreLyricsHasOneOtherLinkBehindThem) {
    const std::vector<std::u16string> expected = {linkOf("a0"), linkOf("a1"), home};
    EXPECT_EQ(linksOf(lyricPageOf(2)), expected);
}

TEST(LyricPage, ShowsNoMoreThanItsMost) {
    EXPECT_EQ(linksOf(lyricPageOf(mostLyricLinks + 50)).size(), mostLyricLinks + 1);
}

TEST(LyricPage, LinksHoldNoSignThatTheReaderRefuses) {
    for (const std::u16string &link : linksOf(lyricPageOf(3, u"a href=\"+#\" mailto"))) {
        EXPECT_EQ(link.find_first_of(u"+# &"), std::u16string::npos);
        EXPECT_LE(link.size(), 298U);
    }
    EXPECT_EQ(linksOf(lyricPageOf(3, u"a href=\"x\" HREF")).size(), 4U);
}

TEST(LyricPage, WordsAreTextAndNothingElse) {
    const std::u16string page = lyricPage(base, u"</title><script>\"href", {});
    EXPECT_EQ(page.find(u"<script"), std::u16string::npos);
    EXPECT_EQ(linksOf(page).size(), 1U);
}

TEST(LyricPage, SaysItsCharset) {
    EXPECT_NE(lyricPageOf(1).find(u"<meta charset=\"gb18030\">"), std::u16string::npos);
    EXPECT_EQ(lyricPageOf(1).front(), u'<') << "no mark in front";
}

TEST(SongCell, IsThePackedRecordWithItsLink) {
    EXPECT_EQ(songCell(base, song(u"Name", u"Singer", u"Album")),
              u"<td class=\"data\">0@@Name@@Album@@Singer@@12345@@mp3@@100@@FI"
              u"http://127.0.0.1:8420/song/" +
                  songId() + u".mp3;Singer - Name;</td>");
}

TEST(SongCell, HasEmptyFieldsForWhatIsNotKnown) {
    const Item item = song(u"Name", u"", u"");
    EXPECT_EQ(songCell(base, item), u"<td class=\"data\">0@@Name@@@@@@12345@@mp3@@100@@FI"
                                    u"http://127.0.0.1:8420/song/" +
                                        songId() + u".mp3;Name;</td>");
}

// As the reader takes a cell apart.
std::vector<std::u16string> fieldsOf(const std::u16string &cell) {
    std::u16string text = upper(cell);
    EXPECT_LE(text.size(), 2000U);
    constexpr std::u16string_view marker = u"<TD CLASS=\"DATA\">";
    EXPECT_TRUE(startsWith(text, marker));
    text.erase(0, marker.size());
    const std::size_t separator = text.find(u"@@FI");
    const std::u16string record = text.substr(0, separator);
    const std::u16string pieces = text.substr(separator + 4, text.find(u"</TD>") - separator - 4);
    EXPECT_TRUE(startsWith(pieces, u"HTTP://127.0.0.1:8420/SONG/" + upper(songId()) + u".MP3;"))
        << toUtf8(pieces);
    EXPECT_EQ(std::count(pieces.begin(), pieces.end(), u';'), 2);
    EXPECT_EQ(pieces.back(), u';');
    std::vector<std::u16string> fields;
    std::size_t at = 0;
    for (std::size_t next = 0; next != std::u16string::npos; at = next + 2) {
        next = record.find(u"@@", at);
        fields.push_back(record.substr(at, next == std::u16string::npos ? next : next - at));
    }
    return fields;
}

TEST(SongCell, ComesApartIntoItsSevenFieldsWhateverIsInThem) {
    const std::u16string nasty[] = {u"@",      u"@@FI",  u"fi",          u"Fi;</td>", u";http://x;",
                                    u"a@",     u"@@a@@", u"</TD>",       u"href=",    u"\r\n\0",
                                    u"Finale", u"Ｆｉ",  u"\xFF20\xFF20"};
    for (const std::u16string &text : nasty) {
        const auto fields = fieldsOf(songCell(base, song(text, text, text)));
        ASSERT_EQ(fields.size(), 7U) << toUtf8(text);
        EXPECT_EQ(fields[4], u"12345");
        EXPECT_EQ(fields[5], u"MP3");
    }
}

TEST(SongCell, FieldsMakeAFileNameThatFits) {
    const std::u16string longest[] = {std::u16string(1000, u'x'), std::u16string(1000, u'中'),
                                      std::u16string(1000, u'\x0250'),
                                      u"fi" + std::u16string(1000, u'@')};
    for (const std::u16string &text : longest) {
        const auto fields = fieldsOf(songCell(base, song(text, text, text)));
        ASSERT_EQ(fields.size(), 7U);
        const std::u16string name = fields[3] + u" " + fields[1] + u"." + fields[5];
        EXPECT_LE(toUtf8(name).size(), 255U);
        EXPECT_LE(name.size(), 222U);
        EXPECT_EQ(name.find_first_of(u"\\/:*?\"<>|"), std::u16string::npos);
    }
}

TEST(SongPage, HasNoCellAtItsBeginningAndOneForEachSong) {
    const Item one = song(u"<td class=\"data\">", u"x", u"y");
    const std::vector<const Item *> many(mostSongs + 10, &one);
    const std::u16string page = upper(songPage(base, u"<td class=\"data\">", many));
    std::size_t cells = 0;
    for (std::size_t at = 0; (at = page.find(u"<TD CLASS=\"DATA\">", at)) != page.npos; ++at)
        ++cells;
    EXPECT_EQ(cells, mostSongs);
    EXPECT_FALSE(startsWith(page, u"<TD"));
}

} // namespace

} // namespace velmora::catalogue
