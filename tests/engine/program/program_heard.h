#pragma once

// The program over the real media engine and a recorded sound server: only its windows, its disk
// and its settings are in memory, and the fakes' clock goes with the real one.

#include "picture_listening.h"
#include "xvfb_server.h"

#include "platform/backends/media/mci_interpreter.h"
#include "platform/backends/picture/picture.h"
#include "platform/backends/sound/device/sound.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/playList_Form.h"
#include "settings/setControl.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "velmora.h"

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <thread>

namespace velmora::tests {

class ProgramHeard : public PictureHeard {
protected:
    static void SetUpTestSuite() {
        PictureHeard::SetUpTestSuite();
        display_ = new XvfbServer;
        display_->exportToEnvironment();
    }
    static void TearDownTestSuite() {
        delete display_;
        PictureHeard::TearDownTestSuite();
    }

    ProgramHeard() {
        std::string pattern = (std::filesystem::temp_directory_path() / "heardXXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        // Waits of the program last as long as they say, and as long as the machine makes them.
        fake_.waitableTimers.onWait = [this] {
            std::this_thread::sleep_until(realTime(fake_.clock.steadyTime + 1));
            fake_.clock.advance(std::max<std::int64_t>(realMs() - fake_.clock.steadyTime - 1, 0));
        };
        fake_.waveOut.addDevice();
        fake_.files.addFolder(fake_.folders.temporary);
        fake_.files.addFile(programPath);
        fake_.versions.addProgram(programPath, u"zkPlayer");
        fake_.processes.executables = {programPath};
        app_.start();
        app_.Main().Volume_Set.setWidth(app_.Main().Volume_Set_BG.width());
    }
    ~ProgramHeard() override { std::filesystem::remove_all(folder_); }

    // --- tracks ----------------------------------------------------------------------------------
    // A second of one frequency on each side at half of full scale, loud from its first sample to
    // its last. Answers its path.
    std::string tone(const std::string &name, double left, double right, double seconds = 1.0) {
        constexpr int rate = 44100;
        const auto frames = static_cast<std::uint32_t>(seconds * rate);
        std::string data;
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            for (const double frequency : {left, right}) {
                const double angle = 2 * std::numbers::pi * frequency * frame / rate;
                append(data, static_cast<std::uint32_t>(std::lround(16384 * std::cos(angle))), 2);
            }
        }
        std::string file = "RIFF";
        append(file, static_cast<std::uint32_t>(36 + data.size()), 4);
        file += "WAVEfmt ";
        append(file, 16, 4);
        append(file, 1, 2); // whole numbers
        append(file, 2, 2);
        append(file, rate, 4);
        append(file, rate * 4, 4);
        append(file, 4, 2);
        append(file, 16, 2);
        file += "data";
        append(file, static_cast<std::uint32_t>(data.size()), 4);
        const std::string path = (folder_ / name).string();
        std::ofstream(path, std::ios::binary) << file << data;
        return path;
    }

    // Makes a file of the real disk one of the program's, and a row of its list.
    std::u16string row(const std::string &path) {
        const std::u16string text(path.begin(), path.end());
        fake_.files.addFile(text, "sound");
        app_.playList_Form().playList_Item.addItem(app_.player().getFileStem(text));
        app_.playList_Form().List1.addItem(text);
        return text;
    }
    void playRow(std::int16_t index) {
        app_.player().nowPlay_Index = index;
        app_.player().open_File(
            app_.playList_Form().List1.list(static_cast<std::int16_t>(index - 1)));
        app_.player().play_Sub();
    }

    // --- time ------------------------------------------------------------------------------------
    // Lets the program's timers tick in real time until the condition holds.
    bool runUntil(const std::function<bool()> &condition, int limitMs = 60'000) {
        const auto end = Clock::now() + std::chrono::milliseconds(limitMs);
        while (!condition()) {
            if (Clock::now() >= end)
                return false;
            std::this_thread::sleep_until(realTime(fake_.clock.steadyTime + 1));
            fake_.windows.advance(std::max<std::int64_t>(realMs() - fake_.clock.steadyTime, 0));
        }
        return true;
    }
    // Lets the program run while so much is recorded.
    void listen(int ms) {
        const std::size_t until = recorder_->frames() + recorder_->framesOf(ms);
        EXPECT_TRUE(runUntil([&] { return recorder_->frames() >= until; }));
    }

    fakes::FakePlatform fake_;
    platform::media::MciInterpreter media_{platform::sound::makeSoundOpener(),
                                           platform::makePictureOpener()};
    Velmora app_{bundle()};
    std::filesystem::path folder_;

private:
    static constexpr auto programPath = u"/opt/velmora/velmora";

    static void append(std::string &bytes, std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i)
            bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
    }
    Clock::time_point realTime(std::int64_t fakeMs) const {
        return begun_ + std::chrono::milliseconds(fakeMs);
    }
    std::int64_t realMs() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begun_).count();
    }
    platform::Platform bundle() { return fakes::with(fake_.bundle(), {.media = &media_}); }

    Clock::time_point begun_ = Clock::now();
    inline static XvfbServer *display_ = nullptr;
};

} // namespace velmora::tests
