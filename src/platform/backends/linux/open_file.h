#pragma once

// Opening files without ever waiting on one, and telling what a path leads to.

#include "platform/backends/linux/descriptor.h"

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

// The system's form of a path; absent for one that can lead nowhere: empty, or with a NUL in it.
std::optional<std::string> systemPath(std::u16string_view path);
// The same, raising "no such file" instead.
std::string systemPathOrRaise(std::u16string_view path);

// Opens a regular file (after links) for reading. Anything else (a folder, pipe, device, socket) is
// refused without being touched. The error number is in errno where the descriptor is empty;
// `info` tells about the file otherwise.
Descriptor openRegular(const std::string &path, struct ::stat &info) noexcept;

// Reads up to `count` bytes at `offset`, fewer at the end of the file; absent on an error (errno).
std::optional<std::string> readAt(int descriptor, std::int64_t offset, std::size_t count);

// Writes all of it; false on an error (errno).
bool writeAll(int descriptor, std::string_view bytes) noexcept;

// Waits until the names in a folder are on the disk, where the file system can be asked to.
void syncFolder(const std::string &folder) noexcept;

} // namespace velmora::platform
