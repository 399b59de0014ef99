#include "platform/backends/linux/unfinished_folders.h"

#include "platform/backends/linux/home_folders.h"
#include "platform/backends/linux/open_file.h"
#include "platform/backends/linux/passing_name.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string_view>

namespace velmora::platform {

namespace {

constexpr std::string_view notesName = "unfinished-";

std::string absolutePath(const std::string &folder) {
    char buffer[PATH_MAX];
    const char *found = ::realpath(folder.c_str(), buffer);
    return found != nullptr ? found : "";
}

void clearNoted(std::string_view notes) {
    while (!notes.empty()) {
        const std::string_view folder = notes.substr(0, notes.find('\0'));
        if (!folder.empty() && folder.size() < notes.size()) // a half note is none
            clearUnfinished(std::string(folder));
        notes.remove_prefix(std::min(folder.size() + 1, notes.size()));
    }
}

// Those of a process that lives are locked.
void clearNotesOf(const std::string &path) {
    constexpr std::size_t mostBytes = std::size_t{16} << 20;
    const Descriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct ::stat info {};
    if (!file || ::fstat(file.number(), &info) != 0 || !S_ISREG(info.st_mode) ||
        ::flock(file.number(), LOCK_EX | LOCK_NB) != 0)
        return;
    if (const std::optional<std::string> notes = readAt(file.number(), 0, mostBytes)) {
        clearNoted(*notes);
        ::unlink(path.c_str());
    }
}

} // namespace

bool UnfinishedFolders::open() {
    if (notes_)
        return true;
    if (place_.empty() || !makeFolders(place_, 0700))
        return false;
    const std::string path = place_ + "/" + std::string(notesName) + std::to_string(::getpid());
    notes_ = Descriptor(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!notes_)
        return false;
    holdUnfinished(notes_.number());
    syncFolder(place_);
    return true;
}

void UnfinishedFolders::note(const std::string &folder) {
    if (!noted_.insert(folder).second || !open())
        return;
    const std::string path = absolutePath(folder);
    if (!path.empty() && writeAll(notes_.number(), path + '\0'))
        ::fsync(notes_.number());
}

void UnfinishedFolders::clear() const {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(place_, error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().filename().string().rfind(notesName, 0) == 0)
            clearNotesOf(entry->path());
}

} // namespace velmora::platform
