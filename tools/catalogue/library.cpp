#include "catalogue/library.h"

#include "base/ascii.h"
#include "base/text.h"
#include "catalogue/lyric_file.h"
#include "catalogue/texts.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace velmora::catalogue {

namespace {

constexpr std::size_t longestLyric = std::size_t{1} << 20;

struct TypeRow {
    std::string_view format;
    const char *type;
};

constexpr TypeRow typeRows[] = {
    {"mp3", "audio/mpeg"},       {"wma", "audio/x-ms-wma"},      {"wav", "audio/x-wav"},
    {"mid", "audio/midi"},       {"midi", "audio/midi"},         {"ogg", "audio/ogg"},
    {"oga", "audio/ogg"},        {"opus", "audio/ogg"},          {"flac", "audio/flac"},
    {"tta", "audio/x-tta"},      {"aiff", "audio/x-aiff"},       {"aif", "audio/x-aiff"},
    {"au", "audio/basic"},       {"ape", "audio/x-ape"},         {"aac", "audio/aac"},
    {"m4a", "audio/mp4"},        {"rm", "audio/x-pn-realaudio"}, {"rmvb", "video/vnd.rn-realvideo"},
    {"mpg", "video/mpeg"},       {"mpeg", "video/mpeg"},         {"avi", "video/x-msvideo"},
    {"wmv", "video/x-ms-wmv"},   {"flv", "video/x-flv"},         {"mp4", "video/mp4"},
    {"mkv", "video/x-matroska"}, {"webm", "video/webm"},
};

// FNV-1a: well spread and the same everywhere.
std::string idOf(std::string_view path) {
    std::uint64_t value = 0xCBF29CE484222325U;
    for (const char byte : path) {
        value ^= static_cast<unsigned char>(byte);
        value *= 0x100000001B3U;
    }
    std::string id;
    for (int i = 60; i >= 0; i -= 4)
        id += lowerAscii(hexDigit(static_cast<unsigned>(value >> i)));
    return id;
}

std::string_view nameOf(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::string_view stemOf(std::string_view path) {
    const std::size_t dot = nameOf(path).rfind('.');
    const std::size_t cut = dot == std::string_view::npos ? 0 : nameOf(path).size() - dot;
    return path.substr(0, path.size() - cut);
}

std::string formatOf(std::string_view path) {
    const std::size_t dot = nameOf(path).rfind('.');
    if (dot == std::string_view::npos)
        return "";
    return lowerAscii(nameOf(path).substr(dot + 1));
}

void makeForms(Item &item) {
    item.titleForm = searchForm(item.tags.title);
    item.fullForm = u" " + item.titleForm + u" " + searchForm(item.tags.artist) + u" " +
                    searchForm(item.tags.album) + u" " + searchForm(item.stem) + u" ";
}

// Words of plain letters are found at the beginning of a word, others anywhere. Below 0 where one
// is missing, else how many are found whole.
int matches(const Item &item, const std::vector<std::u16string> &words) {
    int whole = 0;
    for (const std::u16string &word : words) {
        const bool latin = word.front() < 0x2000;
        if (item.fullForm.find((latin ? u" " : u"") + word) == std::u16string::npos)
            return -1;
        whole += item.fullForm.find(u" " + word + u" ") != std::u16string::npos ? 1 : 0;
    }
    return whole;
}

} // namespace

const char *mediaType(std::string_view format) noexcept {
    const auto *row = std::find_if(std::begin(typeRows), std::end(typeRows),
                                   [&](const TypeRow &r) { return r.format == format; });
    return row == std::end(typeRows) ? nullptr : row->type;
}

Item Library::read(const FileEntry &file) const {
    Item item;
    item.id = idOf(file.path);
    item.file = file;
    item.format = formatOf(file.path);
    item.isLyric = item.format == "lrc";
    item.stem = oneLine(textOf(nameOf(stemOf(file.path))));
    if (item.isLyric) {
        const auto bytes = folder_.read(file.path, longestLyric);
        const auto lyric = bytes && bytes->size() < longestLyric ? readLyric(*bytes) : std::nullopt;
        if (!lyric)
            item.format.clear(); // nothing that can be served
        else
            item.own = {lyric->title, lyric->artist, u""};
    } else if (const auto open = folder_.open(file.path)) {
        item.own = tagsOf(*open);
    }
    item.tags = item.own;
    const Tags named = tagsOfName(item.stem);
    if (item.tags.title.empty() && item.tags.artist.empty() && !item.isLyric)
        item.tags.artist = named.artist;
    if (item.tags.title.empty() && !item.isLyric)
        item.tags.title = named.title;
    makeForms(item);
    return item;
}

// A lyric that does not say what it belongs to has the words of the song beside it.
void Library::describeLyrics() {
    std::map<std::string_view, const Item *> songs;
    for (const Item *song : songs_)
        songs.emplace(stemOf(song->file.path), song);
    for (auto &[id, item] : items_) {
        if (!item.isLyric)
            continue;
        const auto found = songs.find(stemOf(item.file.path));
        const Tags other = found != songs.end() ? found->second->tags : tagsOfName(item.stem);
        const bool nameless = item.own.title.empty();
        item.tags = item.own;
        if (nameless)
            item.tags.title = other.title;
        if (nameless && item.tags.artist.empty())
            item.tags.artist = other.artist;
        makeForms(item);
        if (found != songs.end())
            item.fullForm += found->second->fullForm;
    }
}

void Library::refresh() {
    std::vector<FileEntry> files = folder_.files();
    if (files == files_)
        return;
    files_ = std::move(files);
    std::map<std::string, Item, std::less<>> items;
    for (const FileEntry &file : files_) {
        const std::string format = formatOf(file.path);
        if (file.bytes == 0 || (format != "lrc" && mediaType(format) == nullptr))
            continue;
        const std::string id = idOf(file.path);
        const auto old = items_.find(id);
        const bool same = old != items_.end() && old->second.file == file;
        items.emplace(id, same ? std::move(old->second) : read(file));
    }
    items_ = std::move(items);
    songs_.clear();
    lyrics_.clear();
    for (const auto &[id, item] : items_)
        if (!item.format.empty())
            (item.isLyric ? lyrics_ : songs_).push_back(&item);
    describeLyrics();
    const auto byPath = [](const Item *a, const Item *b) { return a->file.path < b->file.path; };
    std::sort(songs_.begin(), songs_.end(), byPath);
    std::sort(lyrics_.begin(), lyrics_.end(), byPath);
}

const Item *Library::find(std::string_view id) const {
    const auto found = items_.find(id);
    return found == items_.end() || found->second.format.empty() ? nullptr : &found->second;
}

std::vector<const Item *> Library::search(const std::vector<const Item *> &items,
                                          std::u16string_view words) {
    const std::u16string form = searchForm(words);
    // Each item is held against each word: whoever sends thousands gets what the first ones find.
    constexpr std::size_t mostWords = 32;
    std::vector<std::u16string> each = wordsOf(form);
    std::sort(each.begin(), each.end());
    each.erase(std::unique(each.begin(), each.end()), each.end());
    each.resize(std::min(each.size(), mostWords));
    struct Found {
        int rank;
        std::size_t length;
        const Item *item;
    };
    std::vector<Found> found;
    for (const Item *item : items) {
        const int whole = each.empty() ? -1 : matches(*item, each);
        if (whole < 0)
            continue;
        const std::u16string artist = searchForm(item->tags.artist);
        const bool exact = form == item->titleForm || form == searchForm(item->stem) ||
                           form == item->titleForm + u" " + artist ||
                           form == artist + u" " + item->titleForm;
        constexpr int exactly = 1000;
        found.push_back({whole + (exact ? exactly : 0), item->fullForm.size(), item});
    }
    std::stable_sort(found.begin(), found.end(), [](const Found &a, const Found &b) {
        return std::tuple(-a.rank, a.length) < std::tuple(-b.rank, b.length);
    });
    std::vector<const Item *> result;
    for (const Found &one : found)
        result.push_back(one.item);
    return result;
}

} // namespace velmora::catalogue
