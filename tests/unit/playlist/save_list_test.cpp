// Writing the play list file, and what failing disks leave behind.

#include "platform/contracts/ansi.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/unit/program_fixture.h"

namespace velmora {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class SavingTheList : public ProgramFixture {
protected:
    const std::u16string listFile = u"/lists/zkPlayList.m3u";
    const std::u16string oldFile = u"/lists/zkPlayList.m3u.old";

    void SetUp() override {
        app.setControl().Path_List = u"/lists";
        files.addFolder(u"/lists");
    }
    bool save(SaveKind kind = SaveKind::Settled) { return app.saveOrOpenFile().savePlayList(kind); }
    bool load() { return app.saveOrOpenFile().loadPlayList(); }
};

TEST_F(SavingTheList, AnEmptyListIsAFileOfZeroBytes) {
    EXPECT_TRUE(save());
    EXPECT_TRUE(files.hasFile(listFile));
    EXPECT_EQ(files.contents(listFile), "");
}

TEST_F(SavingTheList, EachPathIsABareLineEndedByCrLf) {
    addRowOnly(u"/m/a.mp3");
    addRowOnly(u"/m/b c.mp3");
    EXPECT_TRUE(save());
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n/m/b c.mp3\r\n");
}

TEST_F(SavingTheList, NoHeaderCommentQuoteOrNameIsWritten) {
    app.playList_Form().playList_Item.addItem(u"Another Name");
    app.playList_Form().List1.addItem(u"/m/it's \"quoted\".mp3");
    save();
    EXPECT_EQ(files.contents(listFile), "/m/it's \"quoted\".mp3\r\n");
}

TEST_F(SavingTheList, TheOrderOfTheRowsIsKept) {
    addRowOnly(u"/m/z.mp3");
    addRowOnly(u"/m/a.mp3");
    addRowOnly(u"/m/m.mp3");
    save();
    EXPECT_EQ(files.contents(listFile), "/m/z.mp3\r\n/m/a.mp3\r\n/m/m.mp3\r\n");
}

TEST_F(SavingTheList, ThePageInForceIsWritten) {
    addRowOnly(u"/音乐/晚霞.mp3");
    save();
    EXPECT_EQ(files.contents(listFile), "/音乐/晚霞.mp3\r\n");
}

TEST_F(SavingTheList, TheOldListIsReplacedWhole) {
    files.addFile(listFile, std::string(10'000, 'x'));
    addRowOnly(u"/m/a.mp3");
    save();
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n");
}

TEST_F(SavingTheList, TheLastSaveOfAnOperationIsSyncedAndAStepIsNot) {
    save(SaveKind::Step);
    EXPECT_THAT(files.changes(), ElementsAre(u"write " + listFile));
    files.clearChanges();
    save();
    EXPECT_THAT(files.changes(), ElementsAre(u"sync " + listFile));
}

TEST_F(SavingTheList, TheWholeListIsOneWrite) {
    for (int row = 0; row < 5'000; ++row)
        addRowOnly(u"/m/" + fromAscii(std::to_string(row)) + u".mp3");
    save();
    EXPECT_EQ(files.calls("writeWhole"), 1);
    EXPECT_EQ(files.contents(listFile).size(),
              5'000U * 9U + 10U + 90U * 2U + 900U * 3U + 4'000U * 4U);
}

TEST_F(SavingTheList, RowsOfEveryLengthAreWrittenWhole) {
    std::string expected;
    for (std::size_t length = 1; length <= 70; ++length) {
        addRowOnly(std::u16string(length, u'a'));
        addRowOnly(std::u16string(length, u'b') + u"晚");
        expected += std::string(length, 'a') + "\r\n" + std::string(length, 'b') + "晚\r\n";
    }
    save();
    EXPECT_EQ(files.contents(listFile), expected);
}

TEST_F(SavingTheList, EachStepWritesTheListAsItStandsThen) {
    for (const char16_t *path : {u"/m/a long name.mp3", u"/m/b.mp3", u"/m/c.mp3"})
        addRowOnly(path);
    save(SaveKind::Step);
    EXPECT_EQ(files.contents(listFile), "/m/a long name.mp3\r\n/m/b.mp3\r\n/m/c.mp3\r\n");
    app.playList_Form().List1.removeItem(0);
    save(SaveKind::Step);
    EXPECT_EQ(files.contents(listFile), "/m/b.mp3\r\n/m/c.mp3\r\n");
    app.playList_Form().List1.removeItem(0);
    save();
    EXPECT_EQ(files.contents(listFile), "/m/c.mp3\r\n");
}

TEST_F(SavingTheList, ASplitPairAtTheEndOfARowHarmsNoOtherRow) {
    app.playList_Form().playList_Item.addItem(u"a");
    app.playList_Form().List1.addItem(std::u16string(u"/m/a") + char16_t(0xD83D));
    addRowOnly(u"/m/b.mp3");
    save();
    const std::string bytes = files.contents(listFile);
    EXPECT_TRUE(bytes.ends_with("\r\n/m/b.mp3\r\n"));
}

TEST_F(SavingTheList, NamesThatAreNoTextSurviveSavingAndLoading) {
    const std::u16string odd[] = {std::u16string(u"/m/") + char16_t(0xDCFF) + u".mp3",
                                  std::u16string(u"/m/a") + char16_t(0xDC0A) + u"b.mp3",
                                  std::u16string(u"/m/a") + char16_t(0xDC0D) + u"b.mp3"};
    for (const std::u16string &path : odd)
        addRowOnly(path);
    save();
    EXPECT_TRUE(load());
    ASSERT_EQ(rows(), 3);
    for (std::int32_t row = 0; row < 3; ++row)
        EXPECT_EQ(app.playList_Form().List1.list(row), odd[row]);
}

// --- failing disks -------------------------------------------------------------------------------

TEST_F(SavingTheList, AFolderThatIsMissingIsNoMessageAndTheListGoesOn) {
    app.setControl().Path_List = u"/gone";
    addRowOnly(u"/m/a.mp3");
    EXPECT_TRUE(save());
    EXPECT_FALSE(files.hasFile(u"/gone/zkPlayList.m3u"));
    EXPECT_EQ(rows(), 1);
}

TEST_F(SavingTheList, AFolderThatNothingMayWriteToKeepsTheOldList) {
    files.addFile(listFile, "/m/old.mp3\r\n");
    files.setReadOnly(u"/lists");
    addRowOnly(u"/m/a.mp3");
    EXPECT_TRUE(save());
    EXPECT_EQ(files.contents(listFile), "/m/old.mp3\r\n");
}

TEST_F(SavingTheList, AListFileWithoutAWriteBitStays) {
    files.addFile(listFile, "/m/old.mp3\r\n");
    files.setReadOnly(listFile);
    addRowOnly(u"/m/a.mp3");
    EXPECT_TRUE(save());
    EXPECT_EQ(files.contents(listFile), "/m/old.mp3\r\n");
}

TEST_F(SavingTheList, AFullDiskAtAnyByteKeepsTheOldListWhole) {
    const std::string before = "/m/old.mp3\r\n/m/older.mp3\r\n";
    addRowOnly(u"/m/a.mp3");
    addRowOnly(u"/m/b.mp3");
    addRowOnly(u"/m/晚霞.mp3");
    const std::string after = "/m/a.mp3\r\n/m/b.mp3\r\n/m/晚霞.mp3\r\n";
    for (std::size_t space = 0; space <= after.size(); ++space) {
        files.setFreeSpace(std::nullopt);
        files.addFile(listFile, before);
        files.setFreeSpace(space);
        EXPECT_TRUE(save());
        EXPECT_EQ(files.contents(listFile), space < after.size() ? before : after) << space;
        EXPECT_EQ(rows(), 3);
    }
}

TEST_F(SavingTheList, TheListInMemoryGoesOnAndIsSavedOnceTheDiskHasRoomAgain) {
    addRowOnly(u"/m/a.mp3");
    files.setFreeSpace(0);
    save();
    addRowOnly(u"/m/b.mp3");
    files.setFreeSpace(std::nullopt);
    save();
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n/m/b.mp3\r\n");
}

TEST_F(SavingTheList, WithoutAFolderNothingIsWrittenAnywhere) {
    app.setControl().Path_List.clear();
    addRowOnly(u"/m/a.mp3");
    EXPECT_TRUE(save());
    EXPECT_THAT(files.changes(), IsEmpty());
    EXPECT_EQ(files.calls("writeWhole"), 0);
}

// --- a load that left lines behind ---------------------------------------------------------------

TEST_F(SavingTheList, AfterALoadThatBrokeOffTheFirstSaveKeepsTheOldFile) {
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n/m/c.mp3\r\n");
    files.failReadAtLine(listFile, 1);
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 1);
    save();
    EXPECT_EQ(files.contents(oldFile), "/m/a.mp3\r\n/m/b.mp3\r\n/m/c.mp3\r\n");
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n");
}

TEST_F(SavingTheList, OnlyTheFirstSaveKeepsIt) {
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n");
    files.failReadAtLine(listFile, 1);
    load();
    save();
    addRowOnly(u"/m/new.mp3");
    save();
    EXPECT_EQ(files.calls("keepAs"), 1);
    EXPECT_EQ(files.contents(oldFile), "/m/a.mp3\r\n/m/b.mp3\r\n");
}

TEST_F(SavingTheList, AListThatMayNotBeReadIsKeptAsWell) {
    files.addFile(listFile, "/m/secret.mp3\r\n");
    files.setUnreadable(listFile);
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 0);
    files.setUnreadable(listFile, false);
    save();
    EXPECT_EQ(files.contents(oldFile), "/m/secret.mp3\r\n");
}

TEST_F(SavingTheList, AListThatIsTooLongIsKeptAsWell) {
    std::string bytes;
    for (int row = 0; row < 32'768; ++row)
        bytes += "/m/" + std::to_string(row) + ".mp3\r\n";
    files.addFile(listFile, bytes);
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 32'767);
    EXPECT_EQ(app.playList_Form().List1.listCount(), 32'767);
    save(SaveKind::Step);
    EXPECT_TRUE(files.contents(oldFile) == bytes);
}

TEST_F(SavingTheList, AWholeLoadKeepsNothing) {
    files.addFile(listFile, "/m/a.mp3\r\n\r\n/m/a.mp3\r\n");
    load();
    save();
    EXPECT_EQ(files.calls("keepAs"), 0);
    EXPECT_FALSE(files.hasFile(oldFile));
}

TEST_F(SavingTheList, ALaterWholeLoadForgetsTheBrokenOne) {
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n");
    files.failReadAtLine(listFile, 1);
    load();
    files.remove(listFile);
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n");
    load();
    EXPECT_EQ(rows(), 2);
    save();
    EXPECT_EQ(files.calls("keepAs"), 0);
}

TEST_F(SavingTheList, WhereTheOldFileCannotBeKeptItIsNotReplacedEither) {
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n");
    files.failReadAtLine(listFile, 1);
    load();
    files.failNext("keepAs", ErrorNumber::DiskFull);
    EXPECT_TRUE(save());
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n/m/b.mp3\r\n");
    save();
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n");
    EXPECT_EQ(files.contents(oldFile), "/m/a.mp3\r\n/m/b.mp3\r\n");
}

TEST_F(SavingTheList, AnotherListFolderHasNothingToKeep) {
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n");
    files.failReadAtLine(listFile, 1);
    load();
    files.addFolder(u"/elsewhere");
    app.setControl().Path_List = u"/elsewhere";
    save();
    EXPECT_EQ(files.contents(u"/elsewhere/zkPlayList.m3u"), "/m/a.mp3\r\n");
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n/m/b.mp3\r\n");
    EXPECT_EQ(files.calls("keepAs"), 0);
}

TEST_F(SavingTheList, AnOldFileThatIsGoneByNowDoesNotHinderTheSave) {
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n");
    files.failReadAtLine(listFile, 1);
    load();
    files.remove(listFile);
    save();
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n");
}

TEST_F(SavingTheList, WhereItCannotBeToldWhatIsThereNothingIsReplaced) {
    files.addFile(listFile, "/m/a.mp3\r\n/m/b.mp3\r\n");
    addRowOnly(u"/m/new.mp3");
    files.failNext("FileLen", ErrorNumber::DeviceIo);
    EXPECT_TRUE(save());
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n/m/b.mp3\r\n");
    EXPECT_EQ(files.calls("writeWhole"), 0);
}

TEST_F(SavingTheList, AnEmptyOldListIsNoCopyOfALongerOne) {
    files.addFile(listFile, "");
    files.addFile(oldFile, "/m/older.mp3\r\n");
    addRowOnly(u"/m/new.mp3");
    save();
    EXPECT_EQ(files.contents(oldFile), "/m/older.mp3\r\n");
    EXPECT_TRUE(files.hasFile(oldFile + u".1"));
}

} // namespace
} // namespace velmora
