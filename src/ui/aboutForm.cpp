#include "ui/aboutForm.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "playback/Main.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/playSetForm.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

aboutForm::aboutForm(Velmora &app) : aboutForm_Design(app.platform().windows), app_(app) {}

void aboutForm::load() {
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { close_Click(); });
    wire(*this);
    // A mail line shows the address that it writes to.
    for (forms::Label *line : {&email, &Cooperation_Email})
        line->on().Click = [this, line] { app_.saveOrOpenFile().mailTo(line->caption()); };
}

void aboutForm::show_For(std::u16string_view caller) {
    caller_Name = caller;
    show();
}

void aboutForm::close_Click() {
    const std::u16string caller = upper(caller_Name);
    if (caller == u"MAIN" || caller == u"PLAYLIST_FORM") {
        app_.playList_Form().setEnabled(true);
        app_.Main().setEnabled(true);
    } else if (caller == u"PLAYSET") {
        app_.playSetForm().setEnabled(true);
    }
    hide();
}

} // namespace velmora
