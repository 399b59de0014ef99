// The file that says where a person's folders lie: what comes of it is an absolute path without a
// slash at its end, or nothing.

#include "platform/backends/linux/user_dirs.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const char *home : {"/home/me", ""}) {
        const auto folder = velmora::platform::userDir(text, "MUSIC", home);
        if (folder && (folder->empty() || folder->front() != '/' ||
                       (folder->size() > 1 && folder->back() == '/')))
            std::abort();
    }
    return 0;
}
