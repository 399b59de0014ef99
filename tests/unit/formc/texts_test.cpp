// The texts that follow the language: what is read, what is refused, what is written.

#include "texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::formc {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

constexpr auto twoLanguages = "# in their order\nzh\nen\n";

TextTable tableOf(const std::string &entries, const std::string &languages = twoLanguages) {
    return parseTexts({{"a.txt", entries}, {"languages.txt", languages}});
}

std::vector<std::string> faultsOf(const TextTable &table) {
    std::vector<std::string> faults;
    for (const TextFault &fault : table.faults)
        faults.push_back(fault.file + ":" + std::to_string(fault.line) + ": " + fault.text);
    return faults;
}

std::vector<std::string> faults(const std::string &entries,
                                const std::string &languages = twoLanguages) {
    return faultsOf(tableOf(entries, languages));
}

std::vector<std::u16string> textsOf(const TextTable &table, const std::string &name) {
    EXPECT_THAT(faultsOf(table), IsEmpty());
    const TextEntry *entry = table.find(name);
    return entry == nullptr ? std::vector<std::u16string>{} : entry->texts;
}

} // namespace

TEST(Texts, AnEntryHasALineForEachLanguageInAnyOrder) {
    const TextTable table =
        tableOf("# greeting\nhello\n    en \"Hello\"\n    zh \"\u4F60\u597D\"\n");
    EXPECT_THAT(textsOf(table, "hello"), ElementsAre(u"\u4F60\u597D", u"Hello"));
    EXPECT_EQ(table.find("bye"), nullptr);
}

TEST(Texts, OneLineMaySpeakForAllLanguages) {
    EXPECT_THAT(textsOf(tableOf("name\n    all \"Velmora\"\n"), "name"),
                ElementsAre(u"Velmora", u"Velmora"));
}

TEST(Texts, EscapesStandForWhatCannotBeSeen) {
    EXPECT_THAT(textsOf(tableOf(R"(a
    all "x\_:\r\n\"\\\0y"
)"),
                        "a")
                    .front(),
                std::u16string(u"x\u00A0:\r\n\"\\\0y", 9));
}

TEST(Texts, AnotherEntryIsInsertedInTheSameLanguage) {
    const TextTable table = tableOf("b\n    zh \"<{a}{a}>\"\n    en \"{a}\"\n"
                                    "a\n    zh \"1\"\n    en \"2\"\n");
    EXPECT_THAT(textsOf(table, "b"), ElementsAre(u"<11>", u"2"));
}

TEST(TextFaults, AMissingLanguageIsNamedAtItsEntry) {
    EXPECT_THAT(faults("\nhello\n    zh \"x\"\n"), ElementsAre("a.txt:2: 'hello' lacks 'en'"));
}

TEST(TextFaults, ALanguageOfTheListThatNoEntryHasIsMissedInEachOfThem) {
    EXPECT_THAT(faults("a\n    zh \"x\"\n    en \"y\"\nb\n    all \"z\"\n", "zh\nen\nde\n"),
                ElementsAre("a.txt:1: 'a' lacks 'de'"));
}

TEST(TextFaults, WhatStandsTwice) {
    EXPECT_THAT(faults("a\n    zh \"x\"\n    zh \"y\"\n    en \"z\"\n"),
                ElementsAre("a.txt:3: 'zh' is given twice"));
    EXPECT_THAT(faults("a\n    en \"x\"\n    all \"y\"\n"),
                ElementsAre("a.txt:3: 'en' is given twice"));
    EXPECT_THAT(faults("a\n    all \"x\"\na\n    all \"y\"\n"),
                ElementsAre("a.txt:3: the entry 'a' stands at a.txt:1 already"));
    EXPECT_THAT(faults("a\n    all \"x\"\n", "zh\nzh\n"),
                ElementsAre("languages.txt:2: the language 'zh' cannot be named again"));
}

TEST(TextFaults, WhatIsUnknown) {
    EXPECT_THAT(faults("a\n    all \"x\"\n    de \"y\"\n"),
                ElementsAre("a.txt:3: there is no language 'de'"));
    EXPECT_THAT(faults("a\n    zh \"x\"\n    en \"{b}\"\n"),
                ElementsAre("a.txt:3: there is no entry 'b' to insert"));
    EXPECT_THAT(faults("a\n    all \"{open\"\n"),
                ElementsAre("a.txt:2: there is no entry '' to insert",
                            "a.txt:2: there is no entry '' to insert"));
}

TEST(TextFaults, AnInsertedTextInsertsNone) {
    EXPECT_THAT(faults("a\n    all \"{a}\"\n", "zh\n"),
                ElementsAre("a.txt:2: 'a' inserts a text itself"));
}

TEST(TextFaults, AKeyThatIsAnotherInOneLanguage) {
    EXPECT_THAT(faults("a\n    zh \"x(F2)\"\n    en \"y(F3)\"\n"),
                ElementsAre("a.txt:3: 'en' names another key than 'zh'"));
    EXPECT_THAT(faults("a\n    zh \"x(Esc)\"\n    en \"y (ESC)\"\n"), IsEmpty());
    EXPECT_THAT(faults("a\n    zh \"x\"\n    en \"y (some day)\"\n"), IsEmpty());
}

TEST(TextFaults, LinesThatAreNoneOfTheseAndTextsThatAreNone) {
    EXPECT_THAT(faults("    zh \"x\"\n"), ElementsAre("a.txt:1: a text has no entry above it"));
    EXPECT_THAT(faults("a b\n    all \"x\"\n"), ElementsAre("a.txt:1: an entry is one name"));
    EXPECT_THAT(faults("a-b\n    all \"x\"\n"), ElementsAre("a.txt:1: 'a-b' is no name"));
    EXPECT_THAT(faults("delete\n    all \"x\"\n"),
                ElementsAre("a.txt:1: 'delete' is a word of the language"));
    EXPECT_THAT(faults("a\n    all \"x\"\n        en \"y\"\n"),
                ElementsAre("a.txt:3: indented too deep"));
    EXPECT_THAT(faults("a\n    all x\n"),
                ElementsAre("a.txt:1: 'a' lacks 'zh'", "a.txt:1: 'a' lacks 'en'",
                            "a.txt:2: expects a language and one string in double quotes"));
    EXPECT_THAT(faults("a\n    zh \"\"\n    en \" y\"\n", "zh\nen\n"),
                ::testing::Contains("a.txt:2: the text is empty or begins with a blank"));
    EXPECT_THAT(faults("", "# none\n"), ElementsAre("languages.txt:1: no language is named"));
    EXPECT_THAT(faults("", "zh en\n"),
                ::testing::Contains("languages.txt:1: a line names one language"));
}

TEST(TextCode, EachEntryIsAConstantAndAFifthLanguageIsOneMoreTextInEach) {
    const std::string code = writeTexts(
        tableOf("a\n    zh \"\u64AD\"\n    en \"b\"\n    fr \"c\"\n    ja \"d\"\n    de \"e\\0\"\n",
                "zh\nen\nfr\nja\nde\n"));
    EXPECT_THAT(code, HasSubstr("languageCount = 5;"));
    EXPECT_THAT(code, HasSubstr("inline constexpr Texts a{\n"
                                "    std::u16string_view{u\"\\x64AD\" u\"\", 1},\n"
                                "    std::u16string_view{u\"b\", 1},\n"
                                "    std::u16string_view{u\"c\", 1},\n"
                                "    std::u16string_view{u\"d\", 1},\n"
                                "    std::u16string_view{u\"e\\000\", 2},};\n"));
}

TEST(TextCode, TheMessagesAreTheVariablesOfTheirClass) {
    const MessageCode code = writeMessages(parseTexts(
        {{"languages.txt", "zh\n"},
         {"common.txt", "play\n    all \"x\"\n"},
         {"messages.txt", "msg_Error\n    all \"y\"\nmsg_Welcome\n    all \"{play}\"\n"}}));
    EXPECT_THAT(code.header, HasSubstr("    std::u16string_view msg_Error;\n"
                                       "    std::u16string_view msg_Welcome;\n};"));
    EXPECT_THAT(code.header, Not(HasSubstr("play")));
    EXPECT_THAT(
        code.source,
        HasSubstr("{ all.msg_Error = text; },\n     texts::msg_Error},\n"
                  "    {[](Language &all, std::u16string_view text) { all.msg_Welcome = text; "
                  "},\n     texts::msg_Welcome},\n"));
}

} // namespace velmora::formc
