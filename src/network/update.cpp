#include "network/update.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "network/addresses.h"
#include "network/check_Network.h"
#include "network/controlINI.h"
#include "network/temporary_names.h"
#include "platform/contracts/files.h"
#include "platform/contracts/internet.h"
#include "platform/contracts/system.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/startLoad_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/setControl.h"
#include "ui/system_SpecialFolder.h"
#include "velmora.h"

namespace velmora {

namespace {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;
using platform::MsgBoxResult;

constexpr std::u16string_view informationPath = u"/source/softwareDate/zkPlayerUpdate.php";

} // namespace

update::update(Velmora &app) : app_(app) {}

void update::check_Update(bool userStarted) {
    platform::WindowSystem &windows = app_.platform().windows;
    const Language &texts = app_.Language();
    if (userStarted)
        app_.platform().internet.tryHostsAnew();
    if (!check_Network(app_.platform().internet)) {
        if (userStarted)
            windows.MsgBox(texts.msg_No_Network, MsgBoxButtons::Ok, MsgBoxIcon::Critical, title());
        return;
    }
    if (!fetch_UpdateInfo() || !read_UpdateInfo(update_TmpFile))
        return;
    if (!is_NewVersion(new_Version)) {
        if (userStarted)
            windows.MsgBox(texts.msg_Latest_Version, MsgBoxButtons::Ok, MsgBoxIcon::Information,
                           title());
        return;
    }
    takeNotes();
    // Another check may run under each of the questions, and find another version.
    const Offer offer{new_Version, new_DownloadUrl};
    if (!askForDownload(offer))
        return;
    say(u"正在下载最新版本：【" + offer.version + u"】，请稍后...");
    if (!fetchProgram(offer)) {
        say(texts.msg_Upgrade_Failed);
        windows.MsgBox(texts.msg_Upgrade_Failed, MsgBoxButtons::Ok, MsgBoxIcon::Critical, title());
        return;
    }
    say(u"成功下载最新版本：【" + offer.version + u"】，等待用户选择是否重启...");
    if (windows.MsgBox(texts.msg_Upgrade_Done, MsgBoxButtons::YesNo, MsgBoxIcon::None, title()) ==
        MsgBoxResult::Yes)
        startNewProgram(offer);
}

// As it is at the moment: it changes with the track, also while a question waits.
std::u16string update::title() const { return app_.Main().title.caption(); }

// The label is the splash window's: during a check from the menu nobody sees it.
void update::say(std::u16string_view text) {
    app_.startLoad_Form().showText.setCaption(text);
    app_.startLoad_Form().showText.refresh();
}

void update::takeNotes() {
    switch (app_.setControl().Language_Index) {
    case 0:
        update_Notes = update_Notes_Chinese;
        break;
    case 1:
        update_Notes = update_Notes_English;
        break;
    case 2:
        update_Notes = update_Notes_French;
        break;
    case 3:
        update_Notes = update_Notes_Japanese;
        break;
    default:
        break;
    }
    if (update_Notes.empty())
        return;
    update_NotesLines = split(update_Notes, u'|');
    update_Notes.clear();
    for (update_LineIndex = 0;
         static_cast<std::size_t>(update_LineIndex) < update_NotesLines.size(); ++update_LineIndex)
        update_Notes.append(update_NotesLines[static_cast<std::size_t>(update_LineIndex)])
            .append(crLf);
}

bool update::askForDownload(const Offer &offer) {
    say(u"发现最新版本：【" + offer.version + u"】，等待用户选择是否下载...");
    return app_.platform().windows.MsgBox(std::u16string(app_.Language().msg_Upgrade_Ask) +
                                              offer.version + u"】？\r\n\r\n" + update_Notes,
                                          MsgBoxButtons::YesNo, MsgBoxIcon::None, title(),
                                          offer.address) == MsgBoxResult::Yes;
}

void update::startNewProgram(const Offer &offer) {
    say(u"准备重启...");
    if (app_.saveOrOpenFile().shellStart(newProgramPath(offer))) {
        app_.startLoad_Form().unload();
        return;
    }
    const std::u16string failed(app_.Language().msg_Cannot_Start);
    say(failed);
    app_.platform().windows.MsgBox(failed, MsgBoxButtons::Ok, MsgBoxIcon::Exclamation, title());
}

// --- the two downloads ---

bool update::fetch_UpdateInfo() {
    const std::u16string address =
        app_.setControl().get_MakerHost() + std::u16string(informationPath);
    passOver([&] { app_.platform().internet.DeleteUrlCacheEntryA(address); });
    const std::u16string folder = app_.system_SpecialFolder().get_Special_Folder(folderTemporary);
    if (!app_.saveOrOpenFile().canWriteFolder(folder))
        return false;
    update_TmpFile = folder + std::u16string(updateFileName);
    app_.saveOrOpenFile().shellDel(update_TmpFile);
    app_.platform().windows.DoEvents();
    update_Result = app_.platform().internet.URLDownloadToFileA(address, update_TmpFile,
                                                                platform::informationFile);
    return update_Result == 0;
}

bool update::fetch_NewProgram() { return fetchProgram({new_Version, new_DownloadUrl}); }

bool update::fetchProgram(const Offer &offer) {
    passOver([&] { app_.platform().internet.DeleteUrlCacheEntryA(offer.address); });
    // This folder is asked about, though the file goes elsewhere: a program folder that cannot be
    // written shows by the download's failure.
    const std::u16string folder = app_.system_SpecialFolder().get_Special_Folder(folderTemporary);
    if (!app_.saveOrOpenFile().canWriteFolder(folder))
        return false;
    app_.platform().windows.DoEvents();
    // A version that is no file name, or leads out of the folder, has no file to go into.
    if (!saveOrOpenFile::isValidFileName(newProgramName(offer))) {
        constexpr std::int32_t invalidName = 123;
        update_Result = invalidName;
        return false;
    }
    if (!mayFetchProgram(app_.setControl().get_MakerHost(), offer.address)) {
        constexpr std::int32_t accessDenied = 5;
        update_Result = accessDenied;
        return false;
    }
    update_Result = app_.platform().internet.URLDownloadToFileA(
        offer.address, newProgramPath(offer), platform::programFile);
    return update_Result == 0;
}

std::u16string update::newProgramName(const Offer &offer) {
    return u"zkPlayer [" + offer.version + u"].exe";
}

std::u16string update::newProgramPath(const Offer &offer) const {
    const platform::FileSystem &files = app_.platform().files;
    std::u16string path = app_.platform().processes.applicationFolder();
    if (path.empty() || path.back() != files.separator())
        path += files.separator();
    return path + newProgramName(offer);
}

// --- what the maker says ---

std::u16string update::value(std::u16string_view file, std::u16string_view section,
                             std::u16string_view key) const {
    return std::u16string(
        trim(iniValue(app_.platform().profiles, file, section, key, std::nullopt)));
}

bool update::read_UpdateInfo(std::u16string_view file) {
    bool usable = false;
    passOver([&] {
        update_LineIndex = 0;
        new_Version.clear();
        new_DownloadUrl.clear();
        update_Notes.clear();
        new_Version = value(file, u"check", u"vesion");
        new_DownloadUrl = value(file, u"check", u"download");
        update_Notes_Chinese = value(file, u"Updates", u"Updates_Chinese");
        update_Notes_English = value(file, u"Updates", u"Updates_English");
        update_Notes_French = value(file, u"Updates", u"Updates_French");
        update_Notes_Japanese = value(file, u"Updates", u"Updates_Japanese");
        usable = !new_Version.empty() && !new_DownloadUrl.empty();
        app_.saveOrOpenFile().shellDel(update_TmpFile);
    });
    return usable;
}

bool update::is_NewVersion(std::u16string_view version) const {
    constexpr std::size_t numbers = 3;
    const std::vector<std::u16string> own = split(app_.Main().Vesion, u'.');
    const std::vector<std::u16string> other = split(version, u'.');
    for (std::size_t i = 0; i < numbers; ++i) {
        if (i >= own.size() || i >= other.size())
            return false;
        const double mine = leadingNumber(own[i]);
        const double theirs = leadingNumber(other[i]);
        if (mine != theirs)
            return mine < theirs;
    }
    return false;
}

} // namespace velmora
