#include "platform/backends/linux/open_file.h"

#include "platform/backends/linux/errors.h"
#include "text/path_text.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

namespace velmora::platform {

namespace {

// What is refused and why, in the words of the system.
int refusal(mode_t mode) noexcept {
    if (S_ISREG(mode))
        return 0;
    return S_ISDIR(mode) ? EISDIR : ESPIPE;
}

} // namespace

std::optional<std::string> systemPath(std::u16string_view path) {
    if (path.empty() || path.find(u'\0') != std::u16string_view::npos)
        return std::nullopt;
    return pathBytes(path);
}

std::string systemPathOrRaise(std::u16string_view path) {
    auto bytes = systemPath(path);
    if (!bytes)
        raiseSystemError(ENOENT);
    return *std::move(bytes);
}

Descriptor openRegular(const std::string &path, struct ::stat &info) noexcept {
    // Looked at first, since merely opening a device can have effects; then once more, since what
    // was opened may be another thing.
    if (::stat(path.c_str(), &info) != 0)
        return Descriptor();
    errno = refusal(info.st_mode);
    if (errno != 0)
        return Descriptor();
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file || ::fstat(file.number(), &info) != 0)
        return Descriptor();
    errno = refusal(info.st_mode);
    return errno == 0 ? std::move(file) : Descriptor();
}

std::optional<std::string> readAt(int descriptor, std::int64_t offset, std::size_t count) {
    // Grown as the bytes come: the count may be far beyond what the file holds.
    constexpr std::size_t greatestStep = std::size_t{1} << 20;
    std::size_t step = std::size_t{8} << 10;
    std::string bytes;
    while (bytes.size() < count) {
        const std::size_t before = bytes.size();
        bytes.resize(before + std::min(step, count - before));
        step = std::min(step * 4, greatestStep);
        const ssize_t got = ::pread(descriptor, bytes.data() + before, bytes.size() - before,
                                    static_cast<off_t>(offset) + static_cast<off_t>(before));
        const int error = errno;
        bytes.resize(before + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        if (got == 0)
            break;
        if (got < 0 && error != EINTR) {
            errno = error;
            return std::nullopt;
        }
    }
    return bytes;
}

bool writeAll(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written == 0)
            errno = EIO;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void syncFolder(const std::string &folder) noexcept {
    const Descriptor open(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (open)
        ::fsync(open.number());
}

} // namespace velmora::platform
