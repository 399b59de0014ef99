#include "settings/playSetForm.h"

#include "base/run_time_error.h"
#include "playback/Main.h"
#include "playlist/playList_Form.h"
#include "settings/setControl.h"
#include "ui/formSet.h"
#include "velmora.h"

namespace velmora {

playSetForm::playSetForm(Velmora &app) : playSetForm_Design(app.platform().windows), app_(app) {}

void playSetForm::load() {
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    layPages();
    app_.formSet().make_Draggable(*this, on());
    app_.formSet().make_Draggable(*this, title.on());
    app_.formSet().make_Draggable(*this, title_ICO.on());
    setTabHandlers();
    isAutoPlay.on().Click = [this] { isAutoPlay_Click(); };
    playSet_Resume.on().Click = [this] { playSet_Resume_Click(); };
    close.on().Click = [this] { close_Click(); };
    qx.on().Click = [this] { close_Click(); };
    on().QueryUnload = [this](bool &cancel) {
        cancel = true;
        close_Click();
    };
}

// The pages may be designed side by side; they are used over one another.
void playSetForm::layPages() {
    for (forms::Frame *page :
         {&Language_Frame, &help_Frame, &Shortcuts_Frame, &lrc_Frame, &folder_Frame})
        page->move(playFrame.place());
    for (forms::TextBox *box : {&helpShow_English, &helpShow_French, &helpShow_Japanese})
        box->move(helpShow_Chinese.place());
    for (forms::TextBox *box :
         {&Shortcuts_Show_English, &Shortcuts_Show_French, &Shortcuts_Show_Japanese})
        box->move(Shortcuts_Show_Chinese.place());
}

void playSetForm::setTabHandlers() {
    playSet.on().Click = [this] { showPage(playFrame); };
    lrcSet.on().Click = [this] { showPage(lrc_Frame); };
    folderSet.on().Click = [this] { showPage(folder_Frame); };
    languageSet.on().Click = [this] { showPage(Language_Frame); };
    help.on().Click = [this] { help_Click(); };
    Shortcuts.on().Click = [this] { showPage(Shortcuts_Frame); };
}

void playSetForm::showPage(const forms::Frame &page) {
    for (forms::Frame *each :
         {&playFrame, &lrc_Frame, &folder_Frame, &Language_Frame, &help_Frame, &Shortcuts_Frame})
        each->setVisible(each == &page);
}

void playSetForm::help_Click() { showPage(help_Frame); }

void playSetForm::language_Load(std::int32_t index) {
    forms::OptionButton *const choices[] = {&Language_China, &Language_English, &Language_French,
                                            &Language_Japanese};
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(std::size(choices)); ++i)
        choices[i]->setValue(i == index);
}

void playSetForm::isAutoPlay_Click() {
    for (forms::OptionButton *mode : {&Play_Order, &Play_Random, &Play_RepeatPlay})
        mode->setEnabled(isAutoPlay.value() == 1);
}

void playSetForm::playSet_Resume_Click() { app_.setControl().restoreDefaults(); }

void playSetForm::close_Click() {
    hide();
    app_.playList_Form().setEnabled(true);
    app_.Main().setEnabled(true);
    app_.Main().get_Focus();
    if (app_.playList_Form().visible())
        app_.formSet().dock_PlayList(true);
}

} // namespace velmora
