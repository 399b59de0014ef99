// A list file that this run has neither read to its end nor written is put aside before a save goes
// over it, in whatever way it came there.

#include "playlist/saveOrOpenFile.h"
#include "tests/unit/program_fixture.h"

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AListFileNotReadInThisRun : public ProgramFixture {
protected:
    const std::u16string listFile = u"/lists/zkPlayList.m3u";
    const std::u16string oldFile = listFile + u".old";
    const std::string others = "/m/1.mp3\r\n/m/2.mp3\r\n";

    void SetUp() override {
        app.setControl().Path_List = u"/lists";
        files.addFolder(u"/lists");
    }
    bool save(SaveKind kind = SaveKind::Settled) { return app.saveOrOpenFile().savePlayList(kind); }
    bool load() { return app.saveOrOpenFile().loadPlayList(); }
    // The others' list lies aside, and in its place the one that was saved.
    void expectKeptAndSaved(const std::string &list) {
        EXPECT_EQ(files.contents(oldFile), others);
        EXPECT_EQ(files.contents(listFile), list);
    }
    Texts kept() {
        Texts texts;
        for (const std::u16string &path : files.files())
            if (contains(path, u".old"))
                texts.push_back(path);
        return texts;
    }
};

// --- how it came there ---------------------------------------------------------------------------

TEST_F(AListFileNotReadInThisRun, BecauseItsFolderCameAfterTheLoadIsKept) {
    files.remove(u"/lists");
    EXPECT_FALSE(load());
    files.addFile(listFile, others);
    addRowOnly(u"/m/a.mp3");
    save();
    expectKeptAndSaved("/m/a.mp3\r\n");
}

TEST_F(AListFileNotReadInThisRun, BecauseTheListNowLiesInAnotherFolderIsKept) {
    files.addFile(listFile, others);
    EXPECT_TRUE(load());
    files.addFile(u"/before/zkPlayList.m3u", "/m/before.mp3\r\n");
    app.setControl().Path_List = u"/before";
    save();
    EXPECT_EQ(files.contents(u"/before/zkPlayList.m3u.old"), "/m/before.mp3\r\n");
    EXPECT_EQ(files.contents(u"/before/zkPlayList.m3u"), others);
    EXPECT_EQ(files.contents(listFile), others);
    EXPECT_THAT(kept(), ElementsAre(u"/before/zkPlayList.m3u.old"));
}

TEST_F(AListFileNotReadInThisRun, BecauseADiskWasMountedOverTheWrittenOneIsKept) {
    EXPECT_FALSE(load());
    addRowOnly(u"/m/a.mp3");
    save(); // into the empty folder that the disk will cover
    files.addFile(listFile, others);
    addRowOnly(u"/m/b.mp3");
    save();
    expectKeptAndSaved("/m/a.mp3\r\n/m/b.mp3\r\n");
}

TEST_F(AListFileNotReadInThisRun, BecauseTheDiskGaveNoAnswerIsNotTakenForAbsent) {
    files.addFile(listFile, others);
    files.setUnreachable(listFile);
    EXPECT_FALSE(load());
    addRowOnly(u"/m/a.mp3");
    save();
    files.setUnreachable(listFile, false);
    EXPECT_EQ(files.contents(listFile), others);
    save();
    expectKeptAndSaved("/m/a.mp3\r\n");
}

TEST_F(AListFileNotReadInThisRun, ButWrittenByItIsJustReplaced) {
    addRowOnly(u"/m/a.mp3");
    save();
    addRowOnly(u"/m/b.mp3");
    save(SaveKind::Step);
    save();
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n/m/b.mp3\r\n");
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(AListFileNotReadInThisRun, IsNoneThatWasReadAndThenSavedInTheOtherSpellingOfItsFolder) {
    files.addFile(listFile, others);
    load();
    addRowOnly(u"/m/a.mp3");
    for (const char16_t *folder : {u"/lists/", u"/lists//", u"//lists"}) {
        app.setControl().Path_List = folder;
        save();
    }
    EXPECT_EQ(files.contents(listFile), others + "/m/a.mp3\r\n");
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(AListFileNotReadInThisRun, ToItsEndIsKeptInWhateverWayItsFolderIsSpelt) {
    files.addFile(listFile, others);
    files.failReadAtLine(listFile, 1);
    load();
    app.setControl().Path_List = u"/lists/";
    save();
    expectKeptAndSaved("/m/1.mp3\r\n");
}

// --- where it is kept ----------------------------------------------------------------------------

TEST_F(AListFileNotReadInThisRun, NeverTakesThePlaceOfOneKeptBefore) {
    files.addFile(oldFile, "/m/first.mp3\r\n");
    files.addFile(listFile, others);
    addRowOnly(u"/m/a.mp3");
    save();
    EXPECT_EQ(files.contents(oldFile), "/m/first.mp3\r\n");
    EXPECT_EQ(files.contents(oldFile + u".1"), others);
    EXPECT_THAT(kept(), ElementsAre(oldFile, oldFile + u".1")) << "kept once";
    EXPECT_EQ(files.contents(listFile), "/m/a.mp3\r\n");
}

TEST_F(AListFileNotReadInThisRun, IsKeptBesideOneThatDiffersInASingleByteWhereverThatIs) {
    for (const std::size_t place : {std::size_t{0}, others.size() / 2, others.size() - 1}) {
        std::string almost = others;
        almost[place] = '#';
        files.addFile(oldFile, almost);
        files.addFile(listFile, others);
        Velmora other(fake.bundle());
        other.setControl().Path_List = u"/lists";
        other.saveOrOpenFile().savePlayList();
        EXPECT_EQ(files.contents(oldFile), almost) << place;
        EXPECT_EQ(files.contents(oldFile + u".1"), others) << place;
        files.remove(oldFile + u".1");
    }
}

TEST_F(AListFileNotReadInThisRun, IsKeptBesideOneOfItsLengthThatCannotBeRead) {
    for (const auto refuses :
         {&fakes::FakeFiles::setUnreadable, &fakes::FakeFiles::setUnreachable}) {
        files.addFile(oldFile, std::string(others.size(), '#'));
        files.addFile(listFile, others);
        (files.*refuses)(oldFile, true);
        Velmora other(fake.bundle());
        other.setControl().Path_List = u"/lists";
        other.saveOrOpenFile().savePlayList();
        (files.*refuses)(oldFile, false);
        EXPECT_EQ(files.contents(oldFile), std::string(others.size(), '#'));
        EXPECT_EQ(files.contents(oldFile + u".1"), others);
        files.remove(oldFile + u".1");
    }
}

TEST_F(AListFileNotReadInThisRun, LeavesTheLastPlaceToWhatIsKeptThereWhileAnotherIsFree) {
    for (const auto *kept : {u"", u".1", u".3", u".9"})
        files.addFile(oldFile + kept, "/m/earlier.mp3\r\n");
    files.addFile(listFile, others);
    save();
    EXPECT_EQ(files.contents(oldFile + u".2"), others);
    EXPECT_EQ(files.contents(oldFile + u".9"), "/m/earlier.mp3\r\n");
    EXPECT_EQ(kept().size(), 5U);
}

TEST_F(AListFileNotReadInThisRun, IsKeptOnceHoweverOftenTheSaveBehindItFails) {
    for (int run = 0; run < 3; ++run) {
        Velmora other(fake.bundle());
        other.setControl().Path_List = u"/lists";
        files.addFile(listFile, others);
        files.failNext("writeWhole", ErrorNumber::DiskFull);
        other.saveOrOpenFile().savePlayList();
        EXPECT_EQ(files.contents(listFile), others);
        EXPECT_THAT(kept(), ElementsAre(oldFile));
    }
}

TEST_F(AListFileNotReadInThisRun, TakesTheLastOfTenPlacesWhenAllAreTaken) {
    files.addFile(oldFile, "0");
    for (char16_t number = u'1'; number <= u'9'; ++number)
        files.addFile(oldFile + u"." + number, std::string(1, static_cast<char>(number)));
    files.addFile(listFile, others);
    save();
    EXPECT_EQ(files.contents(oldFile), "0");
    EXPECT_EQ(files.contents(oldFile + u".8"), "8");
    EXPECT_EQ(files.contents(oldFile + u".9"), others);
    EXPECT_EQ(kept().size(), 10U);
    EXPECT_EQ(files.contents(listFile), "");
}

TEST_F(AListFileNotReadInThisRun, StaysWhereThereIsNoRoomToKeepIt) {
    files.addFile(listFile, others);
    addRowOnly(u"/m/a.mp3");
    files.setFreeSpace(others.size() - 1);
    save();
    EXPECT_EQ(files.contents(listFile), others);
    EXPECT_THAT(kept(), IsEmpty());
    files.setFreeSpace(std::nullopt);
    save();
    expectKeptAndSaved("/m/a.mp3\r\n");
}

TEST_F(AListFileNotReadInThisRun, StaysAndIsNotCopiedWhereItMayNotBeReplaced) {
    files.addFile(listFile, others);
    files.setReadOnly(listFile);
    addRowOnly(u"/m/a.mp3");
    save();
    save();
    EXPECT_EQ(files.contents(listFile), others);
    EXPECT_THAT(kept(), IsEmpty());
}

// --- in another case -----------------------------------------------------------------------------

class AListFileInAnotherCase : public AListFileNotReadInThisRun {
protected:
    const std::u16string found = u"/lists/ZKPLAYLIST.M3U";
    void SetUp() override {
        AListFileNotReadInThisRun::SetUp();
        files.addFile(found, others);
    }
};

TEST_F(AListFileInAnotherCase, IsReadAndSavedUnderItsOwnName) {
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 2);
    addRowOnly(u"/m/a.mp3");
    save();
    EXPECT_THAT(files.files(), ElementsAre(found));
    EXPECT_EQ(files.contents(found), others + "/m/a.mp3\r\n");
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 3);
}

TEST_F(AListFileInAnotherCase, IsKeptBesideItselfWhenItWasNotRead) {
    addRowOnly(u"/m/a.mp3");
    save();
    EXPECT_THAT(files.files(), ElementsAre(found, found + u".old"));
    EXPECT_EQ(files.contents(found + u".old"), others);
    EXPECT_EQ(files.contents(found), "/m/a.mp3\r\n");
}

TEST_F(AListFileInAnotherCase, StandsBackBehindTheExactName) {
    files.addFile(listFile, "/m/exact.mp3\r\n");
    EXPECT_TRUE(load());
    EXPECT_EQ(rows(), 1);
    addRowOnly(u"/m/a.mp3");
    save();
    EXPECT_EQ(files.contents(listFile), "/m/exact.mp3\r\n/m/a.mp3\r\n");
    EXPECT_EQ(files.contents(found), others);
}

} // namespace
} // namespace velmora
