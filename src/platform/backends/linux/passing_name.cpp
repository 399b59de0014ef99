#include "platform/backends/linux/passing_name.h"

#include "platform/backends/linux/descriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string_view>
#include <vector>

namespace velmora::platform {

namespace {

constexpr std::string_view beginning = ".velmora-";

// The beginning, digits, "-", digits: nothing that a person names a file.
bool isPassingName(std::string_view name) noexcept {
    if (name.substr(0, beginning.size()) != beginning)
        return false;
    name.remove_prefix(beginning.size());
    const std::size_t middle = name.find('-');
    return middle != std::string_view::npos && middle > 0 && middle + 1 < name.size() &&
           name.find_first_not_of("0123456789") == middle &&
           name.find_first_not_of("0123456789", middle + 1) == std::string_view::npos;
}

std::vector<std::string> passingNamesIn(const std::string &folder) {
    struct Close {
        void operator()(::DIR *stream) const noexcept { ::closedir(stream); }
    };
    const std::unique_ptr<::DIR, Close> stream(::opendir(folder.c_str()));
    std::vector<std::string> names;
    while (const ::dirent *entry = stream ? ::readdir(stream.get()) : nullptr)
        if (isPassingName(entry->d_name))
            names.emplace_back(entry->d_name);
    return names;
}

// Some file systems lock only what is open for writing, and what has no write bit opens for reading
// alone.
Descriptor openToLock(const std::string &path) {
    constexpr int flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    Descriptor file(::open(path.c_str(), O_RDWR | flags));
    return file ? std::move(file) : Descriptor(::open(path.c_str(), O_RDONLY | flags));
}

} // namespace

std::string passingName(const std::string &folder, int number) {
    return folder + "/" + std::string(beginning) + std::to_string(::getpid()) + "-" +
           std::to_string(number);
}

void holdUnfinished(int file) noexcept { ::flock(file, LOCK_EX | LOCK_NB); }

void clearUnfinished(const std::string &folder) {
    for (const std::string &name : passingNamesIn(folder)) {
        const std::string path = folder + "/" + name;
        struct ::stat info {};
        if (::lstat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode))
            continue;
        const Descriptor file = openToLock(path);
        if (file && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0)
            ::unlink(path.c_str());
    }
}

} // namespace velmora::platform
