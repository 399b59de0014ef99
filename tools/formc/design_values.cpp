#include "design_parts.h"
#include "names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace velmora::formc {

namespace {

using Values = std::vector<Token>;

bool isWord(const Token &token) { return token.kind == Token::Kind::Word; }

std::string readNumbers(const Values &values, std::size_t count, Setting &setting) {
    if (values.size() != count)
        return "expects " + std::to_string(count) + (count == 1 ? " number" : " numbers");
    for (const Token &token : values) {
        double number = 0;
        if (!isWord(token) || !parseNumber(token.word, number))
            return "expects numbers";
        setting.numbers.push_back(number);
    }
    return {};
}

std::string readWhole(const PropertyRow &row, const Values &values, Setting &setting) {
    if (auto fault = readNumbers(values, 1, setting); !fault.empty())
        return fault;
    const double number = setting.numbers.front();
    if (number != std::floor(number) || number < static_cast<double>(row.min) ||
        number > static_cast<double>(row.max))
        return "expects a whole number from " + std::to_string(row.min) + " to " +
               std::to_string(row.max);
    return {};
}

std::string readExtent(const Values &values, Setting &setting) {
    if (auto fault = readNumbers(values, 2, setting); !fault.empty())
        return fault;
    const bool negative = std::ranges::any_of(setting.numbers, [](double n) { return n < 0; });
    return negative ? "cannot be negative" : "";
}

std::string readText(const Values &values, Setting &setting) {
    if (values.size() != 1 || isWord(values[0]))
        return "expects one string in double quotes";
    setting.text = values[0].text;
    return {};
}

std::string readShown(const Values &values, const Skin &skin, Setting &setting) {
    if (values.size() != 1 || !isWord(values[0]) || !values[0].word.starts_with("@"))
        return readText(values, setting);
    setting.entry = values[0].word.substr(1);
    const auto entry = skin.texts.find(setting.entry);
    if (entry == skin.texts.end())
        return "there is no text " + inQuotes(setting.entry);
    setting.text = entry->second;
    return {};
}

std::string readFont(const Values &values, Setting &setting) {
    constexpr double smallest = 1;
    constexpr double largest = 2160;
    if (values.size() < 2 || isWord(values[0]) || values[0].text.empty() || !isWord(values[1]))
        return "expects \"NAME\" and a size";
    FontSpec &font = setting.font;
    font.name = values[0].text;
    if (!parseNumber(values[1].word, font.points) || font.points < smallest ||
        font.points > largest)
        return "expects a size from 1 to 2160 points";
    struct Style {
        std::string_view word;
        bool FontSpec::*flag;
    };
    static constexpr std::array styles{
        Style{"bold", &FontSpec::bold}, Style{"italic", &FontSpec::italic},
        Style{"underline", &FontSpec::underline}, Style{"strike", &FontSpec::strike}};
    for (std::size_t i = 2; i < values.size(); ++i) {
        const auto style = std::ranges::find(styles, values[i].word, &Style::word);
        if (style == styles.end())
            return "has no style " + inQuotes(values[i].word);
        font.*(style->flag) = true;
    }
    return {};
}

std::string readColour(const Values &values, const Skin &skin, Setting &setting) {
    constexpr std::size_t digits = 6;
    constexpr int base = 16;
    if (values.size() != 1 || !isWord(values[0]))
        return "expects one colour";
    const std::string_view word = values[0].word;
    if (word.starts_with("@")) {
        const auto entry = skin.palette.find(word.substr(1));
        if (entry == skin.palette.end())
            return "the palette has no colour " + inQuotes(word.substr(1));
        setting.colour = entry->second;
        return {};
    }
    if (word.starts_with("0x") && word.size() == digits + 2) {
        const char *const end = word.data() + word.size();
        const auto read = std::from_chars(word.data() + 2, end, setting.colour, base);
        if (read.ec == std::errc() && read.ptr == end)
            return {};
    }
    return "expects a colour, @NAME or 0xBBGGRR";
}

// The end of a value that the skin hands out: from FORM or from FORM.IMAGE.
std::string readSource(const Values &values, const Skin &skin, Setting &setting) {
    if (values.size() != 3 || values[1].word != "from" || !isWord(values[2]))
        return "expects one name, and behind it 'from' and the form it is handed out from";
    const std::string &source = values[2].word;
    const auto dot = std::min(source.find('.'), source.size());
    if (source.substr(0, dot) != skin.model)
        return "nothing is handed out from " + inQuotes(source.substr(0, dot));
    setting.fromForm = skin.model;
    setting.fromImage = dot < source.size() ? source.substr(dot + 1) : "";
    return {};
}

std::string readPictureSource(const Values &values, const Skin &skin, Setting &setting) {
    if (auto fault = readSource(values, skin, setting); !fault.empty())
        return fault;
    const auto image = skin.modelPictures.find(setting.fromImage);
    if (image == skin.modelPictures.end())
        return inQuotes(skin.model) + " has no image " + inQuotes(setting.fromImage);
    return image->second == setting.word
               ? ""
               : inQuotes(values[2].word) + " has the picture " + inQuotes(image->second);
}

std::string readPicture(const Values &values, const Skin &skin, Setting &setting) {
    if (values.empty() || !isWord(values[0]))
        return "expects the name of a picture";
    setting.word = values[0].word;
    if (!skin.pictures.contains(setting.word))
        return "there is no picture " + inQuotes(setting.word);
    return values.size() == 1 ? "" : readPictureSource(values, skin, setting);
}

std::string readChoice(const Values &values, std::initializer_list<std::string_view> choices,
                       Setting &setting) {
    if (values.size() == 1 && isWord(values[0]) &&
        std::ranges::find(choices, values[0].word) != choices.end()) {
        setting.word = values[0].word;
        return {};
    }
    std::string list;
    for (const auto choice : choices)
        list += (list.empty() ? "" : ", ") + std::string(choice);
    return "expects one of " + list;
}

std::string readPointer(const Values &values, const Skin &skin, Setting &setting) {
    if (values.size() <= 1 || values[0].word != "hand")
        return readChoice(values, {"hand", "hourglass"}, setting);
    setting.word = values[0].word;
    if (auto fault = readSource(values, skin, setting); !fault.empty())
        return fault;
    return setting.fromImage.empty() ? "" : "the hand is of " + inQuotes(skin.model) + " itself";
}

std::string readAnswer(const Values &values, Setting &setting) {
    if (values.empty())
        return {};
    if (values.size() != 1 || !isWord(values[0]))
        return "expects the name of a routine, or nothing";
    setting.word = values[0].word;
    return faultOfName(setting.word);
}

// Whether there is one of that name is seen when all are read.
std::string readControl(const Values &values, Setting &setting) {
    if (values.size() != 1 || !isWord(values[0]))
        return "expects the name of a control";
    setting.word = values[0].word;
    return {};
}

std::string readShape(const PropertyRow &row, const Values &values, const Skin &skin,
                      Setting &setting) {
    switch (row.shape) {
    case Shape::Flag:
        return values.empty() ? "" : "takes no value";
    case Shape::Whole:
        return readWhole(row, values, setting);
    case Shape::Point:
        return readNumbers(values, 2, setting);
    case Shape::Extent:
        return readExtent(values, setting);
    case Shape::Ends:
        return readNumbers(values, 4, setting);
    case Shape::Text:
        return readText(values, setting);
    case Shape::Shown:
        return readShown(values, skin, setting);
    case Shape::Font:
        return readFont(values, setting);
    case Shape::Colour:
        return readColour(values, skin, setting);
    case Shape::Picture:
        return readPicture(values, skin, setting);
    case Shape::Align:
        return readChoice(values, {"left", "right", "centre"}, setting);
    case Shape::Pointer:
        return readPointer(values, skin, setting);
    case Shape::Control:
        return readControl(values, setting);
    case Shape::Answer:
        return readAnswer(values, setting);
    }
    return "unknown shape";
}

} // namespace

std::string readValues(const PropertyRow &row, const std::vector<Token> &values, const Skin &skin,
                       Setting &setting) {
    const std::string fault = readShape(row, values, skin, setting);
    return fault.empty() ? fault : inQuotes(row.word) + ": " + fault;
}

} // namespace velmora::formc
