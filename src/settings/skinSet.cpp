#include "settings/skinSet.h"

#include "base/numbers.h"
#include "lyrics/doLrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/welcomeForm.h"
#include "playback/Main.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "playback/startLoad_Form.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/listControl_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "settings/playSetForm.h"
#include "settings/skin_parts.h"
#include "ui/aboutForm.h"
#include "velmora.h"

namespace velmora {

namespace {

// The control that every window's close button stands this far from, and the space between two
// buttons of a row (twips).
constexpr Twips closeMargin = 120;
constexpr Twips buttonGap = 60;

// The title strip of every window (twips).
constexpr std::int16_t titleStripTop = 50;
constexpr std::int16_t titleStripHeight = 300;

template <typename Form> void layTitle(Form &form) {
    form.title_ICO.setTop(titleStripTop);
    form.title.setTop(skinSet::title_Top(roundToInt16(form.title.height())));
}

template <typename Form> void layTitleAndClose(Form &form) {
    layTitle(form);
    form.close.setTop(titleStripTop);
    form.close.setLeft(skinSet::close_Left(form.width(), form.close.width()));
}

template <typename Part> void takeArrow(Part &part, const Part &from) {
    part.setPicture(from.picture());
    part.setLeft(from.left());
    part.setTop(from.top());
}

template <typename Form> void layScrollBar(Form &form, const playList_Form_Design &model) {
    takeArrow(form.P1, model.P1);
    takeArrow(form.P2, model.P2);
    takeArrow(form.P3, model.P3);
    takeArrow(form.P4, model.P4);
}

void centreIn(forms::Control &control, const forms::Control &box) {
    control.setLeft(box.width() / 2 - control.width() / 2);
}

} // namespace

skinSet::skinSet(Velmora &app) : app_(app) {}

std::int16_t skinSet::title_Top(std::int16_t height) {
    return roundToInt16(titleStripTop + (titleStripHeight - height) / 2.0);
}

Twips skinSet::close_Left(Twips formWidth, Twips closeWidth) {
    return formWidth - closeMargin - closeWidth;
}

void skinSet::skin_All() {
    skin::takeHand(app_.startLoad_Form().copyright, app_.Main());
    skin_Main();
    skin_welcomeForm();
    skin_miniForm();
    skin_playList_Form();
    skin_playSetForm();
    skin_aboutForm();
    skin_check_SoundDriver_Form();
    skin_playInfo_Form();
    skin_doLrcForm();
    skin_another_PlayInfo_Form();
    skin_search_Lrc_Internet_Form();
    skin_search_Song_Internet_Form();
    skin_listControl_Form();
    skin_VideoScreen_Form();
}

void skinSet::skin_Main() {
    velmora::Main &form = app_.Main();
    form.takeSkin(form);
    layTitle(form);
    form.closeButton.setTop(titleStripTop);
    form.closeButton.setLeft(form.width() - closeMargin - form.closeButton.width());
    form.mini_Button.setTop(form.closeButton.top());
    form.mini_Button.setLeft(form.closeButton.left() - buttonGap - form.mini_Button.width());
    form.minimizeButton.setTop(form.closeButton.top());
    form.minimizeButton.setLeft(form.mini_Button.left() - buttonGap - form.minimizeButton.width());
    centreIn(form.playInfo_Show, form.nameBox);
    centreIn(form.lrc_Text, form.lrcBox);
    form.AudioSource_L.move(form.AudioSource_H.place());
    form.AudioSource_R.move(form.AudioSource_H.place());
    const Twips x2 = 15;
    form.load_Played_Line.setEnds(x2 + 60, form.load_Played_BG.top() + 40, x2,
                                  form.load_Played_BG.height() - 70);
}

void skinSet::skin_welcomeForm() {
    velmora::welcomeForm &form = app_.welcomeForm();
    form.takeSkin(app_.Main());
    layTitleAndClose(form);
}

// The strip has no title row: its one row is laid out by its design.
void skinSet::skin_miniForm() {
    velmora::miniForm &form = app_.miniForm();
    form.takeSkin(app_.Main());
}

void skinSet::skin_playList_Form() {
    velmora::playList_Form &form = app_.playList_Form();
    form.takeSkin(app_.Main());
    layTitleAndClose(form);
    form.afresh_Load.setTop(form.close.top());
    form.afresh_Load.setLeft(form.close.left() - buttonGap - form.afresh_Load.width());
}

void skinSet::skin_playSetForm() {
    velmora::playSetForm &form = app_.playSetForm();
    form.takeSkin(app_.Main());
    layTitleAndClose(form);
}

void skinSet::skin_aboutForm() {
    velmora::aboutForm &form = app_.aboutForm();
    form.takeSkin(app_.Main());
    layTitleAndClose(form);
}

void skinSet::skin_check_SoundDriver_Form() { layTitleAndClose(app_.check_SoundDriver_Form()); }

void skinSet::skin_playInfo_Form() {
    velmora::playInfo_Form &form = app_.playInfo_Form();
    form.takeSkin(app_.Main());
    layTitleAndClose(form);
}

void skinSet::skin_doLrcForm() {
    velmora::doLrcForm &form = app_.doLrcForm();
    form.takeSkin(app_.Main());
    layTitleAndClose(form);
    layScrollBar(form, app_.playList_Form());
}

void skinSet::skin_another_PlayInfo_Form() { layTitleAndClose(app_.another_PlayInfo_Form()); }

void skinSet::skin_search_Lrc_Internet_Form() {
    velmora::search_Lrc_Internet_Form &form = app_.search_Lrc_Internet_Form();
    form.takeSkin(app_.Main());
    layTitleAndClose(form);
    layScrollBar(form, app_.playList_Form());
}

void skinSet::skin_search_Song_Internet_Form() {
    velmora::search_Song_Internet_Form &form = app_.search_Song_Internet_Form();
    form.takeSkin(app_.Main());
    layTitleAndClose(form);
    layScrollBar(form, app_.playList_Form());
}

void skinSet::skin_listControl_Form() { layTitleAndClose(app_.listControl_Form()); }

void skinSet::skin_VideoScreen_Form() {
    velmora::VideoScreen_Form &form = app_.VideoScreen_Form();
    form.takeSkin(app_.Main());
    layTitleAndClose(form);
}

} // namespace velmora
