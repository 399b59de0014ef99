// The settings window and the about window.

#include "settings/Language_Set.h"

#include "playback/Main.h"
#include "settings/language_common.h"
#include "settings/language_tables.h"
#include "settings/playSetForm.h"
#include "ui/aboutForm.h"

namespace velmora {

namespace texts {

namespace {

// The tabs; the frame beside each has the same words.
constexpr Texts playTab{u"播放选项", u"Playback Options", u"Options de lecture", u"再生オプション"};
constexpr Texts lyricTab{u"歌词", u"Lyrics", u"Paroles", u"歌詞"};
constexpr Texts folderTab{u"目录", u"Directory", u"Dossiers", u"フォルダー"};
constexpr Texts languageTab{u"语言", u"Languages", u"Langue", u"言語"};
constexpr Texts shortcutTab{u"快捷键", u"Shortcuts", u"Raccourcis", u"ショートカット"};

constexpr Texts font{u"字体", u"Font", u"Police", u"フォント"};
constexpr Texts colour{u"颜色", u"Color", u"Couleur", u"色"};
constexpr Texts pickFolder{u"选择目录", u"Select a directory", u"Choisir un dossier",
                           u"フォルダーを選択"};

constexpr Row<playSetForm_Design> settingsRows[] = {
    {toolTip<&playSetForm::close>, exit},
    {caption<&playSetForm::title>, {u"播放器设置", u"PlayerSet", u"Paramètres", u"プレーヤー設定"}},
    {caption<&playSetForm::yy>, {u"应用", u"Apply", u"Appliquer", u"適用"}},
    {caption<&playSetForm::qd>, okay},
    {caption<&playSetForm::qx>, cancel},

    {caption<&playSetForm::playSet>, playTab},
    {caption<&playSetForm::playFrame>, playTab},
    {caption<&playSetForm::isAutoPlay>,
     {u"自动播放（单曲播放完后执行下一步）", u"Auto-Play",
      u"Lecture automatique (enchaîner les morceaux)", u"自動再生（1曲の再生後に次へ進む）"}},
    {caption<&playSetForm::autoUpdate>,
     {u"程序启动自动升级", u"Program starts automatically upgrade",
      u"Mise à jour automatique au démarrage", u"起動時に自動更新"}},
    {caption<&playSetForm::Play_Order>,
     {u"顺序播放（按列表顺序播放停止播放）", u"Order Play", u"Lecture dans l'ordre",
      u"順番に再生（リストの順に再生）"}},
    {caption<&playSetForm::Play_Random>,
     {u"随机播放（由系统自动从列表中选曲目播放）", u"Random Play", u"Lecture aléatoire",
      u"ランダム再生（リストから自動的に選曲）"}},
    {caption<&playSetForm::Play_RepeatPlay>,
     {u"重复播放（单曲重复播放）", u"Repeat Play", u"Répétition du morceau",
      u"リピート再生（1曲を繰り返す）"}},
    {caption<&playSetForm::openVideo_Interface>,
     {u"在播放器的视频窗口中播放（下次打开视频时生效）",
      u"Play in the video window (from the next video on)",
      u"Lire dans la fenêtre vidéo du lecteur (dès la prochaine vidéo)",
      u"プレーヤーのビデオウィンドウで再生（次に開くビデオから有効）"}},

    {caption<&playSetForm::lrcSet>, lyricTab},
    {caption<&playSetForm::lrc_Frame>, lyricTab},
    {caption<&playSetForm::desktop_Lrc_Frame>, desktopLyrics},
    {caption<&playSetForm::desktopLrc_AutoOpen>,
     {u"自动打开桌面歌词", u"Automatically open the desktop lyrics",
      u"Afficher automatiquement les paroles sur le bureau", u"デスクトップ歌詞を自動的に開く"}},
    {boxText<&playSetForm::desktop_Lrc_Preview>, product},
    {caption<&playSetForm::desktop_Lrc_Font_Button>, font},
    {caption<&playSetForm::desktop_Lrc_FroeColor_Button>, colour},
    {caption<&playSetForm::other_Lrc_Frame>,
     {u"其他歌词", u"Other Lyrics", u"Autres paroles", u"その他の歌詞"}},
    {boxText<&playSetForm::other_Lrc_Preview>, product},
    {caption<&playSetForm::other_Lrc_Exclamation>,
     {u"温馨提示：其他歌词的字体设置不能设置字体大小。",
      u"Warm Tip: Other lyrics can not set the font size of the font settings.",
      u"Remarque\u00A0: la taille de la police des autres paroles ne peut pas être modifiée.",
      u"ヒント：その他の歌詞のフォント設定では、サイズは変更できません。"}},
    {caption<&playSetForm::other_Lrc_Font_Button>, font},
    {caption<&playSetForm::other_Lrc_FroeColor_Button>, colour},

    {caption<&playSetForm::folderSet>, folderTab},
    {caption<&playSetForm::folder_Frame>, folderTab},
    {caption<&playSetForm::save_Lrc_Path_Label>,
     {u"歌词保存目录：", u"Lyrics directory：", u"Dossier des paroles\u00A0:", u"歌詞の保存先："}},
    {toolTip<&playSetForm::save_Lrc_Path_Image>, pickFolder},
    {caption<&playSetForm::save_PlayList_Path_Label>,
     {u"播放列表保存目录：", u"Playlist directory：", u"Dossier de la liste de lecture\u00A0:",
      u"プレイリストの保存先："}},
    {toolTip<&playSetForm::save_PlayList_Path_Image>, pickFolder},
    {caption<&playSetForm::save_PlayCache_Path_Label>,
     {u"下载缓存保存目录：", u"Download cache directory：", u"Dossier des téléchargements\u00A0:",
      u"ダウンロードの保存先："}},
    {toolTip<&playSetForm::save_PlayCache_Path_Image>, pickFolder},

    {caption<&playSetForm::languageSet>, languageTab},
    {caption<&playSetForm::Language_Frame>, languageTab},
    {caption<&playSetForm::help>, help},
    {caption<&playSetForm::help_Frame>, help},
    {caption<&playSetForm::Shortcuts>, shortcutTab},
    {caption<&playSetForm::Shortcuts_Frame>, shortcutTab},

    {caption<&playSetForm::abount>, about},
    {caption<&playSetForm::copyright>, copyrightLine},
    {toolTip<&playSetForm::playSet_Resume>,
     {u"恢复至默认", u"Restored to the default", u"Rétablir les paramètres par défaut",
      u"初期設定に戻す"}},
};
static_assert(allWellFormed(settingsRows));

constexpr Row<aboutForm_Design> aboutRows[] = {
    {toolTip<&aboutForm::close>, exit},
    {caption<&aboutForm::title>, product},
    {caption<&aboutForm::copyright>, copyrightLine},
    {boxText<&aboutForm::information>,
     {u"Velmora 是一款小巧的媒体播放器：播放音频与视频，显示同步歌词，制作歌词，"
      u"并可在网络上搜索歌词与曲目。",
      u"Velmora is a small media player: it plays audio and video, shows lyrics in time with the "
      u"music, helps to make them, and searches lyrics and songs on the Internet.",
      u"Velmora est un petit lecteur multimédia\u00A0: il lit le son et la vidéo, affiche les "
      u"paroles "
      u"au rythme de la musique, aide à les créer et recherche paroles et morceaux sur Internet.",
      u"Velmoraは小さなメディアプレーヤーです。音楽とビデオの再生、同期歌詞の表示と作成、"
      u"インターネットでの歌詞と曲の検索ができます。"}},
    {boxText<&aboutForm::zkShow>,
     {u"小巧、安静、随手可用。", u"Small, quiet and always at hand.",
      u"Petit, discret, toujours sous la main.", u"小さく、静かに、いつでも手元に。"}},
    {caption<&aboutForm::system_Support>,
     {u"系统支持：Linux（X11）", u"System：Linux (X11)", u"Système\u00A0: Linux (X11)",
      u"対応システム：Linux（X11）"}},
    {caption<&aboutForm::Ownership>,
     {u"版权归 Norvane 所有，保留一切权利。", u"Owned by Norvane. All rights reserved.",
      u"Propriété de Norvane. Tous droits réservés.",
      u"著作権はNorvaneに帰属します。無断転載を禁じます。"}},
    {boxText<&aboutForm::announce>,
     {u"声明：网络搜索到的歌词与曲目均来自第三方网站，版权归其所有者，请仅供个人欣赏使用。",
      u"Notice: lyrics and songs found on the Internet come from other sites and belong to their "
      u"owners. Please use them for private listening only.",
      u"Avertissement\u00A0: les paroles et morceaux trouvés sur Internet proviennent d'autres "
      u"sites "
      u"et appartiennent à leurs ayants droit. Réservez-les à un usage privé.",
      u"おことわり：インターネットで見つかる歌詞と曲は他のサイトのもので、権利はそれぞれの所"
      u"有者にあります。個人でお楽しみください。"}},
    {caption<&aboutForm::Translate>,
     {u"翻译：Norvane", u"Translation：Norvane", u"Traduction\u00A0: Norvane", u"翻訳：Norvane"}},
    {caption<&aboutForm::email>, everywhere(u"velmora@norvane.example")},
    {caption<&aboutForm::Cooperation_Email>, everywhere(u"partner@norvane.example")},
};
static_assert(allWellFormed(aboutRows));

// The word in front of the program's version.
constexpr Texts versionWord{u"版本：", u"Version：", u"Version\u00A0: ", u"バージョン："};
static_assert(wellFormed(versionWord));

} // namespace

template <> std::span<const Row<playSetForm_Design>> rowsOf() { return settingsRows; }
template <> std::span<const Row<aboutForm_Design>> rowsOf() { return aboutRows; }

} // namespace texts

void Language_Set::language_aboutForm() {
    texts::putIn<aboutForm_Design>(app_, &Velmora::aboutForm);
    const std::int32_t index = app_.setControl().Language_Index;
    if (texts::isLanguage(index)) {
        app_.aboutForm().vesion.setCaption(
            std::u16string(texts::textOf(texts::versionWord, index)) + app_.Main().Vesion);
    }
}

void Language_Set::language_playSetForm() {
    texts::putIn<playSetForm_Design>(app_, &Velmora::playSetForm);
    const std::int32_t index = app_.setControl().Language_Index;
    if (!texts::isLanguage(index))
        return;
    // The long texts stand in a box for each language; one of each kind shows.
    velmora::playSetForm &form = app_.playSetForm();
    const auto showOne = [index](std::array<forms::TextBox *, texts::languageCount> boxes) {
        for (std::size_t i = 0; i < boxes.size(); ++i)
            boxes[i]->setVisible(i == static_cast<std::size_t>(index));
    };
    showOne({&form.helpShow_Chinese, &form.helpShow_English, &form.helpShow_French,
             &form.helpShow_Japanese});
    showOne({&form.Shortcuts_Show_Chinese, &form.Shortcuts_Show_English,
             &form.Shortcuts_Show_French, &form.Shortcuts_Show_Japanese});
}

} // namespace velmora
