#include "texts.h"

#include "design_line.h"
#include "names.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <tuple>

namespace velmora::formc {

namespace {

constexpr std::string_view languagesFile = "languages.txt";
constexpr std::string_view everyLanguage = "all";

// The keys that a text names in brackets at its end, such as "F2" of "Play(F2)", or nothing. What
// stands in brackets is a key when it holds no small letter but those of "Esc" and "Enter".
std::u16string keysIn(std::u16string_view text) {
    const auto open = text.find_last_of(u"(（");
    if (open == std::u16string_view::npos || (text.back() != u')' && text.back() != u'）'))
        return {};
    constexpr std::u16string_view smallInKeys = u"scnter";
    std::u16string keys;
    for (const char16_t unit : text.substr(open + 1, text.size() - open - 2)) {
        const bool isSmall = unit >= u'a' && unit <= u'z';
        if (unit > u'~' || (isSmall && smallInKeys.find(unit) == std::u16string_view::npos))
            return {};
        keys += isSmall ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
    }
    return keys;
}

// An entry while its lines are read.
struct Draft {
    TextEntry entry;
    std::vector<std::optional<std::u16string>> texts;
    std::vector<int> lines; // of each text
};

class TextReader {
public:
    explicit TextReader(TextTable &table) : table_(table) {}

    void readLanguages(const TextFile &file) {
        each(
            file,
            [&](const LineText &line) {
                if (line.level != 0 || line.tokens.size() != 1 || line.tokens[0].word.empty())
                    return fault("a line names one language");
                const std::string &code = line.tokens[0].word;
                if (code == everyLanguage || languageOf(code) < table_.languages.size())
                    return fault("the language " + inQuotes(code) + " cannot be named again");
                table_.languages.push_back(code);
            });
    }

    void readEntries(const TextFile &file) {
        each(
            file,
            [&](const LineText &line) {
                if (line.level == 0)
                    openEntry(line);
                else if (drafts_.empty() || file_ != drafts_.back().entry.file)
                    fault("a text has no entry above it");
                else if (line.level != 1)
                    fault("indented too deep");
                else
                    readText(line);
            });
    }

    void finish() {
        for (Draft &draft : drafts_)
            checkWhole(draft);
        if (!table_.faults.empty())
            return;
        for (Draft &draft : drafts_)
            insertInto(draft);
        for (const Draft &draft : drafts_)
            checkKeys(draft);
        for (Draft &draft : drafts_)
            table_.entries.push_back(std::move(draft.entry));
    }

private:
    template <typename Use> void each(const TextFile &file, const Use &use) {
        file_ = file.name;
        line_ = 0;
        std::istringstream lines(file.content);
        for (std::string text; std::getline(lines, text);) {
            ++line_;
            const LineText line = cutLine(text);
            if (!line.fault.empty())
                fault(line.fault);
            else if (!line.tokens.empty())
                use(line);
        }
    }

    void fault(std::string text) { table_.faults.push_back({file_, line_, std::move(text)}); }

    std::size_t languageOf(std::string_view code) const {
        return static_cast<std::size_t>(std::ranges::find(table_.languages, code) -
                                        table_.languages.begin());
    }

    Draft *draftOf(std::string_view name) {
        const auto found = std::ranges::find_if(
            drafts_, [&](const Draft &draft) { return draft.entry.name == name; });
        return found == drafts_.end() ? nullptr : &*found;
    }

    void openEntry(const LineText &line) {
        const std::string name = line.tokens[0].word;
        if (line.tokens.size() != 1 || name.empty())
            fault("an entry is one name");
        else if (const std::string bad = faultOfName(name); !bad.empty())
            fault(bad);
        else if (const Draft *first = draftOf(name); first != nullptr)
            fault("the entry " + inQuotes(name) + " stands at " + first->entry.file + ":" +
                  std::to_string(first->entry.line) + " already");
        const std::size_t count = table_.languages.size();
        drafts_.push_back({{name, file_, line_, {}},
                           std::vector<std::optional<std::u16string>>(count),
                           std::vector<int>(count, line_)});
    }

    void readText(const LineText &line) {
        if (line.tokens.size() != 2 || line.tokens[0].word.empty() ||
            line.tokens[1].kind != Token::Kind::Text)
            return fault("expects a language and one string in double quotes");
        const std::string &code = line.tokens[0].word;
        const std::u16string &text = line.tokens[1].text;
        if (text.empty() || text.front() == u' ')
            return fault("the text is empty or begins with a blank");
        const std::size_t from = code == everyLanguage ? 0 : languageOf(code);
        const std::size_t to = code == everyLanguage ? table_.languages.size() : from + 1;
        if (to > table_.languages.size())
            return fault("there is no language " + inQuotes(code));
        Draft &draft = drafts_.back();
        for (std::size_t i = from; i < to; ++i) {
            if (draft.texts[i])
                return fault(inQuotes(table_.languages[i]) + " is given twice");
            draft.texts[i] = text;
            draft.lines[i] = line_;
        }
    }

    void faultAt(const Draft &draft, int line, std::string text) {
        table_.faults.push_back({draft.entry.file, line, std::move(text)});
    }

    void checkWhole(const Draft &draft) {
        for (std::size_t i = 0; i < draft.texts.size(); ++i)
            if (!draft.texts[i])
                faultAt(draft, draft.entry.line,
                        inQuotes(draft.entry.name) + " lacks " + inQuotes(table_.languages[i]));
    }

    void insertInto(Draft &draft) {
        for (std::size_t i = 0; i < draft.texts.size(); ++i)
            draft.entry.texts.push_back(inserted(draft, i));
    }

    std::u16string inserted(const Draft &draft, std::size_t language) {
        std::u16string_view rest = *draft.texts[language];
        std::u16string whole;
        for (auto open = rest.find(u'{'); open != std::u16string_view::npos;
             open = rest.find(u'{')) {
            const auto close = rest.find(u'}', open);
            const std::u16string_view wide =
                rest.substr(open + 1, close == std::u16string_view::npos ? 0 : close - open - 1);
            const std::string name(wide.begin(), wide.end());
            const Draft *other = draftOf(name);
            if (other == nullptr || other->texts[language]->find(u'{') != std::u16string::npos) {
                faultAt(draft, draft.lines[language],
                        other == nullptr ? "there is no entry " + inQuotes(name) + " to insert"
                                         : inQuotes(name) + " inserts a text itself");
                return whole;
            }
            whole.append(rest.substr(0, open)).append(*other->texts[language]);
            rest.remove_prefix(close + 1);
        }
        return whole.append(rest);
    }

    // A key is the same in every language.
    void checkKeys(const Draft &draft) {
        const std::vector<std::u16string> &texts = draft.entry.texts;
        for (std::size_t i = 1; i < texts.size(); ++i)
            if (keysIn(texts[i]) != keysIn(texts[0]))
                faultAt(draft, draft.lines[i],
                        inQuotes(table_.languages[i]) + " names another key than " +
                            inQuotes(table_.languages[0]));
    }

    TextTable &table_;
    std::vector<Draft> drafts_;
    std::string file_;
    int line_ = 0;
};

} // namespace

const TextEntry *TextTable::find(std::string_view name) const {
    const auto found = std::ranges::find(entries, name, &TextEntry::name);
    return found == entries.end() ? nullptr : &*found;
}

TextTable parseTexts(const std::vector<TextFile> &files) {
    TextTable table;
    TextReader reader(table);
    for (const TextFile &file : files)
        if (file.name == languagesFile)
            reader.readLanguages(file);
    if (table.languages.empty())
        table.faults.push_back({std::string(languagesFile), 1, "no language is named"});
    for (const TextFile &file : files)
        if (file.name != languagesFile)
            reader.readEntries(file);
    reader.finish();
    std::ranges::stable_sort(table.faults, [](const TextFault &a, const TextFault &b) {
        return std::tie(a.file, a.line) < std::tie(b.file, b.line);
    });
    return table;
}

Skin withTexts(Skin skin, const TextTable &table) {
    for (const TextEntry &entry : table.entries)
        skin.texts[entry.name] = entry.texts.front();
    return skin;
}

TextTable readTexts(const std::string &folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".txt")
            paths.push_back(entry.path());
    std::ranges::sort(paths);
    std::vector<TextFile> files;
    for (const auto &path : paths) {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        if (!in)
            throw std::runtime_error(path.string() + ":1: cannot be read");
        files.push_back({path.filename().string(), text.str()});
    }
    return parseTexts(files);
}

} // namespace velmora::formc
