#include "platform/linux/atomic_write.h"

#include "platform/linux/errors.h"
#include "platform/linux/free_name.h"
#include "platform/linux/open_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdlib>

namespace velmora::platform {

namespace {

constexpr mode_t anyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

std::string folderOf(const std::string &path) {
    const std::size_t last = path.rfind('/');
    if (last == std::string::npos)
        return ".";
    return last == 0 ? "/" : path.substr(0, last);
}

// What lies at a place that is to be written to, without following a link.
std::optional<struct ::stat> found(const std::string &target) {
    // Directly below the root lie the files of a folder that is empty or unknown: never written,
    // whoever asks.
    if (folderOf(target) == "/")
        raiseSystemError(EACCES);
    struct ::stat info {};
    if (::lstat(target.c_str(), &info) == 0)
        return info;
    if (errno != ENOENT)
        raiseSystemError(errno);
    return std::nullopt;
}

mode_t modeOfNewFiles() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace

std::string afterLinks(std::string path) {
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        char buffer[PATH_MAX];
        const ssize_t size = ::readlink(path.c_str(), buffer, sizeof buffer);
        if (size < 0)
            return path; // no link: this is it (a missing file too)
        std::string next(buffer, static_cast<std::size_t>(size));
        if (next.empty() || next.front() != '/') {
            const std::string folder = folderOf(path);
            next = (folder == "/" ? "" : folder) + "/" + next;
        }
        path = std::move(next);
    }
    raiseSystemError(ELOOP);
}

std::optional<struct ::stat> replaceable(const std::string &target) {
    const std::optional<struct ::stat> info = found(target);
    if (!info)
        return info;
    if (!S_ISREG(info->st_mode))
        raiseSystemError(S_ISDIR(info->st_mode) ? EISDIR : ESPIPE);
    if ((info->st_mode & anyWriteBit) == 0)
        raiseSystemError(EACCES);
    const Descriptor probe(::open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    if (!probe)
        raiseSystemError(errno);
    return info;
}

AtomicFile::AtomicFile(const std::string &path, While writing, Over over)
    : over_(over), target_(over == Over::OldFile ? afterLinks(path) : path) {
    if (over == Over::Nothing && found(target_))
        raiseSystemError(EEXIST);
    const std::optional<struct ::stat> old =
        over == Over::OldFile ? replaceable(target_) : std::nullopt;
    createBeside(folderOf(target_), writing);
    try {
        if (old)
            copyOwnership(*old);
        const mode_t mode = old ? old->st_mode & 07777 : modeOfNewFiles();
        if (::fchmod(file_.number(), mode) != 0)
            raiseSystemError(errno);
    } catch (...) {
        if (!temporary_.empty()) // no destructor runs for an object half made
            ::unlink(temporary_.c_str());
        throw;
    }
}

AtomicFile::~AtomicFile() {
    if (!temporary_.empty())
        ::unlink(temporary_.c_str());
}

void AtomicFile::createBeside(const std::string &folder, While writing) {
    place_ = folder == "/" ? folder : folder + "/";
    if (writing == While::Unnamed)
        file_ = Descriptor(::open(folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, 0600));
    if (!file_) {
        // Short, since the target's name may be as long as names can be.
        std::string name = place_ + ".velmora-XXXXXX";
        file_ = Descriptor(::mkostemp(name.data(), O_CLOEXEC));
        if (!file_)
            raiseSystemError(errno);
        temporary_ = std::move(name);
    }
    folder_ = Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// A file without a name cannot take another one's at once: it gets a passing one first.
void AtomicFile::giveName() {
    constexpr int mostAttempts = 100;
    const std::string itself = "/proc/self/fd/" + std::to_string(file_.number());
    const std::string begin = place_ + ".velmora-" + std::to_string(::getpid()) + "-";
    for (int attempt = 0; attempt < mostAttempts && temporary_.empty(); ++attempt) {
        std::string name = begin + std::to_string(attempt);
        if (::linkat(AT_FDCWD, itself.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            temporary_ = std::move(name);
        else if (errno != EEXIST)
            break;
    }
    if (temporary_.empty())
        raiseSystemError(errno);
}

// A file of another user, written by root, stays that user's. Where that is not allowed the new
// file is the writer's, as with any program.
void AtomicFile::copyOwnership(const struct ::stat &old) {
    if (old.st_uid != ::geteuid() || old.st_gid != ::getegid()) {
        const int ignored = ::fchown(file_.number(), old.st_uid, old.st_gid);
        static_cast<void>(ignored);
    }
}

void AtomicFile::write(std::string_view bytes) {
    if (!writeAll(file_.number(), bytes))
        raiseSystemError(errno);
    written_ += bytes.size();
}

void AtomicFile::commit(bool durable) {
    struct ::stat info {};
    if (::fstat(file_.number(), &info) != 0)
        raiseSystemError(errno);
    if (info.st_size < 0 || static_cast<std::size_t>(info.st_size) != written_)
        raiseSystemError(EIO);
    if (durable && ::fsync(file_.number()) != 0)
        raiseSystemError(errno);
    if (temporary_.empty())
        giveName();
    if (file_.close() != 0) // a network file system reports the last write here
        raiseSystemError(errno);
    if (over_ == Over::Nothing)
        renameToFreeName(temporary_, target_);
    else if (::rename(temporary_.c_str(), target_.c_str()) != 0)
        raiseSystemError(errno);
    temporary_.clear();
    // The content is in place: a folder that cannot be synced is no failure of the write.
    if (durable && folder_)
        ::fsync(folder_.number());
}

} // namespace velmora::platform
