#pragma once

// What the ticks of the player windows have in common: showing state, times and title.

#include "platform/forms/controls.h"
#include "playback/player.h"

#include <string_view>

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

// What the time says in the stopped look, and never while a medium is in use that lasts a second.
inline constexpr std::u16string_view stoppedTime = u"00:00:00 - 00:00:00";

// Asks for the state and shows it. Asking may start the next track; any answer but "playing" is
// asked for a second time, and one that is then neither paused nor idle brings the stopped look.
void showState(Velmora &app, const StateControls &controls);

// The stopped look of one window.
void showStopped(Velmora &app, const StateControls &controls, forms::Label &lrc_Text);

} // namespace velmora
