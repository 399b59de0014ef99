#include "platform/backends/curl/charsets.h"

#include "base/run_time_error.h"

#include <gtest/gtest.h>

namespace velmora::platform::http {

namespace {

TEST(DecodeLabelled, ReadsTheNationalStandardAsItsSuperset) {
    for (const char16_t *label : {u"gb2312", u"GB2312", u"GBK", u"gb18030", u" Gb2312 "}) {
        EXPECT_EQ(decodeLabelled("a\xD6\xD0z", label), u"a\x4E2Dz");
        EXPECT_EQ(decodeLabelled("\x81\x30\x89\x38", label), u"\x00DF") << "four bytes";
        EXPECT_EQ(decodeLabelled("\x90\x30\x81\x30", label), u"\xD800\xDC00") << "a pair";
    }
}

TEST(DecodeLabelled, GivesOneMarkForABadLeadByteAndKeepsTheLetterBehindIt) {
    EXPECT_EQ(decodeLabelled("\xD6\"x", u"gb2312"), u"\xFFFD\"x");
    EXPECT_EQ(decodeLabelled("\xFF<", u"gb2312"), u"\xFFFD<");
    EXPECT_EQ(decodeLabelled("a\xD6", u"gb2312"), u"a\xFFFD");
}

TEST(DecodeLabelled, ReadsTheEuroSignOfTheLegacyPage) {
    EXPECT_EQ(decodeLabelled("\x80", u"gb2312"), u"\x20AC");
}

TEST(DecodeLabelled, ReadsUtf8WithMarksForWhatIsNone) {
    EXPECT_EQ(decodeLabelled("a\xE4\xB8\xADz", u"utf-8"), u"a\x4E2Dz");
    EXPECT_EQ(decodeLabelled("\xE4\xB8z", u"UTF-8"), u"\xFFFDz");
    EXPECT_EQ(decodeLabelled("\xF0\x9F\x8E\xB5", u"utf8"), u"\xD83C\xDFB5");
    EXPECT_EQ(decodeLabelled("\xEF\xBB\xBFx", u"utf-8"), u"x") << "the mark is no text";
}

TEST(DecodeLabelled, ReadsTheOtherLegacyPages) {
    EXPECT_EQ(decodeLabelled("\x82\xA0", u"shift_jis"), u"\x3042");
    EXPECT_EQ(decodeLabelled("\xA4\xA4", u"big5"), u"\x4E2D");
    EXPECT_EQ(decodeLabelled("\xE9\x80", u"iso-8859-1"), u"\x00E9\x20AC");
}

TEST(DecodeLabelled, ReadsUnicode) {
    EXPECT_EQ(decodeLabelled(std::string_view("\xFF\xFE\x2D\x4E", 4), u"unicode"), u"\x4E2D");
    EXPECT_EQ(decodeLabelled(std::string_view("a\0b", 3), u"utf-16"), u"a\xFFFD");
}

TEST(DecodeLabelled, KeepsNulsAndControls) {
    EXPECT_EQ(decodeLabelled(std::string_view("a\0\x1A\r\n", 5), u"gb2312"),
              std::u16string_view(u"a\0\x1A\r\n", 5));
}

TEST(DecodeLabelled, GivesNothingForNothing) { EXPECT_EQ(decodeLabelled("", u"gb2312"), u""); }

TEST(DecodeLabelled, RaisesForALabelThatNobodyKnows) {
    EXPECT_THROW(decodeLabelled("x", u"klingon"), RunTimeError);
    EXPECT_THROW(decodeLabelled("x", u""), RunTimeError);
}

} // namespace

} // namespace velmora::platform::http
