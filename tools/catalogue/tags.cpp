#include "catalogue/tags.h"

#include "base/text.h"
#include "base/utf8.h"
#include "catalogue/texts.h"
#include "platform/backends/linux/open_file.h"
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
std::u16string textOfTag(const TagLib::String &whole) {
    constexpr int legacy = 936;
    constexpr unsigned most = 4 * longestTag; // blanks and pairs are counted later
    const TagLib::String text = whole.substr(0, most);
    if (text.isLatin1() && !text.isAscii()) {
        const std::string bytes = text.to8Bit(false);
        const auto meant = platform::LegacyPage(legacy).decodeStrictly(bytes);
        if (meant)
            return cutTag(oneLine(*meant));
    }
    return cutTag(oneLine(fromUtf8(text.to8Bit(true))));
}

unsigned byteAt(std::string_view bytes, std::size_t at) {
    return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
}

// Four bytes of 7 or 8 bits.
std::size_t sizeAt(std::string_view bytes, std::size_t at, unsigned bits) {
    std::size_t size = 0;
    for (std::size_t i = 0; i < 4; ++i)
        size = size << bits | byteAt(bytes, at + i);
    return size;
}

// Whether a frame of the tag at the file's beginning is packed.
bool hasPackedFrame(int file) {
    constexpr std::size_t headBytes = 10;
    constexpr int mostFrames = 1000;
    const auto read = [&](std::size_t at) {
        return platform::readAt(file, static_cast<std::int64_t>(at), headBytes).value_or("");
    };
    const std::string head = read(0);
    const unsigned version = byteAt(head, 3);
    if (head.substr(0, 3) != "ID3" || (version != 3 && version != 4))
        return false; // the oldest has no such frames
    const std::size_t end = headBytes + sizeAt(head, 6, 7);
    const unsigned packed = version == 3 ? 0x80 : 0x08;
    const bool extended = (byteAt(head, 5) & 0x40) != 0;
    std::size_t at = headBytes;
    if (extended)
        at += version == 3 ? 4 + sizeAt(read(at), 0, 8) : sizeAt(read(at), 0, 7);
    for (int i = 0; i < mostFrames && at < end; ++i) {
        const std::string frame = read(at);
        if (byteAt(frame, 0) == 0)
            return false; // what fills the tag up
        if ((byteAt(frame, 9) & packed) != 0)
            return true;
        at += headBytes + sizeAt(frame, 4, version == 3 ? 8 : 7);
    }
    return at < end; // no tag has so many frames
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

std::u16string cutTag(std::u16string text) {
    if (text.size() > longestTag)
        text.resize(isHighSurrogate(text[longestTag - 1]) ? longestTag - 1 : longestTag);
    return text;
}

Tags tagsOf(const OpenFile &file) {
    Tags tags;
    if (hasPackedFrame(file.file.number()))
        return tags;
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
