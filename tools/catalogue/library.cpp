#include "catalogue/library.h"

#include "base/ascii.h"
#include "base/text.h"
#include "catalogue/texts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <iterator>
#include <system_error>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace velmora::catalogue {

namespace {

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

std::string_view nameOf(std::string_view path) {
    const void *slash = ::memrchr(path.data(), '/', path.size());
    return slash == nullptr ? path
                            : path.substr(static_cast<std::size_t>(
                                  static_cast<const char *>(slash) + 1 - path.data()));
}

// FNV-1a: well spread and the same everywhere.
std::uint64_t numberOf(std::string_view path) {
    std::uint64_t value = 0xCBF29CE484222325U;
    for (const char byte : path) {
        value ^= static_cast<unsigned char>(byte);
        value *= 0x100000001B3U;
    }
    return value;
}

constexpr char betweenFields = '\x1F';

// The fields by which an item is found, each between blanks. As UTF-8: that is shorter, and a part
// of a text is one of its characters there as well.
std::string searchText(const Item &item) {
    std::string text;
    for (const std::u16string &field :
         {item.tags.title, item.tags.artist, item.tags.album, stemOf(item)})
        text += " " + toUtf8(searchForm(field)) + " " + betweenFields;
    return text;
}

std::array<std::string_view, 4> fieldsOf(std::string_view text) {
    std::array<std::string_view, 4> fields;
    for (std::string_view &field : fields) {
        const std::size_t end = std::min(text.find(betweenFields), text.size());
        field = end < 2 ? std::string_view() : text.substr(1, end - 2);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return fields;
}

bool isExactly(std::string_view text, const std::string &form) {
    if (form.size() + 4 > text.size())
        return false;
    const auto [title, artist, album, name] = fieldsOf(text);
    const auto both = [&](std::string_view first, std::string_view second) {
        return form.size() == first.size() + 1 + second.size() &&
               form.compare(0, first.size(), first) == 0 && form[first.size()] == ' ' &&
               form.compare(first.size() + 1, std::string::npos, second) == 0;
    };
    return form == title || form == name || both(title, artist) || both(artist, title);
}

struct Word {
    std::string
        sought; // words of plain letters are found at the beginning of a word, others anywhere
    std::string whole;
};

std::vector<Word> soughtWords(std::u16string_view form) {
    // Each item is held against each word: whoever sends thousands gets what the first ones find.
    constexpr std::size_t mostWords = 32;
    std::vector<std::u16string> each = wordsOf(form);
    std::sort(each.begin(), each.end());
    each.erase(std::unique(each.begin(), each.end()), each.end());
    each.resize(std::min(each.size(), mostWords));
    std::vector<Word> words;
    for (const std::u16string &word : each) {
        const std::string bytes = toUtf8(word);
        words.push_back({(word.front() < 0x2000 ? " " : "") + bytes, " " + bytes + " "});
    }
    return words;
}

bool holds(std::string_view text, const std::string &sought) {
    return ::memmem(text.data(), text.size(), sought.data(), sought.size()) != nullptr;
}

// Below 0 where a word is missing, else how many are found whole. The first word stands at `there`
// and nowhere ahead of it.
int matches(std::string_view text, const std::vector<Word> &words, std::size_t there) {
    const auto isThere = [&](const Word &word) { return holds(text, word.sought); };
    if (!std::all_of(words.begin() + 1, words.end(), isThere))
        return -1;
    const auto isWhole = [&](const Word &word) { return holds(text, word.whole); };
    const bool first = holds(text.substr(std::max<std::size_t>(there, 1) - 1), words.front().whole);
    return static_cast<int>(first) +
           static_cast<int>(std::count_if(words.begin() + 1, words.end(), isWhole));
}

std::size_t countOf(std::string_view text, const std::string &sought) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(sought, at)) != std::string_view::npos; ++at)
        ++count;
    return count;
}

} // namespace

std::string idOf(std::string_view path) {
    const std::uint64_t value = numberOf(path);
    std::string id;
    for (int i = 60; i >= 0; i -= 4)
        id += lowerAscii(hexDigit(static_cast<unsigned>(value >> i)));
    return id;
}

std::string Item::id() const { return idOf(file.path); }

std::string Item::format() const { return formatOf(file.path); }

std::string_view pathStemOf(std::string_view path) noexcept {
    const std::string_view name = nameOf(path);
    const std::size_t dot = name.rfind('.');
    const std::size_t cut = dot == std::string_view::npos ? 0 : name.size() - dot;
    return path.substr(0, path.size() - cut);
}

std::u16string stemOf(const Item &item) {
    return oneLine(textOf(nameOf(pathStemOf(item.file.path))));
}

std::string formatOf(std::string_view path) {
    const std::string_view name = nameOf(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? "" : lowerAscii(name.substr(dot + 1));
}

const char *mediaType(std::string_view format) noexcept {
    const auto *row = std::find_if(std::begin(typeRows), std::end(typeRows),
                                   [&](const TypeRow &r) { return r.format == format; });
    return row == std::end(typeRows) ? nullptr : row->type;
}

std::string_view Library::Shelf::text(std::size_t at) const {
    const std::size_t begin = at == 0 ? 0 : ends[at - 1];
    return std::string_view(texts).substr(begin, ends[at] - begin);
}

void Library::Shelf::add(const Item *item, std::string_view text) {
    items.push_back(item);
    texts += text;
    ends.push_back(static_cast<std::uint32_t>(texts.size()));
}

Library::Library(Items items, const Library *before) : items_(std::move(items)) {
    std::unordered_map<std::string_view, std::string_view> songs; // text by path without extension
    byNumber_.reserve(items_.size());
    bool anyLyric = false;
    for (const auto &item : items_) {
        byNumber_.emplace_back(numberOf(item->file.path), item.get());
        anyLyric = anyLyric || item->isLyric;
    }
    std::sort(byNumber_.begin(), byNumber_.end());
    for (const bool lyric : {false, true}) {
        Shelf &shelf = lyric ? lyrics_ : songs_;
        for (const auto &item : items_) {
            if (item->isLyric != lyric)
                continue;
            const std::string_view known =
                before != nullptr && !lyric ? before->textBefore(item.get()) : std::string_view();
            std::string text = known.empty() ? searchText(*item) : std::string(known);
            if (lyric) // it is found by the words of the song beside it, too
                if (const auto song = songs.find(pathStemOf(item->file.path)); song != songs.end())
                    text += song->second;
            shelf.add(item.get(), text);
        }
        if (!lyric && anyLyric)
            for (std::size_t i = 0; i < songs_.items.size(); ++i)
                songs.emplace(pathStemOf(songs_.items[i]->file.path), songs_.text(i));
    }
    findAlbums();
}

void Library::findAlbums() {
    std::unordered_set<std::string> seen;
    std::vector<std::pair<std::u16string, const Item *>> found;
    for (const Item *song : songs_.items) {
        if (song->tags.album.empty())
            continue;
        const std::string_view path = song->file.path;
        const std::string folder(path.substr(0, path.size() - nameOf(path).size()));
        if (seen.insert(folder + '\0' + toUtf8(song->tags.album)).second)
            found.emplace_back(upper(song->tags.album), song);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    for (const auto &[name, song] : found)
        albums_.push_back(song);
}

std::string_view Library::textBefore(const Item *item) const {
    const auto place = std::lower_bound(
        songs_.items.begin(), songs_.items.end(), item->file.path,
        [](const Item *song, const std::string &path) { return song->file.path < path; });
    return place != songs_.items.end() && *place == item
               ? songs_.text(static_cast<std::size_t>(place - songs_.items.begin()))
               : std::string_view();
}

const Item *Library::find(std::string_view id) const {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), number, 16);
    if (error != std::errc() || end != id.data() + id.size())
        return nullptr;
    const auto place =
        std::lower_bound(byNumber_.begin(), byNumber_.end(), number,
                         [](const auto &one, std::uint64_t sought) { return one.first < sought; });
    return place != byNumber_.end() && place->first == number && place->second->id() == id
               ? place->second
               : nullptr;
}

Library::Found Library::searchSongs(std::u16string_view words, std::size_t most) const {
    return songs_.search(words, most);
}

Library::Found Library::searchLyrics(std::u16string_view words, std::size_t most) const {
    return lyrics_.search(words, most);
}

Library::Found Library::Shelf::search(std::u16string_view words, std::size_t most) const {
    struct Match {
        int rank;
        std::size_t length;
        std::size_t at;
    };
    const std::u16string form = searchForm(words);
    std::vector<Word> each = soughtWords(form);
    const std::string whole = toUtf8(form);
    // The run through all texts looks for the word that is rarest among the first of them.
    constexpr std::size_t sample = 100'000;
    std::vector<std::pair<std::size_t, Word>> counted;
    counted.reserve(each.size());
    for (Word &word : each)
        counted.emplace_back(countOf(std::string_view(texts).substr(0, sample), word.sought), word);
    const auto rarer = [](const auto &a, const auto &b) { return a.first < b.first; };
    std::stable_sort(counted.begin(), counted.end(), rarer);
    for (std::size_t i = 0; i < each.size(); ++i)
        each[i] = counted[i].second;
    std::vector<Match> matching;
    std::size_t item = 0;
    for (std::size_t from = 0; !each.empty() && from < texts.size();) {
        const std::string &rarest = each.front().sought;
        const void *found =
            ::memmem(texts.data() + from, texts.size() - from, rarest.data(), rarest.size());
        if (found == nullptr)
            break;
        const auto at = static_cast<std::size_t>(static_cast<const char *>(found) - texts.data());
        while (ends[item] <= at)
            ++item;
        constexpr int exactly = 1000;
        const std::string_view own = text(item);
        const std::size_t begin = ends[item] - own.size();
        if (const int rank = matches(own, each, at - begin); rank >= 0) {
            const bool all = static_cast<std::size_t>(rank) == each.size();
            const int more = all && isExactly(own, whole) ? exactly : 0;
            matching.push_back({rank + more, own.size(), item});
        }
        from = ends[item];
    }
    Found result{{}, matching.size()};
    const auto end =
        matching.begin() + static_cast<std::ptrdiff_t>(std::min(most, matching.size()));
    std::partial_sort(matching.begin(), end, matching.end(), [](const Match &a, const Match &b) {
        return std::tuple(-a.rank, a.length, a.at) < std::tuple(-b.rank, b.length, b.at);
    });
    for (auto one = matching.begin(); one != end; ++one)
        result.items.push_back(items[one->at]);
    return result;
}

} // namespace velmora::catalogue
