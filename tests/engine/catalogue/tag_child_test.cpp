// Tags read by the catalogue's own program, started for that, and by programs that fail at it.

#include "catalogue/tag_child.h"

#include "catalogue/catalogue.h"
#include "catalogue/library_keeper.h"
#include "music_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::catalogue {

namespace {

constexpr std::chrono::seconds long_{60};

class TagChildTest : public ::testing::Test {
protected:
    void SetUp() override { music_.putTagged("x.mp3", "Title", "Artist", "Album"); }
    OpenFile file(const std::string &name = "x.mp3") { return *folder_.open(name); }

    MusicFolder music_;
    Folder folder_{music_.path()};
};

TEST_F(TagChildTest, SaysWhatTheFileSays) {
    TagChild child({VELMORA_CATALOGUE, "--read-tags"}, long_);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(child.tagsOf(file()), (Tags{u"Title", u"Artist", u"Album"}));
}

TEST_F(TagChildTest, OutlivesAProcessThatEndsOverAFile) {
    // The first file ends the process; the next one has another.
    TagChild child({"/bin/sh", "-c",
                    "if [ -e '" + (music_ / "ended").string() + "' ]; then exec '" +
                        VELMORA_CATALOGUE + "' --read-tags; fi; touch '" +
                        (music_ / "ended").string() + "'; head -c 1 > /dev/null"},
                   long_);
    EXPECT_EQ(child.tagsOf(file()).value_or(Tags{}), Tags{});
    EXPECT_EQ(child.tagsOf(file()), (Tags{u"Title", u"Artist", u"Album"}));
}

TEST_F(TagChildTest, GivesUpAFileThatTakesTooLong) {
    TagChild child({"/bin/sleep", "1000"}, std::chrono::milliseconds(200));
    EXPECT_EQ(child.tagsOf(file()), std::nullopt);
    EXPECT_EQ(child.tagsOf(file()), std::nullopt);
}

TEST_F(TagChildTest, GivesUpAFileWhenItIsToEnd) {
    TagChild child({"/bin/sleep", "1000"}, long_, [] { return false; });
    EXPECT_EQ(child.tagsOf(file()), std::nullopt);
}

TEST_F(TagChildTest, KnowsNothingWhereItCannotStart) {
    TagChild child({"/nowhere/at/all"}, long_);
    EXPECT_EQ(child.tagsOf(file()), std::nullopt);
}

class LibraryKeeperTest : public TagChildTest {
protected:
    std::size_t songs() { return catalogue_.library()->songs().size(); }
    // Looked at again and again, for half a minute.
    bool becomes(std::size_t count) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (songs() != count && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        return songs() == count;
    }

    Catalogue catalogue_{music_.path(), "x"};
};

TEST_F(LibraryKeeperTest, SeesWhatComesAndGoesWithoutBeingAsked) {
    LibraryKeeper keeper(catalogue_, {VELMORA_CATALOGUE, "--read-tags"}, "", {});
    ASSERT_TRUE(keeper.hasRead(long_));
    EXPECT_EQ(catalogue_.library()->searchSongs(u"artist").all, 1U);
    music_.put("new.mp3", "x");
    EXPECT_TRUE(becomes(2));
    std::filesystem::remove(music_ / "x.mp3");
    std::filesystem::remove(music_ / "new.mp3");
    EXPECT_TRUE(becomes(0));
}

TEST_F(LibraryKeeperTest, EndsOverAFileThatIsNeverRead) {
    for (int i = 0; i < 100; ++i)
        music_.put(std::to_string(i) + ".mp3", "x");
    const auto begin = std::chrono::steady_clock::now();
    {
        LibraryKeeper keeper(catalogue_, {"/bin/sleep", "1000"}, "", {});
        EXPECT_FALSE(keeper.hasRead(std::chrono::milliseconds(50)));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30))
        << "all files together would have taken 200 seconds";
}

} // namespace

} // namespace velmora::catalogue
