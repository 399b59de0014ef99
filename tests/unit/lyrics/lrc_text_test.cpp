// One line of a lyric: its words, its tag, its stamps.

#include "lyrics/lrc_text.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(WordsOfALine, StandBehindTheLastBracket) {
    EXPECT_EQ(wordsOf(u"[00:12.34]Text"), u"Text");
    EXPECT_EQ(wordsOf(u"[00:12.34][01:30.22]Text"), u"Text");
    EXPECT_EQ(wordsOf(u"[00:12]one] two"), u" two");
    EXPECT_EQ(wordsOf(u"[00:12.34]"), u"");
    EXPECT_EQ(wordsOf(u"no label"), u"no label");
    EXPECT_EQ(wordsOf(u"[00:12 open"), u"[00:12 open");
    EXPECT_EQ(wordsOf(u""), u"");
}

struct TagCase {
    const char16_t *line;
    LyricTag tag;
    const char16_t *value;
};

class TagOf : public ::testing::TestWithParam<TagCase> {};

TEST_P(TagOf, AnyMixOfCaseIsTheSameTag) {
    const std::u16string line = GetParam().line;
    const auto found = tagOf(line);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->tag, GetParam().tag);
    EXPECT_EQ(found->value, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Lines, TagOf,
                         ::testing::Values(TagCase{u"[Ti:Song]", LyricTag::Ti, u"Song"},
                                           TagCase{u"[TI:Song]", LyricTag::Ti, u"Song"},
                                           TagCase{u"[ti:Song]", LyricTag::Ti, u"Song"},
                                           TagCase{u"[tI:sOnG]", LyricTag::Ti, u"sOnG"},
                                           TagCase{u"[aR:Me]", LyricTag::Ar, u"Me"},
                                           TagCase{u"[al:All]", LyricTag::Al, u"All"},
                                           TagCase{u"[BY:who]", LyricTag::By, u"who"},
                                           TagCase{u"  [ti:Song]  ", LyricTag::Ti, u"Song"},
                                           TagCase{u"[ti: a b ]", LyricTag::Ti, u" a b "},
                                           TagCase{u"[ti:a]b]", LyricTag::Ti, u"a]b"},
                                           TagCase{u"[ti:]", LyricTag::Ti, u""}));

TEST(TagOf, OtherLinesAreNone) {
    for (const char16_t *line :
         {u"[ti:Song] x", u"[offset:500]", u"[00:12.34]", u"ti:Song]", u"[ti;Song]", u"x[ti:Song]",
          u"[t]", u"]", u"", u"   ", u"\t[ti:a]", u"[re:x]"})
        EXPECT_FALSE(tagOf(line).has_value());
}

TEST(EndsWithLabel, LooksAtTheTrimmedEnd) {
    EXPECT_TRUE(endsWithLabel(u"[00:12.34]  "));
    EXPECT_TRUE(endsWithLabel(u"]"));
    EXPECT_FALSE(endsWithLabel(u"[00:12.34]a"));
    EXPECT_FALSE(endsWithLabel(u"[00:12.34]\t"));
    EXPECT_FALSE(endsWithLabel(u"  "));
    EXPECT_FALSE(endsWithLabel(u""));
}

struct StampCase {
    const char16_t *item;
    const char16_t *left;
};

class WithoutStamp : public ::testing::TestWithParam<StampCase> {};

TEST_P(WithoutStamp, IsWhatTheCutsLeave) {
    EXPECT_EQ(withoutStamp(GetParam().item), GetParam().left);
}

INSTANTIATE_TEST_SUITE_P(
    Items, WithoutStamp,
    ::testing::Values(
        StampCase{u"[01:23.45]Text", u"Text"}, StampCase{u"[01:23.4]Text", u"Text"},
        StampCase{u"[01:23]Text", u"Text"}, StampCase{u"[01:23]", u""},
        StampCase{u"[01:23.45][02:34.56]Text", u"[02:34.56]Text"},
        // The brackets and digits are not looked at.
        StampCase{u"a:bcde]Text", u"Text"}, StampCase{u":     ]Text", u"Text"},
        StampCase{u"[aa:bb]Text", u"Text"},
        // Nothing that fits.
        StampCase{u"Text", u"Text"}, StampCase{u"", u""}, StampCase{u"[1:23]Text", u"[1:23]Text"},
        StampCase{u"[001:23.45]Text", u"[001:23.45]Text"}, StampCase{u"[01.23]a", u"[01.23]a"},
        StampCase{u"[01:23.456]Text", u"[01:23.456]Text"},
        // The test is made on the trimmed item, the cut on the item as it stands.
        StampCase{u"  [01:23.45]Text", u"5]Text"}, StampCase{u" [01:23]Text", u"]Text"},
        // Short items whose form is found at a length beyond their own.
        StampCase{u"a:b]", u""}, StampCase{u"[1:2]", u""},
        // Two forms fit, so two cuts are made: 7 and 9 units.
        StampCase{u"[01:23].]Textual", u""},
        // 9 and 10 units.
        StampCase{u"[01:23.4]]01234567890", u"90"}));

} // namespace
} // namespace velmora
