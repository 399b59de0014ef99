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
#include "settings/skin_rows.h"
#include "ui/aboutForm.h"
#include "velmora.h"

namespace velmora {

using skin::hand;
using skin::Handed;
using skin::shared;

namespace {

// The control that every window's close button stands this far from, and the space between two
// buttons of a row (twips).
constexpr Twips closeMargin = 120;
constexpr Twips buttonGap = 60;

// --- the tables ------------------------------------------------------------------------------

constexpr skin::Hand<Main_Design> mainHands[] = {hand<&Main::Volume_ICO>,
                                                 hand<&Main::Volume_Set_BG>,
                                                 hand<&Main::load_Played_BG>,
                                                 hand<&Main::nextButton>,
                                                 hand<&Main::pauseButton>,
                                                 hand<&Main::stopButton>,
                                                 hand<&Main::upButton>,
                                                 hand<&Main::openFile_Button>,
                                                 hand<&Main::desktop_Lrc>,
                                                 hand<&Main::playInfo>,
                                                 hand<&Main::AudioSource_H>,
                                                 hand<&Main::AudioSource_R>,
                                                 hand<&Main::AudioSource_L>,
                                                 hand<&Main::song_GoTo_List>,
                                                 hand<&Main::do_Lrc>,
                                                 hand<&Main::check_SoundDriver>,
                                                 hand<&Main::videoScreen_Button>,
                                                 hand<&Main::playSet_Button>,
                                                 hand<&Main::playListButton>,
                                                 hand<&Main::CopyRight_ICO>,
                                                 hand<&Main::search_Lrc_Internet>,
                                                 hand<&Main::search_Song_Internet>,
                                                 hand<&Main::link>,
                                                 hand<&Main::welcome>};

// Most windows have no more than these two from Main.
template <typename Form>
constexpr Handed<Form> titleAndClose[] = {{shared<&Form::title_ICO>, &Main_Design::title_ICO},
                                          {shared<&Form::close>, &Main_Design::closeButton}};

constexpr skin::Hand<welcomeForm_Design> welcomeHands[] = {
    hand<&welcomeForm::provider>, hand<&welcomeForm::Advertising>, hand<&welcomeForm::loadStr>};

constexpr Handed<miniForm_Design> miniPictures[] = {
    {shared<&miniForm::title_ICO>, &Main_Design::title_ICO},
    {shared<&miniForm::mini_Button>, &Main_Design::mini_Button},
    {shared<&miniForm::close>, &Main_Design::closeButton},
    {shared<&miniForm::playButton>, &Main_Design::playButton},
    {shared<&miniForm::stopButton>, &Main_Design::stopButton},
    {shared<&miniForm::pauseButton>, &Main_Design::pauseButton},
    {shared<&miniForm::upButton>, &Main_Design::upButton},
    {shared<&miniForm::nextButton>, &Main_Design::nextButton},
    {shared<&miniForm::Volume_ICO>, &Main_Design::Volume_ICO}};
constexpr skin::Hand<miniForm_Design> miniHands[] = {
    hand<&miniForm::auto_Hide_Lock_True>, hand<&miniForm::auto_Hide_Lock_False>,
    hand<&miniForm::desktop_Lrc>,         hand<&miniForm::playInfo>,
    hand<&miniForm::Volume_Set_BG>,       hand<&miniForm::load_Played_BG>};

constexpr Handed<playSetForm_Design> settingsPictures[] = {
    {shared<&playSetForm::title_ICO>, &Main_Design::title_ICO},
    {shared<&playSetForm::close>, &Main_Design::closeButton},
    {shared<&playSetForm::save_Lrc_Path_Image>, &Main_Design::openFile_Button},
    {shared<&playSetForm::save_PlayList_Path_Image>, &Main_Design::openFile_Button},
    {shared<&playSetForm::save_PlayCache_Path_Image>, &Main_Design::openFile_Button}};
constexpr skin::Hand<playSetForm_Design> settingsHands[] = {hand<&playSetForm::playSet_Resume>};

constexpr skin::Hand<aboutForm_Design> aboutHands[] = {hand<&aboutForm::email>,
                                                       hand<&aboutForm::Cooperation_Email>};

constexpr Handed<playInfo_Form_Design> infoPictures[] = {
    {shared<&playInfo_Form::title_ICO>, &Main_Design::title_ICO},
    {shared<&playInfo_Form::close>, &Main_Design::closeButton},
    {shared<&playInfo_Form::openLrcFile>, &Main_Design::openFile_Button}};

constexpr skin::Hand<doLrcForm_Design> editorHands[] = {hand<&doLrcForm::list_Load>,
                                                        hand<&doLrcForm::openFile_Button>,
                                                        hand<&doLrcForm::addTime_Label_Button>,
                                                        hand<&doLrcForm::delTime_Label_Button>,
                                                        hand<&doLrcForm::save_Button>,
                                                        hand<&doLrcForm::anotherSave_Button>};

constexpr Handed<VideoScreen_Form_Design> videoPictures[] = {
    {shared<&VideoScreen_Form::title_ICO>, &Main_Design::title_ICO},
    {shared<&VideoScreen_Form::close>, &Main_Design::closeButton},
    {shared<&VideoScreen_Form::nextButton>, &Main_Design::nextButton},
    {shared<&VideoScreen_Form::playButton>, &Main_Design::playButton},
    {shared<&VideoScreen_Form::pauseButton>, &Main_Design::pauseButton},
    {shared<&VideoScreen_Form::stopButton>, &Main_Design::stopButton},
    {shared<&VideoScreen_Form::upButton>, &Main_Design::upButton},
    {shared<&VideoScreen_Form::AudioSource_H>, &Main_Design::AudioSource_H},
    {shared<&VideoScreen_Form::AudioSource_L>, &Main_Design::AudioSource_L},
    {shared<&VideoScreen_Form::AudioSource_R>, &Main_Design::AudioSource_R},
    {shared<&VideoScreen_Form::Volume_ICO>, &Main_Design::Volume_ICO},
    {shared<&VideoScreen_Form::videoScreen_Button>, &Main_Design::videoScreen_Button}};
constexpr skin::Hand<VideoScreen_Form_Design> videoHands[] = {
    hand<&VideoScreen_Form::Volume_Set_BG>, hand<&VideoScreen_Form::fullScreen_imgButton>,
    hand<&VideoScreen_Form::load_Played_BG>, hand<&VideoScreen_Form::fullScreen_Button>};

// --- the layout ------------------------------------------------------------------------------

template <typename Form> void layTitle(Form &form) {
    form.title_ICO.setTop(skin::titleStripTop);
    form.title.setTop(skinSet::title_Top(roundToInt16(form.title.height())));
}

template <typename Form> void layTitleAndClose(Form &form) {
    layTitle(form);
    form.close.setTop(skin::titleStripTop);
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
    return roundToInt16(skin::titleStripTop + (skin::titleStripHeight - height) / 2.0);
}

Twips skinSet::close_Left(Twips formWidth, Twips closeWidth) {
    return formWidth - closeMargin - closeWidth;
}

void skinSet::skin_All() {
    skin::giveHand(app_.startLoad_Form().copyright, app_.Main());
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
    skin::giveHands<Main_Design>(form, mainHands, form);
    layTitle(form);
    form.closeButton.setTop(skin::titleStripTop);
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
    skin::handOut<welcomeForm_Design>(form, titleAndClose<welcomeForm_Design>, app_.Main());
    skin::giveHands<welcomeForm_Design>(form, welcomeHands, app_.Main());
    layTitleAndClose(form);
}

// The strip has no title row: its one row is laid out by its design.
void skinSet::skin_miniForm() {
    velmora::miniForm &form = app_.miniForm();
    skin::handOut<miniForm_Design>(form, miniPictures, app_.Main());
    skin::giveHands<miniForm_Design>(form, miniHands, app_.Main());
}

void skinSet::skin_playList_Form() {
    velmora::playList_Form &form = app_.playList_Form();
    skin::handOut<playList_Form_Design>(form, titleAndClose<playList_Form_Design>, app_.Main());
    layTitleAndClose(form);
    form.afresh_Load.setTop(form.close.top());
    form.afresh_Load.setLeft(form.close.left() - buttonGap - form.afresh_Load.width());
}

void skinSet::skin_playSetForm() {
    velmora::playSetForm &form = app_.playSetForm();
    skin::handOut<playSetForm_Design>(form, settingsPictures, app_.Main());
    skin::giveHands<playSetForm_Design>(form, settingsHands, app_.Main());
    layTitleAndClose(form);
}

void skinSet::skin_aboutForm() {
    velmora::aboutForm &form = app_.aboutForm();
    skin::handOut<aboutForm_Design>(form, titleAndClose<aboutForm_Design>, app_.Main());
    skin::giveHands<aboutForm_Design>(form, aboutHands, app_.Main());
    layTitleAndClose(form);
}

void skinSet::skin_check_SoundDriver_Form() { layTitleAndClose(app_.check_SoundDriver_Form()); }

void skinSet::skin_playInfo_Form() {
    velmora::playInfo_Form &form = app_.playInfo_Form();
    skin::handOut<playInfo_Form_Design>(form, infoPictures, app_.Main());
    layTitleAndClose(form);
}

void skinSet::skin_doLrcForm() {
    velmora::doLrcForm &form = app_.doLrcForm();
    skin::handOut<doLrcForm_Design>(form, titleAndClose<doLrcForm_Design>, app_.Main());
    skin::giveHands<doLrcForm_Design>(form, editorHands, app_.Main());
    layTitleAndClose(form);
    layScrollBar(form, app_.playList_Form());
}

void skinSet::skin_another_PlayInfo_Form() { layTitleAndClose(app_.another_PlayInfo_Form()); }

void skinSet::skin_search_Lrc_Internet_Form() {
    velmora::search_Lrc_Internet_Form &form = app_.search_Lrc_Internet_Form();
    skin::handOut<search_Lrc_Internet_Form_Design>(
        form, titleAndClose<search_Lrc_Internet_Form_Design>, app_.Main());
    layTitleAndClose(form);
    layScrollBar(form, app_.playList_Form());
}

void skinSet::skin_search_Song_Internet_Form() {
    velmora::search_Song_Internet_Form &form = app_.search_Song_Internet_Form();
    skin::handOut<search_Song_Internet_Form_Design>(
        form, titleAndClose<search_Song_Internet_Form_Design>, app_.Main());
    layTitleAndClose(form);
    layScrollBar(form, app_.playList_Form());
}

void skinSet::skin_listControl_Form() { layTitleAndClose(app_.listControl_Form()); }

void skinSet::skin_VideoScreen_Form() {
    velmora::VideoScreen_Form &form = app_.VideoScreen_Form();
    skin::handOut<VideoScreen_Form_Design>(form, videoPictures, app_.Main());
    skin::giveHands<VideoScreen_Form_Design>(form, videoHands, app_.Main());
    layTitleAndClose(form);
}

} // namespace velmora
