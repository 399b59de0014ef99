#pragma once

// The system's ANSI conversion. Nothing above the platform knows which code page is in force.
//
// What is read is UTF-8, or else, where it is none, a legacy page: the one that the text value
// "ACP" in the platform's own key "SYSTEM\CurrentControlSet\Control\Nls\CodePage" sets (936, 932,
// 949, 950 or 1252; 65001 for none), without it the one of the user's language. What is written is
// UTF-8, or the page that is set wherever all of the text would be read back from it.
//
// A file-name byte that is no text, and CR and LF inside a file name, live in memory as the unit
// U+DC00 + byte. They are written as the three-byte form of that unit, and that form counts as
// valid when read, so every file name survives list and settings.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

class AnsiText {
public:
    virtual ~AnsiText() = default;

    // Text to the bytes of the page in force. Half a surrogate pair becomes "?".
    virtual std::string encode(std::u16string_view text) const = 0;

    // The same, onto the end of `bytes`: for what is put together from many texts.
    virtual void appendTo(std::string &bytes, std::u16string_view text) const = 0;

    // The number of bytes that `encode` gives.
    virtual std::size_t byteCount(std::u16string_view text) const = 0;

    // One text that stands alone (a registry value, a line of a list that is no path): valid in
    // UTF-8 as a whole it is that, else the legacy page. Undecodable bytes give U+FFFD.
    virtual std::u16string decode(std::string_view bytes) const = 0;

    // One path text, decided by itself: valid UTF-8 (file-name units included) is that; else what
    // the page that is set can read; else raw file-name bytes if it begins with "/"; else the
    // legacy page.
    virtual std::u16string decodePath(std::string_view bytes) const = 0;

    // Texts that decide together, such as the lines of a lyric or the fields of a tag: the majority
    // of those that hold a byte above 127 decides for all of them, a tie goes to UTF-8. What is
    // left invalid gives U+FFFD. `fixedLength`: an incomplete character at the end of a text is
    // dropped and does not count as invalid (fields of fixed size).
    virtual std::vector<std::u16string> decodeTogether(const std::vector<std::string> &texts,
                                                       bool fixedLength) const = 0;
};

} // namespace velmora::platform
