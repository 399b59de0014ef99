#include "faults.h"
#include "palette.h"

#include <gmock/gmock.h>

namespace velmora::skinc {
namespace {

using testing::HasSubstr;

TEST(Palette, ReadsNameColourAndPurpose) {
    const Palette palette = parsePalette("p", "# head\n\nglow   #12AbEf  # what glows\n");
    ASSERT_EQ(palette.entries.size(), 1U);
    EXPECT_EQ(palette.entries[0].name, "glow");
    EXPECT_EQ(palette.entries[0].colour, 0xFF12ABEFU);
    EXPECT_EQ(palette.entries[0].comment, "what glows");
}

TEST(Palette, TakesWindowsLineEndsAndAMissingLastLineEnd) {
    const Palette palette = parsePalette("p", "a #000000 # x\r\nb #FFFFFF # y");
    EXPECT_EQ(palette.entries.size(), 2U);
    EXPECT_EQ(palette.entries[1].comment, "y");
}

TEST(Palette, FindsByNameAndAnswersNullForAStranger) {
    const Palette palette = parsePalette("p", "a #010203 # x\n");
    EXPECT_NE(palette.find("a"), nullptr);
    EXPECT_EQ(palette.find("b"), nullptr);
}

TEST(Palette, ReportsFileAndLineOfAFault) {
    EXPECT_EQ(faultOf([] { parsePalette("skin/p.txt", "a #000000 # x\n\nb #00 # y\n"); }),
              "skin/p.txt:3: the colour of 'b' is not #RRGGBB");
}

TEST(Palette, RefusesAColourThatDoesNotSayWhatItIsFor) {
    EXPECT_THAT(faultOf([] { parsePalette("p", "a #000000\n"); }), HasSubstr("what it is for"));
    EXPECT_THAT(faultOf([] { parsePalette("p", "a #000000 #  \n"); }), HasSubstr("what it is for"));
}

TEST(Palette, RefusesANameThatStandsTwice) {
    EXPECT_THAT(faultOf([] { parsePalette("p", "a #000000 # x\na #000001 # y\n"); }),
                HasSubstr("p:2: 'a' stands twice"));
}

TEST(Palette, RefusesNamesThatAreNoLowerCaseIdentifiers) {
    for (const char *name : {"A", "1a", "a-b", "_a", "é"})
        EXPECT_THAT(faultOf([&] { parsePalette("p", std::string(name) + " #000000 # x\n"); }),
                    HasSubstr("is no palette name"))
            << name;
}

TEST(Palette, RefusesALineWithoutAColour) {
    EXPECT_THAT(faultOf([] { parsePalette("p", "alone\n"); }), HasSubstr("expected"));
    EXPECT_THAT(faultOf([] { parsePalette("p", "a 123456 # x\n"); }), HasSubstr("not #RRGGBB"));
    EXPECT_THAT(faultOf([] { parsePalette("p", "a #12345G # x\n"); }), HasSubstr("not #RRGGBB"));
}

TEST(Colour, IsHexadecimalOrAPaletteName) {
    const Palette palette = parsePalette("p", "glow #102030 # x\n");
    Argb colour = 0;
    EXPECT_TRUE(parseColour(palette, "#A1B2C3", colour));
    EXPECT_EQ(colour, 0xFFA1B2C3U);
    EXPECT_TRUE(parseColour(palette, "@glow", colour));
    EXPECT_EQ(colour, 0xFF102030U);
}

TEST(Colour, ThreeDigitsStandForSix) {
    Argb colour = 0;
    EXPECT_TRUE(parseColour({}, "#1aF", colour));
    EXPECT_EQ(colour, 0xFF11AAFFU);
}

TEST(Colour, RefusesWordsFourDigitsAndStrangers) {
    Argb colour = 7;
    for (const char *text : {"red", "#1234", "#", "", "@nobody", "rgb(1,2,3)"})
        EXPECT_FALSE(parseColour({}, text, colour)) << text;
    EXPECT_EQ(colour, 7U);
}

} // namespace
} // namespace velmora::skinc
