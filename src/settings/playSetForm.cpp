#include "settings/playSetForm.h"

#include "base/run_time_error.h"
#include "platform/forms/keys.h"
#include "playback/Main.h"
#include "playlist/playList_Form.h"
#include "settings/Language.h"
#include "settings/setControl.h"
#include "ui/aboutForm.h"
#include "ui/formSet.h"
#include "ui/myCommondialog.h"
#include "velmora.h"

namespace velmora {

playSetForm::playSetForm(Velmora &app) : playSetForm_Design(app.platform().windows), app_(app) {}

void playSetForm::load() {
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    layPages();
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { leave(); });
    wire(*this);
    setTabHandlers();
    listenForKeys(*this);
}

// The pages may be designed side by side; they are used over one another.
void playSetForm::layPages() {
    for (forms::Frame *page :
         {&Language_Frame, &help_Frame, &Shortcuts_Frame, &lrc_Frame, &folder_Frame})
        page->move(playFrame.place());
    for (forms::TextBox *box : helpTexts())
        box->move(helpShow_Chinese.place());
    for (forms::TextBox *box : shortcutTexts())
        box->move(Shortcuts_Show_Chinese.place());
}

// One of too few does not compile.
playSetForm::OfEachLanguage<forms::OptionButton> playSetForm::languageChoices() {
    return std::to_array(
        {&Language_China, &Language_English, &Language_French, &Language_Japanese});
}

playSetForm::OfEachLanguage<forms::TextBox> playSetForm::helpTexts() {
    return std::to_array(
        {&helpShow_Chinese, &helpShow_English, &helpShow_French, &helpShow_Japanese});
}

playSetForm::OfEachLanguage<forms::TextBox> playSetForm::shortcutTexts() {
    return std::to_array({&Shortcuts_Show_Chinese, &Shortcuts_Show_English, &Shortcuts_Show_French,
                          &Shortcuts_Show_Japanese});
}

void playSetForm::setTabHandlers() {
    playSet.on().Click = [this] { showPage(playFrame); };
    lrcSet.on().Click = [this] { showPage(lrc_Frame); };
    folderSet.on().Click = [this] { showPage(folder_Frame); };
    languageSet.on().Click = [this] { showPage(Language_Frame); };
    Shortcuts.on().Click = [this] { showPage(Shortcuts_Frame); };
}

// A key goes to the control that has the focus, or else to the first that can have it, and each
// page has one. The window's key works from each of them.
void playSetForm::listenForKeys(forms::Container &container) {
    for (forms::Control *control : container.controls()) {
        if (control->takesFocus())
            control->on().KeyDown = [this](forms::KeyEvent &key) { keyDown(key); };
        if (auto *inner = dynamic_cast<forms::Container *>(control))
            listenForKeys(*inner);
    }
}

void playSetForm::keyDown(forms::KeyEvent &key) {
    if (key.keyCode == forms::keyS && (key.shift & forms::ctrlMask) != 0) {
        key.keyCode = 0;
        qd_Click();
    }
}

void playSetForm::showPage(const forms::Frame &page) {
    for (forms::Frame *each :
         {&playFrame, &lrc_Frame, &folder_Frame, &Language_Frame, &help_Frame, &Shortcuts_Frame})
        each->setVisible(each == &page);
}

void playSetForm::help_Click() { showPage(help_Frame); }

void playSetForm::language_Load(std::int32_t index) {
    std::int32_t language = 0;
    for (forms::OptionButton *choice : languageChoices())
        choice->setValue(language++ == index);
}

void playSetForm::isAutoPlay_Click() {
    for (forms::OptionButton *mode : {&Play_Order, &Play_Random, &Play_RepeatPlay})
        mode->setEnabled(isAutoPlay.value() == 1);
}

// --- Apply, OK, Cancel -----------------------------------------------------------------------

void playSetForm::yy_Click() { apply_PlaySet(); }

void playSetForm::qd_Click() {
    apply_PlaySet();
    leave();
}

void playSetForm::qx_Click() { unload(); }

void playSetForm::close_Click() { unload(); }

void playSetForm::leave() {
    hide();
    app_.playList_Form().setEnabled(true);
    app_.Main().setEnabled(true);
    app_.Main().get_Focus();
    if (app_.playList_Form().visible())
        app_.formSet().dock_PlayList(true);
}

// --- dialogs and other windows ---------------------------------------------------------------

void playSetForm::chooseFont(forms::TextBox &preview) {
    forms::Font font = preview.font();
    if (app_.myCommondialog().choose_Font(hWnd(), font))
        preview.setFont(font);
}

void playSetForm::chooseColour(forms::TextBox &preview) {
    Colour colour = preview.foreColor();
    if (app_.myCommondialog().choose_Color(hWnd(), colour))
        preview.setForeColor(colour);
}

// An answer of one or two characters is no folder to keep settings in; a cancel is shorter still.
void playSetForm::chooseFolder(forms::TextBox &box) {
    const std::u16string folder =
        app_.myCommondialog().browse_Folder(hWnd(), app_.Language().msg_Select_Folder);
    if (folder.size() > 2)
        box.setText(folder);
}

void playSetForm::desktop_Lrc_Font_Button_Click() { chooseFont(desktop_Lrc_Preview); }
void playSetForm::desktop_Lrc_FroeColor_Button_Click() { chooseColour(desktop_Lrc_Preview); }

// The player windows have room for one size alone.
void playSetForm::other_Lrc_Font_Button_Click() {
    constexpr float onlySize = 14; // points
    chooseFont(other_Lrc_Preview);
    forms::Font font = other_Lrc_Preview.font();
    font.setSize(onlySize);
    other_Lrc_Preview.setFont(font);
}

void playSetForm::other_Lrc_FroeColor_Button_Click() { chooseColour(other_Lrc_Preview); }

void playSetForm::save_Lrc_Path_Image_Click() { chooseFolder(save_Lrc_Path); }
void playSetForm::save_PlayList_Path_Image_Click() { chooseFolder(save_PlayList_Path); }
void playSetForm::save_PlayCache_Path_Image_Click() { chooseFolder(save_PlayCache_Path); }

void playSetForm::abount_Click() {
    setEnabled(false);
    app_.aboutForm().show_For(u"playset");
}

void playSetForm::playSet_Resume_Click() { app_.setControl().restoreDefaults(); }

} // namespace velmora
