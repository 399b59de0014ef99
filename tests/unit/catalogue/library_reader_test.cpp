#include "catalogue/library_reader.h"

#include "base/text.h"
#include "music_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Reads as the real one does, counts, and fails on request.
class CountingReader final : public TagReader {
public:
    std::optional<Tags> tagsOf(const OpenFile &file) override {
        ++read;
        if (raises)
            throw std::bad_alloc();
        return knows ? std::optional(catalogue::tagsOf(file)) : std::nullopt;
    }
    int read = 0;
    bool knows = true;
    bool raises = false;
};

class LibraryReaderTest : public ::testing::Test {
protected:
    void SetUp() override {
        music_.putTagged("a/one.mp3", "One", "Singer", "");
        music_.putTagged("b/two.mp3", "Two", "", "");
        music_.put("b/two.lrc", "[00:01.00]x");
        makeOld();
    }
    // So long ago that nothing is thought of as changing still.
    void makeOld() {
        namespace fs = std::filesystem;
        const auto old = fs::file_time_type::clock::now() - std::chrono::hours(1);
        for (const auto &entry : fs::recursive_directory_iterator(music_.path()))
            fs::last_write_time(entry.path(), old);
        fs::last_write_time(music_.path(), old);
    }
    static std::vector<std::string> pathsOf(const Library &library) {
        std::vector<std::string> paths;
        for (const auto &item : library.items())
            paths.push_back(item->file.path);
        return paths;
    }
    // What a start of the program would find.
    std::shared_ptr<const Library> afterAStart() {
        KnownTags known((music_ / ".known.sqlite").string());
        tags_.read = 0;
        return LibraryReader(folder_, tags_, &known).read();
    }
    std::vector<std::string> keptPaths() {
        KnownTags known((music_ / ".known.sqlite").string());
        std::vector<std::string> paths;
        for (const KnownFile &file : known.load())
            paths.push_back(file.file.path);
        return paths;
    }
    void damage(const std::string &bytes) { music_.put(".known.sqlite", bytes); }

    MusicFolder music_;
    Folder folder_{music_.path()};
    CountingReader tags_;
};

TEST_F(LibraryReaderTest, OpensNoFileTwice) {
    LibraryReader reader(folder_, tags_, nullptr);
    const auto first = reader.read();
    EXPECT_EQ(tags_.read, 2);
    EXPECT_EQ(reader.read(), first) << "the same one where nothing has changed";
    music_.put("c.mp3", "x");
    const auto second = reader.read();
    EXPECT_EQ(tags_.read, 3);
    EXPECT_THAT(pathsOf(*second), ElementsAre("a/one.mp3", "b/two.lrc", "b/two.mp3", "c.mp3"));
    EXPECT_THAT(pathsOf(*first), ElementsAre("a/one.mp3", "b/two.lrc", "b/two.mp3"))
        << "whoever still answers from it can go on";
    EXPECT_EQ(second->searchSongs(u"one").all, 1U);
    EXPECT_EQ(second->searchLyrics(u"two").all, 1U);
}

TEST_F(LibraryReaderTest, AsksTheFoldersAloneWhetherAnythingCameOrWent) {
    const Listing listing = folder_.list();
    EXPECT_EQ(listing.folders.size(), 3U);
    EXPECT_TRUE(folder_.same(listing));
    music_.put("b/three.mp3", "x");
    EXPECT_FALSE(folder_.same(listing));
    EXPECT_FALSE(folder_.same(folder_.list())) << "right behind a change another has its time";
    makeOld();
    const Listing later = folder_.list();
    EXPECT_TRUE(folder_.same(later));
    std::filesystem::remove_all(music_ / "a");
    EXPECT_FALSE(folder_.same(later));
}

TEST_F(LibraryReaderTest, LeavesAFileAsItWasWhileItIsWritten) {
    LibraryReader reader(folder_, tags_, nullptr);
    reader.read();
    const int before = tags_.read;
    music_.putTagged("a/one.mp3", "Half", "", "");
    namespace fs = std::filesystem;
    fs::last_write_time(music_ / "a/one.mp3",
                        fs::file_time_type::clock::now() + std::chrono::milliseconds(0));
    const auto meanwhile = reader.read();
    // A machine that is so busy that the second is over reads it, which is right then.
    if (tags_.read == before)
        EXPECT_EQ(meanwhile->searchSongs(u"one").all, 1U);
    fs::last_write_time(music_ / "a/one.mp3",
                        fs::file_time_type::clock::now() - std::chrono::seconds(30));
    EXPECT_EQ(reader.read()->searchSongs(u"half").all, 1U);
}

TEST_F(LibraryReaderTest, KnowsEverythingAgainAfterAStart) {
    EXPECT_EQ(afterAStart()->songs().size(), 2U);
    EXPECT_EQ(tags_.read, 2);
    const auto again = afterAStart();
    EXPECT_EQ(tags_.read, 0);
    EXPECT_EQ(again->searchSongs(u"one singer").all, 1U);
    EXPECT_EQ(again->searchLyrics(u"two").all, 1U);
}

TEST_F(LibraryReaderTest, ShowsPartsOfWhatIsOpenedAndNoneOfWhatIsKnownAgain) {
    for (int i = 0; i < 2500; ++i)
        music_.put("many/" + std::to_string(i) + ".mp3", "x");
    makeOld();
    afterAStart();
    int parts = 0;
    ReadingWatch watch;
    watch.part = [&](const auto &) { ++parts; };
    KnownTags known((music_ / ".known.sqlite").string());
    LibraryReader reader(folder_, tags_, &known);
    EXPECT_EQ(reader.read(watch)->songs().size(), 2502U);
    EXPECT_EQ(parts, 0);
}

TEST_F(LibraryReaderTest, ForgetsWhatWentInFrontAndBehindAllThatIsThere) {
    music_.put("0 first.mp3", "x");
    music_.put("z last.mp3", "x");
    makeOld();
    afterAStart();
    std::filesystem::remove(music_ / "0 first.mp3");
    std::filesystem::remove(music_ / "z last.mp3");
    {
        KnownTags known((music_ / ".known.sqlite").string());
        LibraryReader reader(folder_, tags_, &known);
        EXPECT_THAT(pathsOf(*reader.read()), ElementsAre("a/one.mp3", "b/two.lrc", "b/two.mp3"));
        std::filesystem::remove(music_ / "b/two.mp3");
        EXPECT_THAT(pathsOf(*reader.read()), ElementsAre("a/one.mp3", "b/two.lrc"))
            << "and what went while it ran";
    }
    EXPECT_THAT(keptPaths(), ElementsAre("a/one.mp3", "b/two.lrc"));
}

TEST_F(LibraryReaderTest, ReadsAfterAStartWhatHasChangedAndForgetsWhatWent) {
    afterAStart();
    music_.putTagged("a/one.mp3", "Another", "", "");
    std::filesystem::remove(music_ / "b/two.mp3");
    makeOld();
    std::filesystem::last_write_time(music_ / "a/one.mp3",
                                     std::filesystem::file_time_type::clock::now() -
                                         std::chrono::minutes(10));
    const auto library = afterAStart();
    EXPECT_EQ(tags_.read, 1);
    EXPECT_EQ(library->searchSongs(u"another").all, 1U);
    EXPECT_THAT(pathsOf(*library), ElementsAre("a/one.mp3", "b/two.lrc"));
    KnownTags known((music_ / ".known.sqlite").string());
    EXPECT_EQ(known.load().size(), 2U);
}

TEST_F(LibraryReaderTest, LeavesAFileOfSomethingElseAsItIs) {
    const std::string path = music_ / ".known.sqlite";
    for (const std::string &bytes :
         {std::string("no database"), std::string("SQLite format 3\0", 16),
          std::string(100'000, '\xFF'),
          std::string("SQLite format 3\0", 16) + std::string(4080, '\0')}) {
        damage(bytes);
        EXPECT_FALSE(KnownTags::mayUse(path));
        EXPECT_EQ(afterAStart()->songs().size(), 2U);
        EXPECT_EQ(tags_.read, 2);
        std::ifstream file(path, std::ios::binary);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), bytes);
    }
}

TEST_F(LibraryReaderTest, TakesAnEmptyFileAndItsOwn) {
    damage("");
    EXPECT_EQ(afterAStart()->songs().size(), 2U);
    EXPECT_EQ(tags_.read, 2);
    EXPECT_TRUE(KnownTags::mayUse((music_ / ".known.sqlite").string()));
    afterAStart();
    EXPECT_EQ(tags_.read, 0) << "a sound one was begun in its place";
}

TEST_F(LibraryReaderTest, HasANameOfItsOwnInTheCacheFolderAndClearsItOfWhatIsNoneOfIts) {
    ::unsetenv("CACHE_DIRECTORY");
    ::setenv("XDG_CACHE_HOME", (music_ / "cache").c_str(), 1);
    const std::string path = knownTagsPath(music_ / "a");
    std::ofstream(path) << "damaged from its first byte";
    EXPECT_EQ(knownTagsPath(music_ / "a"), path);
    EXPECT_FALSE(std::filesystem::exists(path));
    ::unsetenv("XDG_CACHE_HOME");
}

TEST_F(LibraryReaderTest, ThrowsAwayADatabaseWithADamagedPage) {
    afterAStart();
    std::fstream file(music_ / ".known.sqlite", std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(4096);
    file << std::string(200, '\xEE');
    file.close();
    EXPECT_EQ(afterAStart()->searchSongs(u"one singer").all, 1U);
    EXPECT_EQ(tags_.read, 2);
}

TEST_F(LibraryReaderTest, ServesWhereNothingCanBeKept) {
    KnownTags nowhere("/nowhere/at/all.sqlite");
    EXPECT_EQ(LibraryReader(folder_, tags_, &nowhere).read()->songs().size(), 2U);
    KnownTags none("");
    EXPECT_EQ(LibraryReader(folder_, tags_, &none).read()->songs().size(), 2U);
}

TEST_F(LibraryReaderTest, KeepsNothingOfAFileThatCouldNotBeReadNow) {
    tags_.knows = false;
    EXPECT_EQ(afterAStart()->searchSongs(u"one").all, 1U) << "known by its name";
    tags_.knows = true;
    EXPECT_EQ(afterAStart()->searchSongs(u"one singer").all, 1U);
}

TEST_F(LibraryReaderTest, ServesTheOldLibraryWhereTheNextOneFails) {
    LibraryReader reader(folder_, tags_, nullptr);
    const auto first = reader.read();
    music_.put("c.mp3", "x");
    tags_.raises = true;
    EXPECT_THROW(reader.read(), std::bad_alloc);
    EXPECT_EQ(first->searchSongs(u"one singer").all, 1U);
    tags_.raises = false;
    EXPECT_EQ(reader.read()->songs().size(), 3U);
}

TEST_F(LibraryReaderTest, EndsBetweenTwoFilesAndSaysHowFarItIs) {
    for (int i = 0; i < 2500; ++i)
        music_.put("many/" + std::to_string(i) + ".mp3", "x");
    LibraryReader reader(folder_, tags_, nullptr);
    std::vector<std::size_t> told;
    std::vector<std::size_t> parts;
    ReadingWatch watch;
    watch.progress = [&](std::size_t done, std::size_t all) {
        EXPECT_EQ(all, 2503U);
        told.push_back(done);
    };
    watch.part = [&](const auto &part) { parts.push_back(part->songs().size()); };
    EXPECT_EQ(reader.read(watch)->songs().size(), 2502U);
    EXPECT_THAT(told, ElementsAre(1000, 2000));
    ASSERT_FALSE(parts.empty()) << "what is read can be found already";
    EXPECT_LT(parts.front(), 1100U);
    LibraryReader other(folder_, tags_, nullptr);
    int questions = 0;
    tags_.read = 0;
    watch = {};
    watch.goesOn = [&] { return ++questions < 4000; };
    EXPECT_TRUE(other.read(watch)->songs().empty());
    EXPECT_LT(tags_.read, 2000);
}

} // namespace

} // namespace velmora::catalogue
