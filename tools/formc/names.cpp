#include "names.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace velmora::formc {

namespace {

constexpr std::array<std::string_view, 83> keywords{
    "alignas",   "alignof",   "and",       "asm",          "auto",        "bitand",   "bitor",
    "bool",      "break",     "case",      "catch",        "char",        "class",    "compl",
    "concept",   "const",     "consteval", "constexpr",    "constinit",   "continue", "co_await",
    "co_return", "co_yield",  "decltype",  "default",      "delete",      "do",       "double",
    "else",      "enum",      "explicit",  "export",       "extern",      "false",    "float",
    "for",       "friend",    "goto",      "if",           "inline",      "int",      "long",
    "mutable",   "namespace", "new",       "noexcept",     "not",         "nullptr",  "operator",
    "or",        "private",   "protected", "public",       "register",    "requires", "return",
    "short",     "signed",    "sizeof",    "static",       "static_cast", "struct",   "switch",
    "template",  "this",      "throw",     "thread_local", "true",        "try",      "typedef",
    "typeid",    "typename",  "union",     "unsigned",     "using",       "virtual",  "void",
    "volatile",  "wchar_t",   "while",     "xor",          "const_cast",  "forms"};

bool isIdentifier(std::string_view name) {
    if (name.empty() || std::isdigit(static_cast<unsigned char>(name.front())) != 0)
        return false;
    return std::ranges::all_of(name, [](char unit) {
        return unit == '_' || std::isalnum(static_cast<unsigned char>(unit)) != 0;
    });
}

} // namespace

std::string inQuotes(std::string_view word) { return "'" + std::string(word) + "'"; }

std::string faultOfName(std::string_view name) {
    if (!isIdentifier(name))
        return inQuotes(name) + " is no name";
    if (std::ranges::find(keywords, name) != keywords.end())
        return inQuotes(name) + " is a word of the language";
    return {};
}

} // namespace velmora::formc
