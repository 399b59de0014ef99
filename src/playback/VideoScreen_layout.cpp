// The sizes of the video window, and where its controls stand in each. All numbers are twips.

#include "playback/VideoScreen_Form.h"

#include "base/run_time_error.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "settings/skinSet.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr Twips gap = 100;         // between the groups of the strip, and to its edges
constexpr Twips belowTitle = 10;   // from the title icon to the picture
constexpr Twips behindTitle = 200; // from the title to the text area, and from there to the channel
constexpr Twips buttonSize = 495;
constexpr Twips fullScreenFromRight = 3240;    // the title row's label, from the right edge
constexpr RectTwips fillInset{50, 40, 70, 80}; // of a fill in its bar

Twips rightOf(const forms::Control &control) { return control.left() + control.width(); }

// The top that centres a control on another one.
Twips centredOn(const forms::Control &control, const forms::Control &other) {
    return other.top() + (other.height() - control.height()) / 2;
}

// Puts a control's right edge `gap` ahead of another control, in its row.
void putAhead(forms::Control &control, const forms::Control &other, const forms::Control &row) {
    control.setLeft(other.left() - gap - control.width());
    control.setTop(centredOn(control, row));
}

} // namespace

void VideoScreen_Form::setScreenSize_Default() { setScreenSize(defaultWidth, defaultHeight, true); }

void VideoScreen_Form::setScreenSize(std::int32_t newWidth, std::int32_t newHeight, bool keep) {
    passOver([&] {
        if (!keep)
            app_.player().pause_Sub();
        const auto wide = static_cast<Twips>(newWidth);
        const auto high = static_cast<Twips>(newHeight);
        const PointTwips at = isWhole_ ? before_ : PointTwips{left(), top()};
        isWhole_ = false;
        move({at.x, at.y, wide, high});
        // A put over the whole screen has had it placed for that width.
        close.setLeft(skinSet::close_Left(wide, close.width()));
        fullScreen_Button.setLeft(wide - fullScreenFromRight);
        const Twips titleEnd = title_ICO.top() + title_ICO.height();
        videoScreen.move({0, titleEnd + belowTitle, wide, high - titleEnd});
        set_Str_ControlVideo_Place();
        layOut(false, keep);
    });
}

void VideoScreen_Form::setFullScreen(bool keep) {
    passOver([&] {
        if (!keep)
            app_.player().pause_Sub();
        if (!isWhole_)
            before_ = {left(), top()};
        isWhole_ = true;
        move({0, 0, app_.platform().windows.screenWidth(), app_.platform().windows.screenHeight()});
        showTitleRow(false);
        videoScreen.move({0, 0, width(), height()});
        layOut(true, keep);
    });
}

void VideoScreen_Form::screen_Changed() {
    if (isWhole_)
        setFullScreen(true);
}

void VideoScreen_Form::fullScreen_Button_Click() {
    if (app_.player().isFullScreen == 0) {
        setFullScreen(false);
        return;
    }
    setScreenSize_Default();
    setScreenSize(static_cast<std::int32_t>(width()), static_cast<std::int32_t>(height()), true);
}

void VideoScreen_Form::set_Str_ControlVideo_Place() {
    nameBox.setLeft(rightOf(title) + behindTitle);
    nameBox.setHeight(title.height());
    nameBox.setTop(skinSet::title_Top(static_cast<std::int16_t>(title.height())));
}

void VideoScreen_Form::showTitleRow(bool visible) {
    title_ICO.setVisible(visible);
    title.setVisible(visible);
    close.setVisible(visible);
    fullScreen_Button.setVisible(visible);
}

void VideoScreen_Form::layOut(bool fullScreen, bool keep) {
    layTransport();
    layVolume();
    const Twips textWidth = AudioSource_H.left() - behindTitle - nameBox.left();
    nameBox.setWidth(textWidth);
    playInfo_Show.setWidth(textWidth);
    layStrip();
    if (!keep && !putAndPlay())
        return;
    if (fullScreen) {
        app_.player().isFullScreen = -1;
        app_.formSet().set_Topmost(hWnd(), true);
    } else {
        showTitleRow(true);
        app_.player().isFullScreen = 0;
    }
}

void VideoScreen_Form::layTransport() {
    load_Played_BG.move({gap, 50, width() - 2 * gap, 200});
    load_Played.move({load_Played_BG.left() + fillInset.left, load_Played_BG.top() + fillInset.top,
                      0, load_Played_BG.height() - fillInset.height});
    const Twips row = load_Played_BG.top() + load_Played_BG.height() + 50;
    playButton.move({gap, row, buttonSize, buttonSize});
    pauseButton.move(playButton.place());
    stopButton.move({rightOf(playButton), row, buttonSize, buttonSize});
    upButton.move({rightOf(stopButton), row, buttonSize, buttonSize});
    nextButton.move({rightOf(upButton), row, buttonSize, buttonSize});
    play_Time.setLeft(rightOf(nextButton) + gap);
    play_Time.setTop(centredOn(play_Time, upButton));
}

// From the right edge to the left: clock, volume, full screen, channel.
void VideoScreen_Form::layVolume() {
    nowTime.setLeft(width() - gap - nowTime.width());
    nowTime.setTop(centredOn(nowTime, upButton));
    Volume_Set_BG.setWidth(1600);
    Volume_Set_BG.setHeight(200);
    putAhead(Volume_Set_BG, nowTime, upButton);
    const velmora::Main &main = app_.Main();
    if (main.Volume_Set_BG.width() == 0)
        velmora::raise(ErrorNumber::DivisionByZero);
    const Twips share = main.Volume_Set.width() / main.Volume_Set_BG.width();
    Volume_Set.move({Volume_Set_BG.left() + fillInset.left, Volume_Set_BG.top() + fillInset.top,
                     share * Volume_Set_BG.width() - fillInset.width,
                     Volume_Set_BG.height() - fillInset.height});
    putAhead(Volume_ICO, Volume_Set_BG, upButton);
    putAhead(fullScreen_imgButton, Volume_ICO, upButton);
    putAhead(AudioSource_H, fullScreen_imgButton, upButton);
    AudioSource_L.move(AudioSource_H.place());
    AudioSource_R.move(AudioSource_H.place());
}

// The strip takes its height from the picture.
void VideoScreen_Form::layStrip() {
    videoScreen_Control.setBackColor(backColor());
    const Twips high = playButton.height() + load_Played_BG.top() + playButton.top();
    videoScreen_Control.move({0, height() - high, width(), high});
    videoScreen_Control.setVisible(true);
    videoScreen.setHeight(videoScreen.height() - high);
}

bool VideoScreen_Form::isCurrent() const {
    return app_.videoScreenLoaded() && &app_.VideoScreen_Form() == this;
}

// False when the film has given way meanwhile: the mode is now that of the next one's window.
bool VideoScreen_Form::putAndPlay() {
    app_.player().put_VideoWindowWhole();
    const bool wasCurrent = isCurrent();
    app_.player().play_Sub();
    return !wasCurrent || isCurrent();
}

} // namespace velmora
