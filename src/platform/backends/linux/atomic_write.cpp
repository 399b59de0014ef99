#include "platform/backends/linux/atomic_write.h"

#include "platform/backends/linux/errors.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>

namespace velmora::platform {

namespace {

constexpr mode_t anyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

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

std::string folderOf(const std::string &path) {
    const std::size_t last = path.rfind('/');
    if (last == std::string::npos)
        return ".";
    return last == 0 ? "/" : path.substr(0, last);
}

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
            next.insert(0, folder == "/" ? "/" : folder + "/");
        }
        path = std::move(next);
    }
    raiseSystemError(ELOOP);
}

std::optional<OldFile> replaceable(const std::string &target) {
    const std::optional<struct ::stat> info = found(target);
    if (!info)
        return std::nullopt;
    if (!S_ISREG(info->st_mode))
        raiseSystemError(S_ISDIR(info->st_mode) ? EISDIR : ESPIPE);
    if ((info->st_mode & anyWriteBit) == 0)
        raiseSystemError(EACCES);
    OldFile old{Descriptor(::open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW)),
                *info};
    if (!old.file)
        raiseSystemError(errno);
    return old;
}

AtomicFile::AtomicFile(const std::string &path, While writing, Over over, const FileCalls &calls)
    : target_(over == Over::OldFile ? afterLinks(path) : path) {
    std::optional<OldFile> old;
    if (over == Over::OldFile)
        old = replaceable(target_);
    else if (found(target_))
        raiseSystemError(EEXIST);
    isNew_ = !old;
    draft_.emplace(folderOf(target_), writing, calls);
    if (old)
        draft_->takeAfter(old->file.number(), old->info);
    else
        draft_->setMode(modeOfNewFiles());
}

void AtomicFile::commit(bool durable) {
    using Sure = Draft::Sure;
    draft_->finish(durable ? Sure::All : isNew_ ? Sure::Nothing : Sure::Content);
    if (isNew_)
        draft_->takeFreeName(target_);
    else
        draft_->replace(target_);
}

} // namespace velmora::platform
