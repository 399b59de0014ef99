// What the fakes add to their contracts: failures on request, counts, scripted answers.

#include "base/run_time_error.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/fakes/fake_files.h"
#include "tests/fakes/fake_media.h"
#include "tests/fakes/fake_registry.h"
#include "tests/fakes/fake_system.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace velmora::fakes {
namespace {

// --- files ---------------------------------------------------------------------------------------

struct FilesFake : testing::Test {
    FakeAnsi ansi;
    FakeFiles files{ansi};
    void SetUp() override { files.addFolder(u"/d"); }
};

TEST_F(FilesFake, fillsUp) {
    files.setFreeSpace(10);
    files.writeWhole(u"/d/a", "12345678", false);
    try {
        files.writeWhole(u"/d/a", "123", false);
        FAIL();
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.number(), ErrorNumber::DiskFull);
    }
    EXPECT_EQ(files.contents(u"/d/a"), "12345678");
    files.setFreeSpace(std::nullopt);
    files.writeWhole(u"/d/a", "123", false);
    EXPECT_EQ(files.contents(u"/d/a"), "123");
}

TEST_F(FilesFake, failsOnceWhereItIsTold) {
    files.addFile(u"/d/a", "x");
    files.failNext("openInput", ErrorNumber::PermissionDenied, u"refused");
    try {
        files.openInput(u"/d/a");
        FAIL();
    } catch (const RunTimeError &error) {
        EXPECT_EQ(error.description(), u"refused");
    }
    EXPECT_NE(files.openInput(u"/d/a"), nullptr);
    EXPECT_EQ(files.calls("openInput"), 2);
    EXPECT_EQ(files.calls("writeWhole"), 0);
}

TEST_F(FilesFake, failsTheTestForAFailureThatNeverCame) {
    EXPECT_NONFATAL_FAILURE(
        {
            FakeFiles other(ansi);
            other.failNext("Name");
        },
        "Name");
}

TEST_F(FilesFake, failsReadingAtALineAndEndsThere) {
    files.addFile(u"/d/a", "one\r\ntwo\r\nthree\r\n");
    files.failReadAtLine(u"/d/a", 1);
    const auto reader = files.openInput(u"/d/a");
    EXPECT_EQ(reader->readLine(), "one");
    EXPECT_FALSE(reader->endOfFile());
    EXPECT_THROW(reader->readLine(), RunTimeError);
    EXPECT_TRUE(reader->endOfFile());
}

TEST_F(FilesFake, refusesWhatMayNotBeRead) {
    files.addFile(u"/d/a", "x");
    files.setUnreadable(u"/d/a");
    EXPECT_THROW(files.openInput(u"/d/a"), RunTimeError);
    files.setUnreadable(u"/d");
    EXPECT_TRUE(files.list(u"/d", platform::SearchFor::Files).empty());
    files.setReadOnly(u"/d");
    EXPECT_THROW(files.writeWhole(u"/d/b", "x", false), RunTimeError);
}

TEST_F(FilesFake, writesDownWhatChangedTheDisk) {
    files.writeWhole(u"/d/a", "x", false);
    files.writeWhole(u"/d/a", "x", true);
    files.keepAs(u"/d/a", u"/d/b");
    files.Name(u"/d/b", u"/d/c");
    files.CreateFileSystemObject()->DeleteFile(u"/d/c");
    EXPECT_EQ(files.changes(),
              (std::vector<std::u16string>{u"write /d/a", u"sync /d/a", u"keep /d/a /d/b",
                                           u"rename /d/b /d/c", u"delete /d/c"}));
    EXPECT_EQ(files.files(), std::vector<std::u16string>{u"/d/a"});
}

TEST_F(FilesFake, runsWhatATestWantsBetweenLines) {
    files.addFile(u"/d/a", "1\n2\n");
    std::vector<std::size_t> seen;
    files.beforeLine = [&](std::u16string_view, std::size_t line) { seen.push_back(line); };
    const auto reader = files.openInput(u"/d/a");
    while (!reader->endOfFile())
        reader->readLine();
    EXPECT_EQ(seen, (std::vector<std::size_t>{0, 1}));
}

// --- media ---------------------------------------------------------------------------------------

TEST(MediaFake, behavesAsOneDevice) {
    FakeMedia media;
    media.addMedium(u"/m/a.mp3", 1000);
    const auto send = [&](const char16_t *text, int size = 80) {
        return media.mciSendStringA(text, size);
    };
    EXPECT_NE(send(u"status NOWMUSIC mode").error, 0U);
    EXPECT_NE(send(u"open /m/b.mp3 type MPEGVideo alias NOWMUSIC").error, 0U);
    EXPECT_EQ(send(u"open /m/a.mp3 type MPEGVideo alias NOWMUSIC").error, 0U);
    EXPECT_NE(send(u"open /m/a.mp3 type MPEGVideo alias NOWMUSIC").error, 0U);
    EXPECT_EQ(send(u"status NOWMUSIC mode").text, u"stopped");
    EXPECT_EQ(send(u"play NOWMUSIC").error, 0U);
    media.advance(400);
    EXPECT_EQ(send(u"status NOWMUSIC position").text, u"400");
    EXPECT_EQ(send(u"status NOWMUSIC length").text, u"1000");
    EXPECT_NE(send(u"seek NOWMUSIC to 1001").error, 0U);
    EXPECT_NE(send(u"seek NOWMUSIC to -1").error, 0U);
    EXPECT_EQ(media.positionMs(), 400);
    EXPECT_EQ(send(u"seek NOWMUSIC to 1000").error, 0U);
    EXPECT_EQ(send(u"status NOWMUSIC mode").text, u"paused");
    EXPECT_EQ(send(u"play NOWMUSIC").error, 0U);
    EXPECT_EQ(media.positionMs(), 0); // from its end it starts over
    media.reachEnd();
    EXPECT_EQ(send(u"status NOWMUSIC mode").text, u"stopped");
    EXPECT_EQ(send(u"setaudio  NOWMUSIC source to left").error, 0U);
    EXPECT_EQ(media.source(), u"left");
    EXPECT_EQ(send(u"setaudio NOWMUSIC volume to 500").error, 0U);
    EXPECT_NE(send(u"setaudio NOWMUSIC volume to 1001").error, 0U);
    EXPECT_EQ(media.volume(), 500);
    EXPECT_NE(send(u"put NOWMUSIC window at 0 0 10 10").error, 0U);
    EXPECT_EQ(send(u"status NOWMUSIC window handle").text, u"0");
    EXPECT_EQ(send(u"close NOWMUSIC").error, 0U);
    EXPECT_NE(send(u"close NOWMUSIC").error, 0U);
    EXPECT_FALSE(media.isOpen());
}

TEST(MediaFake, recordsCommandsAndCutsAnswers) {
    FakeMedia media;
    media.addMedium(u"/m/a", 123456, true);
    media.mciSendStringA(u"open /m/a type MPEGVideo alias NOWMUSIC parent 7 style CHILD", 0);
    EXPECT_EQ(media.mciSendStringA(u"status NOWMUSIC length", 4).text, u"123");
    EXPECT_EQ(media.mciSendStringA(u"status NOWMUSIC length", 0).text, u"");
    EXPECT_EQ(media.mciSendStringA(u"put NOWMUSIC window at 0 0 10 10", 0).error, 0U);
    EXPECT_EQ(media.actions(), (std::vector<std::u16string>{
                                   u"open /m/a type MPEGVideo alias NOWMUSIC parent 7 style CHILD",
                                   u"put NOWMUSIC window at 0 0 10 10"}));
    EXPECT_EQ(media.count(u"status NOWMUSIC length"), 2U);
    EXPECT_EQ(media.commands()[1], (FakeMedia::Command{u"status NOWMUSIC length", 4}));
}

TEST(MediaFake, answersAsScripted) {
    FakeMedia media;
    media.answerAlways(u"status NOWMUSIC mode", {0, u"播放"});
    media.answerOnce(u"status NOWMUSIC mode", {0, u"停止"});
    EXPECT_EQ(media.mciSendStringA(u"status NOWMUSIC mode", 255).text, u"停止");
    EXPECT_EQ(media.mciSendStringA(u"status NOWMUSIC mode", 255).text, u"播放");
    media.answerAsUsual(u"status NOWMUSIC mode");
    EXPECT_NE(media.mciSendStringA(u"status NOWMUSIC mode", 255).error, 0U);
    media.answerOnce(u"play NOWMUSIC", {5, u"text of a failure"});
    EXPECT_EQ(media.mciSendStringA(u"play NOWMUSIC", 9).text, u"");
    media.addMedium(u"/m/a");
    media.failBeginningWith(u"open");
    EXPECT_NE(media.mciSendStringA(u"open /m/a type X alias N", 0).error, 0U);
    media.failBeginningWith(u"");
    EXPECT_EQ(media.mciSendStringA(u"open /m/a type X alias N", 0).error, 0U);
}

TEST(MediaFake, failsTheTestForAnAnswerThatNobodyAskedFor) {
    EXPECT_NONFATAL_FAILURE(
        {
            FakeMedia media;
            media.answerOnce(u"play NOWMUSIC", {});
        },
        "play NOWMUSIC");
}

TEST(WaveOutFake, answersForItsDevices) {
    FakeWaveOut waveOut;
    platform::WaveOutCaps caps;
    EXPECT_EQ(waveOut.waveOutGetNumDevs(), 0U);
    EXPECT_NE(waveOut.waveOutGetDevCapsA(0, caps, 50), 0U);
    waveOut.addDevice(u"Speaker");
    EXPECT_EQ(waveOut.waveOutGetDevCapsA(0, caps, 50), 0U);
    EXPECT_EQ(caps.productName, u"Speaker");
    waveOut.capsError = 3;
    EXPECT_EQ(waveOut.waveOutGetDevCapsA(0, caps, 50), 3U);
}

// --- system --------------------------------------------------------------------------------------

TEST(ProcessesFake, endsWithWhatNoCodeCatches) {
    FakeProcesses processes;
    bool reached = false;
    try {
        passOver([&] { processes.end(3); });
        reached = true;
    } catch (const std::exception &) {
        reached = true;
    } catch (const ProcessEnded &ended) {
        EXPECT_EQ(ended.status, 3);
    }
    EXPECT_FALSE(reached);
    EXPECT_EQ(processes.endStatuses, std::vector<int>{3});
}

TEST(ShellFake, worksOnTheFakeDisk) {
    const FakeAnsi ansi;
    FakeFiles files(ansi);
    FakeShell shell(&files);
    shell.Shell_(u"cmd /c md \"/a b/c\"");
    EXPECT_TRUE(files.hasFolder(u"/a b/c"));
    files.addFile(u"/a b/f", "x");
    shell.Shell_(u"cmd /c del \"/a b/f\"");
    EXPECT_FALSE(files.hasFile(u"/a b/f"));
    shell.Shell_(u"cmd /c del \"/a b\"");
    EXPECT_TRUE(files.hasFolder(u"/a b"));
    shell.Shell_(u"cmd /c md \"\"");
    EXPECT_EQ(shell.commandLines.size(), 4U);
}

TEST(VersionsFake, areAskedLikeRealRecords) {
    const FakeAnsi ansi;
    FakeVersionRecords versions(ansi);
    versions.addProgram(u"/opt/a", u"zkPlayer");
    const auto size = versions.GetFileVersionInfoSizeA(u"/opt/a");
    ASSERT_GT(size, 0U);
    const std::string record = versions.GetFileVersionInfoA(u"/opt/a", size);
    EXPECT_EQ(versions.VerQueryValueA(record, u"\\StringFileInfo\\080404B0\\InternalName"),
              "zkPlayer");
    EXPECT_EQ(versions.VerQueryValueA(record, u"\\StringFileInfo\\080404B0\\ProductName"),
              std::nullopt);
    EXPECT_EQ(versions.GetFileVersionInfoSizeA(u"/opt/b"), 0U);
}

TEST(ClockFake, standsStillUntilItIsAdvanced) {
    FakeClock clock;
    EXPECT_EQ(clock.shortDate(clock.now()), u"2020-09-13");
    EXPECT_EQ(clock.shortTime(clock.now()), u"12:26:40");
    for (int i = 0; i < 4; ++i)
        clock.advance(500);
    EXPECT_EQ(clock.steadyMs(), 2000);
    EXPECT_EQ(clock.now(), 1'600'000'002);
    EXPECT_EQ(clock.secondsSinceMidnight(), 44'802.0);
}

TEST(WaitableTimersFake, advanceTheClockToTheirDueTime) {
    FakeClock clock;
    FakeWaitableTimers timers(clock);
    bool exists = true;
    const auto timer = timers.CreateWaitableTimerA(true, u"n", exists);
    EXPECT_FALSE(exists);
    ASSERT_TRUE(timers.SetWaitableTimer(timer, -10'000, -1)); // one millisecond
    timers.nextAnswers = {1, 1};
    int rounds = 0;
    timers.onWait = [&] { ++rounds; };
    while (timers.MsgWaitForMultipleObjects(timer) != 0) {
    }
    EXPECT_EQ(rounds, 3);
    EXPECT_EQ(clock.steadyMs(), 1);
    EXPECT_TRUE(timers.CloseHandle(timer));
    EXPECT_EQ(timers.openTimers(), 0U);
}

// --- registry ------------------------------------------------------------------------------------

TEST(RegistryFake, writesDownWhatWasAskedAndFailsOnRequest) {
    const FakeAnsi ansi;
    FakeRegistry registry(ansi);
    platform::RegistryHandle handle = 0;
    registry.RegCreateKeyA(platform::HKEY_LOCAL_MACHINE, u"A\\B", handle);
    registry.RegSetValueExA(handle, u"Text", platform::REG_SZ, u"é", 2);
    registry.RegSetValueExA(handle, u"Number", 7);
    registry.failWrites(5);
    EXPECT_EQ(registry.RegSetValueExA(handle, u"Number", 8), 5);
    EXPECT_EQ(registry.openHandles(), 1U);
    registry.RegCloseKey(handle);
    EXPECT_EQ(registry.log(), (std::vector<std::u16string>{u"create A\\B", u"set Text SZ 2 é",
                                                           u"set Number DWORD 7",
                                                           u"set Number DWORD 8", u"close"}));
    EXPECT_EQ(registry.value(u"a\\b", u"NUMBER")->number, 7U);
    EXPECT_EQ(registry.value(u"A\\B", u"Text"),
              (FakeRegistry::Value{platform::REG_SZ, 2, u"é", 0}));
    registry.setProviderMissing(true);
    EXPECT_THROW(registry.GetObject(u"StdRegProv"), RunTimeError);
}

} // namespace
} // namespace velmora::fakes
