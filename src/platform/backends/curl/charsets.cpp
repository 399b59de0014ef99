#include "platform/backends/curl/charsets.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "text/legacy_page.h"

#include <algorithm>
#include <iterator>

namespace velmora::platform::http {

namespace {

constexpr int utf8 = 65001;
constexpr int utf16 = 1200;

struct LabelRow {
    std::u16string_view label; // upper case
    int page;
};

constexpr LabelRow labelRows[] = {
    {u"GB2312", 936},        {u"GB18030", 936},    {u"GBK", 936},         {u"GB_2312-80", 936},
    {u"X-GBK", 936},         {u"CHINESE", 936},    {u"WINDOWS-936", 936}, {u"UTF-8", utf8},
    {u"UTF8", utf8},         {u"UNICODE", utf16},  {u"UTF-16", utf16},    {u"UTF-16LE", utf16},
    {u"SHIFT_JIS", 932},     {u"SHIFT-JIS", 932},  {u"SJIS", 932},        {u"WINDOWS-31J", 932},
    {u"BIG5", 950},          {u"BIG5-HKSCS", 950}, {u"ISO-8859-1", 1252}, {u"LATIN1", 1252},
    {u"WINDOWS-1252", 1252}, {u"US-ASCII", 1252},  {u"ASCII", 1252},
};

std::u16string decodeUtf16(std::string_view bytes) {
    std::u16string result;
    result.reserve(bytes.size() / 2 + 1);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        result += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                        static_cast<unsigned char>(bytes[i + 1]) << 8);
    if (bytes.size() % 2 != 0)
        result += u'\xFFFD';
    if (startsWith(result, u"\xFEFF"))
        result.erase(0, 1);
    return result;
}

} // namespace

std::u16string decodeLabelled(std::string_view bytes, std::u16string_view label) {
    const std::u16string name = upper(trim(label));
    const auto *row = std::find_if(std::begin(labelRows), std::end(labelRows),
                                   [&](const LabelRow &r) { return r.label == name; });
    if (row == std::end(labelRows))
        throw RunTimeError(ErrorNumber::InvalidCall, u"Unknown charset \"" + name + u"\"");
    if (row->page == utf16)
        return decodeUtf16(bytes);
    if (row->page != utf8)
        return LegacyPage(row->page).decode(bytes);
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (bytes.substr(0, mark.size()) == mark)
        bytes.remove_prefix(mark.size());
    return fromUtf8(bytes);
}

} // namespace velmora::platform::http
