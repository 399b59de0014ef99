// The length of a medium on a disk that dies while it is being opened.

#include "picture_testing.h"
#include "platform/backends/picture/medium_length.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace velmora::tests {
namespace {

using namespace platform::picture;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class DeadDisk : public testing::Test {
protected:
    DeadDisk() {
        revive(); // a run that was broken off may have left it dead
        std::filesystem::create_directory(disk_);
        std::filesystem::copy(mediaFile("vbr_headless.mp3"), song_,
                              std::filesystem::copy_options::overwrite_existing);
    }
    ~DeadDisk() override {
        revive();
        std::error_code ignored;
        std::filesystem::remove_all(disk_, ignored);
    }

    void die(const std::string &how) { std::ofstream(disk_ + ".dead") << how; }
    void revive() {
        std::error_code ignored;
        std::filesystem::remove(disk_ + ".dead", ignored);
    }
    std::optional<double> measure(LengthSource source) const {
        return measureLength(song_, source, 3.0, milliseconds(500));
    }

    // The library of the dead disk is linked ahead of all others.
    std::string disk_ = std::getenv("VELMORA_DEAD_DISK");
    std::string song_ = disk_ + "/song.mp3";
};

TEST_F(DeadDisk, TheLengthOfAMediumIsNotWaitedForWithoutEnd) {
    constexpr auto soon = std::chrono::seconds(10); // usually one
    ASSERT_TRUE(measure(LengthSource::Scan));
    for (const char *how : {"names", "reads"}) {
        for (const auto source : {LengthSource::Scan, LengthSource::Tail}) {
            die(how);
            const auto start = Clock::now();
            EXPECT_FALSE(measure(source)) << how;
            EXPECT_LT(Clock::now() - start, soon) << how;
            revive();
            EXPECT_TRUE(measure(LengthSource::Scan)) << how;
        }
    }
}

TEST_F(DeadDisk, ALengthThatTheHeaderTellsAsksNoDisk) {
    die("names");
    EXPECT_EQ(measure(LengthSource::Header), 3.0);
}

} // namespace
} // namespace velmora::tests
