#include "playback/miniForm.h"

#include "base/run_time_error.h"
#include "platform/windows.h"
#include "playback/Main.h"
#include "playback/display.h"
#include "playback/startLoad_Form.h"
#include "playlist/playList_Form.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

miniForm::miniForm(Velmora &app) : miniForm_Design(app.platform().windows), app_(app) {}

void miniForm::load() {
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    passOver([this] { app_.formSet().keep_Topmost(); });
    mini_Button.on().Click = [this] { mini_Button_Click(); };
    close.on().Click = [this] { app_.startLoad_Form().unload(); };
    // The strip stands in for the main window: a wish to close it ends the program.
    on().QueryUnload = [this](bool &cancel) {
        cancel = true;
        app_.startLoad_Form().unload();
    };
}

void miniForm::mini_Button_Click() {
    hide();
    app_.Main().show();
    if (app_.Main().playList_Shown != 0) {
        app_.playList_Form().show();
        app_.formSet().dock_PlayList(true);
    }
}

void miniForm::show_Stopped() {
    setCaption(app_.Main().title.caption());
    showStopped(app_,
                {PlayerWindow::miniForm, playButton, pauseButton, play_Time, playInfo_Show, nameBox,
                 load_Played},
                lrc_Text);
}

} // namespace velmora
