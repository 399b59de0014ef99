#include "playback/VideoScreen_Form.h"

#include "base/run_time_error.h"
#include "lyrics/lrcForm.h"
#include "platform/contracts/system.h"
#include "platform/contracts/windows.h"
#include "platform/forms/keys.h"
#include "playback/Main.h"
#include "playback/MenuForm.h"
#include "playback/bars.h"
#include "playback/display.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language_Set.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

VideoScreen_Form::VideoScreen_Form(Velmora &app)
    : VideoScreen_Form_Design(app.platform().windows), app_(app) {}

void VideoScreen_Form::load() {
    setClickHandlers();
    setBarHandlers();
    setDragHandlers();
    on().KeyDown = [this](forms::KeyEvent &key) { keyDown(key); };
    // A wish to close only hides the window; the program alone lets it go.
    on().QueryUnload = [this](bool &cancel) {
        cancel = true;
        close_Click();
    };
    Timer1.onTimer = [this] { tick(); };
    app_.Language_Set().language_VideoScreen_Form();
    // A window made anew for the next track comes back in the mode of the one before.
    if (app_.player().isFullScreen == 0)
        setScreenSize_Default();
    else
        setFullScreen(true);
}

void VideoScreen_Form::setClickHandlers() {
    wire(*this);
    pauseButton.on().Click = [this] { app_.Main().pauseButton_Click(); };
    stopButton.on().Click = [this] { app_.Main().stopButton_Click(); };
    nextButton.on().Click = [this] { app_.Main().nextButton_Click(); };
    upButton.on().Click = [this] { app_.Main().upButton_Click(); };
    AudioSource_H.on().Click = [this] { app_.Main().choose_Channel(1); };
    AudioSource_L.on().Click = [this] { app_.Main().choose_Channel(2); };
    AudioSource_R.on().Click = [this] { app_.Main().choose_Channel(0); };
}

void VideoScreen_Form::setBarHandlers() {
    load_Played_BG.on().MouseUp = [this](const forms::MouseEvent &event) {
        seekByRelease(
            app_, {PlayerWindow::VideoScreen_Form, *this, load_Played_BG, playInfo_Show, nameBox},
            event.x);
    };
    Volume_Set_BG.on().MouseUp = [this](const forms::MouseEvent &event) {
        setVolumeByRelease(app_, PlayerWindow::VideoScreen_Form, event.x);
    };
    Volume_ICO.on().Click = [this] { mute(app_); };
}

void VideoScreen_Form::setDragHandlers() {
    forms::ControlEvents *const areas[] = {&on(), &title.on(), &title_ICO.on()};
    for (forms::ControlEvents *area : areas) {
        app_.formSet().make_Draggable(*this, *area);
        area->MouseUp = [this](const forms::MouseEvent &event) {
            if (event.button == forms::rightButton && playButton.enabled())
                app_.MenuForm().open_Menu(*this);
        };
    }
}

void VideoScreen_Form::playButton_Click() {
    velmora::player &player = app_.player();
    if (!app_.lrcForm().Timer1.running() && app_.saveOrOpenFile().fileExists(player.nowPlay_File))
        player.open_File(player.nowPlay_File);
    player.play_Sub();
}

void VideoScreen_Form::close_Click() { hide(); }

// --- keys ----------------------------------------------------------------------------------------

void VideoScreen_Form::keyDown(const forms::KeyEvent &key) {
    struct Row {
        std::int16_t code;
        void (*work)(VideoScreen_Form &form, Velmora &app);
    };
    static constexpr Row rows[] = {
        {forms::keyEscape,
         [](VideoScreen_Form &form, Velmora &app) {
             app.player().isFullScreen == 0 ? form.hide() : form.setScreenSize_Default();
         }},
        {forms::keyEnter,
         [](VideoScreen_Form &form, Velmora &app) {
             app.player().isFullScreen == 0 ? form.setFullScreen(false)
                                            : form.setScreenSize_Default();
         }},
        {forms::keyF11, [](VideoScreen_Form &form, Velmora &) { form.hide(); }},
        {forms::keyF6,
         [](VideoScreen_Form &, Velmora &app) { app.player().next_Sub(directionNext); }},
        {forms::keyF5,
         [](VideoScreen_Form &, Velmora &app) { app.player().next_Sub(directionPrevious); }},
        {forms::keyF4, [](VideoScreen_Form &, Velmora &app) { app.Main().closeAndStop(); }},
        {forms::keyF3, [](VideoScreen_Form &, Velmora &app) { app.player().pause_Sub(); }},
        {forms::keyF2, [](VideoScreen_Form &, Velmora &app) { app.player().play_Sub(); }},
        {forms::keySpace, [](VideoScreen_Form &form, Velmora &) { form.spaceKey(); }},
    };
    for (const Row &row : rows)
        if (row.code == key.keyCode)
            row.work(*this, app_);
}

void VideoScreen_Form::spaceKey() {
    const std::int32_t status = app_.player().get_PlayStatus();
    if (status == statusOther)
        app_.player().play_Sub();
    else if (status == statusPlaying)
        app_.player().pause_Sub();
}

// --- the tick ------------------------------------------------------------------------------------

void VideoScreen_Form::tick() {
    passOver([this] {
        platform::Clock &clock = app_.platform().clock;
        const std::time_t now = clock.now();
        nowTime.setCaption(clock.shortDate(now) + u" " + clock.shortTime(now));
    });
    passOver([this] {
        if (app_.player().get_Length() == 0) {
            app_.Main().stop_Sub();
        }
    });
    passOver([this] {
        showState(app_, {PlayerWindow::VideoScreen_Form, playButton, pauseButton, play_Time,
                         playInfo_Show, nameBox, load_Played});
    });
    if (!app_.player().wasOpen() && !visible())
        Timer1.rest();
}

} // namespace velmora
