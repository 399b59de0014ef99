#include "catalogue/texts.h"

#include "base/text.h"
#include "text/legacy_page.h"

#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

TEST(TextOf, ReadsBothKindsOfBytes) {
    EXPECT_EQ(textOf("\xE4\xB8\xAD"), u"中");
    EXPECT_EQ(textOf("\xD6\xD0"), u"中");
}

TEST(PageBytes, ReadBackAsTheyWereWhateverTheText) {
    const std::u16string text = u"a中é€\xD83C\xDFB5｜ﬁ\x0E01";
    EXPECT_EQ(platform::LegacyPage(936).decode(pageBytes(text)), text);
}

TEST(PageBytes, ShowHalfAPairAsAMark) {
    EXPECT_EQ(platform::LegacyPage(936).decode(pageBytes(u"a\xD83Cz")), u"a\xFFFDz");
}

TEST(HtmlText, HoldsNoMarkupAndNoLinkWord) {
    EXPECT_EQ(htmlText(u"<a & \"b\">"), u"&lt;a &amp; &quot;b&quot;&gt;");
    EXPECT_EQ(upper(htmlText(u"a href HREF hReF=x")).find(u"HREF"), std::u16string::npos);
    EXPECT_EQ(htmlText(u"a\tb\x01"), u"a b ");
}

TEST(OneLine, HasSingleBlanksAndNoneAtItsEnds) {
    EXPECT_EQ(oneLine(u"  a \r\n\t b\x00A0 "), u"a b");
    EXPECT_EQ(oneLine(u" \n "), u"");
}

TEST(RecordField, HoldsNoSignOfARecordAPageOrAPath) {
    EXPECT_EQ(recordField(u"@a@@b;c</td>\\d:*?\"|"), u"＠a＠＠b；c＜／td＞＼d：＊？＂｜");
}

TEST(RecordField, DoesNotBeginLikeTheEndOfARecord) {
    for (const char16_t *text : {u"Fiona", u"fi", u"FIn", u" fi"})
        EXPECT_EQ(recordField(text).substr(0, 1), u" ") << toUtf8(text);
    EXPECT_EQ(recordField(u"Frida"), u"Frida");
}

TEST(FittingBytes, CutsAtACharacterAndCountsWhatReadersSee) {
    EXPECT_EQ(fittingBytes(u"abc", 2), u"ab");
    EXPECT_EQ(fittingBytes(u"中文", 5), u"中");
    EXPECT_EQ(fittingBytes(u"\xD83C\xDFB5x", 3), u"");
    EXPECT_EQ(fittingBytes(u"\xD83C\xDFB5x", 4), u"\xD83C\xDFB5");
    EXPECT_EQ(fittingBytes(u"\xD83C", 3), u"\xD83C");
    // Two bytes as it stands, three in upper case.
    EXPECT_EQ(fittingBytes(u"\x0250", 2), u"");
}

TEST(SearchForm, MakesWordsThatCompare) {
    EXPECT_EQ(searchForm(u"  Hello,  World! "), u"HELLO WORLD");
    EXPECT_EQ(searchForm(u"Don't Stop"), u"DONT STOP");
    EXPECT_EQ(searchForm(u"Ｂｅｙｏｎｄ海阔天空"), u"BEYOND 海阔天空");
    EXPECT_EQ(searchForm(u"《七里香》（周杰伦）"), u"七里香 周杰伦");
    EXPECT_EQ(searchForm(u"Café_No.1"), u"CAFÉ NO 1");
    EXPECT_EQ(searchForm(u"--- &"), u"");
    EXPECT_EQ(wordsOf(u""), std::vector<std::u16string>());
}

} // namespace

} // namespace velmora::catalogue
