#include "catalogue/texts.h"

#include "base/ascii.h"
#include "base/text.h"
#include "base/utf8.h"
#include "text/ansi_conversion.h"

#include <iconv.h>

#include <algorithm>
#include <cstdint>

namespace velmora::catalogue {

namespace {

// The full-width twin of a sign of ASCII.
char16_t wide(char16_t unit) noexcept { return static_cast<char16_t>(unit + 0xFEE0); }

char16_t plain(char16_t unit) noexcept {
    if (unit == 0x3000)
        return u' ';
    return unit > 0xFF00 && unit < 0xFF5F ? static_cast<char16_t>(unit - 0xFEE0) : unit;
}

bool isLatinWord(char16_t unit) noexcept {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= 0xC0 && unit < 0x2000);
}

bool isOtherWord(char16_t unit) noexcept {
    const bool sign =
        (unit >= 0x2000 && unit < 0x2E80) || (unit >= 0x3000 && unit < 0x3040) || unit >= 0xFE30;
    return unit >= 0x2000 && !sign;
}

} // namespace

std::u16string textOf(std::string_view bytes) {
    const platform::AnsiConversion ansi([] { return std::u16string(); });
    return ansi.decode(bytes);
}

std::string pageBytes(std::u16string_view text) {
    std::string utf8 = toUtf8(text);
    const iconv_t converter = iconv_open("GB18030", "UTF-8");
    if (converter == reinterpret_cast<iconv_t>(std::intptr_t{-1})) // NOLINT: as it is documented
        return utf8;
    std::string result(utf8.size() * 2 + 16, '\0');
    char *in = utf8.data();
    char *out = result.data();
    std::size_t inLeft = utf8.size();
    std::size_t outLeft = result.size();
    while (iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1) &&
           inLeft > 0 && outLeft > 0) {
        ++in; // a code point without a place: nothing may keep the rest from being shown
        --inLeft;
    }
    iconv_close(converter);
    result.resize(result.size() - outLeft);
    return result;
}

std::u16string htmlText(std::u16string_view text) {
    std::u16string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit == u'&')
            result += u"&amp;";
        else if (unit == u'<')
            result += u"&lt;";
        else if (unit == u'>')
            result += u"&gt;";
        else if (unit == u'"')
            result += u"&quot;";
        else if (equalsIgnoringCase(text.substr(i, 4), u"href"))
            result += u"&#" + fromAscii(std::to_string(unit)) + u";";
        else
            result += unit < u' ' ? u' ' : unit;
    }
    return result;
}

std::string escaped(std::string_view bytes) {
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~";
    std::string result;
    for (const char byte : bytes)
        if (plain.find(byte) == std::string_view::npos)
            addEscaped(result, byte);
        else
            result += byte;
    return result;
}

std::u16string oneLine(std::u16string_view text) {
    std::u16string result;
    for (const char16_t unit : text) {
        const char16_t shown = unit < u' ' || unit == 0x7F || unit == 0xA0 ? u' ' : unit;
        if (shown != u' ' || (!result.empty() && result.back() != u' '))
            result += shown;
    }
    if (!result.empty() && result.back() == u' ')
        result.pop_back();
    return result;
}

std::u16string recordField(std::u16string_view text) {
    constexpr std::u16string_view signs = u"@;\\/:*?\"<>|";
    std::u16string result = oneLine(text);
    for (char16_t &unit : result)
        if (signs.find(unit) != std::u16string_view::npos)
            unit = wide(unit);
    if (startsWith(upper(result), u"FI"))
        result.insert(0, u" ");
    return result;
}

std::u16string_view fittingBytes(std::u16string_view text, std::size_t bytes) {
    const std::u16string shown = upper(text); // unit by unit
    std::size_t used = 0;
    for (std::size_t i = 0; i < text.size();) {
        const bool pair = isHighSurrogate(text[i]) && i + 1 < text.size();
        const std::size_t units = pair ? 2 : 1;
        used += toUtf8(std::u16string_view(shown).substr(i, units)).size();
        if (used > bytes)
            return text.substr(0, i);
        i += units;
    }
    return text;
}

std::u16string searchForm(std::u16string_view text) {
    enum class Kind { Gap, Latin, Other };
    std::u16string result;
    Kind last = Kind::Gap;
    for (const char16_t unit : upper(text)) {
        const char16_t shown = upperUnit(plain(unit));
        if (shown == u'\'' || shown == 0x2019)
            continue; // "don't" is one word
        const Kind kind = isLatinWord(shown)   ? Kind::Latin
                          : isOtherWord(shown) ? Kind::Other
                                               : Kind::Gap;
        if (kind != last && !result.empty() && result.back() != u' ')
            result += u' ';
        if (kind != Kind::Gap)
            result += shown;
        last = kind;
    }
    if (!result.empty() && result.back() == u' ')
        result.pop_back();
    return result;
}

std::vector<std::u16string> wordsOf(std::u16string_view searchForm) {
    return searchForm.empty() ? std::vector<std::u16string>() : split(searchForm, u' ');
}

} // namespace velmora::catalogue
