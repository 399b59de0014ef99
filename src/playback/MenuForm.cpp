#include "playback/MenuForm.h"

#include "network/update.h"
#include "platform/windows.h"
#include "playback/Main.h"
#include "playback/miniForm.h"
#include "playback/player.h"
#include "playback/startLoad_Form.h"
#include "playlist/playList_Form.h"
#include "settings/playSetForm.h"
#include "ui/aboutForm.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

MenuForm::MenuForm(Velmora &app) : MenuForm_Design(app.platform().windows), app_(app) {}

void MenuForm::load() {
    struct Row {
        forms::Menu &entry;
        void (*work)(Velmora &);
    };
    const Row rows[] = {
        {play, [](Velmora &app) { app.Main().playButton_Click(); }},
        {pause, [](Velmora &app) { app.player().pause_Sub(); }},
        {stop,
         [](Velmora &app) {
             app.player().close_Sub(0);
             app.Main().stop_Sub();
         }},
        // These two walk the list whatever the play mode.
        {nextSong, [](Velmora &app) { app.player().next_Sub(directionNext); }},
        {upSong, [](Velmora &app) { app.player().next_Sub(directionPrevious); }},
        {playlist, [](Velmora &app) { app.Main().playListButton_Click(); }},
        {playSet, [](Velmora &app) { app.Main().playSet_Button_Click(); }},
        {desktop_Lrc, [](Velmora &app) { app.Main().desktop_Lrc_Click(); }},
        {song_Info, [](Velmora &app) { app.Main().playInfo_Click(); }},
        {song_GoTo_List, [](Velmora &app) { app.Main().song_GoTo_List_Click(); }},
        {doLrc, [](Velmora &app) { app.Main().do_Lrc_Click(); }},
        {check_SoundDriver, [](Velmora &app) { app.Main().check_SoundDriver_Click(); }},
        {search_Lrc_To_Internet, [](Velmora &app) { app.Main().search_Lrc_Internet_Click(); }},
        {detection_Update, [](Velmora &app) { app.update().check_Update(true); }},
        {close, [](Velmora &app) { app.startLoad_Form().unload(); }},
        {playlist_Play, [](Velmora &app) { app.playList_Form().playThis(); }},
        {playlist_AddFile, [](Velmora &app) { app.playList_Form().addFile_Click(); }},
        {playlist_AddFolder, [](Velmora &app) { app.playList_Form().addDir_Click(); }},
        {playlist_DelSelect, [](Velmora &app) { app.playList_Form().delIndx_Click(); }},
        {playlist_DelAll, [](Velmora &app) { app.playList_Form().delAll_Click(); }},
        {hardDrive_DelSelect, [](Velmora &app) { app.playList_Form().delOne(1, false); }},
        {hardDrive_DelAll, [](Velmora &app) { app.playList_Form().delOne(1, true); }},
        {playlist_Search, [](Velmora &app) { app.playList_Form().Search_Click(); }},
        {playlist_Alter, [](Velmora &app) { app.playList_Form().Alter_Click(); }},
        {playlist_OpenFolder, [](Velmora &app) { app.playList_Form().open_Folder(); }},
        {playlist_Send, [](Velmora &app) { app.playList_Form().to_Folder(); }},
        {playlist_afreshLoad, [](Velmora &app) { app.playList_Form().afresh_Load_Click(); }},
        {playlist_Hide, [](Velmora &app) { app.playList_Form().close_Click(); }},
    };
    for (const Row &row : rows) {
        row.entry.on().Click = [this, work = row.work] { work(app_); };
    }
    mode.on().Click = [this] { mode_Click(); };
    about.on().Click = [this] { about_Click(); };
    help.on().Click = [this] { help_Click(); };
}

void MenuForm::mode_Click() {
    if (!app_.Main().visible() && app_.miniForm().visible()) {
        app_.miniForm().mini_Button_Click();
    } else if (app_.Main().visible()) {
        app_.Main().mini_Button_Click();
    }
}

void MenuForm::about_Click() {
    if (app_.playSetForm().visible()) {
        app_.playSetForm().setEnabled(false);
        app_.aboutForm().show_For(u"playset");
    } else {
        app_.Main().about_Click();
    }
}

// The help is a page of the settings, and its OK theirs: it must find in the boxes what is stored.
// What the person is changing in an open window stays.
void MenuForm::help_Click() {
    app_.Main().setEnabled(false);
    app_.playList_Form().setEnabled(false);
    if (!app_.playSetForm().visible())
        app_.formSet().fill_PlaySet();
    app_.playSetForm().help_Click();
    app_.playSetForm().show();
}

} // namespace velmora
