#pragma once

// The rows of the language tables. A row names one property of one control, as a function that the
// compiler makes from the member's address, and the four texts. Nothing is looked up or parsed when
// the program runs, and the texts stay where the compiler put them.

#include "settings/members.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace velmora::texts {

inline constexpr std::size_t languageCount = 4;

// The columns: 0 Chinese, 1 English, 2 French, 3 Japanese.
using Texts = std::array<std::u16string_view, languageCount>;

constexpr bool isLanguage(std::int32_t index) {
    return index >= 0 && index < static_cast<std::int32_t>(languageCount);
}

// The text of a column that `isLanguage`.
constexpr std::u16string_view textOf(const Texts &texts, std::int32_t index) {
    return texts[static_cast<std::size_t>(index)];
}

constexpr Texts everywhere(std::u16string_view text) { return {text, text, text, text}; }

template <typename Owner> struct Row {
    void (*put)(Owner &, std::u16string_view);
    Texts texts;
};

// The properties that follow the language.
template <auto Member>
inline constexpr auto caption = +[](OwnerOf<Member> &form, std::u16string_view text) {
    (form.*Member).setCaption(text);
};
template <auto Member>
inline constexpr auto toolTip = +[](OwnerOf<Member> &form, std::u16string_view text) {
    (form.*Member).setToolTip(text);
};
template <auto Member>
inline constexpr auto boxText = +[](OwnerOf<Member> &form, std::u16string_view text) {
    (form.*Member).setText(text);
};
template <auto Member> inline constexpr auto
    field = +[](OwnerOf<Member> &owner, std::u16string_view text) { owner.*Member = text; };
template <typename Form> inline constexpr auto
    formCaption = +[](Form &form, std::u16string_view text) { form.setCaption(text); };

// --- checks at compile time ----------------------------------------------------------------------

// The keys that a text names in brackets at its end, such as "F2" of "Play(F2)", or nothing. What
// stands in brackets is a key when it holds no small letter but those of "Esc" and "Enter".
constexpr std::u16string_view keysIn(std::u16string_view text) {
    const auto open = text.find_last_of(u"(（");
    if (open == std::u16string_view::npos || (text.back() != u')' && text.back() != u'）'))
        return {};
    const std::u16string_view inside = text.substr(open + 1, text.size() - open - 2);
    constexpr std::u16string_view smallInKeys = u"scnter";
    for (const char16_t unit : inside) {
        const bool isSmall = unit >= u'a' && unit <= u'z';
        if (unit > u'~' || (isSmall && smallInKeys.find(unit) == std::u16string_view::npos))
            return {};
    }
    return inside;
}

constexpr bool sameKeys(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size())
        return false;
    const auto up = [](char16_t unit) {
        return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
    };
    for (std::size_t i = 0; i < a.size(); ++i)
        if (up(a[i]) != up(b[i]))
            return false;
    return true;
}

// No text is missing, none has blanks in front, and all four name the same keys.
constexpr bool wellFormed(const Texts &texts) {
    for (const std::u16string_view text : texts)
        if (text.empty() || text.front() == u' ' || !sameKeys(keysIn(text), keysIn(texts[0])))
            return false;
    return true;
}

template <typename Rows> constexpr bool allWellFormed(const Rows &rows) {
    for (const auto &row : rows)
        if (!wellFormed(row.texts))
            return false;
    return true;
}

} // namespace velmora::texts
