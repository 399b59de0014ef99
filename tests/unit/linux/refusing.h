#pragma once

// Calls of the file system that fail as some file systems let them.

#include "platform/backends/linux/file_calls.h"

#include <cerrno>

namespace velmora::platform {

inline auto refusing(int error) {
    return [error](auto &&...) {
        errno = error;
        return -1;
    };
}

// Renames, but never without replacing.
inline auto renamingOnlyPlainly(int error) {
    return [error, real = FileCalls().rename](const char *from, const char *to, unsigned flags) {
        if (flags == 0)
            return real(from, to, 0);
        errno = error;
        return -1;
    };
}

} // namespace velmora::platform
