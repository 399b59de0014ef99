#include "playback/display.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "lyrics/lrcForm.h"
#include "playback/Main.h"
#include "settings/Language.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr Twips emptyBarWidth = 15;

} // namespace

MarqueeState marqueeStep(MarqueeState now, Twips textWidth, Twips boxWidth,
                         const MarqueeMeasure &measure) noexcept {
    const bool wasMovingRight = now.movingRight;
    if (!wasMovingRight) {
        now.left -= measure.step;
        now.movingRight = -(textWidth - boxWidth) - measure.margin >= now.left;
    }
    if (wasMovingRight || (now.movingRight && measure.turnsBackAtOnce)) {
        now.left += measure.step;
        now.movingRight = now.left < measure.margin;
    }
    return now;
}

Twips leftInSight(Twips left, Twips textWidth, Twips boxWidth,
                  const MarqueeMeasure &measure) noexcept {
    if (left + textWidth <= 0)
        return boxWidth - textWidth - measure.margin;
    return left >= boxWidth ? measure.margin : left;
}

void settleLabel(forms::Label &label, Twips boxWidth, const MarqueeMeasure &measure) {
    if (label.width() > boxWidth)
        label.setLeft(leftInSight(label.left(), label.width(), boxWidth, measure));
    else
        centreLabel(label, boxWidth);
}

void rollLabel(forms::Label &label, Twips boxWidth, const MarqueeMeasure &measure) {
    const MarqueeState before{leftInSight(label.left(), label.width(), boxWidth, measure),
                              leadingNumber(label.tag()) == 1};
    const MarqueeState after = marqueeStep(before, label.width(), boxWidth, measure);
    label.setLeft(after.left);
    if (after.movingRight != before.movingRight) {
        label.setTag(after.movingRight ? u"1" : u"2");
    }
}

void centreLabel(forms::Label &label, Twips boxWidth) {
    label.setLeft(boxWidth / 2 - label.width() / 2);
}

void showLyricLine(Velmora &app, forms::Label &label, Twips boxWidth, std::u16string &shownLine) {
    const std::u16string &line = app.lrcForm().nowLrcLine;
    label.setCaption(line);
    if (label.width() <= boxWidth) {
        label.setAlignment(forms::Alignment::Centre);
        centreLabel(label, boxWidth);
        return;
    }
    if (line != shownLine) {
        label.setAlignment(forms::Alignment::Left);
        label.setLeft(0);
        shownLine = line;
    }
    rollLabel(label, boxWidth, lyricMarquee);
}

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
    if (controls.playInfo_Show.width() > controls.nameBox.width()) {
        rollLabel(controls.playInfo_Show, controls.nameBox.width(), titleMarquee);
    } else {
        centreLabel(controls.playInfo_Show, controls.nameBox.width());
    }
}

void showStopped(Velmora &app, const StateControls &controls, forms::Label &lrc_Text) {
    lrc_Text.setCaption(u"");
    controls.playInfo_Show.setCaption(app.Language().msg_Welcome);
    centreLabel(controls.playInfo_Show, controls.nameBox.width());
    controls.play_Time.setCaption(u"00:00:00 - 00:00:00");
    controls.load_Played.setWidth(emptyBarWidth);
    controls.playButton.setVisible(true);
    controls.pauseButton.setVisible(false);
}

} // namespace velmora
