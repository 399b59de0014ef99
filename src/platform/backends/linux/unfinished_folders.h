#pragma once

// In which folders files are written under a passing name, kept on the disk, so that a later start
// can take away what was cut short in them.

#include "platform/backends/linux/descriptor.h"

#include <set>
#include <string>

namespace velmora::platform {

class UnfinishedFolders {
public:
    // `place` is the folder for the notes of all processes; empty for none.
    explicit UnfinishedFolders(std::string place) : place_(std::move(place)) {}

    // Notes a folder and waits until the note is on the disk; once for each folder. Where it cannot
    // be noted the files are written all the same.
    void note(const std::string &folder);

    // Clears the folders that processes have noted which are no more, and their notes.
    void clear() const;

private:
    bool open();

    std::string place_;
    Descriptor notes_;
    std::set<std::string> noted_;
};

} // namespace velmora::platform
