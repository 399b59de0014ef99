#pragma once

// Where the bytes of a medium come from: a file, or memory in tests.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace velmora::platform::sound {

class ByteSource {
public:
    virtual ~ByteSource() = default;
    virtual std::int64_t size() const = 0;
    // Reads at a place; the number of bytes read, fewer at the end, 0 behind it or on an error.
    virtual std::size_t read(std::int64_t offset, std::span<std::uint8_t> out) const = 0;
};

class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    std::int64_t size() const override { return static_cast<std::int64_t>(bytes_.size()); }
    std::size_t read(std::int64_t offset, std::span<std::uint8_t> out) const override;

private:
    std::span<const std::uint8_t> bytes_;
};

// A regular file. Pipes, devices, sockets and folders are not opened at all, so none can block.
class FileSource final : public ByteSource {
public:
    static std::unique_ptr<FileSource> open(const std::string &path); // null: cannot be read
    ~FileSource() override;
    FileSource(const FileSource &) = delete;
    FileSource &operator=(const FileSource &) = delete;

    // The size when the file was opened: what is appended later does not belong to the medium.
    std::int64_t size() const override { return size_; }
    std::size_t read(std::int64_t offset, std::span<std::uint8_t> out) const override;

private:
    FileSource(int fd, std::int64_t size) : fd_(fd), size_(size) {}
    int fd_;
    std::int64_t size_;
};

// A part of another source, seen as a whole.
class SourcePart final : public ByteSource {
public:
    SourcePart(std::shared_ptr<const ByteSource> whole, std::int64_t start, std::int64_t size);
    std::int64_t size() const override { return size_; }
    std::size_t read(std::int64_t offset, std::span<std::uint8_t> out) const override;

private:
    std::shared_ptr<const ByteSource> whole_;
    std::int64_t start_;
    std::int64_t size_;
};

// Another source, read in pieces: for one who goes through it in many small steps.
class AheadSource final : public ByteSource {
public:
    static constexpr std::size_t pieceBytes = 16 * 1024;

    // `whole` outlives it.
    explicit AheadSource(const ByteSource &whole) : whole_(whole) {}
    std::int64_t size() const override { return whole_.size(); }
    std::size_t read(std::int64_t offset, std::span<std::uint8_t> out) const override;

private:
    const ByteSource &whole_;
    mutable std::vector<std::uint8_t> piece_;
    mutable std::int64_t start_ = 0; // of the piece
};

// Sequential access for libraries that read through callbacks.
struct ByteCursor {
    const ByteSource *source = nullptr;
    std::int64_t position = 0;

    std::size_t read(void *out, std::size_t count);
    // Like lseek: the new position, or -1 with nothing changed.
    std::int64_t seek(std::int64_t offset, int whence);
};

} // namespace velmora::platform::sound
