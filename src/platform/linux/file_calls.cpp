#include "platform/linux/file_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace velmora::platform {

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
      beforePassingName([](const std::string &) {}) {}

bool isNotKnownHere(int error) noexcept {
    return error == EPERM || error == ENOTSUP || error == ENOSYS || error == EINVAL;
}

} // namespace velmora::platform
