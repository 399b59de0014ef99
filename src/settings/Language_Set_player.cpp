// The player windows.

#include "settings/Language_Set.h"

#include "base/run_time_error.h"
#include "lyrics/lrcForm.h"
#include "playback/Main.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "settings/language_common.h"
#include "settings/language_tables.h"
#include "ui/marquee.h"

namespace velmora {

namespace texts {

namespace {

constexpr Row<Main_Design> mainRows[] = {
    {formCaption<Main_Design>, product},
    {caption<&Main::title>, product},
    {caption<&Main::playInfo_Show>, welcome},
    {caption<&Main::copyright>, copyrightLine},
    {caption<&Main::CopyRight_Series>,
     {u"Norvane 多媒体系列", u"Norvane media series", u"Série multimédia Norvane",
      u"Norvaneメディアシリーズ"}},
    {toolTip<&Main::mini_Button>, {u"迷你模式", u"Mini Mode", u"Mode mini", u"ミニモード"}},
    {toolTip<&Main::minimizeButton>, {u"最小化", u"Minimize", u"Réduire", u"最小化"}},
    {toolTip<&Main::CopyRight_ICO>, about},
    {toolTip<&Main::closeButton>, exit},
    {toolTip<&Main::playButton>, play},
    {toolTip<&Main::pauseButton>, pause},
    {toolTip<&Main::nextButton>, next},
    {toolTip<&Main::upButton>, previous},
    {toolTip<&Main::stopButton>, stop},
    {toolTip<&Main::openFile_Button>,
     {u"打开文件(F7)", u"OpenFile(F7)", u"Ouvrir un fichier (F7)", u"ファイルを開く(F7)"}},
    {toolTip<&Main::playListButton>, playList},
    {toolTip<&Main::playSet_Button>, settings},
    {toolTip<&Main::Volume_ICO>, mute},
    {toolTip<&Main::Volume_Set_BG>, volume},
    {toolTip<&Main::load_Played_BG>, position},
    {toolTip<&Main::desktop_Lrc>, desktopLyrics},
    {toolTip<&Main::playInfo>, trackInfo},
    {toolTip<&Main::AudioSource_H>, {u"立体声", u"Stereo", u"Stéréo", u"ステレオ"}},
    {toolTip<&Main::AudioSource_L>, {u"左声道", u"Left channel", u"Canal gauche", u"左チャンネル"}},
    {toolTip<&Main::AudioSource_R>, {u"右声道", u"Right Channel", u"Canal droit", u"右チャンネル"}},
    {toolTip<&Main::song_GoTo_List>, goToTrack},
    {toolTip<&Main::do_Lrc>, lyricEditor},
    {toolTip<&Main::check_SoundDriver>, soundTest},
    {toolTip<&Main::videoScreen_Button>, videoWindow},
};
static_assert(allWellFormed(mainRows));

constexpr Row<miniForm_Design> miniRows[] = {
    {caption<&miniForm::playInfo_Show>, welcome},
    {toolTip<&miniForm::mini_Button>, {u"正常模式", u"Normal mode", u"Mode normal", u"通常モード"}},
    {toolTip<&miniForm::close>, exit},
    {toolTip<&miniForm::playButton>, play},
    {toolTip<&miniForm::pauseButton>, pause},
    {toolTip<&miniForm::nextButton>, next},
    {toolTip<&miniForm::upButton>, previous},
    {toolTip<&miniForm::stopButton>, stop},
    {toolTip<&miniForm::Volume_ICO>, mute},
    {toolTip<&miniForm::Volume_Set_BG>, volume},
    {toolTip<&miniForm::load_Played_BG>, position},
    {toolTip<&miniForm::desktop_Lrc>, desktopLyrics},
    {toolTip<&miniForm::playInfo>, trackInfo},
    {toolTip<&miniForm::auto_Hide_Lock_False>,
     {u"锁定面板，鼠标移除时不自动隐藏",
      u"Lock panel, the mouse when you are not automatically remove the hide",
      u"Verrouiller le panneau\u00A0: il reste visible quand la souris le quitte",
      u"パネルを固定し、マウスが離れても自動的に隠さない"}},
    {toolTip<&miniForm::auto_Hide_Lock_True>,
     {u"释放面板，鼠标移除时自动隐藏",
      u"Release panel automatically hides when the mouse to remove",
      u"Libérer le panneau\u00A0: il se masque quand la souris le quitte",
      u"パネルの固定を解除し、マウスが離れると自動的に隠す"}},
};
static_assert(allWellFormed(miniRows));

// What lrcForm shows in place of a line.
constexpr Row<lrcForm> lyricRows[] = {
    {field<&lrcForm::lrcMissText>,
     {u"该曲目无对应的LRC格式歌词文件。", u"No track corresponding to lyrics!",
      u"Pas de piste correspondant à lyrics!", u"いいえトラック歌詞に対応！"}},
    {field<&lrcForm::lrcWaitText>, everywhere(u"Music...")},
    {field<&lrcForm::lrcLoadingText>,
     {u"歌词加载中，请稍后...", u"Load lyrics, please later ...",
      u"Paroles de charge, s'il vous pla?t plus tard ...", u"負荷歌詞、保存してください..."}},
};
static_assert(allWellFormed(lyricRows));

constexpr Row<check_SoundDriver_Form_Design> soundRows[] = {
    {caption<&check_SoundDriver_Form::title>, soundTest},
    {caption<&check_SoundDriver_Form::check>, {u"检测", u"Test", u"Tester", u"テスト"}},
};
static_assert(allWellFormed(soundRows));

constexpr Texts fullScreen{u"全屏（Enter/Esc）", u"Full screen（Enter/Esc）",
                           u"Plein écran (Enter/Esc)", u"全画面（Enter/Esc）"};
constexpr Row<VideoScreen_Form_Design> videoRows[] = {
    {formCaption<VideoScreen_Form_Design>, videoWindow},
    {caption<&VideoScreen_Form::title>, videoWindow},
    {caption<&VideoScreen_Form::fullScreen_Button>, fullScreen},
    {toolTip<&VideoScreen_Form::fullScreen_Button>, fullScreen},
    {toolTip<&VideoScreen_Form::close>, exit},
};
static_assert(allWellFormed(videoRows));

} // namespace

template <> std::span<const Row<Main_Design>> rowsOf() { return mainRows; }
template <> std::span<const Row<miniForm_Design>> rowsOf() { return miniRows; }
template <> std::span<const Row<lrcForm>> rowsOf() { return lyricRows; }
template <> std::span<const Row<check_SoundDriver_Form_Design>> rowsOf() { return soundRows; }
template <> std::span<const Row<VideoScreen_Form_Design>> rowsOf() { return videoRows; }

// The greeting takes the place of a title that may have rolled far, and while paused no step moves
// it.
template <typename Form> static void settleGreeting(Velmora &app, Form &(Velmora::*form)()) {
    if (!isLanguage(app.setControl().Language_Index))
        return;
    Form &window = (app.*form)();
    settleLabel(window.playInfo_Show, window.nameBox.width(), titleMarquee);
}

} // namespace texts

void Language_Set::language_Main() {
    texts::putIn<Main_Design>(app_, &Velmora::Main);
    texts::settleGreeting(app_, &Velmora::Main);
}

void Language_Set::language_miniForm() {
    texts::putIn<miniForm_Design>(app_, &Velmora::miniForm);
    texts::settleGreeting(app_, &Velmora::miniForm);
}

void Language_Set::language_lrcForm() { texts::putIn<lrcForm>(app_, &Velmora::lrcForm); }

void Language_Set::language_check_SoundDriver_Form() {
    texts::putIn<check_SoundDriver_Form_Design>(app_, &Velmora::check_SoundDriver_Form);
}

// The window is let go at every open and close of a medium, so each statement stands alone.
void Language_Set::language_VideoScreen_Form() {
    const std::int32_t index = app_.setControl().Language_Index;
    if (!texts::isLanguage(index))
        return;
    for (const auto &row : texts::rowsOf<VideoScreen_Form_Design>())
        passOver([&] { row.put(app_.VideoScreen_Form(), texts::textOf(row.texts, index)); });
    // The name of the track stands behind the title, however long that is now.
    passOver([&] { app_.VideoScreen_Form().set_Str_ControlVideo_Place(); });
}

} // namespace velmora
