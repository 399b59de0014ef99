#include "platform/linux/text/ansi_conversion.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/utf8.h"
#include "platform/linux/text/path_text.h"
#include "platform/linux/text/utf8_units.h"

#include <algorithm>

namespace velmora::platform {

namespace {

constexpr int defaultLegacyPage = 936;
constexpr int utf8Page = 65001;

bool isAscii(std::string_view bytes) noexcept { return asciiRun(bytes) == bytes.size(); }

bool isAscii(std::u16string_view text) noexcept {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

// The legacy pages know no file-name units: they are written as in UTF-8.
std::string encodeLegacy(const LegacyPage &page, std::u16string_view text) {
    std::string result;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            ++i;
        } else if (isFileNameUnit(text[i])) {
            result += page.encode(text.substr(begin, i - begin));
            result += encodeUtf8Units(text.substr(i, 1));
            begin = i + 1;
        }
    }
    result += page.encode(text.substr(begin));
    return result;
}

} // namespace

AnsiConversion::AnsiConversion(std::function<std::u16string()> activePage)
    : activePage_(std::move(activePage)) {}

AnsiConversion::~AnsiConversion() = default;

AnsiConversion::Mode AnsiConversion::mode() const {
    if (!mode_) {
        // Set first: what answers the question may itself convert text.
        mode_ = Mode::Utf8ThenLegacy;
        legacy_.emplace(defaultLegacyPage);
        const auto page = activePage_ ? strictInt32(activePage_()) : std::nullopt;
        if (page == utf8Page) {
            mode_ = Mode::Utf8Alone;
        } else if (page && LegacyPage::isKnown(*page)) {
            mode_ = Mode::LegacyAlone;
            legacy_.emplace(*page);
        }
    }
    return *mode_;
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
    if (mode() == Mode::LegacyAlone)
        bytes += encodeLegacy(*legacy_, text);
    else
        appendUtf8Units(bytes, text);
}

std::size_t AnsiConversion::byteCount(std::u16string_view text) const {
    if (isAscii(text))
        return text.size();
    return mode() == Mode::LegacyAlone ? encode(text).size() : utf8UnitsByteCount(text);
}

std::u16string AnsiConversion::decode(std::string_view bytes) const {
    if (isAscii(bytes))
        return fromAscii(bytes);
    switch (mode()) {
    case Mode::LegacyAlone:
        return legacy_->decode(bytes);
    case Mode::Utf8Alone:
        return decodeUtf8UnitsAnyway(bytes);
    case Mode::Utf8ThenLegacy:
        break;
    }
    auto text = decodeUtf8Units(bytes);
    return text ? *std::move(text) : legacy_->decode(bytes);
}

std::u16string AnsiConversion::decodePath(std::string_view bytes) const {
    if (isAscii(bytes))
        return fromAscii(bytes);
    if (mode() == Mode::LegacyAlone)
        return decodeLegacyPath(bytes);
    if (auto text = decodeUtf8Units(bytes))
        return *std::move(text);
    if (bytes.front() == '/')
        return pathFromBytes(bytes);
    return mode() == Mode::Utf8Alone ? decodeUtf8UnitsAnyway(bytes) : legacy_->decode(bytes);
}

// Under an override the page comes first; what it cannot read may hold file-name units, or be the
// raw bytes of a name.
std::u16string AnsiConversion::decodeLegacyPath(std::string_view bytes) const {
    if (auto text = legacy_->decodeStrictly(bytes))
        return *std::move(text);
    if (auto text = decodeUtf8Units(bytes))
        return *std::move(text);
    return bytes.front() == '/' ? pathFromBytes(bytes) : legacy_->decode(bytes);
}

std::vector<std::u16string> AnsiConversion::decodeTogether(const std::vector<std::string> &texts,
                                                           bool fixedLength) const {
    std::ptrdiff_t balance = 0; // texts that are UTF-8 less texts that are not
    for (const std::string &text : texts)
        if (!isAscii(text))
            balance += decodeUtf8Units(text, fixedLength) ? 1 : -1;
    std::vector<std::u16string> result;
    result.reserve(texts.size());
    for (const std::string &text : texts) {
        if (isAscii(text))
            result.push_back(fromAscii(text));
        else if (mode() == Mode::LegacyAlone || (mode() == Mode::Utf8ThenLegacy && balance < 0))
            result.push_back(legacy_->decode(text, fixedLength));
        else
            result.push_back(decodeUtf8UnitsAnyway(text, fixedLength));
    }
    return result;
}

} // namespace velmora::platform
