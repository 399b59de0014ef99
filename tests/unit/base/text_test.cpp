#include "base/text.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

// --- upper case ----------------------------------------------------------------------------------

TEST(Upper, mapsLatinGreekCyrillicAndFullWidthLetters) {
    EXPECT_EQ(upper(u"zkPlayer 123 _-é"), u"ZKPLAYER 123 _-É");
    EXPECT_EQ(upper(u"àéîõüÿ"), u"ÀÉÎÕÜŸ");
    EXPECT_EQ(upper(u"αβγς"), u"ΑΒΓΣ");
    EXPECT_EQ(upper(u"абвёѓ"), u"АБВЁЃ");
    EXPECT_EQ(upper(u"ａｚ"), u"ＡＺ");
    EXPECT_EQ(upper(u"āăąćđ"), u"ĀĂĄĆĐ");
    EXPECT_EQ(upper(u"աբև"), u"ԱԲև");
}

TEST(Upper, takesOneUnitForOneWithoutLocale) {
    EXPECT_EQ(upper(u"straße"), u"STRAßE"); // U+00DF has only a longer form
    EXPECT_EQ(upper(u"\x0149\x01F0"), u"\x0149\x01F0");
    EXPECT_EQ(upper(u"i\x0131"), u"II");
    EXPECT_EQ(upper(u"\x00B5\x017F"), u"\x039CS");
    EXPECT_EQ(upper(u"\x01C5\x01C6"), u"\x01C4\x01C4");
    EXPECT_EQ(upper(u"\x1F80"), u"\x1F88");
}

TEST(Upper, leavesWhatHasNoCase) {
    EXPECT_EQ(upper(u"中文曲目かなカナ〖〗"), u"中文曲目かなカナ〖〗");
    EXPECT_EQ(upper(u"ABC@[`{"), u"ABC@[`{");
    EXPECT_EQ(upper(u"\xD801\xDC28"), u"\xD801\xDC28"); // beyond the basic plane
    EXPECT_EQ(upper(u"\xDCE9"), u"\xDCE9");
    EXPECT_EQ(upper(u""), u"");
}

TEST(Upper, isItsOwnUpperCaseEverywhere) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const char16_t once = upperUnit(static_cast<char16_t>(unit));
        ASSERT_EQ(upperUnit(once), once) << std::hex << unit;
    }
}

TEST(Upper, changesAsManyUnitsAsHaveASimpleMapping) {
    int changed = 0;
    for (unsigned unit = 0; unit < 0x10000; ++unit)
        changed += upperUnit(static_cast<char16_t>(unit)) != unit;
    EXPECT_EQ(changed, 1190);
}

TEST(EqualsIgnoringCase, comparesUpperCaseUnitByUnit) {
    EXPECT_TRUE(equalsIgnoringCase(u"Song.LRC", u"sONG.lrc"));
    EXPECT_TRUE(equalsIgnoringCase(u"", u""));
    EXPECT_FALSE(equalsIgnoringCase(u"a", u"ab"));
    EXPECT_FALSE(equalsIgnoringCase(u"straße", u"STRASSE"));
    EXPECT_TRUE(equalsIgnoringCase(u"ÉTÉ", u"été"));
    EXPECT_FALSE(equalsIgnoringCase(u"e\x0301", u"é")); // no normalisation
}

// --- lower case ----------------------------------------------------------------------------------

TEST(Lower, mapsOneUnitToOneUnit) {
    EXPECT_EQ(lower(u"HTTP://Host:80/A?b=C_É"), u"http://host:80/a?b=c_é");
    EXPECT_EQ(lower(u"ÀÉÎÕÜŸ ΑΒΓΣ АБВЁ ＡＺ ĀĂ Ա"), u"àéîõüÿ αβγσ абвё ａｚ āă ա");
    EXPECT_EQ(lower(u"中文かナ@[`{ß\xD801\xDC00"), u"中文かナ@[`{ß\xD801\xDC00");
    EXPECT_EQ(lower(u""), u"");
}

TEST(Lower, undoesUpperCaseWhereThatIsOneToOne) {
    int changed = 0;
    for (int unit = 0; unit < 0x10000; ++unit) {
        const char16_t low = lowerUnit(static_cast<char16_t>(unit));
        EXPECT_EQ(lowerUnit(low), low);
        if (low != unit) {
            ++changed;
            // A title case letter shares its small letter with the capital; some capitals share
            // theirs with an older sign.
            EXPECT_TRUE(upperUnit(low) == unit || lowerUnit(upperUnit(low)) == low) << unit;
        }
    }
    EXPECT_EQ(changed, 1173);
}

// --- cutting -------------------------------------------------------------------------------------

TEST(Trim, removesBlanksAndNothingElse) {
    EXPECT_EQ(trim(u"  a b  "), u"a b");
    EXPECT_EQ(trim(u"    "), u"");
    EXPECT_EQ(trim(u""), u"");
    EXPECT_EQ(trim(u"\ta\t"), u"\ta\t");
    EXPECT_EQ(trim(u"\u3000a\u00A0"), u"\u3000a\u00A0");
    EXPECT_EQ(trim(u" \r\n "), u"\r\n");
}

TEST(UntilNul, cutsAtTheFirstNul) {
    EXPECT_EQ(untilNul(u"ab\0cd\0"sv), u"ab");
    EXPECT_EQ(untilNul(u"\0ab"sv), u"");
    EXPECT_EQ(untilNul(u"ab"), u"ab");
}

TEST(Split, keepsEmptyPieces) {
    using List = std::vector<std::u16string>;
    EXPECT_EQ(split(u"a|b|c", u'|'), (List{u"a", u"b", u"c"}));
    EXPECT_EQ(split(u"|a||", u'|'), (List{u"", u"a", u"", u""}));
    EXPECT_EQ(split(u"abc", u'|'), (List{u"abc"}));
    EXPECT_EQ(split(u"", u'|'), (List{u""}));
}

TEST(ReplaceAll, goesLeftToRightWithoutRescanning) {
    EXPECT_EQ(replaceAll(u"aaa", u"a", u"aa"), u"aaaaaa");
    EXPECT_EQ(replaceAll(u"aaaa", u"aa", u"b"), u"bb");
    EXPECT_EQ(replaceAll(u"aaa", u"aa", u"b"), u"ba");
    EXPECT_EQ(replaceAll(u"a&amp;b&amp;", u"&amp;", u"&"), u"a&b&");
    EXPECT_EQ(replaceAll(u"abc", u"", u"x"), u"abc");
    EXPECT_EQ(replaceAll(u"", u"a", u"x"), u"");
    EXPECT_EQ(replaceAll(u"abc", u"b", u""), u"ac");
}

TEST(Parts, areCutByUnitsAndHeldToTheText) {
    EXPECT_EQ(leftPart(u"abcdef", 3), u"abc");
    EXPECT_EQ(leftPart(u"abc", 9), u"abc");
    EXPECT_EQ(leftPart(u"abc", 0), u"");
    EXPECT_EQ(leftPart(u"abc", -1), u"");
    EXPECT_EQ(rightPart(u"abcdef", 3), u"def");
    EXPECT_EQ(rightPart(u"abc", 9), u"abc");
    EXPECT_EQ(rightPart(u"abc", 0), u"");
    EXPECT_EQ(rightPart(u"abc", -5), u"");
    EXPECT_EQ(leftPart(u"a\xD83D\xDE00", 2), u"a\xD83D"); // a pair may be cut in half
}

TEST(Search, comparesExactly) {
    EXPECT_TRUE(startsWith(u"playing", u"play"));
    EXPECT_TRUE(startsWith(u"play", u""));
    EXPECT_FALSE(startsWith(u"play", u"Play"));
    EXPECT_FALSE(startsWith(u"pl", u"play"));
    EXPECT_TRUE(contains(u"a Love song", u"Love"));
    EXPECT_FALSE(contains(u"a Love song", u"love"));
    EXPECT_TRUE(contains(u"abc", u""));
}

TEST(Contains, FindsAPartAtEveryPlaceOfTextsOfEveryLength) {
    for (std::size_t length = 1; length <= 24; ++length) {
        for (const std::u16string part : {u"x", u"12", u"00:45", u":", u"a:"}) {
            for (std::size_t at = 0; at + part.size() <= length; ++at) {
                std::u16string text(length, u'0');
                text.replace(at, part.size(), part);
                EXPECT_TRUE(contains(text, part));
                text.replace(at, part.size(), std::u16string(part.size(), u'9'));
                EXPECT_FALSE(contains(text, part));
            }
        }
    }
}

TEST(Contains, LooksOnWhereTheRareUnitStandsWithoutTheRest) {
    EXPECT_TRUE(contains(u"1:2:00:45", u"00:45"));
    EXPECT_FALSE(contains(u"::::00:44:45:", u"00:45"));
    EXPECT_FALSE(contains(u"00:4", u"00:45"));
    EXPECT_TRUE(contains(u"\uFF1A:\u3A00", u"\u3A00"));
    EXPECT_FALSE(contains(u"", u"a"));
    EXPECT_TRUE(contains(u"", u""));
}

// --- UTF-8 ---------------------------------------------------------------------------------------

TEST(Utf8, goesBothWaysForEveryWidth) {
    const std::u16string text = u"a\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF曲é";
    const std::string bytes = "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80"
                              "\xF4\x8F\xBF\xBF\xE6\x9B\xB2\xC3\xA9";
    EXPECT_EQ(toUtf8(text), bytes);
    EXPECT_EQ(fromUtf8(bytes), text);
}

TEST(Utf8, keepsNulAndLongAsciiRuns) {
    const std::string bytes = "0123456789abcdef\0tail of the text, longer than one step\n"s;
    EXPECT_EQ(fromUtf8(bytes), fromAscii(bytes));
    EXPECT_EQ(toUtf8(fromAscii(bytes)), bytes);
}

TEST(Utf8, givesTheReplacementCharacterForAHalfSurrogate) {
    EXPECT_EQ(toUtf8(u"a\xD83Dz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(toUtf8(u"\xDE00"), "\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(u"\xDE00\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(u"\xD83D\xD83D\xDE00"), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(Utf8, givesOneReplacementForEachMaximalPart) {
    EXPECT_EQ(fromUtf8("a\x80z"), u"a\uFFFDz");
    EXPECT_EQ(fromUtf8("\xC0\xAF"), u"\uFFFD\uFFFD");                     // over-long
    EXPECT_EQ(fromUtf8("\xE0\x80\xAF"), u"\uFFFD\uFFFD\uFFFD");           // over-long
    EXPECT_EQ(fromUtf8("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");           // a surrogate
    EXPECT_EQ(fromUtf8("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD"); // beyond the planes
    EXPECT_EQ(fromUtf8("\xF5"), u"\uFFFD");
    EXPECT_EQ(fromUtf8("\xE6\x9Bz"), u"\uFFFDz"); // the beginning of a character
    EXPECT_EQ(fromUtf8("\xF0\x9F\x98z"), u"\uFFFDz");
    EXPECT_EQ(fromUtf8("\xE6\x9B"), u"\uFFFD"); // cut short
    EXPECT_EQ(fromUtf8("\xE6"), u"\uFFFD");
    EXPECT_EQ(fromUtf8("\xC3\xC3\xA9"), u"\uFFFD\u00E9");
}

} // namespace
} // namespace velmora
