// Opening and closing a medium, its title, and the row of the list that it is.

#include "playback/player.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "platform/contracts/files.h"
#include "platform/contracts/media.h"
#include "platform/contracts/system.h"
#include "playback/Main.h"
#include "playlist/Search.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "playlist/playerInfo.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/setControl.h"
#include "ui/formSet.h"
#include "velmora.h"

#include <algorithm>
#include <array>

namespace velmora {

namespace {

constexpr std::int16_t done = -1;
constexpr std::int32_t realPlayerKind = 4;

struct DeviceRow {
    std::u16string_view extension;
    std::u16string_view device;
};

// The entry ".WM" holds a point, so a file of extension WM never meets it.
constexpr std::array<DeviceRow, 18> deviceTable{{
    {u"MID", u"Sequencer"},
    {u"RMI", u"Sequencer"},
    {u"IDI", u"Sequencer"},
    {u"WAV", u"Waveaudio"},
    {u"ASX", u"MPEGVideo2"},
    {u"IVF", u"MPEGVideo2"},
    {u"LSF", u"MPEGVideo2"},
    {u"LSX", u"MPEGVideo2"},
    {u"P2V", u"MPEGVideo2"},
    {u"WAX", u"MPEGVideo2"},
    {u"WVX", u"MPEGVideo2"},
    {u".WM", u"MPEGVideo2"},
    {u"WMX", u"MPEGVideo2"},
    {u"WMP", u"MPEGVideo2"},
    {u"RM", u"RealPlayer"},
    {u"RAM", u"RealPlayer"},
    {u"RA", u"RealPlayer"},
    {u"RMVB", u"RealPlayer"},
}};

std::u16string_view nameOf(std::u16string_view path, char16_t separator) {
    const std::size_t last = path.rfind(separator);
    return last == std::u16string_view::npos ? path : path.substr(last + 1);
}

} // namespace

player::player(Velmora &app) : app_(app) {}

bool player::send(std::u16string_view command) {
    return app_.platform().media.mciSendStringA(command, 0).error == 0;
}

std::u16string player::ask(std::u16string_view command, int returnSize) {
    return app_.platform().media.mciSendStringA(command, returnSize).text;
}

std::u16string player::get_DeviceType(std::u16string_view shortPath) const {
    const std::size_t point = shortPath.rfind(u'.');
    if (point != std::u16string_view::npos) {
        const std::u16string extension = upper(shortPath.substr(point + 1));
        for (const DeviceRow &row : deviceTable)
            if (row.extension == extension)
                return std::u16string(row.device);
    }
    return u"MPEGVideo";
}

std::int16_t player::open_File(std::u16string path) {
    std::int16_t result = 0;
    passOver([&] { openFile(path, result); });
    return result;
}

void player::openFile(const std::u16string &path, std::int16_t &result) {
    // The engine takes names as they are: it gets the one that the search found.
    const std::u16string onDisk = app_.saveOrOpenFile().fileOnDisk(path);
    if (onDisk.empty())
        return;
    app_.Main().closeAndStop();
    const std::u16string shortPath(untilNul(app_.platform().files.GetShortPathNameA(onDisk)));
    const std::u16string device = get_DeviceType(shortPath);
    if (device == u"RealPlayer") {
        media_Kind = realPlayerKind;
        return;
    }
    std::u16string command = u"open " + shortPath + u" type " + device + u" alias NOWMUSIC";
    nowPlay_File = path;
    app_.setControl().save_LastPlayFile(path);
    show_FileInfo(path);
    selectEntryOfFile(path);
    embedVideo(device, command);
    const bool ownWindow = app_.setControl().VideoInterface == 1;
    if (ownWindow)
        hookVideoWindow();
    const bool opened = send(command);
    if (ownWindow)
        app_.Main().videoScreen_Button.setVisible(put_VideoWindowWhole() == done);
    send(u"set NOWMUSIC time format milliseconds");
    if (opened) {
        result = done;
        nowPlay_Title = getFileStem(path);
    }
    readTitle();
    app_.formSet().keep_Topmost();
    app_.formSet().tray_Tip(app_.Main().title.caption() + crLf + nowPlay_Title);
}

// What the tag and the list add to the title. Runs after a failed open, too.
void player::readTitle() {
    velmora::another_PlayInfo_Form &tag = app_.another_PlayInfo_Form();
    velmora::playInfo_Form &info = app_.playInfo_Form();
    const bool found = app_.playerInfo().readId3v1(nowPlay_File);
    const bool filled =
        found &&
        !(tag.playInfo_AlbumText.text().empty() && tag.playInfo_ArtistText.text().empty() &&
          tag.playInfo_CommentText.text().empty() && tag.playInfo_GenreText.text().empty() &&
          tag.playInfo_TitleText.text().empty() && tag.playInfo_YearText.text().empty());
    // A tag of blanks leaves the button as it was.
    if (filled || !found)
        info.anotherInfo_Button.setEnabled(filled);
    if (filled) {
        const std::u16string &artist = tag.playInfo_ArtistText.text();
        const std::u16string &title = tag.playInfo_TitleText.text();
        if (!artist.empty() && !title.empty())
            nowPlay_Title = artist + u" -- " + title;
        else if (!title.empty())
            nowPlay_Title = u"No Artist -- " + title;
        else if (!artist.empty())
            nowPlay_Title = artist + u" -- No Title";
    } else if (tag.visible()) {
        // As its own button does it: the window behind waits for it, disabled.
        tag.close_Click();
    }
    const forms::ListBox &list = app_.playList_Form().playList_Item;
    if (list.listCount() > 0 && list.selCount() > 0) {
        nowPlay_Title = u"〖" + decimal(list.firstSelected() + 1) + u"/" +
                        decimal(list.listCount()) + u"〗 " + nowPlay_Title;
    }
}

bool player::isGone(const Medium &medium) {
    return closings_ != medium.closings && (nowPlay_File != medium.file || get_Length() == 0);
}

std::int16_t player::close_Sub(std::int16_t mode) {
    ++closings_;
    const std::int16_t result = send(u"close NOWMUSIC") ? done : 0;
    if (mode != 0)
        return result;
    velmora::Main &main = app_.Main();
    app_.lrcForm().Timer1.setRunning(false);
    app_.lrcForm().List1.clear();
    main.videoScreen_Button.setVisible(false);
    app_.unloadVideoScreen();
    main.flash_Request = done;
    main.Flash_Window();
    app_.formSet().tray_Tip(main.title.caption());
    return result;
}

std::u16string player::getFileStem(std::u16string_view path) const {
    const std::u16string_view base = nameOf(path, app_.platform().files.separatorOf(path));
    const std::size_t point = path.rfind(u'.');
    const std::size_t cut = point == std::u16string_view::npos ? 0 : path.size() - point;
    return cut > base.size() ? std::u16string() : std::u16string(base.substr(0, base.size() - cut));
}

void player::show_FileInfo(std::u16string_view path) {
    platform::FileSystem &files = app_.platform().files;
    const velmora::Language &texts = app_.Language();
    velmora::playInfo_Form &info = app_.playInfo_Form();
    const std::u16string found = files.Dir(path);
    if (found.empty() || found != nameOf(path, files.separatorOf(path))) {
        info.playName.setCaption(texts.msg_Track_Name);
        info.playPath.setCaption(texts.msg_Directory);
        info.playFile_Size.setCaption(std::u16string(texts.msg_File_Size) + u"0 bytes");
        info.playFile_DateCreated.setCaption(texts.msg_Created);
        return;
    }
    info.playName.setCaption(std::u16string(texts.msg_Track_Name) + getFileStem(path));
    info.playPath.setCaption(std::u16string(texts.msg_Directory) +
                             app_.Search().getFolderPart(path));
    info.playFile_Size.setCaption(
        std::u16string(texts.msg_File_Size) + formatGrouped(files.FileLen(path)) + u" bytes" +
        u"   " + std::u16string(texts.msg_Format) + app_.Search().getExtension(path));
    const std::time_t created = files.CreateFileSystemObject()->DateCreated(path);
    platform::Clock &clock = app_.platform().clock;
    info.playFile_DateCreated.setCaption(std::u16string(texts.msg_Created) +
                                         clock.shortDate(created) + u" " +
                                         clock.shortTime(created));
}

void player::countAddedRow() {
    const std::int16_t rows = app_.playList_Form().playList_Item.listCount();
    nowPlay_Index = toInt16(std::min<std::int32_t>(rows + 1, forms::ListBox::mostRows));
}

void player::selectEntryOfFile(std::u16string_view path) {
    if (path.empty())
        return;
    velmora::playList_Form &window = app_.playList_Form();
    forms::ListBox &names = window.playList_Item;
    const forms::ListBox &paths = window.List1;
    for (std::int32_t row = 0; row < names.listCount(); ++row) {
        names.setSelected(row, false);
        if (row < paths.listCount() && paths.list(row) == path) {
            names.setSelected(row, true);
            names.ensureVisible(row);
        }
    }
}

} // namespace velmora
