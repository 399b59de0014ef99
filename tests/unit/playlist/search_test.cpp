// Parts of paths, formats, the duplicate test, names.

#include "playlist/Search.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/unit/program_fixture.h"

#include <memory>

namespace velmora {
namespace {

class PathParts : public ProgramFixture {
protected:
    Search &search = app.Search();
};

TEST_F(PathParts, FolderPartEndsWithTheLastSeparator) {
    EXPECT_EQ(search.getFolderPart(u"/music/jazz/a.mp3"), u"/music/jazz/");
    EXPECT_EQ(search.getFolderPart(u"/a.mp3"), u"/");
    EXPECT_EQ(search.getFolderPart(u"/music/jazz/"), u"/music/jazz/");
}

TEST_F(PathParts, FolderPartOfABareNameIsEmpty) {
    EXPECT_EQ(search.getFolderPart(u"a.mp3"), u"");
    EXPECT_EQ(search.getFolderPart(u""), u"");
}

TEST_F(PathParts, FolderPartOfAPathFromAnotherSystemUsesThatSystemsSeparator) {
    EXPECT_EQ(search.getFolderPart(u"C:\\Music\\a.mp3"), u"C:\\Music\\");
    EXPECT_EQ(search.getFolderPart(u"\\\\server\\share\\a.mp3"), u"\\\\server\\share\\");
}

TEST_F(PathParts, ABackslashInALinuxNameDividesNothing) {
    EXPECT_EQ(search.getFolderPart(u"/music/a\\b.mp3"), u"/music/");
}

TEST_F(PathParts, ExtensionIsTheUpperCasedTextBehindTheLastPoint) {
    EXPECT_EQ(search.getExtension(u"C:\\m\\x.Mp3"), u"MP3");
    EXPECT_EQ(search.getExtension(u"/m/a.b.flac"), u"FLAC");
    EXPECT_EQ(search.getExtension(u"/m/x."), u"");
}

TEST_F(PathParts, ExtensionOfAPathWithoutAPointIsEmpty) {
    EXPECT_EQ(search.getExtension(u"/m/song"), u"");
    EXPECT_EQ(search.getExtension(u""), u"");
}

TEST_F(PathParts, ExtensionTakesAPointOfAFolderName) {
    EXPECT_EQ(search.getExtension(u"/m.d/song"), u"D/SONG");
}

TEST_F(PathParts, AnExtensionBeyondAsciiKeepsItsPointBecauseItsBytesAreCounted) {
    EXPECT_EQ(search.getExtension(u"/m/x.é"), u".É");
    EXPECT_EQ(search.getExtension(u"/m/x.音乐"), u".音乐");
}

TEST_F(PathParts, InALegacyPageOfSingleBytesThePointGoes) {
    // In its place, as everything holds a reference to it.
    std::destroy_at(&fake.ansi);
    std::construct_at(&fake.ansi, 1252);
    EXPECT_EQ(search.getExtension(u"/m/x.é"), u"É");
}

TEST_F(PathParts, TwentyFormatsAreSupported) {
    for (const char16_t *format :
         {u"mp3", u"wma", u"wav", u"mid", u"midi", u"ogg",  u"rmvb", u"rm",   u"mpg", u"avi",
          u"wmv", u"flv", u"mp4", u"dat", u"cd",   u"flac", u"tta",  u"aiff", u"au",  u"ape"})
        EXPECT_TRUE(search.isSupportedFormat(std::u16string(u"/m/x.") + format)) << toUtf8(format);
}

TEST_F(PathParts, TheCaseOfAnExtensionDoesNotMatter) {
    EXPECT_TRUE(search.isSupportedFormat(u"x.MIDI"));
    EXPECT_TRUE(search.isSupportedFormat(u"x.mP3"));
}

TEST_F(PathParts, OtherFormatsAreNotSupported) {
    for (const char16_t *path : {u"x.m4a", u"x.jpg", u"x.mp", u"x.mp33", u"x", u"x.", u"mp3",
                                 u"x.MP3|WMA", u"/m.mp3/x", u""})
        EXPECT_FALSE(search.isSupportedFormat(path)) << toUtf8(path);
}

TEST_F(PathParts, APathIsInTheListOnlyWhenItIsEqualInEveryUnit) {
    addRowOnly(u"/m/a.mp3");
    EXPECT_TRUE(search.isInPlayList(u"/m/a.mp3"));
    EXPECT_FALSE(search.isInPlayList(u"/m/A.mp3"));
    EXPECT_FALSE(search.isInPlayList(u"/m/a.mp3 "));
    EXPECT_FALSE(search.isInPlayList(u""));
}

TEST(FileNames, TwoHundredAndTwentyTwoUnitsAreTheLongest) {
    EXPECT_TRUE(saveOrOpenFile::isValidFileName(std::u16string(222, u'a')));
    EXPECT_FALSE(saveOrOpenFile::isValidFileName(std::u16string(223, u'a')));
}

TEST(FileNames, AnEmptyOrBlankNameIsNone) {
    EXPECT_FALSE(saveOrOpenFile::isValidFileName(u""));
    EXPECT_FALSE(saveOrOpenFile::isValidFileName(u" "));
    EXPECT_FALSE(saveOrOpenFile::isValidFileName(u"    "));
    EXPECT_TRUE(saveOrOpenFile::isValidFileName(u" a "));
}

TEST(FileNames, NineCharactersAreForbidden) {
    for (const char16_t unit : std::u16string_view(u"\\/:*?\"<>|"))
        EXPECT_FALSE(saveOrOpenFile::isValidFileName(std::u16string(u"a") + unit + u"b"))
            << static_cast<char>(unit);
}

TEST(FileNames, EverythingElseIsAllowed) {
    EXPECT_TRUE(saveOrOpenFile::isValidFileName(u"晚霞 (live) 'n' 50% #1.mp3"));
    EXPECT_TRUE(saveOrOpenFile::isValidFileName(u"a\tb\n"));
    EXPECT_TRUE(saveOrOpenFile::isValidFileName(u"."));
}

} // namespace
} // namespace velmora
