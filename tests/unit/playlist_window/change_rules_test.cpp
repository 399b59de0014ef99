// Finer points of removing, renaming, copying, playing a row and the scroll bar.

#include "tests/unit/playlist_window/list_fixture.h"

#include "platform/forms/keys.h"
#include "playback/MenuForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

class Rules : public ListTest {
protected:
    listControl_Form &box = app.listControl_Form();

    void fill(int count) {
        for (int row = 0; row < count; ++row)
            addRowOnly(u"/m/" + std::u16string(1, static_cast<char16_t>(0x4e00 + row)) + u".mp3");
    }
    void rename(int row, std::u16string_view text) {
        names.setSelected(row, true);
        list.Alter_Click();
        box.jieGuo.setText(text);
        clickOn(box.OK);
    }
    Twips limit() { return list.P4.height() - list.P2.height(); }
    void drag(Twips y, std::int16_t buttons = forms::leftButton) {
        list.P2.on().MouseMove({buttons, 0, 0, y});
    }
    void press(Twips y, std::int16_t button = forms::leftButton) {
        list.P2.on().MouseDown({button, 0, 0, y});
    }
    void pick(const char *entry) {
        windows.expectPopup("playlist_Menu", entry);
        windows.PopupMenu(app.MenuForm(), app.MenuForm().playlist_Menu);
    }
};

using Removing = Rules;
using Renaming = Rules;
using Copying = Rules;
using Playing = Rules;
using Scrolling = Rules;

// --- removing ------------------------------------------------------------------------------------

TEST_F(Removing, EveryRowIsForTheDiskAlone) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    names.setSelected(1, true);
    answerSure(MsgBoxResult::Yes);
    list.delOne(0, true);
    EXPECT_EQ(nameRows(), Texts{u"a"});
}

TEST_F(Removing, TheMenusTwoDeletionsDifferByTheirRows) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
        addRow(path);
    names.setSelected(1, true);
    answerSure(MsgBoxResult::Yes);
    pick("hardDrive_DelSelect");
    EXPECT_EQ(nameRows(), (Texts{u"a", u"c"}));
    EXPECT_FALSE(files.hasFile(u"/m/b.mp3"));
    EXPECT_TRUE(files.hasFile(u"/m/a.mp3"));
    answerSure(MsgBoxResult::Yes);
    pick("hardDrive_DelAll");
    EXPECT_EQ(rows(), 0);
    EXPECT_FALSE(files.hasFile(u"/m/a.mp3"));
    EXPECT_FALSE(files.hasFile(u"/m/c.mp3"));
}

TEST_F(Removing, OfAFileFromTheDiskClosesTheTrackByMenuAndKeyAlike) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
        addRow(path);
    const auto playLastAndChooseFirst = [this] {
        openAndPlay(u"/m/c.mp3");
        for (std::int32_t row = 0; row < rows(); ++row)
            names.setSelected(row, row == 0);
    };
    playLastAndChooseFirst();
    answerSure(MsgBoxResult::Yes);
    pick("hardDrive_DelSelect");
    EXPECT_EQ(nameRows(), (Texts{u"b", u"c"}));
    EXPECT_FALSE(media.isOpen());
    playLastAndChooseFirst();
    answerSure(MsgBoxResult::Yes);
    answerSure(MsgBoxResult::Yes);
    app.formSet().form_KeyDown(forms::keyDelete, forms::shiftMask, u"playlist_Form");
    EXPECT_EQ(nameRows(), Texts{u"c"});
    EXPECT_FALSE(media.isOpen());
}

TEST_F(Removing, ThePlayingTrackCanBeDeletedFromTheDisk) {
    addRow(u"/m/a.mp3");
    openAndPlay(u"/m/a.mp3");
    names.setSelected(0, true);
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    EXPECT_FALSE(media.isOpen());
    EXPECT_FALSE(files.hasFile(u"/m/a.mp3"));
    EXPECT_EQ(rows(), 0);
}

TEST_F(Removing, ThePanelIsHiddenAndTheListIsSavedWhenTheReportIsWritten) {
    addRow(u"/m/a.mp3");
    names.setSelected(0, true);
    answerSure(MsgBoxResult::Yes);
    std::string saved = "none";
    bool panel = true;
    int writes = 0;
    files.onCall = [&](const std::string &operation) {
        if (operation == "writeWhole" && ++writes == 2) {
            saved = savedList();
            panel = list.waitAdd.visible();
        }
    };
    list.delOne(1, false);
    files.onCall = {};
    EXPECT_EQ(writes, 2) << "the list, and then the report";
    EXPECT_EQ(saved, "");
    EXPECT_FALSE(panel);
}

TEST_F(Removing, AReportThatCannotBeWrittenLeavesTheOneBeforeWhichIsNotShownForIt) {
    addRow(u"/m/a.mp3");
    const std::u16string report = app.setControl().Path_DelFilesLog + u"/delFile.log";
    files.addFile(report, "the one before");
    files.setReadOnly(report);
    names.setSelected(0, true);
    fake.shell.executions.clear();
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    EXPECT_FALSE(files.hasFile(u"/m/a.mp3"));
    EXPECT_EQ(files.contents(report), "the one before");
    EXPECT_TRUE(fake.shell.executions.empty()) << "it tells of other files";
}

TEST_F(Removing, FilesThatAreGoneAndFoldersAreReportedAndLeaveTheList) {
    addRowOnly(u"/m/gone.mp3");
    addRowOnly(u"/m/folder.mp3");
    files.addFolder(u"/m/folder.mp3");
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, true);
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(savedList(), "");
    EXPECT_TRUE(files.hasFolder(u"/m/folder.mp3"));
    const std::string report = files.contents(app.setControl().Path_DelFilesLog + u"/delFile.log");
    const auto first = report.find("【Unsuccessful】： ---->");
    ASSERT_NE(first, std::string::npos);
    EXPECT_LT(first, report.find("\r\n    /m/gone.mp3\r\n"));
    EXPECT_NE(report.find("【Unsuccessful】： ---->Is a directory\r\n    /m/folder.mp3"),
              std::string::npos);
    EXPECT_EQ(report.find("【Successful】"), std::string::npos);
}

TEST_F(Removing, ARemovalMovesTheSelectionToNoNeighbour) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
        addRow(path);
    names.setSelected(1, true);
    answerSure(MsgBoxResult::Yes);
    list.delOne(0, false);
    EXPECT_EQ(names.selCount(), 0);
    EXPECT_EQ(names.listIndex(), 1) << "current, yet not selected";
}

TEST_F(Removing, NextAndPreviousGoOnFromTheOldIndex) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"})
        addRow(path);
    openAndPlay(u"/m/b.mp3");
    app.player().nowPlay_Index = 2;
    for (int row = 0; row < 4; ++row)
        names.setSelected(row, row == 0);
    answerSure(MsgBoxResult::Yes);
    list.delOne(0, false);
    app.player().next_Sub(1);
    EXPECT_EQ(media.openPath(), u"/m/d.mp3") << "the third row now";
}

// --- renaming ------------------------------------------------------------------------------------

TEST_F(Renaming, ThePrefixEndsAtTheFirstPoint) {
    addRow(u"/m/01.a.b.mp3");
    names.setSelected(0, true);
    list.Alter_Click();
    EXPECT_EQ(box.jieGuo.text(), u"a.b");
    box.jieGuo.setText(u"c");
    clickOn(box.OK);
    EXPECT_EQ(nameRows(), Texts{u"01.c"});
    EXPECT_EQ(pathRows(), Texts{u"/m/c.mp3"});
}

TEST_F(Renaming, APrefixLosesItsBlanksInTheDisplay) {
    addRow(u"/m/ 01.x.mp3");
    rename(0, u"y");
    EXPECT_EQ(nameRows(), Texts{u"01.y"});
}

TEST_F(Renaming, TheTailLosesItsBlanks) {
    addRow(u"/m/x.mp3 ");
    rename(0, u"y");
    EXPECT_EQ(pathRows(), Texts{u"/m/ymp3"}) << "four units, of which one was a blank";
}

TEST_F(Renaming, AnErrorIsToldBehindTheSaveWithTheBoxStillUpAndTheWindowsStill) {
    addRow(u"/m/a.mp3");
    addTrack(u"/m/b.mp3");
    names.setSelected(0, true);
    list.Alter_Click();
    box.jieGuo.setText(u"b");
    bool saved = false;
    bool boxShown = false;
    bool listEnabled = true;
    windows.expectMsgBox(boxOf(u"File exists", MsgBoxIcon::Critical, app.Language().msg_Error),
                         MsgBoxResult::Ok, [&] {
                             saved = files.hasFile(listFile());
                             boxShown = box.visible();
                             listEnabled = list.enabled();
                         });
    clickOn(box.OK);
    EXPECT_TRUE(saved);
    EXPECT_TRUE(boxShown);
    EXPECT_FALSE(listEnabled);
    EXPECT_FALSE(box.visible());
    EXPECT_TRUE(list.enabled());
    EXPECT_TRUE(app.Main().enabled());
    EXPECT_EQ(box.jieGuo.text(), u"");
}

TEST_F(Renaming, ANameThatLeadsElsewhereFailsAndChangesNothing) {
    addRow(u"/m/a.mp3");
    files.addFolder(u"/m/sub");
    for (const auto &name : {std::u16string(u"sub/b"), std::u16string(u"../b"),
                             std::u16string(u"/b"), std::u16string(u"b\0c", 3)}) {
        windows.expectMsgBox(
            boxOf(u"Invalid argument", MsgBoxIcon::Critical, app.Language().msg_Error),
            MsgBoxResult::Ok);
        rename(0, name);
        EXPECT_EQ(pathRows(), Texts{u"/m/a.mp3"});
        EXPECT_EQ(nameRows(), Texts{u"a"});
        EXPECT_TRUE(files.hasFile(u"/m/a.mp3"));
        EXPECT_EQ(savedList(), "/m/a.mp3\r\n");
    }
}

TEST_F(Renaming, AFileThatIsGoneIsReportedAndTheListsKeepTheirValues) {
    addRowOnly(u"/m/a.mp3");
    files.addFolder(u"/m");
    expectError(u"No such file or directory", app.Language().msg_Error);
    rename(0, u"b");
    EXPECT_EQ(pathRows(), Texts{u"/m/a.mp3"});
    EXPECT_EQ(nameRows(), Texts{u"a"});
}

TEST_F(Renaming, TheSameNameIsASuccessThatChangesNothing) {
    addRow(u"/m/a.mp3");
    rename(0, u"a");
    EXPECT_EQ(pathRows(), Texts{u"/m/a.mp3"});
    EXPECT_TRUE(files.hasFile(u"/m/a.mp3"));
}

TEST_F(Renaming, ANameOfBlanksAloneGivesAFileOfTheTailAlone) {
    addRow(u"/m/a.mp3");
    rename(0, u"  ");
    EXPECT_EQ(pathRows(), Texts{u"/m/.mp3"});
    EXPECT_EQ(nameRows(), Texts{u""});
}

TEST_F(Renaming, TheCurrentRowIsRenamedThoughOthersAreSelectedToo) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    names.setSelected(0, true);
    rename(1, u"c");
    EXPECT_EQ(pathRows(), (Texts{u"/m/a.mp3", u"/m/c.mp3"}));
}

// --- copying -------------------------------------------------------------------------------------

TEST_F(Copying, AnAnswerOfTwoCharactersIsNoFolder) {
    addRow(u"/m/a.mp3");
    names.setSelected(0, true);
    dialogs.expectFolder(u"x");
    list.to_Folder(); // a copy that nobody expected fails the test
    EXPECT_TRUE(names.enabled());
}

TEST_F(Copying, TheButtonThatFindsTheTrackIsStillMeanwhile) {
    addRow(u"/m/a.mp3");
    names.setSelected(0, true);
    dialogs.expectFolder(u"/usb");
    dialogs.expectCopy({});
    bool enabled = true;
    windows.atNextPump([&] { enabled = app.Main().song_GoTo_List.enabled(); });
    list.to_Folder();
    EXPECT_FALSE(enabled);
    EXPECT_TRUE(app.Main().song_GoTo_List.enabled());
}

// --- playing a row -------------------------------------------------------------------------------

TEST_F(Playing, TheCurrentRowIsPlayedAndNotTheFirstSelected) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    names.setSelected(0, true);
    names.setSelected(1, true);
    list.playThis();
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    EXPECT_EQ(app.player().nowPlay_Index, 2);
}

TEST_F(Playing, ARowWhoseFileIsGoneStopsTheMusicAndCountsAllTheSame) {
    addRow(u"/m/a.mp3");
    addRowOnly(u"/m/gone.mp3");
    openAndPlay(u"/m/a.mp3");
    names.setSelected(1, true);
    list.playThis();
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(app.player().nowPlay_Index, 2);
}

// --- the window ----------------------------------------------------------------------------------

TEST_F(Playing, ItsLoadGivesTheFontAndEmptiesTheNames) {
    const forms::Font other(u"Serif", 20);
    addRow(u"/m/a.mp3");
    list.setFont(other);
    names.setFont(other);
    paths.setFont(other);
    list.visibleRows = 3;
    list.load();
    for (const forms::Font &font : {list.font(), names.font(), paths.font()}) {
        EXPECT_EQ(font.name(), u"Arial");
        EXPECT_EQ(font.size(), 8);
        EXPECT_FALSE(font.bold());
    }
    EXPECT_EQ(names.listCount(), 0);
    EXPECT_EQ(list.visibleRows, 17);
}

TEST_F(Playing, ADragOfTheWindowGoesOnWhileASecondButtonIsHeld) {
    list.move({9000, 1500, list.width(), list.height()});
    windows.cursor = {700, 200};
    list.title.on().MouseDown({forms::leftButton, 0, 0, 0});
    windows.cursor = {710, 200};
    list.title.on().MouseMove({forms::leftButton | forms::rightButton, 0, 0, 0});
    EXPECT_EQ(list.left(), 9150);
    list.title.on().MouseMove({forms::rightButton, 0, 0, 0});
    windows.cursor = {800, 200};
    list.title.on().MouseMove({forms::rightButton, 0, 0, 0});
    EXPECT_EQ(list.left(), 9150);
}

TEST_F(Playing, TheReleaseOfTheRightButtonOnTheTitleRestoresTheOrderToo) {
    windows.positionings.clear();
    list.title.on().MouseUp({forms::rightButton, 0, 0, 0});
    ASSERT_GE(windows.positionings.size(), 2U);
    EXPECT_EQ(windows.positionings[0].insertAfter, platform::HWND_NOTOPMOST);
    EXPECT_EQ(windows.positionings[1].insertAfter, platform::HWND_NOTOPMOST);
}

// --- the scroll bar ------------------------------------------------------------------------------

TEST_F(Scrolling, AThumbOutsideItsTrackIsPutAtTheEdgeWithoutTheMove) {
    fill(40);
    press(10);
    list.P2.setTop(-30);
    drag(500);
    EXPECT_EQ(list.P2.top(), 0);
    list.P2.setTop(limit() + 30);
    drag(-200);
    EXPECT_EQ(list.P2.top(), limit());
    EXPECT_EQ(names.topIndex(), 23);
}

TEST_F(Scrolling, TheThumbIsTakenByTheLeftButtonAlone) {
    fill(40);
    press(10);
    list.P2.on().MouseUp({forms::leftButton, 0, 0, 10});
    press(400, forms::rightButton);
    EXPECT_NE(list.P2.tag(), u"1");
    drag(70, forms::rightButton);
    EXPECT_EQ(list.P2.top(), 0);
    drag(70, forms::leftButton | forms::rightButton);
    EXPECT_EQ(list.P2.top(), 60) << "the right press kept the place of the left one";
}

TEST_F(Scrolling, ThePlaceOfThePressIsRoundedToAWholeTwip) {
    fill(40);
    press(10.6F);
    drag(71);
    EXPECT_EQ(list.P2.top(), 60);
}

TEST_F(Scrolling, TheTopRowIsRoundedToTheNearest) {
    fill(40);
    press(0);
    drag(limit() * 0.6F / 23);
    EXPECT_EQ(names.topIndex(), 1);
    list.P2.setTop(0);
    drag(limit() * 0.4F / 23);
    EXPECT_EQ(names.topIndex(), 0);
}

TEST_F(Scrolling, TheArrowsAndTheWheelLeaveTheThumbToTheTick) {
    fill(40);
    list.P2.setTop(33);
    list.P3.on().Click();
    EXPECT_EQ(list.P2.top(), 33);
    list.P1.on().Click();
    EXPECT_EQ(list.P2.top(), 33);
    names.setTopIndex(9);
    EXPECT_EQ(list.P2.top(), 33);
}

TEST_F(Scrolling, TheArrowStopsWhereTheLastRowsShow) {
    fill(40);
    names.setTopIndex(22);
    list.P3.on().Click();
    EXPECT_EQ(names.topIndex(), 23);
    list.P3.on().Click();
    EXPECT_EQ(names.topIndex(), 23);
}

TEST_F(Scrolling, AListOfExactlyItsRowsDoesNotScroll) {
    fill(17);
    list.P3.on().Click();
    EXPECT_EQ(names.topIndex(), 0);
    press(0);
    drag(limit());
    EXPECT_EQ(names.topIndex(), 0);
}

TEST_F(Scrolling, TheThumbOfAShortListMovesAndTheListStaysAtItsTop) {
    fill(10);
    press(0);
    drag(limit());
    EXPECT_EQ(list.P2.top(), limit());
    EXPECT_EQ(names.topIndex(), 0);
}

} // namespace
} // namespace velmora
