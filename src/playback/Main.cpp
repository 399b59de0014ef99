// The main window: its handlers, the list of the start, and the buttons that open other windows.

#include "playback/Main.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/welcomeForm.h"
#include "platform/contracts/windows.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/list_button.h"
#include "playback/miniForm.h"
#include "playback/player.h"
#include "playback/startLoad_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/setControl.h"
#include "ui/aboutForm.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

Main::Main(Velmora &app) : Main_Design(app.platform().windows), app_(app) {}

void Main::load() {
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    wire(*this);
    setBarHandlers();
    setDragHandlers();
    on().KeyDown = [this](forms::KeyEvent &key) {
        app_.formSet().form_KeyDown(key.keyCode, key.shift, u"main");
    };
    // The window is never unloaded: a wish to close it ends the program.
    on().QueryUnload = [this](bool &cancel) {
        cancel = true;
        closeButton_Click();
    };
    Timer1.onTimer = [this] { tick(); };
    Timer2.onTimer = [this] { rollCaption(); };
}

// --- start ---------------------------------------------------------------------------------------

void Main::main_Load() {
    passOver([this] {
        if (app_.saveOrOpenFile().loadPlayList())
            loadLastFile();
    });
    Timer1.setRunning(true);
    setEnabled(true);
}

void Main::loadLastFile() {
    if (app_.playList_Form().playList_Item.listCount() == 0 ||
        app_.setControl().get_IsAutoPlay() != 0)
        return;
    const std::u16string path = app_.setControl().get_LastPlayFile();
    velmora::player &player = app_.player();
    if (path.empty()) {
        stop_Sub();
    } else if (!app_.saveOrOpenFile().fileExists(path)) {
        player.close_Sub(0);
    } else {
        player.open_File(path);
        // The row that the opening selected, which another one may not be by the end of the fade.
        player.nowPlay_Index =
            static_cast<std::int16_t>(app_.playList_Form().playList_Item.listIndex() + 1);
        player.play_Sub();
    }
}

// --- windows -------------------------------------------------------------------------------------

void Main::closeButton_Click() { app_.startLoad_Form().unload(); }

void Main::minimizeButton_Click() {
    app_.playList_Form().hide();
    app_.formSet().dock_PlayList(false);
    markListShown(*this, false);
    setWindowState(forms::WindowState::Minimised);
}

void Main::mini_Button_Click() {
    hide();
    app_.playList_Form().hide();
    app_.miniForm().show();
    app_.miniForm().setTop(0);
    app_.formSet().keep_Topmost();
}

void Main::playListButton_Click() {
    velmora::playList_Form &list = app_.playList_Form();
    if (list.visible()) {
        app_.formSet().dock_PlayList(false);
        list.hide();
        markListShown(*this, false);
    } else {
        list.show();
        app_.formSet().dock_PlayList(true);
        markListShown(*this, true);
    }
}

void Main::song_GoTo_List_Click() {
    app_.player().selectEntryOfFile(app_.player().nowPlay_File);
    if (!app_.playList_Form().visible())
        playListButton_Click();
}

void Main::videoScreen_Button_Click() {
    velmora::VideoScreen_Form &video = app_.VideoScreen_Form();
    video.setVisible(!video.visible());
}

void Main::playInfo_Click() {
    velmora::playInfo_Form &info = app_.playInfo_Form();
    if (app_.player().get_Length() == 0 || (!app_.lrcForm().Timer1.running() && !info.visible())) {
        app_.platform().windows.MsgBox(
            app_.Language().msg_No_Track_Info, platform::MsgBoxButtons::Ok,
            platform::MsgBoxIcon::Exclamation, app_.Language().msg_Error);
        info.hide();
    } else {
        info.setVisible(!info.visible());
    }
}

void Main::desktop_Lrc_Click() {
    velmora::lrcForm &lyric = app_.lrcForm();
    if (app_.player().get_Length() == 0 ||
        (!lyric.Timer1.running() && !app_.playInfo_Form().visible())) {
        app_.platform().windows.MsgBox(
            app_.Language().msg_No_Track_Desktop_Lrc, platform::MsgBoxButtons::Ok,
            platform::MsgBoxIcon::Exclamation, app_.Language().msg_Error);
        return;
    }
    if (!lyric.hasLrc)
        return;
    lyric.lrc_Text.setVisible(!lyric.lrc_Text.visible());
    lyric.position();
    lyric.desktopLrcOn = lyric.lrc_Text.visible();
}

void Main::do_Lrc_Click() {
    app_.doLrcForm().setVisible(!app_.doLrcForm().visible());
    app_.doLrcForm().startLoad();
}

void Main::search_Lrc_Internet_Click() {
    velmora::search_Lrc_Internet_Form &form = app_.search_Lrc_Internet_Form();
    form.setVisible(!form.visible());
    if (form.visible())
        form.startLoad();
}

void Main::search_Song_Internet_Click() {
    velmora::search_Song_Internet_Form &form = app_.search_Song_Internet_Form();
    form.setVisible(!form.visible());
    if (form.visible())
        form.startLoad();
}

void Main::check_SoundDriver_Click() { app_.check_SoundDriver_Form().show(); }

void Main::playSet_Button_Click() {
    app_.formSet().open_PlaySet();
    app_.playList_Form().setEnabled(false);
    setEnabled(false);
}

void Main::about_Click() {
    app_.playList_Form().setEnabled(false);
    setEnabled(false);
    app_.aboutForm().show_For(u"main");
}

void Main::link_Click() { app_.saveOrOpenFile().shellOpen(link.caption()); }

void Main::welcome_Click() {
    welcome.setVisible(false);
    app_.welcomeForm().Start(false);
}

void Main::get_Focus() {
    if (!visible() && app_.miniForm().visible())
        return; // the strip stands for this window, and goes on doing so
    hide();
    show();
}

void Main::Flash_Window() {
    // Counted anew at each call, so the stop at two never comes: one flash a call.
    std::int16_t count = 0;
    if (flash_Request != 0 && count < 2) {
        app_.platform().windows.FlashWindow(hWnd(), true);
        ++count;
    }
}

void Main::meActiveControl_Enabled(bool flag) {
    forms::Control *const controls[] = {
        &playButton,           &pauseButton,    &upButton,
        &nextButton,           &stopButton,     &openFile_Button,
        &load_Played_BG,       &Volume_Set_BG,  &Volume_ICO,
        &mini_Button,          &AudioSource_H,  &AudioSource_L,
        &AudioSource_R,        &song_GoTo_List, &do_Lrc,
        &check_SoundDriver,    &desktop_Lrc,    &playInfo,
        &playSet_Button,       &playListButton, &search_Lrc_Internet,
        &search_Song_Internet,
    };
    for (forms::Control *control : controls)
        control->setEnabled(flag);
}

} // namespace velmora
