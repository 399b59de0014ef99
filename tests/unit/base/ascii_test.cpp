#include "base/ascii.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(Unescaped, UndoesPairsOfDigitsOnly) {
    EXPECT_EQ(unescaped("%E4%b8%AD a%20b"), "\xE4\xB8\xAD a b");
    EXPECT_EQ(unescaped("100%"), "100%");
    EXPECT_EQ(unescaped("%4"), "%4");
    EXPECT_EQ(unescaped("%zz%4x"), "%zz%4x");
    EXPECT_EQ(unescaped("%41%"), "A%");
}

TEST(Unescaped, IsUndoneOnceOnly) { EXPECT_EQ(unescaped("%2541"), "%41"); }

TEST(AddEscaped, GivesWhatUnescapedUndoesForEveryByte) {
    for (int value = 0; value < 256; ++value) {
        std::string text = "a";
        addEscaped(text, static_cast<char>(value));
        EXPECT_EQ(text.size(), 4U);
        EXPECT_EQ(unescaped(text), std::string("a") + static_cast<char>(value));
    }
}

TEST(HexValue, IsOfDigitsOfBothCasesAndOfNothingElse) {
    EXPECT_EQ(hexValue('0'), 0);
    EXPECT_EQ(hexValue(u'9'), 9);
    EXPECT_EQ(hexValue('a'), 10);
    EXPECT_EQ(hexValue(u'F'), 15);
    for (const char16_t unit : {u'/', u':', u'@', u'G', u'`', u'g', u'\u0130', u'\uFF11'})
        EXPECT_EQ(hexValue(unit), -1);
}

TEST(LowerAscii, LeavesEveryOtherByte) {
    EXPECT_EQ(lowerAscii("aZ@[`{ \xC3\x84"), "az@[`{ \xC3\x84");
}

} // namespace
} // namespace velmora
