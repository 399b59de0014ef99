#include "text/ansi_conversion.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/utf8.h"
#include "text/path_text.h"
#include "text/utf8_units.h"

#include <algorithm>

namespace velmora::platform {

namespace {

constexpr int utf8Page = 65001;

bool isAscii(std::string_view bytes) noexcept { return asciiRun(bytes) == bytes.size(); }

bool isAscii(std::u16string_view text) noexcept {
    return std::all_of(
        text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

// Whether a reader would take one of the lines for UTF-8. Some letters of a page, one behind the
// other, are such bytes by chance.
bool hasUtf8Line(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
        const std::string_view line = bytes.substr(0, end);
        if (!isAscii(line) && decodeUtf8Units(line))
            return true;
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    return false;
}

// Absent where reading the bytes would not give the text again.
std::optional<std::string> encodeLegacy(const LegacyPage &page, std::u16string_view text) {
    auto bytes = page.encode(text);
    if (bytes && hasUtf8Line(*bytes))
        bytes.reset();
    return bytes;
}

} // namespace

AnsiConversion::AnsiConversion(std::function<std::u16string()> activePage, int usualPage)
    : activePage_(std::move(activePage)), usualPage_(usualPage) {}

AnsiConversion::~AnsiConversion() = default;

void AnsiConversion::askForPage() const {
    if (asked_)
        return;
    // Set first: what answers the question may itself convert text.
    asked_ = true;
    legacy_.emplace(usualPage_);
    const auto page = activePage_ ? strictInt32(activePage_()) : std::nullopt;
    if (page == utf8Page) {
        legacy_.reset();
    } else if (page && LegacyPage::isKnown(*page)) {
        legacy_.emplace(*page);
        isSet_ = true;
    }
}

const LegacyPage *AnsiConversion::legacy() const {
    askForPage();
    return legacy_ ? &*legacy_ : nullptr;
}

const LegacyPage *AnsiConversion::written() const {
    const LegacyPage *page = legacy();
    return isSet_ ? page : nullptr;
}

std::string AnsiConversion::encode(std::u16string_view text) const {
    std::string bytes;
    appendTo(bytes, text);
    return bytes;
}

void AnsiConversion::appendTo(std::string &bytes, std::u16string_view text) const {
    // Units below 128 are the same bytes in every page.
    const std::size_t begin = bytes.size();
    bytes.resize(begin + text.size());
    const std::size_t run = copyAscii(text, bytes.data() + begin);
    if (run == text.size())
        return;
    bytes.resize(begin + run);
    text.remove_prefix(run);
    const LegacyPage *page = written();
    if (const auto legacy = page ? encodeLegacy(*page, text) : std::nullopt)
        bytes += *legacy;
    else
        appendUtf8Units(bytes, text);
}

std::size_t AnsiConversion::byteCount(std::u16string_view text) const {
    if (isAscii(text))
        return text.size();
    return written() ? encode(text).size() : utf8UnitsByteCount(text);
}

std::u16string AnsiConversion::decode(std::string_view bytes) const {
    if (isAscii(bytes))
        return fromAscii(bytes);
    if (auto text = decodeUtf8Units(bytes))
        return *std::move(text);
    return legacy() ? legacy()->decode(bytes) : decodeUtf8UnitsAnyway(bytes);
}

std::u16string AnsiConversion::decodePath(std::string_view bytes) const {
    if (isAscii(bytes))
        return fromAscii(bytes);
    if (auto text = decodeUtf8Units(bytes))
        return *std::move(text);
    // In the page that is set as it was written; else these are the bytes of the name itself.
    if (written())
        if (auto text = written()->decodeStrictly(bytes))
            return *std::move(text);
    return bytes.front() == '/' ? pathFromBytes(bytes) : decode(bytes);
}

std::vector<std::u16string> AnsiConversion::decodeTogether(const std::vector<std::string> &texts,
                                                           bool fixedLength) const {
    std::ptrdiff_t balance = 0; // texts that are UTF-8 less texts that are not
    for (const std::string &text : texts)
        if (!isAscii(text))
            balance += decodeUtf8Units(text, fixedLength) ? 1 : -1;
    const LegacyPage *page = balance < 0 ? legacy() : nullptr;
    std::vector<std::u16string> result;
    result.reserve(texts.size());
    for (const std::string &text : texts)
        if (isAscii(text))
            result.push_back(fromAscii(text));
        else if (page)
            result.push_back(page->decode(text, fixedLength));
        else
            result.push_back(decodeUtf8UnitsAnyway(text, fixedLength));
    return result;
}

} // namespace velmora::platform
