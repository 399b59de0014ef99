#include "network/search_Lrc_Internet_Form.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "lyrics/lyric_file.h"
#include "network/check_Network.h"
#include "network/lrc_Internet_Search.h"
#include "network/searchWindow.h"
#include "network/toUrlString.h"
#include "network/webPage.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "platform/contracts/internet.h"
#include "platform/contracts/platform.h"
#include "platform/contracts/system.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/setControl.h"
#include "ui/formSet.h"
#include "ui/myCommondialog.h"
#include "ui/scrollBar.h"
#include "velmora.h"

namespace velmora {

namespace {

using namespace std::string_view_literals;

constexpr std::u16string_view introduction =
    u"搜索中，请填写完整，以保证搜索的准确性，本搜索由百度搜索引擎搜索提供，歌词网站提供下载支持，"
    u"播放的曲目如果搜索不到或不准确请在在此设置搜索！\r\n我们不保证您搜索到的歌词准确性！";
constexpr std::u16string_view nothingToSearch = u"无法搜索到匹配的歌词，请将搜索词输入完整！";
constexpr std::u16string_view notOnline = u"无法执行搜索，您的电脑未连接网络！";
constexpr std::u16string_view searching = u"正在搜索...";
constexpr std::u16string_view foundHead = u"搜索到可提供下载的歌词：";
constexpr std::u16string_view foundTail = u"条。\r\n双击歌词地址下载，并与播放曲目匹配！";
constexpr std::u16string_view foundNothing =
    u"无法搜索到匹配的歌词，请更换搜索词重新搜索！\r\n可能服务器无法链接。";
constexpr std::u16string_view noneChosen = u"未选择指定下载链接！";
constexpr std::u16string_view fetching = u"正在下载...";
constexpr std::u16string_view lyricFolderRefuses = u"歌词保存目录无法创建文件！";
constexpr std::u16string_view chosenFolderRefuses = u"您所选择的地址目录无法创建文件！";
constexpr std::u16string_view fetched = u"下载成功！";
constexpr std::u16string_view notFetched = u"无法下载改歌词，请选择其他链接！";
constexpr std::u16string_view rowHint = u"  双击下载并匹配当前播放歌词";
constexpr std::u16string_view saveTitle = u"选择要保存歌词同步文件的地址 - ";
constexpr std::u16string_view saveFilter = u"歌词同步文件（*.LRC）\0*.LRC\0"sv;

constexpr std::int32_t showNormal = 1;

} // namespace

search_Lrc_Internet_Form::search_Lrc_Internet_Form(Velmora &app)
    : search_Lrc_Internet_Form_Design(app.platform().windows), app_(app) {}

void search_Lrc_Internet_Form::load() {
    app_.formSet().set_ColourKey(*this);
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { close_Click(); });
    search_Lrc_List.setFont(app_.playList_Form().playList_Item.font());
    setHandlers();
}

void search_Lrc_Internet_Form::setHandlers() {
    wire(*this);
    search_Lrc_List.on().DblClick = [this] {
        // An empty list takes double clicks too, for the windows that add to it so.
        if (search_Lrc_List.listIndex() >= 0)
            fetchAndMatch();
    };
    search_Lrc_List.on().MouseMove = [this](const forms::MouseEvent &event) { showTip(event.y); };
    attachScrollBar({P1, P2, P3, P4, search_Lrc_List}, app_.formSet(),
                    [this] { return visibleRows; });
}

void search_Lrc_Internet_Form::startLoad() {
    search_Lrc_List.clear();
    enableSaving(false);
    const SearchWords words = wordsOfTrack(app_);
    songName_Text.setText(words.name);
    singer_Str.setText(words.singer);
    show_Label.setCaption(introduction);
}

void search_Lrc_Internet_Form::enableSaving(bool flag) {
    save.setEnabled(flag);
    anotherSave.setEnabled(flag);
}

// --- searching -----------------------------------------------------------------------------------

void search_Lrc_Internet_Form::search_Button_Click() {
    search_Lrc_List.clear();
    const std::u16string name = songName_Text.text();
    const std::u16string singer = singer_Str.text();
    if (name.empty() && singer.empty()) {
        show_Label.setCaption(nothingToSearch);
        return;
    }
    app_.platform().internet.tryHostsAnew();
    if (!check_Network(app_.platform().internet)) {
        enableSaving(false);
        show_Label.setCaption(notOnline);
        return;
    }
    show_Label.setCaption(searching);
    search(name, singer);
}

void search_Lrc_Internet_Form::search(const std::u16string &name, const std::u16string &singer) {
    const bool isBoth = !name.empty() && !singer.empty();
    app_.lrc_Internet_Search().searchLrc(name + (isBoth ? u" " : u"") + singer);
    const std::int16_t rows = search_Lrc_List.listCount();
    enableSaving(rows > 0);
    show_Label.setCaption(rows > 0
                              ? std::u16string(foundHead).append(decimal(rows)).append(foundTail)
                              : std::u16string(foundNothing));
}

// With the word encoded, which the search itself does not do.
void search_Lrc_Internet_Form::goto_Internet_Click() {
    if (app_.setControl().get_LrcSearchHost().empty())
        return;
    const std::u16string word =
        toUrlString(app_.platform().ansi, songName_Text.text() + u" " + singer_Str.text());
    app_.platform().shell.ShellExecuteA(hWnd(), u"open",
                                        app_.lrc_Internet_Search().searchAddress(word), showNormal);
}

// --- fetching ------------------------------------------------------------------------------------

std::u16string search_Lrc_Internet_Form::lyricTarget() {
    // Of several spellings of one name the one on the disk, so that one lyric is never two files.
    return pathOnDisk(app_.platform(),
                      app_.setControl().Path_Lrc + app_.platform().files.separator() +
                          app_.player().getFileStem(app_.player().nowPlay_File) + u".LRC");
}

std::u16string search_Lrc_Internet_Form::chosenAddress() const {
    return lower(search_Lrc_List.list(search_Lrc_List.listIndex()));
}

bool search_Lrc_Internet_Form::fetch(std::u16string_view address, const std::u16string &target,
                                     bool canWrite, std::u16string_view notWritable) {
    if (!canWrite) {
        show_Label.setCaption(notWritable);
        return false;
    }
    app_.platform().internet.tryHostsAnew();
    const bool isFetched = downloadToLocal(app_.platform(), address, target, [&] {
        if (isOnlyPlaceOf(app_.platform(), target, WrittenOverBy::Another))
            app_.saveOrOpenFile().keepOld(target);
        return true;
    });
    show_Label.setCaption(isFetched ? fetched : notFetched);
    return isFetched;
}

void search_Lrc_Internet_Form::fetchAndMatch() {
    const std::u16string track = app_.player().nowPlay_File;
    const std::u16string target = lyricTarget();
    show_Label.setCaption(fetching);
    if (!fetch(chosenAddress(), target,
               app_.saveOrOpenFile().canWriteFolder(app_.setControl().Path_Lrc),
               lyricFolderRefuses))
        return;
    // The lyric belongs to the track that it was fetched for; another may have begun meanwhile.
    if (app_.player().get_PlayStatus() == statusEnded || app_.player().nowPlay_File != track)
        return;
    app_.lrcForm().startLoad(target);
    app_.playInfo_Form().lrcInfo_Frame.setEnabled(true);
}

bool search_Lrc_Internet_Form::chosenOrComplain() {
    if (search_Lrc_List.listIndex() >= 0)
        return true;
    app_.platform().windows.MsgBox(noneChosen, platform::MsgBoxButtons::Ok,
                                   platform::MsgBoxIcon::Critical, app_.Language().msg_Error);
    return false;
}

void search_Lrc_Internet_Form::save_Click() {
    if (!chosenOrComplain())
        return;
    show_Label.setCaption(fetching);
    fetch(chosenAddress(), lyricTarget(),
          app_.saveOrOpenFile().canWriteFolder(app_.setControl().Path_Lrc), lyricFolderRefuses);
}

void search_Lrc_Internet_Form::anotherSave_Click() {
    if (!chosenOrComplain())
        return;
    const std::u16string address = chosenAddress();
    const std::u16string target = app_.myCommondialog().file_Dialog(
        hWnd(), dialogSave, std::u16string(saveTitle).append(app_.Main().title.caption()),
        app_.player().getFileStem(app_.player().nowPlay_File), saveFilter, u"", u"lrc");
    if (target.empty())
        return;
    show_Label.setCaption(fetching);
    fetch(address, target, canWriteBeside(app_, target), chosenFolderRefuses);
}

// --- the window ----------------------------------------------------------------------------------

void search_Lrc_Internet_Form::showTip(Twips y) {
    const std::int32_t row = rowUnder(search_Lrc_List, y);
    search_Lrc_List.setToolTip(row < 0 ? std::u16string()
                                       : std::u16string(search_Lrc_List.list(row)).append(rowHint));
}

void search_Lrc_Internet_Form::close_Click() { hide(); }

} // namespace velmora
