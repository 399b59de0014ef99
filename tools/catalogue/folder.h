#pragma once

// The one folder that is served, and nothing outside it.

#include "platform/backends/linux/descriptor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora::catalogue {

struct FileEntry {
    std::string path; // below the folder, "/" between names
    std::int64_t bytes = 0;
    std::int64_t changed = 0; // nanoseconds since 1970
    friend bool operator==(const FileEntry &, const FileEntry &) = default;
};

struct OpenFile {
    platform::Descriptor file;
    std::int64_t bytes = 0;
    std::int64_t changed = 0; // nanoseconds since 1970
};

// The same for the same content of a file, in quotes as an entity tag stands in a header.
std::string tagOf(const OpenFile &file);

// Links are never followed, neither to files nor to folders, so that no name leads outside. Names
// beginning with "." are not there.
class Folder {
public:
    // Raises std::system_error when it is no folder that can be read.
    explicit Folder(const std::string &path);

    // All regular files, sorted by path. Folders that cannot be read are empty.
    std::vector<FileEntry> files() const;

    // Absent when it is no regular file below the folder.
    std::optional<OpenFile> open(const std::string &path) const;

    // The first bytes of a file, at most `most`; absent as for `open`.
    std::optional<std::string> read(const std::string &path, std::size_t most) const;

private:
    platform::Descriptor root_;
};

} // namespace velmora::catalogue
