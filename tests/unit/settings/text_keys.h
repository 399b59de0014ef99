#pragma once

// The keys of the language tables as the windows have them, and the texts that are fixed.

#include "platform/forms/controls.h"
#include "platform/forms/form.h"
#include "platform/forms/menu.h"
#include "settings/Language.h"
#include "ui/zkButton.h"

#include <map>
#include <string>

namespace velmora {

// Form, control, property; the form's own caption has no control.
inline constexpr const char *textKeys[] = {
    "Main..caption",
    "Main.title.caption",
    "Main.playInfo_Show.caption",
    "Main.copyright.caption",
    "Main.CopyRight_Series.caption",
    "Main.mini_Button.toolTip",
    "Main.minimizeButton.toolTip",
    "Main.CopyRight_ICO.toolTip",
    "Main.closeButton.toolTip",
    "Main.playButton.toolTip",
    "Main.pauseButton.toolTip",
    "Main.nextButton.toolTip",
    "Main.upButton.toolTip",
    "Main.stopButton.toolTip",
    "Main.openFile_Button.toolTip",
    "Main.playListButton.toolTip",
    "Main.playSet_Button.toolTip",
    "Main.Volume_ICO.toolTip",
    "Main.Volume_Set_BG.toolTip",
    "Main.load_Played_BG.toolTip",
    "Main.desktop_Lrc.toolTip",
    "Main.playInfo.toolTip",
    "Main.AudioSource_H.toolTip",
    "Main.AudioSource_L.toolTip",
    "Main.AudioSource_R.toolTip",
    "Main.song_GoTo_List.toolTip",
    "Main.do_Lrc.toolTip",
    "Main.check_SoundDriver.toolTip",
    "Main.videoScreen_Button.toolTip",
    "miniForm.playInfo_Show.caption",
    "miniForm.mini_Button.toolTip",
    "miniForm.close.toolTip",
    "miniForm.playButton.toolTip",
    "miniForm.pauseButton.toolTip",
    "miniForm.nextButton.toolTip",
    "miniForm.upButton.toolTip",
    "miniForm.stopButton.toolTip",
    "miniForm.Volume_ICO.toolTip",
    "miniForm.Volume_Set_BG.toolTip",
    "miniForm.load_Played_BG.toolTip",
    "miniForm.desktop_Lrc.toolTip",
    "miniForm.playInfo.toolTip",
    "miniForm.auto_Hide_Lock_False.toolTip",
    "miniForm.auto_Hide_Lock_True.toolTip",
    "playList_Form.close.toolTip",
    "playList_Form.afresh_Load.toolTip",
    "playList_Form.title.caption",
    "playList_Form.addFile.caption",
    "playList_Form.addDir.caption",
    "playList_Form.delIndx.caption",
    "playList_Form.delAll.caption",
    "playList_Form.Search.caption",
    "playList_Form.Alter.caption",
    "listControl_Form.close.toolTip",
    "listControl_Form.OK.caption",
    "listControl_Form.Cancel.caption",
    "aboutForm.close.toolTip",
    "aboutForm.title.caption",
    "aboutForm.vesion.caption",
    "aboutForm.copyright.caption",
    "aboutForm.information.text",
    "aboutForm.zkShow.text",
    "aboutForm.system_Support.caption",
    "aboutForm.Ownership.caption",
    "aboutForm.announce.text",
    "aboutForm.Translate.caption",
    "aboutForm.email.caption",
    "aboutForm.Cooperation_Email.caption",
    "playSetForm.close.toolTip",
    "playSetForm.title.caption",
    "playSetForm.yy.caption",
    "playSetForm.qd.caption",
    "playSetForm.qx.caption",
    "playSetForm.playSet.caption",
    "playSetForm.playFrame.caption",
    "playSetForm.isAutoPlay.caption",
    "playSetForm.autoUpdate.caption",
    "playSetForm.Play_Order.caption",
    "playSetForm.Play_Random.caption",
    "playSetForm.Play_RepeatPlay.caption",
    "playSetForm.openVideo_Interface.caption",
    "playSetForm.lrcSet.caption",
    "playSetForm.lrc_Frame.caption",
    "playSetForm.desktop_Lrc_Frame.caption",
    "playSetForm.desktopLrc_AutoOpen.caption",
    "playSetForm.desktop_Lrc_Preview.text",
    "playSetForm.desktop_Lrc_Font_Button.caption",
    "playSetForm.desktop_Lrc_FroeColor_Button.caption",
    "playSetForm.other_Lrc_Frame.caption",
    "playSetForm.other_Lrc_Preview.text",
    "playSetForm.other_Lrc_Exclamation.caption",
    "playSetForm.other_Lrc_Font_Button.caption",
    "playSetForm.other_Lrc_FroeColor_Button.caption",
    "playSetForm.folderSet.caption",
    "playSetForm.folder_Frame.caption",
    "playSetForm.save_Lrc_Path_Label.caption",
    "playSetForm.save_Lrc_Path_Image.toolTip",
    "playSetForm.save_PlayList_Path_Label.caption",
    "playSetForm.save_PlayList_Path_Image.toolTip",
    "playSetForm.save_PlayCache_Path_Label.caption",
    "playSetForm.save_PlayCache_Path_Image.toolTip",
    "playSetForm.languageSet.caption",
    "playSetForm.Language_Frame.caption",
    "playSetForm.help.caption",
    "playSetForm.help_Frame.caption",
    "playSetForm.Shortcuts.caption",
    "playSetForm.Shortcuts_Frame.caption",
    "playSetForm.abount.caption",
    "playSetForm.copyright.caption",
    "playSetForm.playSet_Resume.toolTip",
    "playInfo_Form.close.toolTip",
    "playInfo_Form.title.caption",
    "playInfo_Form.nowPlay_Frame.caption",
    "playInfo_Form.lrcInfo_Frame.caption",
    "playInfo_Form.CoprRight.caption",
    "playInfo_Form.anotherInfo_Button.toolTip",
    "another_PlayInfo_Form.close.toolTip",
    "another_PlayInfo_Form.title.caption",
    "doLrcForm.close.toolTip",
    "doLrcForm.title.caption",
    "check_SoundDriver_Form.title.caption",
    "check_SoundDriver_Form.check.caption",
    "search_Lrc_Internet_Form.title.caption",
    "MenuForm.playControl.caption",
    "MenuForm.play.caption",
    "MenuForm.pause.caption",
    "MenuForm.stop.caption",
    "MenuForm.nextSong.caption",
    "MenuForm.upSong.caption",
    "MenuForm.mode.caption",
    "MenuForm.playlist.caption",
    "MenuForm.playSet.caption",
    "MenuForm.desktop_Lrc.caption",
    "MenuForm.song_Info.caption",
    "MenuForm.song_GoTo_List.caption",
    "MenuForm.doLrc.caption",
    "MenuForm.check_SoundDriver.caption",
    "MenuForm.search_Lrc_To_Internet.caption",
    "MenuForm.detection_Update.caption",
    "MenuForm.about.caption",
    "MenuForm.help.caption",
    "MenuForm.close.caption",
    "MenuForm.playlist_Play.caption",
    "MenuForm.playlist_Add.caption",
    "MenuForm.playlist_AddFile.caption",
    "MenuForm.playlist_AddFolder.caption",
    "MenuForm.playlist_Del.caption",
    "MenuForm.hardDrive_Del.caption",
    "MenuForm.playlist_DelAll.caption",
    "MenuForm.playlist_DelSelect.caption",
    "MenuForm.hardDrive_DelAll.caption",
    "MenuForm.hardDrive_DelSelect.caption",
    "MenuForm.playlist_afreshLoad.caption",
    "MenuForm.playlist_Search.caption",
    "MenuForm.playlist_Alter.caption",
    "MenuForm.playlist_OpenFolder.caption",
    "MenuForm.playlist_Send.caption",
    "MenuForm.playlist_Hide.caption",
    "VideoScreen_Form..caption",
    "VideoScreen_Form.title.caption",
    "VideoScreen_Form.fullScreen_Button.caption",
    "VideoScreen_Form.fullScreen_Button.toolTip",
    "VideoScreen_Form.close.toolTip",
};

inline constexpr std::pair<const char *, std::u16string_view Language::*> messageVariables[] = {
    {"msg_Cannot_Start", &Language::msg_Cannot_Start},
    {"msg_Upgrade_Ask", &Language::msg_Upgrade_Ask},
    {"msg_Upgrade_Done", &Language::msg_Upgrade_Done},
    {"msg_Upgrade_Failed", &Language::msg_Upgrade_Failed},
    {"msg_Latest_Version", &Language::msg_Latest_Version},
    {"msg_Welcome", &Language::msg_Welcome},
    {"msg_Media_Filter", &Language::msg_Media_Filter},
    {"msg_AddMedia_Title", &Language::msg_AddMedia_Title},
    {"msg_Select_Folder", &Language::msg_Select_Folder},
    {"msg_Loading_Tracks", &Language::msg_Loading_Tracks},
    {"msg_Rename_Prompt", &Language::msg_Rename_Prompt},
    {"msg_Rename_Title", &Language::msg_Rename_Title},
    {"msg_Find_Prompt", &Language::msg_Find_Prompt},
    {"msg_Find_Title", &Language::msg_Find_Title},
    {"msg_Error", &Language::msg_Error},
    {"msg_One_Dir_Only", &Language::msg_One_Dir_Only},
    {"msg_Copy_Failed", &Language::msg_Copy_Failed},
    {"msg_Select_One_File", &Language::msg_Select_One_File},
    {"msg_Bad_Path", &Language::msg_Bad_Path},
    {"msg_No_Network", &Language::msg_No_Network},
    {"msg_Safe_Mode", &Language::msg_Safe_Mode},
    {"msg_Already_Running", &Language::msg_Already_Running},
    {"msg_No_Sound_Card", &Language::msg_No_Sound_Card},
    {"msg_No_Track_Desktop_Lrc", &Language::msg_No_Track_Desktop_Lrc},
    {"msg_No_Track_Info", &Language::msg_No_Track_Info},
    {"msg_Seeking", &Language::msg_Seeking},
    {"msg_Restore_Ask", &Language::msg_Restore_Ask},
    {"msg_Restore_Failed", &Language::msg_Restore_Failed},
    {"msg_Restore_Restart", &Language::msg_Restore_Restart},
    {"msg_Track_Name", &Language::msg_Track_Name},
    {"msg_Directory", &Language::msg_Directory},
    {"msg_File_Size", &Language::msg_File_Size},
    {"msg_Created", &Language::msg_Created},
    {"msg_Format", &Language::msg_Format},
    {"msg_Output_Channels", &Language::msg_Output_Channels},
    {"msg_Formats_List", &Language::msg_Formats_List},
    {"msg_Extended_List", &Language::msg_Extended_List},
    {"msg_Driver_Version", &Language::msg_Driver_Version},
    {"msg_Product_Name", &Language::msg_Product_Name},
    {"msg_Driver_Id", &Language::msg_Driver_Id},
    {"msg_Product_Id", &Language::msg_Product_Id},
};

struct GivenText {
    const char *key;
    const char16_t *chinese;
    const char16_t *english;
};

inline constexpr GivenText givenTexts[] = {
    {"Main.closeButton.toolTip", u"退出(Esc)", u"Exit(ESC)"},
    {"miniForm.close.toolTip", u"退出(Esc)", u"Exit(ESC)"},
    {"playList_Form.close.toolTip", u"退出(Esc)", u"Exit(ESC)"},
    {"aboutForm.close.toolTip", u"退出(Esc)", u"Exit(ESC)"},
    {"playSetForm.close.toolTip", u"退出(Esc)", u"Exit(ESC)"},
    {"MenuForm.close.caption", u"退出(Esc)", u"Exit(ESC)"},
    {"VideoScreen_Form.close.toolTip", u"退出(Esc)", u"Exit(ESC)"},
    {"Main.playButton.toolTip", u"播放(F2)", u"Play(F2)"},
    {"miniForm.playButton.toolTip", u"播放(F2)", u"Play(F2)"},
    {"MenuForm.play.caption", u"播放(F2)", u"Play(F2)"},
    {"MenuForm.playlist_Play.caption", u"播放(F2)", u"Play(F2)"},
    {"Main.pauseButton.toolTip", u"暂停(F3)", u"Puase(F3)"},
    {"miniForm.pauseButton.toolTip", u"暂停(F3)", u"Puase(F3)"},
    {"MenuForm.pause.caption", u"暂停(F3)", u"Puase(F3)"},
    {"Main.stopButton.toolTip", u"停止(F4)", u"Stop(F4)"},
    {"miniForm.stopButton.toolTip", u"停止(F4)", u"Stop(F4)"},
    {"MenuForm.stop.caption", u"停止(F4)", u"Stop(F4)"},
    {"Main.upButton.toolTip", u"上一曲(F5)", u"UpPlay(F5)"},
    {"miniForm.upButton.toolTip", u"上一曲(F5)", u"UpPlay(F5)"},
    {"MenuForm.upSong.caption", u"上一曲(F5)", u"UpPlay(F5)"},
    {"Main.nextButton.toolTip", u"下一曲(F6)", u"NextPlay(F6)"},
    {"miniForm.nextButton.toolTip", u"下一曲(F6)", u"NextPlay(F6)"},
    {"MenuForm.nextSong.caption", u"下一曲(F6)", u"NextPlay(F6)"},
    {"Main.openFile_Button.toolTip", u"打开文件(F7)", u"OpenFile(F7)"},
    {"Main.playListButton.toolTip", u"播放列表(F8)", u"PlayList(F8)"},
    {"MenuForm.playlist.caption", u"播放列表(F8)", u"PlayList(F8)"},
    {"playList_Form.title.caption", u"播放列表(F8)", u"PlayList(F8)"},
    {"MenuForm.playlist_Hide.caption", u"隐藏列表(F8)", u"Hide List(F8)"},
    {"MenuForm.playlist_OpenFolder.caption", u"打开文件目录(F9)", u"Open the file directory(F9)"},
    {"MenuForm.playlist_Send.caption", u"发送文件到...(F10)", u"Send a file to the...(F10)"},
    {"Main.videoScreen_Button.toolTip", u"视频窗口(F11)", u"Video Window(F11)"},
    {"VideoScreen_Form.title.caption", u"视频窗口(F11)", u"Video Window(F11)"},
    {"Main.CopyRight_ICO.toolTip", u"关于(F12)", u"About(F12)"},
    {"MenuForm.about.caption", u"关于(F12)", u"About(F12)"},
    {"playSetForm.abount.caption", u"关于(F12)", u"About(F12)"},
    {"Main.playSet_Button.toolTip", u"播放器设置(CTRL+S)", u"PlayerSet(CTRL+S)"},
    {"MenuForm.playSet.caption", u"播放器设置(CTRL+S)", u"PlayerSet(CTRL+S)"},
    {"VideoScreen_Form.fullScreen_Button.caption", u"全屏（Enter/Esc）",
     u"Full screen（Enter/Esc）"},
    {"VideoScreen_Form.fullScreen_Button.toolTip", u"全屏（Enter/Esc）",
     u"Full screen（Enter/Esc）"},
    {"Main.title.caption", u"Velmora 2011", u"Velmora 2011"},
    {"aboutForm.title.caption", u"Velmora 2011", u"Velmora 2011"},
    {"playSetForm.desktop_Lrc_Preview.text", u"Velmora 2011", u"Velmora 2011"},
    {"playSetForm.other_Lrc_Preview.text", u"Velmora 2011", u"Velmora 2011"},
    {"Main.playInfo_Show.caption", u"欢迎使用Velmora", u"Welcome to Velmora"},
    {"miniForm.playInfo_Show.caption", u"欢迎使用Velmora", u"Welcome to Velmora"},
    {"Main.mini_Button.toolTip", u"迷你模式", u"Mini Mode"},
    {"miniForm.mini_Button.toolTip", u"正常模式", u"Normal mode"},
    {"MenuForm.mode.caption", u"正常/迷你模式", u"Normal / Mini Mode"},
    {"Main.AudioSource_H.toolTip", u"立体声", u"Stereo"},
    {"Main.AudioSource_L.toolTip", u"左声道", u"Left channel"},
    {"Main.AudioSource_R.toolTip", u"右声道", u"Right Channel"},
    {"miniForm.auto_Hide_Lock_False.toolTip", u"锁定面板，鼠标移除时不自动隐藏",
     u"Lock panel, the mouse when you are not automatically remove the hide"},
    {"miniForm.auto_Hide_Lock_True.toolTip", u"释放面板，鼠标移除时自动隐藏",
     u"Release panel automatically hides when the mouse to remove"},
    {"Main.do_Lrc.toolTip", u"制作歌词（只支持中文）",
     u"Production lyrics (only supports Chinese)"},
    {"MenuForm.doLrc.caption", u"制作歌词（只支持中文）",
     u"Production lyrics (only supports Chinese)"},
    {"doLrcForm.title.caption", u"制作歌词（只支持中文）",
     u"Production lyrics (only supports Chinese)"},
    {"MenuForm.search_Lrc_To_Internet.caption", u"歌词搜索（只支持中文）",
     u"Lyrics Search (only supports Chinese)"},
    {"search_Lrc_Internet_Form.title.caption", u"歌词搜索（只支持中文）",
     u"Lyrics Search (only supports Chinese)"},
    {"Main.check_SoundDriver.toolTip", u"声卡测试", u"Sound Test"},
    {"MenuForm.check_SoundDriver.caption", u"声卡测试", u"Sound Test"},
    {"MenuForm.detection_Update.caption", u"检测更新", u"Detection update"},
    {"playList_Form.addFile.caption", u"添加文件", u"AddFile"},
    {"playList_Form.addDir.caption", u"添加文件夹", u"AddFolder"},
    {"playList_Form.delIndx.caption", u"移出列表", u"OutList"},
    {"playList_Form.delAll.caption", u"清空列表", u"ClearList"},
    {"playList_Form.Search.caption", u"查找曲目", u"FindTracks"},
    {"playList_Form.Alter.caption", u"修改曲目", u"ChangeTrack"},
    {"MenuForm.playlist_Del.caption", u"删除（从列表中删除）", u"Delete (to delete from the list)"},
    {"MenuForm.hardDrive_Del.caption", u"物理删除（从硬盘中删除）",
     u"Physically removed (from the hard drive removed)"},
    {"MenuForm.playlist_DelAll.caption", u"删除全部(CTRL+A --> DEL)",
     u"Delete all(CTRL+A --> DEL)"},
    {"MenuForm.playlist_DelSelect.caption", u"删除选中(DEL)", u"Delete Selected(DEL)"},
    {"MenuForm.hardDrive_DelAll.caption", u"删除全部(CTRL+A --> SHIFT+DEL)",
     u"Delete all(CTRL+A --> SHIFT+DEL)"},
    {"MenuForm.hardDrive_DelSelect.caption", u"删除选中(SHIFT+DEL)", u"Delete Selected(SHIFT+DEL)"},
    {"playSetForm.yy.caption", u"应用", u"Apply"},
    {"playSetForm.qd.caption", u"确定", u"OK"},
    {"playSetForm.qx.caption", u"取消", u"Cancel"},
    {"playSetForm.playSet.caption", u"播放选项", u"Playback Options"},
    {"playSetForm.playFrame.caption", u"播放选项", u"Playback Options"},
    {"playSetForm.lrcSet.caption", u"歌词", u"Lyrics"},
    {"playSetForm.lrc_Frame.caption", u"歌词", u"Lyrics"},
    {"playSetForm.folderSet.caption", u"目录", u"Directory"},
    {"playSetForm.folder_Frame.caption", u"目录", u"Directory"},
    {"playSetForm.languageSet.caption", u"语言", u"Languages"},
    {"playSetForm.Language_Frame.caption", u"语言", u"Languages"},
    {"playSetForm.Shortcuts.caption", u"快捷键", u"Shortcuts"},
    {"playSetForm.Shortcuts_Frame.caption", u"快捷键", u"Shortcuts"},
    {"playSetForm.help.caption", u"帮助", u"Help"},
    {"playSetForm.help_Frame.caption", u"帮助", u"Help"},
    {"playSetForm.isAutoPlay.caption", u"自动播放（单曲播放完后执行下一步）", u"Auto-Play"},
    {"playSetForm.autoUpdate.caption", u"程序启动自动升级",
     u"Program starts automatically upgrade"},
    {"playSetForm.Play_Order.caption", u"顺序播放（按列表顺序播放停止播放）", u"Order Play"},
    {"playSetForm.Play_Random.caption", u"随机播放（由系统自动从列表中选曲目播放）",
     u"Random Play"},
    {"playSetForm.Play_RepeatPlay.caption", u"重复播放（单曲重复播放）", u"Repeat Play"},
    {"playSetForm.other_Lrc_Exclamation.caption", u"温馨提示：其他歌词的字体设置不能设置字体大小。",
     u"Warm Tip: Other lyrics can not set the font size of the font settings."},
    {"playSetForm.playSet_Resume.toolTip", u"恢复至默认", u"Restored to the default"},
};

inline constexpr GivenText givenMessages[] = {
    {"msg_Cannot_Start", u"无法启动程序，可能文件已不存在！",
     u"Unable to start program, you may file does not exist!"},
    {"msg_Upgrade_Ask",
     u"程序升级：\r\n\r\n   "
     u"您当前启动的Velmora程序过旧，强烈建议您将程序升级，以保证功能的完善！\r\n   "
     u"升级中程序后台运行，请耐心等待！\r\n\r\n是否将程序升级到：【",
     u"Upgrade procedure：\r\n\r\n   You start Velmora programs too old, it is strongly "
     u"recommended that you upgrade the program to ensure the function of perfect!\r\n   Upgrade "
     u"the program runs in the background, please be patient!\r\n\r\nWhether to upgrade to the "
     u"program：【"},
    {"msg_Upgrade_Done", u"程序升级：\r\n   Velmora升级完毕，是否启动新程序？",
     u"Upgrade procedure：\r\n   Velmora Upgrade is completed, whether to activate the new "
     u"program?"},
    {"msg_Upgrade_Failed", u"升级失败：可能无法链接更新服务器，或程序启动目录无写入权限！",
     u"Upgrade failed: could not link to update server, or program start directory without written "
     u"permission!"},
    {"msg_Latest_Version", u"您当前的版本已最新，无需升级！",
     u"Your current version of the latest, no need to upgrade!"},
    {"msg_Welcome", u"欢迎使用Velmora", u"Welcome to Velmora"},
    {"msg_AddMedia_Title", u"添加媒体文件  -  Velmora 2010", u"Add media files - Velmora  2010"},
    {"msg_Select_Folder", u"请选择一个文件夹", u"Please select a folder"},
    {"msg_Loading_Tracks", u"正在验证并加载曲目到列表，请稍后...",
     u"Is to validate and load the tracks to the list, please wait ..."},
    {"msg_Rename_Prompt", u"请输入新的名称【文件名将随之更改】：",
     u"Please enter a new name【File name will be changed accordingly】"},
    {"msg_Rename_Title", u"修改文件名", u"Modify the file name"},
    {"msg_Find_Prompt", u"请输入包含歌曲名称的字【英文曲目区分大小写】",
     u"Please enter the word contains the song name【English tracks are case-sensitive】"},
    {"msg_Find_Title", u"在列表中查找曲目", u"Tracks in the list to find"},
    {"msg_Error", u"错误", u"Error"},
    {"msg_One_Dir_Only", u"请正确选择一个文件名，不支持开启一个以上的文件目录！",
     u"Please correct choice of a file name, do not support the opening of more than one "
     u"directory!"},
    {"msg_Copy_Failed", u"拷贝文件到指定的目录错误，无法完成操作！",
     u"Copy files to the specified directory error and could not complete the operation!"},
    {"msg_Select_One_File", u"请选择至少一个文件，无法完成操作！",
     u"Please select at least one file, unable to complete the operation!"},
    {"msg_Bad_Path", u"文件地址错误或过长，无法解析曲目名，文件添加失败！",
     u"The address for errors or too long can not be resolved track names, add files to fail!"},
    {"msg_No_Network", u"您未连接任何有效网络，本次操作失败！",
     u"You are not connected to any effective network, this operation failed!"},
    {"msg_Safe_Mode",
     u"您当前的系统运行模式可能无法启动播放器的正常功能，请进入系统【正常模式】运行！",
     u"Your current system operating mode may not be able to start the normal function of player, "
     u"please enter the system (normal mode) to run!"},
    {"msg_Already_Running", u"Velmora已经运行了一个，请先关闭前者！",
     u"Velmora has been running for one, please turn off the former!"},
    {"msg_No_Sound_Card",
     u"您的系统未安装声卡或声卡驱动无效，这将影响您的视听效果。建议您安装声卡或检测声卡驱动故障！",
     u"Is not installed on your system sound card or sound card driver is invalid, this will "
     u"affect your audio and visual effects. Recommend that you install the sound card or sound "
     u"drivers detected fault!"},
    {"msg_No_Track_Desktop_Lrc", u"没有播放曲目，桌面歌词自动隐藏！",
     u"Does not play tracks, lyrics automatically hide your desktop!"},
    {"msg_No_Track_Info", u"没有播放曲目，无法获得正在播放曲目的信息！",
     u"Does not play tracks, unable to obtain information that is being played tracks!"},
    {"msg_Seeking", u"曲目进度设置中，请稍候...", u"Track the progress, please wait ..."},
    {"msg_Restore_Ask",
     u"您确定要删除以前的设置来恢复吗？\r\n\r\n提示：恢复需要重启播放器，并且请确定您有系统一定的权"
     u"限！",
     u"Are you sure you want to delete the previous settings to restore?\r\n\r\nTip: restoration "
     u"need to restart the player, and make sure you have the system a certain degree of "
     u"competence!"},
    {"msg_Restore_Failed",
     u"无法恢复至默认，原因可能您当前没有系统一定权限，或系统文件无法正常获取！",
     u"Can not be restored to the default, probably due to the system you are not currently have a "
     u"certain authority, or system files can not normally get!"},
    {"msg_Restore_Restart",
     u"设置已恢复成默认状态，但需要重启播放器已完成播放器参数更改！\r\n\r\n您是否现在关闭播放器重启"
     u"？",
     u"Setting has been restored into a default state, but the need to restart the player has "
     u"completed the player parameter changes!\r\n\r\nDo you close the player to restart now?"},
    {"msg_Track_Name", u"曲目名：", u"Track Name："},
    {"msg_Directory", u"文件目录：", u"Directory："},
    {"msg_File_Size", u"文件大小：", u"File Size："},
    {"msg_Created", u"创建时间：", u"Created："},
    {"msg_Format", u"格式：", u"Format："},
    {"msg_Output_Channels", u"输出声道：", u"Output channel："},
    {"msg_Formats_List", u"支持格式列表：", u"List of supported formats："},
    {"msg_Extended_List", u"扩展输出功能列表：", u"Extend the output list of features："},
    {"msg_Driver_Version", u"驱动程序版本：", u"Driver Version："},
    {"msg_Product_Name", u"产品名称：", u"Name："},
    {"msg_Driver_Id", u"驱动程序 Id：", u"Drivers Id："},
    {"msg_Product_Id", u"产品 Id：", u"Products Id："},
};

// --- walking the texts of a form -----------------------------------------------------------------

// Calls `visit(control, property, text, put)` for every text that a control can show.
template <typename Visit> void visitTexts(forms::Control &control, Visit &&visit) {
    visit(
        "toolTip", control.toolTip(), [&](std::u16string_view text) { control.setToolTip(text); });
    const auto caption = [&](auto *kind) {
        if (kind != nullptr)
            visit("caption", kind->caption(),
                  [&](std::u16string_view text) { kind->setCaption(text); });
    };
    caption(dynamic_cast<forms::Label *>(&control));
    caption(dynamic_cast<forms::Frame *>(&control));
    caption(dynamic_cast<forms::CheckBox *>(&control));
    caption(dynamic_cast<forms::OptionButton *>(&control));
    caption(dynamic_cast<forms::Menu *>(&control));
    caption(dynamic_cast<zkButton *>(&control));
    if (auto *box = dynamic_cast<forms::TextBox *>(&control))
        visit("text", box->text(), [&](std::u16string_view text) { box->setText(text); });
}

inline void collectTexts(forms::Container &container, const std::string &form,
                         std::map<std::string, std::u16string> &texts) {
    for (forms::Control *control : container.controls()) {
        visitTexts(*control, [&](const char *property, const std::u16string &text, auto) {
            texts[form + "." + control->name() + "." + property] = text;
        });
        if (auto *inner = dynamic_cast<forms::Container *>(control))
            collectTexts(*inner, form, texts);
    }
}

inline void overwriteTextsIn(forms::Container &container, std::u16string_view with) {
    for (forms::Control *control : container.controls()) {
        visitTexts(*control, [&](const char *, const std::u16string &, auto put) { put(with); });
        if (auto *inner = dynamic_cast<forms::Container *>(control))
            overwriteTextsIn(*inner, with);
    }
}

// Every text of a form, its caption included.
inline void overwriteTexts(forms::Form &form, std::u16string_view with) {
    form.setCaption(with);
    overwriteTextsIn(form, with);
}

} // namespace velmora
