#include "catalogue/folder.h"

#include "platform/backends/linux/open_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
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

std::int64_t now() noexcept {
    struct ::timespec time {};
    ::clock_gettime(CLOCK_REALTIME, &time);
    constexpr std::int64_t second = 1'000'000'000;
    return time.tv_sec * second + time.tv_nsec;
}

class Walk {
public:
    Walk(Listing &found, const std::function<bool()> &goesOn) : found_(found), goesOn_(goesOn) {}

    // What lies in one folder, then in the folders below it.
    void into(Descriptor folder, const std::string &prefix, int depth) {
        struct ::stat info {};
        const std::int64_t seen = now();
        if (::fstat(folder.number(), &info) == 0)
            found_.folders.push_back({prefix, changeOf(info), seen});
        const std::unique_ptr<DIR, CloseDirectory> directory(::fdopendir(folder.number()));
        if (directory == nullptr)
            return;
        folder.release(); // the directory closes it
        while (const dirent *entry = ::readdir(directory.get())) {
            if (!goesOn_()) {
                found_.ended = false;
                return;
            }
            if (entry->d_name[0] != '.')
                take(::dirfd(directory.get()), entry->d_name, prefix, depth);
        }
    }

private:
    void take(int folder, const char *name, const std::string &prefix, int depth) {
        struct ::stat info {};
        if (::fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0)
            return;
        if (S_ISREG(info.st_mode) && found_.files.size() >= mostFiles) {
            found_.cut = true;
        } else if (S_ISREG(info.st_mode)) {
            found_.files.push_back({prefix + name, info.st_size, changeOf(info)});
        } else if (S_ISDIR(info.st_mode) && depth < deepest) {
            Descriptor below = openFolder(folder, name);
            if (below)
                into(std::move(below), prefix + name + "/", depth + 1);
        }
    }

    Listing &found_;
    const std::function<bool()> &goesOn_;
};

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

Listing Folder::list(const std::function<bool()> &goesOn) const {
    Listing found;
    Descriptor top = openFolder(root_.number(), ".");
    if (top)
        Walk(found, goesOn).into(std::move(top), "", 0);
    std::sort(found.files.begin(), found.files.end(),
              [](const FileEntry &a, const FileEntry &b) { return a.path < b.path; });
    return found;
}

// A change right behind the look may have the look's own time.
bool Folder::same(const Listing &listing) const {
    constexpr std::int64_t unsure = 2'000'000'000;
    return !listing.folders.empty() &&
           std::all_of(listing.folders.begin(), listing.folders.end(), [&](const auto &place) {
               struct ::stat info {};
               const std::string path = place.path.empty() ? "." : place.path;
               return place.seen - place.changed > unsure &&
                      ::fstatat(root_.number(), path.c_str(), &info, 0) == 0 &&
                      S_ISDIR(info.st_mode) && changeOf(info) == place.changed;
           });
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
