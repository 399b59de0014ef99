#pragma once

// Makes a library of what lies in the folder.

#include "catalogue/folder.h"
#include "catalogue/known_tags.h"
#include "catalogue/library.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora::catalogue {

// What a reading tells meanwhile. Called on the reading's own thread.
struct ReadingWatch {
    std::function<bool()> goesOn = [] { return true; };
    // The files that have been opened, of those that are to be: each thousandth time.
    std::function<void(std::size_t done, std::size_t all)> progress = [](auto, auto) {};
    // What there is so far, where there was nothing before.
    std::function<void(std::shared_ptr<const Library>)> part = [](auto) {};
};

class LibraryReader {
public:
    // All outlive the reader. `known` may be null.
    LibraryReader(const Folder &folder, TagReader &tags, KnownTags *known);

    // The library as the folder is now; the same one as before where nothing has changed. Each
    // file is opened only if it is new or changed; a file that is still being written stays as it
    // was. An ended reading gives the one before.
    std::shared_ptr<const Library> read(const ReadingWatch &watch = {});

    // Whether a reading is worth it: asks each folder, and from time to time each file, too.
    bool isDue() const;

    // There are more files than are read.
    bool cut() const noexcept { return listing_.cut; }

private:
    using ItemPointer = std::shared_ptr<const Item>;

    void takeKnown();
    KnownFile *knownBefore(const std::string &path);
    const ItemPointer *itemBefore(const std::string &path);
    void passOverTheRest();
    KnownFile opened(const FileEntry &file, bool &keep);
    ItemPointer itemFor(const FileEntry &file);
    ItemPointer itemOf(KnownFile known) const;
    bool isBeingWritten(const FileEntry &file) const;
    std::shared_ptr<const Library> libraryOf(const Library::Items &items) const;
    void showPart(const ReadingWatch &watch, const Library::Items &items);
    void beginReading(Listing listing);
    void endReading();
    static void describeLyrics(Library::Items &items);
    void store(bool all);

    const Folder &folder_;
    TagReader &tags_;
    KnownTags *known_;
    bool knownTaken_ = false;
    std::vector<KnownFile> kept_;   // of the last run, by path, until the first reading
    std::vector<KnownFile> come_;   // to be kept
    std::vector<std::string> gone_; // to be forgotten
    std::size_t opened_ = 0;        // in this reading
    std::size_t shown_ = 0;         // of them, when a part was shown
    Listing listing_;
    std::shared_ptr<const Library> library_ = std::make_shared<const Library>();
    // How far a reading has come, path by path, in what was kept and in the library before.
    std::size_t keptAt_ = 0;
    std::size_t beforeAt_ = 0;
    std::shared_ptr<const Library> part_; // what the reading has shown so far
    std::chrono::steady_clock::time_point looked_;
    std::chrono::steady_clock::duration took_{};
};

} // namespace velmora::catalogue
