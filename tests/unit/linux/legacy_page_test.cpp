#include "text/legacy_page.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::platform {
namespace {

TEST(LegacyPage, knowsFivePages) {
    for (const int page : {932, 936, 949, 950, 1252})
        EXPECT_TRUE(LegacyPage::isKnown(page));
    for (const int page : {0, 437, 874, 1251, 65001})
        EXPECT_FALSE(LegacyPage::isKnown(page));
}

TEST(Page936, readsItsSupersetWithFourByteForms) {
    const LegacyPage page(936);
    EXPECT_EQ(page.decode("\xB0\xA1\xF7\xFE"), u"啊齄");
    EXPECT_EQ(page.decode("\x81\x40"), u"丂");
    EXPECT_EQ(page.decode("\x81\x30\x81\x30"), u"\u0080");
    EXPECT_EQ(page.decode("\x90\x30\x81\x30"), u"\U00010000");
    EXPECT_EQ(page.decode("\xA8\xA6"), u"é");
}

TEST(Page936, readsTheEuroSignAsThePageHasIt) {
    EXPECT_EQ(LegacyPage(936).decode("\x80 5"), u"€ 5");
    EXPECT_EQ(LegacyPage(936).encode(u"€"), "\x80");
}

TEST(Page936, keepsTheAsciiByteBehindABadLead) {
    const LegacyPage page(936);
    EXPECT_EQ(page.decode("\xD6\"title\""), u"\uFFFD\"title\"");
    EXPECT_EQ(page.decode("\xFF<b>"), u"\uFFFD<b>");
    EXPECT_EQ(page.decode("\xD6\r\n"), u"\uFFFD\r\n");
    EXPECT_EQ(page.decode("\xD6\x7F"), u"\uFFFD\x7F");
    EXPECT_EQ(page.decode("\x81\x30z"), u"\uFFFD0z");
    EXPECT_EQ(page.decode("\x81\x30\x81 "), u"\uFFFD0\uFFFD ");
}

TEST(Page936, givesOneReplacementForAPairWithoutACharacter) {
    const LegacyPage page(936);
    EXPECT_EQ(page.decode("\xD6\xFF中"), page.decode("\xFF中").substr(0, 1) + page.decode("中"));
    EXPECT_EQ(page.decode("\xFE\x39\xFE\x39z"), u"\uFFFDz"); // a four-byte form beyond the planes
}

TEST(Page936, givesOneReplacementForALeadAtTheEnd) {
    const LegacyPage page(936);
    EXPECT_EQ(page.decode("a\xD6"), u"a\uFFFD");
    EXPECT_EQ(page.decode("a\xD6", true), u"a");
    EXPECT_EQ(page.decode("a\x81\x30\x81", true), u"a");
    EXPECT_EQ(page.decode("a\x81\x30\x81"), u"a\uFFFD0\uFFFD");
    EXPECT_EQ(page.decode("a\xFF", true), u"a\uFFFD"); // no lead byte: wrong, not incomplete
}

TEST(Page936, decodesLongTexts) {
    const LegacyPage page(936);
    std::string bytes;
    std::u16string text;
    for (int i = 0; i < 5000; ++i) {
        bytes += "\xD6\xD0 a";
        text += u"中 a";
    }
    EXPECT_EQ(page.decode(bytes), text);
}

TEST(Page932, readsHalfWidthKanaAsOneByte) {
    const LegacyPage page(932);
    EXPECT_EQ(page.decode("\xB1\xB2"), u"\uFF71\uFF72");
    EXPECT_EQ(page.decode("\xA0z"), page.decode("\xA0") + u"z");
    EXPECT_EQ(page.decode("\x83\x5C"), u"ソ"); // the second byte is a backslash
    EXPECT_EQ(page.decode("\x83\x20"), u"\uFFFD ");
}

TEST(Page1252, givesAReplacementForItsHoles) {
    const LegacyPage page(1252);
    EXPECT_EQ(page.decode("\x81\x8D\xE9"), u"\uFFFD\uFFFDé");
    EXPECT_EQ(page.decode("\x93quoted\x94"), u"“quoted”");
}

TEST(Page949, readsAndWritesWhatTheOlderPageLacks) {
    const LegacyPage page(949);
    EXPECT_EQ(page.decode("\xC7\xD1\xB1\xDB \x8C\x63"), u"한글 똠");
    EXPECT_EQ(page.encode(u"한글 똠"), "\xC7\xD1\xB1\xDB \x8C\x63");
    EXPECT_EQ(page.decode("\xC7\"z"), u"\uFFFD\"z");
}

TEST(LegacyPage, encodesWholeTextsThatComeBackOrNone) {
    EXPECT_EQ(LegacyPage(936).encode(u"aéb"), "a\xA8\xA6"
                                              "b");
    EXPECT_EQ(LegacyPage(936).encode(u"aéñb"), std::nullopt);
    EXPECT_EQ(LegacyPage(936).encode(u"😀"), std::nullopt);
    EXPECT_EQ(LegacyPage(936).encode(u"a\xD83D"), std::nullopt);
    EXPECT_EQ(LegacyPage(932).encode(u"¥"), std::nullopt);
    EXPECT_EQ(LegacyPage(1252).encode(u"\u0081"), std::nullopt);
    EXPECT_EQ(LegacyPage(950).encode(std::u16string(3000, u'中')), [] {
        std::string bytes;
        for (int i = 0; i < 3000; ++i)
            bytes += "\xA4\xA4";
        return bytes;
    }());
}

TEST(LegacyPage, decodesStrictlyOrNotAtAll) {
    EXPECT_EQ(LegacyPage(936).decodeStrictly("\xD6\xD0"), u"中");
    EXPECT_EQ(LegacyPage(936).decodeStrictly("\xD6\xD0\xFF"), std::nullopt);
    EXPECT_EQ(LegacyPage(936).decodeStrictly("\xD6"), std::nullopt);
    EXPECT_EQ(LegacyPage(1252).decodeStrictly("\x81"), std::nullopt);
}

TEST(LegacyPage, survivesEveryPairOfBytes) {
    for (const int number : {932, 936, 949, 950, 1252}) {
        const LegacyPage page(number);
        for (int first = 0x80; first < 0x100; ++first)
            for (int second = 0; second < 0x100; ++second) {
                const std::string bytes = {static_cast<char>(first), static_cast<char>(second),
                                           'z'};
                const std::u16string text = page.decode(bytes);
                ASSERT_FALSE(text.empty());
                if (second < 0x30 && text.size() == 3) { // never a trail byte: it stays
                    ASSERT_EQ(text[1], static_cast<char16_t>(second)) << number << ' ' << first;
                    ASSERT_EQ(text[2], u'z');
                }
            }
    }
}

TEST(LegacyPage, withoutAConverterGivesReplacements) {
    const LegacyPage unknown(4711);
    EXPECT_EQ(unknown.decode("a\xE9z"), u"a\uFFFDz");
    EXPECT_EQ(unknown.encode(u"aéz"), std::nullopt);
}

} // namespace
} // namespace velmora::platform
