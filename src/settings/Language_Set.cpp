#include "settings/Language_Set.h"

#include "lyrics/lrcForm.h"
#include "playback/player.h"
#include "velmora.h"

namespace velmora {

Language_Set::Language_Set(Velmora &app) : app_(app) {}

void Language_Set::apply_Language() {
    language_Messages();
    language_Main();
    language_miniForm();
    language_playList_Form();
    language_listControl_Form();
    language_aboutForm();
    language_playSetForm();
    language_lrcForm();
    language_playInfo_Form();
    language_doLrcForm();
    language_MenuForm();
    language_check_SoundDriver_Form();
    language_search_Lrc_Internet_Form();
    language_another_PlayInfo_Form();
    language_VideoScreen_Form();

    app_.player().show_FileInfo(app_.player().nowPlay_File);
    velmora::lrcForm &lyric = app_.lrcForm();
    if (!lyric.lrc_Text.visible())
        lyric.nowLrcLine = lyric.lrcMissText;
}

} // namespace velmora
