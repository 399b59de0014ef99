#pragma once

// The mini strip that stands in for Main and the play list. It sits at the upper edge of the screen
// and slides out of sight when the pointer leaves it.

#include "playback/miniForm.design.h"

#include <cstdint>
#include <string>

namespace velmora {

class Velmora;
struct StateControls;

class miniForm : public miniForm_Design {
public:
    explicit miniForm(Velmora &app);
    void load();

    // The strip hides by itself; 0 while its lock is closed.
    std::int16_t auto_Hide = -1;

    // Back to the main window; the play list comes along if it was open.
    void mini_Button_Click();
    void playButton_Click();
    void stopButton_Click();

    // The stopped look; a part of Main's `stop_Sub`.
    void show_Stopped();

    // One step of the slide out of sight (`hide`), or all of the slide back.
    void slide_Mini(bool hide);

private:
    void setClickHandlers();
    void setBarHandlers();
    void setStripHandlers();
    void lock(bool closed);
    void tick();
    bool mindsPointer() const;
    void hideByPointer();
    void mouseUp(const forms::MouseEvent &event);
    StateControls stateControls();

    Velmora &app_;
    std::u16string shownLine_; // the line for which the marquee last restarted
};

} // namespace velmora
