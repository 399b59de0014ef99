#pragma once

// The main window over one track.

#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

namespace velmora {

class MainWindow : public ProgramFixture {
protected:
    MainWindow() {
        speak(1);
        setVolumeBar(0);
        addRow(u"/m/a.mp3");
    }
    Main &main() { return app.Main(); }
    static void click(forms::Control &control) { clickOn(control); }
    static void release(forms::Control &control, Twips x, std::int16_t button = forms::leftButton) {
        control.on().MouseUp({button, 0, x, 5});
    }
    void play() {
        openAndPlay(u"/m/a.mp3");
        media.clearCommands();
    }
};

} // namespace velmora
