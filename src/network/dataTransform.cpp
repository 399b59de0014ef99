#include "network/dataTransform.h"

#include "platform/contracts/ansi.h"

#include <algorithm>

namespace velmora {

bool isBytesEmpty(const ByteArray &bytes) noexcept { return !bytes.has_value(); }

void textToBytes(const platform::AnsiText &ansi, ByteArray &bytes, std::u16string &text) {
    if (isBytesEmpty(bytes)) {
        bytes = ansi.encode(text);
        return;
    }
    const std::size_t size = bytes->size();
    if (text.size() < size)
        text.resize(size, u'\0');
    const std::string encoded = ansi.encode(text);
    std::copy_n(encoded.begin(), std::min(size, encoded.size()), bytes->begin());
}

std::u16string bytesToText(const platform::AnsiText &ansi, const ByteArray &bytes) {
    return ansi.decode(bytes.value_or(std::string()));
}

} // namespace velmora
