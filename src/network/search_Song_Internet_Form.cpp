// The window: searching, and what the rows tell.

#include "network/search_Song_Internet_Form.h"

#include "base/numbers.h"
#include "base/text.h"
#include "network/check_Network.h"
#include "network/searchWindow.h"
#include "network/song_Internet_Search.h"
#include "network/toUrlString.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/internet.h"
#include "platform/contracts/platform.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/setControl.h"
#include "ui/formSet.h"
#include "ui/scrollBar.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::u16string_view introduction =
    u"搜索中，请填写完整，以保证搜索的准确性，本搜索由搜搜搜索引擎搜索提供！";
constexpr std::u16string_view nothingToSearch = u"无法搜索到匹配的曲目，请将搜索词输入完整！";
constexpr std::u16string_view notOnline = u"无法执行搜索，您的电脑未连接网络！";
constexpr std::u16string_view searching = u"正在搜索...";
constexpr std::u16string_view foundHead = u"搜索到可提供下载的曲目：";
constexpr std::u16string_view foundTail = u"条。\r\n";
constexpr std::u16string_view foundNothing =
    u"无法搜索到匹配的曲目，请更换搜索词重新搜索！\r\n可能服务器无法链接。";
constexpr std::u16string_view rowHint = u"双击下载该曲目，并播放";
constexpr std::u16string_view unknown = u"未知";

} // namespace

search_Song_Internet_Form::search_Song_Internet_Form(Velmora &app)
    : search_Song_Internet_Form_Design(app.platform().windows), wd(app.platform()), app_(app) {}

void search_Song_Internet_Form::load() {
    app_.formSet().set_ColourKey(*this);
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { close_Click(); });
    search_Song_List.setFont(app_.playList_Form().playList_Item.font());
    hintText_ = u"双击曲目地址下载！";
    setHandlers();
}

void search_Song_Internet_Form::setHandlers() {
    wire(*this);
    search_Song_List.on().DblClick = [this] {
        if (search_Song_List.listIndex() >= 0)
            fetchIntoCache(Then::Play);
    };
    search_Song_List.on().MouseMove = [this](const forms::MouseEvent &event) { hover(event.y); };
    wd.Progress = [this](double total, double received, double speed) {
        wd_Progress(total, received, speed);
    };
    wd.DownloadEnd = [this](bool success) { wd_DownloadEnd(success); };
    wd.Status = [this](std::int32_t code) { wd_Status(code); };
    wd.Error = [this](std::int32_t code) { wd_Error(code); };
    attachScrollBar({P1, P2, P3, P4, search_Song_List}, app_.formSet(),
                    [this] { return visibleRows; });
}

void search_Song_Internet_Form::startLoad() {
    search_Song_List.clear();
    save.setEnabled(false);
    anotherSave.setEnabled(false);
    const SearchWords words = wordsOfTrack(app_);
    songName_Text.setText(words.name);
    singer_Str.setText(words.singer);
    show_Label.setCaption(introduction);
    sayReady();
}

void search_Song_Internet_Form::setControlsEnabled(bool flag) {
    search_Song_List.setEnabled(flag);
    search_Button.setEnabled(flag);
    save.setEnabled(flag);
    anotherSave.setEnabled(flag);
}

// --- searching -----------------------------------------------------------------------------------

void search_Song_Internet_Form::search_Button_Click() {
    search_Song_List.clear();
    List1.clear();
    List2.clear();
    save.setEnabled(false);
    anotherSave.setEnabled(false);
    sayReady();
    const std::u16string name = songName_Text.text();
    const std::u16string singer = singer_Str.text();
    if (name.empty() && singer.empty()) {
        show_Label.setCaption(nothingToSearch);
        return;
    }
    app_.platform().internet.tryHostsAnew();
    if (!check_Network(app_.platform().internet)) {
        show_Label.setCaption(notOnline);
        return;
    }
    show_Label.setCaption(searching);
    search(name, singer);
}

void search_Song_Internet_Form::search(const std::u16string &name, const std::u16string &singer) {
    const bool isBoth = !name.empty() && !singer.empty();
    app_.song_Internet_Search().searchSong(singer + (isBoth ? u" " : u"") + name);
    const std::int16_t rows = search_Song_List.listCount();
    save.setEnabled(rows > 0);
    anotherSave.setEnabled(rows > 0);
    show_Label.setCaption(
        rows > 0
            ? std::u16string(foundHead).append(decimal(rows)).append(foundTail).append(hintText_)
            : std::u16string(foundNothing));
}

// With the word encoded, which the search itself does not do.
void search_Song_Internet_Form::goto_Internet_Click() {
    if (app_.setControl().get_SongSearchHost().empty())
        return;
    const std::u16string word =
        toUrlString(app_.platform().ansi, singer_Str.text() + u" " + songName_Text.text());
    app_.saveOrOpenFile().shellOpen(app_.song_Internet_Search().searchAddress(word));
}

// --- what a row tells ----------------------------------------------------------------------------

void search_Song_Internet_Form::hover(Twips y) {
    const std::int32_t row = rowUnder(search_Song_List, y);
    if (row < 0) {
        search_Song_List.setToolTip(u"");
        return;
    }
    readRecord(row, 6);
    showHovered();
    search_Song_List.setToolTip(rowHint);
}

// An empty singer, size or format makes the album unknown, not itself; the rate is never empty, as
// it has got its sign.
void search_Song_Internet_Form::showHovered() {
    songRate_ += u'%';
    if (songName_.empty())
        songName_ = unknown;
    for (const std::u16string *field : {&songAlbum_, &songSinger_, &songSize_, &songFormat_})
        if (field->empty())
            songAlbum_ = unknown;
    show_Label.setCaption(u"曲名：" + songName_ + u"\r\n作者：" + songSinger_ + u"\r\n专辑：" +
                          songAlbum_ + u"\r\n大小：" + formatGrouped(songSize_) +
                          u"（以实际为主）  格式：" + songFormat_ + u"   下载速率：" + songRate_);
}

void search_Song_Internet_Form::close_Click() {
    hide();
    wd.bStop();
}

} // namespace velmora
