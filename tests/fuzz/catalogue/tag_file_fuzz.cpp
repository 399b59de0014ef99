// Music files of any bytes: what is read of their tags is bounded, and so is what their names tell
// where they have none.

#include "base/text.h"
#include "catalogue/tags.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace velmora::catalogue;
    OpenFile file;
    file.file = velmora::platform::Descriptor(::memfd_create("music", MFD_CLOEXEC));
    if (!file.file || ::write(file.file.number(), data, size) != static_cast<ssize_t>(size))
        return 0;
    file.bytes = static_cast<std::int64_t>(size);
    const Tags tags = tagsOf(file);
    for (const std::u16string &text : {tags.title, tags.artist, tags.album})
        if (text.size() > longestTag)
            std::abort();
    const std::u16string stem =
        velmora::fromUtf8({reinterpret_cast<const char *>(data), std::min<std::size_t>(size, 300)});
    const Tags named = tagsOfName(stem);
    if (named.title.size() > stem.size() || named.artist.size() > stem.size() ||
        !named.album.empty())
        std::abort();
    return 0;
}
