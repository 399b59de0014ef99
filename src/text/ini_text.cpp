#include "text/ini_text.h"

#include "base/text.h"

#include <algorithm>

namespace velmora::platform {

namespace {

std::u16string_view withoutBlanks(std::u16string_view text) noexcept {
    constexpr std::u16string_view blanks = u" \t";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::u16string_view withoutQuotes(std::u16string_view text) noexcept {
    const bool quoted = text.size() >= 2 && (text.front() == u'"' || text.front() == u'\'') &&
                        text.front() == text.back();
    return quoted ? text.substr(1, text.size() - 2) : text;
}

} // namespace

std::vector<FileLine> linesOf(std::string_view bytes) {
    std::vector<FileLine> lines;
    for (std::size_t at = 0; at < bytes.size(); at = lines.back().next) {
        FileLine line;
        line.begin = at;
        line.end = std::min(bytes.find_first_of("\r\n", at), bytes.size());
        line.next = line.end;
        if (line.next < bytes.size())
            line.next += bytes.substr(line.next, 2) == "\r\n" ? 2 : 1;
        lines.push_back(line);
    }
    return lines;
}

IniText::IniText(const std::vector<std::u16string> &lines) {
    Section passedOver; // a second section of the same name
    Section *section = nullptr;
    for (std::size_t number = 0; number < lines.size(); ++number) {
        const std::u16string_view line = withoutBlanks(lines[number]);
        if (line.empty() || line.front() == u';')
            continue;
        if (line.front() == u'[') {
            const std::u16string_view name = line.substr(1, line.find(u']') - 1);
            const auto [place, isNew] = sections_.try_emplace(upper(name));
            section = isNew ? &place->second : &passedOver;
        } else if (section != nullptr) {
            const std::size_t equals = std::min(line.find(u'='), line.size());
            const std::u16string_view value =
                equals < line.size() ? withoutBlanks(line.substr(equals + 1)) : u"";
            section->keys.emplace(upper(withoutBlanks(line.substr(0, equals))),
                                  Place{number, std::u16string(withoutQuotes(value))});
        }
        if (section != nullptr)
            section->end = number + 1;
    }
}

IniText::Keys::const_iterator IniText::first(const Section &section, std::u16string_view key) {
    const std::u16string name = upper(key);
    const auto place = section.keys.lower_bound(name);
    return place != section.keys.end() && place->first == name ? place : section.keys.end();
}

const IniText::Place *IniText::find(std::u16string_view section, std::u16string_view key) const {
    const auto found = sections_.find(upper(section));
    if (found == sections_.end())
        return nullptr;
    const auto place = first(found->second, key);
    return place == found->second.keys.end() ? nullptr : &place->second;
}

void IniText::remove(std::u16string_view section, std::u16string_view key) {
    const auto found = sections_.find(upper(section));
    if (found == sections_.end())
        return;
    const auto place = first(found->second, key);
    if (place != found->second.keys.end())
        found->second.keys.erase(place);
}

std::vector<std::u16string> IniText::keys(std::u16string_view section) const {
    std::vector<std::u16string> names;
    const auto found = sections_.find(upper(section));
    if (found != sections_.end()) {
        for (const auto &[name, place] : found->second.keys)
            if (names.empty() || names.back() != name)
                names.push_back(name);
    }
    return names;
}

std::size_t IniText::endOf(std::u16string_view section) const {
    const auto found = sections_.find(upper(section));
    return found == sections_.end() ? 0 : found->second.end;
}

} // namespace velmora::platform
