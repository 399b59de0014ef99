#include "platform/backends/linux/free_name.h"

#include "platform/backends/linux/errors.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace velmora::platform {

namespace {

// The first way of file systems that cannot rename without replacing: a second name, then the first
// goes. False where there are no second names.
bool linkAndUnlink(const std::string &from, const std::string &to, const FileCalls &calls) {
    if (calls.link(from.c_str(), to.c_str(), 0) != 0) {
        if (isNotKnownHere(errno) || errno == EMLINK)
            return false;
        raiseSystemError(errno);
    }
    if (::unlink(from.c_str()) != 0) {
        const int error = errno;
        ::unlink(to.c_str());
        raiseSystemError(error);
    }
    return true;
}

// The second: nothing may be seen under the new name. What comes between the look and the rename is
// replaced; the file system has no means against it.
void lookAndRename(const std::string &from, const std::string &to, const FileCalls &calls) {
    struct ::stat info {};
    if (::lstat(to.c_str(), &info) == 0)
        raiseSystemError(EEXIST);
    if (errno != ENOENT || calls.rename(from.c_str(), to.c_str(), 0) != 0)
        raiseSystemError(errno);
}

} // namespace

void renameToFreeName(const std::string &from, const std::string &to, const FileCalls &calls) {
    if (calls.rename(from.c_str(), to.c_str(), RENAME_NOREPLACE) == 0)
        return;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)
        raiseSystemError(errno);
    if (!linkAndUnlink(from, to, calls))
        lookAndRename(from, to, calls);
}

} // namespace velmora::platform
