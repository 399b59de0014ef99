#pragma once

// Folders: looking a name up without regard to case, and listing.

#include "platform/contracts/files.h"

#include <dirent.h>
#include <sys/stat.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::platform {

// `FileSystem::Dir`, from any thread.
//
// The same few names are asked for again and again (the lyric of a track, at each seek), and where
// none of that spelling is there a whole folder has to be read, which on a share takes its time. So
// the names of the folders that were read last are remembered for as long as these stand unchanged.
class NameSearch {
public:
    // `now` as with `FolderWalks`.
    explicit NameSearch(std::function<std::time_t()> now = [] { return std::time(nullptr); })
        : now_(std::move(now)) {}

    std::u16string find(std::u16string_view path, SearchFor what);

    // How often a folder was read: what the questions cost.
    std::size_t foldersRead() const { return foldersRead_; }

private:
    struct Known {
        std::uint64_t device = 0;
        std::uint64_t node = 0;
        struct ::timespec modified {};
        struct ::timespec changed {};
        std::time_t learnt = 0;
        std::vector<std::uint64_t> names;               // hashes of the upper-cased names, sorted
        std::map<std::u16string, std::u16string> found; // answers by the upper-cased name
    };

    std::u16string findIgnoringCase(std::u16string_view folder, std::u16string_view name,
                                    SearchFor what);
    std::u16string readNames(::DIR *folder, std::u16string_view wanted, SearchFor what,
                             std::vector<std::uint64_t> &names);
    std::optional<std::u16string> remembered(const struct ::stat &folder,
                                             const std::u16string &wanted);
    void remember(const struct ::stat &folder, Known now, const std::u16string &wanted,
                  const std::u16string &found);

    std::function<std::time_t()> now_;
    std::atomic<std::size_t> foldersRead_ = 0;
    std::mutex mutex_; // of what follows; never held while the disk is asked
    std::vector<Known> known_;
};

// `FileSystem::list`, with the memory of which folders a walk has entered.
//
// A walk asks each folder for its folders first and for its files much later. It is read from the
// disk once: the files are kept until they are asked for, and given out only if the folder is
// certain not to have changed since.
class FolderWalks {
public:
    // `now` tells whether a folder has stood long enough for its time stamps to be trusted.
    explicit FolderWalks(std::function<std::time_t()> now = [] { return std::time(nullptr); })
        : now_(std::move(now)) {}

    std::vector<std::u16string> list(std::u16string_view folder, SearchFor what,
                                     std::uint32_t walk);

private:
    // Folders by device and inode; a walk asks each for its files and for its folders.
    using Identity = std::pair<std::uint64_t, std::uint64_t>;
    using Entered = std::set<std::pair<SearchFor, Identity>>;
    struct Kept {
        struct ::timespec modified {};
        struct ::timespec changed {};
        std::vector<std::u16string> files;
    };

    bool enters(const Identity &folder, SearchFor what, std::uint32_t walk);
    void keep(const struct ::stat &folder, std::vector<std::u16string> files, std::uint32_t walk);
    std::optional<std::vector<std::u16string>> takeKept(const std::string &path,
                                                        std::uint32_t walk);

    std::function<std::time_t()> now_;
    std::map<std::uint32_t, Entered> walks_;
    std::map<Identity, Kept> kept_; // of one walk alone
    std::uint32_t keptWalk_ = 0;
    std::size_t keptNames_ = 0;
};

} // namespace velmora::platform
