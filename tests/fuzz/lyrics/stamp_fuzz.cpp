// The stamp patterns, the tag words and the words of any line.

#include "base/text.h"
#include "lyrics/lrc_text.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace velmora;
    const std::u16string line = fromUtf8({reinterpret_cast<const char *>(data), size});
    // A cut takes from the left, so what is left is the line's end.
    const std::u16string left = withoutStamp(line);
    if (left.size() > line.size() || line.substr(line.size() - left.size()) != left)
        std::abort();
    const std::u16string_view words = wordsOf(line);
    if (words.find(u']') != words.npos)
        std::abort();
    const auto tag = tagOf(line);
    if (tag && (!endsWithLabel(line) || tag->value.size() + 5 > trim(line).size()))
        std::abort();
    return 0;
}
