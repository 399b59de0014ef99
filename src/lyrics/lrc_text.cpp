#include "lyrics/lrc_text.h"

#include "base/text.h"

#include <cstddef>

namespace velmora {

namespace {

constexpr std::ptrdiff_t tagWordLength = 4;

struct TagWord {
    std::u16string_view word;
    LyricTag tag;
};
constexpr TagWord tagWords[] = {{u"[TI:", LyricTag::Ti},
                                {u"[AR:", LyricTag::Ar},
                                {u"[AL:", LyricTag::Al},
                                {u"[BY:", LyricTag::By}};

// "*" stands for any run of units, the empty one included; everything else for itself.
bool matches(std::u16string_view text, std::u16string_view pattern) noexcept {
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t star = std::u16string_view::npos;
    std::size_t resume = 0;
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == u'*') {
            star = in++;
            resume = at;
        } else if (in < pattern.size() && pattern[in] == text[at]) {
            ++at;
            ++in;
        } else if (star != std::u16string_view::npos) {
            in = star + 1;
            at = ++resume;
        } else {
            return false;
        }
    }
    return pattern.substr(in).find_first_not_of(u'*') == std::u16string_view::npos;
}

struct StampForm {
    std::ptrdiff_t length;
    std::u16string_view pattern;
};
constexpr StampForm stampForms[] = {{7, u"**:**]"}, {9, u"**:**.*]"}, {10, u"**:**.**]"}};

} // namespace

std::u16string_view wordsOf(std::u16string_view line) noexcept {
    const std::size_t label = line.rfind(u']');
    return label == std::u16string_view::npos ? line : line.substr(label + 1);
}

bool endsWithLabel(std::u16string_view line) noexcept {
    const std::u16string_view text = trim(line);
    return !text.empty() && text.back() == u']';
}

std::optional<TagLine> tagOf(std::u16string_view line) noexcept {
    if (!endsWithLabel(line))
        return std::nullopt;
    const std::u16string_view text = trim(line);
    const std::u16string_view word = leftPart(text, tagWordLength);
    for (const TagWord &known : tagWords) {
        if (equalsIgnoringCase(word, known.word)) {
            return TagLine{known.tag, text.substr(static_cast<std::size_t>(tagWordLength),
                                                  text.size() - tagWordLength - 1)};
        }
    }
    return std::nullopt;
}

std::u16string withoutStamp(std::u16string_view item) {
    const std::u16string_view text = trim(item);
    std::u16string_view left = item;
    for (const StampForm &form : stampForms)
        if (matches(leftPart(text, form.length), form.pattern))
            left = rightPart(left, static_cast<std::ptrdiff_t>(left.size()) - form.length);
    return std::u16string(left);
}

} // namespace velmora
