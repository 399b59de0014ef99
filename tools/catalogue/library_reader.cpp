#include "catalogue/library_reader.h"

#include "base/text.h"
#include "catalogue/lyric_file.h"
#include "catalogue/texts.h"

#include <malloc.h>

#include <algorithm>
#include <utility>

namespace velmora::catalogue {

namespace {

constexpr std::size_t longestLyric = std::size_t{1} << 20;
constexpr std::size_t storedTogether = 5000;
constexpr std::int64_t second = 1'000'000'000; // nanoseconds

std::int64_t systemTime() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

bool isServed(const FileEntry &file) {
    const std::string format = formatOf(file.path);
    return file.bytes != 0 && (format == "lrc" || mediaType(format) != nullptr);
}

// A lyric that does not say what it belongs to has the words of the song beside it.
Tags lyricTags(const Tags &own, const Tags &other) {
    Tags tags = own;
    if (own.title.empty()) {
        tags.title = other.title;
        if (tags.artist.empty())
            tags.artist = other.artist;
    }
    return tags;
}

} // namespace

LibraryReader::LibraryReader(const Folder &folder, TagReader &tags, KnownTags *known)
    : folder_(folder), tags_(tags), known_(known) {}

bool LibraryReader::isDue() const {
    // A file that was changed in its place does not change its folder. Looking at each takes a
    // while where there are many, so that is done for a small part of the time alone.
    constexpr int share = 30;
    const auto since = std::chrono::steady_clock::now() - looked_;
    return since > took_ * share || !folder_.same(listing_);
}

void LibraryReader::takeKnown() {
    if (known_ != nullptr && !std::exchange(knownTaken_, true))
        kept_ = known_->load();
}

const KnownFile *LibraryReader::kept(const FileEntry &file) const {
    const auto at = std::lower_bound(
        kept_.begin(), kept_.end(), file.path,
        [](const KnownFile &known, const std::string &path) { return known.file.path < path; });
    return at != kept_.end() && at->file == file ? &*at : nullptr;
}

// What a file says. `keep` becomes false where it may say something else another time.
KnownFile LibraryReader::opened(const FileEntry &file, bool &keep) {
    KnownFile known{file, true, {}};
    keep = systemTime() - file.changed > 2 * second; // else it may change within its own time
    const auto open = folder_.open(file.path);
    if (!open) {
        known.usable = keep = false;
    } else if (formatOf(file.path) == "lrc") {
        const auto bytes = folder_.read(file.path, longestLyric);
        const auto lyric = bytes && bytes->size() < longestLyric ? readLyric(*bytes) : std::nullopt;
        known.usable = lyric.has_value();
        if (lyric)
            known.tags = {cutTag(lyric->title), cutTag(lyric->artist), u""};
    } else {
        const auto tags = tags_.tagsOf(*open);
        keep = keep && tags.has_value();
        known.tags = tags.value_or(Tags{});
    }
    return known;
}

LibraryReader::ItemPointer LibraryReader::itemOf(const KnownFile &known) const {
    if (!known.usable)
        return nullptr;
    auto item = std::make_shared<Item>();
    item->id = idOf(known.file.path);
    item->file = known.file;
    item->format = formatOf(known.file.path);
    item->isLyric = item->format == "lrc";
    item->tags = known.tags;
    if (item->isLyric) {
        item->own = std::make_shared<const Tags>(known.tags);
        return item;
    }
    if (item->tags.title.empty()) {
        const Tags named = tagsOfName(stemOf(*item));
        item->tags.title = named.title;
        if (item->tags.artist.empty())
            item->tags.artist = named.artist;
    }
    return item;
}

bool LibraryReader::isBeingWritten(const FileEntry &file) const {
    const std::int64_t ago = systemTime() - file.changed;
    return ago >= 0 && ago < second;
}

LibraryReader::ItemPointer LibraryReader::itemFor(const FileEntry &file) {
    const auto old = old_.find(file.path);
    if (old != old_.end() && (old->second->file == file || isBeingWritten(file)))
        return old->second;
    if (const KnownFile *known = kept(file))
        return itemOf(*known);
    bool keep = false;
    KnownFile known = opened(file, keep);
    ItemPointer item = itemOf(known);
    if (keep && known_ != nullptr)
        come_.push_back(std::move(known));
    return item;
}

void LibraryReader::describeLyrics(Library::Items &items) {
    std::unordered_map<std::string_view, const Item *> songs;
    for (const ItemPointer &item : items)
        if (!item->isLyric)
            songs.emplace(pathStemOf(item->file.path), item.get());
    for (ItemPointer &item : items) {
        if (!item->isLyric)
            continue;
        const auto found = songs.find(pathStemOf(item->file.path));
        const Tags other = found != songs.end() ? found->second->tags : tagsOfName(stemOf(*item));
        const Tags tags = lyricTags(*item->own, other);
        if (tags == item->tags)
            continue;
        auto changed = std::make_shared<Item>(*item);
        changed->tags = tags;
        item = std::move(changed);
    }
}

// While nothing was there before, what has been read so far can be found. Each time twice as much
// is shown, since making a library takes a while itself.
void LibraryReader::publish(const ReadingWatch &watch, const Library::Items &items, bool all) {
    Library::Items described = items;
    describeLyrics(described);
    auto library = std::make_shared<const Library>(std::move(described), library_.get());
    if (all)
        library_ = std::move(library);
    else
        watch.part(std::move(library));
}

void LibraryReader::store(bool all) {
    if (known_ == nullptr)
        return;
    std::vector<std::string> gone;
    if (all) {
        std::unordered_map<std::string_view, bool> there;
        for (const FileEntry &file : listing_.files)
            there.emplace(file.path, true);
        for (const KnownFile &known : kept_)
            if (there.find(known.file.path) == there.end())
                gone.push_back(known.file.path);
        for (const auto &[path, item] : old_)
            if (there.find(path) == there.end())
                gone.emplace_back(path);
    }
    known_->store(come_, gone);
    come_.clear();
}

std::shared_ptr<const Library> LibraryReader::read(const ReadingWatch &watch) {
    takeKnown();
    const auto begin = std::chrono::steady_clock::now();
    Listing listing = folder_.list(watch.goesOn);
    if (!listing.ended)
        return library_;
    looked_ = std::chrono::steady_clock::now();
    took_ = looked_ - begin;
    listing_ = std::move(listing);
    const Library &before = *library_;
    for (const ItemPointer &item : before.items())
        old_.emplace(item->file.path, item);
    Library::Items items;
    std::size_t done = 0;
    std::size_t shown = 500;
    constexpr std::size_t told = 1000;
    bool ended = false;
    for (const FileEntry &file : listing_.files) {
        ended = !watch.goesOn();
        if (ended)
            break;
        if (++done % told == 0)
            watch.progress(done, listing_.files.size());
        if (!isServed(file))
            continue;
        if (ItemPointer item = itemFor(file))
            items.push_back(std::move(item));
        if (come_.size() >= storedTogether)
            store(false);
        if (before.items().empty() && items.size() >= 2 * shown && done < listing_.files.size()) {
            shown = items.size();
            publish(watch, items, false);
        }
    }
    store(!ended);
    old_.clear();
    if (ended)
        return library_;
    kept_ = {};
    if (items != before.items() || items.empty())
        publish(watch, items, true);
    listing_.files = {};
    ::malloc_trim(0); // what reading took is as much as what is kept
    return library_;
}

} // namespace velmora::catalogue
