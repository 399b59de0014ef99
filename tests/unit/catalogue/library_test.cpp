#include "catalogue/library.h"

#include "base/text.h"
#include "catalogue/library_reader.h"
#include "music_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

class LibraryTest : public ::testing::Test {
protected:
    const Item &song(const std::string &path) {
        for (const Item *item : library_->songs())
            if (item->file.path == path)
                return *item;
        throw std::runtime_error(path + " is no song");
    }
    void refresh() { library_ = reader_.read(); }
    static std::vector<std::string> paths(const Library::Found &found) {
        std::vector<std::string> paths;
        for (const Item *item : found.items)
            paths.push_back(item->file.path);
        return paths;
    }
    std::vector<std::string> songsFor(std::u16string_view words) {
        return paths(library_->searchSongs(words));
    }
    std::vector<std::string> lyricsFor(std::u16string_view words) {
        return paths(library_->searchLyrics(words));
    }

    MusicFolder music_;
    Folder folder_{music_.path()};
    OwnTagReader tags_;
    LibraryReader reader_{folder_, tags_, nullptr};
    std::shared_ptr<const Library> library_;
};

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(LibraryTest, KnowsMusicPicturesAndLyricsByTheirExtensions) {
    for (const char *name : {"a.mp3", "b.FLAC", "c.avi", "d.txt", "e", "f.jpg", "g.Lrc", "mp3"})
        music_.put(name, "[00:01.00]x");
    refresh();
    EXPECT_EQ(library_->songs().size(), 3U);
    EXPECT_EQ(library_->lyrics().size(), 1U);
    EXPECT_EQ(song("b.FLAC").format(), "flac");
}

TEST_F(LibraryTest, LeavesOutEmptyFilesAndEmptyLyrics) {
    music_.put("a.mp3", "");
    music_.put("b.lrc", "");
    music_.put("c.lrc", "\r\n \r\n");
    refresh();
    EXPECT_TRUE(library_->songs().empty());
    EXPECT_TRUE(library_->lyrics().empty());
}

TEST_F(LibraryTest, IdsAreOfDigitsAndSmallLettersAndStayTheSame) {
    music_.put("sub/A song.mp3", "x");
    refresh();
    const std::string id = song("sub/A song.mp3").id();
    EXPECT_EQ(id.find_first_not_of("0123456789abcdef"), std::string::npos);
    music_.put("another.mp3", "y");
    refresh();
    EXPECT_EQ(song("sub/A song.mp3").id(), id);
    EXPECT_EQ(library_->find(id)->file.path, "sub/A song.mp3");
    EXPECT_EQ(library_->find("0123"), nullptr);
    EXPECT_EQ(library_->find(""), nullptr);
}

TEST_F(LibraryTest, TakesTagsAndFallsBackToTheName) {
    music_.putTagged("x.mp3", "Title", "Artist", "Album");
    music_.put("01. Somebody - Something.mp3", "x");
    music_.put("Alone.mp3", "x");
    refresh();
    EXPECT_EQ(song("x.mp3").tags.title, u"Title");
    EXPECT_EQ(song("x.mp3").tags.artist, u"Artist");
    EXPECT_EQ(song("x.mp3").tags.album, u"Album");
    EXPECT_EQ(song("01. Somebody - Something.mp3").tags.artist, u"Somebody");
    EXPECT_EQ(song("01. Somebody - Something.mp3").tags.title, u"Something");
    EXPECT_EQ(song("Alone.mp3").tags.title, u"Alone");
}

TEST_F(LibraryTest, ReadsOldTagsInThePageTheyWereMeantIn) {
    music_.putTagged("gbk.mp3", "\xD6\xD0\xCE\xC4", "Caf\xE9", "");
    refresh();
    EXPECT_EQ(song("gbk.mp3").tags.title, u"中文");
    EXPECT_EQ(song("gbk.mp3").tags.artist, u"Café");
}

TEST_F(LibraryTest, NamesWithNumbersLoseOnlyTrackNumbers) {
    EXPECT_EQ(tagsOfName(u"03 - Song").title, u"Song");
    EXPECT_EQ(tagsOfName(u"03 Song").title, u"Song");
    EXPECT_EQ(tagsOfName(u"12-Song").title, u"Song");
    EXPECT_EQ(tagsOfName(u"99 Luftballons").title, u"99 Luftballons");
    EXPECT_EQ(tagsOfName(u"1984").title, u"1984");
    EXPECT_EQ(tagsOfName(u"A - B - C").title, u"B - C");
    EXPECT_EQ(tagsOfName(u"A - ").title, u"A -");
}

TEST_F(LibraryTest, FindsWhatHoldsEveryWord) {
    music_.putTagged("a.mp3", "Yesterday", "The Beatles", "Help");
    music_.putTagged("b.mp3", "Yesterday Once More", "Carpenters", "");
    refresh();
    EXPECT_THAT(songsFor(u"yesterday"), ElementsAre("a.mp3", "b.mp3"));
    EXPECT_THAT(songsFor(u"MORE  yesterday "), ElementsAre("b.mp3"));
    EXPECT_THAT(songsFor(u"beatles yester"), ElementsAre("a.mp3"));
    EXPECT_THAT(songsFor(u"help"), ElementsAre("a.mp3"));
    EXPECT_THAT(songsFor(u"yesterday nobody"), IsEmpty());
    EXPECT_THAT(songsFor(u"esterday"), IsEmpty()) << "a word is found at its beginning";
    EXPECT_THAT(songsFor(u""), IsEmpty());
    EXPECT_THAT(songsFor(u" ... "), IsEmpty());
}

TEST_F(LibraryTest, FindsIdeographsAnywhere) {
    music_.put("Beyond - 海阔天空.mp3", "x");
    refresh();
    EXPECT_EQ(songsFor(u"天空").size(), 1U);
    EXPECT_EQ(songsFor(u"beyond海阔").size(), 1U);
    EXPECT_EQ(songsFor(u"地空").size(), 0U);
}

TEST_F(LibraryTest, HoldsThirtyTwoWordsAgainstEachItemAndEachOnce) {
    std::string many;
    std::u16string known;
    std::u16string unknown;
    for (char letter = 'a'; letter < 'z'; ++letter)
        for (char other = 'a'; other < 'z'; ++other) {
            const std::string word{letter, other};
            known += fromAscii(word) + u" ";
            unknown += fromAscii("z" + word) + u" ";
            if (many.size() < 180)
                many += word + " ";
        }
    music_.put(many + ".mp3", "x");
    refresh();
    EXPECT_EQ(songsFor(known).size(), 1U) << "the words behind the limit are not asked for";
    EXPECT_EQ(songsFor(unknown).size(), 0U);
    std::u16string often;
    for (int i = 0; i < 1000; ++i)
        often += u"aa ";
    EXPECT_EQ(songsFor(often + u"ab").size(), 1U);
    EXPECT_EQ(songsFor(often + u"zz").size(), 0U) << "a word counts once";
}

TEST_F(LibraryTest, PutsTheBestMatchFirst) {
    music_.putTagged("a.mp3", "Hello Again Everybody", "Stesul", "");
    music_.putTagged("b.mp3", "Hello", "Stesul", "A long album name with many words");
    refresh();
    EXPECT_THAT(songsFor(u"hello"), ElementsAre("b.mp3", "a.mp3"));
    EXPECT_THAT(songsFor(u"Hello Stesul"), ElementsAre("b.mp3", "a.mp3"));
    EXPECT_THAT(songsFor(u"Stesul Hello"), ElementsAre("b.mp3", "a.mp3"));
}

TEST_F(LibraryTest, CountsAWordAsWholeWhereverItStandsWhole) {
    music_.putTagged("a.mp3", "Again Againness", "Somebody", "");
    music_.putTagged("b.mp3", "Againness Again", "Some", "");
    music_.putTagged("c.mp3", "Againness", "Some", "");
    refresh();
    EXPECT_THAT(songsFor(u"again"), ElementsAre("b.mp3", "a.mp3", "c.mp3"));
}

TEST_F(LibraryTest, KnowsALyricByItsOwnWordsAndByTheSongBesideIt) {
    music_.putTagged("one.mp3", "Yesterday", "The Beatles", "");
    music_.put("one.lrc", "[00:01.00]x");
    music_.put("two.lrc", "[ti:Help]\n[ar:The Beatles]\n[00:01.00]x");
    music_.put("Somebody - Three.lrc", "[00:01.00]x");
    refresh();
    EXPECT_THAT(lyricsFor(u"Yesterday The Beatles"), ElementsAre("one.lrc"));
    EXPECT_THAT(lyricsFor(u"help"), ElementsAre("two.lrc"));
    EXPECT_THAT(lyricsFor(u"one"), ElementsAre("one.lrc"));
    EXPECT_THAT(lyricsFor(u"three somebody"), ElementsAre("Somebody - Three.lrc"));
}

TEST_F(LibraryTest, SeesWhatComesGoesAndChanges) {
    music_.putTagged("a.mp3", "Old", "", "");
    refresh();
    music_.putTagged("a.mp3", "New", "Somebody", "");
    std::filesystem::last_write_time(
        music_ / "a.mp3", std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));
    music_.put("b.mp3", "x");
    refresh();
    EXPECT_EQ(song("a.mp3").tags.title, u"New");
    EXPECT_EQ(library_->songs().size(), 2U);
    std::filesystem::remove(music_ / "a.mp3");
    refresh();
    EXPECT_EQ(library_->songs().size(), 1U);
}

TEST_F(LibraryTest, OutlivesDamagedFiles) {
    music_.put("a.mp3", "ID3\x04\x00\x00\x7F\x7F\x7F\x7F garbage");
    music_.put("b.flac", "fLaC\x00\xFF\xFF\xFF");
    music_.put("c.ogg", "OggS");
    music_.put("d.mp4", std::string("\0\0\0\x08moov", 8));
    music_.put("e.wav", "RIFF\xFF\xFF\xFF\xFFWAVEfmt ");
    music_.put("f.lrc", std::string(2'000'000, 'x'));
    refresh();
    EXPECT_EQ(library_->songs().size(), 5U);
    EXPECT_TRUE(library_->lyrics().empty()) << "longer than any lyric";
}

TEST(MediaType, IsOfAudioOrVideo) {
    for (const char *format : {"mp3", "wma", "wav", "mid", "ogg", "rm", "flac", "ape", "m4a"})
        EXPECT_EQ(std::string(mediaType(format)).substr(0, 6), "audio/") << format;
    for (const char *format : {"avi", "mp4", "mpg", "wmv", "flv", "rmvb", "mkv"})
        EXPECT_EQ(std::string(mediaType(format)).substr(0, 6), "video/") << format;
    EXPECT_EQ(mediaType("exe"), nullptr);
    EXPECT_EQ(mediaType(""), nullptr);
}

} // namespace

} // namespace velmora::catalogue
