#include "base/ascii.h"

#include <algorithm>

namespace velmora {

std::string lowerAscii(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char byte) { return lowerAscii(byte); });
    return result;
}

std::string unescaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int byte = escapedByte(text, i);
        result += byte < 0 ? text[i] : static_cast<char>(byte);
        i += byte < 0 ? 0 : 2;
    }
    return result;
}

} // namespace velmora
