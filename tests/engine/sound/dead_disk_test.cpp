// Opening sound files on a disk that does not answer.

#include "platform/backends/media/mci_interpreter.h"
#include "platform/backends/sound/device/sound.h"
#include "sound_testing.h"

#include <chrono>
#include <gtest/gtest.h>

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;
using Clock = std::chrono::steady_clock;

constexpr auto soon = std::chrono::seconds(5); // the limits below are half a second

class DeadDisk : public testing::Test {
protected:
    DeadDisk() {
        song_ = folder_.write("song.wav", readFile(mediaFile("short.wav")));
        options_.server = "unix:/there/is/none";
        options_.openLimitMs = 500;
        revive(); // a run that was broken off may have left it dead
        std::filesystem::create_directory(disk_);
        std::filesystem::copy(song_, disk_ + "/song.wav");
    }
    ~DeadDisk() override { revive(); }

    // The library of the dead disk is linked ahead of all others.
    static std::string disk() { return std::getenv("VELMORA_DEAD_DISK"); }
    void die(const std::string &how) { std::ofstream(disk_ + ".dead") << how; }
    void revive() {
        std::error_code ignored;
        std::filesystem::remove(disk_ + ".dead", ignored);
        std::filesystem::remove_all(disk_, ignored);
    }

    TemporaryFolder folder_;
    std::string disk_ = disk();
    std::string song_;
    SoundOptions options_;
};

TEST_F(DeadDisk, AnOpenHasALimitAndTheNextOneIsNotTouched) {
    const auto opener = makeSoundOpener(options_);
    ASSERT_TRUE(opener->open({disk_ + "/song.wav", "MPEGVideo"}));
    for (const char *how : {"names", "reads"}) {
        die(how);
        const auto start = Clock::now();
        EXPECT_FALSE(opener->open({disk_ + "/song.wav", "MPEGVideo"})) << how;
        EXPECT_LT(Clock::now() - start, soon) << how;
        EXPECT_TRUE(opener->open({song_, "MPEGVideo"})) << how;
    }
}

TEST_F(DeadDisk, TheTimeOfTheWholeOpenIsObserved) {
    options_.openLimitMs = 60000;
    const auto opener = makeSoundOpener(options_);
    die("names");
    const auto start = Clock::now();
    media::OpenRequest request{disk_ + "/song.wav", "MPEGVideo"};
    request.end = start + std::chrono::milliseconds(500);
    EXPECT_FALSE(opener->open(request));
    EXPECT_LT(Clock::now() - start, soon);
}

TEST_F(DeadDisk, AnOpenThatNobodyWaitsForMayOutliveTheOpener) {
    auto opener = makeSoundOpener(options_);
    die("names");
    EXPECT_FALSE(opener->open({disk_ + "/song.wav", "MPEGVideo"}));
    opener.reset();
    revive();
}

TEST_F(DeadDisk, TheCommandToOpenFailsSoonAndNothingIsOpen) {
    media::MciInterpreter mci(makeSoundOpener(options_), nullptr, std::chrono::milliseconds(500));
    const auto open = [&](const std::string &path) {
        return mci
            .mciSendStringA(u"open " + std::u16string(path.begin(), path.end()) +
                                u" type MPEGVideo alias NOWMUSIC",
                            0)
            .error;
    };
    die("names");
    const auto start = Clock::now();
    EXPECT_NE(open(disk_ + "/song.wav"), 0U);
    EXPECT_LT(Clock::now() - start, soon);
    EXPECT_NE(mci.mciSendStringA(u"status NOWMUSIC length", 80).error, 0U);
    EXPECT_EQ(open(song_), 0U);
}

} // namespace
} // namespace velmora::platform::sound
