#include "platform/backends/linux/output_file.h"

#include "platform/backends/linux/atomic_write.h"
#include "platform/backends/linux/errors.h"
#include "platform/backends/linux/open_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace velmora::platform {

namespace {

constexpr mode_t anyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

void refuseUnlessWritable(const struct ::stat &info) {
    if (!S_ISREG(info.st_mode))
        raiseSystemError(S_ISDIR(info.st_mode) ? EISDIR : ESPIPE);
    // By the bits alone: root could, and must not either.
    if ((info.st_mode & anyWriteBit) == 0)
        raiseSystemError(EACCES);
}

} // namespace

LinuxOutputFile::LinuxOutputFile(std::u16string_view path) {
    const std::string target = afterLinks(systemPathOrRaise(path));
    // Directly below the root lie the files of a folder that is empty or unknown.
    if (target.rfind('/') == 0)
        raiseSystemError(EACCES);
    // Looked at first, since merely opening a device can have effects; then once more, since what
    // was opened may be another thing.
    struct ::stat info {};
    if (::stat(target.c_str(), &info) == 0)
        refuseUnlessWritable(info);
    else if (errno != ENOENT)
        raiseSystemError(errno);
    file_ = Descriptor(::open(target.c_str(), // NOLINT(cppcoreguidelines-pro-type-vararg)
                              O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666));
    if (!file_ || ::fstat(file_.number(), &info) != 0)
        raiseSystemError(errno);
    refuseUnlessWritable(info);
}

LinuxOutputFile::~LinuxOutputFile() { flush(); }

void LinuxOutputFile::SetFilePointer(std::int64_t position) {
    flush();
    position_ = position;
}

// A write for each packet of a download would cost more than the download itself.
bool LinuxOutputFile::WriteFile(std::string_view bytes) {
    constexpr std::size_t enough = std::size_t{64} << 10;
    collected_.append(bytes);
    return collected_.size() < enough || flush();
}

bool LinuxOutputFile::flush() {
    std::string_view bytes = collected_;
    bool isWritten = true;
    while (isWritten && !bytes.empty()) {
        const ssize_t written =
            ::pwrite(file_.number(), bytes.data(), bytes.size(), static_cast<off_t>(position_));
        if (written < 0 && errno == EINTR)
            continue;
        isWritten = written > 0;
        if (isWritten) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
            position_ += written;
        }
    }
    collected_.clear(); // what could not be written is lost
    return isWritten;
}

} // namespace velmora::platform
