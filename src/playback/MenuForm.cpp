#include "playback/MenuForm.h"

#include "network/update.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/miniForm.h"
#include "playback/player.h"
#include "playback/startLoad_Form.h"
#include "playlist/list_work.h"
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
        {stop, [](Velmora &app) { app.Main().closeAndStop(); }},
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
    };
    for (const Row &row : rows) {
        row.entry.on().Click = [this, work = row.work] {
            if (!ListWork::isGoingOn(app_))
                work(app_);
        };
    }
    close.on().Click = [this] { app_.startLoad_Form().unload(); };
    wire(*this);
    loadListMenu();
}

void MenuForm::loadListMenu() {
    using List = velmora::playList_Form;
    struct Row {
        forms::Menu &entry;
        void (*work)(List &, const ListChoice &);
    };
    const Row rows[] = {
        {playlist_Play, [](List &list, const ListChoice &chosen) { list.playThis(chosen); }},
        {playlist_AddFile, [](List &list, const ListChoice &) { list.addFile_Click(); }},
        {playlist_AddFolder, [](List &list, const ListChoice &) { list.addDir_Click(); }},
        {playlist_DelSelect,
         [](List &list, const ListChoice &chosen) { list.delIndx_Click(chosen); }},
        {playlist_DelAll, [](List &list, const ListChoice &) { list.delAll_Click(); }},
        {hardDrive_DelSelect,
         [](List &list, const ListChoice &chosen) { list.delOne(1, false, chosen); }},
        {hardDrive_DelAll,
         [](List &list, const ListChoice &chosen) { list.delOne(1, true, chosen); }},
        {playlist_Search, [](List &list, const ListChoice &) { list.Search_Click(); }},
        {playlist_Alter, [](List &list, const ListChoice &chosen) { list.Alter_Click(chosen); }},
        {playlist_OpenFolder,
         [](List &list, const ListChoice &chosen) { list.open_Folder(chosen); }},
        {playlist_Send, [](List &list, const ListChoice &chosen) { list.to_Folder(chosen); }},
        {playlist_afreshLoad, [](List &list, const ListChoice &) { list.afresh_Load_Click(); }},
        {playlist_Hide, [](List &list, const ListChoice &) { list.close_Click(); }},
    };
    for (const Row &row : rows) {
        row.entry.on().Click = [this, work = row.work] {
            List &list = app_.playList_Form();
            const ListChoice chosen = list.takeMenuChoice();
            if (!ListWork::isGoingOn(app_))
                work(list, chosen);
        };
    }
}

void MenuForm::open_Menu(forms::Form &owner) {
    if (!ListWork::isGoingOn(app_))
        app_.platform().windows.PopupMenu(owner, menu);
}

void MenuForm::mode_Click() {
    if (!app_.Main().visible() && app_.miniForm().visible())
        app_.miniForm().mini_Button_Click();
    else if (app_.Main().visible())
        app_.Main().mini_Button_Click();
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
