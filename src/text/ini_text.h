#pragma once

// The text of an INI file: sections of keys with values.

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

// One line of a file: where it lies, without its end, and where its end ends.
struct FileLine {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t next = 0;
};

// Lines end at CR, CR LF or LF.
std::vector<FileLine> linesOf(std::string_view bytes);

// Sections and keys compare without regard to case; the first section and the first key of a name
// win. A ";" at a line's start makes it a comment. What precedes the first section belongs to none.
class IniText {
public:
    IniText() = default;
    // One text for each line.
    explicit IniText(const std::vector<std::u16string> &lines);

    struct Place {
        std::size_t line = 0;
        std::u16string value; // trimmed of blanks and tabs, without one pair of quotes around it
    };
    // Null when it is not there.
    const Place *find(std::u16string_view section, std::u16string_view key) const;
    // Takes the first key of that name out, so that the next one of the name is found.
    void remove(std::u16string_view section, std::u16string_view key);
    // In upper case, each once.
    std::vector<std::u16string> keys(std::u16string_view section) const;
    // The line behind the section's last one that holds something; 0 when there is no such section.
    std::size_t endOf(std::u16string_view section) const;

private:
    struct Section {
        // By upper-cased name; those of one name in their order.
        std::multimap<std::u16string, Place, std::less<>> keys;
        std::size_t end = 0;
    };
    using Keys = decltype(Section::keys);
    static Keys::const_iterator first(const Section &section, std::u16string_view key);
    std::map<std::u16string, Section, std::less<>> sections_; // by upper-cased name
};

} // namespace velmora::platform
