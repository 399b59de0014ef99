#pragma once

// Replaces a file by a complete new one, or makes a complete new one, or does nothing at all.

#include "platform/linux/descriptor.h"

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

// The new content of a file, written beside it and put in its place at the end. Destroyed before
// `commit` it leaves nothing behind. Every operation raises RunTimeError.
class AtomicFile {
public:
    // The new file has no name until it is complete, so that a killed process leaves nothing behind
    // either. Where the file system knows no such files it has a passing name from its beginning;
    // that is found out, and `Named` asks for it.
    enum class While { Unnamed, Named };

    // What may lie under the name when the new file takes it. `OldFile`: the file that is replaced,
    // if any. Links are followed, what `replaceable` refuses behind them is refused, and the new
    // file gets the old one's mode. `Nothing`: whatever has that exact name, a dangling link too,
    // is left alone and raises "file exists", now or in `commit`; what `replaceable` says of the
    // root holds as well.
    enum class Over { OldFile, Nothing };

    explicit AtomicFile(const std::string &path, While writing = While::Unnamed,
                        Over over = Over::OldFile);
    ~AtomicFile();
    AtomicFile(const AtomicFile &) = delete;
    AtomicFile &operator=(const AtomicFile &) = delete;

    void write(std::string_view bytes);

    // Checks that every byte arrived and takes the name. `durable` also waits until file
    // and folder are on the disk.
    void commit(bool durable);

private:
    void createBeside(const std::string &folder, While writing);
    void giveName();
    void copyOwnership(const struct ::stat &old);

    Over over_;
    std::string target_;
    std::string place_;     // the folder, with its separator
    std::string temporary_; // the passing name, empty while there is none
    Descriptor folder_;
    Descriptor file_;
    std::size_t written_ = 0;
};

// What lies at a place that is to be written to; absent while nothing does. Raises for what is no
// regular file, has no write bit (whoever asks) or cannot be opened for writing, and for any place
// directly below the root, which is where the name of an empty folder leads.
std::optional<struct ::stat> replaceable(const std::string &target);

// Where a path leads after links in its last part, also when nothing lies there yet. Raises on a
// loop of links.
std::string afterLinks(std::string path);

} // namespace velmora::platform
