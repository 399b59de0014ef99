// Removing rows, and deleting files from the disk with a report.

#include "base/text.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "platform/contracts/system.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/list_work.h"
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

std::vector<std::u16string> playList_Form::chosenPaths(bool all) const {
    std::vector<std::u16string> paths;
    for (std::int32_t row = 0; row < playList_Item.listCount(); ++row)
        if (all || playList_Item.selected(row))
            paths.push_back(List1.list(row));
    return paths;
}

std::int32_t playList_Form::lowestOf(const Paths &chosen) const {
    const std::int16_t rows = playList_Item.listCount();
    for (std::int32_t row = playList_Item.firstSelected(); row >= 0 && row < rows; ++row)
        if (playList_Item.selected(row) && chosen.contains(List1.list(row)))
            return row;
    return -1;
}

std::int32_t playList_Form::countOf(const Paths &chosen) const {
    std::int32_t count = 0;
    for (std::int32_t row = 0; row < playList_Item.listCount(); ++row)
        count += playList_Item.selected(row) && chosen.contains(List1.list(row)) ? 1 : 0;
    return count;
}

bool playList_Form::isSure() {
    return app_.platform().windows.MsgBox(
               sureQuestion, platform::MsgBoxButtons::YesNo, platform::MsgBoxIcon::None,
               app_.Main().title.caption()) == platform::MsgBoxResult::Yes;
}

void playList_Form::removeRow(std::int32_t row) {
    playList_Item.removeItem(row);
    List1.removeItem(row);
}

// What came into the list while the question stood was not asked about.
void playList_Form::delAll_Click() {
    const std::vector<std::u16string> asked = chosenPaths(true);
    const Paths chosen(asked.begin(), asked.end());
    const ListWork still(app_);
    if (!isSure())
        return;
    for (std::int32_t row = playList_Item.listCount() - 1; row >= 0; --row)
        if (chosen.contains(List1.list(row)))
            removeRow(row);
    app_.saveOrOpenFile().savePlayList();
}

void playList_Form::delIndx_Click() { delIndx_Click(choice()); }

void playList_Form::delIndx_Click(const ListChoice &chosen) {
    delOne(0, false, chosen);
    app_.saveOrOpenFile().savePlayList();
}

void playList_Form::delOne(std::int16_t mode, bool all) { delOne(mode, all, choice()); }

// Asks first. From the disk: the open track is closed before anything else, whatever is selected,
// so that no file is held open. The list stays enabled; the panel over it keeps the user out.
//
// The rows are those that were chosen when it was asked for. A track that begins while the question
// stands, or between two rows, is selected then: it must never be taken for one of them.
void playList_Form::delOne(std::int16_t mode, bool all, const ListChoice &choice) {
    const std::vector<std::u16string> asked =
        mode == 1 && all ? chosenPaths(true) : choice.selected;
    const Paths chosen(asked.begin(), asked.end());
    const ListWork still(app_);
    if (!isSure())
        return;
    waitAdd.setVisible(true);
    if (mode == 1) {
        app_.player().close_Sub(0);
        for (std::int32_t row = 0; all && row < playList_Item.listCount(); ++row)
            if (chosen.contains(List1.list(row)))
                playList_Item.setSelected(row, true);
    }
    const std::int32_t count = countOf(chosen);
    if (count == 0) {
        waitAdd.setVisible(false);
        return;
    }
    std::u16string report;
    for (std::int32_t done = 0; done < count; ++done) {
        app_.platform().windows.DoEvents();
        // The indices shift after each removal.
        const std::int32_t row = lowestOf(chosen);
        if (row < 0) {
            app_.saveOrOpenFile().savePlayList(); // the last one was a step's
            break;
        }
        removeOne(row, mode, report, done + 1 == count);
    }
    waitAdd.setVisible(false);
    if (mode == 1)
        writeDeleteReport(report);
}

// A file that cannot be deleted leaves the list all the same.
void playList_Form::removeOne(std::int32_t row, std::int16_t mode, std::u16string &report,
                              bool last) {
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
    removeRow(row);
    app_.saveOrOpenFile().savePlayList(last ? SaveKind::Settled : SaveKind::Step);
}

// Rewritten whole by each deletion from the disk. Shown in the user's text editor, but never the
// one of an earlier deletion, which tells of other files.
void playList_Form::writeDeleteReport(const std::u16string &report) {
    const std::u16string path =
        app_.setControl().Path_DelFilesLog + app_.platform().files.separator() + u"delFile.log";
    const bool isWritten = passOver([&] {
        platform::Clock &clock = app_.platform().clock;
        const std::time_t now = clock.now();
        const std::u16string rule(ruleLength, u'-');
        const std::u16string text = app_.Main().title.caption() + crLf + rule + crLf +
                                    u"DelFiles List:" + crLf + clock.shortDate(now) + u" " +
                                    clock.shortTime(now) + crLf + rule + crLf + report + crLf;
        app_.platform().files.writeWhole(path, app_.platform().ansi.encode(text), true);
    });
    passOver([&] {
        if (isWritten && app_.saveOrOpenFile().fileExists(path)) {
            app_.saveOrOpenFile().shellOpen(path);
        }
    });
}

} // namespace velmora
