// While an operation on the list is at work, nothing else begins.

#include "tests/unit/playlist_window/list_fixture.h"

#include "lyrics/doLrcForm.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/miniForm.h"
#include "playlist/list_work.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/playSetForm.h"
#include "ui/aboutForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

class Still : public ListTest {
protected:
    Still() {
        setVolumeBar(0);
        for (const auto *path : {u"/m/a.mp3", u"/m/b.mp3", u"/m/c.mp3"})
            addRow(path);
        openAndPlay(u"/m/a.mp3");
        app.player().nowPlay_Index = 1;
        names.setSelected(0, false);
        names.setSelected(2, true);
    }
    void press(std::int16_t key, const char16_t *from, std::int16_t shift = 0) {
        app.formSet().form_KeyDown(key, shift, from);
    }
    // Whatever of this began would ask for a dialog or a box, or change one of what is looked at.
    void pressEverything() {
        for (const auto *from : {u"main", u"playlist_Form"}) {
            for (std::int16_t key = 8; key < 130; ++key) {
                if (key != 27) {
                    press(key, from);
                    press(key, from, forms::ctrlMask);
                    press(key, from, forms::shiftMask);
                }
            }
        }
    }
    void chooseEverything(forms::Menu &menu) {
        for (forms::Menu *entry : menu.entries()) {
            if (entry->entries().empty() && entry != &app.MenuForm().close &&
                entry != &app.MenuForm().playlist_Hide && entry != &app.MenuForm().about &&
                entry != &app.MenuForm().help && entry != &app.MenuForm().mode)
                entry->choose();
            chooseEverything(*entry);
        }
    }
    void rightClickEverywhere() {
        const forms::MouseEvent up{forms::rightButton, 0, 0, 0};
        for (forms::Form *form : std::initializer_list<forms::Form *>{
                 &app.Main(), &list, &app.miniForm(), &app.VideoScreen_Form()})
            form->on().MouseUp(up);
        names.on().MouseUp(up);
        app.formSet().tray_WndProc(app.Main().hWnd(), 2025, 0, 0x205);
    }
    void clickEveryButton() {
        for (forms::Control *button : std::initializer_list<forms::Control *>{
                 &list.addFile, &list.addDir, &list.delIndx, &list.delAll, &list.Alter,
                 &list.Search, &list.afresh_Load})
            button->on().Click();
    }
    void expectNothingBegan() {
        EXPECT_EQ(media.openPath(), u"/m/a.mp3");
        EXPECT_EQ(media.mode(), u"playing");
        EXPECT_EQ(selectedNames(), Texts{u"c"});
        EXPECT_FALSE(app.playSetForm().visible());
        EXPECT_FALSE(app.aboutForm().visible());
        EXPECT_FALSE(app.doLrcForm().visible());
        EXPECT_FALSE(app.listControl_Form().visible());
        EXPECT_TRUE(app.Main().enabled());
    }
};

TEST_F(Still, AreTheKeysOfBothWindows) {
    const ListWork work(app);
    pressEverything();
    expectNothingBegan();
}

TEST_F(Still, EscapeAloneEndsTheProgram) {
    const ListWork work(app);
    expectEnd([&] { press(27, u"main"); });
}

TEST_F(Still, AreAllMenusWhereverTheyOpenFrom) {
    const ListWork work(app);
    rightClickEverywhere(); // a menu that nobody expected fails the test
    EXPECT_EQ(rows(), 3);
}

TEST_F(Still, IsTheListsMenuWhileTheListIsDisabled) {
    list.controlEnabled(false);
    list.on().MouseUp({forms::rightButton, 0, 0, 0});
    list.controlEnabled(true);
    windows.expectPopup("playlist_Menu", "");
    list.on().MouseUp({forms::rightButton, 0, 0, 0});
}

TEST_F(Still, AreTheEntriesOfAMenuThatWasOpenBefore) {
    const ListWork work(app);
    chooseEverything(app.MenuForm().menu);
    chooseEverything(app.MenuForm().playlist_Menu);
    expectNothingBegan();
    expectEnd([&] { app.MenuForm().close.choose(); });
}

TEST_F(Still, AreTheListsOwnButtonsThoughTheyStayEnabled) {
    answerSure(MsgBoxResult::Yes);
    bool enabled = false;
    windows.atNextPump([&] {
        enabled = list.delAll.enabled();
        clickEveryButton();
    });
    list.delOne(0, false);
    EXPECT_TRUE(enabled);
    EXPECT_EQ(nameRows(), (Texts{u"a", u"b"}));
}

TEST_F(Still, AllWorksAgainBehindIt) {
    { const ListWork work(app); }
    press(117, u"main");
    EXPECT_EQ(media.openPath(), u"/m/b.mp3");
    windows.expectPopup("menu", "");
    app.Main().on().MouseUp({forms::rightButton, 0, 0, 0});
    windows.expectPopup("menu", "");
    app.formSet().tray_WndProc(app.Main().hWnd(), 2025, 0, 0x205);
}

TEST_F(Still, ItStaysAsLongAsTheOutermostOperation) {
    const ListWork outer(app);
    { const ListWork inner(app); }
    EXPECT_TRUE(ListWork::isGoingOn(app));
    EXPECT_FALSE(app.Main().playButton.enabled());
}

TEST_F(Still, ADropInTheMiddleOfADeletionLeavesMainStill) {
    files.addFile(u"/n/x.mp3");
    names.setSelected(1, true);
    answerSure(MsgBoxResult::Yes);
    bool play = true;
    windows.atNextPump([&] { list.filesDropped({u"/n/x.mp3"}, 0); });
    windows.onPump = [&] { play = app.Main().playButton.enabled(); };
    list.delOne(0, false);
    EXPECT_FALSE(play);
    EXPECT_TRUE(app.Main().playButton.enabled());
}

TEST_F(Still, AReloadKeepsMainStill) {
    files.addFile(listFile(), "/m/a.mp3\r\n/m/b.mp3\r\n");
    std::vector<bool> play;
    files.beforeLine = [&](std::u16string_view, std::size_t) {
        play.push_back(app.Main().playButton.enabled());
    };
    windows.atNextPump([&] { play.push_back(app.Main().playButton.enabled()); });
    list.afresh_Load_Click();
    EXPECT_EQ(play, (std::vector<bool>{false, false, false}))
        << "from its first look for events on";
    EXPECT_TRUE(app.Main().playButton.enabled());
}

} // namespace
} // namespace velmora
