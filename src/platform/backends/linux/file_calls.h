#pragma once

// The calls of the system that many a file system refuses or does not know: shares, sticks, file
// systems of users. What is written has a way around each of them.

#include <sys/types.h>

#include <ctime>
#include <functional>
#include <string>

namespace velmora::platform {

// Each as the system's own: -1 and the reason in errno where it fails. A test puts others in their
// place.
struct FileCalls {
    FileCalls();

    // A file for reading and writing in `folder` without a name; its descriptor.
    std::function<int(const char *folder)> openNameless;
    // renameat2 by whole paths.
    std::function<int(const char *from, const char *to, unsigned flags)> rename;
    // linkat by whole paths.
    std::function<int(const char *from, const char *to, int flags)> link;
    std::function<int(int file, mode_t mode)> setMode;
    std::function<int(int file, const std::timespec *accessAndChange)> setTimes;
    // Whether a power cut leaves a file that took another's name with its content, though nobody
    // waited for that.
    std::function<bool(int file)> putsContentFirst;
    // fdatasync.
    std::function<int(int file)> syncContent;
    // Comes before a file gets a passing name in a folder. Nothing here; the program notes the
    // folder, so that its next start finds what may be cut short there.
    std::function<void(const std::string &folder)> beforePassingName;
};

// Whether an error only says that a mode or time stamp cannot be set here: the file system knows
// none, or they belong to whoever mounted it.
bool isNotKnownHere(int error) noexcept;

} // namespace velmora::platform
