#pragma once

// What was read of the files, kept for the next start. It is a help and nothing else: whenever it
// is doubtful it is thrown away, and where it cannot be kept the files are read anew. A file of
// something else is left as it is.

#include "catalogue/tags.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace velmora::catalogue {

struct KnownFile {
    FileEntry file;
    bool usable = true; // false: a lyric with nothing in it
    Tags tags;
};

class KnownTags {
public:
    // Nothing is touched before `load`.
    explicit KnownTags(std::string path) : path_(std::move(path)) {}
    ~KnownTags();
    KnownTags(const KnownTags &) = delete;
    KnownTags &operator=(const KnownTags &) = delete;

    // Whether nothing lies there that somebody else may have made.
    static bool mayUse(const std::string &path);

    // All that is kept, sorted by path. A file that is damaged or of another version is taken away
    // and begun anew; where `mayUse` is false nothing is kept.
    std::vector<KnownFile> load();
    // In one go: those of `gone` are forgotten, those of `come` kept.
    void store(const std::vector<KnownFile> &come, const std::vector<std::string> &gone);

private:
    bool open();
    bool begin();
    void close() noexcept;
    bool run(const char *statement);
    bool isSound();

    std::string path_;
    sqlite3 *database_ = nullptr;
};

// Where a folder's is kept: below $CACHE_DIRECTORY, which a unit of systemd gives, or else the
// user's cache folder. Makes the folders on the way, and takes away what is no such file under the
// name that is its own; empty where there is no place.
std::string knownTagsPath(const std::string &folder);

} // namespace velmora::catalogue
