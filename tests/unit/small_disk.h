#pragma once

// Work on a file system of its own that holds little, in a child process.

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <string>

namespace velmora {

inline constexpr int noSmallDisk = 77; // the system does not allow it

inline bool mountSmallDisk(const std::string &place, const std::string &size) {
    const auto user = std::to_string(::geteuid());
    const auto group = std::to_string(::getegid());
    const bool asRoot = ::geteuid() == 0;
    if (::unshare(asRoot ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0)
        return false;
    if (!asRoot) { // files need an owner and a group that this view of the system knows
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("none", place.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
}

// The child's answer: 0 as expected, `noSmallDisk`, or what else `work` says. `size` is the file
// system's own word ("64k").
inline int onSmallDisk(const std::string &place, const std::string &size,
                       const std::function<int()> &work) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(mountSmallDisk(place, size) ? work() : noSmallDisk);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

} // namespace velmora
