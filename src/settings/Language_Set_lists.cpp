// The play list, track information, lyric editor and lyric search.

#include "settings/Language_Set.h"

#include "lyrics/doLrcForm.h"
#include "network/search_Lrc_Internet_Form.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/listControl_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "settings/language_common.h"
#include "settings/language_tables.h"

namespace velmora {

namespace texts {

namespace {

constexpr Row<playList_Form_Design> listRows[] = {
    {toolTip<&playList_Form::close>, exit},
    {toolTip<&playList_Form::afresh_Load>, reloadList},
    {caption<&playList_Form::title>, playList},
    {caption<&playList_Form::addFile>, {u"添加文件", u"AddFile", u"+ Fichier", u"ファイル追加"}},
    {caption<&playList_Form::addDir>,
     {u"添加文件夹", u"AddFolder", u"+ Dossier", u"フォルダー追加"}},
    {caption<&playList_Form::delIndx>, {u"移出列表", u"OutList", u"Retirer", u"リストから削除"}},
    {caption<&playList_Form::delAll>,
     {u"清空列表", u"ClearList", u"Vider la liste", u"リストをクリア"}},
    {caption<&playList_Form::Search>, findTracks},
    {caption<&playList_Form::Alter>, changeTrack},
};
static_assert(allWellFormed(listRows));

constexpr Row<listControl_Form_Design> inputRows[] = {
    {toolTip<&listControl_Form::close>, exit},
    {caption<&listControl_Form::OK>, okay},
    {caption<&listControl_Form::Cancel>, cancel},
};
static_assert(allWellFormed(inputRows));

constexpr Row<playInfo_Form_Design> trackRows[] = {
    {toolTip<&playInfo_Form::close>, exit},
    {caption<&playInfo_Form::title>, trackInfo},
    {caption<&playInfo_Form::nowPlay_Frame>,
     {u"正在播放", u"Now Playing", u"En cours de lecture", u"再生中の曲"}},
    {caption<&playInfo_Form::lrcInfo_Frame>,
     {u"歌词信息", u"Lyrics Info", u"Informations sur les paroles", u"歌詞の情報"}},
    {caption<&playInfo_Form::CoprRight>, copyrightLine},
    {toolTip<&playInfo_Form::anotherInfo_Button>,
     {u"更多信息", u"More Info", u"Plus d'informations", u"詳細情報"}},
};
static_assert(allWellFormed(trackRows));

constexpr Row<another_PlayInfo_Form_Design> tagRows[] = {
    {toolTip<&another_PlayInfo_Form::close>, exit},
    {caption<&another_PlayInfo_Form::title>,
     {u"更多曲目信息", u"More Track Info", u"Plus d'informations sur le morceau", u"曲の詳細情報"}},
};
static_assert(allWellFormed(tagRows));

constexpr Row<doLrcForm_Design> editorRows[] = {
    {toolTip<&doLrcForm::close>, exit},
    {caption<&doLrcForm::title>, lyricEditor},
};
static_assert(allWellFormed(editorRows));

constexpr Row<search_Lrc_Internet_Form_Design> searchRows[] = {
    {caption<&search_Lrc_Internet_Form::title>, lyricSearch},
};
static_assert(allWellFormed(searchRows));

} // namespace

template <> std::span<const Row<playList_Form_Design>> rowsOf() { return listRows; }
template <> std::span<const Row<listControl_Form_Design>> rowsOf() { return inputRows; }
template <> std::span<const Row<playInfo_Form_Design>> rowsOf() { return trackRows; }
template <> std::span<const Row<another_PlayInfo_Form_Design>> rowsOf() { return tagRows; }
template <> std::span<const Row<doLrcForm_Design>> rowsOf() { return editorRows; }
template <> std::span<const Row<search_Lrc_Internet_Form_Design>> rowsOf() { return searchRows; }

} // namespace texts

void Language_Set::language_playList_Form() {
    texts::putIn<playList_Form_Design>(app_, &Velmora::playList_Form);
}

void Language_Set::language_listControl_Form() {
    texts::putIn<listControl_Form_Design>(app_, &Velmora::listControl_Form);
}

void Language_Set::language_playInfo_Form() {
    texts::putIn<playInfo_Form_Design>(app_, &Velmora::playInfo_Form);
}

void Language_Set::language_another_PlayInfo_Form() {
    texts::putIn<another_PlayInfo_Form_Design>(app_, &Velmora::another_PlayInfo_Form);
}

void Language_Set::language_doLrcForm() {
    texts::putIn<doLrcForm_Design>(app_, &Velmora::doLrcForm);
}

void Language_Set::language_search_Lrc_Internet_Form() {
    texts::putIn<search_Lrc_Internet_Form_Design>(app_, &Velmora::search_Lrc_Internet_Form);
}

} // namespace velmora
