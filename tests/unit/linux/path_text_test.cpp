#include "text/path_text.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::platform {
namespace {

using namespace std::string_literals;

TEST(PathBytes, areTheNamesOwnWhateverTheyHold) {
    for (const std::string &name :
         {"plain.mp3"s, "曲目 é😀.mp3"s, "\xD6\xD0.mp3"s, "a\nb\rc"s, "\xFF\xFE\x80"s,
          "cut \xE6\x9B"s, "\xED\xA0\x80"s, "\xED\xB2\x80"s, "back\\slash"s, "tab\t"s, "%41 \""s})
        EXPECT_EQ(pathBytes(pathFromBytes(name)), name);
}

TEST(PathBytes, surviveEveryPairOfBytes) {
    for (int first = 1; first < 256; ++first)
        for (int second = 1; second < 256; ++second) {
            const std::string name = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(pathBytes(pathFromBytes(name)), name);
        }
}

TEST(PathFromBytes, makesUnitsOfWhatIsNoTextAndOfLineEnds) {
    EXPECT_EQ(pathFromBytes("/m/\xD6\xD0"), u"/m/\xDCD6\xDCD0");
    EXPECT_EQ(pathFromBytes("a\nb\r"), u"a\xDC0A"
                                       u"b\xDC0D");
    EXPECT_EQ(pathFromBytes("\xE6\x9Bz"), u"\xDCE6\xDC9Bz");
    EXPECT_EQ(pathFromBytes("中"), u"中");
}

TEST(PathBytes, giveTheReplacementCharacterForAHalfSurrogate) {
    EXPECT_EQ(pathBytes(u"a\xD83D"), "a\xEF\xBF\xBD");
    EXPECT_EQ(pathBytes(u"\xDC41"), "\xEF\xBF\xBD"); // a unit that stands for no byte
}

TEST(PathSeparator, isTheBackslashForDrivesAndServersOnly) {
    EXPECT_EQ(pathSeparatorOf(u"C:\\m\\a.mp3"), u'\\');
    EXPECT_EQ(pathSeparatorOf(u"z:a"), u'\\');
    EXPECT_EQ(pathSeparatorOf(u"\\\\server\\share"), u'\\');
    EXPECT_EQ(pathSeparatorOf(u"/m/a\\b.mp3"), u'/');
    EXPECT_EQ(pathSeparatorOf(u"\\one"), u'/');
    EXPECT_EQ(pathSeparatorOf(u"1:\\x"), u'/');
    EXPECT_EQ(pathSeparatorOf(u""), u'/');
    EXPECT_EQ(pathSeparatorOf(u"a.mp3"), u'/');
}

TEST(PathParts, divideAtTheLastSeparator) {
    EXPECT_EQ(baseName(u"/m/a\\b.mp3"), u"a\\b.mp3");
    EXPECT_EQ(baseName(u"C:\\m\\a/b.mp3"), u"a/b.mp3");
    EXPECT_EQ(baseName(u"a.mp3"), u"a.mp3");
    EXPECT_EQ(folderPart(u"/m/a.mp3"), u"/m/");
    EXPECT_EQ(folderPart(u"a.mp3"), u"");
    EXPECT_EQ(folderPart(u"/a"), u"/");
    EXPECT_EQ(baseName(u"/m/"), u"");
}

TEST(TypedFolder, beginsAtHomeBehindATilde) {
    EXPECT_EQ(typedFolder(u"~/Music/lists", u"/home/user"), u"/home/user/Music/lists");
    EXPECT_EQ(typedFolder(u"~/", u"/home/user"), u"/home/user/");
    EXPECT_EQ(typedFolder(u"~", u"/home/user"), u"/home/user");
}

TEST(TypedFolder, isTheTextItselfOtherwise) {
    for (const char16_t *text : {u"", u"/music", u"music", u"~user/music", u"./~/music", u"/~/x",
                                 u" ~/music", u"~~", u"C:\\~"})
        EXPECT_EQ(typedFolder(text, u"/home/user"), text);
    EXPECT_EQ(typedFolder(u"~/music", u""), u"~/music");
}

TEST(ShortPath, needsNoQuotingAndIsPlainAscii) {
    EXPECT_EQ(shortPath(u"/m/a.mp3"), u"/m/a.mp3");
    EXPECT_EQ(shortPath(u"/my music/50% \"live\".mp3"), u"/my%20music/50%25%20%22live%22.mp3");
    EXPECT_EQ(shortPath(u"/曲.mp3"), u"/%E6%9B%B2.mp3");
    EXPECT_EQ(shortPath(u"/\xDCFF\xDC0A\t\x7F.mp3"), u"/%FF%0A%09%7F.mp3");
    EXPECT_EQ(shortPath(u"/don't (1) [2] #3 & x=y.rmvb"),
              u"/don't%20(1)%20[2]%20#3%20&%20x=y.rmvb");
}

TEST(ShortPath, hasNoLengthLimitAndKeepsExtensionsWhole) {
    const std::u16string name = u"/" + std::u16string(5000, u'中') + u".flac";
    const std::u16string path = shortPath(name);
    EXPECT_EQ(path.size(), 1U + 5000U * 9U + 5U);
    EXPECT_EQ(path.substr(path.size() - 5), u".flac");
}

TEST(ShortPath, leadsBackToTheSameBytes) {
    for (const std::string &name : {"/a b%20c"s, "/\xFF\n\"%"s, "/曲 目"s, "/%zz%4"s, "/100%"s})
        EXPECT_EQ(decodeShortPath(shortPath(pathFromBytes(name))), name);
}

TEST(DecodeShortPath, escapesBecomeBytes) {
    EXPECT_EQ(decodeShortPath(u"/m/My%20Song.mp3"), "/m/My Song.mp3");
    EXPECT_EQ(decodeShortPath(u"/%E6%AD%8C.mp3"), "/\xE6\xAD\x8C.mp3");
    EXPECT_EQ(decodeShortPath(u"/%ff%0a%7F"), "/\xFF\n\x7F");
}

TEST(DecodeShortPath, aPercentSignIsItselfEscaped) {
    EXPECT_EQ(decodeShortPath(u"/100%25.mp3"), "/100%.mp3");
    EXPECT_EQ(decodeShortPath(u"/a%2520b"), "/a%20b"); // decoded once, never twice
}

TEST(DecodeShortPath, otherPrintableCharactersStandForThemselves) {
    EXPECT_EQ(decodeShortPath(u"/a'b`c\\d$(e);&*?~!"), "/a'b`c\\d$(e);&*?~!");
}

TEST(DecodeShortPath, aHangingPercentSignIsNoPath) {
    for (const auto *text : {u"/a%", u"/a%2", u"/a%zz", u"/a%2 ", u"%", u"/a%%20"})
        EXPECT_EQ(decodeShortPath(text), std::nullopt);
}

TEST(DecodeShortPath, aNulByteIsNoPath) { EXPECT_EQ(decodeShortPath(u"/a%00b"), std::nullopt); }

TEST(DecodeShortPath, anUnescapedCharacterOutsideAsciiIsNoPath) {
    EXPECT_EQ(decodeShortPath(u"/歌.mp3"), std::nullopt);
    EXPECT_EQ(decodeShortPath(u"/a\nb"), std::nullopt);
    EXPECT_EQ(decodeShortPath(u"/a b"), std::nullopt);
    EXPECT_EQ(decodeShortPath(u"/a\u007Fb"), std::nullopt);
    EXPECT_EQ(decodeShortPath(u""), std::nullopt);
}

} // namespace
} // namespace velmora::platform
