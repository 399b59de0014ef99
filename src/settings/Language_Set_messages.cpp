#include "settings/Language_Set.h"

#include "settings/Language.h"
#include "settings/language_common.h"
#include "settings/language_tables.h"

namespace velmora {

namespace texts {

using namespace std::string_view_literals;

namespace {

// The file dialog takes descriptions and patterns in turns between NULs.
#define VELMORA_AUDIO                                                                              \
    u"*.mp3;*.wma;*.wav;*.mid;*.midi;*.ogg;*.mpg;*.cd;*.flac;*.tta;*.aiff;*.au;*.ape"
#define VELMORA_VIDEO u"*.rmvb;*.rm;*.avi;*.wmv;*.flv;*.mp4;*.dat"
#define VELMORA_FILTER(audio, video, all, open, close)                                             \
    audio open VELMORA_AUDIO close u"\0" VELMORA_AUDIO u"\0" video open VELMORA_VIDEO              \
        close u"\0" VELMORA_VIDEO u"\0" all open u"*.*" close u"\0*.*"sv

constexpr Texts mediaFilter{
    VELMORA_FILTER(u"音频文件", u"视频文件", u"所有文件", u"（", u"）"),
    VELMORA_FILTER(u"Audio Files", u"Video Files", u"All Files", u"（", u"）"),
    VELMORA_FILTER(u"Fichiers audio", u"Fichiers vidéo", u"Tous les fichiers", u" (", u")"),
    VELMORA_FILTER(u"オーディオファイル", u"ビデオファイル", u"すべてのファイル", u"（", u"）")};

#undef VELMORA_FILTER
#undef VELMORA_VIDEO
#undef VELMORA_AUDIO

constexpr Row<Language> messageRows[] = {
    {field<&Language::msg_Cannot_Start>,
     {u"无法启动程序，可能文件已不存在！", u"Unable to start program, you may file does not exist!",
      u"Impossible de démarrer le programme\u00A0: le fichier n'existe peut-être plus\u00A0!",
      u"プログラムを起動できません。ファイルが存在しない可能性があります。"}},
    {field<&Language::msg_Upgrade_Ask>,
     {u"程序升级：\r\n\r\n   您当前启动的Velmora程序过旧，强烈建议您将程序升级，"
      u"以保证功能的完善！\r\n   升级中程序后台运行，请耐心等待！\r\n\r\n是否将程序升级到：【",
      u"Upgrade procedure：\r\n\r\n   You start Velmora programs too old, it is strongly "
      u"recommended that you upgrade the program to ensure the function of perfect!\r\n   "
      u"Upgrade the program runs in the background, please be patient!\r\n\r\nWhether to upgrade "
      u"to the program：【",
      u"Mise à jour\u00A0:\r\n\r\n   Votre version de Velmora est trop ancienne. Nous vous "
      u"conseillons vivement de la mettre à jour pour profiter de toutes les fonctions.\r\n   La "
      u"mise à jour se fait en arrière-plan, merci de patienter.\r\n\r\nMettre le programme à "
      u"jour vers la version 【",
      u"プログラムの更新：\r\n\r\n   お使いのVelmoraは古いバージョンです。すべての機能をご利"
      u"用いただくため、更新を強くお勧めします。\r\n   更新はバックグラウンドで行われます。"
      u"しばらくお待ちください。\r\n\r\n次のバージョンに更新しますか：【"}},
    {field<&Language::msg_Upgrade_Done>,
     {u"程序升级：\r\n   Velmora升级完毕，是否启动新程序？",
      u"Upgrade procedure：\r\n   Velmora Upgrade is completed, whether to activate the new "
      u"program?",
      u"Mise à jour\u00A0:\r\n   La mise à jour de Velmora est terminée. Démarrer le nouveau "
      u"programme\u00A0?",
      u"プログラムの更新：\r\n   Velmoraの更新が完了しました。新しいプログラムを起動しますか？"}},
    {field<&Language::msg_Upgrade_Failed>,
     {u"升级失败：可能无法链接更新服务器，或程序启动目录无写入权限！",
      u"Upgrade failed: could not link to update server, or program start directory without "
      u"written permission!",
      u"Échec de la mise à jour\u00A0: le serveur est injoignable ou le dossier du programme est "
      u"protégé en écriture\u00A0!",
      u"更新に失敗しました。更新サーバーに接続できないか、プログラムのフォルダーに書き込み権限"
      u"がありません。"}},
    {field<&Language::msg_Latest_Version>,
     {u"您当前的版本已最新，无需升级！", u"Your current version of the latest, no need to upgrade!",
      u"Votre version est la plus récente, aucune mise à jour n'est nécessaire\u00A0!",
      u"お使いのバージョンは最新です。更新の必要はありません。"}},
    {field<&Language::msg_Welcome>, welcome},
    {field<&Language::msg_Media_Filter>, mediaFilter},
    {field<&Language::msg_AddMedia_Title>,
     {u"添加媒体文件  -  Velmora 2010", u"Add media files - Velmora  2010",
      u"Ajouter des fichiers multimédias - Velmora 2010",
      u"メディアファイルの追加 - Velmora 2010"}},
    {field<&Language::msg_Select_Folder>,
     {u"请选择一个文件夹", u"Please select a folder", u"Choisissez un dossier",
      u"フォルダーを選択してください"}},
    {field<&Language::msg_Loading_Tracks>,
     {u"正在验证并加载曲目到列表，请稍后...",
      u"Is to validate and load the tracks to the list, please wait ...",
      u"Vérification et ajout des morceaux à la liste, veuillez patienter...",
      u"曲を確認してリストに追加しています。しばらくお待ちください..."}},
    {field<&Language::msg_Rename_Prompt>,
     {u"请输入新的名称【文件名将随之更改】：",
      u"Please enter a new name【File name will be changed accordingly】",
      u"Saisissez le nouveau nom (le fichier sera renommé)\u00A0:",
      u"新しい名前を入力してください【ファイル名も変わります】："}},
    {field<&Language::msg_Rename_Title>,
     {u"修改文件名", u"Modify the file name", u"Renommer le fichier", u"ファイル名の変更"}},
    {field<&Language::msg_Find_Prompt>,
     {u"请输入包含歌曲名称的字【英文曲目区分大小写】",
      u"Please enter the word contains the song name【English tracks are case-sensitive】",
      u"Saisissez une partie du nom (majuscules et minuscules distinguées)",
      u"曲名に含まれる文字を入力してください【英字は大文字と小文字を区別】"}},
    {field<&Language::msg_Find_Title>,
     {u"在列表中查找曲目", u"Tracks in the list to find", u"Rechercher un morceau dans la liste",
      u"リストから曲を検索"}},
    {field<&Language::msg_Error>, {u"错误", u"Error", u"Erreur", u"エラー"}},
    {field<&Language::msg_One_Dir_Only>,
     {u"请正确选择一个文件名，不支持开启一个以上的文件目录！",
      u"Please correct choice of a file name, do not support the opening of more than one "
      u"directory!",
      u"Sélectionnez un seul fichier\u00A0: un seul dossier peut être ouvert à la fois\u00A0!",
      u"ファイルを1つだけ選択してください。一度に開けるフォルダーは1つだけです。"}},
    {field<&Language::msg_Copy_Failed>,
     {u"拷贝文件到指定的目录错误，无法完成操作！",
      u"Copy files to the specified directory error and could not complete the operation!",
      u"Erreur lors de la copie vers le dossier choisi\u00A0: l'opération n'a pas pu être "
      u"terminée\u00A0!",
      u"指定したフォルダーへのコピー中にエラーが発生し、操作を完了できませんでした。"}},
    {field<&Language::msg_Select_One_File>,
     {u"请选择至少一个文件，无法完成操作！",
      u"Please select at least one file, unable to complete the operation!",
      u"Sélectionnez au moins un fichier\u00A0: l'opération n'a pas pu être effectuée\u00A0!",
      u"ファイルを1つ以上選択してください。操作を完了できません。"}},
    {field<&Language::msg_Bad_Path>,
     {u"文件地址错误或过长，无法解析曲目名，文件添加失败！",
      u"The address for errors or too long can not be resolved track names, add files to fail!",
      u"Le chemin du fichier est incorrect ou trop long, le nom du morceau est illisible\u00A0: le "
      u"fichier n'a pas été ajouté\u00A0!",
      u"ファイルのパスが正しくないか長すぎるため、曲名を取得できません。ファイルを追加でき"
      u"ませんでした。"}},
    {field<&Language::msg_No_Network>,
     {u"您未连接任何有效网络，本次操作失败！",
      u"You are not connected to any effective network, this operation failed!",
      u"Vous n'êtes connecté à aucun réseau\u00A0: l'opération a échoué\u00A0!",
      u"有効なネットワークに接続されていないため、操作に失敗しました。"}},
    {field<&Language::msg_Safe_Mode>,
     {u"您当前的系统运行模式可能无法启动播放器的正常功能，请进入系统【正常模式】运行！",
      u"Your current system operating mode may not be able to start the normal function of "
      u"player, please enter the system (normal mode) to run!",
      u"Dans le mode actuel du système, le lecteur risque de ne pas fonctionner normalement. "
      u"Redémarrez le système en mode normal\u00A0!",
      u"現在のシステムの動作モードでは、プレーヤーが正常に動作しない可能性があります。"
      u"システムを【通常モード】で起動してください。"}},
    {field<&Language::msg_Already_Running>,
     {u"Velmora已经运行了一个，请先关闭前者！",
      u"Velmora has been running for one, please turn off the former!",
      u"Velmora est déjà en cours d'exécution\u00A0: fermez-le d'abord\u00A0!",
      u"Velmoraはすでに起動しています。先に終了してください。"}},
    {field<&Language::msg_No_Sound_Card>,
     {u"您的系统未安装声卡或声卡驱动无效，这将影响您的视听效果。建议您安装声卡或检测声卡驱动故障！",
      u"Is not installed on your system sound card or sound card driver is invalid, this will "
      u"affect your audio and visual effects. Recommend that you install the sound card or sound "
      u"drivers detected fault!",
      u"Aucune carte son n'est installée ou son pilote ne fonctionne pas, ce qui nuira à la "
      u"lecture. Installez une carte son ou vérifiez son pilote\u00A0!",
      u"サウンドカードがないか、そのドライバーが無効なため、再生に影響があります。"
      u"サウンドカードを取り付けるか、ドライバーを確認することをお勧めします。"}},
    {field<&Language::msg_No_Track_Desktop_Lrc>,
     {u"没有播放曲目，桌面歌词自动隐藏！",
      u"Does not play tracks, lyrics automatically hide your desktop!",
      u"Aucun morceau en cours\u00A0: les paroles sur le bureau sont masquées\u00A0!",
      u"再生中の曲がないため、デスクトップ歌詞は自動的に非表示になります。"}},
    {field<&Language::msg_No_Track_Info>,
     {u"没有播放曲目，无法获得正在播放曲目的信息！",
      u"Does not play tracks, unable to obtain information that is being played tracks!",
      u"Aucun morceau en cours\u00A0: il n'y a pas d'informations à afficher\u00A0!",
      u"再生中の曲がないため、曲の情報を取得できません。"}},
    {field<&Language::msg_Seeking>,
     {u"曲目进度设置中，请稍候...", u"Track the progress, please wait ...",
      u"Changement de position, veuillez patienter...",
      u"再生位置を変更しています。お待ちください..."}},
    {field<&Language::msg_Restore_Ask>,
     {u"您确定要删除以前的设置来恢复吗？\r\n\r\n提示：恢复需要重启播放器，并且请确定您有系统"
      u"一定的权限！",
      u"Are you sure you want to delete the previous settings to restore?\r\n\r\nTip: "
      u"restoration need to restart the player, and make sure you have the system a certain "
      u"degree of competence!",
      u"Voulez-vous vraiment supprimer vos paramètres et rétablir ceux par défaut\u00A0?\r\n\r\n"
      u"Remarque\u00A0: le lecteur devra redémarrer, et vous devez avoir les droits nécessaires "
      u"sur "
      u"le système\u00A0!",
      u"現在の設定を削除して、初期設定に戻しますか？\r\n\r\nヒント：プレーヤーの再起動"
      u"が必要です。また、必要な権限があることを確認してください。"}},
    {field<&Language::msg_Restore_Failed>,
     {u"无法恢复至默认，原因可能您当前没有系统一定权限，或系统文件无法正常获取！",
      u"Can not be restored to the default, probably due to the system you are not currently "
      u"have a certain authority, or system files can not normally get!",
      u"Impossible de rétablir les paramètres par défaut\u00A0: vous n'avez peut-être pas les "
      u"droits "
      u"nécessaires, ou des fichiers du système sont inaccessibles\u00A0!",
      u"初期設定に戻せません。必要な権限がないか、システムファイルにアクセスできない可"
      u"能性があります。"}},
    {field<&Language::msg_Restore_Restart>,
     {u"设置已恢复成默认状态，但需要重启播放器已完成播放器参数更改！\r\n\r\n您是否现在关闭播放"
      u"器重启？",
      u"Setting has been restored into a default state, but the need to restart the player has "
      u"completed the player parameter changes!\r\n\r\nDo you close the player to restart now?",
      u"Les paramètres par défaut sont rétablis, mais le lecteur doit redémarrer pour les "
      u"appliquer\u00A0!\r\n\r\nFermer et redémarrer le lecteur maintenant\u00A0?",
      u"初期設定に戻しました。変更を反映するには、プレーヤーの再起動が必要です。\r\n\r\n"
      u"今すぐプレーヤーを再起動しますか？"}},
    {field<&Language::msg_Track_Name>,
     {u"曲目名：", u"Track Name：", u"Morceau\u00A0: ", u"曲名："}},
    {field<&Language::msg_Directory>,
     {u"文件目录：", u"Directory：", u"Dossier\u00A0: ", u"フォルダー："}},
    {field<&Language::msg_File_Size>,
     {u"文件大小：", u"File Size：", u"Taille\u00A0: ", u"サイズ："}},
    {field<&Language::msg_Created>,
     {u"创建时间：", u"Created：", u"Créé le\u00A0: ", u"作成日時："}},
    {field<&Language::msg_Format>, {u"格式：", u"Format：", u"Format\u00A0: ", u"形式："}},
    {field<&Language::msg_Output_Channels>,
     {u"输出声道：", u"Output channel：", u"Canaux de sortie\u00A0: ", u"出力チャンネル："}},
    {field<&Language::msg_Formats_List>,
     {u"支持格式列表：", u"List of supported formats：", u"Formats pris en charge\u00A0:",
      u"対応形式の一覧："}},
    {field<&Language::msg_Extended_List>,
     {u"扩展输出功能列表：", u"Extend the output list of features：",
      u"Fonctions de sortie étendues\u00A0:", u"拡張出力機能の一覧："}},
    {field<&Language::msg_Driver_Version>,
     {u"驱动程序版本：", u"Driver Version：", u"Version du pilote\u00A0: ",
      u"ドライバーのバージョン："}},
    {field<&Language::msg_Product_Name>,
     {u"产品名称：", u"Name：", u"Nom du produit\u00A0: ", u"製品名："}},
    {field<&Language::msg_Driver_Id>,
     {u"驱动程序 Id：", u"Drivers Id：", u"ID du pilote\u00A0: ", u"ドライバーID："}},
    {field<&Language::msg_Product_Id>,
     {u"产品 Id：", u"Products Id：", u"ID du produit\u00A0: ", u"製品ID："}},
};
static_assert(std::size(messageRows) == 41 && allWellFormed(messageRows));

} // namespace

template <> std::span<const Row<Language>> rowsOf<Language>() { return messageRows; }

} // namespace texts

void Language_Set::language_Messages() {
    texts::putIn<velmora::Language>(app_, &Velmora::Language);
}

} // namespace velmora
