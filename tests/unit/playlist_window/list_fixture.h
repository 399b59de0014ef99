#pragma once

#include "playlist/listControl_Form.h"
#include "playlist/playList_Form.h"
#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

namespace velmora {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;
using platform::MsgBoxResult;

inline constexpr auto title2011 = u"Velmora 2011";

class ListTest : public ProgramFixture {
protected:
    ListTest() {
        app.setControl().init_PlaySet();
        speak(1);
        list.controlEnabled(true);
        app.Main().title.setCaption(title2011);
    }

    playList_Form &list = app.playList_Form();
    forms::ListBox &names = list.playList_Item;
    forms::ListBox &paths = list.List1;
    fakes::FakeDialogs &dialogs = fake.dialogs;

    Texts nameRows() { return rowsOf(names); }
    Texts pathRows() { return rowsOf(paths); }
    static Texts rowsOf(const forms::ListBox &box) {
        Texts rows;
        for (std::int32_t row = 0; row < box.listCount(); ++row)
            rows.push_back(box.list(row));
        return rows;
    }
    Texts selectedNames() {
        Texts rows;
        for (std::int32_t row = 0; row < names.listCount(); ++row)
            if (names.selected(row))
                rows.push_back(names.list(row));
        return rows;
    }

    std::u16string listFile() { return app.setControl().Path_List + u"/zkPlayList.m3u"; }
    std::string savedList() { return files.contents(listFile()); }

    // The question ahead of every removal.
    void answerSure(MsgBoxResult answer) {
        windows.expectMsgBox(
            {u"是否决定该操作？", MsgBoxButtons::YesNo, MsgBoxIcon::None, title2011}, answer);
    }
    void answerSubfolders(MsgBoxResult answer) {
        windows.expectMsgBox({u"包含子文件夹吗？如果子文件夹过多将需要过多的时间哦！\r\n\r\n"
                              u"警告：不支持停止哦！！",
                              MsgBoxButtons::YesNo, MsgBoxIcon::None, title2011},
                             answer);
    }
    void expectError(std::u16string_view text, std::u16string_view boxTitle) {
        windows.expectMsgBox(boxOf(text, MsgBoxIcon::Critical, boxTitle), MsgBoxResult::Ok);
    }
};

} // namespace velmora
