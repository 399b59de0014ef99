// The picture in a tag: whatever the file holds, what comes out is a picture of bounded size that
// lies in it, and the work is bounded, too.

#include "platform/backends/bus/tag_picture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace velmora::platform::bus;

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string file(reinterpret_cast<const char *>(data), size);
    std::size_t asked = 0;
    const std::string picture = pictureInTag([&](std::uint64_t offset, std::size_t count) {
        require(offset < std::uint64_t{1} << 63U);
        require(count <= 4 * mostPictureBytes);
        ++asked;
        return offset < file.size() ? file.substr(offset, count) : std::string();
    });
    require(asked < 10'000);
    require(picture.size() <= std::min(file.size(), mostPictureBytes));
    require(picture.empty() || *endingOfPicture(picture) != '\0');
    return 0;
}
