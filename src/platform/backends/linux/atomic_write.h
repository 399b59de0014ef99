#pragma once

// Replaces a file by a complete new one, or makes a complete new one, or does nothing at all.

#include "platform/backends/linux/draft.h"

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

// The new content of a file, written beside it and put in its place at the end. Destroyed before
// `commit` it leaves nothing behind. Every operation raises RunTimeError.
class AtomicFile {
public:
    using While = Draft::While;

    // What may lie under the name when the new file takes it. `OldFile`: the file that is replaced,
    // if any. Links are followed, what `replaceable` refuses behind them is refused, and the new
    // file takes after the old one. Where none was there at the beginning, none is replaced at the
    // end: "file exists" is raised. `Nothing`: whatever has that exact name, a dangling link too,
    // is left alone and raises "file exists", now or in `commit`; what `replaceable` says of the
    // root holds as well.
    enum class Over { OldFile, Nothing };

    explicit AtomicFile(const std::string &path, While writing = While::Unnamed,
                        Over over = Over::OldFile, const FileCalls &calls = {});

    // As `Draft::takeAfter`, for a new file that is another's copy.
    void takeAfter(int other, const struct ::stat &about) { draft_->takeAfter(other, about); }

    void write(std::string_view bytes) { draft_->write(bytes); }

    // Checks that every byte arrived and takes the name. `durable` also waits until file
    // and folder are on the disk. Else a power cut may take the new file back, but leaves the old
    // one, where there was one.
    void commit(bool durable);

private:
    std::string target_;
    bool isNew_ = true;
    std::optional<Draft> draft_;
};

// A file that is there and may be replaced, open for writing.
struct OldFile {
    Descriptor file;
    struct ::stat info {};
};

// What lies at a place that is to be written to; absent while nothing does. Raises for what is no
// regular file, has no write bit (whoever asks) or cannot be opened for writing, and for any place
// directly below the root, which is where the name of an empty folder leads.
std::optional<OldFile> replaceable(const std::string &target);

// The folder of a path, without the separator behind it; "." where the path names none.
std::string folderOf(const std::string &path);

// Where a path leads after links in its last part, also when nothing lies there yet. Raises on a
// loop of links.
std::string afterLinks(std::string path);

} // namespace velmora::platform
