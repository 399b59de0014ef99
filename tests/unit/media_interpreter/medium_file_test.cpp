#include "platform/backends/media/medium_file.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace velmora::platform::media {
namespace {

using namespace std::string_literals;

class MediumFile : public testing::Test {
protected:
    MediumFile() {
        std::string pattern = (std::filesystem::temp_directory_path() / "mediumXXXXXX").string();
        folder_ = mkdtemp(pattern.data());
    }
    ~MediumFile() override { std::filesystem::remove_all(folder_); }

    std::string write(const std::string &name, const std::string &bytes) {
        const std::string path = folder_ / name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    std::filesystem::path folder_;
};

TEST_F(MediumFile, AFileIsRegular) { EXPECT_TRUE(isRegularFile(write("a", "x"))); }

TEST_F(MediumFile, ALinkToAFileIsRegular) {
    write("a", "x");
    std::filesystem::create_symlink("a", folder_ / "link");
    EXPECT_TRUE(isRegularFile(folder_ / "link"));
}

TEST_F(MediumFile, NothingElseIsRegular) {
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("loop", folder_ / "loop");
    std::filesystem::create_symlink("nowhere", folder_ / "dangling");
    EXPECT_FALSE(isRegularFile(folder_ / "pipe"));
    EXPECT_FALSE(isRegularFile(folder_));
    EXPECT_FALSE(isRegularFile("/dev/zero"));
    EXPECT_FALSE(isRegularFile(folder_ / "loop"));
    EXPECT_FALSE(isRegularFile(folder_ / "dangling"));
    EXPECT_FALSE(isRegularFile(folder_ / "missing"));
    EXPECT_FALSE(isRegularFile(folder_ / std::string(5000, 'x')));
}

TEST_F(MediumFile, TheBeginningIsCutAtTheLimit) {
    EXPECT_EQ(beginningOf(write("a", "0123456789"), 4), "0123");
    EXPECT_EQ(beginningOf(write("b", "01"), 4), "01");
    EXPECT_EQ(beginningOf(write("c", ""), 4), "");
    EXPECT_EQ(beginningOf(folder_ / "missing", 4), "");
}

TEST_F(MediumFile, ATagInFrontIsPassedOver) {
    const std::string tag = "ID3\4\0\0\0\0\1\2"s + std::string(130, 't');
    EXPECT_EQ(beginningOf(write("a", tag + "TTA1...")), "TTA1...");
}

TEST_F(MediumFile, ATagWithAFooterIsPassedOverWithIt) {
    const std::string tag = "ID3\4\0\x10\0\0\0\2"s + "tt" + std::string(10, 'f');
    EXPECT_EQ(beginningOf(write("a", tag + "TTA1...")), "TTA1...");
}

TEST_F(MediumFile, ATagThatClaimsMoreThanTheFileHoldsLeavesNothing) {
    EXPECT_EQ(beginningOf(write("a", "ID3\4\0\0\x7F\x7F\x7F\x7Fxxxx"s)), "");
}

TEST(Beginning, ContainersAndFormsOfThePictureDeviceAreKnown) {
    const std::string packet = "G" + std::string(187, 'x');
    const std::string stamped = "tttt" + packet;
    for (const std::string &bytes :
         {"\0\0\0\x20"
          "ftypisom"s,
          "\0\0\0\x20"
          "moov"s,
          "FLV\1"s, "\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6"s, "\x1A\x45\xDF\xA3\x9F"s,
          "\0\0\1\xBA\x44"s, "\0\0\1\xB3\x14"s, "TTA1"s, "MAC \x96"s, "wvpk"s, "\xFF\xF1\x50"s,
          "\xFF\xF9\x50"s, "RIFF\0\0\0\0AVI LIST"s, "OggS\0\2............\x80theora"s,
          packet + packet + packet, stamped + stamped + stamped})
        EXPECT_TRUE(belongsToPictureDevice(bytes)) << testing::PrintToString(bytes.substr(0, 16));
}

TEST(Beginning, FormsOfTheSoundDeviceAreNotThePictureDevices) {
    for (const std::string &bytes :
         {"\xFF\xFB\x90\x64"s, "\xFF\xF3\x40"s, "\xFF\xFD\xA0"s, "RIFF\0\0\0\0WAVEfmt "s,
          "RIFF\0\0\0\0RMIDdata"s, "fLaC\0"s, "OggS\0\2............\1vorbis"s,
          "OggS\0\2............OpusHead"s, "FORM\0\0\0\0AIFF"s, ".snd"s, "MThd\0\0\0\6"s, ""s, "F"s,
          "G"s + std::string(400, 'x')})
        EXPECT_FALSE(belongsToPictureDevice(bytes)) << testing::PrintToString(bytes.substr(0, 16));
}

} // namespace
} // namespace velmora::platform::media
