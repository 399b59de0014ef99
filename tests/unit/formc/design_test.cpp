#include "design.h"
#include "design_line.h"
#include "design_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::formc {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

const Skin &skin() {
    static const Skin one{{{"text", 0x00F3EDE9U}}, {"play", "body"}, {}};
    return one;
}

Design read(const std::string &text) { return parseDesign(text, skin()); }

// The faults as "line: text".
std::vector<std::string> faults(const std::string &text) {
    std::vector<std::string> lines;
    for (const Fault &fault : read(text).faults)
        lines.push_back(std::to_string(fault.line) + ": " + fault.text);
    return lines;
}

// The faults of one control's properties in an otherwise good form.
std::vector<std::string> faultsOf(const std::string &kind, const std::string &properties) {
    std::vector<std::string> lines;
    std::string text = "form F\n    size 3000 3000\n" + kind + " c\n";
    if (kind != "Timer" && kind != "Menu" && kind != "Line")
        text += "    at 0 0\n    size 300 300\n";
    for (const Fault &fault : read(text + properties).faults)
        lines.push_back(fault.text);
    return lines;
}

constexpr auto good = R"(form Main
    caption "Velmora"      # a comment
    size 6600 2955
    font "Arial" 8

# nothing here
Label title
    at 450 75
    size 2400 225
    font "Arial" 9.5 bold strike
    fore @text
PictureBox waitAdd
    at 100 100
    size 500 500
    hidden
    Label waitAdd_Title
        at 10 10
        size 100 100
    back 0x112233
Line line
    ends 0 10 20 30
Timer Timer1
    interval 70
    running
Menu menu
    Menu entry
        caption "x"
        Menu deep
)";

} // namespace

TEST(Design, AGoodOneHasNoFaults) { EXPECT_THAT(faults(good), IsEmpty()); }

TEST(Design, HoldsControlsInTheOrderOfTheFile) {
    const Design design = read(good);
    std::vector<std::string> names;
    for (const Thing *thing : design.all())
        names.push_back(thing->name);
    EXPECT_THAT(names, ElementsAre("title", "waitAdd", "waitAdd_Title", "line", "Timer1", "menu",
                                   "entry", "deep"));
    EXPECT_EQ(design.form.name, "Main");
}

TEST(Design, IndentationShowsContainment) {
    const Design design = read(good);
    ASSERT_THAT(design.form.children, SizeIs(5));
    const Thing &panel = design.form.children[1];
    ASSERT_THAT(panel.children, SizeIs(1));
    EXPECT_EQ(panel.children[0].name, "waitAdd_Title");
    EXPECT_TRUE(panel.has("back")); // written behind the nested label, at the panel's own level
    EXPECT_FALSE(panel.children[0].has("back"));
}

TEST(Design, ControlsMayStandOneLevelBelowTheForm) {
    const Design design = read("form F\n    size 300 300\n    Label a\n        at 0 0\n"
                               "        size 9 9\n    Label b\n        at 0 0\n        size 9 9\n");
    EXPECT_THAT(design.faults, IsEmpty());
    EXPECT_THAT(design.form.children, SizeIs(2));
}

TEST(Design, ValuesAreRead) {
    const Design design = read(good);
    const Thing &title = design.form.children[0];
    EXPECT_THAT(title.find("at")->numbers, ElementsAre(450, 75));
    EXPECT_EQ(title.find("fore")->colour, 0x00F3EDE9U);
    const FontSpec &font = title.find("font")->font;
    EXPECT_EQ(font.name, u"Arial");
    EXPECT_EQ(font.points, 9.5);
    EXPECT_TRUE(font.bold);
    EXPECT_TRUE(font.strike);
    EXPECT_FALSE(font.italic);
    EXPECT_EQ(design.form.children[1].find("back")->colour, 0x112233U);
    EXPECT_EQ(design.form.find("caption")->text, u"Velmora");
}

TEST(Design, StringsAreUtf8WithFourEscapes) {
    const Design design =
        read("form F\n    size 9 9\n    caption \"\xE6\xA0\x87 \\\"q\\\" \\\\ \\r\\n # no\"\n");
    EXPECT_THAT(design.faults, IsEmpty());
    EXPECT_EQ(design.form.find("caption")->text, u"\x6807 \"q\" \\ \r\n # no");
}

TEST(Design, LinesMayEndInCrLf) { EXPECT_THAT(faults("form F\r\n    size 9 9\r\n"), IsEmpty()); }

// --- faults of form --------------------------------------------------------------------

TEST(DesignFaults, AnEmptyDesign) {
    EXPECT_THAT(faults(""), ElementsAre("1: the design is empty"));
    EXPECT_THAT(faults("# only this\n"), ElementsAre("1: the design is empty"));
}

TEST(DesignFaults, AnythingAheadOfTheForm) {
    EXPECT_THAT(faults("Label a\n"), ElementsAre("1: a design begins with 'form NAME'"));
}

TEST(DesignFaults, ASecondForm) {
    EXPECT_THAT(faults("form F\n    size 9 9\nform G\n    size 9 9\n"),
                ElementsAre("3: a design holds one form"));
}

TEST(DesignFaults, AnUnknownKind) {
    EXPECT_THAT(faults("form F\n    size 9 9\nButton b\n"),
                ElementsAre("3: 'Button' is no kind of control"));
}

TEST(DesignFaults, AnUnknownProperty) {
    EXPECT_THAT(faults("form F\n    size 9 9\n    colour 1\n"),
                ElementsAre("3: unknown property 'colour'"));
}

TEST(DesignFaults, APropertyOfAnotherKind) {
    EXPECT_THAT(faultsOf("Label", "    interval 5\n"),
                ElementsAre("'Label' has no property 'interval'"));
    EXPECT_THAT(faultsOf("zkButton", "    fore 0x000000\n"),
                ElementsAre("'zkButton' has no property 'fore'"));
    EXPECT_THAT(faultsOf("Menu", "    at 0 0\n"), ElementsAre("'Menu' has no property 'at'"));
}

TEST(DesignFaults, APropertyTwice) {
    EXPECT_THAT(faultsOf("Label", "    at 1 1\n"), ElementsAre("'at' is given twice"));
}

TEST(Design, ALongTextIsGivenLineByLine) {
    const Design design =
        read("form F\n    size 9 9\nTextBox t\n    at 0 0\n    size 9 9\n"
             "    line \"one\"\n    multiline\n    line \"\"\n    line \"  three\"\n");
    EXPECT_THAT(design.faults, IsEmpty());
    EXPECT_EQ(design.form.children[0].find("line")->text, u"one\r\n\r\n  three");
}

TEST(DesignFaults, LinesOfABoxOfOneLineOrBesideAText) {
    EXPECT_THAT(faultsOf("TextBox", "    line \"a\"\n"),
                ElementsAre("'c' has lines but is not multiline"));
    EXPECT_THAT(faultsOf("TextBox", "    multiline\n    line \"a\"\n    text \"b\"\n"),
                ElementsAre("'c' has both a text and lines"));
    EXPECT_THAT(faultsOf("Label", "    line \"a\"\n"),
                ElementsAre("'Label' has no property 'line'"));
    EXPECT_THAT(faultsOf("TextBox", "    multiline\n    line \"a\"\n    line b\n"), SizeIs(1));
}

TEST(DesignFaults, TabsAndOddIndentation) {
    EXPECT_THAT(faults("form F\n    size 9 9\n\tcaption \"x\"\n"),
                ElementsAre("3: tab characters are not allowed"));
    EXPECT_THAT(faults("form F\n    size 9 9\n   caption \"x\"\n"),
                ElementsAre("3: the indentation is not a multiple of 4 spaces"));
}

TEST(DesignFaults, TooDeepIndentation) {
    EXPECT_THAT(faults("form F\n    size 9 9\n        caption \"x\"\n"),
                ElementsAre("3: indented too deep"));
    EXPECT_THAT(faults("form F\n    size 9 9\n        Label a\n"),
                ElementsAre("3: indented too deep"));
}

TEST(DesignFaults, WhatCannotHoldControls) {
    EXPECT_THAT(faultsOf("Label", "    Label inner\n        at 0 0\n        size 9 9\n"),
                ElementsAre("'Label' cannot hold 'Label'"));
    EXPECT_THAT(faultsOf("Menu", "    Timer t\n"), ElementsAre("'Menu' cannot hold 'Timer'"));
    EXPECT_THAT(faultsOf("PictureBox", "    Menu m\n"),
                ElementsAre("'PictureBox' cannot hold 'Menu'"));
}

TEST(DesignFaults, BrokenStrings) {
    EXPECT_THAT(faultsOf("Label", "    caption \"x\n"), ElementsAre("the string has no end"));
    EXPECT_THAT(faultsOf("Label", "    caption \"\\t\"\n"),
                ElementsAre(HasSubstr("unknown escape")));
    EXPECT_THAT(faultsOf("Label", "    caption \"x\\"), ElementsAre(HasSubstr("unknown escape")));
    EXPECT_THAT(faultsOf("Label", "    caption \"\xFF\"\n"),
                ElementsAre("the string is not valid UTF-8"));
}

TEST(DesignFaults, ATextThatIsNotThere) {
    EXPECT_THAT(faultsOf("Label", "    caption @gone\n"),
                ElementsAre("'caption': there is no text 'gone'"));
    EXPECT_THAT(faultsOf("Label", "    tip @\n"), ElementsAre("'tip': there is no text ''"));
    EXPECT_THAT(faultsOf("Label", "    tag @text\n"),
                ElementsAre("'tag': expects one string in double quotes"));
}

TEST(DesignFaults, AllOfThemAreListedInTheOrderOfTheLines) {
    EXPECT_THAT(faults("form F\n    size 9 9\nLabel a\n    at 0 0\n    size 20 5\nLabel b\n"
                       "    wrong 1\n"),
                ElementsAre("3: 'a' lies outside 'F'", "6: 'b' has no size",
                            "6: 'b' has no place ('at')", "7: unknown property 'wrong'"));
}

// --- faults of names -------------------------------------------------------------------

TEST(DesignFaults, ANameTwiceAnywhereInTheForm) {
    EXPECT_THAT(faults("form F\n    size 9 9\nTimer t\nPictureBox p\n    at 0 0\n    size 9 9\n"
                       "    Timer t\n"),
                ElementsAre("7: the name 't' stands on line 3 already"));
}

TEST(DesignFaults, AControlWithTheFormsName) {
    EXPECT_THAT(faults("form F\n    size 9 9\nTimer F\n"),
                ElementsAre("3: the name 'F' stands on line 1 already"));
}

TEST(DesignFaults, WhatIsNoName) {
    for (const char *name : {"1a", "a-b", "\xC3\xA9"}) {
        EXPECT_THAT(faults(std::string("form F\n    size 9 9\nTimer ") + name + "\n"),
                    ElementsAre("3: '" + std::string(name) + "' is no name"));
    }
    EXPECT_THAT(faults("form F\n    size 9 9\nTimer delete\n"),
                ElementsAre("3: 'delete' is a word of the language"));
    EXPECT_THAT(faults("form F\n    size 9 9\nTimer\n"),
                ElementsAre("3: 'Timer' expects one name"));
    EXPECT_THAT(faults("form F\n    size 9 9\nTimer a b\n"),
                ElementsAre("3: 'Timer' expects one name"));
    EXPECT_THAT(faults("form F\n    size 9 9\nTimer \"a\"\n"),
                ElementsAre("3: 'Timer' expects one name"));
}

// --- faults of values ------------------------------------------------------------------

struct ValueCase {
    const char *kind;
    const char *line;
    const char *fault;
};

void PrintTo(const ValueCase &value, std::ostream *out) {
    *out << value.kind << ": " << value.line;
}

class ValueFaults : public ::testing::TestWithParam<ValueCase> {};

TEST_P(ValueFaults, IsReported) {
    EXPECT_THAT(faultsOf(GetParam().kind, std::string("    ") + GetParam().line + "\n"),
                ElementsAre(HasSubstr(GetParam().fault)));
}

INSTANTIATE_TEST_SUITE_P(
    Design, ValueFaults,
    ::testing::Values(
        ValueCase{"Image", "picture nothing", "'picture': there is no picture 'nothing'"},
        ValueCase{"Image", "picture \"play\"", "'picture': expects the name of a picture"},
        ValueCase{"Label", "fore @nothing", "'fore': the palette has no colour 'nothing'"},
        ValueCase{"Label", "fore #112233", "'fore': expects one colour"},
        ValueCase{"Label", "fore 0x12", "'fore': expects a colour, @NAME or 0xBBGGRR"},
        ValueCase{"Label", "fore 0x11223G", "'fore': expects a colour"},
        ValueCase{"Label", "fore 0x-11111", "'fore': expects a colour"},
        ValueCase{"Label", "fore", "'fore': expects one colour"},
        ValueCase{"Label", "align middle", "'align': expects one of left, right, centre"},
        ValueCase{"Label", "pointer arrow", "'pointer': expects one of hand, hourglass"},
        ValueCase{"Label", "hidden yes", "'hidden': takes no value"},
        ValueCase{"Label", "caption x", "'caption': expects one string in double quotes"},
        ValueCase{"Label", "caption \"a\" \"b\"", "'caption': expects one string"},
        ValueCase{"Label", "font \"Arial\"", "'font': expects \"NAME\" and a size"},
        ValueCase{"Label", "font Arial 8", "'font': expects \"NAME\" and a size"},
        ValueCase{"Label", "font \"\" 8", "'font': expects \"NAME\" and a size"},
        ValueCase{"Label", "font \"Arial\" 0.5", "'font': expects a size from 1 to 2160"},
        ValueCase{"Label", "font \"Arial\" 2161", "'font': expects a size from 1 to 2160"},
        ValueCase{"Label", "font \"Arial\" 8 thin", "'font': has no style 'thin'"},
        ValueCase{"Timer", "interval 1.5", "'interval': expects a whole number from 0 to 65535"},
        ValueCase{"Timer", "interval 65536", "'interval': expects a whole number"},
        ValueCase{"Timer", "interval -1", "'interval': expects a whole number"},
        ValueCase{"CheckBox", "value 3", "'value': expects a whole number from 0 to 2"},
        ValueCase{"OptionButton", "value 2", "'value': expects a whole number from 0 to 1"},
        ValueCase{"ListBox", "rows 0", "'rows': expects a whole number from 1"},
        ValueCase{"TextBox", "named \"a\"", "'named': expects the name of a control"},
        ValueCase{"TextBox", "named nobody", "'named': no other control 'nobody' in this form"},
        ValueCase{"zkButton", "speed 256", "'speed': expects a whole number from 0 to 255"}));

TEST(DesignFaults, NumbersOfAPlace) {
    const auto withPlace = [](const std::string &place) {
        return faults("form F\n    size 300 300\nLabel a\n    " + place + "\n    size 9 9\n");
    };
    EXPECT_THAT(withPlace("at 1"), ElementsAre("4: 'at': expects 2 numbers"));
    EXPECT_THAT(withPlace("at 1 2 3"), ElementsAre("4: 'at': expects 2 numbers"));
    EXPECT_THAT(withPlace("at 1 b"), ElementsAre("4: 'at': expects numbers"));
    EXPECT_THAT(withPlace("at 1 nan"), ElementsAre("4: 'at': expects numbers"));
    EXPECT_THAT(withPlace("at 1 1e9"), ElementsAre("4: 'at': expects numbers"));
    EXPECT_THAT(withPlace("at 1 99999999"), ElementsAre("4: 'at': expects numbers"));
    EXPECT_THAT(withPlace("at +1 2.5"), IsEmpty());
}

TEST(DesignFaults, ANegativeSize) {
    EXPECT_THAT(faults("form F\n    size -9 9\n"), ElementsAre("2: 'size': cannot be negative"));
}

// --- what must be given, what may not lie outside --------------------------------------

TEST(DesignFaults, WhatHasNoPlaceOrSize) {
    EXPECT_THAT(faults("form F\n"), ElementsAre("1: 'F' has no size"));
    EXPECT_THAT(faults("form F\n    size 9 9\nImage a\n    at 0 0\n"),
                ElementsAre("3: 'a' has no size"));
    EXPECT_THAT(faults("form F\n    size 9 9\nLine a\n"), ElementsAre("3: 'a' has no ends"));
}

TEST(DesignFaults, AControlOutsideItsContainer) {
    const auto at = [](const std::string &place) {
        return faults("form F\n    size 300 300\nPictureBox p\n    at 100 100\n    size 100 100\n"
                      "    Label a\n        at " +
                      place + "\n        size 50 50\n");
    };
    EXPECT_THAT(at("0 0"), IsEmpty());
    EXPECT_THAT(at("50 50"), IsEmpty());
    for (const char *outside : {"51 0", "0 51", "-1 0", "0 -1", "150 150"})
        EXPECT_THAT(at(outside), ElementsAre("6: 'a' lies outside 'p'")) << outside;
}

TEST(DesignFaults, ALineOutsideItsContainer) {
    EXPECT_THAT(faults("form F\n    size 300 300\nLine a\n    ends 300 300 0 0\n"), IsEmpty());
    EXPECT_THAT(faults("form F\n    size 300 300\nLine a\n    ends 0 301 0 0\n"),
                ElementsAre("3: 'a' lies outside 'F'"));
}

TEST(DesignFaults, ContradictionsAreReported) {
    EXPECT_THAT(faultsOf("Label", "    opaque\n    transparent\n"),
                ElementsAre("'c' is both opaque and transparent"));
    EXPECT_THAT(faultsOf("Menu", "    separator\n    Menu inner\n"),
                ElementsAre("the separator 'c' has entries"));
    EXPECT_THAT(faults("form F\n    size 9 9\n    pointer hand\n"),
                ElementsAre("1: a form has no hand pointer"));
}

TEST(Design, HostileTextNeitherCrashesNorHangs) {
    for (const std::string &text :
         {std::string(10'000, ' '), std::string(10'000, '"'),
          std::string("form F\n") + std::string(5'000, '\n') + "x", std::string("form F\0x\n", 9),
          std::string("form ") + std::string(100'000, 'a')})
        EXPECT_FALSE(read(text).faults.empty());
}

TEST(DesignRows, EveryPropertyHasOneRowForEachKind) {
    for (const KindRow &kind : kindRows()) {
        std::set<std::string_view> words;
        for (const PropertyRow &row : propertyRows())
            if ((row.kinds & kind.bit) != 0)
                EXPECT_TRUE(words.insert(row.word).second) << kind.word << ' ' << row.word;
    }
}

} // namespace velmora::formc
