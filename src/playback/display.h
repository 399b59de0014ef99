#pragma once

// What the ticks of the player windows have in common: showing state, times and title.

#include "platform/forms/controls.h"
#include "playback/player.h"

namespace velmora {

class Velmora;

// The controls in which a window shows state, times and title.
struct StateControls {
    PlayerWindow window;
    forms::Control &playButton;
    forms::Control &pauseButton;
    forms::Label &play_Time;
    forms::Label &playInfo_Show;
    forms::Control &nameBox;
    forms::Control &load_Played;
};

// Asks for the state and shows it. Asking may start the next track; any answer but "playing" is
// asked for a second time, and one that is then neither paused nor idle brings the stopped look.
void showState(Velmora &app, const StateControls &controls);

// The stopped look of one window.
void showStopped(Velmora &app, const StateControls &controls, forms::Label &lrc_Text);

} // namespace velmora
