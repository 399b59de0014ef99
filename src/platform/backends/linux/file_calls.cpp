#include "platform/backends/linux/file_calls.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace velmora::platform {

namespace {

// It sends off the content when the name is taken, and its journal waits for that. Others begin to
// send it as well, but nothing waits, or leave it in memory for half a minute.
bool isExt4(int file) {
    struct ::statfs about {};
    return ::fstatfs(file, &about) == 0 && about.f_type == EXT4_SUPER_MAGIC;
}

} // namespace

FileCalls::FileCalls()
    : openNameless(
          [](const char *folder) { return ::open(folder, O_RDWR | O_TMPFILE | O_CLOEXEC, 0600); }),
      rename([](const char *from, const char *to, unsigned flags) {
          return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, flags);
      }),
      link([](const char *from, const char *to, int flags) {
          return ::linkat(AT_FDCWD, from, AT_FDCWD, to, flags);
      }),
      setMode([](int file, mode_t mode) { return ::fchmod(file, mode); }),
      setTimes([](int file, const std::timespec *times) { return ::futimens(file, times); }),
      putsContentFirst(isExt4), syncContent([](int file) { return ::fdatasync(file); }),
      beforePassingName([](const std::string &) {}) {}

bool isNotKnownHere(int error) noexcept {
    return error == EPERM || error == ENOTSUP || error == ENOSYS || error == EINVAL;
}

} // namespace velmora::platform
