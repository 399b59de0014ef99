#include "network/welcomeForm.h"

#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

welcomeForm::welcomeForm(Velmora &app) : welcomeForm_Design(app.platform().windows), app_(app) {}

void welcomeForm::load() {
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

void welcomeForm::close_Click() { hide(); }

} // namespace velmora
