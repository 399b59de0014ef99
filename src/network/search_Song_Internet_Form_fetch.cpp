// Fetching a song.

#include "base/run_time_error.h"
#include "base/text.h"
#include "network/searchWindow.h"
#include "network/search_Song_Internet_Form.h"
#include "platform/contracts/files.h"
#include "platform/contracts/internet.h"
#include "platform/contracts/platform.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playback/startLoad_Form.h"
#include "playlist/Search.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/setControl.h"
#include "ui/myCommondialog.h"
#include "velmora.h"

#include <cstdio>
#include <optional>

namespace velmora {

namespace {

using namespace std::string_view_literals;

constexpr std::u16string_view noneChosen = u"未选择指定下载链接！";
constexpr std::u16string_view replaceQuestion =
    u"该曲目文件已存在，是否覆盖？如果指定文件是当前播放的文件，将停止当前播放的曲目！";
constexpr std::u16string_view fetching = u"正在下载...";
constexpr std::u16string_view folderRefuses = u"歌曲缓存目录无法创建文件！";
constexpr std::u16string_view nameIsWrong = u"保存的文件名不正确！";
constexpr std::u16string_view fetched = u"下载成功！";
constexpr std::u16string_view notFetched = u"无法下载改曲目，请选择其他链接！";
constexpr std::u16string_view saveTitle = u"选择要保存曲目的地址 - ";
constexpr std::u16string_view saveFilter = u"所有文件（*.*）\0*.*\0"sv;

// CR and LF by the units that stand for them inside a file name: as they are they would end a line
// of the play list within a path.
std::u16string asFileName(std::u16string_view text) {
    return replaceAll(replaceAll(text, u"\r", std::u16string(1, u'\xDC0D')), u"\n",
                      std::u16string(1, u'\xDC0A'));
}

std::vector<std::u16string> splitAt(std::u16string_view text, std::u16string_view separator) {
    std::vector<std::u16string> pieces;
    for (;;) {
        const std::size_t end = text.find(separator);
        pieces.emplace_back(text.substr(0, end));
        if (end == std::u16string_view::npos)
            return pieces;
        text.remove_prefix(end + separator.size());
    }
}

} // namespace

// --- records -------------------------------------------------------------------------------------

// The one error of the program that nothing catches: it ends in order, and says why.
void search_Song_Internet_Form::readRecord(std::int32_t row, std::size_t lastField) {
    songRecord_ = splitAt(List2.list(row), u"@@");
    if (songRecord_.size() <= lastField) {
        std::fputs("velmora: a song's record has too few fields\n", stderr);
        app_.startLoad_Form().end(1);
    }
    std::u16string *const fields[] = {&songName_, &songAlbum_,  &songSinger_,
                                      &songSize_, &songFormat_, &songRate_};
    for (std::size_t field = 1; field <= lastField; ++field)
        *fields[field - 1] = songRecord_[field];
}

void search_Song_Internet_Form::readFileName(std::int32_t row) {
    linkParts_ = split(List1.list(row), u'/');
    if (songFormat_.empty() && songName_.empty())
        songFileName_ = linkParts_.back();
    else
        songFileName_ =
            (songSinger_.empty() ? u"" : songSinger_ + u" ") + songName_ + u"." + songFormat_;
    songFileName_ = asFileName(songFileName_);
}

// --- the three ways of fetching ------------------------------------------------------------------

bool search_Song_Internet_Form::chosenOrComplain() {
    if (search_Song_List.listIndex() >= 0)
        return true;
    app_.platform().windows.MsgBox(noneChosen, platform::MsgBoxButtons::Ok,
                                   platform::MsgBoxIcon::Critical, app_.Language().msg_Error);
    return false;
}

void search_Song_Internet_Form::save_Click() {
    if (chosenOrComplain())
        fetchIntoCache(Then::Nothing);
}

// What is fetched is the row that is chosen now, whatever questions stand before the transfer.
void search_Song_Internet_Form::readRow() {
    const std::int16_t row = search_Song_List.listIndex();
    app_.platform().internet.tryHostsAnew();
    say(fetching);
    title.refresh();
    readRecord(row, 5);
    readFileName(row);
    songAddress_ = lower(List1.list(row));
}

void search_Song_Internet_Form::fetchIntoCache(Then then) {
    readRow();
    const std::u16string folder = app_.setControl().Path_Cache;
    // A NUL would be lost on the way to the disk, and another name written.
    const bool isValid =
        saveOrOpenFile::isValidFileName(songFileName_) && !contains(songFileName_, u"\0"sv);
    fetch(folder + app_.platform().files.separator() + songFileName_,
          app_.saveOrOpenFile().canWriteFolder(folder), isValid, then);
}

void search_Song_Internet_Form::anotherSave_Click() {
    if (!chosenOrComplain())
        return;
    readRow();
    const std::u16string target = app_.myCommondialog().file_Dialog(
        hWnd(), dialogSave, std::u16string(saveTitle).append(app_.Main().title.caption()),
        songFileName_, saveFilter, u"", u"");
    if (target.empty()) {
        sayReady();
        return;
    }
    fetch(target, canWriteBeside(app_, target), true, Then::Nothing);
}

void search_Song_Internet_Form::fetch(const std::u16string &target, bool canWrite, bool nameIsValid,
                                      Then then) {
    if (!canWrite)
        say(folderRefuses);
    else if (!nameIsValid)
        say(nameIsWrong);
    else if (!mayReplace(target))
        sayReady();
    else
        transfer(target, then);
}

bool search_Song_Internet_Form::mayReplace(const std::u16string &target) {
    if (!app_.saveOrOpenFile().fileExists(target))
        return true;
    if (app_.platform().windows.MsgBox(replaceQuestion, platform::MsgBoxButtons::YesNo,
                                       platform::MsgBoxIcon::None,
                                       app_.Main().title.caption()) != platform::MsgBoxResult::Yes)
        return false;
    if (target == app_.player().nowPlay_File)
        app_.player().close_Sub(0);
    return true;
}

void search_Song_Internet_Form::transfer(const std::u16string &target, Then then) {
    setControlsEnabled(false);
    DownFileBox.setVisible(true);
    wd.URL = songAddress_;
    wd.FileName = target;
    showTransfer();
    isReceiving_ = true;
    const bool isFetched = wd.DownloadToFile(u"music");
    isReceiving_ = false;
    std::optional<RunTimeError> failure;
    if (isFetched && then == Then::Play) {
        try {
            play_Downloaded(target);
        } catch (const RunTimeError &error) {
            failure = error; // a list that is full, say: the window must not stay as it is
        }
    }
    if (!failure)
        say(isFetched ? fetched : notFetched);
    setControlsEnabled(true);
    DownFileBox.setVisible(false);
    if (failure)
        throw *failure;
}

void search_Song_Internet_Form::showTransfer() {
    downInfo_0.setCaption(u"文件名：" + songFileName_);
    downInfo_1.setCaption(u"存放到：" + (wd.FileName.empty() ? u"..." : wd.FileName));
    downInfo_2.setCaption(u"来  源：" + wd.URL);
}

// The part is removed while the transfer is still unwinding. Behind the transfer, while what came
// is faded in, it is no part any more.
void search_Song_Internet_Form::downFileStop_Click() {
    wd.bStop();
    if (isReceiving_)
        app_.saveOrOpenFile().shellDel(wd.FileName);
}

// --- behind a double click -----------------------------------------------------------------------

void search_Song_Internet_Form::play_Downloaded(const std::u16string &path) {
    if (path.empty())
        return;
    velmora::player &player = app_.player();
    const std::u16string stem = player.getFileStem(path);
    if (!stem.empty()) {
        if (app_.Search().isInPlayList(path)) {
            app_.Main().selectNamesakes(stem);
        } else {
            forms::ListBox &names = app_.playList_Form().playList_Item;
            names.addItem(stem);
            app_.playList_Form().List1.addItem(path);
            player.countAddedRow();
        }
    }
    if (player.get_PlayStatus() == statusPlaying)
        player.close_Sub(0);
    if (!stem.empty()) {
        player.open_File(path);
        player.play_Sub();
    } else {
        app_.platform().windows.MsgBox(app_.Language().msg_Bad_Path, platform::MsgBoxButtons::Ok,
                                       platform::MsgBoxIcon::Critical, app_.Language().msg_Error);
    }
    if (player.get_Length() == 0)
        app_.Main().stop_Sub();
    app_.saveOrOpenFile().savePlayList();
}

} // namespace velmora
