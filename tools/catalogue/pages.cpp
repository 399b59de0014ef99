#include "catalogue/pages.h"

#include "base/text.h"
#include "catalogue/texts.h"

#include <algorithm>

namespace velmora::catalogue {

namespace {

std::u16string number(std::size_t value) { return fromAscii(std::to_string(value)); }

std::u16string nameOf(const Item &item) {
    return item.tags.artist.empty() ? item.tags.title : item.tags.artist + u" - " + item.tags.title;
}

std::u16string pageBegin(std::u16string_view title) {
    return u"<!DOCTYPE html>\r\n<html lang=\"zh\">\r\n<head>\r\n<meta charset=\"gb18030\">\r\n"
           u"<title>" +
           htmlText(title) +
           u"</title>\r\n<style>\r\n"
           u"body { font: 15px/1.6 sans-serif; margin: 2em auto; max-width: 50em; padding: 0 1em;"
           u" background: #f6f6f4; color: #222 }\r\n"
           u"h1 { font-size: 1.4em }\r\na { color: #1a5f9c; text-decoration: none }\r\n"
           u"a:hover { text-decoration: underline }\r\n"
           u"table { border-collapse: collapse; width: 100% }\r\n"
           u"td, th { border-bottom: 1px solid #ddd; padding: .2em .6em; text-align: left }\r\n"
           u"td.data { display: none }\r\nform { margin: .5em 0 }\r\n"
           u"</style>\r\n</head>\r\n<body>\r\n<h1>" +
           htmlText(title) + u"</h1>\r\n";
}

constexpr std::u16string_view pageEnd = u"</body>\r\n</html>\r\n";

std::u16string link(std::u16string_view address, std::u16string_view text) {
    return u"<a href=\"" + std::u16string(address) + u"\">" + htmlText(text) + u"</a>";
}

std::u16string homeLink(std::u16string_view base) {
    return u"<p>" + link(std::u16string(base) + u"/", u"目录首页") + u"</p>\r\n";
}

// The record's name and singer make up a file name with a blank, a dot and the format, which may
// hold 222 characters and 255 bytes.
constexpr std::size_t mostNameBytes = 135;
constexpr std::size_t mostSingerBytes = 80;
constexpr std::size_t mostAlbumBytes = 150;
constexpr std::size_t mostLabelBytes = 150;

std::u16string fittingField(std::u16string_view text, std::size_t bytes) {
    return recordField(fittingBytes(recordField(text), bytes));
}

} // namespace

std::u16string songAddress(std::u16string_view base, const Item &song) {
    return std::u16string(base) + u"/song/" + fromAscii(song.id()) + u"." +
           fromAscii(song.format());
}

std::u16string lyricAddress(std::u16string_view base, const Item &lyric) {
    return std::u16string(base) + u"/LrcDown/" + fromAscii(lyric.id()) + u".lrc";
}

std::u16string lyricPage(std::u16string_view base, std::u16string_view words,
                         const std::vector<const Item *> &lyrics) {
    const std::size_t shown = std::min(lyrics.size(), mostLyricLinks);
    const std::u16string home = homeLink(base);
    std::u16string page = pageBegin(u"歌词搜索：" + oneLine(words));
    if (shown == 1)
        page += home;
    page += u"<p>找到 " + number(shown) + u" 个歌词。</p>\r\n<ol>\r\n";
    for (std::size_t i = 0; i < shown; ++i)
        page += u"<li>" + link(lyricAddress(base, *lyrics[i]), nameOf(*lyrics[i])) + u"</li>\r\n";
    page += u"</ol>\r\n";
    if (shown != 1)
        page += home;
    return page + std::u16string(pageEnd);
}

std::u16string songCell(std::u16string_view base, const Item &song) {
    std::u16string cell = u"<td class=\"data\">0";
    // What a row of the player's list begins with.
    const std::u16string label = fittingField(nameOf(song), mostLabelBytes);
    for (const std::u16string &field : {fittingField(song.tags.title, mostNameBytes),
                                        fittingField(song.tags.album, mostAlbumBytes),
                                        fittingField(song.tags.artist, mostSingerBytes),
                                        number(static_cast<std::size_t>(song.file.bytes)),
                                        fromAscii(song.format()), std::u16string(u"100")})
        cell += u"@@" + field;
    return cell + u"@@FI" + songAddress(base, song) + u";" + label + u";</td>";
}

std::u16string songPage(std::u16string_view base, std::u16string_view words,
                        const std::vector<const Item *> &songs) {
    const std::size_t shown = std::min(songs.size(), mostSongs);
    std::u16string page = pageBegin(u"曲目搜索：" + oneLine(words)) + u"<p>找到 " + number(shown) +
                          u" 个曲目。</p>\r\n<table>\r\n";
    for (std::size_t i = 0; i < shown; ++i) {
        const Item &song = *songs[i];
        page += u"<tr><td>" + link(songAddress(base, song), nameOf(song)) + u"</td><td>" +
                htmlText(song.tags.album) + u"</td>" + songCell(base, song) + u"</tr>\r\n";
    }
    return page + u"</table>\r\n" + homeLink(base) + std::u16string(pageEnd);
}

} // namespace velmora::catalogue
