// What the process that reads tags says, which a file may have taken over: texts of a bounded
// length without a control character, whatever it is, and the same once they are said again.

#include "catalogue/tag_answer.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace velmora::catalogue;

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const Tags tags = tagsSaid(std::string(reinterpret_cast<const char *>(data), size));
    for (const std::u16string &text : {tags.title, tags.artist, tags.album}) {
        require(text.size() <= longestTag);
        for (const char16_t unit : text)
            require(unit >= u' ');
    }
    require(tagsSaid(sayTags(tags)) == tags);
    return 0;
}
