#include "text/ansi_conversion.h"

#include "base/text.h"
#include "platform/backends/linux/linux.h"
#include "tests/fakes/fake_ansi.h"
#include "text/locale_page.h"
#include "text/path_text.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace velmora::platform {
namespace {

using fakes::FakeAnsi;
using List = std::vector<std::u16string>;
using namespace std::string_literals;

// In page 936; as UTF-8 the second has no valid part.
const std::string gbk = "\xD6\xD0\xB9\xFA";  // 中国
const std::string gbk2 = "\xD6\xD0\xD6\xD0"; // 中中

// --- the normal state: UTF-8 with page 936 behind it ---------------------------------------------

TEST(Ansi, writesUtf8) {
    const FakeAnsi ansi;
    EXPECT_EQ(ansi.encode(u"中国 é 😀"), "中国 é 😀");
    EXPECT_EQ(ansi.encode(u""), "");
    EXPECT_EQ(ansi.encode(u"a\0b"s), "a\0b"s);
}

TEST(Ansi, readsUtf8AsSuchAndAnythingElseInTheLegacyPage) {
    const FakeAnsi ansi;
    EXPECT_EQ(ansi.decode("中国"), u"中国");
    EXPECT_EQ(ansi.decode(gbk), u"中国");
    EXPECT_EQ(ansi.decode("plain"), u"plain");
    EXPECT_EQ(ansi.decode(""), u"");
    EXPECT_EQ(ansi.decode("a\0b"s), u"a\0b"s);
    // One bad byte in UTF-8 sends the whole text to the legacy page.
    EXPECT_EQ(ansi.decode("\xD6\xD0 \xC3\xA9"), u"中 \u8305");
}

TEST(Ansi, countsTheBytesThatItWrites) {
    for (const int page : {0, 936, 932, 949, 950, 1252, 65001}) {
        const FakeAnsi ansi(page);
        for (const std::u16string &text :
             {u""s, u"abc"s, u"中国é"s, u"😀"s, u"\xD83D"s, u"a\xDCFF\xDC0A"s, u"\xDE00x"s})
            EXPECT_EQ(ansi.byteCount(text), ansi.encode(text).size()) << page;
    }
}

TEST(Ansi, appendsWhatItWritesWhereverTheFirstUnitBeyondAsciiStands) {
    for (const int page : {0, 936, 932, 949, 950, 1252, 65001}) {
        const FakeAnsi ansi(page);
        const std::string odd = ansi.encode(u"é");
        for (std::size_t before = 0; before <= 40; ++before) {
            for (const std::size_t behind : {0, 1, 20}) {
                const std::u16string plain(behind, u'~');
                std::string bytes = "kept ";
                ansi.appendTo(bytes, std::u16string(before, u'\\') + u"é" + plain);
                EXPECT_EQ(bytes,
                          "kept " + std::string(before, '\\') + odd + std::string(behind, '~'))
                    << page << " " << before;
            }
        }
        std::string bytes = "kept";
        ansi.appendTo(bytes, u"");
        EXPECT_EQ(bytes, "kept");
    }
}

TEST(Ansi, writesAHalfSurrogateAsAQuestionMark) {
    const FakeAnsi ansi;
    EXPECT_EQ(ansi.encode(u"a\xD83Dz"), "a?z");
    EXPECT_EQ(ansi.encode(u"\xDE00"), "?");
    EXPECT_EQ(ansi.encode(u"\xD83D"), "?");
}

TEST(Ansi, recognisesNoByteOrderMark) {
    const FakeAnsi ansi;
    EXPECT_EQ(ansi.decode("\xEF\xBB\xBFx"), u"\uFEFFx");
}

// --- file-name units -----------------------------------------------------------------------------

TEST(Ansi, writesFileNameUnitsInTheirThreeByteFormAndReadsThemBack) {
    const FakeAnsi ansi;
    const std::u16string name = u"/m/\xDC80\xDCFF\xDC0A\xDC0D\xDCC4中.mp3";
    const std::string bytes = ansi.encode(name);
    EXPECT_EQ(bytes, "/m/\xED\xB2\x80\xED\xB3\xBF\xED\xB0\x8A\xED\xB0\x8D\xED\xB3\x84中.mp3");
    EXPECT_EQ(ansi.decode(bytes), name);
    EXPECT_EQ(ansi.decodePath(bytes), name);
}

TEST(Ansi, takesNoOtherSurrogateFormForValid) {
    const FakeAnsi ansi(65001);
    EXPECT_EQ(ansi.decode("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD"); // a high half
    EXPECT_EQ(ansi.decode("\xED\xB0\x80"), u"\uFFFD\uFFFD\uFFFD"); // U+DC00
    EXPECT_EQ(ansi.decode("\xED\xB1\x81"), u"\uFFFD\uFFFD\uFFFD"); // U+DC41, a plain letter
    EXPECT_EQ(ansi.decode("\xED\xB4\x80"), u"\uFFFD\uFFFD\uFFFD"); // U+DD00
}

TEST(AnsiPath, isDecidedByItself) {
    const FakeAnsi ansi;
    EXPECT_EQ(ansi.decodePath("/音乐/é.mp3"), u"/音乐/é.mp3");
    EXPECT_EQ(ansi.decodePath("/m/\xD6\xD0.mp3"), u"/m/\xDCD6\xDCD0.mp3"); // raw bytes of a name
    EXPECT_EQ(ansi.decodePath("C:\\m\\\xD6\xD0.mp3"), u"C:\\m\\中.mp3");   // another machine's list
    EXPECT_EQ(ansi.decodePath("\xD6\xD0.mp3"), u"中.mp3");
    EXPECT_EQ(ansi.decodePath("/plain.mp3"), u"/plain.mp3");
    EXPECT_EQ(ansi.decodePath(""), u"");
}

TEST(AnsiPath, keepsValidPartsOfARawName) {
    const FakeAnsi ansi;
    EXPECT_EQ(ansi.decodePath("/中/\xFF.mp3"), u"/中/\xDCFF.mp3");
}

// --- texts that decide together ------------------------------------------------------------------

TEST(AnsiTogether, followsTheMajorityOfTheTextsWithHighBytes) {
    const FakeAnsi ansi;
    EXPECT_EQ(ansi.decodeTogether({"ascii", "中", "国", gbk2}, false),
              (List{u"ascii", u"中", u"国", u"\uFFFD\uFFFD\uFFFD\uFFFD"}));
    EXPECT_EQ(ansi.decodeTogether({"ascii", "ascii", gbk, gbk, "\xC3\xA9"}, false),
              (List{u"ascii", u"ascii", u"中国", u"中国", u"\u8305"}));
}

TEST(AnsiTogether, goesToUtf8OnATie) {
    const FakeAnsi ansi;
    EXPECT_EQ(ansi.decodeTogether({"é", "\xD6\xD0"}, false), (List{u"é", u"\uFFFD\uFFFD"}));
}

TEST(AnsiTogether, handlesNothingAndAsciiAlone) {
    const FakeAnsi ansi;
    EXPECT_EQ(ansi.decodeTogether({}, false), List{});
    EXPECT_EQ(ansi.decodeTogether({"", "a"}, false), (List{u"", u"a"}));
}

TEST(AnsiTogether, dropsAnIncompleteCharacterAtTheEndOfAFixedField) {
    const FakeAnsi ansi;
    const std::string cutUtf8 = "中国"s.substr(0, 5);
    EXPECT_EQ(ansi.decodeTogether({cutUtf8}, true), (List{u"中"}));
    EXPECT_EQ(ansi.decodeTogether({cutUtf8 + "z"}, true).front().substr(0, 1), u"涓"); // no UTF-8
    EXPECT_EQ(ansi.decodeTogether({gbk + "\xD6"}, true), (List{u"中国"}));
    EXPECT_EQ(ansi.decodeTogether({gbk + "\xD6"}, false), (List{u"中国\uFFFD"}));
}

TEST(AnsiTogether, doesNotCountTheIncompleteCharacterAgainstUtf8) {
    const FakeAnsi ansi;
    const std::string cut = "日本語"s.substr(0, 8);
    EXPECT_EQ(ansi.decodeTogether({cut, "\xD6\xD0."}, true), (List{u"日本", u"\uFFFD\uFFFD."}));
    EXPECT_EQ(ansi.decodeTogether({"x\xED\xB2"}, true), (List{u"x"})); // a file-name unit cut short
}

// --- the page behind UTF-8 -----------------------------------------------------------------------

// Each in its page; none is UTF-8.
const std::string shiftJis = "\x93\xFA\x96\x7B\xB1"; // 日本ｱ
const std::string big5 = "\xA4\xA4\xB0\xEA";         // 中國
const std::string korean = "\xC7\xD1\xB1\xDB";       // 한글
const std::string latin = "\xC9toile";               // Étoile

TEST(AnsiPage, isTheOneOfTheUsersLanguageWhereNoneIsSet) {
    struct Case {
        const char *locale;
        int page;
    };
    for (const Case &one : {Case{"ja_JP.UTF-8", 932}, {"ja", 932},          {"ko_KR.UTF-8", 949},
                            {"zh_TW.UTF-8", 950},     {"zh_HK", 950},       {"zh_MO.Big5", 950},
                            {"zh_CN.UTF-8", 936},     {"zh_SG", 936},       {"zh", 936},
                            {"fr_FR.UTF-8", 1252},    {"fr_CA", 1252},      {"de_AT@euro", 1252},
                            {"es_MX", 1252},          {"it_IT", 1252},      {"pt_BR.UTF-8", 1252},
                            {"nl_NL", 1252},          {"da_DK", 1252},      {"fi_FI", 1252},
                            {"is_IS", 1252},          {"nb_NO", 1252},      {"nn_NO", 1252},
                            {"sv_SE", 1252},          {"en_US.UTF-8", 936}, {"ru_RU", 936},
                            {"C.UTF-8", 936},         {"POSIX", 936},       {"", 936},
                            {"jam_JM", 936},          {"_", 936},           {"zh_TWX", 936}})
        EXPECT_EQ(legacyPageOf(one.locale), one.page) << one.locale;
}

TEST(AnsiPage, ofALanguageIsReadBehindUtf8AndNeverWritten) {
    struct Case {
        const char *locale;
        std::string bytes;
        const char16_t *text;
    };
    for (const Case &one : {Case{"ja_JP.UTF-8", shiftJis, u"日本ｱ"},
                            {"ko_KR", korean, u"한글"},
                            {"zh_TW", big5, u"中國"},
                            {"fr_FR", latin, u"Étoile"},
                            {"zh_CN", gbk, u"中国"}}) {
        const auto ansi = makeAnsiText([] { return u""s; }, one.locale);
        EXPECT_EQ(ansi->decode(one.bytes), one.text) << one.locale;
        EXPECT_EQ(ansi->decode("Étoile 中国"), u"Étoile 中国") << one.locale;
        EXPECT_EQ(ansi->decodeTogether({one.bytes, "x"}, false), (List{one.text, u"x"}));
        EXPECT_EQ(ansi->decodeTogether({"é", "中"}, false), (List{u"é", u"中"}));
        EXPECT_EQ(ansi->encode(one.text), toUtf8(one.text)) << one.locale;
        EXPECT_EQ(ansi->decodePath("/m/" + one.bytes), pathFromBytes("/m/" + one.bytes))
            << "the bytes of a name: " << one.locale;
    }
}

TEST(AnsiPage, thatIsSetIsReadBehindUtf8) {
    struct Case {
        int page;
        std::string bytes;
        const char16_t *text;
    };
    for (const Case &one : {Case{936, gbk, u"中国"},
                            {932, shiftJis, u"日本ｱ"},
                            {950, big5, u"中國"},
                            {949, korean, u"한글"},
                            {1252, "\xE9\x80", u"é€"}}) {
        const FakeAnsi ansi(one.page);
        EXPECT_EQ(ansi.decode(one.bytes), one.text) << one.page;
        EXPECT_EQ(ansi.decode("Étoile 中国"), u"Étoile 中国") << one.page;
        EXPECT_EQ(ansi.decodeTogether({"é", one.bytes, one.bytes}, false).at(2), one.text);
        EXPECT_EQ(ansi.decodeTogether({"é", "中", one.bytes}, false).at(1), u"中") << one.page;
        EXPECT_EQ(ansi.decodePath("/m/é 中.mp3"), u"/m/é 中.mp3") << one.page;
    }
    EXPECT_EQ(FakeAnsi(65001).decode(gbk2), u"\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(FakeAnsi(65001).decodeTogether({gbk2, gbk2, "é"}, false),
              (List{u"\uFFFD\uFFFD\uFFFD\uFFFD", u"\uFFFD\uFFFD\uFFFD\uFFFD", u"é"}));
}

TEST(AnsiPage, thatIsSetIsWrittenWhereEveryCharacterFits) {
    EXPECT_EQ(FakeAnsi(936).encode(u"中国"), gbk);
    EXPECT_EQ(FakeAnsi(932).encode(u"日本ｱ"), shiftJis);
    EXPECT_EQ(FakeAnsi(950).encode(u"中國"), big5);
    EXPECT_EQ(FakeAnsi(949).encode(u"한글"), korean);
    EXPECT_EQ(FakeAnsi(1252).encode(u"é€"), "\xE9\x80");
    EXPECT_EQ(FakeAnsi(65001).encode(u"中"), "中");
    EXPECT_EQ(FakeAnsi(936).encode(u"中国\r\nñ"), "中国\r\nñ"); // 936 has no ñ
    EXPECT_EQ(FakeAnsi(936).encode(u"é😀"), "é😀");
    EXPECT_EQ(FakeAnsi(1252).encode(u"é中"), "é中");
    EXPECT_EQ(FakeAnsi(932).encode(u"日¥"), "日¥"); // it would come back as "\"
}

// Some letters of a page are, one behind the other, other letters in UTF-8.
TEST(AnsiPage, isNotWrittenWhereItWouldBeReadAsUtf8) {
    EXPECT_EQ(FakeAnsi(936).encode(u"模"), "模"); // C4 A3, which is "ģ"
    EXPECT_EQ(FakeAnsi(1252).encode(u"Ã©"), "Ã©");
    const FakeAnsi ansi(932);
    EXPECT_EQ(ansi.encode(u"ﾃ｡"), "ﾃ｡"); // C3 A1, which is "á"
    EXPECT_EQ(ansi.encode(u"日本\r\nﾃ｡\r\n"), "日本\r\nﾃ｡\r\n");
    EXPECT_EQ(ansi.encode(u"日本 ﾃ｡\r\n"), "\x93\xFA\x96\x7B \xC3\xA1\r\n");
}

TEST(AnsiPage, givesBackWhateverIsWritten) {
    const std::u16string units = u"中国國日本ｱ月é€ñß模ﾃ｡ĢÃ©¥‾〜～∥한글😀—…";
    for (const int page : {0, 936, 932, 949, 950, 1252, 65001}) {
        const FakeAnsi ansi(page);
        for (std::size_t from = 0; from < units.size(); ++from)
            for (std::size_t size = 1; size <= 3 && from + size <= units.size(); ++size) {
                const std::u16string text = u"/" + units.substr(from, size);
                if ((text.back() & 0xFC00) == 0xD800 || (text[1] & 0xFC00) == 0xDC00)
                    continue; // half a pair
                const std::string bytes = ansi.encode(text);
                EXPECT_EQ(ansi.decode(bytes), text) << page;
                EXPECT_EQ(ansi.decodePath(bytes), text) << page;
                EXPECT_EQ(ansi.decodeTogether({bytes, "x"}, false).front(), text) << page;
                EXPECT_EQ(ansi.byteCount(text), bytes.size()) << page;
            }
    }
}

TEST(AnsiPage, keepsNamesInTheFileNameUnits) {
    for (const int page : {936, 932, 949, 950, 1252, 65001}) {
        const FakeAnsi ansi(page);
        const std::u16string name = u"/音é/\xDC0A\xDCFF.mp3";
        EXPECT_EQ(ansi.encode(name), "/音é/\xED\xB0\x8A\xED\xB3\xBF.mp3") << page;
        EXPECT_EQ(ansi.decodePath(ansi.encode(name)), name) << page;
        EXPECT_EQ(ansi.decode(ansi.encode(name)), name) << page;
    }
    EXPECT_EQ(FakeAnsi(936).decodePath("/m/\xD6\xD0.mp3"), u"/m/中.mp3");
    EXPECT_EQ(FakeAnsi(936).decodePath("/m/\xD6\xD0\xFF.mp3"), u"/m/\xDCD6\xDCD0\xDCFF.mp3");
    EXPECT_EQ(FakeAnsi(65001).decodePath("/m/\xD6\xD0.mp3"), u"/m/\xDCD6\xDCD0.mp3");
}

TEST(AnsiPage, isAskedForOnceAndOnlyWhenATextIsNotAscii) {
    int asked = 0;
    const AnsiConversion ansi([&] {
        ++asked;
        return u" 1252 "s;
    });
    EXPECT_EQ(ansi.encode(u"abc"), "abc");
    EXPECT_EQ(ansi.decode("abc"), u"abc");
    EXPECT_EQ(ansi.byteCount(u"abc"), 3U);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(ansi.encode(u"é"), "\xE9");
    EXPECT_EQ(ansi.decode("\xE9"), u"é");
    EXPECT_EQ(asked, 1);
}

TEST(AnsiPage, isTheLanguagesWhereWhatIsSetIsNoKnownPage) {
    for (const char16_t *page : {u"", u"0", u"1251", u"936x", u"GBK", u"99999999999"}) {
        const AnsiConversion ansi([page] { return std::u16string(page); }, 932);
        EXPECT_EQ(ansi.encode(u"中"), "中");
        EXPECT_EQ(ansi.decode(shiftJis), u"日本ｱ");
    }
}

TEST(AnsiPage, mayBeFoundOutByConvertingText) {
    const AnsiConversion *inside = nullptr;
    const AnsiConversion ansi([&] { return inside->encode(u"é") == "é" ? u"936"s : u""s; });
    inside = &ansi;
    EXPECT_EQ(ansi.encode(u"中"), "\xD6\xD0");
}

// --- cost ----------------------------------------------------------------------------------------

TEST(AnsiCost, thirtyTwoThousandPathsDecodeInAFewMilliseconds) {
    const FakeAnsi ansi;
    const std::string path = "/home/user/Music/Artist Name/An Album of Some Length/01 - 曲目.mp3";
    const auto begin = std::chrono::steady_clock::now();
    std::size_t units = 0;
    for (int i = 0; i < 32767; ++i)
        units += ansi.decodePath(path).size();
    const auto spent = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(units, 32767U * 64U);
    EXPECT_LT(spent, std::chrono::seconds(5)); // usually 0.01, and 0.2 under the sanitizers
}

} // namespace
} // namespace velmora::platform
