#pragma once

// A whole program on the platform in memory, with the manual clock. Each test makes its own.

#include "base/text.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/playList_Form.h"
#include "settings/Language.h"
#include "settings/Language_Set.h"
#include "settings/setControl.h"
#include "tests/fakes/fake_platform.h"
#include "velmora.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {

using Texts = std::vector<std::u16string>;

class ProgramFixture : public ::testing::Test {
protected:
    fakes::FakePlatform fake;
    Velmora app{fake.bundle()};

    fakes::FakeFiles &files = fake.files;
    fakes::FakeMedia &media = fake.media;
    fakes::FakeWindows &windows = fake.windows;

    static constexpr auto programPath = u"/opt/velmora/velmora";

    // --- tracks -------------------------------------------------------------------------------
    // A file on the disk that the engine can open. Answers its path.
    std::u16string addTrack(std::u16string_view path, std::int32_t lengthMs = 60'000,
                            bool picture = false) {
        files.addFile(path, "sound");
        media.addMedium(files.GetShortPathNameA(path), lengthMs, picture);
        return std::u16string(path);
    }

    // The same, and a row of the play list.
    std::u16string addRow(std::u16string_view path, std::int32_t lengthMs = 60'000) {
        addRowOnly(path);
        return addTrack(path, lengthMs);
    }

    // A row whose file does not exist.
    void addRowOnly(std::u16string_view path) {
        app.playList_Form().playList_Item.addItem(app.player().getFileStem(path));
        app.playList_Form().List1.addItem(path);
    }

    void openAndPlay(std::u16string_view path) {
        app.player().open_File(std::u16string(path));
        app.player().play_Sub();
    }

    // The volume that the fade-in goes to, 0 to 1000.
    void setVolumeBar(std::int32_t level) {
        app.Main().Volume_Set_BG.setWidth(1000);
        app.Main().Volume_Set.setWidth(static_cast<Twips>(level));
    }

    std::int16_t rows() { return app.playList_Form().playList_Item.listCount(); }

    // --- the program ----------------------------------------------------------------------------
    // Texts in a language, without the start sequence.
    void speak(std::int32_t language) {
        app.setControl().Language_Index = language;
        app.Language_Set().language_Messages();
    }

    // A machine on which the start sequence has nothing to complain of.
    void prepareMachine() {
        fake.waveOut.addDevice();
        files.addFolder(fake.folders.temporary);
        files.addFile(programPath);
        fake.versions.addProgram(programPath, u"zkPlayer");
        fake.processes.executables = {programPath};
    }

    void start() {
        prepareMachine();
        app.start();
    }

    // One tick of Main's Timer1, whatever the time.
    void tickMain() { app.Main().Timer1.onTimer(); }
    // One tick of Main's Timer2.
    void tickCaption() { app.Main().Timer2.onTimer(); }

    static fakes::FakeWindows::Box boxOf(std::u16string_view text, platform::MsgBoxIcon icon,
                                         std::u16string_view title) {
        return {std::u16string(text), platform::MsgBoxButtons::Ok, icon, std::u16string(title)};
    }

    // Runs what must end the program, by way of its one exit.
    template <typename Work> void expectEnd(Work &&work) {
        EXPECT_THROW(std::forward<Work>(work)(), fakes::ProcessEnded);
        EXPECT_EQ(fake.processes.endStatuses, std::vector<int>{0});
    }
};

} // namespace velmora
