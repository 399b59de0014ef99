// The first bytes of a file that may be anything, given as they are and looked at in a file, where
// a tag may stand ahead of what counts.

#include "platform/backends/media/medium_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace velmora::platform::media;
    belongsToPictureDevice({reinterpret_cast<const char *>(data), size});
    // One file in memory for all inputs, which has a name.
    static const int file = ::memfd_create("medium", MFD_CLOEXEC);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    if (::ftruncate(file, 0) != 0 || ::pwrite(file, data, size, 0) != static_cast<ssize_t>(size))
        return 0;
    const MediumFile medium = lookAtMedium(path);
    if (!medium.isRegular || medium.beginning.size() > size)
        std::abort();
    if (lookAtMedium("/proc/self").isRegular)
        std::abort();
    belongsToPictureDevice(medium.beginning);
    return 0;
}
