// Files dropped on a window.

#include "tests/desktop/qt/desk.h"
#include "tests/desktop/x_drag.h"

#include "platform/backends/qt/screen/file_uris.h"

#include <atomic>
#include <thread>

namespace velmora::tests {
namespace {

struct DropForm : TestForm {
    forms::ListBox list{*this, "list"};
    std::vector<forms::FilesDropped> drops;
    DragSource source{desk().session.display()};

    DropForm() {
        list.move({750, 300, 3000, 2400}); // 50,20 200x160
        list.on().OLEDragDrop = [this](const forms::FilesDropped &dropped) {
            drops.push_back(dropped);
        };
    }
    bool drop(int x, int y, const std::string &type, const std::string &data) {
        // The target waits for the data: the source has to be somebody else.
        const xcb_window_t target = nativeOf(*this);
        const int atX = screenX(x);
        const int atY = screenY(y);
        std::atomic<bool> over{false};
        bool taken = false;
        std::thread other([&] {
            taken = source.drop(target, atX, atY, type, data);
            over = true;
        });
        desk().pump([&] { return over.load(); }, 30000);
        other.join();
        return taken;
    }
};

class DropTest : public DeskTest {};

TEST_F(DropTest, BringsTheFilesAndThePlaceToTheControlUnderIt) {
    DropForm form;
    form.appear();
    EXPECT_TRUE(form.drop(100, 70, "text/uri-list",
                          "file:///music/a%20b.mp3\r\nfile:///music/%E7%81%AF.mp3\r\n"));
    ASSERT_TRUE(desk().pump([&] { return form.drops.size() == 1; }));
    EXPECT_EQ(form.drops[0].files,
              (std::vector<std::u16string>{u"/music/a b.mp3", u"/music/灯.mp3"}));
    EXPECT_FLOAT_EQ(form.drops[0].x, 50 * 15);
    EXPECT_FLOAT_EQ(form.drops[0].y, 50 * 15);
}

TEST_F(DropTest, KeepsTheBytesOfANameThatAreNoText) {
    DropForm form;
    form.appear();
    EXPECT_TRUE(form.drop(100, 70, "text/uri-list", "file:///a%0Ab%ff.mp3\r\n"));
    ASSERT_TRUE(desk().pump([&] { return form.drops.size() == 1; }));
    EXPECT_EQ(form.drops[0].files, (std::vector<std::u16string>{u"/a\xDC0A"
                                                                u"b\xDCFF.mp3"}));
}

TEST_F(DropTest, IsAnsweredWithCopyWhateverWasProposed) {
    DropForm form;
    form.appear();
    ASSERT_TRUE(form.drop(100, 70, "text/uri-list", "file:///a.mp3\r\n"));
    EXPECT_EQ(form.source.action(), "XdndActionCopy");
    EXPECT_TRUE(form.source.finished());
}

TEST_F(DropTest, TheHandlerRunsAfterTheProtocolIsThrough) {
    DropForm form;
    bool finishedBefore = false;
    form.list.on().OLEDragDrop = [&](const forms::FilesDropped &) {
        // Nothing of ours is handled in here: what the source hears now was said beforehand.
        finishedBefore = waitUntil([&] { return form.source.finished(); }, 2000);
        form.drops.emplace_back();
    };
    form.appear();
    EXPECT_TRUE(form.drop(100, 70, "text/uri-list", "file:///a.mp3\r\n"));
    ASSERT_TRUE(desk().pump([&] { return form.drops.size() == 1; }));
    EXPECT_TRUE(finishedBefore);
}

TEST_F(DropTest, IsRefusedBesideTheListAndByADisabledOne) {
    DropForm form;
    form.appear();
    EXPECT_FALSE(form.drop(10, 190, "text/uri-list", "file:///a.mp3\r\n"));
    form.list.setEnabled(false);
    EXPECT_FALSE(form.drop(100, 70, "text/uri-list", "file:///a.mp3\r\n"));
    ASSERT_TRUE(desk().settle());
    EXPECT_TRUE(form.drops.empty());
}

TEST_F(DropTest, OtherDataIsRefused) {
    DropForm form;
    form.appear();
    EXPECT_FALSE(form.drop(100, 70, "text/plain", "file:///a.mp3"));
    ASSERT_TRUE(desk().settle());
    EXPECT_TRUE(form.drops.empty());
}

TEST(LocalPaths, TakesLocalFileAddressesInTheirOrder) {
    EXPECT_EQ(platform::qt::localPaths("file:///a\r\nfile:///b/c\r\n"),
              (std::vector<std::string>{"/a", "/b/c"}));
    EXPECT_EQ(platform::qt::localPaths("file://localhost/a\nFILE:///b"),
              (std::vector<std::string>{"/a", "/b"}));
    EXPECT_EQ(platform::qt::localPaths("file:/a"), (std::vector<std::string>{"/a"}));
}

TEST(LocalPaths, AFolderHasNoSlashAtItsEnd) {
    EXPECT_EQ(platform::qt::localPaths("file:///a/b/\r\nfile:///c//\r\nfile:///\r\n"),
              (std::vector<std::string>{"/a/b", "/c", "/"}));
}

TEST(LocalPaths, PercentBytesAreTakenAsTheyAre) {
    EXPECT_EQ(platform::qt::localPaths("file:///%ff%0A%25%zz%4"),
              (std::vector<std::string>{"/\xff\n%%zz%4"}));
}

TEST(LocalPaths, LeavesOutWhatIsNoLocalFile) {
    EXPECT_TRUE(
        platform::qt::localPaths("http://host/a\r\n#comment\r\nfile://elsewhere.example/a\r\n"
                                 "file:relative\r\nfile:\r\nfile://\r\nfile:///a%00b\r\n\r\n")
            .empty());
    EXPECT_TRUE(platform::qt::localPaths("").empty());
}

} // namespace
} // namespace velmora::tests
