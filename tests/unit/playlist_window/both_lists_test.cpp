// Names and paths are two lists: which of the two changes first in each operation.

#include "tests/unit/playlist_window/list_fixture.h"

namespace velmora {
namespace {

class BothLists : public ListTest {
protected:
    BothLists() { list.show(); }
    // The lists whose rows changed, in order, since the last call.
    std::vector<std::string> changed() {
        std::vector<std::string> controls;
        auto &told = fakes::FakeWindows::windowOf(list)->told;
        for (const auto &one : told)
            if (one.change == forms::Change::Rows)
                controls.push_back(one.control);
        told.clear();
        return controls;
    }
    const std::vector<std::string> namesFirst{"playList_Item", "List1"};
    const std::vector<std::string> pathsFirst{"List1", "playList_Item"};
};

TEST_F(BothLists, OneFileGoesToTheNamesFirst) {
    dialogs.expectOpen(u"/m/a.mp3");
    changed();
    list.addFile_Click();
    EXPECT_EQ(changed(), namesFirst);
}

TEST_F(BothLists, AFilesOfAFolderGoToThePathsFirst) {
    files.addFile(u"/music/a.mp3");
    dialogs.expectFolder(u"/music");
    answerSubfolders(MsgBoxResult::No);
    changed();
    list.addDir_Click();
    EXPECT_EQ(changed(), pathsFirst);
}

TEST_F(BothLists, ADroppedFileGoesToTheNamesFirst) {
    files.addFile(u"/n/a.mp3");
    changed();
    list.filesDropped({u"/n/a.mp3"}, 0);
    EXPECT_EQ(changed(), namesFirst);
}

TEST_F(BothLists, AFileOfADroppedFolderGoesToThePathsFirst) {
    files.addFile(u"/n/a.mp3");
    changed();
    list.filesDropped({u"/n"}, 0);
    EXPECT_EQ(changed(), pathsFirst);
}

TEST_F(BothLists, ARemovedRowLeavesTheNamesFirst) {
    addRow(u"/m/a.mp3");
    for (const std::int16_t mode : {std::int16_t{0}, std::int16_t{1}}) {
        if (rows() == 0)
            addRow(u"/m/a.mp3");
        names.setSelected(0, true);
        answerSure(MsgBoxResult::Yes);
        changed();
        list.delOne(mode, false);
        EXPECT_EQ(changed(), namesFirst);
    }
}

TEST_F(BothLists, ClearingEmptiesTheNamesFirst) {
    addRow(u"/m/a.mp3");
    answerSure(MsgBoxResult::Yes);
    changed();
    list.delAll_Click();
    EXPECT_EQ(changed(), namesFirst);
}

TEST_F(BothLists, ARenamedFilesPathChangesAheadOfItsName) {
    addRow(u"/m/a.mp3");
    names.setSelected(0, true);
    list.Alter_Click();
    app.listControl_Form().jieGuo.setText(u"b");
    changed();
    clickOn(app.listControl_Form().OK);
    EXPECT_EQ(changed(), pathsFirst);
}

} // namespace
} // namespace velmora
