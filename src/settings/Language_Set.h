#pragma once

// Every text that follows the chosen language, and the routines that put them where they show.
//
// Each routine reads `setControl::Language_Index` and assigns all its texts in that language; an
// index outside 0 to 3 does nothing, and there is no fallback. A form that is not there yet comes
// into being.

namespace velmora {

class Velmora;

class Language_Set {
public:
    explicit Language_Set(Velmora &app);

    // All routines in their order, then the two displays that hold composed texts: the facts of the
    // track in `nowPlay_File`, and the line of a hidden desktop lyric.
    void apply_Language();

    void language_Messages();
    void language_Main();
    void language_miniForm();
    void language_playList_Form();
    void language_listControl_Form();
    void language_aboutForm();
    void language_playSetForm();
    void language_lrcForm();
    void language_playInfo_Form();
    void language_doLrcForm();
    void language_MenuForm();
    void language_check_SoundDriver_Form();
    void language_search_Lrc_Internet_Form();
    void language_another_PlayInfo_Form();
    // Passes over every failure, statement by statement.
    void language_VideoScreen_Form();

private:
    Velmora &app_;
};

} // namespace velmora
