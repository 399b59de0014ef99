#pragma once

// The video window over one film.

#include "tests/unit/program_fixture.h"

#include "base/numbers.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"

#include <functional>
#include <utility>

namespace velmora {

class Video : public ProgramFixture {
protected:
    Video() {
        speak(1);
        setVolumeBar(0);
        app.setControl().VideoInterface = 1;
        addTrack(u"/m/film.avi", 60'000, true);
    }
    VideoScreen_Form &window() { return app.VideoScreen_Form(); }
    static Twips rightOf(const forms::Control &control) { return control.left() + control.width(); }
    static Twips middleOf(const forms::Control &control) {
        return control.top() + control.height() / 2;
    }
    void key(std::int16_t code) {
        forms::KeyEvent event{code, 0};
        window().on().KeyDown(event);
    }
    // The default size, two larger ones, and the whole screen.
    void inEachSize(const std::function<void(Twips wide, Twips high, bool full)> &check) {
        check(10950, 7875, false);
        for (const auto &[wide, high] : {std::pair{10951, 7876}, std::pair{19215, 11520}}) {
            SCOPED_TRACE(wide);
            window().setScreenSize(wide, high, true);
            check(static_cast<Twips>(wide), static_cast<Twips>(high), false);
        }
        SCOPED_TRACE("full screen");
        window().setFullScreen(true);
        check(1280 * 15, 800 * 15, true);
    }
    void play() {
        openAndPlay(u"/m/film.avi");
        media.clearCommands();
    }
    int puts() {
        int count = 0;
        for (const auto &text : media.texts())
            count += startsWith(text, u"put ") ? 1 : 0;
        return count;
    }
};

} // namespace velmora
