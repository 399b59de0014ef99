// Names that are hard to write down, through every operation of the list: list, file of the list
// and disk tell the same story all the time.

#include "tests/unit/playlist_window/list_fixture.h"

#include "playlist/saveOrOpenFile.h"

namespace velmora {
namespace {

class HardNames : public ListTest {
protected:
    // Without extension. None has a point, or a blank or quote at its ends.
    static std::vector<std::u16string> stems() {
        return {
            u"a \"quoted\" name",
            u"it's",
            u"back\\slash",
            u"50%20of %d",
            u"שלום \u202Eabc",
            u"\U0001F3B5 notes \U0001F3B6",
            u"one,two;three|four",
            u"* ? <>",
            u"曲目 名",
            u"e\u0301 and \u00E9",
            std::u16string(251, u'n'),
            std::u16string(u"bytes ") + char16_t{0xDCFF} + char16_t{0xDC80} + u" that are no text",
            std::u16string(u"line") + char16_t{0xDC0D} + char16_t{0xDC0A} + u"break",
        };
    }
    static std::u16string pathOf(const std::u16string &stem) { return u"/m/" + stem + u".mp3"; }
    Texts allPaths() {
        Texts all;
        for (const std::u16string &stem : stems())
            all.push_back(pathOf(stem));
        return all;
    }
    void makeFiles() {
        for (const std::u16string &path : allPaths())
            files.addFile(path);
    }
    void addAll() {
        makeFiles();
        list.filesDropped(allPaths(), 0);
    }
    // Reads the list's file into the list again; the rows must not change.
    void expectFileToTellTheSame() {
        const Texts names_ = nameRows();
        const Texts paths_ = pathRows();
        ASSERT_TRUE(app.saveOrOpenFile().loadPlayList());
        EXPECT_EQ(pathRows(), paths_);
        EXPECT_EQ(nameRows(), names_);
    }
};

TEST_F(HardNames, AreTakenFromAFolderWhole) {
    makeFiles();
    dialogs.expectFolder(u"/m");
    answerSubfolders(MsgBoxResult::No);
    list.addDir_Click();
    EXPECT_THAT(pathRows(), testing::UnorderedElementsAreArray(allPaths()));
    EXPECT_THAT(nameRows(), testing::UnorderedElementsAreArray(stems()));
    expectFileToTellTheSame();
}

TEST_F(HardNames, AreTakenByADropEachBeforeTheLast) {
    addAll();
    Texts expected = allPaths();
    std::reverse(expected.begin(), expected.end());
    EXPECT_EQ(pathRows(), expected);
    expectFileToTellTheSame();
}

TEST_F(HardNames, AreKnownAsTheSameWhenTheyComeAgain) {
    addAll();
    list.filesDropped(allPaths(), 0);
    EXPECT_EQ(rows(), static_cast<std::int16_t>(stems().size()));
    EXPECT_EQ(names.selCount(), rows());
}

TEST_F(HardNames, CanBeTheNewNameOfAFile) {
    for (const std::u16string &stem : stems()) {
        files.addFile(u"/m/plain.mp3");
        addRowOnly(u"/m/plain.mp3");
        names.setSelected(rows() - 1, true);
        list.Alter_Click();
        app.listControl_Form().jieGuo.setText(stem);
        clickOn(app.listControl_Form().OK);
        EXPECT_TRUE(files.hasFile(pathOf(stem))) << toUtf8(stem);
        EXPECT_EQ(paths.list(rows() - 1), pathOf(stem));
        EXPECT_EQ(names.list(rows() - 1), stem);
    }
    expectFileToTellTheSame();
}

TEST_F(HardNames, CanBeRenamed) {
    addAll();
    int number = 0;
    for (std::int32_t row = 0; row < rows(); ++row) {
        const std::u16string before = paths.list(row);
        names.setSelected(row, true);
        list.Alter_Click();
        EXPECT_EQ(app.listControl_Form().jieGuo.text(), names.list(row).substr(0, 100));
        app.listControl_Form().jieGuo.setText(u"n" + std::u16string(1, u'a' + number++));
        clickOn(app.listControl_Form().OK);
        EXPECT_FALSE(files.hasFile(before));
        EXPECT_TRUE(files.hasFile(paths.list(row)));
    }
    expectFileToTellTheSame();
}

TEST_F(HardNames, AreCopiedUnderTheirOwnNames) {
    addAll();
    for (std::int32_t row = 0; row < rows(); ++row) {
        names.setSelected(row, true);
        dialogs.expectCopy({});
    }
    dialogs.expectFolder(u"/usb");
    list.to_Folder();
    ASSERT_EQ(dialogs.operations.size(), stems().size());
    for (std::int32_t row = 0; row < rows(); ++row) {
        EXPECT_EQ(dialogs.operations[static_cast<std::size_t>(row)].from,
                  paths.list(row) + std::u16string(2, u'\0'));
    }
}

TEST_F(HardNames, AreDeletedOneByOneWithListAndDiskInStep) {
    addAll();
    answerSure(MsgBoxResult::Yes);
    windows.onPump = [&] {
        std::size_t lines = 0;
        const std::string saved = savedList();
        for (auto at = saved.find("\r\n"); at != std::string::npos; at = saved.find("\r\n", at + 1))
            ++lines;
        EXPECT_EQ(lines, static_cast<std::size_t>(rows()));
        for (const std::u16string &path : pathRows())
            EXPECT_TRUE(files.hasFile(path));
    };
    list.delOne(1, true);
    windows.onPump = {};
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(savedList(), "");
    for (const std::u16string &path : allPaths())
        EXPECT_FALSE(files.hasFile(path));
    const std::string report = files.contents(app.setControl().Path_DelFilesLog + u"/delFile.log");
    EXPECT_EQ(report.find("【Unsuccessful】"), std::string::npos);
    for (const std::u16string &path : allPaths())
        EXPECT_NE(report.find("\r\n    " + fake.ansi.encode(path) + "\r\n"), std::string::npos);
}

TEST_F(HardNames, AreFoundAndShownWhole) {
    addAll();
    for (const std::u16string &stem : stems()) {
        list.Search_Click();
        app.listControl_Form().jieGuo.setText(stem);
        clickOn(app.listControl_Form().OK);
        EXPECT_EQ(selectedNames(), Texts{stem});
    }
    for (std::int32_t row = 0; row < rows(); ++row) {
        names.on().MouseMove({0, 0, 10, names.rowHeight() * (static_cast<Twips>(row) + 0.5F)});
        EXPECT_EQ(names.toolTip(), paths.list(row));
    }
}

} // namespace
} // namespace velmora
