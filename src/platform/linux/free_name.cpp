#include "platform/linux/free_name.h"

#include "platform/linux/errors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace velmora::platform {

namespace {

// The way of file systems that cannot rename without replacing: a second name, then the first goes.
void linkAndUnlink(const std::string &from, const std::string &to) {
    if (::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), 0) != 0)
        raiseSystemError(errno);
    if (::unlink(from.c_str()) != 0) {
        const int error = errno;
        ::unlink(to.c_str());
        raiseSystemError(error);
    }
}

} // namespace

void renameToFreeName(const std::string &from, const std::string &to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return;
    if (errno == EINVAL || errno == ENOSYS)
        linkAndUnlink(from, to);
    else
        raiseSystemError(errno);
}

} // namespace velmora::platform
