// An operation acts on the rows that were chosen when it was asked for, whatever happens meanwhile.

#include "tests/unit/playlist_window/list_fixture.h"

#include "lyrics/lrcForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

class Chosen : public ListTest {
protected:
    Chosen() {
        setVolumeBar(0);
        for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"})
            addRow(path);
    }
    listControl_Form &box = app.listControl_Form();

    void selectOnly(std::initializer_list<int> wanted) {
        for (std::int32_t row = 0; row < names.listCount(); ++row)
            names.setSelected(row, false);
        for (const int row : wanted)
            names.setSelected(row, true);
    }
    // The question ahead of every removal, with what happens while it stands.
    void answerSure(MsgBoxResult answer, std::function<void()> meanwhile = {}) {
        windows.expectMsgBox(
            {u"是否决定该操作？", MsgBoxButtons::YesNo, MsgBoxIcon::None, title2011}, answer,
            std::move(meanwhile));
    }
    // The playing track ends and the next one of the list begins.
    void trackEnds() {
        media.reachEnd();
        tickMain();
    }
    void rightButton(const std::function<void(const forms::MouseEvent &)> &event, int row) {
        event({forms::rightButton, 0, 0, names.rowHeight() * static_cast<Twips>(row)});
    }
    // Opens the list's menu as the mouse does, and chooses an entry after what happens meanwhile.
    void fromMenu(const char *entry, int row, std::function<void()> meanwhile = {}) {
        windows.expectPopup("playlist_Menu", entry, std::move(meanwhile));
        rightButton(names.on().MouseDown, row);
        names.userRightClicked(row);
        rightButton(names.on().MouseUp, row);
    }
    void rename(int row, std::u16string_view text) {
        selectOnly({row});
        list.Alter_Click();
        box.jieGuo.setText(text);
        box.OK_Click();
    }
    Texts savesOfTheList() {
        Texts saves;
        for (const std::u16string &change : files.changes())
            if (contains(change, listFile()))
                saves.push_back(change);
        return saves;
    }
    Texts filesLeft() {
        Texts left;
        for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"})
            if (files.hasFile(path))
                left.emplace_back(path);
        return left;
    }
};

using ChosenToGo = Chosen;
using ChosenToBeCleared = Chosen;
using ChosenForANewName = Chosen;
using ChosenToBeCopied = Chosen;
using ChosenForTheMenu = Chosen;
using ChosenByAKey = Chosen;

// --- removing and deleting -----------------------------------------------------------------------

TEST_F(ChosenToGo, ATrackThatBeginsWhileTheQuestionStandsIsNotTakenForTheChosenRow) {
    openAndPlay(u"/m/a.mp3");
    app.player().nowPlay_Index = 1;
    selectOnly({2});
    answerSure(MsgBoxResult::Yes, [&] { trackEnds(); });
    list.delOne(1, false);
    EXPECT_EQ(app.player().nowPlay_File, u"/m/b.mp3") << "the change of the track came about";
    EXPECT_TRUE(files.hasFile(u"/m/b.mp3"));
    EXPECT_EQ(rows(), 4);
    EXPECT_FALSE(list.waitAdd.visible());
}

TEST_F(ChosenToGo, OfTheChosenRowsThoseThatAreStillSelectedGo) {
    openAndPlay(u"/m/a.mp3");
    app.player().nowPlay_Index = 1;
    selectOnly({1, 2, 3});
    answerSure(MsgBoxResult::Yes, [&] { trackEnds(); });
    list.delOne(1, false);
    EXPECT_EQ(filesLeft(), (Texts{u"/m/a.mp3", u"/m/c.mp3", u"/m/d.mp3"})) << "b is selected again";
}

TEST_F(ChosenToGo, OfNoneThatIsStillSelectedNothingGoesIsSavedOrReported) {
    selectOnly({2});
    answerSure(MsgBoxResult::Yes, [&] { selectOnly({1}); });
    list.delOne(1, false);
    EXPECT_EQ(filesLeft().size(), 4U);
    EXPECT_TRUE(savesOfTheList().empty());
    EXPECT_FALSE(files.hasFile(app.setControl().Path_DelFilesLog + u"/delFile.log"));
    EXPECT_TRUE(fake.shell.executions.empty());
}

TEST_F(ChosenToGo, ARepeatedTrackIsNotTakenForTheChosenRowEither) {
    app.setControl().PlayMode = 2;
    openAndPlay(u"/m/a.mp3");
    selectOnly({2});
    answerSure(MsgBoxResult::Yes, [&] { trackEnds(); });
    list.delOne(1, false);
    EXPECT_EQ(filesLeft().size(), 4U);
}

TEST_F(ChosenToGo, FromTheListItIsTheSame) {
    openAndPlay(u"/m/a.mp3");
    app.player().nowPlay_Index = 1;
    selectOnly({2});
    answerSure(MsgBoxResult::Yes, [&] { trackEnds(); });
    list.delIndx_Click();
    EXPECT_EQ(rows(), 4);
}

TEST_F(ChosenToGo, ARowThatIsSelectedInTheMiddleOfTheWorkStays) {
    openAndPlay(u"/m/b.mp3");
    selectOnly({0, 2, 3});
    answerSure(MsgBoxResult::Yes);
    windows.atNextPump([] {});
    windows.atNextPump([&] { app.Main().song_GoTo_List_Click(); });
    list.delOne(1, false);
    EXPECT_EQ(filesLeft(), (Texts{u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"}));
    EXPECT_EQ(pathRows(), (Texts{u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"}));
}

TEST_F(ChosenToGo, RowsSelectedBesidesAreLeftOutAndTheChosenOnesGo) {
    selectOnly({1, 3});
    answerSure(MsgBoxResult::Yes);
    windows.atNextPump([&] {
        names.setSelected(0, true);
        names.setSelected(2, true);
    });
    list.delOne(1, false);
    EXPECT_EQ(filesLeft(), (Texts{u"/m/a.mp3", u"/m/c.mp3"}));
    EXPECT_EQ(selectedNames(), (Texts{u"a", u"c"}));
}

TEST_F(ChosenToGo, RowsThatCameMeanwhileDoNotShiftTheChoice) {
    selectOnly({1, 2});
    answerSure(MsgBoxResult::Yes);
    windows.atNextPump([&] {
        names.addItem(u"new", 0);
        paths.addItem(u"/m/new.mp3", 0);
    });
    list.delOne(1, false);
    EXPECT_EQ(filesLeft(), (Texts{u"/m/a.mp3", u"/m/d.mp3"}));
    EXPECT_EQ(pathRows(), (Texts{u"/m/new.mp3", u"/m/a.mp3", u"/m/d.mp3"}));
}

TEST_F(ChosenToGo, AllMeansTheRowsThatStoodWhenItWasAskedFor) {
    answerSure(MsgBoxResult::Yes, [&] { addRow(u"/m/new.mp3"); });
    list.delOne(1, true);
    EXPECT_EQ(pathRows(), Texts{u"/m/new.mp3"});
    EXPECT_EQ(selectedNames(), Texts{});
    EXPECT_TRUE(files.hasFile(u"/m/new.mp3"));
    EXPECT_EQ(filesLeft(), Texts{});
}

TEST_F(ChosenToGo, WorkThatEndsEarlyIsSavedForGoodAllTheSame) {
    selectOnly({0, 1});
    answerSure(MsgBoxResult::Yes);
    windows.atNextPump([] {});
    windows.atNextPump([&] { names.setSelected(0, false); });
    files.clearChanges();
    list.delOne(1, false);
    EXPECT_EQ(savedList(), "/m/b.mp3\r\n/m/c.mp3\r\n/m/d.mp3\r\n");
    EXPECT_EQ(savesOfTheList().back(), u"sync " + listFile());
}

TEST_F(ChosenToGo, FromTheDiskTheLyricOfTheOpenTrackGoesToo) {
    openAndPlay(u"/m/a.mp3");
    app.lrcForm().List1.addItem(u"[00:01]line");
    selectOnly({0});
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
}

TEST_F(ChosenToGo, TheReportIsOnTheDiskForGoodWhenItIsShown) {
    selectOnly({0});
    answerSure(MsgBoxResult::Yes);
    files.clearChanges();
    list.delOne(1, false);
    EXPECT_THAT(files.changes(), ::testing::Contains(u"sync " + app.setControl().Path_DelFilesLog +
                                                     u"/delFile.log"));
}

// --- clearing ------------------------------------------------------------------------------------

TEST_F(ChosenToBeCleared, TakesTheRowsThatStoodWhenItWasAskedFor) {
    answerSure(MsgBoxResult::Yes, [&] {
        addRowOnly(u"/m/new.mp3");
        names.addItem(u"first", 0);
        paths.addItem(u"/m/first.mp3", 0);
    });
    list.delAll_Click();
    EXPECT_EQ(pathRows(), (Texts{u"/m/first.mp3", u"/m/new.mp3"}));
    EXPECT_EQ(nameRows(), (Texts{u"first", u"new"}));
    EXPECT_EQ(savedList(), "/m/first.mp3\r\n/m/new.mp3\r\n");
}

// --- renaming ------------------------------------------------------------------------------------

TEST_F(ChosenForANewName, ATrackThatBeginsWhileTheBoxIsUpIsNotRenamed) {
    names.setSelected(0, true);
    list.Alter_Click();
    openAndPlay(u"/m/b.mp3");
    box.jieGuo.setText(u"x");
    box.OK_Click();
    EXPECT_TRUE(files.hasFile(u"/m/b.mp3"));
    EXPECT_FALSE(files.hasFile(u"/m/a.mp3"));
    EXPECT_TRUE(files.hasFile(u"/m/x.mp3"));
    EXPECT_EQ(pathRows(), (Texts{u"/m/x.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"}));
    EXPECT_EQ(nameRows(), (Texts{u"x", u"b", u"c", u"d"}));
}

TEST_F(ChosenForANewName, ARowThatHasMovedIsFoundWhereItIs) {
    names.setSelected(2, true);
    list.Alter_Click();
    names.removeItem(0);
    paths.removeItem(0);
    box.jieGuo.setText(u"x");
    box.OK_Click();
    EXPECT_EQ(pathRows(), (Texts{u"/m/b.mp3", u"/m/x.mp3", u"/m/d.mp3"}));
}

TEST_F(ChosenForANewName, ARowThatHasGoneIsNotRenamedAndTheMusicGoesOn) {
    openAndPlay(u"/m/b.mp3");
    names.setSelected(0, true);
    list.Alter_Click();
    names.removeItem(0);
    paths.removeItem(0);
    box.jieGuo.setText(u"x");
    box.OK_Click();
    EXPECT_EQ(filesLeft().size(), 4U);
    EXPECT_EQ(pathRows(), (Texts{u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"}));
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_FALSE(box.visible());
    EXPECT_TRUE(list.enabled());
}

TEST_F(ChosenForANewName, ATrackThatEndsAtTheVeryMomentOfTheRenamingIsNotTakenForTheRow) {
    openAndPlay(u"/m/a.mp3");
    app.player().nowPlay_Index = 1;
    selectOnly({0});
    list.Alter_Click();
    media.reachEnd(); // the question how the player stands starts the next track
    box.jieGuo.setText(u"x");
    box.OK_Click();
    EXPECT_TRUE(files.hasFile(u"/m/b.mp3"));
    EXPECT_TRUE(files.hasFile(u"/m/x.mp3"));
}

TEST_F(ChosenForANewName, ARowOfTheNewPathWhoseFileHadGoneMakesRoom) {
    addRowOnly(u"/m/gone.mp3");
    rename(1, u"gone");
    EXPECT_EQ(pathRows(), (Texts{u"/m/a.mp3", u"/m/gone.mp3", u"/m/c.mp3", u"/m/d.mp3"}));
    EXPECT_EQ(nameRows(), (Texts{u"a", u"gone", u"c", u"d"}));
    EXPECT_EQ(savedList(), "/m/a.mp3\r\n/m/gone.mp3\r\n/m/c.mp3\r\n/m/d.mp3\r\n");
}

TEST_F(ChosenForANewName, SoDoesOneAboveIt) {
    files.remove(u"/m/a.mp3");
    rename(2, u"a");
    EXPECT_EQ(pathRows(), (Texts{u"/m/b.mp3", u"/m/a.mp3", u"/m/d.mp3"}));
    EXPECT_EQ(nameRows(), (Texts{u"b", u"a", u"d"}));
    EXPECT_TRUE(files.hasFile(u"/m/a.mp3"));
}

TEST_F(ChosenForANewName, ARowOfTheNewPathWhoseFileIsThereStays) {
    expectError(u"File exists", app.Language().msg_Error);
    rename(0, u"b");
    EXPECT_EQ(rows(), 4);
    EXPECT_EQ(filesLeft().size(), 4U);
}

// --- copying -------------------------------------------------------------------------------------

TEST_F(ChosenToBeCopied, ATrackThatBeginsInTheFolderDialogLeavesTheChoice) {
    selectOnly({0, 2, 3});
    dialogs.expectFolder(u"/usb", [&] { app.player().selectEntryOfFile(u"/m/b.mp3"); });
    for (int copy = 0; copy < 3; ++copy)
        dialogs.expectCopy({});
    list.to_Folder();
    ASSERT_EQ(dialogs.operations.size(), 3U);
    EXPECT_TRUE(startsWith(dialogs.operations[0].from, u"/m/a.mp3"));
    EXPECT_TRUE(startsWith(dialogs.operations[1].from, u"/m/c.mp3"));
    EXPECT_TRUE(startsWith(dialogs.operations[2].from, u"/m/d.mp3"));
}

TEST_F(ChosenToBeCopied, ATrackThatBeginsInAPumpOrInTheCopyLeavesTheChoice) {
    selectOnly({0, 1, 3});
    dialogs.expectFolder(u"/usb");
    windows.atNextPump([&] { app.player().selectEntryOfFile(u"/m/c.mp3"); });
    dialogs.expectCopy({});
    dialogs.expectCopy({0, false, [&] { app.player().selectEntryOfFile(u"/m/a.mp3"); }});
    dialogs.expectCopy({});
    list.to_Folder();
    ASSERT_EQ(dialogs.operations.size(), 3U);
    EXPECT_TRUE(startsWith(dialogs.operations[2].from, u"/m/d.mp3"));
}

TEST_F(ChosenToBeCopied, ARowThatHasLeftTheListIsNotCopied) {
    selectOnly({0, 1});
    dialogs.expectFolder(u"/usb", [&] {
        names.removeItem(0);
        paths.removeItem(0);
    });
    dialogs.expectCopy({});
    list.to_Folder();
    ASSERT_EQ(dialogs.operations.size(), 1U);
    EXPECT_TRUE(startsWith(dialogs.operations[0].from, u"/m/b.mp3"));
}

// --- by the list's menu --------------------------------------------------------------------------

TEST_F(ChosenForTheMenu, ATrackThatBeginsWhileItIsOpenIsNotDeleted) {
    openAndPlay(u"/m/a.mp3");
    app.player().nowPlay_Index = 1;
    answerSure(MsgBoxResult::Yes);
    fromMenu("hardDrive_DelSelect", 2, [&] { trackEnds(); });
    EXPECT_EQ(app.player().nowPlay_File, u"/m/b.mp3");
    EXPECT_EQ(filesLeft().size(), 4U);
    answerSure(MsgBoxResult::Yes);
    fromMenu("playlist_DelSelect", 2, [&] { app.player().selectEntryOfFile(u"/m/b.mp3"); });
    EXPECT_EQ(rows(), 4);
}

TEST_F(ChosenForTheMenu, ATrackThatBeginsBetweenPressAndReleaseIsNotDeletedEither) {
    answerSure(MsgBoxResult::Yes);
    windows.expectPopup("playlist_Menu", "hardDrive_DelSelect");
    rightButton(names.on().MouseDown, 2);
    names.userRightClicked(2);
    app.player().selectEntryOfFile(u"/m/b.mp3");
    rightButton(names.on().MouseUp, 2);
    EXPECT_EQ(filesLeft().size(), 4U);
}

TEST_F(ChosenForTheMenu, ItsRowIsPlayedRenamedCopiedAndShownInItsFolder) {
    const auto other = [&] { app.player().selectEntryOfFile(u"/m/b.mp3"); };
    fromMenu("playlist_Play", 2, other);
    EXPECT_EQ(media.openPath(), u"/m/c.mp3");
    EXPECT_EQ(app.player().nowPlay_Index, 3);

    dialogs.expectFolder(u"/usb");
    dialogs.expectCopy({});
    fromMenu("playlist_Send", 3, other);
    EXPECT_TRUE(startsWith(dialogs.operations.at(0).from, u"/m/d.mp3"));

    addRow(u"/n/e.mp3");
    fake.shell.executions.clear();
    fromMenu("playlist_OpenFolder", 4, other);
    EXPECT_EQ(fake.shell.executions.at(0).target, u"/n/");

    fromMenu("playlist_Alter", 3, other);
    EXPECT_EQ(box.jieGuo.text(), u"d");
    box.jieGuo.setText(u"x");
    box.OK_Click();
    EXPECT_EQ(pathRows(), (Texts{u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/m/x.mp3", u"/n/e.mp3"}));
}

TEST_F(ChosenForTheMenu, ARowThatHasGoneIsNeitherPlayedNorRenamed) {
    openAndPlay(u"/m/a.mp3");
    fromMenu("playlist_Play", 2, [&] {
        names.removeItem(2);
        paths.removeItem(2);
    });
    EXPECT_EQ(media.openPath(), u"/m/a.mp3");
    fromMenu("playlist_Alter", 2, [&] {
        names.removeItem(2);
        paths.removeItem(2);
    });
    EXPECT_FALSE(box.visible());
}

TEST_F(ChosenForTheMenu, WhatIsChosenAfterItHasClosedCounts) {
    windows.expectPopup("playlist_Menu", "");
    rightButton(names.on().MouseDown, 0);
    names.userRightClicked(0);
    rightButton(names.on().MouseUp, 0);
    selectOnly({2});
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    EXPECT_EQ(filesLeft(), (Texts{u"/m/a.mp3", u"/m/b.mp3", u"/m/d.mp3"}));
}

TEST_F(ChosenForTheMenu, WhatIsChosenWhileItsEntryWorksCounts) {
    setVolumeBar(10);
    fromMenu("playlist_Play", 0, [&] {
        windows.atNextPump([&] { // of the fade
            selectOnly({2});
            answerSure(MsgBoxResult::Yes);
            list.delOne(1, false);
        });
    });
    EXPECT_EQ(filesLeft(), (Texts{u"/m/a.mp3", u"/m/b.mp3", u"/m/d.mp3"}));
}

TEST_F(ChosenForTheMenu, OpenedBesideTheRowsItIsForTheSelection) {
    selectOnly({1, 2});
    windows.expectPopup("playlist_Menu", "hardDrive_DelSelect");
    answerSure(MsgBoxResult::Yes);
    list.on().MouseUp({forms::rightButton, 0, 0, 0});
    EXPECT_EQ(filesLeft(), (Texts{u"/m/a.mp3", u"/m/d.mp3"}));
}

TEST_F(ChosenForTheMenu, OpenedBesideTheRowsItIsNotForWhatAnEarlierPressOfTheLeftButtonPointedAt) {
    selectOnly({0});
    names.on().MouseDown({forms::leftButton, 0, 0, 0});
    selectOnly({2});
    windows.expectPopup("playlist_Menu", "hardDrive_DelSelect");
    answerSure(MsgBoxResult::Yes);
    list.on().MouseUp({forms::rightButton, 0, 0, 0});
    EXPECT_EQ(filesLeft(), (Texts{u"/m/a.mp3", u"/m/b.mp3", u"/m/d.mp3"}));
}

TEST_F(ChosenForTheMenu, OpenedBesideTheRowsItIsForTheSelectionOfThatMoment) {
    selectOnly({2});
    windows.expectPopup("playlist_Menu", "hardDrive_DelSelect",
                        [&] { app.player().selectEntryOfFile(u"/m/b.mp3"); });
    answerSure(MsgBoxResult::Yes);
    list.on().MouseUp({forms::rightButton, 0, 0, 0});
    EXPECT_EQ(filesLeft().size(), 4U) << "the other track that began meanwhile stays";
}

TEST_F(ChosenForTheMenu, OpenedBesideTheRowsItIsNotForTheRowOfAnEarlierClick) {
    selectOnly({0});
    names.on().MouseDown({forms::leftButton, 0, 0, 0});
    names.on().Click();
    selectOnly({2});
    windows.expectPopup("playlist_Menu", "hardDrive_DelSelect");
    answerSure(MsgBoxResult::Yes);
    list.on().MouseUp({forms::rightButton, 0, 0, 0});
    EXPECT_EQ(filesLeft(), (Texts{u"/m/a.mp3", u"/m/b.mp3", u"/m/d.mp3"}));
}

TEST_F(ChosenForTheMenu, ThatWasClosedWithoutAChoiceIsForgottenByTheNext) {
    windows.expectPopup("playlist_Menu", "");
    rightButton(names.on().MouseDown, 0);
    names.userRightClicked(0);
    rightButton(names.on().MouseUp, 0);
    selectOnly({2});
    windows.expectPopup("playlist_Menu", "hardDrive_DelSelect");
    answerSure(MsgBoxResult::Yes);
    list.on().MouseUp({forms::rightButton, 0, 0, 0});
    EXPECT_EQ(filesLeft(), (Texts{u"/m/a.mp3", u"/m/b.mp3", u"/m/d.mp3"}));
}

// --- by keys -------------------------------------------------------------------------------------

TEST_F(ChosenByAKey, BothQuestionsOfShiftAndDeleteAreAboutTheSameRows) {
    openAndPlay(u"/m/a.mp3");
    app.player().nowPlay_Index = 1;
    selectOnly({2});
    answerSure(MsgBoxResult::Yes, [&] { trackEnds(); });
    answerSure(MsgBoxResult::Yes);
    forms::KeyEvent key{46, forms::shiftMask};
    names.on().KeyDown(key);
    EXPECT_EQ(rows(), 4) << "the track that began meanwhile leaves the list neither";
}

TEST_F(ChosenByAKey, AllAreSeenToBeSelectedRowByRow) {
    selectOnly({});
    std::vector<int> selected;
    windows.onPump = [&] { selected.push_back(names.selCount()); };
    forms::KeyEvent key{65, forms::ctrlMask};
    names.on().KeyDown(key);
    windows.onPump = nullptr;
    EXPECT_EQ(selected, (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(ChosenByAKey, AllAreSelectedThoughATrackBeginsMeanwhile) {
    openAndPlay(u"/m/a.mp3");
    windows.atNextPump([] {});
    windows.atNextPump([] {});
    windows.atNextPump([&] { app.player().selectEntryOfFile(u"/m/b.mp3"); });
    forms::KeyEvent key{65, forms::ctrlMask};
    names.on().KeyDown(key);
    EXPECT_EQ(names.selCount(), 4);
    EXPECT_EQ(names.listIndex(), 3);
}

} // namespace
} // namespace velmora
