#include "text/legacy_page.h"

#include "base/utf8.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <iterator>

namespace velmora::platform {

namespace {

struct PageRow {
    int number;
    const char *readName;
    const char *writeName;
    bool twoByte;
};

constexpr PageRow pageRows[] = {
    {936, "GB18030", "CP936", true}, {932, "CP932", "CP932", true},     {949, "UHC", "UHC", true},
    {950, "CP950", "CP950", true},   {1252, "CP1252", "CP1252", false},
};

const PageRow *rowOf(int number) noexcept {
    const PageRow *row = std::find_if(std::begin(pageRows), std::end(pageRows),
                                      [&](const PageRow &r) { return r.number == number; });
    return row == std::end(pageRows) ? nullptr : row;
}

// What iconv_open answers when it fails, and what a converter not yet opened is.
// NOLINTNEXTLINE(performance-no-int-to-ptr): its own value for a failure
void *const noConverter = reinterpret_cast<void *>(std::intptr_t{-1});

// The converter's other side: 32-bit code points in the machine's order, built into the library,
// so that only the page's own table is loaded.
constexpr const char *codePointForm = "WCHAR_T";

void *opened(void *&converter, const char *to, const char *from) {
    if (converter == nullptr)
        converter = iconv_open(to, from);
    return converter;
}

enum class Stop { Done, Invalid, CutEnd };

// Converts as much as goes; advances `bytes` behind it.
Stop convertRun(void *converter, std::string_view &bytes, std::u16string &result) {
    char32_t buffer[512];
    for (;;) {
        char *in = const_cast<char *>(bytes.data()); // the interface's fault: it writes nothing
        std::size_t inLeft = bytes.size();
        char *out = reinterpret_cast<char *>(buffer);
        std::size_t outLeft = sizeof buffer;
        const std::size_t answer = iconv(converter, &in, &inLeft, &out, &outLeft);
        const int error = answer == static_cast<std::size_t>(-1) ? errno : 0;
        bytes.remove_prefix(bytes.size() - inLeft);
        const std::size_t made = (sizeof buffer - outLeft) / sizeof buffer[0];
        for (std::size_t i = 0; i < made; ++i) {
            char16_t units[2];
            result.append(units, putUtf16(buffer[i], units));
        }
        if (error == 0)
            return Stop::Done;
        if (error == EINVAL)
            return Stop::CutEnd;
        if (error != E2BIG)
            return Stop::Invalid;
    }
}

bool isLead(unsigned char byte) noexcept { return byte >= 0x81 && byte <= 0xFE; }
bool isDigit(unsigned char byte) noexcept { return byte >= '0' && byte <= '9'; }

} // namespace

LegacyPage::~LegacyPage() {
    for (void *converter : {reader_, writer_})
        if (converter != nullptr && converter != noConverter)
            iconv_close(converter);
}

bool LegacyPage::isKnown(int number) noexcept { return rowOf(number) != nullptr; }

// How many bytes one U+FFFD stands for at a place that does not decode.
std::size_t LegacyPage::invalidLength(std::string_view bytes) const noexcept {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const PageRow *row = rowOf(number_);
    if (row == nullptr || !row->twoByte || !isLead(byte(0)) || bytes.size() < 2)
        return 1;
    if (number_ == 932 && byte(0) >= 0xA0 && byte(0) <= 0xDF)
        return 1;
    if (byte(1) >= 0x80)
        return 2;
    if (number_ == 936 && bytes.size() >= 4 && isDigit(byte(1)) && isLead(byte(2)) &&
        isDigit(byte(3)))
        return 4;
    return 1;
}

bool LegacyPage::decodeInto(std::u16string &result, std::string_view bytes, bool dropCutEnd,
                            bool stopAtInvalid) const {
    const PageRow *row = rowOf(number_);
    result.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::size_t run = asciiRun(bytes);
        result.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(run));
        bytes.remove_prefix(run);
        if (bytes.empty())
            break;
        Stop stop = Stop::Invalid;
        void *converter = row ? opened(reader_, codePointForm, row->readName) : noConverter;
        if (converter != noConverter)
            stop = convertRun(converter, bytes, result);
        if (stop == Stop::Done || (stop == Stop::CutEnd && dropCutEnd))
            break;
        if (number_ == 936 && bytes.front() == '\x80') { // page 936 has it, its superset does not
            result += u'\x20AC';
            bytes.remove_prefix(1);
            continue;
        }
        if (stopAtInvalid)
            return false;
        result += u'\xFFFD';
        bytes.remove_prefix(stop == Stop::CutEnd ? 1 : invalidLength(bytes));
    }
    return true;
}

std::u16string LegacyPage::decode(std::string_view bytes, bool dropCutEnd) const {
    std::u16string result;
    decodeInto(result, bytes, dropCutEnd, false);
    return result;
}

std::optional<std::u16string> LegacyPage::decodeStrictly(std::string_view bytes) const {
    std::u16string result;
    if (!decodeInto(result, bytes, false, true))
        return std::nullopt;
    return result;
}

std::optional<std::string> LegacyPage::encode(std::u16string_view text) const {
    std::u32string codePoints;
    codePoints.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const bool pair =
            isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1]);
        codePoints += pair ? pairCodePoint(unit, text[++i]) : char32_t{unit};
    }
    const PageRow *row = rowOf(number_);
    void *converter = row ? opened(writer_, row->writeName, codePointForm) : noConverter;
    if (converter == noConverter)
        return std::nullopt;
    std::string result(codePoints.size() * 2, '\0'); // no page has more for one
    char *in = reinterpret_cast<char *>(codePoints.data());
    std::size_t inLeft = codePoints.size() * sizeof codePoints[0];
    char *out = result.data();
    std::size_t outLeft = result.size();
    if (iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1))
        return std::nullopt;
    result.resize(result.size() - outLeft);
    // Some signs are written as another that looks like them.
    if (decodeStrictly(result) != text)
        return std::nullopt;
    return result;
}

} // namespace velmora::platform
