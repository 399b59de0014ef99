// The first bytes of a file that may be anything.

#include "platform/backends/media/medium_file.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    velmora::platform::media::belongsToPictureDevice({reinterpret_cast<const char *>(data), size});
    return 0;
}
