#include "catalogue/tags.h"

#include "base/text.h"
#include "catalogue/texts.h"
#include "text/legacy_page.h"

#include <taglib/fileref.h>
#include <taglib/tag.h>
#include <taglib/tfilestream.h>
#include <unistd.h>

#include <algorithm>

namespace velmora::catalogue {

namespace {

bool isDigit(char16_t unit) noexcept { return unit >= u'0' && unit <= u'9'; }

// Old tags call their text Latin-1 and mean the page of whoever wrote it.
std::u16string textOfTag(const TagLib::String &text) {
    constexpr int legacy = 936;
    if (text.isLatin1() && !text.isAscii()) {
        const std::string bytes = text.to8Bit(false);
        const auto meant = platform::LegacyPage(legacy).decodeStrictly(bytes);
        if (meant)
            return oneLine(*meant);
    }
    return oneLine(fromUtf8(text.to8Bit(true)));
}

// Behind "03. ", "03 - ", "03-", "03_", and "03 " where the number begins with 0.
std::u16string_view withoutNumber(std::u16string_view stem) {
    std::size_t digits = 0;
    while (digits < stem.size() && digits < 3 && isDigit(stem[digits]))
        ++digits;
    if (digits == 0)
        return stem;
    const std::u16string_view rest = stem.substr(digits);
    for (const std::u16string_view sign : {u". ", u" - ", u"- ", u"-", u"_"})
        if (startsWith(rest, sign) && rest.size() > sign.size())
            return rest.substr(sign.size());
    return stem.front() == u'0' && startsWith(rest, u" ") ? trim(rest) : stem;
}

} // namespace

Tags tagsOf(const OpenFile &file) {
    Tags tags;
    const int own = ::dup(file.file.number()); // the stream closes it
    if (own < 0)
        return tags;
    TagLib::FileStream stream(own, true);
    const TagLib::FileRef reference(&stream, false);
    if (reference.isNull() || reference.tag() == nullptr)
        return tags;
    tags.title = textOfTag(reference.tag()->title());
    tags.artist = textOfTag(reference.tag()->artist());
    tags.album = textOfTag(reference.tag()->album());
    return tags;
}

Tags tagsOfName(std::u16string_view stem) {
    Tags tags;
    const std::u16string_view name = withoutNumber(trim(stem));
    const std::size_t dash = name.find(u" - ");
    if (dash != std::u16string_view::npos) {
        tags.artist = oneLine(name.substr(0, dash));
        tags.title = oneLine(name.substr(dash + 3));
    }
    if (tags.title.empty())
        tags.title = oneLine(name);
    return tags;
}

} // namespace velmora::catalogue
