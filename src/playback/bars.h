#pragma once

// What a release on a seek or volume bar does, the same in the three player windows. The three
// volume fills always show the one value.

#include "platform/forms/controls.h"
#include "platform/forms/form.h"
#include "playback/player.h"

namespace velmora {

class Velmora;

// The controls of a window in which seeking shows.
struct SeekControls {
    PlayerWindow window;
    forms::Form &form;
    forms::Control &load_Played_BG;
    forms::Label &playInfo_Show;
    forms::Control &nameBox;
};

// `x` (twips) from the bar's left edge; what lies left of it counts as 0, the right edge and beyond
// do nothing. Shows a busy pointer and says that it seeks.
void seekByRelease(Velmora &app, const SeekControls &controls, Twips x);

// Sets the volume by a release on this window's bar; its last 30 twips do nothing. The fills of the
// other two windows follow in proportion.
void setVolumeByRelease(Velmora &app, PlayerWindow window, Twips x);

// The same with the seek bar of Main, to a time (ms) that somebody else has named.
void seekToTime(Velmora &app, const SeekControls &controls, std::int32_t ms);

// Sets the volume to a share (0 to 1) of Main's bar, as far as a release on it could.
void setVolumeByShare(Velmora &app, double share);

// Silence, and all three fills empty. No level is kept.
void mute(Velmora &app);

} // namespace velmora
