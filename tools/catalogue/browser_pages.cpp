#include "catalogue/browser_pages.h"

#include "base/ascii.h"
#include "base/text.h"
#include "catalogue/lyric_file.h"
#include "catalogue/lyric_lines.h"
#include "catalogue/texts.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace velmora::catalogue {

namespace {

constexpr std::size_t onAPage = 100;
constexpr std::size_t mostPages = 100'000;

std::u16string number(std::size_t value) { return fromAscii(std::to_string(value)); }

std::u16string songName(const Item &item) {
    return item.tags.artist.empty() ? item.tags.title : item.tags.artist + u" - " + item.tags.title;
}

std::u16string link(std::u16string_view address, std::u16string_view text,
                    std::u16string_view more = u"") {
    return u"<a href=\"" + std::u16string(address) + u"\"" + std::u16string(more) + u">" +
           htmlText(text) + u"</a>";
}

std::u16string listen(const Item &item) { return u"/listen/" + fromAscii(item.id()); }

std::u16string file(const Item &item) {
    return (item.isLyric ? u"/LrcDown/" : u"/song/") + fromAscii(item.id()) + u"." +
           fromAscii(item.isLyric ? "lrc" : item.format());
}

std::string_view folderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? "" : path.substr(0, slash + 1);
}

std::u16string folderLink(std::string_view folder, std::u16string_view text) {
    return link(u"/folder?at=" + fromAscii(escaped(folder)), text);
}

std::u16string around(const Words &words, Language language, std::u16string_view title,
                      std::u16string_view sought, const std::u16string &body) {
    return u"<!DOCTYPE html>\n<html lang=\"" + std::u16string(codeOf(language)) +
           u"\">\n<head>\n<meta charset=\"utf-8\">\n<title>" + htmlText(title) +
           u"</title>\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           u"<meta name=\"color-scheme\" content=\"light dark\">\n"
           u"<link rel=\"stylesheet\" href=\"/look.css\">\n"
           u"<script src=\"/follow.js\" defer></script>\n</head>\n<body>\n<header>\n<nav>" +
           link(u"/", words.title) + link(u"/albums", words.albums) +
           link(u"/folder", words.folders) + u"</nav>\n<form action=\"/search\" role=\"search\">" +
           u"<input type=\"search\" name=\"q\" maxlength=\"200\" aria-label=\"" +
           htmlText(words.searchFor) + u"\" placeholder=\"" + htmlText(words.searchFor) +
           u"\" value=\"" + htmlText(sought) + u"\"><button>" + htmlText(words.search) +
           u"</button></form>\n</header>\n<main>\n<h1>" + htmlText(title) + u"</h1>\n" + body +
           u"</main>\n</body>\n</html>\n";
}

std::u16string songRow(const Item &item) {
    return u"<li>" + link(listen(item), songName(item)) +
           (item.tags.album.empty() ? u"" : u"<small>" + htmlText(item.tags.album) + u"</small>") +
           u"</li>\n";
}

// Which part of a long list is shown, and the way to the others. `address` ends where the number
// of the page is to stand.
struct Part {
    std::size_t first = 0;
    std::size_t end = 0;
    std::u16string ways;
};

Part partOf(const Words &words, std::string_view query, std::size_t all,
            const std::u16string &address) {
    std::size_t page = 1;
    const std::string asked = queryValue(query, "page");
    std::from_chars(asked.data(), asked.data() + asked.size(), page);
    const std::size_t last = all == 0 ? 1 : (all + onAPage - 1) / onAPage;
    page = std::clamp<std::size_t>(page, 1, std::min(last, mostPages));
    Part part{(page - 1) * onAPage, std::min(page * onAPage, all), u""};
    if (last == 1)
        return part;
    part.ways = u"<nav aria-label=\"" + htmlText(words.pages) + u"\">";
    if (page > 1)
        part.ways += link(address + number(page - 1), words.previous);
    part.ways += u"<small>" + number(part.first + 1) + u"–" + number(part.end) + u" " +
                 std::u16string(words.of) + u" " + number(all) + u"</small>";
    if (page < last)
        part.ways += link(address + number(page + 1), words.next);
    part.ways += u"</nav>\n";
    return part;
}

std::u16string songList(const std::vector<const Item *> &songs, std::size_t first,
                        std::size_t end) {
    std::u16string list = u"<ul class=\"songs\">\n";
    for (std::size_t i = first; i < end && i < songs.size(); ++i)
        list += songRow(*songs[i]);
    return list + u"</ul>\n";
}

std::u16string heading(std::u16string_view text, std::size_t count) {
    return u"<h2>" + htmlText(text) + u" <small>" + number(count) + u"</small></h2>\n";
}

std::u16string homePage(const PageAsked &asked) {
    const Words &words = wordsIn(asked.language);
    std::vector<const Item *> newest = asked.library.songs();
    const auto end =
        newest.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(newest.size(), 20));
    std::partial_sort(newest.begin(), end, newest.end(), [](const Item *a, const Item *b) {
        return std::tie(b->file.changed, a->file.path) < std::tie(a->file.changed, b->file.path);
    });
    newest.erase(end, newest.end());
    const std::u16string body =
        u"<p>" + htmlText(words.songs) + u" " + number(asked.library.songs().size()) + u" · " +
        htmlText(words.lyrics) + u" " + number(asked.library.lyrics().size()) + u" · " +
        htmlText(words.albums) + u" " + number(asked.library.albums().size()) + u"</p>\n<h2>" +
        htmlText(words.newest) + u"</h2>\n" + songList(newest, 0, newest.size());
    return around(words, asked.language, words.title, u"", body);
}

std::u16string searchPage(const PageAsked &asked, std::string_view query) {
    constexpr std::size_t mostLyrics = 20;
    const Words &words = wordsIn(asked.language);
    const std::string bytes = queryValue(query, "q");
    const std::u16string sought = oneLine(textOf(bytes));
    const std::size_t all = asked.library.searchSongs(sought, 0).all;
    const Part part =
        partOf(words, query, all, u"/search?q=" + fromAscii(escaped(bytes)) + u"&amp;page=");
    const Library::Found songs = asked.library.searchSongs(sought, part.end);
    const Library::Found lyrics = asked.library.searchLyrics(sought, mostLyrics);
    std::u16string body;
    if (songs.all != 0)
        body += heading(words.songs, songs.all) + songList(songs.items, part.first, part.end) +
                part.ways;
    if (lyrics.all != 0) {
        body += heading(words.lyrics, lyrics.all) + u"<ul class=\"songs\">\n";
        for (const Item *lyric : lyrics.items)
            body += u"<li>" + link(file(*lyric), songName(*lyric)) + u"</li>\n";
        body += u"</ul>\n";
    }
    if (body.empty())
        body = u"<p>" + htmlText(words.nothing) + u"</p>\n";
    return around(words, asked.language, std::u16string(words.search) + u": " + sought, sought,
                  body);
}

std::u16string albumsPage(const PageAsked &asked, std::string_view query) {
    const Words &words = wordsIn(asked.language);
    const std::vector<const Item *> &albums = asked.library.albums();
    const Part part = partOf(words, query, albums.size(), u"/albums?page=");
    std::u16string body = u"<ul class=\"songs\">\n";
    for (std::size_t i = part.first; i < part.end; ++i)
        body += u"<li>" + link(u"/album/" + fromAscii(albums[i]->id()), albums[i]->tags.album) +
                u"<small>" + htmlText(albums[i]->tags.artist) + u"</small></li>\n";
    return around(words, asked.language, words.albums, u"", body + u"</ul>\n" + part.ways);
}

// Whose path begins so; songs are sorted by path.
using Range =
    std::pair<std::vector<const Item *>::const_iterator, std::vector<const Item *>::const_iterator>;
Range below(const Library &library, std::string_view folder) {
    const std::vector<const Item *> &songs = library.songs();
    const auto begin = std::lower_bound(
        songs.begin(), songs.end(), folder,
        [](const Item *item, std::string_view path) { return item->file.path < path; });
    const auto end = std::partition_point(begin, songs.end(), [&](const Item *item) {
        return std::string_view(item->file.path).substr(0, folder.size()) == folder;
    });
    return {begin, end};
}

// The songs of the same folder that name the same album.
std::vector<const Item *> albumOf(const Library &library, const Item &song) {
    std::vector<const Item *> songs;
    const std::string_view folder = folderOf(song.file.path);
    const auto [begin, end] = below(library, folder);
    std::copy_if(begin, end, std::back_inserter(songs), [&](const Item *item) {
        return folderOf(item->file.path) == folder && item->tags.album == song.tags.album;
    });
    return songs;
}

std::u16string albumPage(const PageAsked &asked, const Item &song, std::string_view query) {
    const Words &words = wordsIn(asked.language);
    const std::vector<const Item *> songs = albumOf(asked.library, song);
    const Part part =
        partOf(words, query, songs.size(), u"/album/" + fromAscii(song.id()) + u"?page=");
    const std::u16string title =
        song.tags.album.empty() ? std::u16string(words.songs) : song.tags.album;
    return around(words, asked.language, title, u"",
                  songList(songs, part.first, part.end) + part.ways);
}

std::u16string folderPage(const PageAsked &asked, std::string_view query) {
    const Words &words = wordsIn(asked.language);
    std::string folder = queryValue(query, "at");
    if (!folder.empty() && folder.back() != '/')
        folder += '/';
    std::u16string body = u"<ul class=\"songs\">\n";
    if (!folder.empty())
        body += u"<li>" +
                folderLink(folderOf(std::string_view(folder).substr(0, folder.size() - 1)), u"..") +
                u"</li>\n";
    std::vector<const Item *> songs;
    const auto [begin, end] = below(asked.library, folder);
    for (auto at = begin; at != end;) {
        const std::string_view rest = std::string_view((*at)->file.path).substr(folder.size());
        const std::size_t slash = rest.find('/');
        if (slash == std::string_view::npos) {
            songs.push_back(*at++);
            continue;
        }
        const std::string below_ = folder + std::string(rest.substr(0, slash + 1));
        body += u"<li>" + folderLink(below_, textOf(rest.substr(0, slash)) + u"/") + u"</li>\n";
        at = below(asked.library, below_).second;
    }
    const Part part = partOf(words, query, songs.size(),
                             u"/folder?at=" + fromAscii(escaped(folder)) + u"&amp;page=");
    for (std::size_t i = part.first; i < part.end; ++i)
        body += songRow(*songs[i]);
    const std::u16string title =
        folder.empty() ? std::u16string(words.folders) : oneLine(textOf(folder));
    return around(words, asked.language, title, u"", body + u"</ul>\n" + part.ways);
}

// The lyric beside the song, or else the one that is found by its words.
const Item *lyricFor(const Library &library, const Item &song) {
    for (const char *end : {".lrc", ".LRC", ".Lrc"})
        if (const Item *beside = library.find(idOf(std::string(pathStemOf(song.file.path)) + end)))
            return beside->isLyric ? beside : nullptr;
    if (song.tags.artist.empty())
        return nullptr;
    const Library::Found found = library.searchLyrics(song.tags.title + u" " + song.tags.artist, 1);
    return found.items.empty() ? nullptr : found.items.front();
}

std::u16string lyricText(const PageAsked &asked, const Item &lyric) {
    constexpr std::size_t longest = std::size_t{1} << 20;
    const auto bytes = asked.folder.read(lyric.file.path, longest);
    const auto read = bytes ? readLyric(*bytes) : std::nullopt;
    if (!read)
        return u"";
    const Words &words = wordsIn(asked.language);
    std::u16string text = u"<h2>" + htmlText(words.lyrics) + u"</h2>\n<ol class=\"lyric\" " +
                          u"aria-label=\"" + htmlText(words.lyricOf) + u"\">\n";
    for (const LyricLine &line : lyricLines(read->bytes))
        text += u"<li data-at=\"" + number(static_cast<std::size_t>(line.atMs)) + u"\">" +
                (line.text.empty() ? u"&nbsp;" : htmlText(line.text)) + u"</li>\n";
    return text + u"</ol>\n";
}

std::u16string listenPage(const PageAsked &asked, const Item &song) {
    const Words &words = wordsIn(asked.language);
    const std::string_view type = mediaType(song.format());
    const std::u16string kind = type.substr(0, 5) == "video" ? u"video" : u"audio";
    std::u16string body = u"<" + kind + u" controls preload=\"metadata\" src=\"" + file(song) +
                          u"\">" + htmlText(words.noPlayer) + u"</" + kind + u">\n<nav>";
    const std::vector<const Item *> album = albumOf(asked.library, song);
    const auto at = std::find(album.begin(), album.end(), &song);
    if (at != album.begin() && at != album.end())
        body += link(listen(**(at - 1)), words.previous, u" rel=\"prev\"");
    if (at != album.end() && at + 1 != album.end())
        body += link(listen(**(at + 1)), words.next, u" rel=\"next\"");
    body += link(file(song), words.save, u" download");
    if (!song.tags.album.empty())
        body += link(u"/album/" + fromAscii(song.id()), song.tags.album);
    body += folderLink(folderOf(song.file.path), words.folders) + u"</nav>\n";
    if (const Item *lyric = lyricFor(asked.library, song))
        body += lyricText(asked, *lyric);
    return around(words, asked.language, songName(song), u"", body);
}

} // namespace

std::string queryValue(std::string_view query, std::string_view name) {
    while (!query.empty()) {
        const std::size_t end = std::min(query.find('&'), query.size());
        const std::string_view pair = query.substr(0, end);
        if (pair.size() > name.size() && pair.substr(0, name.size()) == name &&
            pair[name.size()] == '=') {
            std::string value(pair.substr(name.size() + 1));
            std::replace(value.begin(), value.end(), '+', ' ');
            return unescaped(value);
        }
        query.remove_prefix(std::min(end + 1, query.size()));
    }
    return "";
}

std::optional<std::u16string> browserPage(const PageAsked &asked, std::string_view path,
                                          std::string_view query) {
    if (path == "/")
        return homePage(asked);
    if (path == "/search")
        return searchPage(asked, query);
    if (path == "/albums")
        return albumsPage(asked, query);
    if (path == "/folder")
        return folderPage(asked, query);
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return std::nullopt;
    const Item *song = asked.library.find(path.substr(slash + 1));
    if (song == nullptr || song->isLyric)
        return std::nullopt;
    if (path.substr(0, slash) == "/album")
        return albumPage(asked, *song, query);
    if (path.substr(0, slash) == "/listen")
        return listenPage(asked, *song);
    return std::nullopt;
}

} // namespace velmora::catalogue
