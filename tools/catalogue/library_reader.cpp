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

// Files are asked for by their paths' order, so both know their place: what is passed over has
// gone.
KnownFile *LibraryReader::knownBefore(const std::string &path) {
    for (; keptAt_ < kept_.size() && kept_[keptAt_].file.path < path; ++keptAt_)
        gone_.push_back(std::move(kept_[keptAt_].file.path));
    const bool found = keptAt_ < kept_.size() && kept_[keptAt_].file.path == path;
    return found ? &kept_[keptAt_++] : nullptr;
}

const LibraryReader::ItemPointer *LibraryReader::itemBefore(const std::string &path) {
    const Library::Items &items = library_->items();
    for (; beforeAt_ < items.size() && items[beforeAt_]->file.path < path; ++beforeAt_)
        gone_.push_back(items[beforeAt_]->file.path);
    const bool found = beforeAt_ < items.size() && items[beforeAt_]->file.path == path;
    return found ? &items[beforeAt_++] : nullptr;
}

void LibraryReader::passOverTheRest() {
    for (; keptAt_ < kept_.size(); ++keptAt_)
        gone_.push_back(std::move(kept_[keptAt_].file.path));
    for (; beforeAt_ < library_->items().size(); ++beforeAt_)
        gone_.push_back(library_->items()[beforeAt_]->file.path);
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

LibraryReader::ItemPointer LibraryReader::itemOf(KnownFile known) const {
    if (!known.usable)
        return nullptr;
    auto item = std::make_shared<Item>();
    item->file = std::move(known.file);
    item->tags = std::move(known.tags);
    item->isLyric = item->format() == "lrc";
    if (item->isLyric) {
        item->own = std::make_shared<const Tags>(item->tags);
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
    KnownFile *kept = knownBefore(file.path);
    const ItemPointer *old = itemBefore(file.path);
    if (!isServed(file))
        return nullptr;
    if (old != nullptr && ((*old)->file == file || isBeingWritten(file)))
        return *old;
    if (kept != nullptr && kept->file == file)
        return itemOf(std::move(*kept));
    ++opened_;
    bool keep = false;
    KnownFile known = opened(file, keep);
    if (keep && known_ != nullptr)
        come_.push_back(known);
    return itemOf(std::move(known));
}

void LibraryReader::describeLyrics(Library::Items &items) {
    if (std::none_of(items.begin(), items.end(), [](const auto &item) { return item->isLyric; }))
        return;
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

std::shared_ptr<const Library> LibraryReader::libraryOf(const Library::Items &items) const {
    Library::Items described = items;
    describeLyrics(described);
    return std::make_shared<const Library>(std::move(described),
                                           part_ != nullptr ? part_.get() : library_.get());
}

void LibraryReader::store(bool all) {
    if (known_ != nullptr)
        known_->store(come_, all ? gone_ : std::vector<std::string>());
    come_.clear();
}

// While nothing was there before, what has been read so far can be found: each time twice as many
// files have been opened, since making a library takes a while itself. What is known again is all
// there sooner than parts of it would be.
void LibraryReader::showPart(const ReadingWatch &watch, const Library::Items &items) {
    if (opened_ < 2 * shown_)
        return;
    shown_ = opened_;
    part_ = libraryOf(items);
    watch.part(part_);
}

void LibraryReader::beginReading(Listing listing) {
    listing_ = std::move(listing);
    constexpr std::size_t firstPart = 500;
    shown_ = firstPart;
    opened_ = keptAt_ = beforeAt_ = 0;
    gone_.clear();
}

// What a reading needed goes; what it took is as much as what is kept.
void LibraryReader::endReading() {
    kept_ = {};
    gone_ = {};
    part_ = nullptr;
    listing_.files = {};
    ::malloc_trim(0);
}

std::shared_ptr<const Library> LibraryReader::read(const ReadingWatch &watch) {
    takeKnown();
    const auto begin = std::chrono::steady_clock::now();
    Listing listing = folder_.list(watch.goesOn);
    if (!listing.ended)
        return library_;
    looked_ = std::chrono::steady_clock::now();
    took_ = looked_ - begin;
    beginReading(std::move(listing));
    const bool first = library_->items().empty();
    Library::Items items;
    std::size_t done = 0;
    constexpr std::size_t told = 1000;
    for (FileEntry &listed : listing_.files) {
        const FileEntry file = std::move(listed);
        if (!watch.goesOn()) {
            store(false);
            return library_;
        }
        if (++done % told == 0)
            watch.progress(done, listing_.files.size());
        if (ItemPointer item = itemFor(file))
            items.push_back(std::move(item));
        if (come_.size() >= storedTogether)
            store(false);
        if (first && done < listing_.files.size())
            showPart(watch, items);
    }
    passOverTheRest();
    store(true);
    if (items != library_->items() || items.empty())
        library_ = libraryOf(items);
    endReading();
    return library_;
}

} // namespace velmora::catalogue
