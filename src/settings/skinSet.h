#pragma once

// Hands the pictures, the hand cursor and the title layout that are designed onto Main to all other
// forms, so that each picture is stored once; and dresses the lyric labels with their fonts.

#include "base/geometry.h"

#include <cstdint>

namespace velmora {

class Velmora;

class skinSet {
public:
    explicit skinSet(Velmora &app);

    // The start window's label first, then all forms in the order below. Runs once, before any
    // setting is read.
    void skin_All();

    void skin_Main();
    void skin_welcomeForm();
    void skin_miniForm();
    void skin_playList_Form();
    void skin_playSetForm();
    void skin_aboutForm();
    void skin_check_SoundDriver_Form();
    void skin_playInfo_Form();
    void skin_doLrcForm();
    void skin_another_PlayInfo_Form();
    void skin_search_Lrc_Internet_Form();
    void skin_search_Song_Internet_Form();
    void skin_listControl_Form();
    // Runs again whenever that form has been made anew.
    void skin_VideoScreen_Form();

    // The top (twips) of a title label of this height (twips), centred in the title strip.
    static std::int16_t title_Top(std::int16_t height);

    // The left edge (twips) of a close button of this width in the title strip of a form.
    static Twips close_Left(Twips formWidth, Twips closeWidth);

    // Dresses the desktop line / the other lyric lines from their preview boxes. `fromStaging`: the
    // previews take the staging set of setControl first.
    void apply_Desktop_Lrc_Font(bool fromStaging);
    void apply_Other_Lrc_Font(bool fromStaging);

private:
    Velmora &app_;
};

} // namespace velmora
