#include "literals.h"
#include "texts.h"

#include <sstream>

namespace velmora::formc {

namespace {

constexpr std::string_view origin = "// Generated from assets/texts by formc.\n";
constexpr std::string_view messagesFile = "messages.txt";

std::vector<const TextEntry *> messagesOf(const TextTable &table) {
    std::vector<const TextEntry *> messages;
    for (const TextEntry &entry : table.entries)
        if (entry.file == messagesFile)
            messages.push_back(&entry);
    return messages;
}

} // namespace

std::string writeTexts(const TextTable &table) {
    std::ostringstream out;
    out << origin
        << "#pragma once\n\n#include <array>\n#include <cstddef>\n#include <string_view>\n"
        << "\nnamespace velmora::texts {\n\ninline constexpr std::size_t languageCount = "
        << table.languages.size() << ";\n\n// One for each language:";
    for (const std::string &language : table.languages)
        out << ' ' << language;
    out << ".\nusing Texts = std::array<std::u16string_view, languageCount>;\n";
    for (const TextEntry &entry : table.entries) {
        out << "\ninline constexpr Texts " << entry.name << "{";
        for (const std::u16string &text : entry.texts)
            out << "\n    std::u16string_view{" << literal(text) << ", " << text.size() << "},";
        out << "};\n";
    }
    out << "\n} // namespace velmora::texts\n";
    return out.str();
}

MessageCode writeMessages(const TextTable &table) {
    std::ostringstream header;
    header
        << origin << "#pragma once\n\n#include <span>\n#include <string_view>\n\n"
        << "namespace velmora {\n\nclass Velmora;\n\n"
        << "namespace texts {\ntemplate <typename Owner> struct Row;\n}\n\n"
        << "// The message texts in the language in force, read at the moment of use. Empty until\n"
        << "// `Language_Set::language_Messages` has run once. They view literals: assigning one "
           "costs nothing.\n"
        << "class Language {\npublic:\n    explicit Language(Velmora &) {}\n\n"
        << "    static std::span<const texts::Row<Language>> languageRows();\n\n";
    std::ostringstream source;
    source << origin
           << "#include \"settings/Language.h\"\n\n#include \"settings/language_rows.h\"\n\n"
           << "namespace velmora {\n\nnamespace {\n\nconstexpr texts::Row<Language> rows[] = {\n";
    for (const TextEntry *entry : messagesOf(table)) {
        header << "    std::u16string_view " << entry->name << ";\n";
        source << "    {[](Language &all, std::u16string_view text) { all." << entry->name
               << " = text; },\n     texts::" << entry->name << "},\n";
    }
    header << "};\n\n} // namespace velmora\n";
    source << "};\n\n} // namespace\n\n"
           << "std::span<const texts::Row<Language>> Language::languageRows() { return rows; }\n\n"
           << "} // namespace velmora\n";
    return {header.str(), source.str()};
}

} // namespace velmora::formc
