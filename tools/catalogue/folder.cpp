#include "catalogue/folder.h"

#include "platform/backends/linux/open_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

namespace velmora::catalogue {

namespace {

using platform::Descriptor;

constexpr int deepest = 32;
constexpr std::size_t mostFiles = 200'000;

Descriptor openFolder(int parent, const char *name) {
    return Descriptor(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

std::int64_t changeOf(const struct ::stat &info) noexcept {
    constexpr std::int64_t second = 1'000'000'000;
    return info.st_mtim.tv_sec * second + info.st_mtim.tv_nsec;
}

struct CloseDirectory {
    void operator()(DIR *directory) const noexcept { ::closedir(directory); }
};

// What lies in one folder, then in the folders below it.
void walk(Descriptor folder, const std::string &prefix, int depth, std::vector<FileEntry> &found) {
    const std::unique_ptr<DIR, CloseDirectory> directory(::fdopendir(folder.number()));
    if (directory == nullptr)
        return;
    folder.release(); // the directory closes it
    const int number = ::dirfd(directory.get());
    while (const dirent *entry = ::readdir(directory.get())) {
        const std::string name = entry->d_name;
        struct ::stat info {};
        if (name.front() == '.' || found.size() >= mostFiles ||
            ::fstatat(number, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (S_ISREG(info.st_mode)) {
            found.push_back({prefix + name, info.st_size, changeOf(info)});
        } else if (S_ISDIR(info.st_mode) && depth < deepest) {
            Descriptor below = openFolder(number, name.c_str());
            if (below)
                walk(std::move(below), prefix + name + "/", depth + 1, found);
        }
    }
}

// A name that can lie in a folder and is shown.
bool isName(const std::string &name) {
    return !name.empty() && name.front() != '.' && name.find('\0') == std::string::npos;
}

} // namespace

std::string tagOf(const OpenFile &file) {
    return "\"" + std::to_string(file.changed) + "-" + std::to_string(file.bytes) + "\"";
}

Folder::Folder(const std::string &path)
    : root_(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!root_)
        throw std::system_error(errno, std::generic_category(), path);
}

std::vector<FileEntry> Folder::files() const {
    std::vector<FileEntry> found;
    Descriptor top = openFolder(root_.number(), ".");
    if (top)
        walk(std::move(top), "", 0, found);
    std::sort(found.begin(), found.end(),
              [](const FileEntry &a, const FileEntry &b) { return a.path < b.path; });
    return found;
}

std::optional<OpenFile> Folder::open(const std::string &path) const {
    Descriptor place = openFolder(root_.number(), ".");
    std::size_t at = 0;
    for (std::size_t slash = 0; place && (slash = path.find('/', at)) != std::string::npos;
         at = slash + 1) {
        const std::string name = path.substr(at, slash - at);
        place = isName(name) ? openFolder(place.number(), name.c_str()) : Descriptor();
    }
    const std::string name = path.substr(at);
    if (!place || !isName(name))
        return std::nullopt;
    OpenFile result;
    result.file = Descriptor(
        ::openat(place.number(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct ::stat info {};
    if (!result.file || ::fstat(result.file.number(), &info) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    result.bytes = info.st_size;
    result.changed = changeOf(info);
    return result;
}

std::optional<std::string> Folder::read(const std::string &path, std::size_t most) const {
    const std::optional<OpenFile> open = this->open(path);
    return open ? platform::readAt(open->file.number(), 0, most) : std::nullopt;
}

} // namespace velmora::catalogue
