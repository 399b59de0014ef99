// Names, tags, words and lyrics from anywhere: the pages keep the form that their readers look for,
// a record comes apart into its fields, a lyric read again is the same.

#include "base/text.h"
#include "catalogue/catalogue.h"
#include "catalogue/lyric_file.h"
#include "catalogue/pages.h"
#include "catalogue/texts.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace velmora;
using namespace velmora::catalogue;

void require(bool holds) {
    if (!holds)
        std::abort();
}

std::size_t countOf(const std::u16string &text, std::u16string_view what) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(what, at)) != std::u16string::npos; at += what.size())
        ++count;
    return count;
}

void checkCell(const Item &song) {
    constexpr char16_t base[] = u"http://h:1";
    const std::u16string cell = upper(songCell(base, song));
    require(cell.size() <= 2000);
    require(countOf(cell, u"<TD CLASS=\"DATA\">") == 1 && countOf(cell, u"</TD>") == 1);
    const std::size_t end = cell.find(u"@@FI");
    require(end == cell.find(u"@@FIHTTP://H:1/SONG/" + upper(fromAscii(song.id())) + u".MP3;"));
    require(countOf(cell.substr(0, end), u"@@") == 6);
    require(countOf(cell, u";") == 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    const std::size_t middle = bytes.find('\n') == std::string::npos ? size : bytes.find('\n');
    const std::u16string first = textOf(bytes.substr(0, middle));
    const std::u16string second = textOf(bytes.substr(std::min(middle + 1, size)));

    Item song;
    song.file.path = "song.mp3";
    song.tags = {first, second, first + second};
    checkCell(song);

    const std::vector<const Item *> lyrics(size % 4, &song);
    const std::u16string page = upper(lyricPage(u"http://h:1", first, lyrics));
    require(countOf(page, u"HREF") == lyrics.size() + 1);
    require(countOf(page, u"<SCRIPT") == 0);
    pageBytes(page);

    const std::u16string form = searchForm(first);
    require(searchForm(form) == form);
    for (const std::u16string &word : wordsOf(form))
        require(!word.empty());
    searchWords(bytes, "w", "&source=");

    if (const auto lyric = readLyric(bytes)) {
        require(lyric->bytes.substr(lyric->bytes.size() - 2) == "\r\n");
        const auto again = readLyric(lyric->bytes);
        require(again && again->bytes == lyric->bytes);
    }
    return 0;
}
