// The probe of a folder, existence, deletion, and what goes to the shell.

#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/unit/program_fixture.h"

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FilesAndShell : public ProgramFixture {
protected:
    saveOrOpenFile &work = app.saveOrOpenFile();
};

// --- the probe ---------------------------------------------------------------------------------

TEST_F(FilesAndShell, AFolderIsProbedByMakingAndDeletingAFile) {
    files.addFolder(u"/words");
    EXPECT_TRUE(work.canWriteFolder(u"/words"));
    EXPECT_THAT(files.changes(),
                ElementsAre(u"write /words/zkPlay.tmp", u"delete /words/zkPlay.tmp"));
    EXPECT_FALSE(files.hasFile(u"/words/zkPlay.tmp"));
}

TEST_F(FilesAndShell, TheProbeHoldsTheTitleForItsMoment) {
    app.Main().title.setCaption(u"Velmora 晚霞");
    files.addFolder(u"/words");
    files.failNext("DeleteFile");
    EXPECT_FALSE(work.canWriteFolder(u"/words"));
    EXPECT_EQ(files.contents(u"/words/zkPlay.tmp"), "Velmora 晚霞");
}

TEST_F(FilesAndShell, AProbeLeftBehindIsTakenAway) {
    app.Main().title.setCaption(u"Velmora 2011");
    files.addFile(u"/words/zkPlay.tmp", "Velmora 2011");
    EXPECT_TRUE(work.canWriteFolder(u"/words"));
    EXPECT_THAT(files.files(), IsEmpty());
}

TEST_F(FilesAndShell, WhatElseHasTheNameOfTheProbeStaysAndTheFolderIsProbedUnderAnother) {
    app.Main().title.setCaption(u"Velmora 2011");
    files.addFile(u"/words/zkPlay.tmp", "Velmora 2011, my notes");
    EXPECT_TRUE(work.canWriteFolder(u"/words"));
    EXPECT_EQ(files.contents(u"/words/zkPlay.tmp"), "Velmora 2011, my notes");
    EXPECT_THAT(files.files(), ElementsAre(u"/words/zkPlay.tmp"));
    files.addFolder(u"/music/zkPlay.tmp");
    files.addSpecial(u"/music/zkPlay-2.tmp");
    EXPECT_TRUE(work.canWriteFolder(u"/music"));
    EXPECT_TRUE(files.hasFolder(u"/music/zkPlay.tmp"));
}

TEST_F(FilesAndShell, AFolderInWhichEveryNameOfTheProbeIsTakenFailsIt) {
    const Texts taken{u"/words/zkPlay-2.tmp", u"/words/zkPlay-3.tmp", u"/words/zkPlay-4.tmp",
                      u"/words/zkPlay.tmp"};
    for (const std::u16string &path : taken)
        files.addFile(path, "somebody's");
    EXPECT_FALSE(work.canWriteFolder(u"/words"));
    EXPECT_EQ(files.files(), taken);
}

TEST_F(FilesAndShell, AFolderThatNothingMayWriteToFailsTheProbe) {
    files.addFolder(u"/words");
    files.setReadOnly(u"/words");
    EXPECT_FALSE(work.canWriteFolder(u"/words"));
}

TEST_F(FilesAndShell, AFullDiskFailsTheProbe) {
    files.addFolder(u"/words");
    files.setFreeSpace(0);
    EXPECT_FALSE(work.canWriteFolder(u"/words"));
}

TEST_F(FilesAndShell, AFailedWriteFailsTheProbeAndDeletesNothing) {
    files.addFolder(u"/words");
    files.failNext("writeNew");
    EXPECT_FALSE(work.canWriteFolder(u"/words"));
    EXPECT_THAT(files.changes(), IsEmpty());
}

TEST_F(FilesAndShell, WithoutTheFileSystemObjectTheProbeFails) {
    files.addFolder(u"/words");
    files.failNext("CreateFileSystemObject");
    EXPECT_FALSE(work.canWriteFolder(u"/words"));
}

TEST_F(FilesAndShell, AMissingFolderAFileAndNoFolderAtAllFailTheProbe) {
    files.addFile(u"/words");
    EXPECT_FALSE(work.canWriteFolder(u"/gone"));
    EXPECT_FALSE(work.canWriteFolder(u"/words"));
    EXPECT_FALSE(work.canWriteFolder(u""));
    EXPECT_FALSE(files.hasFile(u"/zkPlay.tmp"));
}

TEST_F(FilesAndShell, NoFolderIsNotTheRootAndProbesNothing) {
    files.addFolder(u"/");
    EXPECT_FALSE(work.canWriteFolder(u""));
    EXPECT_THAT(files.changes(), IsEmpty());
    EXPECT_EQ(files.calls("writeNew"), 0);
}

// --- existence and deletion ----------------------------------------------------------------------

TEST_F(FilesAndShell, AFileExistsAndAFolderAPipeAndAnEmptyPathDoNot) {
    files.addFile(u"/m/a.mp3");
    files.addFolder(u"/m/folder");
    files.addSpecial(u"/m/pipe");
    EXPECT_TRUE(work.fileExists(u"/m/a.mp3"));
    EXPECT_TRUE(work.fileExists(u"/m/A.MP3"));
    EXPECT_FALSE(work.fileExists(u"/m/b.mp3"));
    EXPECT_FALSE(work.fileExists(u"/m/folder"));
    EXPECT_FALSE(work.fileExists(u"/m/pipe"));
    EXPECT_FALSE(work.fileExists(u""));
}

TEST_F(FilesAndShell, StarsAndQuestionMarksAreOrdinaryCharacters) {
    files.addFile(u"/m/a.mp3");
    EXPECT_FALSE(work.fileExists(u"/m/*"));
    EXPECT_FALSE(work.fileExists(u"/m/?.mp3"));
    files.addFile(u"/m/*");
    EXPECT_TRUE(work.fileExists(u"/m/*"));
}

TEST_F(FilesAndShell, DeletingTakesTheExactName) {
    files.addFile(u"/m/a.mp3");
    EXPECT_FALSE(work.deleteFileChecked(u"/m/A.mp3"));
    EXPECT_TRUE(work.deleteFileChecked(u"/m/a.mp3"));
    EXPECT_FALSE(files.hasFile(u"/m/a.mp3"));
}

TEST_F(FilesAndShell, AFailedDeletionLeavesItsDescription) {
    files.addFile(u"/m/a.mp3");
    files.failNext("DeleteFile", ErrorNumber::PermissionDenied, u"the disk says no");
    EXPECT_FALSE(work.deleteFileChecked(u"/m/a.mp3"));
    EXPECT_EQ(work.lastDeleteError, u"the disk says no");
    EXPECT_TRUE(files.hasFile(u"/m/a.mp3"));
}

TEST_F(FilesAndShell, ASuccessKeepsTheLastDescription) {
    files.addFile(u"/m/a.mp3");
    work.deleteFileChecked(u"/m/gone.mp3");
    const std::u16string description = work.lastDeleteError;
    EXPECT_FALSE(description.empty());
    EXPECT_TRUE(work.deleteFileChecked(u"/m/a.mp3"));
    EXPECT_EQ(work.lastDeleteError, description);
}

TEST_F(FilesAndShell, AReadOnlyFileAndAFolderCannotBeDeleted) {
    files.addFile(u"/m/a.mp3");
    files.setReadOnly(u"/m/a.mp3");
    files.addFolder(u"/m/folder");
    EXPECT_FALSE(work.deleteFileChecked(u"/m/a.mp3"));
    EXPECT_FALSE(work.deleteFileChecked(u"/m/folder"));
    EXPECT_FALSE(work.deleteFileChecked(u""));
    EXPECT_TRUE(files.hasFile(u"/m/a.mp3"));
}

// --- the shell -----------------------------------------------------------------------------------

TEST_F(FilesAndShell, OpeningGoesToTheDesktopForThePlayListWindow) {
    EXPECT_TRUE(work.shellOpen(u"/m/folder/"));
    EXPECT_THAT(fake.shell.executions, ElementsAre(fakes::FakeShell::Execution{
                                           app.playList_Form().hWnd(), u"open", u"/m/folder/", 1}));
}

TEST_F(FilesAndShell, OpeningIsTrueWhateverTheSystemReports) {
    fake.shell.answer = 32;
    EXPECT_TRUE(work.shellOpen(u"http://norvane.example"));
    EXPECT_EQ(fake.shell.executions.size(), 1U);
}

TEST_F(FilesAndShell, StartingIsTrueWhenTheSystemReportsSuccess) {
    fake.shell.answer = 32;
    EXPECT_FALSE(work.shellStart(u"/opt/velmora/new"));
    fake.shell.answer = 33;
    EXPECT_TRUE(work.shellStart(u"/opt/velmora/new"));
    EXPECT_EQ(fake.shell.executions[1].target, u"/opt/velmora/new");
}

TEST_F(FilesAndShell, MailGoesOutWithoutAVerb) {
    work.mailTo(u"velmora@norvane.example");
    ASSERT_EQ(fake.shell.executions.size(), 1U);
    EXPECT_EQ(fake.shell.executions[0].verb, u"");
    EXPECT_EQ(fake.shell.executions[0].target, u"mailto:velmora@norvane.example");
    EXPECT_EQ(fake.shell.executions[0].showCommand, 1);
}

TEST_F(FilesAndShell, RemovingAndMakingAreCommandLinesWithAQuotedPath) {
    files.addFile(u"/tmp/a b.tmp");
    EXPECT_TRUE(work.shellDel(u"/tmp/a b.tmp"));
    EXPECT_TRUE(work.shellMd(u"/new/folder"));
    EXPECT_THAT(fake.shell.commandLines,
                ElementsAre(u"cmd /c del \"/tmp/a b.tmp\"", u"cmd /c md \"/new/folder\""));
    EXPECT_FALSE(files.hasFile(u"/tmp/a b.tmp"));
    EXPECT_TRUE(files.hasFolder(u"/new/folder"));
}

// --- what brackets an operation on the list ------------------------------------------------------

TEST_F(FilesAndShell, OperationsDisableTheListItsButtonsAndTheWayBackToTheTrack) {
    playList_Form &form = app.playList_Form();
    const auto all = [&](bool flag) {
        for (const forms::Control *control : std::initializer_list<const forms::Control *>{
                 &form.playList_Item, &form.addDir, &form.addFile, &form.delIndx, &form.delAll,
                 &form.Search, &form.Alter, &form.afresh_Load, &app.Main().song_GoTo_List})
            EXPECT_EQ(control->enabled(), flag) << control->name();
    };
    form.controlEnabled(false);
    all(false);
    EXPECT_TRUE(form.close.enabled());
    EXPECT_TRUE(form.enabled());
    form.controlEnabled(true);
    all(true);
}

TEST_F(FilesAndShell, TheButtonsKeepTheirCaptions) {
    playList_Form &form = app.playList_Form();
    form.addFile.setCaption(u"Add");
    form.controlEnabled(false);
    EXPECT_EQ(form.addFile.caption(), u"Add");
}

TEST_F(FilesAndShell, TheListWindowComesUpEmptyWithSeventeenRowsInArial) {
    playList_Form &form = app.playList_Form();
    EXPECT_EQ(form.visibleRows, 17);
    EXPECT_EQ(form.playList_Item.listCount(), 0);
    for (const forms::Font &font : {form.font(), form.playList_Item.font(), form.List1.font()}) {
        EXPECT_EQ(font.name(), u"Arial");
        EXPECT_EQ(font.size(), 8.0F);
        EXPECT_FALSE(font.bold());
    }
    EXPECT_EQ(form.windowKey(), keyColour);
}

} // namespace
} // namespace velmora
