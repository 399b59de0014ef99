// What asks for a save while the play list file is being read.

#include "playlist/saveOrOpenFile.h"
#include "tests/unit/program_fixture.h"

namespace velmora {
namespace {

constexpr auto listFile = u"/lists/zkPlayList.m3u";

class LoadMeanwhile : public ProgramFixture {
protected:
    LoadMeanwhile() {
        app.setControl().Path_List = u"/lists";
        files.addFile(listFile, "/m/1.mp3\r\n/m/2.mp3\r\n/m/3.mp3\r\n");
        addTrack(u"/m/new.mp3");
    }
    bool load() { return app.saveOrOpenFile().loadPlayList(); }
};

TEST_F(LoadMeanwhile, AFileThatIsTakenInDoesNotPutHalfAListOverTheWholeOne) {
    std::string afterwards;
    windows.atNextPump([] {});
    windows.atNextPump([] {}); // ahead of the first line
    windows.atNextPump([&] {
        app.Main().take_Chosen_File(u"/m/new.mp3");
        afterwards = files.contents(listFile);
    });
    EXPECT_TRUE(load());
    EXPECT_EQ(afterwards, "/m/1.mp3\r\n/m/2.mp3\r\n/m/3.mp3\r\n");
    EXPECT_EQ(files.contents(listFile), "/m/1.mp3\r\n/m/new.mp3\r\n/m/2.mp3\r\n/m/3.mp3\r\n");
    files.clearChanges();
    EXPECT_TRUE(load());
    EXPECT_TRUE(files.changes().empty()) << "the wish is done with";
}

TEST_F(LoadMeanwhile, WithoutSuchAWishNothingIsSaved) {
    files.clearChanges();
    EXPECT_TRUE(load());
    EXPECT_TRUE(files.changes().empty());
    app.saveOrOpenFile().savePlayList();
    EXPECT_FALSE(files.changes().empty());
}

TEST_F(LoadMeanwhile, AWishDuringALoadThatBreaksOffKeepsTheOldFileFirst) {
    files.failReadAtLine(listFile, 2);
    windows.atNextPump([] {});
    windows.atNextPump([&] { EXPECT_TRUE(app.saveOrOpenFile().savePlayList(SaveKind::Step)); });
    EXPECT_TRUE(load());
    EXPECT_EQ(files.contents(listFile), "/m/1.mp3\r\n/m/2.mp3\r\n");
    EXPECT_EQ(files.contents(u"/lists/zkPlayList.m3u.old"), "/m/1.mp3\r\n/m/2.mp3\r\n/m/3.mp3\r\n");
}

} // namespace
} // namespace velmora
