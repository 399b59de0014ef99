#include "platform/backends/linux/patient_disk.h"

#include "base/run_time_error.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

#include <future>

namespace velmora::platform {
namespace {

using std::chrono::milliseconds;

constexpr std::string_view mounts =
    "22 1 254:1 / / rw,relatime shared:1 - ext4 /dev/vda1 rw\n"
    "31 22 0:27 / /mnt/music rw shared:9 - fuse.sshfs host:/music rw\n"
    "32 22 0:28 / /mnt/my\\040films rw shared:9 - nfs4 host:/films rw\n"
    "33 31 0:29 / /mnt/music/old rw shared:9 - cifs //host/old rw\n";

TEST(MountPointOf, IsTheLongestThatThePathLiesBelow) {
    EXPECT_EQ(mountPointOf("/home/me/a.mp3", mounts), "/");
    EXPECT_EQ(mountPointOf("/mnt/music/a.mp3", mounts), "/mnt/music");
    EXPECT_EQ(mountPointOf("/mnt/music", mounts), "/mnt/music");
    EXPECT_EQ(mountPointOf("/mnt/musical/a.mp3", mounts), "/");
    EXPECT_EQ(mountPointOf("/mnt/my films/a.avi", mounts), "/mnt/my films");
    EXPECT_EQ(mountPointOf("/mnt/music/old/a.mp3", mounts), "/mnt/music/old");
    EXPECT_EQ(mountPointOf("a.mp3", mounts), "");
    EXPECT_EQ(mountPointOf("/a", ""), "");
}

// Work that hangs until the test is over.
class PatientDiskTest : public testing::Test {
protected:
    ~PatientDiskTest() override { release(); }

    void release() {
        if (!std::exchange(isReleased_, true))
            release_.set_value();
    }
    auto hanging() {
        ++asked_;
        return [released = released_] {
            released.wait();
            return 1;
        };
    }
    // Long for a disk that answers, short for a test.
    PatientDisk disk{milliseconds(400), [this] { return now; }};
    PatientDisk::Clock::time_point now = PatientDisk::Clock::now();
    int asked_ = 0;

private:
    std::promise<void> release_;
    std::shared_future<void> released_ = release_.get_future().share();
    bool isReleased_ = false;
};

TEST_F(PatientDiskTest, GivesTheAnswerOfADiskThatAnswers) {
    EXPECT_EQ(disk.ask(
                  "/music/a", [] { return 5; }),
              5);
    EXPECT_EQ(disk.ask("/music/b", [] { return 6; }), 6);
    EXPECT_FALSE(disk.isSilent("/music/c"));
}

TEST_F(PatientDiskTest, DoesNotWaitForOneThatDoesNot) {
    EXPECT_FALSE(disk.ask("/music/a", hanging()));
    EXPECT_FALSE(disk.ask("/music/b", hanging()));
}

TEST_F(PatientDiskTest, WaitsLessForADiskThatOwesAnAnswer) {
    disk.ask("/music/a", hanging());
    const auto start = PatientDisk::Clock::now();
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(disk.ask("/music/b", hanging()));
    EXPECT_LT(PatientDisk::Clock::now() - start, 5 * milliseconds(400));
    // It may be slow for one thing only. What it says counts, as soon as it comes in the short
    // time.
    std::optional<int> said;
    const auto limit = PatientDisk::Clock::now() + std::chrono::seconds(20);
    while (!said && PatientDisk::Clock::now() < limit)
        said = disk.ask("/music/c", [] { return 5; });
    EXPECT_EQ(said, 5);
}

TEST_F(PatientDiskTest, HoldsNoMoreThanSomeQuestionsOpen) {
    PatientDisk hasty(milliseconds(10), [this] { return now; });
    for (int i = 0; i < 40; ++i)
        EXPECT_FALSE(hasty.ask("/music/a", hanging()));
    EXPECT_FALSE(hasty.ask("/music/a", [] { return 5; }));
    release();
    // Until all have ended.
    const auto limit = PatientDisk::Clock::now() + std::chrono::seconds(20);
    while (hasty.isSilent("/music/a") && PatientDisk::Clock::now() < limit)
        std::this_thread::yield();
    EXPECT_FALSE(hasty.isSilent("/music/a"));
}

TEST_F(PatientDiskTest, AFolderThatHasJustAnsweredIsAskedWithoutAThread) {
    const auto here = std::this_thread::get_id();
    const auto who = [] { return std::this_thread::get_id(); };
    EXPECT_NE(disk.ask("/music/a", who), here);
    EXPECT_EQ(disk.ask("/music/b", who), here);
    EXPECT_NE(disk.ask("/music/b", who, PatientDisk::About::Bytes), here);
    EXPECT_NE(disk.ask("/films/b", who), here);
    EXPECT_NE(disk.ask("/music/b", who), here);
    now += std::chrono::seconds(2);
    EXPECT_NE(disk.ask("/music/b", who), here);
}

TEST_F(PatientDiskTest, AfterASilenceAFolderIsAskedWithCareAgain) {
    const auto here = std::this_thread::get_id();
    const auto who = [] { return std::this_thread::get_id(); };
    disk.ask("/music/a", who);
    now += std::chrono::seconds(2);
    EXPECT_FALSE(disk.ask("/music/a", hanging()));
    EXPECT_NE(disk.ask("/music/b", who), here);
}

TEST_F(PatientDiskTest, WhatTheWorkRaisesIsRaised) {
    EXPECT_THROW(disk.ask("/music/a", []() -> int { raise(ErrorNumber::FileNotFound); }),
                 RunTimeError);
    EXPECT_FALSE(disk.isSilent("/music/a"));
}

TEST_F(PatientDiskTest, IsSilentWhileAnAnswerIsOwedAndTheDiskDoesNotEvenTellOfTheFolder) {
    const TempFolder folder;
    EXPECT_FALSE(disk.isSilent(folder.path()));
    disk.ask(folder.path() + "/a", hanging());
    EXPECT_FALSE(disk.isSilent(folder.path())) << "slow, and not silent";
}

} // namespace
} // namespace velmora::platform
