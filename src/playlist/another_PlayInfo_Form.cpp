#include "playlist/another_PlayInfo_Form.h"

#include "playlist/playInfo_Form.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

another_PlayInfo_Form::another_PlayInfo_Form(Velmora &app)
    : another_PlayInfo_Form_Design(app.platform().windows), app_(app) {}

void another_PlayInfo_Form::load() {
    app_.formSet().set_ColourKey(*this);
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { close_Click(); });
    wire(*this);
}

void another_PlayInfo_Form::close_Click() {
    hide();
    app_.playInfo_Form().setEnabled(true);
}

} // namespace velmora
