// Adding tracks: one file by the dialog, a folder with or without its subfolders, a drop.
//
// Each entry lets pending events through and shows itself; that is what the user sees of the work.
// The speed comes from pumps and repaints that cost little, not from leaving them out.

#include "base/numbers.h"
#include "base/text.h"
#include "platform/contracts/files.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/Search.h"
#include "playlist/list_work.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "ui/formSet.h"
#include "ui/myCommondialog.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::size_t shortestFolder = 3; // a drive's root
constexpr std::u16string_view scanTitle = u"Add Files Loading...";
constexpr std::u16string_view subfoldersQuestion =
    u"包含子文件夹吗？如果子文件夹过多将需要过多的时间哦！\r\n\r\n警告：不支持停止哦！！";

} // namespace

void playList_Form::showError(const std::optional<RunTimeError> &error,
                              std::u16string_view heading) {
    if (error) {
        app_.platform().windows.MsgBox(error->description(), platform::MsgBoxButtons::Ok,
                                       platform::MsgBoxIcon::Critical, heading);
    }
}

void playList_Form::showProgress(std::u16string_view text, std::u16string_view heading) {
    waitAdd_Show.setCaption(text);
    waitAdd_Title.setCaption(heading);
    waitAdd.refresh();
}

void playList_Form::hideProgress() {
    waitAdd_Show.setCaption(u"");
    waitAdd.setVisible(false);
}

// A dialog may have pushed the window under Main.
void playList_Form::comeForward() {
    app_.formSet().set_Topmost(hWnd(), true);
    app_.formSet().set_Topmost(hWnd(), false);
}

// A folder dialog's answer is a folder unless it is too short to be one; cancel is the empty text,
// and the root is a folder however short.
bool playList_Form::isFolderChoice(std::u16string_view folder) const {
    const char16_t separator = app_.platform().files.separator();
    return folder.size() >= shortestFolder || folder == std::u16string_view(&separator, 1);
}

void playList_Form::deselectAll() {
    for (std::int32_t row = 0; row < playList_Item.listCount(); ++row) {
        app_.platform().windows.DoEvents();
        playList_Item.setSelected(row, false);
    }
}

// Selects the rows that look like a file that is in the list already.
void playList_Form::selectNamesakes(const std::u16string &stem, bool containing, bool pumping) {
    for (std::int32_t row = 0; row < playList_Item.listCount(); ++row) {
        if (pumping) {
            app_.platform().windows.DoEvents();
            playList_Item.setSelected(row, false);
        }
        const std::u16string &name = playList_Item.list(row);
        if (containing ? contains(name, stem) : name == stem) {
            playList_Item.setSelected(row, true);
            playList_Item.ensureVisible(row);
        }
    }
}

void playList_Form::addFile_Click() {
    const auto error = trapped([this] {
        controlEnabled(false);
        const std::u16string path = app_.myCommondialog().file_Dialog(
            hWnd(), dialogOpen, app_.Language().msg_AddMedia_Title, u"",
            app_.Language().msg_Media_Filter, u"", u"");
        if (!path.empty())
            takeFile(path);
    });
    showError(error, app_.Main().title.caption());
    app_.saveOrOpenFile().savePlayList();
    controlEnabled(true);
    comeForward();
}

void playList_Form::takeFile(const std::u16string &path) {
    const std::u16string stem = app_.player().getFileStem(path);
    if (app_.Search().isInPlayList(path)) {
        if (!stem.empty())
            selectNamesakes(stem, false, true);
    } else if (!stem.empty()) {
        playList_Item.addItem(stem);
        List1.addItem(path);
    } else {
        app_.platform().windows.MsgBox(app_.Language().msg_Bad_Path, platform::MsgBoxButtons::Ok,
                                       platform::MsgBoxIcon::Critical, app_.Language().msg_Error);
    }
}

// A long operation keeps the buttons of the main window still as well, and so its menu.
void playList_Form::addDir_Click() {
    const ListWork still(app_);
    std::optional<RunTimeError> pending = trapped([this] { controlEnabled(false); });
    std::u16string folder;
    const auto early = trapped([&] {
        folder = app_.myCommondialog().browse_Folder(hWnd(), app_.Language().msg_Select_Folder);
        if (!isFolderChoice(folder)) {
            folder.clear();
            return;
        }
        deselectAll();
    });
    if (early) {
        pending = early;
    } else if (!folder.empty()) {
        std::vector<std::u16string> folders = {folder};
        const bool deep =
            app_.platform().windows.MsgBox(
                subfoldersQuestion, platform::MsgBoxButtons::YesNo, platform::MsgBoxIcon::None,
                app_.Main().title.caption()) == platform::MsgBoxResult::Yes;
        waitAdd.setVisible(true);
        ++walk_;
        if (deep)
            folders = walkFolders(folder, pending);
        // Only a walk in depth passes over failures; without one, the first ends the work.
        for (const std::u16string &one : folders)
            addFilesOf(one, deep, pending);
    }
    hideProgress();
    showError(pending, app_.Main().title.caption());
    app_.saveOrOpenFile().savePlayList();
    controlEnabled(true);
}

// For each folder, too: a thousand folders without any entry to show must not leave the window
// dead.
void playList_Form::answerEvents(std::optional<RunTimeError> &pending) {
    const auto error = trapped([this] { app_.platform().windows.DoEvents(); });
    if (error)
        pending = error;
}

// Breadth first: the queue grows at its end while it is read from its beginning.
std::vector<std::u16string> playList_Form::walkFolders(const std::u16string &first,
                                                       std::optional<RunTimeError> &pending) {
    const std::u16string separator(1, app_.platform().files.separatorOf(first));
    std::vector<std::u16string> folders = {first};
    for (std::size_t next = 0; next < folders.size(); ++next) {
        const std::u16string folder = folders[next];
        answerEvents(pending);
        for (const std::u16string &name :
             app_.platform().files.list(folder, platform::SearchFor::Folders, walk_)) {
            const auto error = trapped([&] {
                app_.platform().windows.DoEvents();
                const std::u16string found = folder + name + separator;
                showProgress(u"Folders：" + decimal(static_cast<std::int64_t>(folders.size())) +
                                 crLf + found,
                             scanTitle);
                folders.push_back(found);
            });
            if (error)
                pending = error;
        }
    }
    return folders;
}

void playList_Form::addFilesOf(const std::u16string &folder, bool passing,
                               std::optional<RunTimeError> &pending) {
    answerEvents(pending);
    if (pending && !passing)
        return;
    std::u16string path;
    for (const std::u16string &name :
         app_.platform().files.list(folder, platform::SearchFor::Files, walk_)) {
        const auto error = trapped([&] {
            app_.platform().windows.DoEvents();
            path = folder;
            path += trim(name);
            showProgress(path, app_.Language().msg_Loading_Tracks);
            if (!app_.Search().isSupportedFormat(path))
                return;
            if (!app_.Search().isInPlayList(path)) {
                append(path);
                return;
            }
            const std::u16string stem = app_.player().getFileStem(path);
            if (!stem.empty())
                selectNamesakes(stem, false, false);
        });
        if (error) {
            pending = error;
            if (!passing)
                return;
        }
    }
}

// The path first, as folders add; a file with an empty stem is added like any other.
void playList_Form::append(const std::u16string &path) {
    List1.addItem(path);
    playList_Item.addItem(app_.player().getFileStem(path));
}

void playList_Form::filesDropped(const std::vector<std::u16string> &paths, Twips y) {
    takeDropped(paths, y);
}

void playList_Form::filesOpened(const std::vector<std::u16string> &paths) {
    takeDropped(paths, std::nullopt);
}

void playList_Form::takeDropped(const std::vector<std::u16string> &paths, std::optional<Twips> y) {
    const ListWork still(app_);
    const auto error = trapped([&] {
        controlEnabled(false);
        waitAdd.setVisible(true);
        for (std::int32_t row = 0; row < playList_Item.listCount(); ++row)
            playList_Item.setSelected(row, false);
        for (const std::u16string &path : paths) {
            app_.platform().windows.DoEvents();
            dropOne(path, y);
        }
    });
    hideProgress();
    showError(error, app_.Main().title.caption());
    app_.saveOrOpenFile().savePlayList();
    controlEnabled(true);
}

// Each file asks anew for the row under the drop, so several go in one before the other.
void playList_Form::dropOne(const std::u16string &path, std::optional<Twips> y) {
    platform::FileSystem &files = app_.platform().files;
    // The exact file comes ahead of a folder whose name differs from it in case alone.
    const std::u16string file = app_.saveOrOpenFile().fileOnDisk(path);
    if (file != path && !files.Dir(path, platform::SearchFor::Folders).empty()) {
        addDroppedFolder(path + std::u16string(1, files.separatorOf(path)));
        return;
    }
    if (file.empty())
        return;
    showProgress(path, app_.Language().msg_Loading_Tracks);
    if (!app_.Search().isSupportedFormat(path))
        return;
    const std::u16string stem = app_.player().getFileStem(path);
    if (!app_.Search().isInPlayList(path)) {
        if (!y) {
            append(path);
            return;
        }
        const std::int32_t row = rowAtPoint(0, *y);
        playList_Item.addItem(stem, row);
        List1.addItem(path, row);
    } else if (!stem.empty()) {
        selectNamesakes(stem, true, false);
    }
}

// Flat and appended, and ends with the list enabled: a dropped folder is never walked in depth.
void playList_Form::addDroppedFolder(const std::u16string &folder) {
    passOver([this] { controlEnabled(false); });
    waitAdd.setVisible(true);
    if (folder.size() > 2) {
        for (const std::u16string &name :
             app_.platform().files.list(folder, platform::SearchFor::Files)) {
            passOver([&] {
                app_.platform().windows.DoEvents();
                const std::u16string path = folder + std::u16string(trim(name));
                showProgress(path, app_.Language().msg_Loading_Tracks);
                if (!app_.Search().isSupportedFormat(path))
                    return;
                const std::u16string stem = app_.player().getFileStem(path);
                if (!app_.Search().isInPlayList(path))
                    append(path);
                else if (!stem.empty())
                    selectNamesakes(stem, true, false);
            });
        }
    }
    hideProgress();
    passOver([this] { controlEnabled(true); });
}

} // namespace velmora
