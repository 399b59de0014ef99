#pragma once

// One line of a design cut into words.

#include <string>
#include <string_view>
#include <vector>

namespace velmora::formc {

struct Token {
    enum class Kind { Word, Text } kind = Kind::Word;
    std::u16string text; // of a string, escapes resolved
    std::string word;    // of a word; numbers and colours are words
};

struct LineText {
    int level = 0;             // 4 spaces each
    std::vector<Token> tokens; // empty: blank or comment
    std::string fault;         // empty when the line is well formed
};

LineText cutLine(std::string_view line);

// A decimal number with an optional sign and point; false for anything else.
bool parseNumber(std::string_view word, double &number);

} // namespace velmora::formc
