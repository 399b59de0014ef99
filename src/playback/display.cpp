#include "playback/display.h"

#include "base/run_time_error.h"
#include "playback/Main.h"
#include "settings/Language.h"
#include "ui/marquee.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr Twips emptyBarWidth = 15;

} // namespace

void showState(Velmora &app, const StateControls &controls) {
    velmora::player &player = app.player();
    if (player.get_PlayStatus() != statusPlaying) {
        if (player.get_PlayStatus() == statusOther) {
            controls.playButton.setVisible(true);
            controls.pauseButton.setVisible(false);
        } else {
            app.Main().stop_Sub();
        }
        return;
    }
    controls.playButton.setVisible(false);
    controls.pauseButton.setVisible(true);
    const std::u16string position = player.get_PositionText();
    controls.play_Time.setCaption(position + u" - " + player.get_LengthText());
    controls.playInfo_Show.setCaption(player.nowPlay_Title);
    passOver([&] {
        controls.load_Played.setWidth(static_cast<Twips>(player.get_PlayedWidth(controls.window)));
    });
    if (controls.playInfo_Show.width() > controls.nameBox.width())
        rollLabel(controls.playInfo_Show, controls.nameBox.width(), titleMarquee);
    else
        centreLabel(controls.playInfo_Show, controls.nameBox.width());
}

void showStopped(Velmora &app, const StateControls &controls, forms::Label &lrc_Text) {
    lrc_Text.setCaption(u"");
    controls.playInfo_Show.setCaption(app.Language().msg_Welcome);
    centreLabel(controls.playInfo_Show, controls.nameBox.width());
    controls.play_Time.setCaption(stoppedTime);
    controls.load_Played.setWidth(emptyBarWidth);
    controls.playButton.setVisible(true);
    controls.pauseButton.setVisible(false);
}

} // namespace velmora
