#pragma once

// Texts that stand on several controls, each once.

#include "settings/language_rows.h"

namespace velmora::texts {

inline constexpr Texts product = everywhere(u"Velmora 2011");
inline constexpr Texts welcome{u"欢迎使用Velmora", u"Welcome to Velmora", u"Bienvenue dans Velmora",
                               u"Velmoraへようこそ"};
inline constexpr Texts copyrightLine{u"版权所有 (C) 2011 Norvane", u"Copyright (C) 2011 Norvane",
                                     u"Copyright (C) 2011 Norvane", u"Copyright (C) 2011 Norvane"};

inline constexpr Texts exit{u"退出(Esc)", u"Exit(ESC)", u"Quitter (Esc)", u"終了(Esc)"};
inline constexpr Texts play{u"播放(F2)", u"Play(F2)", u"Lecture (F2)", u"再生(F2)"};
inline constexpr Texts pause{u"暂停(F3)", u"Puase(F3)", u"Pause (F3)", u"一時停止(F3)"};
inline constexpr Texts stop{u"停止(F4)", u"Stop(F4)", u"Arrêt (F4)", u"停止(F4)"};
inline constexpr Texts previous{u"上一曲(F5)", u"UpPlay(F5)", u"Précédent (F5)", u"前の曲(F5)"};
inline constexpr Texts next{u"下一曲(F6)", u"NextPlay(F6)", u"Suivant (F6)", u"次の曲(F6)"};
inline constexpr Texts playList{u"播放列表(F8)", u"PlayList(F8)", u"Liste de lecture (F8)",
                                u"プレイリスト(F8)"};
inline constexpr Texts videoWindow{u"视频窗口(F11)", u"Video Window(F11)", u"Fenêtre vidéo (F11)",
                                   u"ビデオウィンドウ(F11)"};
inline constexpr Texts about{u"关于(F12)", u"About(F12)", u"À propos (F12)",
                             u"バージョン情報(F12)"};
inline constexpr Texts settings{u"播放器设置(CTRL+S)", u"PlayerSet(CTRL+S)", u"Paramètres (CTRL+S)",
                                u"プレーヤー設定(CTRL+S)"};

inline constexpr Texts mute{u"静音", u"Mute", u"Muet", u"ミュート"};
inline constexpr Texts volume{u"音量", u"Volume", u"Volume", u"音量"};
inline constexpr Texts position{u"播放进度", u"Playback position", u"Position de lecture",
                                u"再生位置"};
inline constexpr Texts desktopLyrics{u"桌面歌词", u"Desktop Lyrics", u"Paroles sur le bureau",
                                     u"デスクトップ歌詞"};
inline constexpr Texts trackInfo{u"曲目信息", u"Track Info", u"Informations sur le morceau",
                                 u"曲の情報"};
inline constexpr Texts goToTrack{
    u"在列表中定位正在播放的曲目", u"Find the playing track in the list",
    u"Retrouver le morceau en cours dans la liste", u"再生中の曲をリストで表示"};
inline constexpr Texts lyricEditor{
    u"制作歌词（只支持中文）", u"Production lyrics (only supports Chinese)",
    u"Création de paroles (chinois uniquement)", u"歌詞の作成（中国語のみ対応）"};
inline constexpr Texts lyricSearch{
    u"歌词搜索（只支持中文）", u"Lyrics Search (only supports Chinese)",
    u"Recherche de paroles (chinois uniquement)", u"歌詞の検索（中国語のみ対応）"};
inline constexpr Texts soundTest{u"声卡测试", u"Sound Test", u"Test de la carte son",
                                 u"サウンドテスト"};
inline constexpr Texts reloadList{u"重新加载列表", u"Reload the list", u"Recharger la liste",
                                  u"リストを再読み込み"};
inline constexpr Texts findTracks{u"查找曲目", u"FindTracks", u"Rechercher", u"曲を検索"};
inline constexpr Texts changeTrack{u"修改曲目", u"ChangeTrack", u"Renommer", u"曲名を変更"};

inline constexpr Texts okay{u"确定", u"OK", u"OK", u"OK"};
inline constexpr Texts cancel{u"取消", u"Cancel", u"Annuler", u"キャンセル"};
inline constexpr Texts help{u"帮助", u"Help", u"Aide", u"ヘルプ"};

} // namespace velmora::texts
