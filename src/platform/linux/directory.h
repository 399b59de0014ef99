#pragma once

// Folders: looking a name up without regard to case, and listing.

#include "platform/files.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::platform {

// `FileSystem::Dir`.
std::u16string findName(std::u16string_view path, SearchFor what);

// `FileSystem::list`, with the memory of which folders a walk has entered.
class FolderWalks {
public:
    std::vector<std::u16string> list(std::u16string_view folder, SearchFor what,
                                     std::uint32_t walk);

private:
    // Folders by device and inode; a walk asks each for its files and for its folders.
    using Entered = std::set<std::pair<SearchFor, std::pair<std::uint64_t, std::uint64_t>>>;

    bool enters(int folder, SearchFor what, std::uint32_t walk);

    std::map<std::uint32_t, Entered> walks_;
};

} // namespace velmora::platform
