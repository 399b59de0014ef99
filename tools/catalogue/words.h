#pragma once

// What the pages for browsers say, in the player's four languages.

#include <string>
#include <string_view>

namespace velmora::catalogue {

enum class Language { Chinese, English, French, Japanese };

// The one of the four that a browser likes best by its field "Accept-Language"; English where it
// likes none of them, Chinese where it says nothing.
Language languageFor(std::string_view acceptLanguage);

// "zh", "en", "fr", "ja".
std::u16string_view codeOf(Language language) noexcept;

struct Words {
    std::u16string_view title;
    std::u16string_view search;
    std::u16string_view searchFor; // what the box is for
    std::u16string_view songs;
    std::u16string_view lyrics;
    std::u16string_view albums;
    std::u16string_view folders;
    std::u16string_view newest;
    std::u16string_view nothing;
    std::u16string_view of; // between "1-100" and how many there are
    std::u16string_view previous;
    std::u16string_view next;
    std::u16string_view save;
    std::u16string_view lyricOf;  // names the lyric for whoever does not see it
    std::u16string_view pages;    // names the way to the other pages
    std::u16string_view noPlayer; // in place of a player that the browser does not have
};

const Words &wordsIn(Language language) noexcept;

} // namespace velmora::catalogue
