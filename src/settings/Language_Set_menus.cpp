// The two popup menus.

#include "settings/Language_Set.h"

#include "playback/MenuForm.h"
#include "settings/language_common.h"
#include "settings/language_tables.h"

namespace velmora {

namespace texts {

namespace {

constexpr Row<MenuForm_Design> menuRows[] = {
    {caption<&MenuForm::playControl>,
     {u"播放控制", u"Play Control", u"Commandes de lecture", u"再生コントロール"}},
    {caption<&MenuForm::play>, play},
    {caption<&MenuForm::pause>, pause},
    {caption<&MenuForm::stop>, stop},
    {caption<&MenuForm::nextSong>, next},
    {caption<&MenuForm::upSong>, previous},
    {caption<&MenuForm::mode>,
     {u"正常/迷你模式", u"Normal / Mini Mode", u"Mode normal / mini", u"通常／ミニモード"}},
    {caption<&MenuForm::playlist>, playList},
    {caption<&MenuForm::playSet>, settings},
    {caption<&MenuForm::desktop_Lrc>, desktopLyrics},
    {caption<&MenuForm::song_Info>, trackInfo},
    {caption<&MenuForm::song_GoTo_List>, goToTrack},
    {caption<&MenuForm::doLrc>, lyricEditor},
    {caption<&MenuForm::check_SoundDriver>, soundTest},
    {caption<&MenuForm::search_Lrc_To_Internet>, lyricSearch},
    {caption<&MenuForm::detection_Update>,
     {u"检测更新", u"Detection update", u"Rechercher une mise à jour", u"更新の確認"}},
    {caption<&MenuForm::about>, about},
    {caption<&MenuForm::help>, help},
    {caption<&MenuForm::close>, exit},
    {caption<&MenuForm::playlist_Play>, play},
    {caption<&MenuForm::playlist_Add>, {u"添加", u"Add", u"Ajouter", u"追加"}},
    {caption<&MenuForm::playlist_AddFile>,
     {u"添加文件(F7)", u"AddFile(F7)", u"Ajouter un fichier (F7)", u"ファイルを追加(F7)"}},
    {caption<&MenuForm::playlist_AddFolder>,
     {u"添加文件夹", u"AddFolder", u"Ajouter un dossier", u"フォルダーを追加"}},
    {caption<&MenuForm::playlist_Del>,
     {u"删除（从列表中删除）", u"Delete (to delete from the list)",
      u"Supprimer (de la liste seulement)", u"削除（リストから削除）"}},
    {caption<&MenuForm::hardDrive_Del>,
     {u"物理删除（从硬盘中删除）", u"Physically removed (from the hard drive removed)",
      u"Supprimer définitivement (du disque dur)", u"完全に削除（ハードディスクから削除）"}},
    {caption<&MenuForm::playlist_DelAll>,
     {u"删除全部(CTRL+A --> DEL)", u"Delete all(CTRL+A --> DEL)", u"Tout supprimer(CTRL+A --> DEL)",
      u"すべて削除(CTRL+A --> DEL)"}},
    {caption<&MenuForm::playlist_DelSelect>,
     {u"删除选中(DEL)", u"Delete Selected(DEL)", u"Supprimer la sélection(DEL)",
      u"選択した曲を削除(DEL)"}},
    {caption<&MenuForm::hardDrive_DelAll>,
     {u"删除全部(CTRL+A --> SHIFT+DEL)", u"Delete all(CTRL+A --> SHIFT+DEL)",
      u"Tout supprimer(CTRL+A --> SHIFT+DEL)", u"すべて削除(CTRL+A --> SHIFT+DEL)"}},
    {caption<&MenuForm::hardDrive_DelSelect>,
     {u"删除选中(SHIFT+DEL)", u"Delete Selected(SHIFT+DEL)", u"Supprimer la sélection(SHIFT+DEL)",
      u"選択した曲を削除(SHIFT+DEL)"}},
    {caption<&MenuForm::playlist_afreshLoad>, reloadList},
    {caption<&MenuForm::playlist_Search>, findTracks},
    {caption<&MenuForm::playlist_Alter>, changeTrack},
    {caption<&MenuForm::playlist_OpenFolder>,
     {u"打开文件目录(F9)", u"Open the file directory(F9)", u"Ouvrir le dossier du fichier (F9)",
      u"ファイルのフォルダーを開く(F9)"}},
    {caption<&MenuForm::playlist_Send>,
     {u"发送文件到...(F10)", u"Send a file to the...(F10)", u"Envoyer le fichier vers... (F10)",
      u"ファイルを送る...(F10)"}},
    {caption<&MenuForm::playlist_Hide>,
     {u"隐藏列表(F8)", u"Hide List(F8)", u"Masquer la liste (F8)", u"リストを隠す(F8)"}},
};
static_assert(allWellFormed(menuRows));

} // namespace

template <> std::span<const Row<MenuForm_Design>> rowsOf() { return menuRows; }

} // namespace texts

void Language_Set::language_MenuForm() { texts::putIn<MenuForm_Design>(app_, &Velmora::MenuForm); }

} // namespace velmora
