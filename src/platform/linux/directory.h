#pragma once

// Folders: looking a name up without regard to case, and listing.

#include "platform/files.h"

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::platform {

// `FileSystem::Dir`.
std::u16string findName(std::u16string_view path, SearchFor what);

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
