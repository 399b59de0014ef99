// Version records: any bytes as a program file, and what is found in it as a record.

#include "text/version/version_image.h"
#include "text/version/version_query.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace velmora::platform;

void ask(std::string_view record) {
    for (const char16_t *query :
         {u"\\", u"\\VarFileInfo\\Translation", u"\\StringFileInfo\\080404B0\\InternalName"}) {
        const auto value = versionValue(record, query);
        if (!value)
            continue;
        if (value->bytes.data() < record.data() ||
            value->bytes.data() + value->bytes.size() > record.data() + record.size())
            std::abort();
        if (value->text)
            versionText(value->bytes);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char *>(data), size);
    int reads = 0;
    const auto place = findVersionRecord([&](std::uint64_t offset, std::size_t count) {
        if (++reads > 50)
            std::abort(); // the cost of a search is bounded
        return offset < file.size()
                   ? std::string(file.substr(static_cast<std::size_t>(offset), count))
                   : std::string();
    });
    if (place) {
        if (place->offset > file.size() || place->size > file.size() - place->offset)
            std::abort();
        ask(file.substr(static_cast<std::size_t>(place->offset), place->size));
    }
    ask(file);
    return 0;
}
