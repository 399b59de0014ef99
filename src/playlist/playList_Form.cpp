#include "playlist/playList_Form.h"

#include "playback/Main.h"
#include "playback/list_button.h"
#include "playlist/saveOrOpenFile.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

playList_Form::playList_Form(Velmora &app)
    : playList_Form_Design(app.platform().windows), app_(app) {}

void playList_Form::load() {
    app_.formSet().set_ColourKey(*this);
    const forms::Font listFont(u"Arial", 8);
    setFont(listFont);
    playList_Item.clear();
    playList_Item.setFont(listFont);
    List1.setFont(listFont);
    visibleRows = 17;
    setHandlers();
}

void playList_Form::controlEnabled(bool flag) {
    playList_Item.setEnabled(flag);
    for (zkButton *button : {&addDir, &addFile, &delIndx, &delAll, &Search, &Alter}) {
        button->setEnabled(flag);
        // Writing its caption makes a button draw itself anew.
        const std::u16string caption = button->caption();
        button->setCaption(caption);
    }
    afresh_Load.setEnabled(flag);
    app_.Main().song_GoTo_List.setEnabled(flag);
}

void playList_Form::afresh_Load_Click() { app_.saveOrOpenFile().loadPlayList(); }

void playList_Form::close_Click() {
    hide();
    markListShown(app_.Main(), false);
    app_.formSet().dock_PlayList(false);
}

} // namespace velmora
