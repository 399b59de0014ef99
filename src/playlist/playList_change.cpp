// Renaming, searching, copying to a folder, opening a track's folder.

#include "base/text.h"
#include "platform/contracts/files.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/Search.h"
#include "playlist/copyFile.h"
#include "playlist/listControl_Form.h"
#include "playlist/list_work.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "ui/formSet.h"
#include "ui/myCommondialog.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::int16_t modeSearch = 1;
constexpr std::int16_t modeRename = 2;
constexpr std::ptrdiff_t restLength = 100;
constexpr std::ptrdiff_t tailLength = 4;
constexpr std::int32_t playing = 3;

std::u16string trimmed(const std::u16string &text) { return std::u16string(trim(text)); }

} // namespace

// The box is not modal in the window system's sense: the windows behind it are disabled by hand.
void playList_Form::askInBox(std::int16_t mode, std::u16string_view heading,
                             std::u16string_view prompt, std::u16string_view text) {
    velmora::listControl_Form &box = app_.listControl_Form();
    box.title.setCaption(heading);
    box.showText.setCaption(prompt);
    box.jieGuo.setText(text);
    box.listMode = mode;
    box.show();
    box.setFocus(&box.jieGuo); // it may have been left at a button
    setEnabled(false);
    app_.Main().setEnabled(false);
}

void playList_Form::Alter_Click() { askForName(playList_Item.listIndex()); }

void playList_Form::Alter_Click(const ListChoice &chosen) {
    askForName(List1.find(chosen.current));
}

void playList_Form::askForName(std::int16_t row) {
    if (row < 0)
        return;
    const std::u16string name = playList_Item.list(row);
    const std::u16string path = List1.list(row);
    const std::size_t point = name.find(u'.');
    const std::size_t prefix = point == std::u16string::npos ? 0 : point + 1;
    alterPath_ = path;
    alterRest_ = leftPart(std::u16string_view(name).substr(prefix), restLength);
    alterPrefix_ = name.substr(0, prefix);
    alterFolder_ = app_.Search().getFolderPart(path);
    // Four units whatever the extension: a longer one loses its point.
    alterTail_ = rightPart(path, tailLength);
    app_.listControl_Form().listControl_Result.clear();
    setEnabled(false);
    askInBox(modeRename, app_.Language().msg_Rename_Title, app_.Language().msg_Rename_Prompt,
             trim(alterRest_));
}

// Acts on the row for which the box was opened; a track that has begun since has made another one
// current.
void playList_Form::alter_Jieguo() {
    alterNew_ = app_.listControl_Form().listControl_Result;
    if (alterNew_.empty() || !app_.Search().isInPlayList(alterPath_))
        return;
    const ListWork still(app_);
    const auto error = trapped([this] { renameChosen(); });
    app_.saveOrOpenFile().savePlayList();
    showError(error, app_.Language().msg_Error);
}

void playList_Form::renameChosen() {
    const bool wasPlaying = app_.player().get_PlayStatus() == playing;
    app_.player().close_Sub(0);
    const std::u16string renamed = trimmed(alterFolder_) + trimmed(alterNew_) + trimmed(alterTail_);
    // The question how the player stands may have started the next track, and let events in.
    if (!app_.Search().isInPlayList(alterPath_))
        return;
    app_.platform().files.Name(alterPath_, renamed);
    // A renaming replaces no file, so the file of a row that has this path already was gone.
    const std::int16_t stale = renamed == alterPath_ ? std::int16_t{-1} : List1.find(renamed);
    if (stale >= 0)
        removeRow(stale);
    const std::int16_t row = List1.find(alterPath_);
    List1.setList(row, renamed);
    // The prefix is kept for the display only; the file does without it.
    playList_Item.setList(row, trimmed(alterPrefix_) + trimmed(alterNew_));
    if (wasPlaying) {
        app_.player().open_File(renamed);
        app_.player().play_Sub();
    }
}

void playList_Form::Search_Click() {
    app_.listControl_Form().listControl_Result.clear();
    askInBox(modeSearch, app_.Language().msg_Find_Title, app_.Language().msg_Find_Prompt, u"");
}

// With case, anywhere in the name; every hit is selected and the list stays where it is.
void playList_Form::search_Jieguo() {
    findText_ = app_.listControl_Form().listControl_Result;
    if (findText_.empty())
        return;
    const TextPart wanted(findText_);
    for (std::int32_t row = 0; row < playList_Item.listCount(); ++row) {
        playList_Item.setSelected(row, false);
        if (wanted.isIn(playList_Item.list(row)))
            playList_Item.setSelected(row, true);
    }
}

void playList_Form::to_Folder() { to_Folder(choice()); }

// Tracks begin and select their rows while the user looks for a folder, and while files are copied.
void playList_Form::to_Folder(const ListChoice &chosen) {
    if (playList_Item.listCount() == 0)
        return;
    if (chosen.selected.empty()) {
        app_.platform().windows.MsgBox(app_.Language().msg_Select_One_File,
                                       platform::MsgBoxButtons::Ok, platform::MsgBoxIcon::Critical,
                                       app_.Language().msg_Error);
        return;
    }
    const ListWork still(app_);
    const auto error = trapped([&] {
        controlEnabled(false);
        waitAdd.setVisible(true);
        showProgress(u"", u"CopyFile Loading...");
        const std::u16string folder =
            app_.myCommondialog().browse_Folder(hWnd(), app_.Language().msg_Select_Folder);
        if (!isFolderChoice(folder))
            return;
        for (const std::u16string &path : chosen.selected) {
            if (!app_.Search().isInPlayList(path))
                continue;
            showProgress(u"From：" + path, u"CopyFile To：" + folder);
            app_.copyFile().copyOneFile(path, folder);
        }
    });
    controlEnabled(true);
    comeForward();
    hideProgress();
    showError(error, app_.Main().title.caption());
}

void playList_Form::open_Folder() { open_Folder(choice()); }

void playList_Form::open_Folder(const ListChoice &chosen) {
    if (playList_Item.listCount() == 0)
        return;
    if (chosen.selected.size() != 1) {
        app_.platform().windows.MsgBox(app_.Language().msg_One_Dir_Only,
                                       platform::MsgBoxButtons::Ok, platform::MsgBoxIcon::Critical,
                                       app_.Language().msg_Error);
        return;
    }
    // The current row, which need not be the selected one.
    app_.saveOrOpenFile().shellOpen(app_.Search().getFolderPart(chosen.current));
}

} // namespace velmora
