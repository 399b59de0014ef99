#include "tests/unit/playlist_window/list_fixture.h"

#include "playlist/saveOrOpenFile.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

class Remove : public ListTest {
protected:
    Remove() {
        for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3", u"/m/d.mp3"})
            addRow(path);
    }
    void select(std::initializer_list<int> wanted) {
        for (const int row : wanted)
            names.setSelected(row, true);
    }
    std::u16string reportFile() { return app.setControl().Path_DelFilesLog + u"/delFile.log"; }
};

TEST_F(Remove, ClearingAsksAndNoLeavesEverything) {
    answerSure(MsgBoxResult::No);
    list.delAll_Click();
    EXPECT_EQ(rows(), 4);
}

TEST_F(Remove, ClearingEmptiesListAndFileAndTheMusicGoesOn) {
    openAndPlay(u"/m/a.mp3");
    answerSure(MsgBoxResult::Yes);
    list.delAll_Click();
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(paths.listCount(), 0);
    EXPECT_EQ(savedList(), "");
    EXPECT_EQ(media.mode(), u"playing");
}

TEST_F(Remove, AnythingButYesStops) {
    select({1});
    answerSure(MsgBoxResult::No);
    list.delOne(0, false);
    EXPECT_EQ(rows(), 4);
    EXPECT_FALSE(list.waitAdd.visible());
}

TEST_F(Remove, FromTheListKeepsTheFilesAndTheMusic) {
    openAndPlay(u"/m/b.mp3");
    app.player().nowPlay_Index = 4;
    select({1, 3});
    answerSure(MsgBoxResult::Yes);
    list.delOne(0, false);
    EXPECT_EQ(nameRows(), (Texts{u"a", u"c"}));
    EXPECT_EQ(pathRows(), (Texts{u"/m/a.mp3", u"/m/c.mp3"}));
    EXPECT_TRUE(files.hasFile(u"/m/b.mp3"));
    EXPECT_EQ(media.mode(), u"playing");
    EXPECT_EQ(app.player().nowPlay_Index, 4);
    EXPECT_EQ(names.selCount(), 0);
}

TEST_F(Remove, SavesAfterEachRow) {
    select({0, 1, 2});
    answerSure(MsgBoxResult::Yes);
    files.clearChanges();
    list.delOne(0, false);
    int saves = 0;
    for (const std::u16string &change : files.changes())
        saves += contains(change, u"zkPlayList.m3u") ? 1 : 0;
    EXPECT_GE(saves, 3);
    EXPECT_EQ(savedList(), "/m/d.mp3\r\n");
}

TEST_F(Remove, IsSavedForGoodWithItsLastRowAndNoOther) {
    for (const bool several : {false, true}) {
        select({0});
        if (several)
            select({1, 2});
        files.clearChanges();
        answerSure(MsgBoxResult::Yes);
        list.delOne(0, false);
        const auto &changes = files.changes();
        ASSERT_EQ(changes.size(), several ? 3U : 1U);
        for (std::size_t at = 0; at < changes.size(); ++at)
            EXPECT_EQ(startsWith(changes[at], u"sync "), at + 1 == changes.size()) << at;
    }
}

TEST_F(Remove, TheButtonSavesOnceMore) {
    answerSure(MsgBoxResult::Yes);
    list.delIndx_Click();
    EXPECT_EQ(savedList(), "/m/a.mp3\r\n/m/b.mp3\r\n/m/c.mp3\r\n/m/d.mp3\r\n");
}

TEST_F(Remove, WithNothingSelectedOnlyThePanelComesAndGoes) {
    answerSure(MsgBoxResult::Yes);
    list.delOne(0, false);
    EXPECT_EQ(rows(), 4);
    EXPECT_FALSE(list.waitAdd.visible());
}

TEST_F(Remove, TheListStaysEnabledUnderThePanel) {
    select({0});
    bool enabled = false;
    bool panel = false;
    answerSure(MsgBoxResult::Yes);
    windows.atNextPump([&] {
        enabled = names.enabled();
        panel = list.waitAdd.visible();
    });
    list.delOne(0, false);
    EXPECT_TRUE(enabled);
    EXPECT_TRUE(panel);
    EXPECT_EQ(list.waitAdd_Title.caption(), u"Delete (to delete from the list),Please wait...");
    EXPECT_EQ(list.waitAdd_Show.caption(), u"/m/a.mp3");
}

TEST_F(Remove, ASelectionLostInAPumpEndsTheLoop) {
    select({0, 1});
    answerSure(MsgBoxResult::Yes);
    windows.atNextPump([] {});
    windows.atNextPump([&] { names.setSelected(0, false); });
    list.delOne(0, false);
    EXPECT_EQ(rows(), 3);
}

TEST_F(Remove, FromTheDiskClosesTheTrackFirstEvenForOtherFiles) {
    openAndPlay(u"/m/a.mp3");
    names.setSelected(0, false); // opening has selected it
    select({2});
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    EXPECT_FALSE(media.isOpen());
    EXPECT_FALSE(files.hasFile(u"/m/c.mp3"));
    EXPECT_TRUE(files.hasFile(u"/m/a.mp3"));
}

TEST_F(Remove, FromTheDiskClosesTheTrackEvenWithNothingSelected) {
    openAndPlay(u"/m/a.mp3");
    names.setSelected(0, false); // opening has selected it
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    EXPECT_FALSE(media.isOpen());
    EXPECT_EQ(rows(), 4);
    EXPECT_FALSE(files.hasFile(reportFile()));
}

TEST_F(Remove, AllFromTheDiskSelectsEveryRow) {
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, true);
    EXPECT_EQ(rows(), 0);
    EXPECT_FALSE(files.hasFile(u"/m/a.mp3"));
    EXPECT_FALSE(files.hasFile(u"/m/d.mp3"));
}

TEST_F(Remove, TheReportTellsSuccessAndFailureAndIsOpened) {
    files.setReadOnly(u"/m/b.mp3");
    select({0, 1});
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    const std::string report = files.contents(reportFile());
    const std::string rule(66, '-');
    const std::string head = "Velmora 2011\r\n" + rule + "\r\nDelFiles List:\r\n";
    EXPECT_EQ(report.substr(0, head.size()), head);
    EXPECT_NE(report.find(rule + "\r\n\r\n【Successful】：\r\n    /m/a.mp3"), std::string::npos);
    EXPECT_NE(report.find("\r\n【Unsuccessful】： ---->" +
                          toUtf8(app.saveOrOpenFile().lastDeleteError) + "\r\n    /m/b.mp3"),
              std::string::npos);
    EXPECT_FALSE(app.saveOrOpenFile().lastDeleteError.empty());
    // The failed one leaves the list all the same.
    EXPECT_EQ(nameRows(), (Texts{u"c", u"d"}));
    ASSERT_FALSE(fake.shell.executions.empty());
    EXPECT_EQ(fake.shell.executions.back().target, reportFile());
}

TEST_F(Remove, ASecondReportHoldsOnlyItsOwnDeletion) {
    select({0});
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    select({0});
    answerSure(MsgBoxResult::Yes);
    list.delOne(1, false);
    const std::string report = files.contents(reportFile());
    EXPECT_EQ(report.find("/m/a.mp3"), std::string::npos);
    EXPECT_NE(report.find("/m/b.mp3"), std::string::npos);
}

TEST_F(Remove, AReportThatCannotBeWrittenOpensNothing) {
    files.failNext("writeWhole"); // the list's own save is the first
    files.setReadOnly(app.setControl().Path_DelFilesLog);
    select({0});
    answerSure(MsgBoxResult::Yes);
    fake.shell.executions.clear();
    list.delOne(1, false);
    EXPECT_TRUE(fake.shell.executions.empty());
}

TEST_F(Remove, ShiftDeleteRunsBothAndAsksTwice) {
    select({0});
    answerSure(MsgBoxResult::Yes);
    answerSure(MsgBoxResult::Yes);
    forms::KeyEvent key{46, 1};
    names.on().KeyDown(key);
    EXPECT_EQ(rows(), 3);
    EXPECT_FALSE(files.hasFile(u"/m/a.mp3"));
    EXPECT_EQ(windows.boxes.size(), 2U);
}

TEST_F(Remove, ShiftAndCtrlTogetherWithDeleteOnlyRemove) {
    select({0});
    answerSure(MsgBoxResult::Yes);
    forms::KeyEvent key{46, 3};
    names.on().KeyDown(key);
    EXPECT_TRUE(files.hasFile(u"/m/a.mp3"));
    EXPECT_EQ(rows(), 3);
}

TEST_F(Remove, TheEndOfTheProgramInsideADeletionStopsItThere) {
    select({0, 1, 2});
    answerSure(MsgBoxResult::Yes);
    windows.atNextPump([] {});
    windows.atNextPump([&] { app.formSet().form_KeyDown(27, 0, u"main"); });
    EXPECT_THROW(list.delOne(1, false), fakes::ProcessEnded);
    EXPECT_FALSE(files.hasFile(u"/m/a.mp3"));
    EXPECT_TRUE(files.hasFile(u"/m/b.mp3"));
    EXPECT_EQ(savedList(), "/m/b.mp3\r\n/m/c.mp3\r\n/m/d.mp3\r\n");
}

} // namespace
} // namespace velmora
