#pragma once

// The rows of the language tables, which formc writes from the texts and the designs: a property of
// one control and its text in each language. Nothing is looked up or parsed when the program runs.

#include "settings/texts.h"

#include <cstdint>
#include <string_view>

namespace velmora::texts {

constexpr bool isLanguage(std::int32_t index) {
    return index >= 0 && index < static_cast<std::int32_t>(languageCount);
}

// The text of a column that `isLanguage`.
constexpr std::u16string_view textOf(const Texts &texts, std::int32_t index) {
    return texts[static_cast<std::size_t>(index)];
}

template <typename Owner> struct Row {
    void (*put)(Owner &, std::u16string_view);
    Texts texts;
};

} // namespace velmora::texts
