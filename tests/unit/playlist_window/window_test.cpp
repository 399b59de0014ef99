#include "tests/unit/playlist_window/list_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/MenuForm.h"
#include "playback/miniForm.h"

namespace velmora {
namespace {

class ListWindow : public ListTest {
protected:
    void fill(int count) {
        for (int row = 0; row < count; ++row)
            addRowOnly(u"/m/" + std::u16string(1, static_cast<char16_t>(0x4e00 + row)) + u".mp3");
    }
    static forms::MouseEvent left(Twips x, Twips y) { return {forms::leftButton, 0, x, y}; }
};

TEST_F(ListWindow, PlayThisPlaysTheCurrentRow) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    names.setSelected(1, true);
    list.playThis();
    EXPECT_EQ(app.player().nowPlay_Index, 2);
    EXPECT_EQ(media.openPath(), files.GetShortPathNameA(u"/m/b.mp3"));
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(ListWindow, ADoubleClickOnAnEmptyListStopsTheMusic) {
    addTrack(u"/m/a.mp3");
    openAndPlay(u"/m/a.mp3");
    names.userDoubleClicked(-1);
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(app.player().nowPlay_Index, 0);
}

TEST_F(ListWindow, ADoubleClickBelowTheLastRowOfAFilledListDoesNothing) {
    addRow(u"/m/a.mp3");
    openAndPlay(u"/m/a.mp3");
    names.userDoubleClicked(7);
    EXPECT_TRUE(media.isOpen());
}

TEST_F(ListWindow, RowAtPointCountsFromTheTopRow) {
    fill(40);
    names.setTopIndex(5);
    EXPECT_EQ(list.rowAtPoint(0, names.rowHeight() * 2.5F), 7);
}

TEST_F(ListWindow, RowAtPointRoundsTheHeightToAWholeTwipFirst) {
    fill(5);
    EXPECT_EQ(list.rowAtPoint(0, names.rowHeight() * 2 - 0.4F), 2);
    EXPECT_EQ(list.rowAtPoint(0, names.rowHeight() * 2 - 0.6F), 1);
}

TEST_F(ListWindow, RowAtPointBelowTheLastRowIsRowZero) {
    fill(3);
    EXPECT_EQ(list.rowAtPoint(0, names.rowHeight() * 3.5F), 0);
}

TEST_F(ListWindow, TheToolTipIsThePathUnderThePointerAndOfRowZeroOverEmptySpace) {
    fill(3);
    names.on().MouseMove({0, 0, 10, names.rowHeight() * 1.5F});
    EXPECT_EQ(names.toolTip(), paths.list(1));
    names.on().MouseMove({0, 0, 10, names.rowHeight() * 9});
    EXPECT_EQ(names.toolTip(), paths.list(0));
}

TEST_F(ListWindow, TheToolTipOfAnEmptyListIsEmpty) {
    names.on().MouseMove({0, 0, 10, 10});
    EXPECT_EQ(names.toolTip(), u"");
}

TEST_F(ListWindow, TheArrowsMoveTheTopRowByOneWithinTheList) {
    fill(19);
    list.P1.on().Click();
    EXPECT_EQ(names.topIndex(), 0);
    list.P3.on().Click();
    list.P3.on().Click();
    list.P3.on().Click();
    EXPECT_EQ(names.topIndex(), 2);
    list.P1.on().Click();
    EXPECT_EQ(names.topIndex(), 1);
}

TEST_F(ListWindow, TheArrowsDoNothingOnAShortList) {
    fill(10);
    list.P3.on().Click();
    EXPECT_EQ(names.topIndex(), 0);
}

TEST_F(ListWindow, TheThumbAtTheBottomShowsTheLastRows) {
    fill(40);
    list.P2.on().MouseDown(left(0, 10));
    list.P2.on().MouseMove(left(0, 100000));
    EXPECT_FLOAT_EQ(list.P2.top(), list.P4.height() - list.P2.height());
    EXPECT_EQ(names.topIndex(), 23);
    list.P2.on().MouseMove(left(0, -100000));
    EXPECT_FLOAT_EQ(list.P2.top(), 0);
    EXPECT_EQ(names.topIndex(), 0);
}

TEST_F(ListWindow, ADragMovesTheThumbByThePointersWay) {
    fill(40);
    list.P2.on().MouseDown(left(0, 10));
    list.P2.on().MouseMove(left(0, 70));
    EXPECT_FLOAT_EQ(list.P2.top(), 60);
}

TEST_F(ListWindow, TheTickLeavesTheThumbAloneWhileItIsHeld) {
    fill(40);
    list.show();
    tickMain();
    list.P2.on().MouseDown(left(0, 10));
    EXPECT_EQ(list.P2.tag(), u"1");
    list.P2.on().MouseMove(left(0, 70));
    const Twips held = list.P2.top();
    names.setTopIndex(20);
    tickMain();
    EXPECT_FLOAT_EQ(list.P2.top(), held);
    list.P2.on().MouseUp(left(0, 70));
    EXPECT_NE(list.P2.tag(), u"1");
    tickMain();
    EXPECT_FLOAT_EQ(list.P2.top(), 20.0F / 23.0F * (list.P4.height() - list.P2.height()));
}

TEST_F(ListWindow, DraggingMovesBothWindowsAndKeepsThemTouching) {
    app.Main().show();
    list.show();
    app.Main().move({3000, 1500, app.Main().width(), app.Main().height()});
    list.move({app.Main().left() + app.Main().width(), 1500, list.width(), list.height()});
    const Twips gap = list.left() - app.Main().left();
    windows.cursor = {500, 200};
    list.on().MouseDown(left(0, 0));
    EXPECT_TRUE(list.topmost());
    EXPECT_TRUE(app.Main().topmost());
    windows.cursor = {537, 219};
    list.on().MouseMove(left(0, 0));
    EXPECT_FLOAT_EQ(app.Main().left(), 3000 + 37 * 15);
    EXPECT_FLOAT_EQ(list.top(), 1500 + 19 * 15);
    EXPECT_FLOAT_EQ(list.left() - app.Main().left(), gap);
    list.on().MouseUp(left(0, 0));
    EXPECT_FALSE(list.topmost());
    EXPECT_FALSE(app.Main().topmost());
    EXPECT_TRUE(app.miniForm().topmost());
    EXPECT_TRUE(app.lrcForm().topmost());
}

TEST_F(ListWindow, ADragKeepsBothOnTopForItsTimeAndTheSmallWindowsAfterwards) {
    using Positionings = std::vector<fakes::FakeWindows::Positioning>;
    app.Main();
    app.miniForm();
    app.lrcForm();
    for (forms::ControlEvents *area : {static_cast<forms::ControlEvents *>(&list.on()),
                                       &list.title.on(), &list.title_ICO.on()}) {
        windows.positionings.clear();
        area->MouseDown({forms::rightButton, 0, 0, 0});
        EXPECT_TRUE(windows.positionings.empty());
        area->MouseDown(left(0, 0));
        EXPECT_EQ(windows.positionings, (Positionings{{"playList_Form", -1, 3}, {"Main", -1, 3}}));
        windows.positionings.clear();
        area->MouseUp(left(0, 0));
        EXPECT_EQ(windows.positionings, (Positionings{{"playList_Form", -2, 3},
                                                      {"Main", -2, 3},
                                                      {"miniForm", -1, 3},
                                                      {"lrcForm", -1, 3}}));
    }
}

TEST_F(ListWindow, ARightReleaseOpensTheListsMenuOnTheFormAndOnTheList) {
    windows.expectPopup("playlist_Menu", "");
    list.on().MouseUp({forms::rightButton, 0, 0, 0});
    windows.expectPopup("playlist_Menu", "");
    names.on().MouseUp({forms::rightButton, 0, 0, 0});
}

TEST_F(ListWindow, ClosingHidesDocksAndClearsTheFlagOfTheListButton) {
    list.show();
    app.Main().playList_Shown = -1;
    app.Main().setLeft(0);
    list.close_Click();
    EXPECT_FALSE(list.visible());
    EXPECT_EQ(app.Main().playList_Shown, 0);
    EXPECT_FLOAT_EQ(app.Main().left(), (1280 * 15 - app.Main().width()) / 2);
}

TEST_F(ListWindow, TheWindowManagersCloseIsTheFormsOwn) {
    list.show();
    list.closeRequested();
    EXPECT_FALSE(list.visible());
}

TEST_F(ListWindow, EveryEntryOfTheListsMenuDoesItsWork) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    names.setSelected(1, true);
    const auto pick = [this](const char *entry) {
        windows.expectPopup("playlist_Menu", entry);
        windows.PopupMenu(app.MenuForm(), app.MenuForm().playlist_Menu);
    };
    pick("playlist_Play");
    EXPECT_EQ(app.player().nowPlay_Index, 2);
    dialogs.expectOpen(std::nullopt);
    pick("playlist_AddFile");
    dialogs.expectFolder(std::nullopt);
    pick("playlist_AddFolder");
    pick("playlist_Search");
    EXPECT_TRUE(app.listControl_Form().visible());
    app.listControl_Form().close_Box();
    pick("playlist_Alter");
    EXPECT_TRUE(app.listControl_Form().visible());
    app.listControl_Form().close_Box();
    fake.shell.executions.clear();
    pick("playlist_OpenFolder");
    EXPECT_EQ(fake.shell.executions.at(0).target, u"/m/");
    dialogs.expectFolder(std::nullopt);
    pick("playlist_Send");
    answerSure(MsgBoxResult::Yes);
    pick("playlist_DelSelect");
    EXPECT_EQ(nameRows(), Texts{u"a"});
    EXPECT_TRUE(files.hasFile(u"/m/b.mp3"));
    names.setSelected(0, true);
    answerSure(MsgBoxResult::No);
    pick("hardDrive_DelSelect");
    answerSure(MsgBoxResult::No);
    pick("playlist_DelAll");
    answerSure(MsgBoxResult::Yes);
    pick("hardDrive_DelAll");
    EXPECT_EQ(rows(), 0);
    EXPECT_FALSE(files.hasFile(u"/m/a.mp3"));
    list.show();
    pick("playlist_Hide");
    EXPECT_FALSE(list.visible());
}

TEST_F(ListWindow, PlayingARowWhoseFileIsGoneLeavesNothingOfTheTrackBefore) {
    addRow(u"/m/a.mp3");
    addRowOnly(u"/m/gone.mp3");
    openAndPlay(u"/m/a.mp3");
    app.lrcForm().List1.addItem(u"[00:01]line");
    names.setSelected(1, true);
    list.playThis();
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
}

} // namespace
} // namespace velmora
