#include "network/toUrlString.h"

#include "platform/contracts/ansi.h"

namespace velmora {

std::u16string toUrlString(const platform::AnsiText &ansi, std::u16string_view text) {
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    std::u16string result;
    for (const char byte : ansi.encode(text)) {
        const unsigned value = static_cast<unsigned char>(byte);
        result += u'%';
        if (value >= 16)
            result += digits[value / 16];
        result += digits[value % 16];
    }
    return result;
}

} // namespace velmora
