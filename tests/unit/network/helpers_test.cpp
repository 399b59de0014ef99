// Addresses, pages, INI values, sizes, folders and bytes.

#include "base/run_time_error.h"
#include "network/WininetDownClass.h"
#include "network/check_Network.h"
#include "network/controlINI.h"
#include "network/dataTransform.h"
#include "network/toUrlString.h"
#include "network/webPage.h"
#include "tests/unit/network/download_fixture.h"

namespace velmora {
namespace {

class Helpers : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        net.log.clear();
    }
};

// --- words in addresses -------------------------------------------------------------------------

TEST_F(Helpers, everyByteOfAWordIsEncoded) {
    EXPECT_EQ(toUrlString(fake.ansi, u""), u"");
    EXPECT_EQ(toUrlString(fake.ansi, u"Az0 %-"), u"%41%7A%30%20%25%2D");
    EXPECT_EQ(toUrlString(fake.ansi, u"歌"), u"%E6%AD%8C");
    EXPECT_EQ(toUrlString(fakes::FakeAnsi(936), u"歌词"), u"%B8%E8%B4%CA");
}

TEST_F(Helpers, aByteBelow16HasOneDigit) {
    EXPECT_EQ(toUrlString(fake.ansi, u"\r\n\x01\x0F\x10"), u"%D%A%1%F%10");
    EXPECT_EQ(toUrlString(fake.ansi, std::u16string(1, u'\0')), u"%0");
}

// --- online -------------------------------------------------------------------------------------

TEST_F(Helpers, theMachineIsOnlineAboveZero) {
    for (const auto &[answer, online] : {std::pair{1, true}, {2, true}, {0, false}, {-1, false}}) {
        net.connectedState = answer;
        EXPECT_EQ(check_Network(net), online);
    }
}

// --- pages --------------------------------------------------------------------------------------

TEST_F(Helpers, aPageIsFetchedBehindOnePumpAndReadAsGb2312) {
    net.setPage(u"http://a/", "\xB8\xE8 x");
    EXPECT_EQ(getWebPage(platform, u"http://a/"), u"歌 x");
    EXPECT_EQ(net.log, (Lines{u"pump", u"XmlHttpGet http://a/", u"decodeCharset GB2312"}));
}

TEST_F(Helpers, aPageThatIsNotCompleteIsEmpty) {
    net.addIncomplete(u"http://a/");
    EXPECT_EQ(getWebPage(platform, u"http://a/"), u"");
    EXPECT_EQ(net.log, (Lines{u"pump", u"XmlHttpGet http://a/"}));
}

TEST_F(Helpers, aPageThatCannotBeAskedForRaises) {
    EXPECT_THROW(getWebPage(platform, u"http://a/"), RunTimeError);
    net.setPage(u"http://a/", "x");
    net.failNext("decodeCharset");
    EXPECT_THROW(getWebPage(platform, u"http://a/"), RunTimeError);
}

// --- counting -----------------------------------------------------------------------------------

TEST_F(Helpers, countingPumpsOnceAndBeginsAtTheSecondUnit) {
    EXPECT_EQ(countText(fake.windows, u"aXaXa", u"a"), 2);
    EXPECT_EQ(net.log, (Lines{u"pump"}));
    EXPECT_EQ(countText(fake.windows, u"a", u"a"), 0);
    EXPECT_EQ(countText(fake.windows, u"", u"a"), 0);
    EXPECT_EQ(net.log.size(), 3U);
    EXPECT_EQ(countText(fake.windows, u"http://host", u"/"), 2);
    EXPECT_EQ(countText(fake.windows, u"http://host/", u"/"), 3);
}

TEST_F(Helpers, countingKeepsCaseAndTakesOverlappingHits) {
    EXPECT_EQ(countText(fake.windows, u"xHREFhrefHREF", u"HREF"), 2);
    EXPECT_EQ(countText(fake.windows, u"aaaaa", u"aa"), 3);
    EXPECT_EQ(countText(fake.windows, u"abc", u"abcd"), 0);
}

TEST_F(Helpers, countingTellsPlacesFromOne) {
    std::vector<std::int32_t> positions{7, 7, 7};
    EXPECT_EQ(countText(fake.windows, u"/a//", u"/", &positions), 2);
    EXPECT_EQ(positions, (std::vector<std::int32_t>{3, 4}));
    EXPECT_EQ(countText(fake.windows, u"", u"/", &positions), 0);
    EXPECT_TRUE(positions.empty());
}

TEST_F(Helpers, countingAnEmptyTextEndsWithTheText) {
    EXPECT_EQ(countText(fake.windows, u"abc", u""), 2);
}

// --- downloads ----------------------------------------------------------------------------------

TEST_F(Helpers, aDownloadSucceedsExactlyWhenTheSystemSaysZero) {
    net.setDownload(u"http://a/f", "bytes");
    EXPECT_TRUE(downloadToLocal(platform, u"http://a/f", target));
    EXPECT_EQ(net.log, (Lines{u"DeleteUrlCacheEntryA http://a/f", u"pump",
                              u"URLDownloadToFileA http://a/f " + target, u"file writeWhole"}));
    EXPECT_EQ(files.contents(target), "bytes");
    EXPECT_FALSE(downloadToLocal(platform, u"http://a/g", target));
    EXPECT_FALSE(downloadToLocal(platform, u"", target));
    EXPECT_EQ(files.contents(target), "bytes");
}

TEST_F(Helpers, aDownloadThatRaisesFails) {
    net.failNext("DeleteUrlCacheEntryA");
    EXPECT_FALSE(downloadToLocal(platform, u"http://a/f", target));
    EXPECT_EQ(net.log, (Lines{u"DeleteUrlCacheEntryA http://a/f"}));
}

// --- INI values ---------------------------------------------------------------------------------

class IniValue : public DownloadFixture {
protected:
    const std::u16string file = u"/home/user/cache/a.ini";
    std::u16string read(std::u16string_view key,
                        std::optional<std::u16string_view> otherwise = std::nullopt) {
        return iniValue(fake.profiles, file, u"s", key, otherwise);
    }
};

TEST_F(IniValue, isReadThroughABufferOf1000Units) {
    files.addFile(file, "[s]\r\nk=v\r\nl=" + std::string(1200, 'x') + "\r\n");
    EXPECT_EQ(read(u"k"), u"v");
    EXPECT_EQ(fake.profiles.log, (Lines{u"read s k  1000 " + file}));
    EXPECT_EQ(read(u"l"), std::u16string(999, u'x'));
}

TEST_F(IniValue, losesItsNuls) {
    files.addFile(file, std::string("[s]\r\nk=a\0b\0\r\n", 14));
    EXPECT_EQ(read(u"k"), u"ab");
}

TEST_F(IniValue, ofAnEmptyKeyTakesTheKeyOut) {
    files.addFile(file, "[s]\r\nk=\r\nl=1\r\n");
    EXPECT_EQ(read(u"k"), u"");
    EXPECT_EQ(files.contents(file), "[s]\r\nl=1\r\n");
}

TEST_F(IniValue, thatIsMissingWithoutADefaultChangesNothing) {
    files.addFile(file, "[s]\r\nl=1\r\n");
    files.clearChanges();
    EXPECT_EQ(read(u"k"), u"");
    EXPECT_TRUE(files.changes().empty());
    EXPECT_EQ(iniValue(fake.profiles, u"/home/user/cache/none.ini", u"s", u"k", std::nullopt), u"");
    EXPECT_FALSE(files.hasFile(u"/home/user/cache/none.ini"));
}

TEST_F(IniValue, thatIsMissingWritesItsDefaultIntoTheFile) {
    files.addFile(file, "[s]\r\nl=1\r\n");
    EXPECT_EQ(read(u"k", u"std"), u"std");
    EXPECT_EQ(files.contents(file), "[s]\r\nl=1\r\nk=std\r\n");
    EXPECT_EQ(read(u"k"), u"std");
}

// --- sizes --------------------------------------------------------------------------------------

TEST_F(Helpers, aSizeIsRoundedAndSaidByTheSystem) {
    EXPECT_EQ(formatByteSize(fake.profiles, 0), u"0 bytes");
    EXPECT_EQ(formatByteSize(fake.profiles, 1340.4), u"1.30 KB");
    EXPECT_EQ(formatByteSize(fake.profiles, 2.5), u"2 bytes"); // half to even
    EXPECT_EQ(formatByteSize(fake.profiles, 2147483647.0), u"1.99 GB");
    EXPECT_EQ(fake.profiles.log, (Lines{u"size 0", u"size 1340", u"size 2", u"size 2147483647"}));
}

TEST_F(Helpers, aSizeBeyond32BitsIsEmpty) {
    EXPECT_EQ(formatByteSize(fake.profiles, 2147483648.0), u"");
    EXPECT_EQ(formatByteSize(fake.profiles, 1e300), u"");
    EXPECT_EQ(formatByteSize(fake.profiles, std::numeric_limits<double>::quiet_NaN()), u"");
    EXPECT_EQ(fake.profiles.log, Lines());
}

// --- folders ------------------------------------------------------------------------------------

class Folders : public DownloadFixture {
protected:
    bool make(std::u16string path, std::u16string_view after = {}) {
        const std::u16string before = path;
        files.clearChanges();
        const bool result = makeDirectoryChain(files, path);
        EXPECT_EQ(path, after.empty() ? before : after);
        return result;
    }
};

TEST_F(Folders, areMadeOneByOneAboveAFile) {
    EXPECT_TRUE(make(u"/home/user/a/b c/d.mp3"));
    EXPECT_EQ(files.changes(), (Lines{u"make /home/user/a", u"make /home/user/a/b c"}));
    EXPECT_TRUE(make(u"/home/user/a/b c/d.mp3"));
    EXPECT_EQ(files.changes(), Lines());
}

TEST_F(Folders, ofAPathWithoutADotAreAllOfIt) {
    EXPECT_TRUE(make(u"/home/user/a/b"));
    EXPECT_TRUE(files.hasFolder(u"/home/user/a/b"));
    EXPECT_TRUE(make(u"/home/user/c/d/"));
    EXPECT_TRUE(files.hasFolder(u"/home/user/c/d"));
}

TEST_F(Folders, endAboveTheLastPieceWhereverTheDotIs) {
    EXPECT_TRUE(make(u"/home/user/v1.0/name"));
    EXPECT_TRUE(files.hasFolder(u"/home/user/v1.0"));
    EXPECT_FALSE(files.hasFolder(u"/home/user/v1.0/name"));
}

TEST_F(Folders, areSpeltWithoutDoubledSeparatorsAndNuls) {
    EXPECT_TRUE(make(std::u16string(u"//home//user/x\0y/d.mp3", 22), u"/home/user/xy/d.mp3"));
    EXPECT_TRUE(files.hasFolder(u"/home/user/xy"));
    // In one pass, the separators before the NULs.
    EXPECT_TRUE(make(std::u16string(u"/home/user///z/\0/d", 18), u"/home/user//z//d"));
    // A backslash is part of a name here.
    EXPECT_TRUE(make(u"/home/user/p\\q/d.mp3"));
    EXPECT_TRUE(files.hasFolder(u"/home/user/p\\q"));
}

TEST_F(Folders, ofARelativePathAreRefused) {
    for (const std::u16string_view path : {u"", u"a/b.mp3", u"b.mp3", u"ab:c/d.mp3"}) {
        EXPECT_FALSE(make(std::u16string(path)));
        EXPECT_EQ(files.changes(), Lines());
    }
    EXPECT_FALSE(make(u"\\\\server\\share\\x.mp3", u"\\server\\share\\x.mp3"));
}

TEST_F(Folders, countFromTheDriveWhereThereIsOne) {
    files.addFolder(u"C:\\");
    std::u16string path = u"C:/a//b\\c.mp3";
    EXPECT_TRUE(makeDirectoryChain(files, path));
    EXPECT_EQ(path, u"C:\\a\\b\\c.mp3");
    EXPECT_EQ(files.changes(), (Lines{u"make C:\\a", u"make C:\\a\\b"}));
}

TEST_F(Folders, ofADriveWithoutASeparatorCountFromItsRoot) {
    files.addFolder(u"C:\\");
    std::u16string path = u"C:ab\\c\\";
    EXPECT_TRUE(makeDirectoryChain(files, path));
    EXPECT_EQ(files.changes(), (Lines{u"make C:\\ab", u"make C:\\ab\\c"}));
    files.clearChanges();
    path = u"C:\\";
    EXPECT_TRUE(makeDirectoryChain(files, path));
    EXPECT_EQ(files.changes(), Lines());
}

TEST_F(Folders, thatAreThereAreNotMadeAgain) {
    files.addFolder(u"/home/user/a");
    EXPECT_TRUE(make(u"/home/user/a/b/"));
    EXPECT_EQ(files.calls("MkDir"), 1);
}

TEST_F(Folders, thatCannotBeMadeAreStillASuccess) {
    files.setReadOnly(u"/home/user");
    EXPECT_TRUE(make(u"/home/user/a/b.mp3"));
    EXPECT_FALSE(files.hasFolder(u"/home/user/a"));
    files.setReadOnly(u"/home/user", false);
    files.addFile(u"/home/user/f");
    EXPECT_TRUE(make(u"/home/user/f/b.mp3"));
}

TEST_F(Folders, ofAnotherCaseAreOtherFolders) {
    files.addFolder(u"/home/user/Music");
    EXPECT_TRUE(make(u"/home/user/music/b.mp3"));
    EXPECT_TRUE(files.hasFolder(u"/home/user/music"));
}

TEST_F(Folders, ofTheRootAreThere) {
    EXPECT_TRUE(make(u"/x.mp3"));
    EXPECT_TRUE(make(u"/"));
    EXPECT_EQ(files.changes(), Lines());
}

// --- bytes --------------------------------------------------------------------------------------

TEST_F(Helpers, anArrayIsEmptyOnlyWhenItWasNeverAllocated) {
    EXPECT_TRUE(isBytesEmpty(ByteArray()));
    EXPECT_FALSE(isBytesEmpty(ByteArray("")));
    EXPECT_FALSE(isBytesEmpty(ByteArray("x")));
}

TEST_F(Helpers, aFreshArrayBecomesTheBytesOfTheText) {
    ByteArray bytes;
    std::u16string text = u"a歌";
    textToBytes(fake.ansi, bytes, text);
    EXPECT_EQ(bytes, ByteArray("a\xE6\xAD\x8C"));
    EXPECT_EQ(text, u"a歌");
}

TEST_F(Helpers, anArrayKeepsItsSizeAndAShortTextIsFilledUp) {
    ByteArray bytes(std::string(5, 'x'));
    std::u16string text = u"ab";
    textToBytes(fake.ansi, bytes, text);
    EXPECT_EQ(bytes, ByteArray(std::string("ab\0\0\0", 5)));
    EXPECT_EQ(text, std::u16string(u"ab\0\0\0", 5));
    text = u"abcdefgh";
    textToBytes(fake.ansi, bytes, text);
    EXPECT_EQ(bytes, ByteArray("abcde"));
    EXPECT_EQ(text, u"abcdefgh");
}

TEST_F(Helpers, bytesAreReadInTheCodePageInForce) {
    EXPECT_EQ(bytesToText(fake.ansi, ByteArray("a\xE6\xAD\x8C")), u"a歌");
    EXPECT_EQ(bytesToText(fakes::FakeAnsi(936), ByteArray("\xB8\xE8")), u"歌");
    EXPECT_EQ(bytesToText(fake.ansi, ByteArray()), u"");
}

} // namespace
} // namespace velmora
