#pragma once

// The settings window: six pages over the same rectangle. It holds the two lyric font previews, the
// folder boxes and the choices that setControl reads and writes; nothing takes effect by itself.

#include "settings/playSetForm.design.h"

#include <cstdint>

namespace velmora {

class Velmora;

class playSetForm : public playSetForm_Design {
public:
    explicit playSetForm(Velmora &app);
    void load();

    // Shows one page.
    void help_Click();
    // Ticks the option button of a language and clears the others; another number clears all.
    void language_Load(std::int32_t index);
    // The play mode can be chosen only while tracks follow each other.
    void isAutoPlay_Click();
    // Restore to defaults.
    void playSet_Resume_Click();
    // Hides the window and gives the windows behind back. Edits stay in the controls.
    void close_Click();

private:
    void layPages();
    void setTabHandlers();
    void showPage(const forms::Frame &page);

    Velmora &app_;
};

} // namespace velmora
