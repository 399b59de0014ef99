#include "catalogue/lyric_file.h"

#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

TEST(ReadLyric, GivesEveryLineTheSameEnd) {
    EXPECT_EQ(readLyric("[00:01.00]a\n[00:02.00]b\r[00:03.00]c\r\nd")->bytes,
              "[00:01.00]a\r\n[00:02.00]b\r\n[00:03.00]c\r\nd\r\n");
}

TEST(ReadLyric, GivesMinutesOfOneDigitTheirSecond) {
    EXPECT_EQ(readLyric("[1:02.30][2:03]x[12:00.00]")->bytes, "[01:02.30][02:03]x[12:00.00]\r\n");
    EXPECT_EQ(readLyric("[a:02][:02][1:x]")->bytes, "[a:02][:02][1:x]\r\n");
}

TEST(ReadLyric, TakesMarksAwayAndEveryEncodingToOne) {
    EXPECT_EQ(readLyric("\xEF\xBB\xBF[00:01.00]\xE4\xB8\xAD")->bytes, "[00:01.00]\xE4\xB8\xAD\r\n");
    EXPECT_EQ(readLyric("\xEF\xBB\xBF\xEF\xBB\xBFx")->bytes, "x\r\n") << "marked twice";
    EXPECT_EQ(readLyric("[00:01.00]\xD6\xD0")->bytes, "[00:01.00]\xE4\xB8\xAD\r\n");
    EXPECT_EQ(readLyric(std::string("\xFF\xFE[\0\x2D\x4E", 6))->bytes, "[\xE4\xB8\xAD\r\n");
    EXPECT_EQ(readLyric(std::string("\xFE\xFF\0[\x4E\x2D", 6))->bytes, "[\xE4\xB8\xAD\r\n");
}

TEST(ReadLyric, FindsTitleAndArtist) {
    const auto lyric = readLyric(" [TI: A  Title ] \n[ar:Somebody]\n[ti:Other]\n[al:x]\n");
    EXPECT_EQ(lyric->title, u"A Title");
    EXPECT_EQ(lyric->artist, u"Somebody");
    EXPECT_EQ(readLyric("[ti:]\n[ti:\nx")->title, u"");
}

TEST(ReadLyric, GivesNothingForNothing) {
    EXPECT_FALSE(readLyric("").has_value());
    EXPECT_FALSE(readLyric(" \r\n\t\n").has_value());
    EXPECT_FALSE(readLyric(std::string("\0\0", 2)).has_value());
}

} // namespace

} // namespace velmora::catalogue
