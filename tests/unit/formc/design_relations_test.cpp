// Who answers, and what the skin hands out.

#include "design.h"
#include "design_code.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace velmora::formc {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

Skin skin() {
    Skin one{{}, {"play", "stop"}, {}};
    one.model = "Main";
    one.modelPictures = {{"playButton", "play"}, {"stopButton", "stop"}};
    return one;
}

// A form with one control of the kind, which has these properties.
std::string formWith(const std::string &kind, const std::string &properties) {
    return "form F\n    size 300 300\n" + kind + " c\n" +
           (kind == "Menu" || kind == "Timer" ? "" : "    at 0 0\n    size 90 90\n") + properties;
}

// The faults as "line: text".
std::vector<std::string> faultsOf(const std::string &kind, const std::string &properties) {
    std::vector<std::string> lines;
    for (const Fault &fault : parseDesign(formWith(kind, properties), skin()).faults)
        lines.push_back(std::to_string(fault.line) + ": " + fault.text);
    return lines;
}

Code codeOf(const std::string &text) {
    const Design design = parseDesign(text, skin());
    for (const Fault &fault : design.faults)
        ADD_FAILURE() << fault.line << ": " << fault.text;
    return writeCode(design, "playback");
}

} // namespace

TEST(Answers, AreTheRoutineOfTheControlsNameOrTheOneNamed) {
    const std::string header =
        codeOf(formWith("Image", "    click\n    dblclick open_It\nMenu help\n    click\n")).header;
    EXPECT_THAT(header, HasSubstr("    template <typename Answering> void wire(Answering "
                                  "&answering) {\n"
                                  "        c.on().Click = [&answering](auto &&...event) { "
                                  "answering.c_Click(event...); }; // src/playback/F.form:6\n"
                                  "        c.on().DblClick = [&answering](auto &&...event) { "
                                  "answering.open_It(event...); }; // src/playback/F.form:7\n"
                                  "        help.on().Click = [&answering](auto &&...event) { "
                                  "answering.help_Click(event...); }; // src/playback/F.form:9\n"
                                  "    }\n};\n"));
}

TEST(Answers, OfAFormThatNamesNoneNeedNoWiring) {
    EXPECT_THAT(codeOf(formWith("Image", "")).header, Not(HasSubstr("wire")));
}

TEST(AnswerFaults, WhatIsNoRoutine) {
    EXPECT_THAT(faultsOf("Image", "    click 5a\n"), ElementsAre("6: 'click': '5a' is no name"));
    EXPECT_THAT(faultsOf("Image", "    click delete\n"),
                ElementsAre("6: 'click': 'delete' is a word of the language"));
    EXPECT_THAT(faultsOf("Image", "    click \"a\"\n"),
                ElementsAre("6: 'click': expects the name of a routine, or nothing"));
    EXPECT_THAT(faultsOf("Image", "    click a b\n"),
                ElementsAre("6: 'click': expects the name of a routine, or nothing"));
}

TEST(AnswerFaults, TwoForOneEvent) {
    EXPECT_THAT(faultsOf("Image", "    click\n    click other\n"),
                ElementsAre("7: 'click' is given twice"));
}

TEST(AnswerFaults, ARoutineOfAControlsName) {
    EXPECT_THAT(faultsOf("Menu", "    click d\nMenu d\n"),
                ElementsAre("4: 'click': 'd' is the control of line 5"));
    EXPECT_THAT(faultsOf("Menu", "    click\nMenu c_Click\n"),
                ElementsAre("4: 'click': 'c_Click' is the control of line 5"));
}

TEST(AnswerFaults, WhatIsNeverClicked) {
    EXPECT_THAT(faultsOf("Timer", "    click\n"),
                ElementsAre("4: 'Timer' has no property 'click'"));
    EXPECT_THAT(faultsOf("Menu", "    dblclick\n"),
                ElementsAre("4: 'Menu' has no property 'dblclick'"));
    EXPECT_THAT(faultsOf("Menu", "    separator\n    click\n"),
                ElementsAre("3: the separator 'c' cannot be clicked"));
}

TEST(HandedOut, ArePicturesWithTheHandAndTheHandAlone) {
    const Code code = codeOf(formWith("Image", "    picture play from Main.playButton\n"
                                               "Label d\n    at 0 0\n    size 9 9\n"
                                               "    pointer hand from Main\n"
                                               "Image e\n    at 0 0\n    size 9 9\n"
                                               "    picture stop\n    pointer hand\n"));
    EXPECT_THAT(code.header, HasSubstr("class Main_Design;\n"));
    EXPECT_THAT(code.header, HasSubstr("    void takeSkin(const Main_Design &model);\n"));
    EXPECT_THAT(code.source, HasSubstr("#include \"settings/skin_parts.h\"\n"));
    EXPECT_THAT(code.source, HasSubstr("void F_Design::takeSkin(const Main_Design &model) {\n"
                                       "    c.setPicture(model.playButton.picture());\n"
                                       "    skin::takeHand(c, model);\n"
                                       "    skin::takeHand(d, model);\n"
                                       "}\n"));
    // Both are there before the skin comes.
    EXPECT_THAT(code.source, HasSubstr("    c.setPicture(forms::Picture::play);\n"));
    EXPECT_THAT(code.source, HasSubstr("    d.setMouseIcon(forms::MouseIcon::Hand);\n"));
}

TEST(HandedOut, IsNothingToAFormThatTakesNone) {
    const Code code = codeOf(formWith("Image", "    picture play\n    pointer hand\n"));
    EXPECT_THAT(code.header, Not(HasSubstr("Main_Design")));
    EXPECT_THAT(code.source, Not(HasSubstr("skin")));
}

TEST(HandedOut, ComesFromTheImagesOfTheModelsFile) {
    const std::string file = testing::TempDir() + "/Main.form";
    std::ofstream(file) << "form Main\n    size 300 300\nImage playButton\n    at 0 0\n"
                           "    size 90 90\n    picture play\n    pointer hand from Main\n"
                           "PictureBox box\n    at 0 0\n    size 90 90\n    picture stop\n";
    const Skin read = withModel(Skin{{}, {"play", "stop"}, {}}, file);
    EXPECT_EQ(read.model, "Main");
    EXPECT_THAT(read.modelPictures, ElementsAre(testing::Pair("playButton", "play")));
    EXPECT_THROW(withModel(Skin{}, file + ".gone"), std::runtime_error);
}

TEST(HandedOutFaults, AnImageThatTheModelDoesNotHave) {
    EXPECT_THAT(faultsOf("Image", "    picture play from Main.nextButton\n"),
                ElementsAre("6: 'picture': 'Main' has no image 'nextButton'"));
    EXPECT_THAT(faultsOf("Image", "    picture play from Main\n"),
                ElementsAre("6: 'picture': 'Main' has no image ''"));
}

TEST(HandedOutFaults, AnotherPictureThanTheModels) {
    EXPECT_THAT(faultsOf("Image", "    picture play from Main.stopButton\n"),
                ElementsAre("6: 'picture': 'Main.stopButton' has the picture 'stop'"));
}

TEST(HandedOutFaults, AFormThatHandsNothingOut) {
    EXPECT_THAT(faultsOf("Image", "    picture play from miniForm.playButton\n"),
                ElementsAre("6: 'picture': nothing is handed out from 'miniForm'"));
    EXPECT_THAT(faultsOf("Label", "    pointer hand from miniForm\n"),
                ElementsAre("6: 'pointer': nothing is handed out from 'miniForm'"));
}

TEST(HandedOutFaults, WhatIsMalformed) {
    const std::string expected = "expects one name, and behind it 'from' and the form it is handed "
                                 "out from";
    EXPECT_THAT(faultsOf("Image", "    picture play of Main.playButton\n"),
                ElementsAre("6: 'picture': " + expected));
    EXPECT_THAT(faultsOf("Image", "    picture play from\n"),
                ElementsAre("6: 'picture': " + expected));
    EXPECT_THAT(faultsOf("Label", "    pointer hand from Main Main\n"),
                ElementsAre("6: 'pointer': " + expected));
    EXPECT_THAT(faultsOf("Label", "    pointer hand from Main.playButton\n"),
                ElementsAre("6: 'pointer': the hand is of 'Main' itself"));
    EXPECT_THAT(faultsOf("Label", "    pointer hourglass from Main\n"),
                ElementsAre("6: 'pointer': expects one of hand, hourglass"));
}

TEST(HandedOutFaults, APictureForWhatIsNoImage) {
    EXPECT_THAT(faultsOf("PictureBox", "    picture play from Main.playButton\n"),
                ElementsAre("6: the skin hands pictures to images alone"));
}

} // namespace velmora::formc
