// Pages in a named charset: every byte sequence decodes, to no more units than it has bytes and to
// whole characters; letters of ASCII survive.

#include "base/run_time_error.h"
#include "base/text.h"
#include "base/utf8.h"
#include "platform/backends/curl/charsets.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace velmora;

void require(bool holds) {
    if (!holds)
        std::abort();
}

bool isWhole(const std::u16string &text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isLowSurrogate(text[i]))
            return false;
        if (isHighSurrogate(text[i]) && (++i == text.size() || !isLowSurrogate(text[i])))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    constexpr const char16_t *labels[] = {u"gb2312", u"utf-8", u"shift_jis", u"big5", u"latin1"};
    const std::string bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
    const std::u16string text = platform::http::decodeLabelled(bytes, labels[data[0] % 5]);
    require(text.size() <= bytes.size());
    require(isWhole(text));
    // A quote ends a link: none may be swallowed by a damaged character in front of it.
    require(std::count(text.begin(), text.end(), u'"') ==
            std::count(bytes.begin(), bytes.end(), '"'));
    platform::http::decodeLabelled(bytes, u"unicode");
    // The label comes from a page, too: one that nobody knows raises.
    const std::u16string label = fromUtf8(std::string_view(bytes).substr(0, bytes.find('\n')));
    const bool isKnown = passOver([&] { platform::http::decodeLabelled(bytes, label); });
    require(isKnown || trim(label) != u"GBK");
    return 0;
}
