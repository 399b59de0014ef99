#include "playback/bars.h"

#include "base/numbers.h"
#include "lyrics/lrcForm.h"
#include "playback/Main.h"
#include "playback/VideoScreen_Form.h"
#include "playback/display.h"
#include "playback/miniForm.h"
#include "settings/Language.h"
#include "ui/marquee.h"
#include "velmora.h"

#include <algorithm>
#include <array>
#include <utility>

namespace velmora {

namespace {

constexpr Twips deadEnd = 30; // of a volume bar

struct VolumeBar {
    PlayerWindow window;
    forms::Control &background;
    forms::Control &fill;
};

std::array<VolumeBar, 3> volumeBars(Velmora &app) {
    velmora::Main &main = app.Main();
    velmora::miniForm &mini = app.miniForm();
    velmora::VideoScreen_Form &video = app.VideoScreen_Form();
    return {{{PlayerWindow::Main, main.Volume_Set_BG, main.Volume_Set},
             {PlayerWindow::miniForm, mini.Volume_Set_BG, mini.Volume_Set},
             {PlayerWindow::VideoScreen_Form, video.Volume_Set_BG, video.Volume_Set}}};
}

template <typename Seek> void seekShown(Velmora &app, const SeekControls &controls, Seek &&seek) {
    controls.load_Played_BG.setMousePointer(forms::pointerHourglass);
    controls.form.setMousePointer(forms::pointerHourglass);
    controls.playInfo_Show.setCaption(app.Language().msg_Seeking);
    centreLabel(controls.playInfo_Show, controls.nameBox.width());
    const player::Medium medium = app.player().medium();
    std::forward<Seek>(seek)();
    if (app.lrcForm().hasLrc && !app.player().isGone(medium))
        app.lrcForm().nowLrcLine = app.lrcForm().lrcWaitText;
    controls.load_Played_BG.setMousePointer(forms::pointerCustom);
    controls.form.setMousePointer(forms::pointerDefault);
}

} // namespace

void seekByRelease(Velmora &app, const SeekControls &controls, Twips x) {
    if (x < controls.load_Played_BG.width()) {
        seekShown(
            app, controls, [&] { app.player().seek_ByBar(controls.window, std::max(x, 0.0F)); });
    }
}

void seekToTime(Velmora &app, const SeekControls &controls, std::int32_t ms) {
    seekShown(
        app, controls, [&] { app.player().seek_To(ms); });
}

void setVolumeByRelease(Velmora &app, PlayerWindow window, Twips x) {
    const std::array<VolumeBar, 3> bars = volumeBars(app);
    const VolumeBar &own = bars[static_cast<std::size_t>(window)];
    const Twips whole = own.background.width();
    if (x > whole - deadEnd)
        return;
    x = std::max(x, 0.0F);
    app.player().set_Volume(roundToInt32(static_cast<double>(x) / whole * 1000));
    own.fill.setWidth(x);
    for (const VolumeBar &bar : bars)
        if (bar.window != window)
            bar.fill.setWidth(own.fill.width() / whole * bar.background.width());
}

void setVolumeByShare(Velmora &app, double share) {
    const Twips whole = app.Main().Volume_Set_BG.width();
    const auto wanted = static_cast<Twips>(std::clamp(share, 0.0, 1.0) * whole);
    setVolumeByRelease(app, PlayerWindow::Main, std::min(wanted, whole - deadEnd));
}

void mute(Velmora &app) {
    app.player().set_Volume(0);
    for (const VolumeBar &bar : volumeBars(app))
        bar.fill.setWidth(0);
}

} // namespace velmora
