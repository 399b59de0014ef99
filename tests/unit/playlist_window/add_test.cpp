#include "tests/unit/playlist_window/list_fixture.h"

namespace velmora {
namespace {

using AddFile = ListTest;
using AddFolder = ListTest;
using Drop = ListTest;

TEST_F(AddFile, AsksForOneFileWithTheTitleAndFilterOfTheLanguage) {
    dialogs.expectOpen(std::nullopt);
    list.addFile_Click();
    const platform::OPENFILENAME &record = dialogs.files.at(0);
    EXPECT_EQ(record.title, app.Language().msg_AddMedia_Title);
    EXPECT_EQ(record.filter, app.Language().msg_Media_Filter);
    EXPECT_EQ(record.flags, 0x1804U);
    EXPECT_EQ(record.size, 76U);
    EXPECT_EQ(record.filterIndex, 1U);
    EXPECT_EQ(record.maxFile, 255U);
    EXPECT_EQ(record.owner, list.hWnd());
}

TEST_F(AddFile, CancelChangesNothingAndSavesTheListAsItIs) {
    addRowOnly(u"/m/a.mp3");
    dialogs.expectOpen(std::nullopt);
    list.addFile_Click();
    EXPECT_EQ(pathRows(), Texts{u"/m/a.mp3"});
    EXPECT_EQ(savedList(), "/m/a.mp3\r\n");
}

TEST_F(AddFile, AppendsStemAndPathAndSaves) {
    addRowOnly(u"/m/a.mp3");
    dialogs.expectOpen(u"/m/b c.mp3");
    list.addFile_Click();
    EXPECT_EQ(nameRows(), (Texts{u"a", u"b c"}));
    EXPECT_EQ(pathRows(), (Texts{u"/m/a.mp3", u"/m/b c.mp3"}));
    EXPECT_EQ(savedList(), "/m/a.mp3\r\n/m/b c.mp3\r\n");
}

TEST_F(AddFile, DoesNotTestTheFormat) {
    dialogs.expectOpen(u"/m/notes.txt");
    list.addFile_Click();
    EXPECT_EQ(pathRows(), Texts{u"/m/notes.txt"});
}

TEST_F(AddFile, AFileInTheListIsNotAddedAndItsNamesakesAreSelectedAlone) {
    addRowOnly(u"/m/a.mp3");
    addRowOnly(u"/m/b.mp3");
    addRowOnly(u"/n/a.ogg");
    names.setSelected(1, true);
    dialogs.expectOpen(u"/m/a.mp3");
    list.addFile_Click();
    EXPECT_EQ(rows(), 3);
    EXPECT_EQ(selectedNames(), (Texts{u"a", u"a"}));
}

TEST_F(AddFile, TheSearchForNamesakesPumpsForEachRow) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
        addRowOnly(path);
    windows.pumps = 0;
    dialogs.expectOpen(u"/m/a.mp3");
    list.addFile_Click();
    EXPECT_GE(windows.pumps, 3);
}

TEST_F(AddFile, AnEmptyStemIsReportedAsABadPath) {
    dialogs.expectOpen(u"/m.d/song");
    expectError(app.Language().msg_Bad_Path, app.Language().msg_Error);
    list.addFile_Click();
    EXPECT_EQ(rows(), 0);
}

TEST_F(AddFile, TheListIsDisabledDuringTheDialogAndEnabledBehindIt) {
    dialogs.expectOpen(std::nullopt);
    list.addFile_Click();
    EXPECT_TRUE(names.enabled());
    EXPECT_TRUE(list.addFile.enabled());
}

TEST_F(AddFile, ComesForwardByTopmostAndBack) {
    dialogs.expectOpen(std::nullopt);
    windows.positionings.clear();
    list.addFile_Click();
    const std::vector<fakes::FakeWindows::Positioning> expected = {
        {"playList_Form", platform::HWND_TOPMOST, 3},
        {"playList_Form", platform::HWND_NOTOPMOST, 3}};
    EXPECT_EQ(windows.positionings, expected);
}

TEST_F(AddFile, AFullListReportsOverflowAndKeepsWhatItHas) {
    for (int row = 0; row < 32767; ++row) {
        names.addItem(u"x");
        paths.addItem(u"/x");
    }
    dialogs.expectOpen(u"/m/one more.mp3");
    expectError(u"Overflow", title2011);
    list.addFile_Click();
    EXPECT_EQ(names.listCount(), 32767);
    EXPECT_EQ(paths.listCount(), 32767);
}

TEST_F(AddFolder, CancelChangesNothingAndAsksNothing) {
    addRowOnly(u"/m/a.mp3");
    names.setSelected(0, true);
    dialogs.expectFolder(std::nullopt);
    list.addDir_Click();
    EXPECT_EQ(selectedNames(), Texts{u"a"});
    EXPECT_EQ(savedList(), "/m/a.mp3\r\n");
}

TEST_F(AddFolder, TheRootIsAFolderHoweverShort) {
    files.addFile(u"/a.mp3");
    dialogs.expectFolder(u"/");
    answerSubfolders(MsgBoxResult::No);
    list.addDir_Click();
    EXPECT_EQ(pathRows(), Texts{u"/a.mp3"});
}

TEST_F(AddFolder, NoTakesTheFilesOfTheFolderAlone) {
    files.addFile(u"/music/b.mp3");
    files.addFile(u"/music/a.ogg");
    files.addFile(u"/music/deep/c.mp3");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    list.addDir_Click();
    EXPECT_EQ(pathRows(), (Texts{u"/music/a.ogg", u"/music/b.mp3"}));
    EXPECT_EQ(savedList(), "/music/a.ogg\r\n/music/b.mp3\r\n");
}

TEST_F(AddFolder, YesWalksBreadthFirst) {
    files.addFile(u"/music/x.mp3");
    files.addFile(u"/music/a/x1.mp3");
    files.addFile(u"/music/a/deep/x3.mp3");
    files.addFile(u"/music/b/x2.mp3");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::Yes);
    list.addDir_Click();
    EXPECT_EQ(nameRows(), (Texts{u"x", u"x1", u"x2", u"x3"}));
}

TEST_F(AddFolder, AFolderOfPicturesAddsNothingAndSaysNothing) {
    files.addFile(u"/pictures/a.jpg");
    dialogs.expectFolder(u"/pictures");
    answerSubfolders(MsgBoxResult::Yes);
    list.addDir_Click();
    EXPECT_EQ(rows(), 0);
}

TEST_F(AddFolder, TheExtensionCountsWhateverItsCase) {
    files.addFile(u"/music/a.Mp3");
    files.addFile(u"/music/b.MIDI");
    files.addFile(u"/music/c.m4a");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    list.addDir_Click();
    EXPECT_EQ(nameRows(), (Texts{u"a", u"b"}));
}

TEST_F(AddFolder, DeselectsEverythingFirstAndSelectsTheNamesakesOfWhatIsThere) {
    files.addFile(u"/music/a.mp3");
    addRowOnly(u"/old/z.mp3");
    addRowOnly(u"/music/a.mp3");
    names.setSelected(0, true);
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    list.addDir_Click();
    EXPECT_EQ(selectedNames(), Texts{u"a"});
    EXPECT_EQ(rows(), 2);
}

TEST_F(AddFolder, EachEntryRepaintsThePanelWithItsPath) {
    files.addFile(u"/music/a.mp3");
    files.addFile(u"/music/b.txt");
    list.show();
    Texts seen;
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    windows.refreshes = 0;
    list.addDir_Click();
    EXPECT_EQ(windows.refreshes, 2);
    EXPECT_EQ(list.waitAdd_Title.caption(), app.Language().msg_Loading_Tracks);
    EXPECT_EQ(list.waitAdd_Show.caption(), u"");
    EXPECT_FALSE(list.waitAdd.visible());
}

TEST_F(AddFolder, TheWalkShowsFoldersWithTheirCount) {
    files.addFile(u"/music/a/x.mp3");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::Yes);
    // The pumps behind the question: for the first folder, for what is found in it, and for the
    // next folder.
    std::u16string shown;
    windows.atNextPump([] {});
    windows.atNextPump([] {});
    windows.atNextPump([&] { shown = list.waitAdd_Show.caption(); });
    list.addDir_Click();
    EXPECT_EQ(shown, u"Folders：1\r\n/music/a/");
}

TEST_F(AddFolder, FoldersWithoutAnythingInThemLetEventsThroughToo) {
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::Yes);
    windows.pumps = 0;
    list.addDir_Click();
    EXPECT_EQ(windows.pumps, 2) << "once for its folders, once for its files";
}

TEST_F(AddFolder, AFullListIsReportedOnceAfterTheWorkAndThePartIsSaved) {
    for (int row = 0; row < 32766; ++row) {
        names.addItem(u"x");
        paths.addItem(u"/x/" + std::u16string(1, static_cast<char16_t>(0x4e00 + row % 20000)) +
                      (row < 20000 ? u"a" : u"b"));
    }
    for (const auto *name : {u"/music/a.mp3", u"/music/b.mp3", u"/music/c.mp3"})
        files.addFile(name);
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    expectError(u"Overflow", title2011);
    list.addDir_Click();
    EXPECT_EQ(names.listCount(), 32767);
    EXPECT_EQ(paths.listCount(), 32767);
    EXPECT_EQ(paths.list(32766), u"/music/a.mp3");
    EXPECT_TRUE(names.enabled());
}

TEST_F(Drop, SeveralNewFilesGoInOneBeforeTheOther) {
    for (const auto *path : {u"/m/1.mp3", u"/m/2.mp3", u"/m/3.mp3"})
        addRowOnly(path);
    for (const auto *path : {u"/n/x.mp3", u"/n/y.mp3", u"/n/z.mp3"})
        files.addFile(path);
    list.filesDropped({u"/n/x.mp3", u"/n/y.mp3", u"/n/z.mp3"}, names.rowHeight() * 1.5F);
    EXPECT_EQ(nameRows(), (Texts{u"1", u"z", u"y", u"x", u"2", u"3"}));
    EXPECT_EQ(pathRows().at(1), u"/n/z.mp3");
    EXPECT_EQ(savedList().substr(0, 10), "/m/1.mp3\r\n");
}

TEST_F(Drop, BelowTheLastRowInsertsAtTheTop) {
    addRowOnly(u"/m/1.mp3");
    files.addFile(u"/n/x.mp3");
    list.filesDropped({u"/n/x.mp3"}, names.rowHeight() * 5);
    EXPECT_EQ(nameRows(), (Texts{u"x", u"1"}));
}

TEST_F(Drop, AFileInTheListSelectsEveryNameThatContainsItsStem) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/ab.mp3"})
        addRowOnly(path);
    files.addFile(u"/m/a.mp3");
    list.filesDropped({u"/m/a.mp3"}, 0);
    EXPECT_EQ(selectedNames(), (Texts{u"a", u"ab"}));
    EXPECT_EQ(rows(), 3);
}

TEST_F(Drop, SkipsWhatHasGoneAndWhatIsNoMediaWithoutAWord) {
    files.addFile(u"/n/text.txt");
    list.filesDropped({u"/gone.mp3", u"/n/text.txt"}, 0);
    EXPECT_EQ(rows(), 0);
}

TEST_F(Drop, AFolderIsFlatAndAppended) {
    addRowOnly(u"/m/1.mp3");
    files.addFile(u"/n/x.mp3");
    files.addFile(u"/n/deep/y.mp3");
    list.filesDropped({u"/n"}, 0);
    EXPECT_EQ(nameRows(), (Texts{u"1", u"x"}));
}

TEST_F(Drop, AFileBesideAFolderOfItsNameInAnotherCaseIsTheFile) {
    files.addFile(u"/n/Live.mp3");
    files.addFile(u"/n/live.MP3/inside.mp3");
    list.filesDropped({u"/n/Live.mp3"}, 0);
    EXPECT_EQ(pathRows(), Texts{u"/n/Live.mp3"});
    list.filesDropped({u"/n/live.MP3"}, 0);
    EXPECT_EQ(pathRows(), (Texts{u"/n/Live.mp3", u"/n/live.MP3/inside.mp3"}));
}

TEST_F(Drop, AFolderEnablesTheListInMidDrop) {
    files.addFile(u"/n/x.mp3");
    files.addFile(u"/m/y.mp3");
    bool enabled = false;
    windows.atNextPump([] {});                              // the folder
    windows.atNextPump([] {});                              // its file
    windows.atNextPump([&] { enabled = names.enabled(); }); // the file behind the folder
    list.filesDropped({u"/n", u"/m/y.mp3"}, 0);
    EXPECT_TRUE(enabled);
    EXPECT_EQ(rows(), 2);
}

TEST_F(Drop, ReachesTheHandlerByTheListsOwnEvent) {
    files.addFile(u"/n/x.mp3");
    names.on().OLEDragDrop({{u"/n/x.mp3"}, 0, 0});
    EXPECT_EQ(pathRows(), Texts{u"/n/x.mp3"});
}

TEST_F(Drop, NothingOfferedStillSaves) {
    addRowOnly(u"/m/1.mp3");
    list.filesDropped({}, 0);
    EXPECT_EQ(savedList(), "/m/1.mp3\r\n");
    EXPECT_TRUE(names.enabled());
    EXPECT_FALSE(list.waitAdd.visible());
}

} // namespace
} // namespace velmora
