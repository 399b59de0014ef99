#pragma once

// The settings window: the holder of the two lyric font previews, of the folder boxes and of the
// choices that setControl reads and writes.

#include "settings/playSetForm.design.h"

namespace velmora {

class Velmora;

class playSetForm : public playSetForm_Design {
public:
    explicit playSetForm(Velmora &app);
    void load();

    void playSet_Resume_Click();
    // Hides the window and gives the windows behind back. Edits stay in the controls.
    void close_Click();

private:
    Velmora &app_;
};

} // namespace velmora
