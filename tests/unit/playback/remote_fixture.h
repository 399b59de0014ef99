#pragma once

// A program that is up, over three tracks, with the rest of the desktop in memory.

#include "tests/unit/program_fixture.h"

#include "playback/miniForm.h"
#include "playback/remoteControl.h"

namespace velmora {

class RemoteFixture : public ProgramFixture {
protected:
    RemoteFixture() {
        speak(1);
        setVolumeBar(0);
        addRow(u"/m/a.mp3", 60'000);
        addRow(u"/m/b.mp3", 90'000);
        addRow(u"/m/c.mp3", 30'000);
        app.setControl().Path_List = u"/lists";
        files.addFolder(u"/lists");
        main().Timer1.setRunning(true);
        app.remoteControl().start();
    }
    Main &main() { return app.Main(); }
    fakes::FakeRemote &remote = fake.remote;
    platform::RemoteControlled &player() { return *remote.player; }

    // Two ticks: what is opened or closed in one shows at the end of the next.
    void settle() {
        tickMain();
        tickMain();
    }
    void play(std::u16string_view path = u"/m/a.mp3") {
        openAndPlay(path);
        settle();
        media.clearCommands();
    }
    void ask(platform::RemoteCommand command) { player().command(command); }
    const platform::NowPlaying &now() { return remote.now(); }
    std::vector<platform::RemoteStatus> statuses() {
        std::vector<platform::RemoteStatus> all;
        for (const platform::NowPlaying &one : remote.published)
            if (all.empty() || all.back() != one.status)
                all.push_back(one.status);
        return all;
    }
    int tracksTold() {
        std::vector<std::u16string> all;
        for (const platform::NowPlaying &one : remote.published) {
            const std::u16string all_of_it = one.path + u"|" + one.title + u"|" + one.lyric;
            if (all.empty() || all.back() != all_of_it)
                all.push_back(all_of_it);
        }
        return static_cast<int>(all.size());
    }
};

} // namespace velmora
