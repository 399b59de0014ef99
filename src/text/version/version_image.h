#pragma once

// Finds the version record in an executable: the resource of a Windows program (32 and 64 bit) or
// the section of an ELF file. Reads only the tables on the way to it.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace velmora::platform {

// Reads `count` bytes at `offset`; fewer at the end of the file or on an error.
using ReadAt = std::function<std::string(std::uint64_t offset, std::size_t count)>;

struct VersionPlace {
    std::uint64_t offset = 0;
    std::uint32_t size = 0; // 1 to 65535, what the record's own length can say
};

// Absent when the file is neither kind, has no record, or is damaged on the way to it. The cost is
// bounded whatever the tables say.
std::optional<VersionPlace> findVersionRecord(const ReadAt &readAt);

} // namespace velmora::platform
