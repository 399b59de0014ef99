#include "network/toUrlString.h"

#include "base/ascii.h"
#include "platform/contracts/ansi.h"

namespace velmora {

std::u16string toUrlString(const platform::AnsiText &ansi, std::u16string_view text) {
    std::u16string result;
    for (const char byte : ansi.encode(text)) {
        const unsigned value = static_cast<unsigned char>(byte);
        result += u'%';
        if (value >= 16)
            result += static_cast<char16_t>(hexDigit(value / 16));
        result += static_cast<char16_t>(hexDigit(value));
    }
    return result;
}

} // namespace velmora
