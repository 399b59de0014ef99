// What the device answers: modes, positions, lengths, refusals. Most of it without any server, in
// the exact time of the silent output.

#include "device_fixture.h"

#include "midi_bytes.h"
#include "ordinary_user.h"

namespace velmora::platform::sound {
namespace {

using namespace velmora::tests;

// No server listens here: play runs silently on its own clock.
class SilentDevice : public testing::Test {
protected:
    SilentDevice() {
        SoundOptions options;
        options.server = "unix:/nowhere/at/all";
        opener_ = makeSoundOpener(options);
    }
    std::unique_ptr<Device> open(const std::string &name, const std::string &type = "MPEGVideo") {
        auto device = opener_->open({mediaFile(name), type});
        EXPECT_TRUE(device) << name;
        return device;
    }
    std::unique_ptr<DeviceOpener> opener_;
};

TEST_F(SilentDevice, IsStoppedAtItsBeginningWhenOpened) {
    const auto device = open("cbr.mp3");
    EXPECT_EQ(device->mode(), Mode::Stopped);
    EXPECT_EQ(device->positionMs(), 0);
    EXPECT_NEAR(device->lengthMs(), 10123, 50);
    EXPECT_EQ(device->windowHandle(), 0U);
    EXPECT_FALSE(device->putWindow(0, 0, 100, 100));
}

TEST_F(SilentDevice, PlaysInExactTime) {
    const auto device = open("cbr.mp3");
    ASSERT_TRUE(device->play());
    EXPECT_EQ(device->mode(), Mode::Playing);
    ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() > 50; }));
    const auto start = Clock::now();
    const int first = device->positionMs();
    ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() >= first + 500; }));
    EXPECT_NEAR(msSince(start), 500, 20);
}

TEST_F(SilentDevice, ItsPositionNeverGoesBack) {
    const auto device = open("cbr.mp3");
    device->play();
    int last = 0;
    const auto end = Clock::now() + Ms(400);
    while (Clock::now() < end) {
        const int position = device->positionMs();
        ASSERT_GE(position, last);
        last = position;
    }
    EXPECT_GT(last, 100);
}

TEST_F(SilentDevice, PauseStandsStillAndPlayGoesOnFromThere) {
    const auto device = open("cbr.mp3");
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return device->positionMs() > 100; }));
    ASSERT_TRUE(device->pause());
    EXPECT_EQ(device->mode(), Mode::Paused);
    const int place = device->positionMs();
    const auto other = open("chirp.wav");
    other->play();
    ASSERT_TRUE(waitFor(60000, [&] { return other->positionMs() > 60; }));
    EXPECT_EQ(device->positionMs(), place);
    ASSERT_TRUE(device->play());
    EXPECT_GE(device->positionMs(), place);
    EXPECT_TRUE(waitFor(60000, [&] { return device->positionMs() > place + 50; }));
    EXPECT_LT(device->positionMs(), place + 1000);
}

TEST_F(SilentDevice, ASeekLeavesPausedAtExactlyItsPlace) {
    const auto device = open("vbr.mp3");
    for (const int ms : {0, 1, 777, 5000, 9999}) {
        ASSERT_TRUE(device->seek(ms));
        EXPECT_EQ(device->positionMs(), ms);
        EXPECT_EQ(device->mode(), Mode::Paused);
    }
    device->play();
    EXPECT_GE(device->positionMs(), 9999);
    ASSERT_TRUE(device->seek(300));
    EXPECT_EQ(device->mode(), Mode::Paused);
    EXPECT_EQ(device->positionMs(), 300);
}

TEST_F(SilentDevice, ASeekOutsideFailsAndChangesNothing) {
    const auto device = open("chirp.wav");
    ASSERT_TRUE(device->seek(4000));
    EXPECT_FALSE(device->seek(-1));
    EXPECT_FALSE(device->seek(device->lengthMs() + 1));
    EXPECT_EQ(device->positionMs(), 4000);
    EXPECT_EQ(device->mode(), Mode::Paused);
    device->play();
    EXPECT_FALSE(device->seek(-1));
    EXPECT_EQ(device->mode(), Mode::Playing);
}

TEST_F(SilentDevice, ASeekToTheExactEndIsPausedAndPlayStartsOver) {
    const auto device = open("chirp.wav");
    ASSERT_TRUE(device->seek(device->lengthMs()));
    EXPECT_EQ(device->mode(), Mode::Paused);
    EXPECT_EQ(device->positionMs(), device->lengthMs());
    ASSERT_TRUE(device->play());
    EXPECT_EQ(device->mode(), Mode::Playing);
    EXPECT_LT(device->positionMs(), 2000);
}

TEST_F(SilentDevice, StopsAtItsEndAndPlayStartsOver) {
    const auto device = open("chirp.wav");
    ASSERT_TRUE(device->seek(device->lengthMs() - 150));
    device->play();
    const auto start = Clock::now();
    ASSERT_TRUE(waitFor(60000, [&] { return device->mode() == Mode::Stopped; }));
    EXPECT_GT(msSince(start), 120);
    EXPECT_EQ(device->positionMs(), device->lengthMs());
    // It stays so until it is told to play.
    EXPECT_TRUE(device->pause());
    EXPECT_EQ(device->mode(), Mode::Stopped);
    ASSERT_TRUE(device->play());
    EXPECT_EQ(device->mode(), Mode::Playing);
    EXPECT_LT(device->positionMs(), 2000);
}

TEST_F(SilentDevice, VolumeAndChannelHaveTheirRanges) {
    const auto device = open("chirp.wav");
    for (const int level : {0, 1, 500, 1000})
        EXPECT_TRUE(device->setVolume(level));
    for (const int level : {-1, 1001, 100000, -100000})
        EXPECT_FALSE(device->setVolume(level));
    for (const Channel channel : {Channel::Left, Channel::Right, Channel::Stereo})
        EXPECT_TRUE(device->setChannel(channel));
}

TEST_F(SilentDevice, CommandsReturnAtOnce) {
    const auto device = open("cbr.mp3");
    device->play();
    const auto start = Clock::now();
    for (int i = 0; i < 2000; ++i)
        device->setVolume(i % 1000);
    EXPECT_LT(msSince(start) / 2000, 0.5); // usually a few microseconds
    for (int i = 0; i < 50; ++i) {
        device->seek(i * 100);
        device->play();
        device->pause();
    }
    EXPECT_LT(msSince(start), 2000);
}

TEST_F(SilentDevice, ManyMediaOneAfterTheOther) {
    for (int i = 0; i < 30; ++i) {
        const auto device = open(i % 2 == 0 ? "cbr.mp3" : "chirp.ogg");
        device->play();
        device->seek(1000 + i);
        EXPECT_EQ(device->positionMs(), 1000 + i);
    }
}

TEST_F(SilentDevice, TheOpenerRefusesWhatIsNotItsOwn) {
    for (const char *name : {"film.mp4", "film.mpg", "sound.m4a", "no-such-file"})
        EXPECT_FALSE(opener_->open({mediaFile(name), "MPEGVideo"})) << name;
    EXPECT_FALSE(opener_->open({mediaFile("chirp.wav"), "Sequencer"}));
}

TEST_F(SilentDevice, AnyTypeButSequencerOpensByContent) {
    for (const char *type : {"MPEGVideo", "MPEGVideo2", "Waveaudio", "AVIVideo", ""})
        EXPECT_TRUE(opener_->open({mediaFile("cbr.mp3"), type})) << type;
}

TEST_F(SilentDevice, MidiPlaysThroughTheSameDevice) {
    const TemporaryFolder folder;
    MidiTrack track;
    track.event(0, {0x90, 60, 100}).event(1920, {0x80, 60, 0}).end(0);
    const std::string path = folder.write("tune.mid", midiFile(0, 480, {track}));
    const auto device = opener_->open({path, "Sequencer"});
    ASSERT_TRUE(device);
    EXPECT_EQ(device->lengthMs(), 2000);
    ASSERT_TRUE(device->seek(1900));
    device->play();
    EXPECT_TRUE(waitFor(60000, [&] { return device->mode() == Mode::Stopped; }));
    EXPECT_EQ(device->positionMs(), 2000);
}

TEST(SoundOpener, MidiNeedsASoundFont) {
    const TemporaryFolder folder;
    MidiTrack track;
    track.event(0, {0x90, 60, 100}).end(480);
    const std::string path = folder.write("tune.mid", midiFile(0, 480, {track}));
    SoundOptions options;
    options.server = "unix:/nowhere/at/all";
    options.soundFonts = {"/nowhere/font.sf2"};
    const auto opener = makeSoundOpener(options);
    EXPECT_FALSE(opener->open({path, "Sequencer"}));
    EXPECT_FALSE(opener->open({path, "MPEGVideo"}));
    EXPECT_TRUE(opener->open({mediaFile("cbr.mp3"), "MPEGVideo"}));
}

TEST(SoundOpener, WithoutTheServersLibraryPlayIsSilentAndInTime) {
    SoundOptions options;
    options.libraries.pulse = "libthere-is-no-such-thing.so.0";
    const auto opener = makeSoundOpener(options);
    const auto device = opener->open({mediaFile("short.wav"), "Waveaudio"});
    ASSERT_TRUE(device);
    const auto start = Clock::now();
    device->play();
    ASSERT_TRUE(waitFor(60000, [&] { return device->mode() == Mode::Stopped; }));
    EXPECT_NEAR(msSince(start), 1500, 150);
    EXPECT_EQ(device->positionMs(), 1500);
}

TEST(SoundOpener, WhereNoThreadIsToBeHadAFileIsRefusedAndTheProgramGoesOn) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const TemporaryFolder folder;
    const std::string path = folder.write("short.wav", readFile(mediaFile("short.wav")));
    std::filesystem::permissions(folder.path(""), std::filesystem::perms(0755));
    EXPECT_EXIT(
        {
            allowNoMoreThreads();
            const auto opener = makeSoundOpener({});
            _exit(opener->open({path, "Waveaudio"}) ? 2 : 0);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_TRUE(makeSoundOpener({})->open({path, "Waveaudio"}));
}

TEST(SoundOpener, AnOpenerThatOpenedNothingStartsNothing) {
    const auto opener = makeSoundOpener({});
    // Two threads come with the first medium: the one that plays, and the one that opens files.
    std::size_t threads = 0;
    for ([[maybe_unused]] const auto &entry :
         std::filesystem::directory_iterator("/proc/self/task"))
        ++threads;
    const auto device = opener->open({mediaFile("chirp.wav"), "Waveaudio"});
    std::size_t after = 0;
    for ([[maybe_unused]] const auto &entry :
         std::filesystem::directory_iterator("/proc/self/task"))
        ++after;
    EXPECT_EQ(after, threads + 2);
}

} // namespace
} // namespace velmora::platform::sound
