#include "platform/forms/font.h"

#include <gtest/gtest.h>

#include <limits>

namespace velmora::forms {

TEST(Font, KeepsTheNameAskedFor) {
    Font font(u"No Such Face", 10);
    EXPECT_EQ(font.name(), u"No Such Face");
}

TEST(Font, MayBeBoldFromItsBeginning) {
    const Font font(u"Arial", 9, true);
    EXPECT_TRUE(font.bold());
    EXPECT_EQ(font.weight(), 700);
    EXPECT_FALSE(Font(u"Arial", 9, false).bold());
}

TEST(Font, BoldSetsTheWeight) {
    Font font;
    font.setBold(true);
    EXPECT_EQ(font.weight(), 700);
    font.setBold(false);
    EXPECT_EQ(font.weight(), 400);
}

TEST(Font, AWeightAbove550IsBold) {
    Font font;
    font.setWeight(550);
    EXPECT_FALSE(font.bold());
    font.setWeight(551);
    EXPECT_TRUE(font.bold());
    EXPECT_EQ(font.weight(), 551);
}

TEST(Font, TheLastOfBoldAndWeightWins) {
    Font font;
    font.setWeight(900);
    font.setBold(false);
    EXPECT_EQ(font.weight(), 400);
    font.setBold(true);
    font.setWeight(300);
    EXPECT_FALSE(font.bold());
}

TEST(Font, ASizeOutside1To2160IsIgnored) {
    Font font(u"Arial", 9);
    for (const float size : {0.0F, 0.99F, -5.0F, 2160.5F, std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity()}) {
        font.setSize(size);
        EXPECT_EQ(font.size(), 9) << size;
    }
    font.setSize(1);
    EXPECT_EQ(font.size(), 1);
    font.setSize(2160);
    EXPECT_EQ(font.size(), 2160);
}

TEST(Font, ABadSizeAtItsMakingLeavesTheDefault) {
    EXPECT_EQ(Font(u"Arial", 0).size(), 9);
    EXPECT_EQ(Font(u"Arial", 5000).size(), 9);
}

TEST(Font, TheCharacterSetIsStoredAndCopied) {
    Font font;
    font.setCharset(134);
    const Font copy = font;
    EXPECT_EQ(copy.charset(), 134);
    EXPECT_EQ(copy, font);
}

TEST(Colours, APlainColourStaysAsItIs) {
    EXPECT_EQ(plainColour(0x00C7C7C7U), 0x00C7C7C7U);
    EXPECT_EQ(plainColour(0), 0U);
}

TEST(Colours, TheFaceOfButtonsIsFixed) { EXPECT_EQ(plainColour(0x8000000FU), 0x00F0F0F0U); }

TEST(Colours, WindowAndWindowTextAreWhiteAndBlack) {
    EXPECT_EQ(plainColour(0x80000005U), 0x00FFFFFFU);
    EXPECT_EQ(plainColour(0x80000008U), 0U);
}

TEST(Colours, TheSystemsAreThoseOfItsOwnListInItsOrder) {
    const auto rgb = [](Colour red, Colour green, Colour blue) {
        return red | green << 8 | blue << 16;
    };
    const Colour list[] = {
        rgb(200, 200, 200), rgb(0, 0, 0),       rgb(153, 180, 209), rgb(191, 205, 219),
        rgb(240, 240, 240), rgb(255, 255, 255), rgb(100, 100, 100), rgb(0, 0, 0),
        rgb(0, 0, 0),       rgb(0, 0, 0),       rgb(180, 180, 180), rgb(244, 247, 252),
        rgb(171, 171, 171), rgb(51, 153, 255),  rgb(255, 255, 255), rgb(240, 240, 240),
        rgb(160, 160, 160), rgb(109, 109, 109), rgb(0, 0, 0),       rgb(67, 78, 84),
        rgb(255, 255, 255), rgb(105, 105, 105), rgb(227, 227, 227), rgb(0, 0, 0),
        rgb(255, 255, 225)};
    for (Colour index = 0; index < std::size(list); ++index)
        EXPECT_EQ(plainColour(0x80000000U + index), list[index]) << index;
    EXPECT_EQ(plainColour(0x80000000U + static_cast<Colour>(std::size(list))), 0U);
}

TEST(Colours, AnUnknownSystemColourIsBlack) { EXPECT_EQ(plainColour(0x80001234U), 0U); }

} // namespace velmora::forms
