// Opening, lengths, modes and positions on an output that keeps time silently.

#include "picture_testing.h"

#include "tests/engine/ordinary_user.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <unistd.h>

namespace velmora::tests {
namespace {

using std::chrono::steady_clock;

struct Length {
    const char *file;
    int ms;
};

void PrintTo(const Length &length, std::ostream *out) { *out << length.file; }

std::string nameOf(const std::string &file) {
    std::string name = file;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
}

class EveryMedium : public testing::TestWithParam<Length> {};

TEST_P(EveryMedium, OpensStoppedAtItsBeginningWithItsLengthExactTo50Ms) {
    const auto device = openSilently(GetParam().file);
    ASSERT_TRUE(device);
    EXPECT_EQ(device->mode(), Mode::Stopped);
    EXPECT_EQ(device->positionMs(), 0);
    EXPECT_NEAR(device->lengthMs(), GetParam().ms, 50);
}

TEST_P(EveryMedium, PlaysToItsEndAndStopsThereWithThePositionAtTheLength) {
    const auto device = openSilently(GetParam().file);
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->seek(device->lengthMs() - 200));
    ASSERT_TRUE(device->play());
    ASSERT_TRUE(waitUntil([&] { return device->mode() == Mode::Stopped; }));
    EXPECT_EQ(device->positionMs(), device->lengthMs());
}

TEST_P(EveryMedium, PlayAfterTheEndStartsOver) {
    const auto device = openSilently(GetParam().file);
    ASSERT_TRUE(device);
    ASSERT_TRUE(device->seek(device->lengthMs()));
    ASSERT_TRUE(device->play());
    EXPECT_EQ(device->mode(), Mode::Playing);
    EXPECT_LT(device->positionMs(), 500);
    EXPECT_TRUE(waitUntil([&] { return device->positionMs() >= 150; }));
    EXPECT_LT(device->positionMs(), 1500);
}

INSTANTIATE_TEST_SUITE_P(
    Files, EveryMedium,
    testing::Values(
        Length{"film.mp4", 12'000}, Length{"film.flv", 12'000}, Length{"film.avi", 12'000},
        Length{"vbr.avi", 12'000}, Length{"film.mpg", 12'000}, Length{"film2.mpg", 12'000},
        Length{"film.wmv", 12'000}, Length{"film.mkv", 12'000}, Length{"film.ts", 12'000},
        Length{"film.ogv", 12'000}, Length{"film.webm", 12'000}, Length{"film.mov", 12'000},
        Length{"rotated.mp4", 12'000}, Length{"sound.wma", 12'000}, Length{"sound.tta", 12'000},
        Length{"sound.m4a", 12'000}, Length{"sound.aac", 12'000}, Length{"sound.wv", 12'000},
        Length{"sound.ac3", 12'000}, Length{"sound_live.mka", 12'000}, Length{"cover.m4a", 12'000},
        Length{"uneven.aac", 16'060}, Length{"mono.tta", 12'000}, Length{"surround.flac", 12'000},
        Length{"source.wav", 12'000}, Length{"huge_picture.mp4", 2000}),
    [](const auto &medium) { return nameOf(medium.param.file); });

class NoMedium : public testing::TestWithParam<const char *> {};

TEST_P(NoMedium, FailsToOpenInBoundedTime) {
    const auto begun = steady_clock::now();
    EXPECT_FALSE(openSilently(GetParam()));
    EXPECT_LT(steady_clock::now() - begun, std::chrono::seconds(12));
}

INSTANTIATE_TEST_SUITE_P(Files, NoMedium,
                         testing::Values("empty.mp4", "text.mp4", "random.mp4", "only_header.mp4",
                                         "huge_header.mp4", "list.mp4", "edl.mp4", "cue.mp4",
                                         "hls.mp4", "concat.mp4", "still.mp4", "missing.mp4"),
                         [](const auto &file) { return nameOf(file.param); });

TEST(WithoutThreads, AMediumIsRefusedAndTheProgramGoesOn) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string file = mediaFile("sound.m4a");
    EXPECT_EXIT(
        {
            allowNoMoreThreads();
            _exit(silentOpener()->open({file, "MPEGVideo", false, 0}) ? 2 : 0);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_TRUE(openSilently("sound.m4a"));
}

TEST(WithoutThreads, AMediumIsClosedAllTheSame) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ASSERT_TRUE(std::filesystem::exists(mediaFile("sound.m4a")));
    EXPECT_EXIT(
        {
            becomeOrdinaryUser();
            auto device = openSilently("sound.m4a");
            const bool isOpen = device && device->play();
            allowNoMoreThreads();
            device.reset();
            _exit(isOpen ? 0 : 2);
        },
        testing::ExitedWithCode(0), "");
}

class DamagedMedium : public testing::TestWithParam<const char *> {};

TEST_P(DamagedMedium, PlaysWhatItHas) {
    const auto device = openSilently(GetParam());
    ASSERT_TRUE(device);
    EXPECT_TRUE(playUpTo(*device, 500));
    ASSERT_TRUE(device->seek(2000));
    EXPECT_TRUE(playUpTo(*device, 2300));
}

// Where the sound of a file ends by a decoder that is not ours, in milliseconds.
int endOfSoundMs(const std::string &path) {
    const std::string command =
        "ffmpeg -v quiet -i '" + path + "' -map 0:a -f null - -progress - </dev/null";
    FILE *answer = popen(command.c_str(), "r");
    long long microseconds = 0;
    for (std::array<char, 200> line{};
         answer != nullptr && fgets(line.data(), line.size(), answer);)
        std::sscanf(line.data(), "out_time_us=%lld", &microseconds);
    if (answer != nullptr)
        pclose(answer);
    return static_cast<int>(microseconds / 1000);
}

// Behind the cut there may be seconds that the header promises: they are not waited for.
TEST_P(DamagedMedium, EndsWhereItsDataEnd) {
    const auto device = openSilently(GetParam());
    ASSERT_TRUE(device);
    const int end = endOfSoundMs(mediaFile(GetParam()));
    ASSERT_GT(end, 5000);
    ASSERT_TRUE(device->seek(end - 1500));
    ASSERT_TRUE(device->play());
    int last = 0; // that was told while it played
    EXPECT_TRUE(waitUntil([&] {
        const int position = device->positionMs();
        const bool isPlaying = device->mode() == Mode::Playing;
        if (isPlaying)
            last = position;
        return !isPlaying;
    }));
    EXPECT_EQ(device->mode(), Mode::Stopped);
    EXPECT_NEAR(last, end, 200);
    EXPECT_EQ(device->positionMs(), device->lengthMs());
    ASSERT_TRUE(device->play());
    EXPECT_TRUE(waitUntil([&] { return device->positionMs() >= 200; }));
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedMedium,
                         testing::Values("truncated.mp4", "truncated.avi", "truncated.flv",
                                         "truncated.tta", "truncated.wma", "truncated.mpg",
                                         "damaged.avi", "damaged.mp4"),
                         [](const auto &file) { return nameOf(file.param); });

class PictureDevice : public testing::Test {
protected:
    std::unique_ptr<Device> device_ = openSilently("sound.m4a");

    void SetUp() override { ASSERT_TRUE(device_); }
};

TEST_F(PictureDevice, PlayMovesThePositionOnEvenly) {
    ASSERT_TRUE(playUpTo(*device_, 300));
    const auto begun = steady_clock::now();
    const int first = device_->positionMs();
    int last = first;
    ASSERT_TRUE(waitUntil([&] {
        const int position = device_->positionMs();
        EXPECT_GE(position, last); // never back
        last = position;
        return position >= first + 1000;
    }));
    const auto passed =
        std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - begun);
    EXPECT_NEAR(static_cast<double>(passed.count()), last - first, 150.0);
    EXPECT_EQ(device_->mode(), Mode::Playing);
}

TEST_F(PictureDevice, PauseHoldsThePositionAndPlayGoesOnFromThere) {
    ASSERT_TRUE(playUpTo(*device_, 400));
    ASSERT_TRUE(device_->pause());
    EXPECT_EQ(device_->mode(), Mode::Paused);
    const int held = device_->positionMs();
    const auto later = steady_clock::now() + std::chrono::milliseconds(300);
    ASSERT_TRUE(waitUntil([&] { return steady_clock::now() >= later; }));
    EXPECT_EQ(device_->positionMs(), held);
    ASSERT_TRUE(device_->play());
    EXPECT_EQ(device_->mode(), Mode::Playing);
    EXPECT_TRUE(waitUntil([&] { return device_->positionMs() >= held + 100; }));
    EXPECT_LT(device_->positionMs(), held + 1000);
}

TEST_F(PictureDevice, PauseOfAStoppedMediumLeavesItStopped) {
    EXPECT_TRUE(device_->pause());
    EXPECT_EQ(device_->mode(), Mode::Stopped);
    EXPECT_EQ(device_->positionMs(), 0);
}

TEST_F(PictureDevice, PlayWhilePlayingChangesNothing) {
    ASSERT_TRUE(playUpTo(*device_, 300));
    EXPECT_TRUE(device_->play());
    EXPECT_EQ(device_->mode(), Mode::Playing);
    EXPECT_GE(device_->positionMs(), 300);
}

TEST_F(PictureDevice, ASeekLeavesPausedAtItsPlace) {
    ASSERT_TRUE(playUpTo(*device_, 200));
    ASSERT_TRUE(device_->seek(7000));
    EXPECT_EQ(device_->mode(), Mode::Paused);
    EXPECT_EQ(device_->positionMs(), 7000);
}

TEST_F(PictureDevice, ASeekOfAMediumNeverPlayedLeavesPausedToo) {
    ASSERT_TRUE(device_->seek(7000));
    EXPECT_EQ(device_->mode(), Mode::Paused);
    EXPECT_EQ(device_->positionMs(), 7000);
}

TEST_F(PictureDevice, ASeekTo0OfAMediumNeverPlayedLeavesItStopped) {
    ASSERT_TRUE(device_->seek(0));
    EXPECT_EQ(device_->mode(), Mode::Stopped);
}

TEST_F(PictureDevice, ASeekTo0OfAPlayedMediumLeavesPaused) {
    ASSERT_TRUE(playUpTo(*device_, 100));
    ASSERT_TRUE(device_->seek(0));
    EXPECT_EQ(device_->mode(), Mode::Paused);
    EXPECT_EQ(device_->positionMs(), 0);
}

TEST_F(PictureDevice, ASeekOutsideTheMediumFailsAndChangesNothing) {
    ASSERT_TRUE(playUpTo(*device_, 200));
    EXPECT_FALSE(device_->seek(-1));
    EXPECT_FALSE(device_->seek(device_->lengthMs() + 1));
    EXPECT_EQ(device_->mode(), Mode::Playing);
    EXPECT_GE(device_->positionMs(), 200);
    EXPECT_LT(device_->positionMs(), 5000);
}

TEST_F(PictureDevice, ASeekToTheExactEndIsPausedThereAndNeverStopped) {
    ASSERT_TRUE(playUpTo(*device_, 200));
    ASSERT_TRUE(device_->seek(device_->lengthMs()));
    const auto later = steady_clock::now() + std::chrono::milliseconds(500);
    ASSERT_TRUE(waitUntil([&] {
        EXPECT_EQ(device_->mode(), Mode::Paused);
        EXPECT_EQ(device_->positionMs(), device_->lengthMs());
        return steady_clock::now() >= later;
    }));
}

TEST_F(PictureDevice, TwoQuickSeeksEndAtTheSecond) {
    ASSERT_TRUE(device_->play());
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(device_->seek(9000));
        ASSERT_TRUE(device_->play());
        ASSERT_TRUE(device_->seek(1000));
        ASSERT_TRUE(device_->play());
        const int position = device_->positionMs();
        ASSERT_GE(position, 1000);
        ASSERT_LT(position, 3000);
    }
    ASSERT_TRUE(waitUntil([&] { return device_->positionMs() >= 1300; }));
    EXPECT_LT(device_->positionMs(), 4000);
    EXPECT_EQ(device_->mode(), Mode::Playing);
}

TEST_F(PictureDevice, ASoundHasNoPictureToPut) {
    EXPECT_FALSE(device_->putWindow(0, 0, 100, 100));
    EXPECT_EQ(device_->windowHandle(), 0U);
}

TEST_F(PictureDevice, ManyChangesInARowAreAllTaken) {
    ASSERT_TRUE(device_->play());
    for (int level = 0; level <= 1000; ++level)
        ASSERT_TRUE(device_->setVolume(level));
    for (int round = 0; round < 30; ++round) {
        ASSERT_TRUE(device_->setChannel(round % 2 == 0 ? Channel::Left : Channel::Right));
        ASSERT_TRUE(device_->pause());
        ASSERT_TRUE(device_->play());
    }
    const int begun = device_->positionMs();
    EXPECT_TRUE(waitUntil([&] { return device_->positionMs() >= begun + 300; }));
}

TEST(PictureOpen, AFileNameMayHoldAnyBytes) {
    std::string pattern = (std::filesystem::temp_directory_path() / "pictureXXXXXX").string();
    const std::filesystem::path folder = mkdtemp(pattern.data());
    for (const std::string &name :
         {std::string("\xB8\xE8.m4a"), std::string("a\nb.m4a"), std::string("100%20 \"x\" 'y'.m4a"),
          std::string("http:%%,=[x]{y}.m4a"), std::string("-"),
          std::string("\xE6\xAD\x8C\xF0\x9F\x8E\xB5.m4a")}) {
        std::filesystem::copy_file(mediaFile("sound.aac"), folder / name);
        const auto device = silentOpener()->open({(folder / name).string(), "MPEGVideo", false, 0});
        EXPECT_TRUE(device) << testing::PrintToString(name);
        if (device)
            EXPECT_NEAR(device->lengthMs(), 12'000, 50);
    }
    std::filesystem::remove_all(folder);
}

TEST(PictureOpen, ARelativePathIsAFileHoweverItLooks) {
    std::string pattern = (std::filesystem::temp_directory_path() / "pictureXXXXXX").string();
    const std::filesystem::path folder = mkdtemp(pattern.data());
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    std::filesystem::copy_file(mediaFile("sound.m4a"), "-");
    std::filesystem::create_directory("lavfi:");
    std::filesystem::copy_file(mediaFile("sound.m4a"), "lavfi:/sine");
    EXPECT_TRUE(silentOpener()->open({"-", "MPEGVideo", false, 0}));
    EXPECT_TRUE(silentOpener()->open({"lavfi:/sine", "MPEGVideo", false, 0}));
    EXPECT_FALSE(silentOpener()->open({"av://lavfi:sine", "MPEGVideo", false, 0}));
    std::filesystem::current_path(before);
    std::filesystem::remove_all(folder);
}

TEST(PictureOpen, ALocaleWithADecimalCommaDoesNotHinderIt) {
    std::string pattern = (std::filesystem::temp_directory_path() / "localeXXXXXX").string();
    const std::filesystem::path folder = mkdtemp(pattern.data());
    const std::string make =
        "localedef -i de_DE -f UTF-8 '" + (folder / "de_DE.UTF-8").string() + "' >/dev/null 2>&1";
    EXPECT_EQ(std::system(make.c_str()), 0) << "the package locales is needed";
    setenv("LOCPATH", folder.c_str(), 1);
    EXPECT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_TRUE(openSilently("sound.m4a"));
    std::setlocale(LC_NUMERIC, "C");
    unsetenv("LOCPATH");
    std::filesystem::remove_all(folder);
}

TEST(PictureOpen, OneOpenerOpensOneMediumAfterTheOther) {
    const auto opener = silentOpener();
    for (int round = 0; round < 5; ++round) {
        for (const char *file : {"sound.m4a", "film.avi", "random.mp4", "film.mpg"}) {
            const auto device = opener->open({mediaFile(file), "MPEGVideo", false, 0});
            ASSERT_EQ(device != nullptr, std::string(file) != "random.mp4");
            if (device)
                ASSERT_TRUE(device->play());
        }
    }
}

TEST(PictureOpen, TwoMediaMayBeOpenAtOnce) {
    const auto opener = silentOpener();
    const auto first = opener->open({mediaFile("sound.m4a"), "MPEGVideo", false, 0});
    const auto second = opener->open({mediaFile("sound.tta"), "MPEGVideo", false, 0});
    ASSERT_TRUE(first && second);
    EXPECT_TRUE(playUpTo(*first, 200));
    EXPECT_TRUE(playUpTo(*second, 200));
    EXPECT_GE(first->positionMs(), 200);
}

// Whatever the engine thinks of a file, it says nothing of it on the program's terminal.
TEST(PictureOpen, NothingIsWrittenToTheTerminal) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    for (const char *file : {"film.avi", "damaged.avi", "damaged.mp4", "random.mp4", "text.mp4"})
        if (const auto device = openSilently(file))
            playUpTo(*device, 100);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// Where no display can be reached a film is its sound, and a film without sound is nothing.
TEST(PictureOpen, WithoutADisplayTheSoundAlonePlays) {
    const char *const display = std::getenv("DISPLAY");
    const std::string before = display != nullptr ? display : "";
    unsetenv("DISPLAY");
    const auto opener = silentOpener();
    const auto device = opener->open({mediaFile("film.mp4"), "MPEGVideo", true, 0});
    ASSERT_TRUE(device);
    EXPECT_EQ(device->windowHandle(), 0U);
    EXPECT_FALSE(device->putWindow(0, 0, 100, 100));
    EXPECT_TRUE(playUpTo(*device, 200));
    EXPECT_FALSE(opener->open({mediaFile("silent.avi"), "MPEGVideo", true, 0}));
    if (!before.empty())
        setenv("DISPLAY", before.c_str(), 1);
}

} // namespace
} // namespace velmora::tests
