// Finer points of adding: what is selected, in which order things happen, what an error leaves.

#include "tests/unit/playlist_window/list_fixture.h"

#include "base/run_time_error.h"
#include "playback/miniForm.h"

namespace velmora {
namespace {

class Adding : public ListTest {
protected:
    void fillTo(int count) {
        for (int row = 0; row < count; ++row) {
            names.addItem(u"x");
            paths.addItem(u"/x");
        }
    }
    void addFolder(std::u16string_view folder, MsgBoxResult subfolders = MsgBoxResult::No) {
        dialogs.expectFolder(std::u16string(folder));
        answerSubfolders(subfolders);
        list.addDir_Click();
    }
};

// --- one file ------------------------------------------------------------------------------------

TEST_F(Adding, AFileInTheListWhoseStemIsEmptyChangesNoSelectionAndSaysNothing) {
    addRowOnly(u"/m.d/song");
    addRowOnly(u"/m/a.mp3");
    ASSERT_EQ(names.list(0), u"");
    names.setSelected(1, true);
    dialogs.expectOpen(u"/m.d/song");
    list.addFile_Click();
    EXPECT_EQ(selectedNames(), Texts{u"a"});
    EXPECT_EQ(rows(), 2);
}

TEST_F(Adding, AnErrorOfOneFileIsToldAheadOfTheSaveWhileTheListIsStill) {
    fillTo(32767);
    bool saved = true;
    bool enabled = true;
    dialogs.expectOpen(u"/m/one more.mp3");
    windows.expectMsgBox(boxOf(u"Overflow", MsgBoxIcon::Critical, title2011), MsgBoxResult::Ok,
                         [&] {
                             saved = files.hasFile(listFile());
                             enabled = names.enabled();
                         });
    list.addFile_Click();
    EXPECT_FALSE(saved);
    EXPECT_FALSE(enabled);
    EXPECT_TRUE(files.hasFile(listFile()));
    EXPECT_TRUE(names.enabled());
}

TEST_F(Adding, TheNamesakesOfAFileThatIsThereComeIntoView) {
    for (int row = 0; row < 60; ++row)
        addRowOnly(u"/m/" + std::u16string(1, static_cast<char16_t>(0x4e00 + row)) + u".mp3");
    addRowOnly(u"/m/a.mp3");
    dialogs.expectOpen(u"/m/a.mp3");
    list.addFile_Click();
    EXPECT_EQ(names.topIndex(), 61 - 17);
}

TEST_F(Adding, PathsAreComparedExactly) {
    addRowOnly(u"/m/Song.mp3");
    dialogs.expectOpen(u"/m/song.mp3");
    list.addFile_Click();
    EXPECT_EQ(pathRows(), (Texts{u"/m/Song.mp3", u"/m/song.mp3"}));
}

TEST_F(Adding, TheMainWindowsButtonsGoOnWhileOneFileIsAdded) {
    bool mainPlay = false;
    addRowOnly(u"/m/a.mp3");
    windows.atNextPump([&] { mainPlay = app.Main().playButton.enabled(); });
    dialogs.expectOpen(u"/m/a.mp3");
    list.addFile_Click();
    EXPECT_TRUE(mainPlay);
}

// --- a folder ------------------------------------------------------------------------------------

TEST_F(Adding, AnAnswerOfTwoCharactersIsNoFolder) {
    files.addFile(u"x/a.mp3");
    addRowOnly(u"/m/a.mp3");
    names.setSelected(0, true);
    dialogs.expectFolder(u"x");
    list.addDir_Click(); // a question that nobody expected fails the test
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(selectedNames(), Texts{u"a"});
}

TEST_F(Adding, AnAnswerOfThreeCharactersIsAFolder) {
    files.addFile(u"/y/a.mp3");
    addFolder(u"/y");
    EXPECT_EQ(pathRows(), Texts{u"/y/a.mp3"});
}

TEST_F(Adding, BlanksAtTheEndsOfANameAreLost) {
    files.addFile(u"/music/ a.mp3");
    files.addFile(u"/music/b.mp3 ");
    addFolder(u"/music");
    EXPECT_EQ(pathRows(), (Texts{u"/music/a.mp3", u"/music/b.mp3"}));
}

TEST_F(Adding, AFileWithAnEmptyStemIsAddedByAFolderLikeAnyOther) {
    files.addFile(u"/music/ .mp3");
    addFolder(u"/music");
    EXPECT_EQ(pathRows(), Texts{u"/music/.mp3"});
    EXPECT_EQ(nameRows(), Texts{u""});
}

TEST_F(Adding, AFolderSelectsTheNamesakesOfEachOfItsFilesOneByOne) {
    for (const auto *path : {u"/music/a.mp3", u"/old/z.mp3", u"/music/b.mp3", u"/old/a.ogg"})
        addRowOnly(path);
    files.addFile(u"/music/a.mp3");
    files.addFile(u"/music/b.mp3");
    addFolder(u"/music");
    EXPECT_EQ(selectedNames(), (Texts{u"a", u"b", u"a"}));
    EXPECT_EQ(rows(), 4);
}

TEST_F(Adding, AFolderAppendsThePathAheadOfTheName) {
    fillTo(32766);
    names.addItem(u"one name more");
    files.addFile(u"/music/a.mp3");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    expectError(u"Overflow", title2011);
    list.addDir_Click();
    EXPECT_EQ(paths.listCount(), 32767);
    EXPECT_EQ(paths.list(32766), u"/music/a.mp3");
}

TEST_F(Adding, WithoutSubfoldersTheFirstErrorEndsTheWork) {
    for (const auto *name : {u"/music/a.mp3", u"/music/b.mp3", u"/music/c.mp3"})
        files.addFile(name);
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    windows.atNextPump([] {}); // the folder
    windows.atNextPump([] {}); // a
    windows.atNextPump([] { raise(ErrorNumber::DeviceIo); });
    expectError(u"Device I/O error", title2011);
    list.addDir_Click();
    EXPECT_EQ(nameRows(), Texts{u"a"});
    EXPECT_EQ(savedList(), "/music/a.mp3\r\n");
    EXPECT_TRUE(names.enabled());
    EXPECT_FALSE(list.waitAdd.visible());
}

TEST_F(Adding, WithSubfoldersErrorsArePassedOverAndTheLastIsToldInTheEnd) {
    for (const auto *name : {u"/music/a/1.mp3", u"/music/b/2.mp3", u"/music/c/3.mp3"})
        files.addFile(name);
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::Yes);
    windows.atNextPump([] {});                                // the folders of /music
    windows.atNextPump([] { raise(ErrorNumber::Overflow); }); // a
    windows.atNextPump([] { raise(ErrorNumber::DeviceIo); }); // b
    expectError(u"Device I/O error", title2011);
    list.addDir_Click();
    EXPECT_THAT(pathRows(), testing::Contains(u"/music/c/3.mp3"));
    EXPECT_TRUE(names.enabled());
}

TEST_F(Adding, WithSubfoldersAnErrorAtOneFileLeavesOutThatFileAlone) {
    for (const auto *name : {u"/music/1.mp3", u"/music/2.mp3", u"/music/3.mp3"})
        files.addFile(name);
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::Yes);
    for (int pump = 0; pump < 3; ++pump)
        windows.atNextPump([] {}); // the folder twice, and 1
    windows.atNextPump([] { raise(ErrorNumber::DeviceIo); });
    expectError(u"Device I/O error", title2011);
    list.addDir_Click();
    EXPECT_EQ(nameRows(), (Texts{u"1", u"3"}));
}

TEST_F(Adding, AnErrorAheadOfTheQuestionIsToldWithoutAsking) {
    addRowOnly(u"/m/a.mp3");
    files.addFile(u"/music/b.mp3");
    dialogs.expectFolder(u"/music");
    windows.atNextPump([] { raise(ErrorNumber::DeviceIo); }); // while deselecting
    expectError(u"Device I/O error", title2011);
    list.addDir_Click();
    EXPECT_EQ(rows(), 1);
    EXPECT_TRUE(names.enabled());
    EXPECT_TRUE(app.Main().playButton.enabled());
}

TEST_F(Adding, AFolderThatIsAddedAgainAddsNothing) {
    files.addFile(u"/music/a.mp3");
    files.addFile(u"/music/deep/b.mp3");
    addFolder(u"/music", MsgBoxResult::Yes);
    addFolder(u"/music", MsgBoxResult::Yes);
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(selectedNames(), (Texts{u"a", u"b"}));
}

// --- a drop --------------------------------------------------------------------------------------

TEST_F(Adding, ADropDeselectsWithoutAPumpForEachRow) {
    for (const auto *path : {u"/m/1.mp3", u"/m/2.mp3", u"/m/3.mp3"})
        addRowOnly(path);
    files.addFile(u"/n/x.mp3");
    windows.pumps = 0;
    list.filesDropped({u"/n/x.mp3"}, 0);
    EXPECT_EQ(windows.pumps, 1) << "for the file";
}

TEST_F(Adding, ADroppedFileThatIsNoMediumIsShownBeforeItIsSkipped) {
    files.addFile(u"/n/x.txt");
    list.show();
    std::u16string shown;
    windows.atNextPump([] {});
    windows.atNextPump([&] { shown = list.waitAdd_Show.caption(); });
    windows.refreshes = 0;
    list.filesDropped({u"/n/x.txt", u"/gone.mp3"}, 0);
    EXPECT_EQ(shown, u"/n/x.txt");
    EXPECT_EQ(windows.refreshes, 1) << "what has gone is not shown";
}

TEST_F(Adding, AFolderOfLessThanThreeCharactersWithItsSeparatorIsPassedOver) {
    files.addFile(u"/a.mp3");
    files.addFile(u"/b/c.mp3");
    files.addFile(u"x/d.mp3");
    list.filesDropped({u"/", u"x"}, 0);
    EXPECT_EQ(rows(), 0);
    files.addFile(u"xy/d.mp3");
    list.filesDropped({u"xy"}, 0);
    EXPECT_EQ(pathRows(), Texts{u"xy/d.mp3"});
}

TEST_F(Adding, AnErrorEndsADropWhichIsSavedAllTheSame) {
    for (const auto *path : {u"/n/x.mp3", u"/n/y.mp3", u"/n/z.mp3"})
        files.addFile(path);
    windows.atNextPump([] {});
    windows.atNextPump([] { raise(ErrorNumber::DeviceIo); });
    expectError(u"Device I/O error", title2011);
    list.filesDropped({u"/n/x.mp3", u"/n/y.mp3", u"/n/z.mp3"}, 0);
    EXPECT_EQ(nameRows(), Texts{u"x"});
    EXPECT_EQ(savedList(), "/n/x.mp3\r\n");
    EXPECT_TRUE(names.enabled());
    EXPECT_TRUE(app.Main().playButton.enabled());
    EXPECT_FALSE(list.waitAdd.visible());
}

TEST_F(Adding, AnErrorInADroppedFolderIsPassedOver) {
    for (const auto *path : {u"/n/x.mp3", u"/n/y.mp3", u"/n/z.mp3"})
        files.addFile(path);
    windows.atNextPump([] {}); // the folder
    windows.atNextPump([] { raise(ErrorNumber::DeviceIo); });
    list.filesDropped({u"/n"}, 0); // a box that nobody expected fails the test
    EXPECT_EQ(nameRows(), (Texts{u"y", u"z"}));
}

TEST_F(Adding, ADroppedFolderSelectsEveryNameThatContainsAStem) {
    for (const auto *path : {u"/n/a.mp3", u"/m/xay.mp3", u"/m/b.mp3"})
        addRowOnly(path);
    files.addFile(u"/n/a.mp3");
    list.filesDropped({u"/n"}, 0);
    EXPECT_EQ(selectedNames(), (Texts{u"a", u"xay"}));
}

TEST_F(Adding, ADroppedFileInTheListWhoseStemIsEmptySelectsNothing) {
    addRowOnly(u"/n/.mp3");
    addRowOnly(u"/m/a.mp3");
    files.addFile(u"/n/.mp3");
    list.filesDropped({u"/n/.mp3"}, 0);
    EXPECT_EQ(names.selCount(), 0);
    EXPECT_EQ(rows(), 2);
}

TEST_F(Adding, ADropAboveTheTopOfAScrolledListCountsFromItsTopRow) {
    for (int row = 0; row < 40; ++row)
        addRowOnly(u"/m/" + std::u16string(1, static_cast<char16_t>(0x4e00 + row)) + u".mp3");
    names.setTopIndex(7);
    files.addFile(u"/n/x.mp3");
    list.filesDropped({u"/n/x.mp3"}, 0);
    EXPECT_EQ(names.list(7), u"x");
    EXPECT_EQ(paths.list(7), u"/n/x.mp3");
}

TEST_F(Adding, AFileThatIsDroppedTwiceAtOnceIsTakenOnce) {
    files.addFile(u"/n/x.mp3");
    list.filesDropped({u"/n/x.mp3", u"/n/x.mp3"}, 0);
    EXPECT_EQ(pathRows(), Texts{u"/n/x.mp3"});
    EXPECT_EQ(selectedNames(), Texts{u"x"});
}

// --- selections ----------------------------------------------------------------------------------

TEST_F(Adding, OneFileSelectsEqualNamesAlone) {
    for (const auto *path : {u"/m/a.mp3", u"/m/xay.mp3", u"/n/a.ogg"})
        addRowOnly(path);
    dialogs.expectOpen(u"/m/a.mp3");
    list.addFile_Click();
    EXPECT_EQ(selectedNames(), (Texts{u"a", u"a"}));
}

TEST_F(Adding, WhatAFolderAddsIsNotSelected) {
    files.addFile(u"/music/a.mp3");
    addFolder(u"/music");
    EXPECT_EQ(nameRows(), Texts{u"a"});
    EXPECT_EQ(names.selCount(), 0);
}

TEST_F(Adding, AFolderSelectsNothingForAFileInTheListWhoseStemIsEmpty) {
    addRowOnly(u"/music/.mp3");
    files.addFile(u"/music/.mp3");
    addFolder(u"/music");
    EXPECT_EQ(names.selCount(), 0);
    EXPECT_EQ(rows(), 1);
}

TEST_F(Adding, EachFileOfADropLeavesTheSelectionOfThoseAheadOfIt) {
    for (const auto *path : {u"/n/a.mp3", u"/n/b.mp3"}) {
        addRowOnly(path);
        files.addFile(path);
    }
    list.filesDropped({u"/n/a.mp3", u"/n/b.mp3"}, 0);
    EXPECT_EQ(selectedNames(), (Texts{u"a", u"b"}));
}

// --- errors in the events ahead of a folder ------------------------------------------------------

TEST_F(Adding, AnErrorInTheEventsAheadOfAFolderEndsWorkWithoutSubfolders) {
    files.addFile(u"/music/a.mp3");
    windows.atNextPump([] { raise(ErrorNumber::DeviceIo); });
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    expectError(u"Device I/O error", title2011);
    list.addDir_Click();
    EXPECT_EQ(rows(), 0);
}

TEST_F(Adding, AnErrorInTheEventsAheadOfAFolderIsPassedOverWithSubfolders) {
    files.addFile(u"/music/a.mp3");
    windows.atNextPump([] { raise(ErrorNumber::DeviceIo); });
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::Yes);
    expectError(u"Device I/O error", title2011);
    list.addDir_Click();
    EXPECT_EQ(nameRows(), Texts{u"a"});
}

} // namespace
} // namespace velmora
