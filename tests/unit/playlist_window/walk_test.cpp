// How the walk through a folder asks the disk, and how the buttons look behind a long operation.

#include "tests/fakes/instead.h"
#include "tests/unit/playlist_window/list_fixture.h"

namespace velmora {
namespace {

// Writes down each listing.
class WatchedFiles : public fakes::FakeFiles {
public:
    using FakeFiles::FakeFiles;
    struct Listing {
        std::u16string folder;
        platform::SearchFor what;
        std::uint32_t walk;
    };
    std::vector<Listing> listings;
    std::vector<std::u16string> list(std::u16string_view folder, platform::SearchFor what,
                                     std::uint32_t walk) override {
        listings.push_back({std::u16string(folder), what, walk});
        return FakeFiles::list(folder, what, walk);
    }
};

class Walk : public ::testing::Test {
protected:
    Walk() {
        app.setControl().init_PlaySet();
        app.Main().title.setCaption(title2011);
        files.addFile(u"/music/x.mp3");
        files.addFile(u"/music/a/y.mp3");
        files.addFile(u"/music/b/z.mp3");
    }
    void add(MsgBoxResult subfolders) {
        fake.dialogs.expectFolder(u"/music");
        fake.windows.expectMsgBox({u"包含子文件夹吗？如果子文件夹过多将需要过多的时间哦！\r\n\r\n"
                                   u"警告：不支持停止哦！！",
                                   MsgBoxButtons::YesNo, MsgBoxIcon::None, title2011},
                                  subfolders);
        files.listings.clear();
        app.playList_Form().addDir_Click();
    }
    Texts listed(platform::SearchFor what) const {
        Texts folders;
        for (const auto &listing : files.listings)
            if (listing.what == what)
                folders.push_back(listing.folder);
        return folders;
    }
    // The one number of all listings.
    std::uint32_t walkOfAll() const {
        for (const auto &listing : files.listings)
            EXPECT_EQ(listing.walk, files.listings.front().walk);
        return files.listings.front().walk;
    }

    fakes::FakePlatform fake;
    WatchedFiles files{fake.ansi};
    Velmora app{fakes::with(fake.bundle(), {.files = &files})};
};

TEST_F(Walk, ListsTheFoldersOfAllBeforeTheFilesOfTheFirst) {
    add(MsgBoxResult::Yes);
    const Texts breadthFirst{u"/music/", u"/music/a/", u"/music/b/"};
    EXPECT_EQ(listed(platform::SearchFor::Folders), breadthFirst);
    EXPECT_EQ(listed(platform::SearchFor::Files), breadthFirst);
    EXPECT_EQ(files.listings[2].what, platform::SearchFor::Folders);
    EXPECT_EQ(files.listings[3].what, platform::SearchFor::Files);
}

TEST_F(Walk, WithoutSubfoldersListsTheFilesOfTheOneFolderAlone) {
    add(MsgBoxResult::No);
    EXPECT_EQ(listed(platform::SearchFor::Folders), Texts{});
    EXPECT_EQ(listed(platform::SearchFor::Files), Texts{u"/music/"});
}

TEST_F(Walk, HasANumberOfItsOwnSoThatTheDiskEntersEachFolderOnce) {
    add(MsgBoxResult::Yes);
    const std::uint32_t first = walkOfAll();
    EXPECT_NE(first, 0U) << "0 is no walk";
    add(MsgBoxResult::Yes);
    EXPECT_NE(walkOfAll(), first);
    EXPECT_EQ(app.playList_Form().playList_Item.selCount(), 3) << "all of them are found again";
}

class Redrawn : public ListTest {};

TEST_F(Redrawn, TheButtonsShowTheirNormalLookBehindALongOperation) {
    const auto pixel = [](const zkButton &button) {
        const forms::Surface &surface = *button.look().surface;
        return surface.pixel(surface.width() / 2, surface.height() / 2);
    };
    list.show();
    for (zkButton *button :
         {&list.addDir, &list.addFile, &list.delIndx, &list.delAll, &list.Search, &list.Alter}) {
        const auto normal = pixel(*button);
        button->mouseMove({0, 0, 30, 30});
        windows.advance(20 * 12);
        EXPECT_NE(pixel(*button), normal) << button->name();
        list.controlEnabled(true);
        EXPECT_EQ(pixel(*button), normal) << button->name();
    }
}

} // namespace
} // namespace velmora
