#pragma once

// What the program reads out of one line of a lyric, and the stamps that the editor cuts. Lines are
// plain text: time labels are never parsed, only found by searching.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

enum class LyricTag : std::uint8_t { Ti, Ar, Al, By };

struct TagLine {
    LyricTag tag;
    std::u16string_view value; // part of the line asked about
};

// The words of a line: all that stands behind its last "]", or all of it where there is none.
std::u16string_view wordsOf(std::u16string_view line) noexcept;

// Whether the line, trimmed, ends with "]": a tag, or labels without words.
bool endsWithLabel(std::u16string_view line) noexcept;

// The tag and its value where the trimmed line ends with "]" and begins with one of the four tag
// words in any mix of case. Any other line, "[offset:0]" among them, is none.
std::optional<TagLine> tagOf(std::u16string_view line) noexcept;

// The item without the stamps at its beginning. Three forms are looked for in the trimmed item,
// [mm:ss], [mm:ss.x] and [mm:ss.xx], each by its length and its marks alone. A cut is made on the
// item as it stands, blanks at its beginning included, so it may leave part of a stamp behind.
std::u16string withoutStamp(std::u16string_view item);

} // namespace velmora
