#pragma once

// Rolling a text that is wider than its box, as every window of the player does it.

#include "platform/forms/controls.h"

#include <string>

namespace velmora {

class Velmora;

// How far a tick moves a text that rolls, and how far it may leave its box (twips).
struct MarqueeMeasure {
    Twips step = 0;
    Twips margin = 0;
    // The desktop line asks for its direction once more behind the step to the left: the tick that
    // turns it moves it back to the right already. The lines of the windows do so a tick later.
    bool turnsBackAtOnce = false;
};
inline constexpr MarqueeMeasure lyricMarquee{50, 200};
inline constexpr MarqueeMeasure titleMarquee{30, 200};
inline constexpr MarqueeMeasure desktopMarquee{150, 1000, true};

struct MarqueeState {
    Twips left = 0;
    bool movingRight = false;
    friend bool operator==(const MarqueeState &, const MarqueeState &) = default;
};

// One tick of a text `textWidth` wide in a box `boxWidth` wide: left until its end is `margin`
// beyond the box's right edge, then right until its beginning is `margin` inside, and so on.
MarqueeState marqueeStep(MarqueeState now, Twips textWidth, Twips boxWidth,
                         const MarqueeMeasure &measure) noexcept;

// Where a text that is wider than its box stands after another took its place: where it stood, so
// long as the box shows some of it, else with the end that is nearer `margin` inside.
Twips leftInSight(Twips left, Twips textWidth, Twips boxWidth,
                  const MarqueeMeasure &measure) noexcept;

// The same step on a label that is wider than its box, from where it is in sight. Its tag is the
// direction: "1" right, anything else left; written only when the direction turns ("1" and "2").
void rollLabel(forms::Label &label, Twips boxWidth, const MarqueeMeasure &measure);

// Half the box less half the label.
void centreLabel(forms::Label &label, Twips boxWidth);

// Puts a label right whose text was changed between two steps: centred where it fits, else in
// sight.
void settleLabel(forms::Label &label, Twips boxWidth, const MarqueeMeasure &measure);

// Shows the current lyric line: rolls it when it is wider than the box, a new line (told by
// `shownLine`) starting at the left edge; centres it otherwise.
void showLyricLine(Velmora &app, forms::Label &label, Twips boxWidth, std::u16string &shownLine);

} // namespace velmora
