#pragma once

// Text as the program holds it: UTF-16 units, binary comparison, no locale. Every length, cut and
// position in the program counts units.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

inline constexpr char16_t crLf[] = u"\r\n";

// Upper case one unit to one unit, without locale: the simple mappings of the basic plane. A unit
// whose only upper case form is longer than one unit (such as U+00DF) stays.
char16_t upperUnit(char16_t unit) noexcept;
std::u16string upper(std::u16string_view text);
// The same into room for as many units; returns the place behind them.
char16_t *copyUpper(std::u16string_view text, char16_t *out) noexcept;

// Lower case by the same rules.
char16_t lowerUnit(char16_t unit) noexcept;
std::u16string lower(std::u16string_view text);

// U+0020 off both ends, and nothing else.
std::u16string_view trim(std::u16string_view text) noexcept;

// Text up to the first NUL (all of it if there is none).
std::u16string_view untilNul(std::u16string_view text) noexcept;

std::vector<std::u16string> split(std::u16string_view text, char16_t separator);

// Every occurrence, left to right, not rescanning what was put in.
std::u16string replaceAll(std::u16string_view text, std::u16string_view what,
                          std::u16string_view with);

// The first / last `count` units; all of the text when it is shorter; nothing when count < 0.
std::u16string_view leftPart(std::u16string_view text, std::ptrdiff_t count) noexcept;
std::u16string_view rightPart(std::u16string_view text, std::ptrdiff_t count) noexcept;

bool startsWith(std::u16string_view text, std::u16string_view beginning) noexcept;
bool contains(std::u16string_view text, std::u16string_view part) noexcept;

// A part that is looked for in many texts. The part's text must outlive it.
class TextPart {
public:
    explicit TextPart(std::u16string_view part) noexcept;
    bool isIn(std::u16string_view text) const noexcept;

private:
    std::u16string_view part_;
    std::size_t rare_ = 0; // the unit of the part that is looked for first
};

// Equal once both are upper-cased by `upper`.
bool equalsIgnoringCase(std::u16string_view a, std::u16string_view b) noexcept;

// UTF-16 <-> UTF-8 for texts that carry no file-name bytes. A half surrogate becomes U+FFFD on the
// way out, malformed bytes become U+FFFD on the way in (one for each maximal part). Names and file
// contents go through platform/ansi.h instead.
std::string toUtf8(std::u16string_view text);
std::u16string fromUtf8(std::string_view bytes);

// ASCII literal to text.
std::u16string fromAscii(std::string_view ascii);

} // namespace velmora
