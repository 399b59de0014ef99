#include "platform/linux/directory.h"

#include "base/text.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/open_file.h"
#include "platform/linux/text/path_text.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

namespace velmora::platform {

namespace {

bool isWanted(mode_t mode, SearchFor what) noexcept {
    return what == SearchFor::Files ? S_ISREG(mode) : S_ISDIR(mode);
}

// Whether an entry of a folder is what is searched for, after links. The type that comes with the
// entry saves the question to the disk in most cases.
bool isWanted(int folder, const ::dirent &entry, SearchFor what) noexcept {
    if (entry.d_type == DT_REG)
        return what == SearchFor::Files;
    if (entry.d_type == DT_DIR)
        return what == SearchFor::Folders;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN)
        return false;
    struct ::stat info {};
    return ::fstatat(folder, entry.d_name, &info, 0) == 0 && isWanted(info.st_mode, what);
}

struct CloseFolder {
    void operator()(::DIR *folder) const noexcept { ::closedir(folder); }
};
using Folder = std::unique_ptr<::DIR, CloseFolder>;

Folder openFolder(const std::string &path) {
    Descriptor descriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor)
        return nullptr;
    Folder folder(::fdopendir(descriptor.number()));
    if (folder)
        descriptor.release();
    return folder;
}

std::u16string_view withoutTrailingSeparators(std::u16string_view path) noexcept {
    const char16_t separator = pathSeparatorOf(path);
    while (path.size() > 1 && path.back() == separator)
        path.remove_suffix(1);
    return path;
}

// Of several names that differ only in case the first one in binary order.
std::u16string findIgnoringCase(std::u16string_view folderPath, std::u16string_view name,
                                SearchFor what) {
    const auto path = folderPath.empty() ? std::string(".") : pathBytes(folderPath);
    const Folder folder = openFolder(path);
    if (!folder || name.empty())
        return {};
    std::u16string found;
    const std::u16string wanted = upper(name);
    while (const ::dirent *entry = ::readdir(folder.get())) {
        std::u16string candidate = pathFromBytes(entry->d_name);
        if (candidate.size() == wanted.size() && (found.empty() || candidate < found) &&
            upper(candidate) == wanted && isWanted(::dirfd(folder.get()), *entry, what))
            found = std::move(candidate);
    }
    return found;
}

} // namespace

std::u16string findName(std::u16string_view path, SearchFor what) {
    if (what == SearchFor::Folders)
        path = withoutTrailingSeparators(path);
    const auto bytes = systemPath(path);
    if (!bytes)
        return {};
    const std::u16string_view name = baseName(path);
    struct ::stat info {};
    if (::stat(bytes->c_str(), &info) == 0 && isWanted(info.st_mode, what))
        return std::u16string(name.empty() ? path : name); // only a root has no name
    return findIgnoringCase(folderPart(path), name, what);
}

bool FolderWalks::enters(int folder, SearchFor what, std::uint32_t walk) {
    constexpr std::size_t rememberedWalks = 8;
    if (walk == 0)
        return true;
    struct ::stat info {};
    if (::fstat(folder, &info) != 0)
        return false;
    const bool entered = walks_[walk].insert({what, {info.st_dev, info.st_ino}}).second;
    if (walks_.size() > rememberedWalks) // the oldest that is not this one
        walks_.erase(walks_.begin()->first == walk ? std::next(walks_.begin()) : walks_.begin());
    return entered;
}

std::vector<std::u16string> FolderWalks::list(std::u16string_view folderPath, SearchFor what,
                                              std::uint32_t walk) {
    const auto path = systemPath(folderPath);
    const Folder folder = path ? openFolder(*path) : nullptr;
    if (!folder || !enters(::dirfd(folder.get()), what, walk))
        return {};
    struct Named {
        std::u16string key;
        std::u16string name;
    };
    std::vector<Named> found;
    while (const ::dirent *entry = ::readdir(folder.get())) {
        if (entry->d_name[0] == '.' || !isWanted(::dirfd(folder.get()), *entry, what))
            continue;
        std::u16string name = pathFromBytes(entry->d_name);
        std::u16string key = upper(name);
        found.push_back({std::move(key), std::move(name)});
    }
    // Names of one key in binary order, so that the order never depends on the disk's.
    std::sort(found.begin(), found.end(), [](const Named &a, const Named &b) {
        return a.key != b.key ? a.key < b.key : a.name < b.name;
    });
    std::vector<std::u16string> names;
    names.reserve(found.size());
    for (Named &entry : found)
        names.push_back(std::move(entry.name));
    return names;
}

} // namespace velmora::platform
