#include "platform/backends/linux/font_pages.h"

#include <sys/mman.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

namespace velmora::platform {

namespace {

bool isFont(std::string_view path) {
    for (const std::string_view ending : {".ttf", ".ttc", ".otf", ".otc", ".TTF", ".TTC", ".OTF"})
        if (path.ends_with(ending))
            return true;
    return false;
}

} // namespace

int letGoOfFontPages() {
    int fonts = 0;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t from = 0;
        std::uintptr_t to = 0;
        char rights[5] = {};
        // Only what nobody could have written to: the file has all of it.
        if (!isFont(line) ||
            std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR " %4s", &from, &to, rights) != 3 ||
            std::string_view(rights) != "r--p")
            continue;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the system tells its mappings as numbers
        void *const pages = reinterpret_cast<void *>(from);
        fonts += madvise(pages, to - from, MADV_DONTNEED) == 0 ? 1 : 0;
    }
    return fonts;
}

} // namespace velmora::platform
