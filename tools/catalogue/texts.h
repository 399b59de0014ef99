#pragma once

// Texts on their way from names and tags to pages and back from search words.

#include <string>
#include <string_view>
#include <vector>

namespace velmora::catalogue {

// Bytes of a name, a tag or a search word: UTF-8, else the legacy page.
std::u16string textOf(std::string_view bytes);

// The bytes of a page. Every character has some in GB18030; half a pair becomes U+FFFD.
std::string pageBytes(std::u16string_view text);

// Between quotes and tags of a page. The word by which readers find links is taken apart.
std::u16string htmlText(std::u16string_view text);

// As an address has it: letters, digits and what else of ASCII means nothing there; all else "%XX".
std::string escaped(std::string_view bytes);

// Blanks for control characters, one blank for several, none at the ends.
std::u16string oneLine(std::u16string_view text);

// A field of a song's record: no sign that a file name, a record or a page cannot hold; a field
// that would end the record has a blank in front.
std::u16string recordField(std::u16string_view text);

// The longest beginning that takes at most so many bytes as UTF-8, never half a pair. Counted in
// upper case, as readers see it.
std::u16string_view fittingBytes(std::u16string_view text, std::size_t bytes);

// What is compared in a search: upper case, wide letters as plain ones, words between blanks.
// Letters of the Latin kind and ideographs are words of their own.
std::u16string searchForm(std::u16string_view text);

std::vector<std::u16string> wordsOf(std::u16string_view searchForm);

} // namespace velmora::catalogue
