// The picture of a track: beside it, or in its tag.

#include "platform/backends/bus/cover.h"

#include "platform/backends/bus/cover_cache.h"
#include "platform/backends/bus/tag_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace velmora {
namespace {

constexpr std::chrono::seconds ample{60}; // for a machine that is busy

class Cover : public ::testing::Test {
protected:
    Cover() {
        std::string name = ::testing::TempDir() + "velmora-cover-XXXXXX";
        folder_ = mkdtemp(name.data());
    }
    ~Cover() override { std::filesystem::remove_all(folder_); }
    void put(const std::string &name) { std::ofstream(folder_ + "/" + name) << "picture"; }
    std::string found() { return platform::bus::coverBeside(folder_ + "/track.mp3", ample); }
    std::string folder_;
};

TEST_F(Cover, IsTheFirstOfTheNamesThatLieBesideATrack) {
    EXPECT_EQ(found(), "");
    put("other.jpg");
    EXPECT_EQ(found(), "");
    put("Front.PNG");
    EXPECT_THAT(found(), ::testing::EndsWith("/Front.PNG"));
    put("folder.jpg");
    EXPECT_THAT(found(), ::testing::EndsWith("/folder.jpg"));
    put("COVER.jpeg");
    EXPECT_THAT(found(), ::testing::EndsWith("/COVER.jpeg"));
    EXPECT_THAT(found(), ::testing::StartsWith("file:///"));
}

TEST_F(Cover, IsNoFolderAndNoBrokenLink) {
    std::filesystem::create_directory(folder_ + "/cover.jpg");
    std::filesystem::create_symlink("nowhere", folder_ + "/folder.jpg");
    EXPECT_EQ(found(), "");
}

TEST_F(Cover, OfAFolderThatIsGoneIsNone) {
    EXPECT_EQ(platform::bus::coverBeside("/nowhere/at/all.mp3"), "");
    EXPECT_EQ(platform::bus::coverBeside("relative.mp3"), "");
}

// --- pictures in tags ------------------------------------------------------------------------------

std::string pictureIn(const std::string &file) {
    return platform::bus::pictureInTag([&file](std::uint64_t offset, std::size_t size) {
        return offset < file.size() ? file.substr(offset, size) : std::string();
    });
}

// The files of tests/fuzz/bus/corpus/picture, whose names say what they are.
std::string corpus(const std::string &name) {
    std::ifstream in(VELMORA_SOURCE_DIR "/tests/fuzz/bus/corpus/picture/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

const std::string jpeg = "\xFF\xD8\xFF\xE0jpeg picture";
const std::string png = "\x89PNG\r\n\x1A\npng picture";

TEST(TagPicture, IsFoundInEveryKindOfTag) {
    for (const char *name : {"id3_2", "id3_3", "id3_4", "id3_unsynced", "id3_4_length",
                             "id3_extended", "m4a", "m4a_long"})
        EXPECT_EQ(pictureIn(corpus(name)), jpeg) << name;
    for (const char *name : {"flac", "flac_behind_id3"})
        EXPECT_EQ(pictureIn(corpus(name)), png) << name;
}

TEST(TagPicture, OfATagThatLiesIsNone) {
    for (const char *name :
         {"id3_frame_too_long", "id3_huge", "flac_lying", "m4a_zero_size", "m4a_lying", "nothing"})
        EXPECT_EQ(pictureIn(corpus(name)), "") << name;
    for (const char *name : {"id3_3", "flac", "m4a"}) {
        const std::string whole = corpus(name);
        for (std::size_t cut = 0; cut < whole.size(); ++cut)
            pictureIn(whole.substr(0, cut));
    }
}

TEST(TagPicture, IsNothingButAPicture) {
    std::string file = corpus("id3_3");
    file.replace(file.find(jpeg), 3, "GIF");
    EXPECT_EQ(pictureIn(file), "");
}

class CoverKept : public Cover {
protected:
    std::string cache() const { return folder_ + "/cache/covers"; }
    std::string keep(const std::string &bytes) { return platform::bus::keepCover(cache(), bytes); }
    std::size_t count() const {
        std::size_t all = 0;
        for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator(cache()))
            ++all;
        return all;
    }
};

TEST_F(CoverKept, OfATagIsWrittenOnce) {
    std::ofstream(folder_ + "/track.mp3", std::ios::binary) << corpus("id3_3");
    const std::string track = folder_ + "/track.mp3";
    const std::string first = platform::bus::coverOf(track, cache(), ample);
    EXPECT_THAT(first, ::testing::StartsWith("file://" + cache() + "/"));
    EXPECT_THAT(first, ::testing::EndsWith(".jpg"));
    const auto path = first.substr(7);
    const auto node = [&path] {
        struct ::stat info {};
        stat(path.c_str(), &info);
        return info.st_ino;
    };
    const auto before = node();
    EXPECT_EQ(platform::bus::coverOf(track, cache(), ample), first);
    EXPECT_EQ(node(), before);
    EXPECT_EQ(count(), 1U);
    // One that lies beside the track goes ahead of it.
    put("cover.png");
    EXPECT_THAT(platform::bus::coverOf(track, cache(), ample), ::testing::EndsWith("/cover.png"));
}

TEST_F(CoverKept, AreNeverMoreThanSoMany) {
    std::filesystem::create_directories(cache());
    put("cache/covers/somebody's.jpg");
    std::string last;
    for (std::size_t i = 0; i < platform::bus::mostCoversKept + 10; ++i)
        last = keep(jpeg + std::to_string(i));
    EXPECT_EQ(count(), platform::bus::mostCoversKept + 1);
    EXPECT_TRUE(std::filesystem::exists(last));
    EXPECT_TRUE(std::filesystem::exists(cache() + "/somebody's.jpg"));
}

TEST_F(CoverKept, AreNeverMoreBytesThanSoMany) {
    constexpr std::size_t large = platform::bus::mostPictureBytes;
    for (std::size_t i = 0; i < platform::bus::mostCoverBytesKept / large + 3; ++i)
        keep(jpeg + std::to_string(i) + std::string(large - 100, 'x'));
    EXPECT_LE(count() * (large - 100), platform::bus::mostCoverBytesKept);
    EXPECT_GT(count(), 1U);
}

TEST_F(CoverKept, NowhereAreNone) {
    put("cache");
    EXPECT_EQ(keep(jpeg), "");
    EXPECT_EQ(platform::bus::keepCover("", jpeg), "");
    EXPECT_EQ(keep("no picture"), "");
}

} // namespace
} // namespace velmora
