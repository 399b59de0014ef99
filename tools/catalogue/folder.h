#pragma once

// The one folder that is served, and nothing outside it.

#include "platform/backends/linux/descriptor.h"

#include <cstdint>
#include <functional>
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

// A look at everything in the folder.
struct Listing {
    struct Place {
        std::string path;
        std::int64_t changed = 0;
        std::int64_t seen = 0; // when it was looked at; both in nanoseconds since 1970
    };
    std::vector<FileEntry> files; // all regular ones, sorted by path
    std::vector<Place> folders;
    bool cut = false;  // there are more files than are listed
    bool ended = true; // false: it was not to go on
};

// Links are never followed, neither to files nor to folders, so that no name leads outside. Names
// beginning with "." are not there.
class Folder {
public:
    // Raises std::system_error when it is no folder that can be read.
    explicit Folder(const std::string &path);

    // Folders that cannot be read are empty. Ends early where `goesOn` says no.
    Listing list(const std::function<bool()> &goesOn = [] { return true; }) const;

    // Whether no file has come, gone or got another name since a look; it may not see what came
    // within two seconds of the look itself, and then says no. Costs a question for each folder.
    bool same(const Listing &listing) const;

    // Absent when it is no regular file below the folder.
    std::optional<OpenFile> open(const std::string &path) const;

    // The first bytes of a file, at most `most`; absent as for `open`.
    std::optional<std::string> read(const std::string &path, std::size_t most) const;

private:
    platform::Descriptor root_;
};

} // namespace velmora::catalogue
