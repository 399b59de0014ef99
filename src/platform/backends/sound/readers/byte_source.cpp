#include "platform/backends/sound/readers/byte_source.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::platform::sound {

std::size_t MemorySource::read(std::int64_t offset, std::span<std::uint8_t> out) const {
    if (offset < 0 || offset >= size())
        return 0;
    const auto available = bytes_.subspan(static_cast<std::size_t>(offset));
    const std::size_t count = std::min(out.size(), available.size());
    std::copy_n(available.begin(), count, out.begin());
    return count;
}

std::unique_ptr<FileSource> FileSource::open(const std::string &path) {
    struct stat info {};
    if (path.find('\0') != std::string::npos || stat(path.c_str(), &info) != 0 ||
        !S_ISREG(info.st_mode))
        return nullptr;
    // The name may have changed hands since: still no blocking, and the same question again.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0)
        return nullptr;
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        close(fd);
        return nullptr;
    }
    return std::unique_ptr<FileSource>(new FileSource(fd, info.st_size));
}

FileSource::~FileSource() { close(fd_); }

std::size_t FileSource::read(std::int64_t offset, std::span<std::uint8_t> out) const {
    if (offset < 0 || offset >= size_)
        return 0;
    const std::size_t wanted = static_cast<std::size_t>(
        std::min<std::int64_t>(static_cast<std::int64_t>(out.size()), size_ - offset));
    std::size_t done = 0;
    while (done < wanted) {
        const ssize_t got = pread(fd_, out.data() + done, wanted - done,
                                  static_cast<off_t>(offset + static_cast<std::int64_t>(done)));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

SourcePart::SourcePart(std::shared_ptr<const ByteSource> whole, std::int64_t start,
                       std::int64_t size)
    : whole_(std::move(whole)), start_(std::clamp<std::int64_t>(start, 0, whole_->size())),
      size_(std::clamp<std::int64_t>(size, 0, whole_->size() - start_)) {}

std::size_t SourcePart::read(std::int64_t offset, std::span<std::uint8_t> out) const {
    if (offset < 0 || offset >= size_)
        return 0;
    const std::size_t count = static_cast<std::size_t>(
        std::min<std::int64_t>(static_cast<std::int64_t>(out.size()), size_ - offset));
    return whole_->read(start_ + offset, out.first(count));
}

std::size_t AheadSource::read(std::int64_t offset, std::span<std::uint8_t> out) const {
    if (out.size() > pieceBytes)
        return whole_.read(offset, out);
    const auto end = start_ + static_cast<std::int64_t>(piece_.size());
    if (offset < start_ || offset + static_cast<std::int64_t>(out.size()) > end) {
        piece_.resize(pieceBytes);
        piece_.resize(whole_.read(offset, piece_));
        start_ = offset;
    }
    const auto ready = std::span(piece_).subspan(static_cast<std::size_t>(offset - start_));
    const std::size_t count = std::min(out.size(), ready.size());
    std::copy_n(ready.begin(), count, out.begin());
    return count;
}

std::size_t ByteCursor::read(void *out, std::size_t count) {
    const std::size_t got = source->read(position, {static_cast<std::uint8_t *>(out), count});
    position += static_cast<std::int64_t>(got);
    return got;
}

std::int64_t ByteCursor::seek(std::int64_t offset, int whence) {
    const std::int64_t base = whence == SEEK_SET   ? 0
                              : whence == SEEK_CUR ? position
                                                   : source->size();
    std::int64_t target = 0;
    if (__builtin_add_overflow(base, offset, &target) || target < 0)
        return -1;
    position = target;
    return position;
}

} // namespace velmora::platform::sound
