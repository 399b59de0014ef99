// The lyric editor's open and save.

#include "lyrics/doLrcForm.h"

#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "lyrics/lyric_file.h"
#include "platform/contracts/files.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/playInfo_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/setControl.h"
#include "ui/myCommondialog.h"
#include "velmora.h"

namespace velmora {

namespace {

using namespace std::string_view_literals;

constexpr std::u16string_view openFilter = u"歌词同步文件（*.LRC;*.TXT）\0*.lrc;*.txt\0"sv;
constexpr std::u16string_view saveFilter = u"歌词同步文件（*.LRC）\0*.lrc\0"sv;
constexpr std::u16string_view saved = u"已成功保存！";
constexpr std::u16string_view savedAndMatched = u"已成功保存，并匹配！";
constexpr std::u16string_view notSaved = u"保存失败，请确定您有写入权限！";

} // namespace

void doLrcForm::openFile_Button_Click() {
    savePath = app_.myCommondialog().file_Dialog(
        hWnd(), dialogOpen, u"选择歌词同步文件 - " + app_.Main().title.caption(), u"", openFilter,
        u"", u"");
    addFile_To_List(savePath);
}

bool doLrcForm::lyricExists(std::u16string_view stem) const {
    const platform::Platform &platform = app_.platform();
    const std::u16string path =
        app_.setControl().Path_Lrc + platform.files.separator() + std::u16string(stem) + u".LRC";
    return upper(platform.files.Dir(path)) == upper(std::u16string(stem) + u".lrc");
}

std::u16string doLrcForm::editedLyric() const {
    std::u16string text;
    text.append(u"[Ti:").append(lrc_Ti_Str.text()).append(u"]").append(crLf);
    text.append(u"[Ar:").append(lrc_Ar_Str.text()).append(u"]").append(crLf);
    text.append(u"[Al:").append(lrc_Al_Str.text()).append(u"]").append(crLf);
    text.append(u"[By:").append(lrc_By_Str.text()).append(u"]").append(crLf);
    for (std::int32_t row = 0; row < lrcList.listCount(); ++row)
        text.append(lrcList.list(row)).append(crLf);
    return text;
}

// The lyric is taken before the question: a track that begins while it stands fills the editor with
// its own.
void doLrcForm::save_Button_Click() {
    const std::u16string track = app_.player().nowPlay_File;
    const std::u16string stem = app_.player().getFileStem(track);
    const std::u16string lyric = editedLyric();
    if (lyricExists(stem) &&
        app_.platform().windows.MsgBox(
            u"该歌词文件已存在，是否覆盖？\r\n\r\n【Y】：覆盖\r\n【N】：另存为",
            platform::MsgBoxButtons::YesNoCancel, platform::MsgBoxIcon::None,
            app_.Main().title.caption()) != platform::MsgBoxResult::Yes) {
        saveAs(stem, lyric);
        return;
    }
    const std::u16string path =
        app_.setControl().Path_Lrc + app_.platform().files.separator() + stem + u".Lrc";
    // The file that was asked about, in whatever case it is spelt: a lyric never lies there twice.
    if (!app_.saveOrOpenFile().writeLrcFile(pathOnDisk(app_.platform(), path), lyric)) {
        tell(stem, notSaved, path, true);
        return;
    }
    if (app_.player().nowPlay_File != track) {
        tell(stem, saved, path, false);
        return;
    }
    app_.lrcForm().startLoad(path);
    app_.playInfo_Form().lrcInfo_Frame.setEnabled(true);
    tell(stem, savedAndMatched, path, false);
}

void doLrcForm::anotherSave_Button_Click() {
    saveAs(app_.player().getFileStem(app_.player().nowPlay_File), editedLyric());
}

void doLrcForm::saveAs(std::u16string_view stem, std::u16string_view lyric) {
    savePath = app_.myCommondialog().file_Dialog(
        hWnd(), dialogSave, u"选择要保存歌词同步文件的地址 - " + app_.Main().title.caption(), stem,
        saveFilter, u"", u"lrc");
    if (savePath.empty())
        return;
    const bool isSaved = app_.saveOrOpenFile().writeLrcFile(savePath, lyric);
    tell(stem, isSaved ? saved : notSaved, savePath, !isSaved);
}

void doLrcForm::tell(std::u16string_view stem, std::u16string_view outcome,
                     std::u16string_view path, bool isFailure) {
    std::u16string text = u"曲目：";
    text.append(stem).append(crLf).append(outcome).append(crLf).append(crLf);
    text.append(u"地址：").append(path);
    app_.platform().windows.MsgBox(text, platform::MsgBoxButtons::Ok,
                                   isFailure ? platform::MsgBoxIcon::Critical
                                             : platform::MsgBoxIcon::Information,
                                   app_.Main().title.caption());
}

} // namespace velmora
