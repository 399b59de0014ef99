#include "tests/unit/playlist_window/list_fixture.h"

#include "base/run_time_error.h"
#include "lyrics/lrcForm.h"

namespace velmora {
namespace {

class Change : public ListTest {
protected:
    listControl_Form &box = app.listControl_Form();

    void choose(int row) { names.setSelected(row, true); }
    void enter(std::u16string_view text) {
        box.jieGuo.setText(text);
        box.OK_Click();
    }
};

using Rename = Change;
using Find = Change;
using Copy = Change;
using OpenFolder = Change;

TEST_F(Rename, WithoutACurrentRowNothingHappens) {
    addRow(u"/m/a.mp3");
    list.Alter_Click();
    EXPECT_FALSE(box.visible());
}

TEST_F(Rename, OffersTheNameBehindItsFirstPoint) {
    addRow(u"/m/01.Love Song.mp3");
    choose(0);
    list.Alter_Click();
    EXPECT_TRUE(box.visible());
    EXPECT_EQ(box.jieGuo.text(), u"Love Song");
    EXPECT_EQ(box.title.caption(), app.Language().msg_Rename_Title);
    EXPECT_EQ(box.showText.caption(), app.Language().msg_Rename_Prompt);
    EXPECT_EQ(box.listMode, 2);
    EXPECT_FALSE(list.enabled());
    EXPECT_FALSE(app.Main().enabled());
}

TEST_F(Rename, ThePrefixGoesToTheDisplayOnly) {
    addRow(u"/m/01.Love Song.mp3");
    choose(0);
    list.Alter_Click();
    enter(u"Hello");
    EXPECT_TRUE(files.hasFile(u"/m/Hello.mp3"));
    EXPECT_FALSE(files.hasFile(u"/m/01.Love Song.mp3"));
    EXPECT_EQ(pathRows(), Texts{u"/m/Hello.mp3"});
    EXPECT_EQ(nameRows(), Texts{u"01.Hello"});
    EXPECT_EQ(savedList(), "/m/Hello.mp3\r\n");
    EXPECT_FALSE(box.visible());
    EXPECT_TRUE(list.enabled());
    EXPECT_TRUE(app.Main().enabled());
}

TEST_F(Rename, ANameWithoutAPointIsOfferedWhole) {
    addRow(u"/m/song.mp3");
    choose(0);
    list.Alter_Click();
    EXPECT_EQ(box.jieGuo.text(), u"song");
    enter(u" new one ");
    EXPECT_EQ(nameRows(), Texts{u"new one"});
    EXPECT_TRUE(files.hasFile(u"/m/new one.mp3"));
}

TEST_F(Rename, AnExtensionOfFourLettersLosesItsPoint) {
    addRow(u"/m/x.flac");
    choose(0);
    list.Alter_Click();
    enter(u"y");
    EXPECT_TRUE(files.hasFile(u"/m/yflac"));
    EXPECT_EQ(pathRows(), Texts{u"/m/yflac"});
}

TEST_F(Rename, AnEmptyNameDoesNothing) {
    addRow(u"/m/a.mp3");
    openAndPlay(u"/m/a.mp3");
    choose(0);
    list.Alter_Click();
    enter(u"");
    EXPECT_EQ(pathRows(), Texts{u"/m/a.mp3"});
    EXPECT_TRUE(media.isOpen());
}

TEST_F(Rename, APlayingTrackIsClosedRenamedAndPlayedFromTheStart) {
    addRow(u"/m/a.mp3");
    media.addMedium(files.GetShortPathNameA(u"/m/b.mp3"));
    openAndPlay(u"/m/a.mp3");
    media.advance(5000);
    choose(0);
    list.Alter_Click();
    enter(u"b");
    EXPECT_EQ(media.openPath(), files.GetShortPathNameA(u"/m/b.mp3"));
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(media.positionMs(), 0);
}

TEST_F(Rename, TheTrackThatIsClosedForItTakesItsLyricAlong) {
    addRow(u"/m/a.mp3");
    openAndPlay(u"/m/a.mp3");
    app.player().pause_Sub();
    app.lrcForm().List1.addItem(u"[00:01]words");
    choose(0);
    list.Alter_Click();
    enter(u"b");
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0);
}

TEST_F(Rename, TheListIsStillWhileItsBoxIsUp) {
    addRow(u"/m/a.mp3");
    choose(0);
    EXPECT_TRUE(list.enabled());
    list.Alter_Click();
    EXPECT_FALSE(list.enabled());
}

TEST_F(Rename, AnExistingTargetIsReportedAndTheListsKeepTheirValues) {
    addRow(u"/m/a.mp3");
    addTrack(u"/m/b.mp3");
    openAndPlay(u"/m/a.mp3");
    choose(0);
    list.Alter_Click();
    expectError(u"File exists", app.Language().msg_Error);
    enter(u"b");
    EXPECT_EQ(pathRows(), Texts{u"/m/a.mp3"});
    EXPECT_EQ(nameRows(), Texts{u"a"});
    EXPECT_TRUE(files.hasFile(u"/m/a.mp3"));
    EXPECT_FALSE(media.isOpen()) << "the track stays closed";
}

TEST_F(Rename, CancelGivesTheWindowsBack) {
    addRow(u"/m/a.mp3");
    choose(0);
    list.Alter_Click();
    clickOn(box.Cancel);
    EXPECT_TRUE(list.enabled());
    EXPECT_TRUE(app.Main().enabled());
    EXPECT_FALSE(box.visible());
    EXPECT_EQ(pathRows(), Texts{u"/m/a.mp3"});
}

TEST_F(Find, AsksWithAnEmptyBox) {
    list.Search_Click();
    EXPECT_TRUE(box.visible());
    EXPECT_EQ(box.jieGuo.text(), u"");
    EXPECT_EQ(box.title.caption(), app.Language().msg_Find_Title);
    EXPECT_EQ(box.showText.caption(), app.Language().msg_Find_Prompt);
    EXPECT_EQ(box.listMode, 1);
    EXPECT_FALSE(list.enabled());
}

TEST_F(Find, SelectsEveryHitWithCaseAndDoesNotScroll) {
    for (int number = 0; number < 40; ++number)
        addRowOnly(u"/m/x" + std::u16string(1, static_cast<char16_t>(u'A' + number)) + u".mp3");
    addRowOnly(u"/m/Love.mp3");
    addRowOnly(u"/m/my love.mp3");
    names.setSelected(0, true);
    names.setTopIndex(3);
    list.Search_Click();
    enter(u"love");
    EXPECT_EQ(selectedNames(), Texts{u"my love"});
    EXPECT_EQ(names.topIndex(), 3);
}

TEST_F(Find, NoHitDeselectsAllWithoutAMessage) {
    addRowOnly(u"/m/a.mp3");
    names.setSelected(0, true);
    list.Search_Click();
    enter(u"zzz");
    EXPECT_EQ(names.selCount(), 0);
}

TEST_F(Find, AnEmptyTextLeavesTheSelection) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
        addRowOnly(path);
    names.setSelected(1, true);
    list.Search_Click();
    enter(u"");
    EXPECT_EQ(selectedNames(), Texts{u"b"});
}

TEST_F(Copy, AnEmptyListDoesNothingAndNoSelectionIsReported) {
    list.to_Folder();
    addRowOnly(u"/m/a.mp3");
    expectError(app.Language().msg_Select_One_File, app.Language().msg_Error);
    list.to_Folder();
}

TEST_F(Copy, EachSelectedFileGoesInListOrderThroughTheSystemsCopy) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
        addRow(path);
    choose(2);
    choose(0);
    dialogs.expectFolder(u"/usb");
    dialogs.expectCopy({});
    dialogs.expectCopy({});
    list.to_Folder();
    ASSERT_EQ(dialogs.operations.size(), 2U);
    EXPECT_EQ(dialogs.operations[0].from, std::u16string(u"/m/a.mp3") + std::u16string(2, u'\0'));
    EXPECT_EQ(dialogs.operations[1].from, std::u16string(u"/m/c.mp3") + std::u16string(2, u'\0'));
    EXPECT_EQ(dialogs.operations[0].to, std::u16string(u"/usb/") + std::u16string(2, u'\0'));
    EXPECT_EQ(dialogs.operations[0].function, 2U);
    EXPECT_EQ(dialogs.operations[0].flags, 0x40);
    EXPECT_TRUE(names.enabled());
    EXPECT_TRUE(app.Main().song_GoTo_List.enabled());
    EXPECT_FALSE(list.waitAdd.visible());
}

TEST_F(Copy, AnAbortIsReportedAndTheNextFileIsStillTried) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    choose(0);
    choose(1);
    dialogs.expectFolder(u"/usb");
    dialogs.expectCopy({0, true});
    dialogs.expectCopy({1, true}); // failed, not aborted: the service has told it itself
    expectError(app.Language().msg_Copy_Failed, app.Language().msg_Error);
    list.to_Folder();
}

TEST_F(Copy, CancelInTheFolderDialogCopiesNothing) {
    addRow(u"/m/a.mp3");
    choose(0);
    dialogs.expectFolder(std::nullopt);
    list.to_Folder();
    EXPECT_TRUE(dialogs.operations.empty());
    EXPECT_TRUE(names.enabled());
}

TEST_F(OpenFolder, ExactlyOneSelectedRowIsAskedFor) {
    list.open_Folder();
    addRow(u"/m/a.mp3");
    addRow(u"/n/b.mp3");
    expectError(app.Language().msg_One_Dir_Only, app.Language().msg_Error);
    list.open_Folder();
    choose(0);
    choose(1);
    expectError(app.Language().msg_One_Dir_Only, app.Language().msg_Error);
    list.open_Folder();
}

TEST_F(OpenFolder, OpensTheFolderOfTheCurrentRowWhichNeedNotBeTheSelectedOne) {
    addRow(u"/m/a.mp3");
    addRow(u"/n/b.mp3");
    choose(0);
    choose(1);
    names.setSelected(1, false);
    fake.shell.executions.clear();
    list.open_Folder();
    ASSERT_EQ(fake.shell.executions.size(), 1U);
    EXPECT_EQ(fake.shell.executions[0].target, u"/n/");
    EXPECT_EQ(fake.shell.executions[0].verb, u"open");
}

TEST_F(Rename, ClosesWhatIsOpenAndPlaysNothingThatDidNotPlay) {
    addRow(u"/m/a.mp3");
    media.addMedium(files.GetShortPathNameA(u"/m/b.mp3"));
    app.player().open_File(u"/m/a.mp3");
    app.lrcForm().List1.addItem(u"[00:01]line");
    choose(0);
    list.Alter_Click();
    enter(u"b");
    EXPECT_EQ(pathRows(), Texts{u"/m/b.mp3"});
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(app.lrcForm().List1.listCount(), 0) << "the lyric goes with the track";
}

TEST_F(Rename, LeavesTheFileOfARowAloneThatGoesWhileTheNextTrackBegins) {
    setVolumeBar(0);
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    addRow(u"/m/c.mp3");
    openAndPlay(u"/m/a.mp3");
    app.player().nowPlay_Index = 1;
    names.setSelected(0, false);
    choose(2);
    list.Alter_Click();
    media.reachEnd();
    bool isGone = false;
    windows.atNextPump([&] {
        names.removeItem(2);
        paths.removeItem(2);
        isGone = true;
    });
    enter(u"x");
    EXPECT_TRUE(isGone);
    EXPECT_TRUE(files.hasFile(u"/m/c.mp3"));
    EXPECT_EQ(pathRows(), (Texts{u"/m/a.mp3", u"/m/b.mp3"}));
}

TEST_F(Copy, ACopyThatFailedWithoutAnAbortIsToldByTheServiceAlone) {
    addRow(u"/m/a.mp3");
    choose(0);
    dialogs.expectFolder(u"/usb");
    dialogs.expectCopy({1, true});
    list.to_Folder();
    EXPECT_EQ(dialogs.operations.size(), 1U);
    EXPECT_THAT(windows.boxes, ::testing::IsEmpty());
}

TEST_F(OpenFolder, OpensNoneBehindItsMessage) {
    addRow(u"/m/a.mp3");
    fake.shell.executions.clear();
    expectError(app.Language().msg_One_Dir_Only, app.Language().msg_Error);
    list.open_Folder();
    EXPECT_TRUE(fake.shell.executions.empty());
}

} // namespace
} // namespace velmora
