#pragma once

// What the designs' `takeSkin` is made of, which formc writes.

#include "platform/forms/controls.h"
#include "playback/Main.design.h"

namespace velmora::skin {

inline void takeHand(forms::Control &control, const Main_Design &main) {
    control.setMouseIcon(main.playButton.mouseIcon());
    control.setMousePointer(forms::pointerCustom);
}

} // namespace velmora::skin
