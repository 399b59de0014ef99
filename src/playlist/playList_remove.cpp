// Removing rows, and deleting files from the disk with a report.

#include "base/text.h"
#include "platform/ansi.h"
#include "platform/files.h"
#include "platform/system.h"
#include "platform/windows.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/setControl.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::u16string_view sureQuestion = u"是否决定该操作？";
constexpr std::u16string_view listTitle = u"Delete (to delete from the list),Please wait...";
constexpr std::u16string_view diskTitle = u"Form the Hard-Drive removeing,Please wait...";
constexpr std::size_t ruleLength = 66;

} // namespace

void playList_Form::delAll_Click() {
    if (windows().MsgBox(sureQuestion, platform::MsgBoxButtons::YesNo, platform::MsgBoxIcon::None,
                         app_.Main().title.caption()) != platform::MsgBoxResult::Yes) {
        return;
    }
    playList_Item.clear();
    List1.clear();
    app_.saveOrOpenFile().savePlayList();
}

void playList_Form::delIndx_Click() {
    delOne(0, false);
    app_.saveOrOpenFile().savePlayList();
}

// Asks first. From the disk: the open track is closed before anything else, whatever is selected,
// so that no file is held open. The list stays enabled; the panel over it keeps the user out.
void playList_Form::delOne(std::int16_t mode, bool all) {
    if (windows().MsgBox(sureQuestion, platform::MsgBoxButtons::YesNo, platform::MsgBoxIcon::None,
                         app_.Main().title.caption()) != platform::MsgBoxResult::Yes) {
        return;
    }
    waitAdd.setVisible(true);
    if (mode == 1) {
        app_.player().close_Sub(0);
        if (all) {
            for (std::int32_t row = 0; row < playList_Item.listCount(); ++row) {
                playList_Item.setSelected(row, true);
            }
        }
    }
    const std::int32_t count = playList_Item.selCount();
    if (count == 0) {
        waitAdd.setVisible(false);
        return;
    }
    std::u16string report;
    for (std::int32_t done = 0; done < count; ++done) {
        windows().DoEvents();
        if (!removeLowest(mode, report, done + 1 == count)) {
            break;
        }
    }
    waitAdd.setVisible(false);
    if (mode == 1) {
        writeDeleteReport(report);
    }
}

// The indices shift after each removal, so the lowest selected row is looked for anew. A file that
// cannot be deleted leaves the list all the same. False when no selected row is left.
bool playList_Form::removeLowest(std::int16_t mode, std::u16string &report, bool last) {
    const std::int16_t row = playList_Item.firstSelected();
    if (row < 0) {
        return false;
    }
    const std::u16string path = List1.list(row);
    if (mode == 0) {
        showProgress(path, listTitle);
    } else {
        showProgress(path, diskTitle);
        saveOrOpenFile &files = app_.saveOrOpenFile();
        if (files.deleteFileChecked(path)) {
            report += std::u16string(crLf) + u"【Successful】：" + crLf + u"    " + path;
        } else {
            report += std::u16string(crLf) + u"【Unsuccessful】： ---->" + files.lastDeleteError +
                      crLf + u"    " + path;
        }
    }
    playList_Item.removeItem(row);
    List1.removeItem(row);
    app_.saveOrOpenFile().savePlayList(last ? SaveKind::Settled : SaveKind::Step);
    return true;
}

// Rewritten whole by each deletion from the disk. Shown in the user's text editor.
void playList_Form::writeDeleteReport(const std::u16string &report) {
    const std::u16string path =
        app_.setControl().Path_DelFilesLog + app_.platform().files.separator() + u"delFile.log";
    passOver([&] {
        platform::Clock &clock = app_.platform().clock;
        const std::time_t now = clock.now();
        const std::u16string rule(ruleLength, u'-');
        const std::u16string text = app_.Main().title.caption() + crLf + rule + crLf +
                                    u"DelFiles List:" + crLf + clock.shortDate(now) + u" " +
                                    clock.shortTime(now) + crLf + rule + crLf + report + crLf;
        app_.platform().files.writeWhole(path, app_.platform().ansi.encode(text), true);
    });
    passOver([&] {
        if (app_.saveOrOpenFile().fileExists(path)) {
            app_.saveOrOpenFile().shellOpen(path);
        }
    });
}

} // namespace velmora
