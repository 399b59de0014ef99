// What the user sees and can do while an operation on the list runs.

#include "tests/unit/playlist_window/list_fixture.h"

namespace velmora {
namespace {

class LongWork : public ListTest {
protected:
    struct Seen {
        bool list = false;
        bool button = false;
        bool mainPlay = false;
        bool mainGoTo = false;
        bool panel = false;
        std::u16string title;
        std::u16string text;
    };
    Seen now() {
        return {names.enabled(),
                list.addFile.enabled(),
                app.Main().playButton.enabled(),
                app.Main().song_GoTo_List.enabled(),
                list.waitAdd.visible(),
                list.waitAdd_Title.caption(),
                list.waitAdd_Show.caption()};
    }
    // What each pump from now on sees.
    std::vector<Seen> &watch() {
        windows.onPump = [this] { seen_.push_back(now()); };
        return seen_;
    }
    void expectAllGivenBack() {
        EXPECT_TRUE(names.enabled());
        EXPECT_TRUE(list.addFile.enabled());
        EXPECT_TRUE(app.Main().playButton.enabled());
        EXPECT_TRUE(app.Main().song_GoTo_List.enabled());
        EXPECT_FALSE(list.waitAdd.visible());
    }

private:
    std::vector<Seen> seen_;
};

TEST_F(LongWork, TheListIsStillWhileNamesakesOfOneFileAreLookedFor) {
    addRowOnly(u"/m/a.mp3");
    addRowOnly(u"/m/b.mp3");
    dialogs.expectOpen(u"/m/a.mp3");
    const auto &seen = watch();
    list.addFile_Click();
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_FALSE(seen[0].list);
    EXPECT_FALSE(seen[0].button);
    expectAllGivenBack();
}

TEST_F(LongWork, AFolderKeepsTheListAndMainsButtonsStill) {
    files.addFile(u"/music/a.mp3");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    const auto &seen = watch();
    list.addDir_Click();
    ASSERT_EQ(seen.size(), 2U) << "for the folder, and for its file";
    EXPECT_FALSE(seen[1].list);
    EXPECT_FALSE(seen[1].button);
    EXPECT_FALSE(seen[1].mainPlay);
    EXPECT_TRUE(seen[1].panel);
    expectAllGivenBack();
}

TEST_F(LongWork, ACancelledFolderGivesEverythingBack) {
    dialogs.expectFolder(std::nullopt);
    list.addDir_Click();
    expectAllGivenBack();
}

TEST_F(LongWork, ADropKeepsTheListAndMainsButtonsStill) {
    files.addFile(u"/n/x.mp3");
    const auto &seen = watch();
    list.filesDropped({u"/n/x.mp3"}, 0);
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_FALSE(seen[0].list);
    EXPECT_FALSE(seen[0].mainPlay);
    EXPECT_TRUE(seen[0].panel);
    EXPECT_EQ(list.waitAdd_Title.caption(), app.Language().msg_Loading_Tracks);
    expectAllGivenBack();
}

TEST_F(LongWork, TheQuestionOfAFolderComesBehindTheDeselectionAndAheadOfThePanel) {
    addRowOnly(u"/m/1.mp3");
    addRowOnly(u"/m/2.mp3");
    names.setSelected(1, true);
    dialogs.expectFolder(u"/music");
    files.addFolder(u"/music");
    Seen seen;
    int selected = -1;
    int pumps = -1;
    windows.pumps = 0;
    windows.expectMsgBox({u"包含子文件夹吗？如果子文件夹过多将需要过多的时间哦！\r\n\r\n"
                          u"警告：不支持停止哦！！",
                          MsgBoxButtons::YesNo, MsgBoxIcon::None, title2011},
                         MsgBoxResult::No, [&] {
                             seen = now();
                             selected = names.selCount();
                             pumps = windows.pumps;
                         });
    list.addDir_Click();
    EXPECT_FALSE(seen.panel);
    EXPECT_FALSE(seen.list);
    EXPECT_EQ(selected, 0);
    EXPECT_GE(pumps, 2) << "one for each row";
}

TEST_F(LongWork, TheWalkPumpsAndRepaintsForEachFolderAndEachFile) {
    files.addFile(u"/music/a/x.mp3");
    files.addFile(u"/music/b/notes.txt");
    list.show();
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::Yes);
    windows.refreshes = 0;
    const auto &seen = watch();
    list.addDir_Click();
    ASSERT_EQ(seen.size(), 10U) << "for each folder twice, and for each of the four entries";
    EXPECT_EQ(windows.refreshes, 4);
    // Each pump comes ahead of its entry, so it sees the entry before.
    EXPECT_EQ(seen[2].title, u"Add Files Loading...");
    EXPECT_EQ(seen[2].text, u"Folders：1\r\n/music/a/");
    EXPECT_EQ(seen[3].text, u"Folders：2\r\n/music/b/");
    EXPECT_EQ(seen[8].title, app.Language().msg_Loading_Tracks);
    EXPECT_EQ(seen[8].text, u"/music/a/x.mp3");
}

TEST_F(LongWork, AFolderThatCannotBeReadAddsNothingAndTheWalkGoesOn) {
    files.addFile(u"/music/a/x.mp3");
    files.addFile(u"/music/b/y.mp3");
    files.setUnreadable(u"/music/a");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::Yes);
    list.addDir_Click();
    EXPECT_EQ(nameRows(), Texts{u"y"});
}

TEST_F(LongWork, WithoutItsSubfoldersAFolderOfFoldersAddsNothing) {
    files.addFile(u"/music/a/x.mp3");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    list.addDir_Click();
    EXPECT_EQ(rows(), 0);
}

TEST_F(LongWork, NamesakesOfAFolderAreEqualAndThoseOfADropContain) {
    addRowOnly(u"/music/a.mp3");
    addRowOnly(u"/music/ab.mp3");
    files.addFile(u"/music/a.mp3");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    list.addDir_Click();
    EXPECT_EQ(selectedNames(), Texts{u"a"});
    list.filesDropped({u"/music"}, 0);
    EXPECT_EQ(selectedNames(), (Texts{u"a", u"ab"}));
    EXPECT_EQ(rows(), 2);
}

TEST_F(LongWork, ANameWithoutAnExtensionIsAddedByTheDialogAlone) {
    files.addFile(u"/m/song");
    list.filesDropped({u"/m/song"}, 0);
    dialogs.expectFolder(u"/m");
    answerSubfolders(MsgBoxResult::No);
    list.addDir_Click();
    EXPECT_EQ(rows(), 0);
    dialogs.expectOpen(u"/m/song");
    list.addFile_Click();
    EXPECT_EQ(nameRows(), Texts{u"song"});
}

TEST_F(LongWork, ADropDeselectsFirst) {
    addRowOnly(u"/m/1.mp3");
    names.setSelected(0, true);
    files.addFile(u"/n/x.mp3");
    list.filesDropped({u"/n/x.mp3"}, 0);
    EXPECT_EQ(names.selCount(), 0);
}

TEST_F(LongWork, ADroppedFolderTakesMediaAloneAndPumpsAndRepaintsForEachFile) {
    files.addFile(u"/n/a.mp3");
    files.addFile(u"/n/b.txt");
    list.show();
    windows.refreshes = 0;
    const auto &seen = watch();
    list.filesDropped({u"/n"}, 0);
    EXPECT_EQ(nameRows(), Texts{u"a"});
    EXPECT_EQ(seen.size(), 3U) << "the folder and its two files";
    EXPECT_EQ(windows.refreshes, 2);
    EXPECT_EQ(seen[2].text, u"/n/a.mp3");
    EXPECT_EQ(seen[2].title, app.Language().msg_Loading_Tracks);
}

TEST_F(LongWork, ADroppedFolderWakesTheListInMidDropAndOfMainTheWayToTheListAlone) {
    files.addFile(u"/n/x.mp3");
    files.addFile(u"/m/y.mp3");
    const auto &seen = watch();
    list.filesDropped({u"/n", u"/m/y.mp3"}, 0);
    ASSERT_EQ(seen.size(), 3U);
    EXPECT_FALSE(seen[1].mainGoTo);
    EXPECT_FALSE(seen[2].panel);
    EXPECT_TRUE(seen[2].list);
    EXPECT_FALSE(seen[2].mainPlay);
    EXPECT_TRUE(seen[2].mainGoTo);
}

TEST_F(LongWork, ASecondDroppedFolderBringsThePanelBackAndStillsTheListAgain) {
    files.addFile(u"/n/x.mp3");
    files.addFile(u"/o/y.mp3");
    const auto &seen = watch();
    list.filesDropped({u"/n", u"/o"}, 0);
    ASSERT_EQ(seen.size(), 4U);
    EXPECT_FALSE(seen[2].panel) << "between the folders";
    EXPECT_TRUE(seen[3].panel);
    EXPECT_FALSE(seen[3].list);
}

TEST_F(LongWork, AFullListIsReportedForADroppedFileAndNotForADroppedFolder) {
    for (int row = 0; row < 32767; ++row) {
        names.addItem(u"x");
        paths.addItem(u"/x");
    }
    files.addFile(u"/n/a.mp3");
    list.filesDropped({u"/n"}, 0); // a box that nobody expected fails the test
    expectError(u"Overflow", title2011);
    list.filesDropped({u"/n/a.mp3"}, 0);
    EXPECT_EQ(names.listCount(), 32767);
    EXPECT_EQ(paths.listCount(), 32767);
    expectAllGivenBack();
}

// --- copying -------------------------------------------------------------------------------------

TEST_F(LongWork, CopyingTellsFromAndToAndKeepsTheListStill) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3"}) {
        addRow(path);
        names.setSelected(names.listCount() - 1, true);
    }
    list.show();
    dialogs.expectFolder(u"/usb");
    dialogs.expectCopy({});
    dialogs.expectCopy({});
    windows.refreshes = 0;
    windows.positionings.clear();
    const auto &seen = watch();
    list.to_Folder();
    ASSERT_EQ(seen.size(), 2U) << "one for each file";
    EXPECT_FALSE(seen[0].list);
    EXPECT_FALSE(seen[0].mainPlay);
    EXPECT_TRUE(seen[0].panel);
    EXPECT_EQ(seen[0].text, u"From：/m/a.mp3");
    EXPECT_EQ(seen[0].title, u"CopyFile To：/usb/");
    EXPECT_EQ(seen[1].text, u"From：/m/b.mp3");
    EXPECT_GE(windows.refreshes, 2);
    EXPECT_EQ(windows.positionings.size(), 2U) << "to the front and back";
    EXPECT_EQ(list.waitAdd_Show.caption(), u"");
    expectAllGivenBack();
}

TEST_F(LongWork, CopyingShowsItsPanelAheadOfTheFolderDialog) {
    addRow(u"/m/a.mp3");
    names.setSelected(0, true);
    list.waitAdd_Show.setCaption(u"left over");
    dialogs.expectFolder(std::nullopt);
    list.to_Folder();
    EXPECT_EQ(list.waitAdd_Title.caption(), u"CopyFile Loading...");
    EXPECT_EQ(list.waitAdd_Show.caption(), u"");
    expectAllGivenBack();
    EXPECT_EQ(dialogs.browses.at(0).title, app.Language().msg_Select_Folder);
    EXPECT_EQ(dialogs.browses.at(0).owner, list.hWnd());
}

// --- renaming ------------------------------------------------------------------------------------

TEST_F(LongWork, ARenamingKeepsMainStillUntilTheTrackPlaysAgain) {
    addRow(u"/m/a.mp3");
    media.addMedium(files.GetShortPathNameA(u"/m/b.mp3"));
    setVolumeBar(10);
    openAndPlay(u"/m/a.mp3");
    names.setSelected(0, true);
    list.Alter_Click();
    app.listControl_Form().jieGuo.setText(u"b");
    const auto &seen = watch();
    app.listControl_Form().OK_Click();
    ASSERT_FALSE(seen.empty()) << "the fade lets events in";
    EXPECT_FALSE(seen.front().mainPlay);
    expectAllGivenBack();
}

// --- removing ------------------------------------------------------------------------------------

TEST_F(LongWork, EachRemovedRowIsSavedBeforeTheNextOneGoes) {
    for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"}) {
        addRow(path);
        names.setSelected(names.listCount() - 1, true);
    }
    std::vector<std::string> saved;
    windows.onPump = [&] {
        saved.push_back(files.hasFile(listFile()) ? savedList() : std::string("none"));
    };
    answerSure(MsgBoxResult::Yes);
    list.delOne(0, false);
    EXPECT_EQ(saved,
              (std::vector<std::string>{"none", "/m/b.mp3\r\n/m/c.mp3\r\n", "/m/c.mp3\r\n"}));
    EXPECT_EQ(savedList(), "");
}

TEST_F(LongWork, RemovingFromTheDiskNamesEachFileAndRepaints) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    list.show();
    windows.refreshes = 0;
    const auto &seen = watch();
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, true);
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_TRUE(seen[1].panel);
    EXPECT_EQ(seen[1].title, u"Form the Hard-Drive removeing,Please wait...");
    EXPECT_EQ(seen[1].text, u"/m/a.mp3");
    EXPECT_EQ(windows.refreshes, 2);
    expectAllGivenBack();
}

TEST_F(LongWork, ARemovalKeepsMainStillFromItsQuestionOn) {
    for (const int mode : {0, 1}) {
        addRow(u"/m/a.mp3");
        names.setSelected(0, true);
        bool playWhileAsked = true;
        windows.expectMsgBox(
            {u"是否决定该操作？", MsgBoxButtons::YesNo, MsgBoxIcon::None, title2011},
            MsgBoxResult::Yes, [&] { playWhileAsked = app.Main().playButton.enabled(); });
        const auto &seen = watch();
        list.delOne(static_cast<std::int16_t>(mode), false);
        EXPECT_FALSE(playWhileAsked);
        ASSERT_FALSE(seen.empty());
        EXPECT_FALSE(seen.back().mainPlay);
        expectAllGivenBack();
    }
}

TEST_F(LongWork, AnAnswerOfNoAndAnEmptyChoiceGiveMainBack) {
    addRow(u"/m/a.mp3");
    answerSure(MsgBoxResult::No);
    list.delOne(1, false);
    expectAllGivenBack();
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    expectAllGivenBack();
    answerSure(MsgBoxResult::No);
    list.delAll_Click();
    expectAllGivenBack();
}

TEST_F(LongWork, ClearingKeepsMainStillWhileItAsks) {
    bool play = true;
    windows.expectMsgBox({u"是否决定该操作？", MsgBoxButtons::YesNo, MsgBoxIcon::None, title2011},
                         MsgBoxResult::Yes, [&] { play = app.Main().playButton.enabled(); });
    list.delAll_Click();
    EXPECT_FALSE(play);
    expectAllGivenBack();
}

TEST_F(LongWork, ADeletionsReportIsThisTextWhole) {
    addRow(u"/m/a.mp3");
    addRow(u"/m/b.mp3");
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, true);
    const std::string rule(66, '-');
    const std::time_t now = fake.clock.now();
    EXPECT_EQ(files.contents(app.setControl().Path_DelFilesLog + u"/delFile.log"),
              "Velmora 2011\r\n" + rule + "\r\nDelFiles List:\r\n" +
                  toUtf8(fake.clock.shortDate(now) + u" " + fake.clock.shortTime(now)) + "\r\n" +
                  rule + "\r\n\r\n【Successful】：\r\n    /m/a.mp3\r\n【Successful】：\r\n" +
                  "    /m/b.mp3\r\n");
}

} // namespace
} // namespace velmora
