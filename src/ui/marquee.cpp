#include "ui/marquee.h"

#include "base/numbers.h"
#include "lyrics/lrcForm.h"
#include "velmora.h"

namespace velmora {

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
    if (after.movingRight != before.movingRight)
        label.setTag(after.movingRight ? u"1" : u"2");
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

} // namespace velmora
