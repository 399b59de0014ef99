#include "design_line.h"

#include "base/text.h"

#include <cctype>
#include <charconv>

namespace velmora::formc {

namespace {

constexpr std::size_t spacesPerLevel = 4;
constexpr std::string_view noBreakSpace = "\u00A0";

// Reads a string from its opening quote; `at` ends behind the closing one.
std::string cutString(std::string_view line, std::size_t &at, Token &token) {
    std::string bytes;
    for (++at; at < line.size(); ++at) {
        const char unit = line[at];
        if (unit == '"') {
            ++at;
            token.kind = Token::Kind::Text;
            token.text = fromUtf8(bytes);
            if (token.text.find(u'\xFFFD') != std::u16string::npos)
                return "the string is not valid UTF-8";
            return {};
        }
        if (unit != '\\') {
            bytes += unit;
            continue;
        }
        const char escaped = ++at < line.size() ? line[at] : '\0';
        if (escaped == 'r')
            bytes += '\r';
        else if (escaped == 'n')
            bytes += '\n';
        else if (escaped == '0')
            bytes += '\0';
        else if (escaped == '_')
            bytes += noBreakSpace;
        else if (escaped == '"' || escaped == '\\')
            bytes += escaped;
        else
            return "unknown escape in a string (there are \\\" \\\\ \\r \\n \\0 \\_)";
    }
    return "the string has no end";
}

} // namespace

LineText cutLine(std::string_view line) {
    LineText result;
    while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
        line.remove_suffix(1);
    std::size_t at = 0;
    while (at < line.size() && line[at] == ' ')
        ++at;
    if (at == line.size() || line[at] == '#')
        return result;
    if (line.find('\t') != std::string_view::npos) {
        result.fault = "tab characters are not allowed";
        return result;
    }
    if (at % spacesPerLevel != 0) {
        result.fault = "the indentation is not a multiple of 4 spaces";
        return result;
    }
    result.level = static_cast<int>(at / spacesPerLevel);
    while (at < line.size() && line[at] != '#') {
        if (line[at] == ' ') {
            ++at;
            continue;
        }
        Token token;
        if (line[at] == '"') {
            result.fault = cutString(line, at, token);
            if (!result.fault.empty())
                return result;
        } else {
            const auto end = line.find_first_of(" \"#", at);
            token.word = line.substr(at, end == std::string_view::npos ? end : end - at);
            at += token.word.size();
        }
        result.tokens.push_back(std::move(token));
    }
    return result;
}

bool parseNumber(std::string_view word, double &number) {
    constexpr double largest = 1e6; // beyond any screen
    if (word.empty() || word.find_first_not_of("+-.0123456789") != std::string_view::npos)
        return false;
    if (word.front() == '+')
        word.remove_prefix(1);
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size() && number <= largest &&
           number >= -largest;
}

} // namespace velmora::formc
