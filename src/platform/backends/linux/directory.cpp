#include "platform/backends/linux/directory.h"

#include "base/text.h"
#include "platform/backends/linux/descriptor.h"
#include "platform/backends/linux/open_file.h"
#include "text/path_text.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <memory>

namespace velmora::platform {

namespace {

bool isWanted(mode_t mode, SearchFor what) noexcept {
    return what == SearchFor::Files ? S_ISREG(mode) : S_ISDIR(mode);
}

// Whether an entry of a folder is what is searched for, after links. The type that comes with the
// entry saves the question to the disk in most cases.
template <typename Entry> bool isWanted(int folder, const Entry &entry, SearchFor what) noexcept {
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

// The entries as the system hands them out, without the buffer and the questions that a stream of
// them costs for each folder.
template <typename Take> void forEachEntry(int folder, Take &&take) {
    constexpr std::size_t portion = std::size_t{32} << 10;
    alignas(::dirent64) char buffer[portion];
    for (;;) {
        const ssize_t size = ::getdents64(folder, buffer, sizeof buffer);
        if (size <= 0)
            return;
        for (ssize_t at = 0; at < size;) {
            const auto &entry = *reinterpret_cast<const ::dirent64 *>(buffer + at);
            at += entry.d_reclen;
            take(entry);
        }
    }
}

// The first units of a key as one number that orders as they do: most names differ there. No name
// has a NUL, so a shorter one comes first.
std::uint64_t beginningOf(std::u16string_view key) noexcept {
    std::uint64_t units = 0;
    for (std::size_t i = 0; i < 4; ++i)
        units = units << 16 | (i < key.size() ? key[i] : u'\0');
    return units;
}

// Names by their upper-cased form; those of one form in binary order, so that the order never
// depends on the disk's.
std::vector<std::u16string> sorted(std::vector<std::u16string> names) {
    struct Place {
        std::uint64_t beginning;
        std::u16string_view key;
        std::u16string *name;
    };
    std::size_t units = 0;
    for (const std::u16string &name : names)
        units += name.size();
    std::u16string keys(units, u'\0');
    std::vector<Place> places;
    places.reserve(names.size());
    char16_t *at = keys.data();
    for (std::u16string &name : names) {
        const std::u16string_view key(at, name.size());
        at = copyUpper(name, at);
        places.push_back({beginningOf(key), key, &name});
    }
    std::sort(places.begin(), places.end(), [](const Place &a, const Place &b) {
        if (a.beginning != b.beginning)
            return a.beginning < b.beginning;
        const int order = a.key.compare(b.key);
        return order != 0 ? order < 0 : *a.name < *b.name;
    });
    std::vector<std::u16string> result;
    result.reserve(names.size());
    for (const Place &place : places)
        result.push_back(std::move(*place.name));
    return result;
}

// What stands in a folder, and whether that can only change together with the folder itself.
struct Content {
    std::vector<std::u16string> folders;
    std::vector<std::u16string> files;
    bool plain = true;
};

Content contentOf(int folder) {
    Content content;
    forEachEntry(folder, [&](const ::dirent64 &entry) {
        if (entry.d_name[0] == '.')
            return;
        if (entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN)
            content.plain = false; // the answer lies elsewhere on the disk
        if (isWanted(folder, entry, SearchFor::Files))
            content.files.push_back(pathFromBytes(entry.d_name));
        else if (isWanted(folder, entry, SearchFor::Folders))
            content.folders.push_back(pathFromBytes(entry.d_name));
    });
    return content;
}

// Whether a folder has stood unchanged for so long that any later change shows in its time stamps,
// however coarse these are.
bool isSettled(const struct ::stat &folder, std::time_t now) noexcept {
    constexpr std::time_t coarsestSeconds = 3;
    const std::time_t settled = now - coarsestSeconds;
    return folder.st_mtim.tv_sec < settled && folder.st_ctim.tv_sec < settled;
}

bool isSame(const struct ::timespec &a, const struct ::timespec &b) noexcept {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

std::u16string_view withoutTrailingSeparators(std::u16string_view path) noexcept {
    const char16_t separator = pathSeparatorOf(path);
    while (path.size() > 1 && path.back() == separator)
        path.remove_suffix(1);
    return path;
}

std::uint64_t hashOf(std::u16string_view upperName) noexcept {
    return std::hash<std::u16string_view>{}(upperName);
}

} // namespace

std::u16string NameSearch::find(std::u16string_view path, SearchFor what) {
    if (what == SearchFor::Folders)
        path = withoutTrailingSeparators(path);
    const auto bytes = systemPath(path);
    if (!bytes)
        return {};
    const std::u16string_view name = baseName(path);
    struct ::stat info {};
    if (::stat(bytes->c_str(), &info) == 0 && isWanted(info.st_mode, what))
        return std::u16string(name.empty() ? path : name); // only a root has no name
    return name.empty() ? std::u16string() : findIgnoringCase(folderPart(path), name, what);
}

std::u16string NameSearch::findIgnoringCase(std::u16string_view folderPath,
                                            std::u16string_view name, SearchFor what) {
    const Folder folder = openFolder(folderPath.empty() ? std::string(".") : pathBytes(folderPath));
    struct ::stat before {};
    if (!folder || ::fstat(::dirfd(folder.get()), &before) != 0)
        return {};
    const std::u16string wanted = upper(name);
    if (const auto known = remembered(before, wanted)) {
        struct ::stat info {};
        if (known->empty() ||
            (::fstatat(::dirfd(folder.get()), pathBytes(*known).c_str(), &info, 0) == 0 &&
             isWanted(info.st_mode, what)))
            return *known;
    }
    Known now{before.st_dev, before.st_ino, before.st_mtim, before.st_ctim, now_(), {}, {}};
    std::u16string found = readNames(folder.get(), wanted, what, now.names);
    remember(before, std::move(now), wanted, found);
    return found;
}

// Of several names that differ only in case the first one in binary order.
std::u16string NameSearch::readNames(::DIR *folder, std::u16string_view wanted, SearchFor what,
                                     std::vector<std::uint64_t> &names) {
    ++foldersRead_;
    std::u16string found;
    while (const ::dirent *entry = ::readdir(folder)) {
        std::u16string candidate = pathFromBytes(entry->d_name);
        const std::u16string key = upper(candidate);
        names.push_back(hashOf(key));
        if (key == wanted && (found.empty() || candidate < found) &&
            isWanted(::dirfd(folder), *entry, what))
            found = std::move(candidate);
    }
    return found;
}

// The answer that an unchanged folder gave, empty where it has no such name. No value: it has to be
// read.
std::optional<std::u16string> NameSearch::remembered(const struct ::stat &folder,
                                                     const std::u16string &wanted) {
    constexpr std::time_t longestSeconds = 300; // some disks stamp their folders once for all
    const std::lock_guard lock(mutex_);
    const auto known = std::find_if(known_.begin(), known_.end(), [&](const Known &one) {
        return one.device == folder.st_dev && one.node == folder.st_ino;
    });
    if (known == known_.end())
        return std::nullopt;
    const std::time_t age = now_() - known->learnt;
    if (!isSame(known->modified, folder.st_mtim) || !isSame(known->changed, folder.st_ctim) ||
        age < 0 || age > longestSeconds) {
        known_.erase(known);
        return std::nullopt;
    }
    if (!std::binary_search(known->names.begin(), known->names.end(), hashOf(wanted)))
        return std::u16string();
    const auto found = known->found.find(wanted);
    return found == known->found.end() ? std::nullopt : std::optional(found->second);
}

void NameSearch::remember(const struct ::stat &folder, Known now, const std::u16string &wanted,
                          const std::u16string &found) {
    constexpr std::size_t mostFolders = 4;
    constexpr std::size_t mostNames = 500'000;
    constexpr std::size_t mostFound = 64;
    if (!isSettled(folder, now.learnt) || now.names.size() > mostNames)
        return;
    std::sort(now.names.begin(), now.names.end());
    const std::lock_guard lock(mutex_);
    const auto old = std::find_if(known_.begin(), known_.end(), [&](const Known &one) {
        return one.device == now.device && one.node == now.node;
    });
    if (old != known_.end()) {
        if (old->found.size() < mostFound)
            now.found = std::move(old->found);
        known_.erase(old);
    }
    if (!found.empty())
        now.found[wanted] = found;
    known_.push_back(std::move(now));
    if (known_.size() > mostFolders)
        known_.erase(known_.begin());
}

bool FolderWalks::enters(const Identity &folder, SearchFor what, std::uint32_t walk) {
    constexpr std::size_t rememberedWalks = 8;
    if (walk == 0)
        return true;
    const bool entered = walks_[walk].insert({what, folder}).second;
    if (walks_.size() > rememberedWalks) // the oldest that is not this one
        walks_.erase(walks_.begin()->first == walk ? std::next(walks_.begin()) : walks_.begin());
    return entered;
}

void FolderWalks::keep(const struct ::stat &folder, std::vector<std::u16string> files,
                       std::uint32_t walk) {
    constexpr std::size_t mostNames = 500'000; // of an endless tree the rest is read again
    if (walk != keptWalk_) {
        kept_.clear();
        keptNames_ = 0;
        keptWalk_ = walk;
    }
    if (keptNames_ + files.size() > mostNames)
        return;
    keptNames_ += files.size();
    kept_[{folder.st_dev, folder.st_ino}] = {folder.st_mtim, folder.st_ctim, std::move(files)};
}

// The files of a folder that was read in this walk and has not changed. One that cannot be reached
// any more has none here.
std::optional<std::vector<std::u16string>> FolderWalks::takeKept(const std::string &path,
                                                                 std::uint32_t walk) {
    struct ::stat info {};
    if (walk != keptWalk_ || ::stat(path.c_str(), &info) != 0)
        return std::nullopt;
    const auto found = kept_.find({info.st_dev, info.st_ino});
    if (found == kept_.end())
        return std::nullopt;
    Kept kept = std::move(found->second);
    kept_.erase(found);
    keptNames_ -= kept.files.size();
    if (!isSame(kept.modified, info.st_mtim) || !isSame(kept.changed, info.st_ctim) ||
        !enters({info.st_dev, info.st_ino}, SearchFor::Files, walk))
        return std::nullopt;
    return std::move(kept.files);
}

std::vector<std::u16string> FolderWalks::list(std::u16string_view folderPath, SearchFor what,
                                              std::uint32_t walk) {
    const auto path = systemPath(folderPath);
    if (!path)
        return {};
    if (walk != 0 && what == SearchFor::Files)
        if (auto files = takeKept(*path, walk))
            return sorted(*std::move(files));
    const Descriptor folder(::open(path->c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
    struct ::stat info {};
    if (!folder || ::fstat(folder.number(), &info) != 0 ||
        !enters({info.st_dev, info.st_ino}, what, walk))
        return {};
    Content content = contentOf(folder.number());
    if (what == SearchFor::Files)
        return sorted(std::move(content.files));
    if (walk != 0 && content.plain && isSettled(info, now_()))
        keep(info, std::move(content.files), walk);
    return sorted(std::move(content.folders));
}

} // namespace velmora::platform
