#include "lyrics/doLrcForm.h"

#include "base/numbers.h"
#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "lyrics/lrc_text.h"
#include "lyrics/lyric_file.h"
#include "platform/contracts/windows.h"
#include "platform/forms/keys.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/playList_Form.h"
#include "ui/formSet.h"
#include "ui/scrollBar.h"
#include "velmora.h"

namespace velmora {

doLrcForm::doLrcForm(Velmora &app) : doLrcForm_Design(app.platform().windows), app_(app) {}

void doLrcForm::load() {
    app_.formSet().set_ColourKey(*this);
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { close_Click(); });
    // The list of this window shows as many rows as the play list.
    attachScrollBar({P1, P2, P3, P4, lrcList}, app_.formSet(),
                    [this] { return app_.playList_Form().visibleRows; });
    wire(*this);
    setListHandlers();
}

void doLrcForm::setListHandlers() {
    forms::ControlEvents &list = lrcList.on();
    list.Click = [this] { showRow(); };
    list.MouseUp = [this](const forms::MouseEvent &) { released(); };
    list.KeyUp = [this](forms::KeyEvent &) { released(); };
    list.KeyDown = [this](forms::KeyEvent &event) { keyPressed(event.keyCode, event.shift); };
    lrc_Index_Text.on().Change = [this] {
        lrcList.setList(lrcList.listIndex(), lrc_Index_Text.text());
    };
}

void doLrcForm::showRow() { lrc_Index_Text.setText(lrcList.list(lrcList.listIndex())); }

// A stamp on a row that is not left raises no click: the box takes it with the release of the key,
// or else the next letter typed there would write the row without it.
void doLrcForm::released() {
    showRow();
    nowRow = lrcList.listIndex();
}

void doLrcForm::keyPressed(std::int16_t keyCode, std::int16_t shift) {
    const bool isCtrl = (shift & forms::ctrlMask) != 0;
    if (keyCode == forms::keyF9)
        addTime_Label_Button_Click();
    else if (keyCode == forms::keyF10)
        delTime_Label_Button_Click();
    else if (keyCode == forms::keyS && isCtrl)
        save_Button_Click();
    else if (keyCode == forms::keyS && shift == forms::shiftMask)
        anotherSave_Button_Click();
    else if (keyCode == forms::keyO && isCtrl)
        openFile_Button_Click();
}

void doLrcForm::close_Click() { hide(); }

// --- filling ---

void doLrcForm::emptyControls() {
    lrcList.clear();
    for (forms::TextBox *box :
         {&lrc_Index_Text, &lrc_Ti_Str, &lrc_Ar_Str, &lrc_Al_Str, &lrc_By_Str})
        box->setText(u"");
}

void doLrcForm::startLoad() {
    emptyControls();
    loadFromLyric();
}

void doLrcForm::all_Enabled(bool flag) {
    forms::Control *const controls[] = {
        &lrcList,     &lrc_Index_Text,    &lrc_Al_Str,           &lrc_Ar_Str,
        &lrc_By_Str,  &lrc_Ti_Str,        &addTime_Label_Button, &delTime_Label_Button,
        &save_Button, &anotherSave_Button};
    for (forms::Control *control : controls)
        control->setEnabled(flag);
    no_Lrc_Clew.setVisible(!flag);
}

void doLrcForm::loadFromLyric() {
    const velmora::lrcForm &lyric = app_.lrcForm();
    if (!lyric.hasLrc) {
        all_Enabled(false);
        return;
    }
    emptyControls();
    nowRow = 0;
    hasText = false;
    // One step beyond the last line: it reads as empty and gives the list an empty row at its end.
    for (std::int32_t row = 0; row <= lyric.List1.listCount(); ++row)
        takeLine(lyric.List1.list(row));
    selectRow(0);
    all_Enabled(true);
}

// A tag goes into its box, labels without words nowhere, all else into the list.
void doLrcForm::takeLine(std::u16string_view line) {
    if (!endsWithLabel(line)) {
        lrcList.addItem(line);
        return;
    }
    if (const std::optional<TagLine> found = tagOf(line)) {
        forms::TextBox *const boxes[] = {&lrc_Ti_Str, &lrc_Ar_Str, &lrc_Al_Str, &lrc_By_Str};
        boxes[static_cast<std::size_t>(found->tag)]->setText(found->value);
    }
}

// Selecting raises the list's click, so the line to edit follows.
void doLrcForm::selectRow(std::int32_t row) {
    const std::int16_t before = lrcList.firstSelected();
    if (before >= 0)
        lrcList.setSelected(before, false);
    lrcList.setSelected(row, true);
}

void doLrcForm::addFile_To_List(std::u16string_view path) {
    if (path.empty())
        return;
    emptyControls();
    nowRow = 0;
    hasText = false;
    passOver([&] {
        for (const std::u16string &line : readLyricFile(app_.platform(), path).lines) {
            takeLine(line);
            hasText = true;
        }
    });
    if (lrcList.listCount() > 0)
        selectRow(0);
    all_Enabled(hasText);
    if (!hasText) {
        app_.platform().windows.MsgBox(u"您所选择的文件是空文件，无法将内容添加到编辑区！",
                                       platform::MsgBoxButtons::Ok, platform::MsgBoxIcon::Critical,
                                       app_.Main().title.caption());
    }
}

// --- stamps ---

void doLrcForm::addTime_Label_Button_Click() {
    lrcList.setList(nowRow, app_.player().get_LrcTimeTag() + lrcList.list(nowRow));
    if (nowRow < lrcList.listCount() - 1) {
        selectRow(nowRow + 1);
        nowRow = addInt16(nowRow, 1);
    }
}

void doLrcForm::delTime_Label_Button_Click() {
    lrcList.setList(nowRow, withoutStamp(lrcList.list(nowRow)));
    if (nowRow == 0)
        return;
    selectRow(nowRow - 1);
    nowRow = addInt16(nowRow, -1);
}

} // namespace velmora
