#include "design_code.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::formc {

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

Code codeOf(const std::string &text) {
    const Design design =
        parseDesign(text, {{{"text", 0x00F3EDE9U}}, {"play", "body"}, {{"play", u"\u64AD\u653E"}}});
    for (const Fault &fault : design.faults)
        ADD_FAILURE() << fault.line << ": " << fault.text;
    return writeCode(design, "playback");
}

std::string sourceOf(const std::string &kind, const std::string &properties) {
    std::string text = "form F\n    size 3000 3000\n" + kind + " c\n";
    if (kind != "Timer" && kind != "Menu" && kind != "Line")
        text += "    at 30 45\n    size 300 300\n";
    return codeOf(text + properties).source;
}

} // namespace

TEST(DesignCode, MembersHaveTheNamesAndTypesOfTheDesign) {
    const std::string header =
        codeOf("form F\n    size 300 300\nPictureBox box\n    at 0 0\n    size 90 90\n"
               "    Label inner\n        at 0 0\n        size 9 9\nMenu menu\n    Menu entry\n"
               "zkButton OK\n    at 0 0\n    size 9 9\n")
            .header;
    EXPECT_THAT(header, HasSubstr("class F_Design : public forms::Form"));
    EXPECT_THAT(header, HasSubstr("explicit F_Design(forms::Host &windows);"));
    EXPECT_THAT(header, HasSubstr("forms::PictureBox box{*this, \"box\"};\n"
                                  "    forms::Label inner{box, \"inner\"};\n"
                                  "    forms::Menu menu{*this, \"menu\"};\n"
                                  "    forms::Menu entry{menu, \"entry\"};\n"
                                  "    zkButton OK{*this, \"OK\"};\n"));
    EXPECT_THAT(header, HasSubstr("#include \"ui/zkButton.h\""));
    EXPECT_THAT(header, HasSubstr("#include \"platform/forms/menu.h\""));
    EXPECT_THAT(header, Not(HasSubstr("listbox.h")));
}

TEST(DesignCode, WhatFollowsTheLanguageHasItsFirstTextAndARow) {
    const Code code = codeOf("form F\n    caption @play\n    size 90 90\n"
                             "Image c\n    at 0 0\n    size 9 9\n    tip @play\n"
                             "TextBox d\n    at 0 0\n    size 9 9\n    text @play\n"
                             "Label e\n    at 0 0\n    size 9 9\n    caption \"always\"\n");
    EXPECT_THAT(code.header,
                HasSubstr("static std::span<const texts::Row<F_Design>> languageRows();"));
    EXPECT_THAT(code.source, HasSubstr("this->setCaption(u\"\\x64AD\" u\"\\x653E\" u\"\");"));
    EXPECT_THAT(code.source, HasSubstr("#include \"settings/language_rows.h\""));
    const auto row = [](const std::string &call) {
        return "    {[](F_Design &form, std::u16string_view text) { form." + call +
               "(text); },\n     texts::play},\n";
    };
    EXPECT_THAT(code.source, HasSubstr("rows[] = {\n" + row("setCaption") + row("c.setToolTip") +
                                       row("d.setText") + "};\n"));
}

TEST(DesignCode, WhatDoesNotFollowTheLanguageHasNoRows) {
    const Code code = codeOf("form F\n    caption \"@play\"\n    size 9 9\n");
    EXPECT_THAT(code.header, Not(HasSubstr("languageRows")));
    EXPECT_THAT(code.source, Not(HasSubstr("texts::")));
}

TEST(DesignCode, TheWindowGoesAheadOfTheControls) {
    EXPECT_THAT(codeOf("form F\n    size 9 9\n").source,
                HasSubstr("F_Design::~F_Design() { dropWindow(); }"));
}

TEST(DesignCode, TheFormIsSetUp) {
    const std::string source =
        codeOf("form F\n    caption \"x\"\n    at 15 30\n    size 90.5 60\n    ground body\n"
               "    icon play\n    back 0x112233\n    taskbar\n    unmanaged\n    centred\n"
               "    pointer hourglass\n")
            .source;
    for (const char *line :
         {"this->setCaption(u\"x\");", "this->move({15.0F, 30.0F, 90.5F, 60.0F});",
          "this->setGround(forms::Picture::body);", "this->setIcon(forms::Picture::play);",
          "this->setBackColor(0x112233);", "this->setShowInTaskbar(true);",
          "this->setUnmanaged(true);", "this->setStartCentred(true);",
          "this->setMousePointer(forms::pointerHourglass);"})
        EXPECT_THAT(source, HasSubstr(line));
    // The middle is known only once the size is.
    EXPECT_LT(source.find("move("), source.find("setStartCentred"));
}

struct CodeCase {
    const char *kind;
    const char *property;
    const char *code;
};

void PrintTo(const CodeCase &value, std::ostream *out) {
    *out << value.kind << ": " << value.property;
}

class PropertyCode : public ::testing::TestWithParam<CodeCase> {};

TEST_P(PropertyCode, IsWritten) {
    EXPECT_THAT(sourceOf(GetParam().kind, std::string("    ") + GetParam().property + "\n"),
                HasSubstr(std::string("    c.") + GetParam().code + ";\n"));
}

INSTANTIATE_TEST_SUITE_P(
    Design, PropertyCode,
    ::testing::Values(CodeCase{"Label", "fore @text", "setForeColor(0xF3EDE9)"},
                      CodeCase{"Label", "back 0x010203", "setBackColor(0x010203)"},
                      CodeCase{"Label", "caption \"a\"", "setCaption(u\"a\")"},
                      CodeCase{"Label", "align centre", "setAlignment(forms::Alignment::Centre)"},
                      CodeCase{"Label", "align right", "setAlignment(forms::Alignment::Right)"},
                      CodeCase{"Label", "opaque", "setTransparent(false)"},
                      CodeCase{"PictureBox", "transparent", "setTransparent(true)"},
                      CodeCase{"Label", "wrap", "setWordWrap(true)"},
                      CodeCase{"Label", "rim", "setRim(true)"},
                      CodeCase{"Label", "autosize", "setAutoSize(true)"},
                      CodeCase{"Label", "hidden", "setVisible(false)"},
                      CodeCase{"Label", "disabled", "setEnabled(false)"},
                      CodeCase{"Label", "tip \"t\"", "setToolTip(u\"t\")"},
                      CodeCase{"Label", "tag \"1\"", "setTag(u\"1\")"},
                      CodeCase{"Label", "pointer hand", "setMousePointer(forms::pointerCustom)"},
                      CodeCase{"Label", "pointer hand", "setMouseIcon(forms::MouseIcon::Hand)"},
                      CodeCase{"TextBox", "named other\nLabel other\n    at 0 0\n    size 9 9",
                               "setBond(forms::Bond::Named, other)"},
                      CodeCase{"Image", "part other\nListBox other\n    at 0 0\n    size 9 9",
                               "setBond(forms::Bond::Part, other)"},
                      CodeCase{"Image", "slider other\nShape other\n    at 0 0\n    size 9 9",
                               "setBond(forms::Bond::Slider, other)"},
                      CodeCase{"zkButton", "tab other\nFrame other\n    at 0 0\n    size 9 9",
                               "setBond(forms::Bond::Tab, other)"},
                      CodeCase{"Image", "tabstop", "setTabStop(true)"},
                      CodeCase{"Label", "tabstop", "setTabStop(true)"},
                      CodeCase{"Image", "picture play", "setPicture(forms::Picture::play)"},
                      CodeCase{"Shape", "fill @text", "setFillColor(0xF3EDE9)"},
                      CodeCase{"Line", "ends 1 2 3 4", "setEnds(1.0F, 2.0F, 3.0F, 4.0F)"},
                      CodeCase{"TextBox", "text \"t\"", "setText(u\"t\")"},
                      CodeCase{"TextBox", "multiline\n    line \"a\"\n    line \"b\"",
                               "setText(u\"a\\015\\012b\")"},
                      CodeCase{"TextBox", "multiline", "setMultiLine(true)"},
                      CodeCase{"TextBox", "locked", "setLocked(true)"},
                      CodeCase{"CheckBox", "value 2", "setValue(2)"},
                      CodeCase{"OptionButton", "value 1", "setValue(true)"},
                      CodeCase{"ListBox", "rows 17", "setDesignRows(17)"},
                      CodeCase{"ListBox", "multiselect", "setMultiSelect(true)"},
                      CodeCase{"Timer", "interval 70", "setInterval(70)"},
                      CodeCase{"Timer", "running", "setRunning(true)"},
                      CodeCase{"Menu", "separator", "setSeparator(true)"},
                      CodeCase{"zkButton", "speed 15", "setSpeed(15)"}));

TEST(DesignCode, LooksComeBeforeThePlaceAndWhatNeedsThePlaceBehindIt) {
    const std::string source = sourceOf("Label", "    autosize\n    caption \"a\"\n");
    EXPECT_LT(source.find("setCaption"), source.find("c.move("));
    EXPECT_LT(source.find("c.move("), source.find("setAutoSize"));
}

TEST(DesignCode, TextsAreEscaped) {
    const std::string source = sourceOf("Label", "    caption \"\xE6\xA0\x87\xE9\xA2\x98"
                                                 "9 \\\"\\\\\\r\\n\x7F"
                                                 "7\"\n");
    EXPECT_THAT(source, HasSubstr("setCaption(u\"\\x6807\" u\"\\x9898\" u\"9 \\\"\\\\\\015\\012"
                                  "\\1777\")"));
}

TEST(DesignCode, AControlWithoutAFontHasTheForms) {
    const std::string source =
        codeOf("form F\n    size 900 900\n    font \"Arial\" 8\nLabel a\n    at 0 0\n"
               "    size 9 9\nLabel b\n    at 0 0\n    size 9 9\n    font \"Arial\" 8 bold\n"
               "Image c\n    at 0 0\n    size 9 9\nzkProgress d\n    at 0 0\n    size 9 9\n")
            .source;
    EXPECT_THAT(source, HasSubstr("a.setFont(font1);"));
    EXPECT_THAT(source, HasSubstr("d.setCaptionFont(font1);"));
    EXPECT_THAT(source, HasSubstr("b.setFont(font2);"));
    EXPECT_THAT(source, Not(HasSubstr("c.setFont")));
    EXPECT_THAT(source,
                HasSubstr("font2 = makeFont(u\"Arial\", 8.0F, true, false, false, false);"));
}

TEST(DesignCode, EachFontIsMadeOnce) {
    const std::string source =
        codeOf("form F\n    size 900 900\nLabel a\n    at 0 0\n    size 9 9\n    font \"A\" 8\n"
               "Label b\n    at 0 0\n    size 9 9\n    font \"A\" 8\n")
            .source;
    EXPECT_THAT(source, HasSubstr("b.setFont(font1);"));
    EXPECT_THAT(source, Not(HasSubstr("font2")));
}

} // namespace velmora::formc
