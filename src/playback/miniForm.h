#pragma once

// The mini strip that stands in for Main and the play list.

#include "playback/miniForm.design.h"

#include <cstdint>
#include <string>

namespace velmora {

class Velmora;

class miniForm : public miniForm_Design {
public:
    explicit miniForm(Velmora &app);
    void load();

    // Back to the main window; the play list comes along if it was open.
    void mini_Button_Click();

    // The stopped look; a part of Main's `stop_Sub`.
    void show_Stopped();

private:
    Velmora &app_;
};

} // namespace velmora
