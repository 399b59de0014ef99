#include "platform/backends/linux/directory.h"
#include "platform/backends/linux/linux_files.h"

#include "tests/fakes/fake_ansi.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

namespace velmora::platform {
namespace {

using List = std::vector<std::u16string>;

struct Directory : testing::Test {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    LinuxFiles files{ansi};

    std::u16string dir(const std::string &name, SearchFor what = SearchFor::Files) {
        return files.Dir(folder.text(name), what);
    }
};

// --- looking a path up ---------------------------------------------------------------------------

TEST_F(Directory, answersTheNameAsItIsOnDisk) {
    folder.write("Song.LRC", "");
    EXPECT_EQ(dir("Song.LRC"), u"Song.LRC");
    EXPECT_EQ(dir("song.lrc"), u"Song.LRC");
    EXPECT_EQ(dir("SONG.lrc"), u"Song.LRC");
    EXPECT_EQ(dir("song"), u"");
}

TEST_F(Directory, prefersTheExactName) {
    folder.write("song.lrc", "");
    folder.write("Song.lrc", "");
    folder.write("SONG.LRC", "");
    EXPECT_EQ(dir("Song.lrc"), u"Song.lrc");
    EXPECT_EQ(dir("song.lrc"), u"song.lrc");
    EXPECT_EQ(dir("sOnG.lRc"), u"SONG.LRC"); // the first in binary order
}

TEST_F(Directory, ignoresCaseBeyondAscii) {
    folder.write("Été Ёлка.mp3", "");
    EXPECT_EQ(dir("éTÉ ёЛКА.MP3"), u"Été Ёлка.mp3");
}

TEST_F(Directory, takesPatternsForOrdinaryNames) {
    folder.write("a.mp3", "");
    EXPECT_EQ(dir("*.mp3"), u"");
    EXPECT_EQ(dir("?.mp3"), u"");
    folder.write("*.mp3", "");
    EXPECT_EQ(dir("*.mp3"), u"*.mp3");
}

TEST_F(Directory, findsRegularFilesAndLinksToThem) {
    folder.makeFolder("folder");
    folder.write("file", "");
    folder.pipe("pipe");
    folder.link("good", "file");
    folder.link("dangling", "nowhere");
    folder.link("loop", "loop");
    folder.link("tofolder", "folder");
    EXPECT_EQ(dir("file"), u"file");
    EXPECT_EQ(dir("GOOD"), u"good");
    for (const char *name : {"folder", "FOLDER", "pipe", "PIPE", "dangling", "Dangling", "loop",
                             "Loop", "tofolder", "missing"})
        EXPECT_EQ(dir(name), u"") << name;
    EXPECT_EQ(files.Dir(u"/dev/null"), u"");
}

TEST_F(Directory, findsFoldersWhenAskedForThem) {
    folder.makeFolder("Folder");
    folder.write("file", "");
    folder.link("link", "Folder");
    EXPECT_EQ(dir("Folder", SearchFor::Folders), u"Folder");
    EXPECT_EQ(dir("folder", SearchFor::Folders), u"Folder");
    EXPECT_EQ(dir("Folder/", SearchFor::Folders), u"Folder");
    EXPECT_EQ(dir("link", SearchFor::Folders), u"link");
    EXPECT_EQ(dir("file", SearchFor::Folders), u"");
    EXPECT_EQ(files.Dir(u"/", SearchFor::Folders), u"/");
}

TEST_F(Directory, findsAFolderOfAnotherCaseOnlyInItsLastPart) {
    folder.makeFolder("Sub");
    folder.write("Sub/file", "");
    EXPECT_EQ(dir("Sub/FILE"), u"file");
    EXPECT_EQ(dir("sub/file"), u"");
}

TEST_F(Directory, neverFindsTheEmptyPath) {
    EXPECT_EQ(files.Dir(u""), u"");
    EXPECT_EQ(files.Dir(u"", SearchFor::Folders), u"");
    EXPECT_EQ(files.Dir(folder.text() + u"/"), u"");
}

TEST_F(Directory, findsNamesOfAnyBytes) {
    folder.write("\xD6\xD0.MP3", "");
    EXPECT_EQ(dir("\xD6\xD0.mp3"), u"\xDCD6\xDCD0.MP3");
    folder.write("a\nb", "");
    EXPECT_EQ(dir("A\nB"), u"a\xDC0A"
                           u"b");
}

TEST_F(Directory, doesNotFindPathsOfAnotherSystem) {
    EXPECT_EQ(files.Dir(u"C:\\Music\\a.mp3"), u"");
    EXPECT_EQ(files.Dir(u"\\\\server\\share\\a.mp3"), u"");
}

TEST_F(Directory, survivesPathsThatAreTooLong) {
    EXPECT_EQ(dir(std::string(300, 'x')), u"");
    EXPECT_EQ(files.Dir(u"/" + std::u16string(100'000, u'x')), u"");
}

// --- listing -------------------------------------------------------------------------------------

TEST_F(Directory, listsByUpperCasedName) {
    for (const char *name : {"b.mp3", "A.mp3", "a.mp3", "C.mp3", "_x", "Z", "中", "é"})
        folder.write(name, "");
    EXPECT_EQ(files.list(folder.text(), SearchFor::Files, 0),
              (List{u"A.mp3", u"a.mp3", u"b.mp3", u"C.mp3", u"Z", u"_x", u"é", u"中"}));
}

TEST_F(Directory, listsFilesOrFoldersWithoutHiddenNames) {
    folder.write(".hidden", "");
    folder.write("file", "");
    folder.makeFolder("folder");
    folder.makeFolder(".config");
    folder.pipe("pipe");
    folder.link("flink", "file");
    folder.link("dlink", "folder");
    folder.link("dangling", "nowhere");
    EXPECT_EQ(files.list(folder.text(), SearchFor::Files, 0), (List{u"file", u"flink"}));
    EXPECT_EQ(files.list(folder.text(), SearchFor::Folders, 0), (List{u"dlink", u"folder"}));
}

TEST_F(Directory, listsNothingOfWhatIsNoFolder) {
    folder.write("file", "");
    EXPECT_EQ(files.list(folder.text("file"), SearchFor::Files, 0), List{});
    EXPECT_EQ(files.list(folder.text("missing"), SearchFor::Files, 0), List{});
    EXPECT_EQ(files.list(u"", SearchFor::Files, 0), List{});
    EXPECT_EQ(files.list(u"C:\\Music", SearchFor::Files, 0), List{});
}

TEST_F(Directory, entersAFolderOnceInAWalk) {
    folder.makeFolder("sub");
    folder.write("sub/file", "");
    folder.link("again", "sub");
    folder.link("sub/up", "..");
    EXPECT_EQ(files.list(folder.text("sub"), SearchFor::Files, 7), List{u"file"});
    EXPECT_EQ(files.list(folder.text("sub"), SearchFor::Folders, 7), List{u"up"});
    EXPECT_EQ(files.list(folder.text("again"), SearchFor::Files, 7), List{});
    EXPECT_EQ(files.list(folder.text("again"), SearchFor::Folders, 7), List{});
    EXPECT_EQ(files.list(folder.text("sub/up/sub"), SearchFor::Files, 7), List{});
    EXPECT_EQ(files.list(folder.text("again"), SearchFor::Files, 8), List{u"file"});
    EXPECT_EQ(files.list(folder.text("again"), SearchFor::Files, 0), List{u"file"});
    EXPECT_EQ(files.list(folder.text("again"), SearchFor::Files, 0), List{u"file"});
}

TEST_F(Directory, remembersAWalkWhileManyOthersCome) {
    folder.makeFolder("sub");
    folder.write("sub/file", "");
    for (std::uint32_t walk = 100; walk < 200; ++walk) {
        EXPECT_EQ(files.list(folder.text("sub"), SearchFor::Files, walk), List{u"file"});
        EXPECT_EQ(files.list(folder.text("sub"), SearchFor::Files, walk), List{});
    }
}

// Far behind all time stamps, so that every folder counts as long unchanged.
std::time_t muchLater() { return std::time(nullptr) + 3600; }

// The stamps of a folder go on in small steps; in life it has to stand for seconds.
void changeStampOf(const TempFolder &folder) {
    const auto stamp = [&] { return std::filesystem::last_write_time(folder.text()); };
    const auto before = stamp();
    for (int i = 0; i < 1'000'000 && stamp() == before; ++i) {
        folder.write("passing", "");
        std::filesystem::remove(folder.text("passing"));
    }
    ASSERT_NE(stamp(), before);
}

TEST_F(Directory, readsALargeFolderOnceForTheNamesThatItDoesNotHave) {
    for (int i = 0; i < 100; ++i)
        folder.write("song " + std::to_string(i) + ".mp3", "");
    NameSearch names(muchLater);
    for (int seek = 0; seek < 10; ++seek) {
        EXPECT_EQ(names.find(folder.text("song 7.LRC"), SearchFor::Files), u"");
        EXPECT_EQ(names.find(folder.text("song 8.LRC"), SearchFor::Files), u"");
    }
    EXPECT_EQ(names.foldersRead(), 1U);
}

TEST_F(Directory, readsALargeFolderOnceForANameOfAnotherCase) {
    folder.write("Song.lrc", "");
    folder.write("Other.lrc", "");
    NameSearch names(muchLater);
    for (int seek = 0; seek < 10; ++seek) {
        EXPECT_EQ(names.find(folder.text("Song.LRC"), SearchFor::Files), u"Song.lrc");
        EXPECT_EQ(names.find(folder.text("Song.LRC"), SearchFor::Folders), u"");
    }
    EXPECT_LE(names.foldersRead(), 11U); // of a folder of that name it cannot be sure
    const std::size_t read = names.foldersRead();
    EXPECT_EQ(names.find(folder.text("OTHER.LRC"), SearchFor::Files), u"Other.lrc");
    EXPECT_EQ(names.find(folder.text("Song.LRC"), SearchFor::Files), u"Song.lrc");
    EXPECT_EQ(names.foldersRead(), read + 1);
}

TEST_F(Directory, seesWhatCameAndWentBetweenTwoQuestions) {
    folder.write("Gone.lrc", "");
    NameSearch names(muchLater);
    EXPECT_EQ(names.find(folder.text("come.LRC"), SearchFor::Files), u"");
    EXPECT_EQ(names.find(folder.text("GONE.LRC"), SearchFor::Files), u"Gone.lrc");
    changeStampOf(folder);
    folder.write("Come.lrc", "");
    std::filesystem::remove(folder.text("Gone.lrc"));
    EXPECT_EQ(names.find(folder.text("come.LRC"), SearchFor::Files), u"Come.lrc");
    EXPECT_EQ(names.find(folder.text("GONE.LRC"), SearchFor::Files), u"");
}

TEST_F(Directory, trustsNoFolderThatHasJustChangedNorOneForEver) {
    std::time_t now = std::time(nullptr);
    NameSearch names([&] { return now; });
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(names.find(folder.text("a.LRC"), SearchFor::Files), u"");
    EXPECT_EQ(names.foldersRead(), 3U) << "its stamps may not tell of the next change";
    now += 60;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(names.find(folder.text("a.LRC"), SearchFor::Files), u"");
    EXPECT_EQ(names.foldersRead(), 4U);
    now += 600;
    EXPECT_EQ(names.find(folder.text("a.LRC"), SearchFor::Files), u"");
    EXPECT_EQ(names.foldersRead(), 5U);
}

TEST_F(Directory, remembersTheFoldersAskedLast) {
    NameSearch names(muchLater);
    for (int round = 0; round < 3; ++round) {
        for (const char *sub : {"a", "b", "c"}) {
            if (round == 0)
                folder.makeFolder(sub);
            EXPECT_EQ(names.find(folder.text(std::string(sub) + "/x"), SearchFor::Files), u"");
        }
    }
    EXPECT_EQ(names.foldersRead(), 3U);
}

TEST_F(Directory, givesAFolderThatStoodUnchangedItsFilesFromTheFirstReading) {
    folder.makeFolder("sub");
    folder.makeFolder("sub/below");
    for (const char *name : {"sub/b.mp3", "sub/A.mp3", "sub/.hidden"})
        folder.write(name, "");
    FolderWalks walks(muchLater);
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Folders, 3), List{u"below"});
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Files, 3), (List{u"A.mp3", u"b.mp3"}));
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Files, 3), List{}) << "entered before";
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Files, 4), (List{u"A.mp3", u"b.mp3"}));
}

TEST_F(Directory, seesInAWalkWhatCameAndWentBetweenFoldersAndFiles) {
    folder.makeFolder("sub");
    folder.write("sub/goes", "");
    FolderWalks walks(muchLater);
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Folders, 3), List{});
    // The stamps of this disk go on in small steps; in life a folder has to stand for seconds.
    const auto stamp = [&] { return std::filesystem::last_write_time(folder.text("sub")); };
    const auto before = stamp();
    for (int i = 0; i < 1'000'000 && stamp() == before; ++i) {
        folder.write("sub/comes", "");
        std::filesystem::remove(folder.text("sub/comes"));
    }
    ASSERT_NE(stamp(), before);
    folder.write("sub/comes", "");
    std::filesystem::remove(folder.text("sub/goes"));
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Files, 3), List{u"comes"});
}

TEST_F(Directory, asksAgainWhereALinkLeads) {
    folder.makeFolder("sub");
    folder.write("file", "");
    folder.link("sub/link", "../file");
    FolderWalks walks(muchLater);
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Folders, 3), List{});
    std::filesystem::remove(folder.text("file"));
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Files, 3), List{});
}

TEST_F(Directory, findsNoFilesInAFolderThatIsGoneOrReplacedWithinAWalk) {
    folder.makeFolder("sub");
    folder.write("sub/file", "");
    FolderWalks walks(muchLater);
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Folders, 3), List{});
    std::filesystem::rename(folder.text("sub"), folder.text("aside"));
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Files, 3), List{});
    folder.makeFolder("sub");
    folder.write("sub/other", "");
    EXPECT_EQ(walks.list(folder.text("sub"), SearchFor::Files, 3), List{u"other"});
}

TEST_F(Directory, listsNamesOfAnyBytes) {
    folder.write("\xFF.mp3", "");
    folder.write("a\rb", "");
    EXPECT_EQ(files.list(folder.text(), SearchFor::Files, 0), (List{u"a\xDC0D"
                                                                    u"b",
                                                                    u"\xDCFF.mp3"}));
}

TEST_F(Directory, separatesAtTheSlashHere) {
    EXPECT_EQ(files.separator(), u'/');
    EXPECT_EQ(files.separatorOf(u"C:\\a"), u'\\');
    EXPECT_EQ(files.separatorOf(u"/a\\b"), u'/');
    EXPECT_EQ(files.GetShortPathNameA(u"/a b.rmvb"), u"/a%20b.rmvb");
}

} // namespace
} // namespace velmora::platform
