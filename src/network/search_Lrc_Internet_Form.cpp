#include "network/search_Lrc_Internet_Form.h"

#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

search_Lrc_Internet_Form::search_Lrc_Internet_Form(Velmora &app)
    : search_Lrc_Internet_Form_Design(app.platform().windows), app_(app) {}

void search_Lrc_Internet_Form::load() {
    app_.formSet().set_ColourKey(*this);
    app_.formSet().make_Draggable(*this, on());
    app_.formSet().make_Draggable(*this, title.on());
    app_.formSet().make_Draggable(*this, title_ICO.on());
    close.on().Click = [this] { close_Click(); };
    on().QueryUnload = [this](bool &cancel) {
        cancel = true;
        close_Click();
    };
}

void search_Lrc_Internet_Form::close_Click() { hide(); }

} // namespace velmora
