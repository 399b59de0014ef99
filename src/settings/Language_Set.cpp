#include "settings/Language_Set.h"

#include "base/run_time_error.h"
#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "playback/Main.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "playback/player.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/listControl_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "settings/Language.h"
#include "settings/language_rows.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "ui/aboutForm.h"
#include "ui/marquee.h"
#include "velmora.h"

namespace velmora {

namespace {

// Puts the language in force, when it is one of those there are; an owner is touched only then.
// `touch` is the program's accessor of the owner.
template <typename Owner> bool put(Velmora &app, Owner &(Velmora::*touch)()) {
    const std::int32_t index = app.setControl().Language_Index;
    if (!texts::isLanguage(index))
        return false;
    Owner &owner = (app.*touch)();
    for (const auto &row : Owner::languageRows())
        row.put(owner, texts::textOf(row.texts, index));
    return true;
}

// The greeting takes the place of a title that may have rolled far, and while paused no step moves
// it.
template <typename Form> void settleGreeting(Form &window) {
    settleLabel(window.playInfo_Show, window.nameBox.width(), titleMarquee);
}

// The long texts stand in a box for each language; one of each kind shows.
void showOne(std::int32_t index, const playSetForm::OfEachLanguage<forms::TextBox> &boxes) {
    std::int32_t language = 0;
    for (forms::TextBox *box : boxes)
        box->setVisible(language++ == index);
}

} // namespace

Language_Set::Language_Set(Velmora &app) : app_(app) {}

void Language_Set::apply_Language() {
    language_Messages();
    language_Main();
    language_miniForm();
    language_playList_Form();
    language_listControl_Form();
    language_aboutForm();
    language_playSetForm();
    language_lrcForm();
    language_playInfo_Form();
    language_doLrcForm();
    language_MenuForm();
    language_check_SoundDriver_Form();
    language_search_Lrc_Internet_Form();
    language_another_PlayInfo_Form();
    language_VideoScreen_Form();

    app_.player().show_FileInfo(app_.player().nowPlay_File);
    velmora::lrcForm &lyric = app_.lrcForm();
    if (!lyric.lrc_Text.visible())
        lyric.nowLrcLine = lyric.lrcMissText;
}

// --- each owner ----------------------------------------------------------------------------------

void Language_Set::language_Messages() { put(app_, &Velmora::Language); }

void Language_Set::language_Main() {
    if (put(app_, &Velmora::Main))
        settleGreeting(app_.Main());
}

void Language_Set::language_miniForm() {
    if (put(app_, &Velmora::miniForm))
        settleGreeting(app_.miniForm());
}

void Language_Set::language_playList_Form() { put(app_, &Velmora::playList_Form); }

void Language_Set::language_listControl_Form() { put(app_, &Velmora::listControl_Form); }

void Language_Set::language_aboutForm() {
    if (!put(app_, &Velmora::aboutForm))
        return;
    const std::u16string_view word =
        texts::textOf(texts::versionWord, app_.setControl().Language_Index);
    app_.aboutForm().vesion.setCaption(std::u16string(word) + app_.Main().Vesion);
}

void Language_Set::language_playSetForm() {
    if (!put(app_, &Velmora::playSetForm))
        return;
    const std::int32_t index = app_.setControl().Language_Index;
    velmora::playSetForm &form = app_.playSetForm();
    showOne(index, form.helpTexts());
    showOne(index, form.shortcutTexts());
}

// What lrcForm shows in place of a line.
void Language_Set::language_lrcForm() {
    const std::int32_t index = app_.setControl().Language_Index;
    if (!texts::isLanguage(index))
        return;
    velmora::lrcForm &form = app_.lrcForm();
    form.lrcMissText = texts::textOf(texts::noLyric, index);
    form.lrcWaitText = texts::textOf(texts::lyricWaits, index);
    form.lrcLoadingText = texts::textOf(texts::lyricLoads, index);
}

void Language_Set::language_playInfo_Form() { put(app_, &Velmora::playInfo_Form); }

void Language_Set::language_doLrcForm() { put(app_, &Velmora::doLrcForm); }

void Language_Set::language_MenuForm() { put(app_, &Velmora::MenuForm); }

void Language_Set::language_check_SoundDriver_Form() {
    put(app_, &Velmora::check_SoundDriver_Form);
}

void Language_Set::language_search_Lrc_Internet_Form() {
    put(app_, &Velmora::search_Lrc_Internet_Form);
}

void Language_Set::language_another_PlayInfo_Form() { put(app_, &Velmora::another_PlayInfo_Form); }

// The window is let go at every open and close of a medium, so each statement stands alone.
void Language_Set::language_VideoScreen_Form() {
    const std::int32_t index = app_.setControl().Language_Index;
    if (!texts::isLanguage(index))
        return;
    for (const auto &row : VideoScreen_Form_Design::languageRows())
        passOver([&] { row.put(app_.VideoScreen_Form(), texts::textOf(row.texts, index)); });
    // The name of the track stands behind the title, however long that is now.
    passOver([&] { app_.VideoScreen_Form().set_Str_ControlVideo_Place(); });
}

} // namespace velmora
