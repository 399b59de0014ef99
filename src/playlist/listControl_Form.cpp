#include "playlist/listControl_Form.h"

#include "playback/Main.h"
#include "playlist/playList_Form.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::int16_t modeSearch = 1;
constexpr std::int16_t modeRename = 2;

} // namespace

listControl_Form::listControl_Form(Velmora &app)
    : listControl_Form_Design(app.platform().windows), app_(app) {}

void listControl_Form::load() {
    app_.formSet().set_ColourKey(*this);
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { close_Box(); });
    wire(*this);
}

void listControl_Form::OK_Click() {
    listControl_Result = jieGuo.text();
    if (listMode == modeSearch)
        app_.playList_Form().search_Jieguo();
    else if (listMode == modeRename)
        app_.playList_Form().alter_Jieguo();
    close_Box();
    clear_Box();
}

void listControl_Form::close_Box() {
    app_.playList_Form().setEnabled(true);
    app_.Main().setEnabled(true);
    hide();
}

void listControl_Form::clear_Box() {
    title.setCaption({});
    showText.setCaption({});
    jieGuo.setText({});
}

} // namespace velmora
