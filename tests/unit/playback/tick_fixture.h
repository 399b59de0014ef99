#pragma once

// A program of two tracks whose ticks the test makes.

#include "tests/unit/program_fixture.h"

namespace velmora {

class Tick : public ProgramFixture {
protected:
    Tick() {
        speak(1);
        setVolumeBar(0);
        addRow(u"/m/a.mp3");
        addRow(u"/m/b.mp3");
    }
    void play(std::u16string_view path = u"/m/a.mp3") {
        openAndPlay(path);
        media.clearCommands();
    }
    Main &main() { return app.Main(); }
    // A text that is wider than the box by this many units.
    static std::u16string wide(const forms::Control &box, int units = 4) {
        return std::u16string(
            static_cast<std::size_t>(box.width() / 100) + static_cast<std::size_t>(units), u'w');
    }
};

} // namespace velmora
