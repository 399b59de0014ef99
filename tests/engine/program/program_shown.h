#pragma once

// The program with real windows on a private screen, the real sound engine, a real disk and real
// time. Only what would leave the test's own folder is in memory: processes, the Internet, dialogs.

#include "pulse_server.h"
#include "xvfb_server.h"

#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/media/mci_interpreter.h"
#include "platform/backends/picture/picture.h"
#include "platform/backends/qt/system/qt_windows.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "platform/backends/sound/device/sound.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/playList_Form.h"
#include "settings/setControl.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "velmora.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace velmora::tests {

// A folder of the test's own, gone with it.
class OwnFolder {
public:
    OwnFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "shownXXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    ~OwnFolder() { std::filesystem::remove_all(path_); }
    OwnFolder(const OwnFolder &) = delete;
    OwnFolder &operator=(const OwnFolder &) = delete;
    const std::string &path() const { return path_; }

private:
    std::string path_;
};

class ProgramShown : public testing::Test {
protected:
    using Clock = std::chrono::steady_clock;

    static void SetUpTestSuite() {
        server_ = new PulseServer;
        server_->exportToEnvironment();
        recorder_ = new MonitorRecorder(*server_);
        display_ = new XvfbServer;
        display_->exportToEnvironment();
        platform::QtOptions options;
        options.note = [](std::string_view) {};
        windows_ = platform::QtWindowSystem::make(options).release();
        // A sink that was idle has rendered two seconds of silence ahead.
        recorder_->waitForFrames(recorder_->framesOf(2200), 30000);
    }
    static void TearDownTestSuite() {
        delete windows_;
        delete display_;
        delete recorder_;
        delete server_;
    }

    void SetUp() override {
        ASSERT_TRUE(server_->running());
        ASSERT_TRUE(display_->running());
        ASSERT_NE(windows_, nullptr);
        fake_.waveOut.addDevice();
        fake_.versions.addProgram(u"/opt/velmora/velmora", u"zkPlayer");
        fake_.processes.executables = {u"/opt/velmora/velmora"};
        app_->start();
    }

    // Handles events for at most so long.
    static void pump(int ms) {
        windows_->waitForEvents(Clock::now() + std::chrono::milliseconds(ms));
    }
    static bool pumpUntil(const std::function<bool()> &condition, int limitMs) {
        const auto end = Clock::now() + std::chrono::milliseconds(limitMs);
        while (!condition()) {
            if (Clock::now() >= end)
                return false;
            pump(5);
        }
        return true;
    }

    fakes::FakePlatform fake_;
    OwnFolder folder_;
    platform::HomeFolders homes_ = {folder_.path(), folder_.path() + "/config",
                                    folder_.path() + "/data", folder_.path() + "/cache",
                                    folder_.path()};
    std::unique_ptr<platform::AnsiText> ansi_ =
        platform::makeAnsiText([] { return std::u16string(); });
    platform::SqliteRegistry registry_{homes_.registryFile(), *ansi_};
    std::unique_ptr<platform::Clock> clock_ = platform::makeClock();
    std::unique_ptr<platform::FileSystem> files_ = platform::makeFileSystem(*ansi_);
    std::unique_ptr<platform::Folders> folders_ = platform::makeFolders(homes_);
    std::unique_ptr<platform::WaitableTimers> waits_ = platform::makeWaitableTimers(
        [](Clock::time_point due) { return windows_->waitForEvents(due); });
    platform::media::MciInterpreter media_{platform::sound::makeSoundOpener(),
                                           platform::makePictureOpener()};
    std::unique_ptr<Velmora> app_ =
        std::make_unique<Velmora>(fakes::with(fake_.bundle(), {.ansi = ansi_.get(),
                                                               .clock = clock_.get(),
                                                               .files = files_.get(),
                                                               .folders = folders_.get(),
                                                               .media = &media_,
                                                               .registry = &registry_,
                                                               .waitableTimers = waits_.get(),
                                                               .windows = windows_}));

    inline static PulseServer *server_ = nullptr;
    inline static MonitorRecorder *recorder_ = nullptr;
    inline static XvfbServer *display_ = nullptr;
    inline static platform::QtWindowSystem *windows_ = nullptr;
};

} // namespace velmora::tests
