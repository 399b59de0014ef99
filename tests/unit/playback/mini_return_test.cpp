// What leaving the mini mode puts in place, and when the strip has no menu.

#include "tests/unit/playback/main_window_fixture.h"

#include "playback/MenuForm.h"
#include "playback/miniForm.h"
#include "settings/playSetForm.h"

namespace velmora {
namespace {

class MiniReturn : public MainWindow {
protected:
    MiniReturn() {
        main().show();
        click(main().playListButton);
        click(main().mini_Button);
        main().move({6000, 3000, 7200, 3240});
        app.playList_Form().move({1, 2, 3000, 3000});
    }
    void expectDocked() {
        EXPECT_TRUE(main().visible());
        EXPECT_TRUE(app.playList_Form().visible());
        EXPECT_EQ(main().left(), 2400);
        EXPECT_EQ(app.playList_Form().left(), 9600);
        EXPECT_EQ(app.playList_Form().top(), 3000);
    }
};

TEST_F(MiniReturn, DocksTheListThatComesBack) {
    click(app.miniForm().mini_Button);
    expectDocked();
}

TEST_F(MiniReturn, ByTheMenuDocksAsWell) {
    app.MenuForm().mode.choose();
    expectDocked();
}

TEST_F(MiniReturn, WithoutTheListLeavesMainWhereItIs) {
    main().playList_Shown = 0;
    click(app.miniForm().mini_Button);
    EXPECT_TRUE(main().visible());
    EXPECT_EQ(main().left(), 6000);
    EXPECT_FALSE(app.playList_Form().visible());
}

TEST_F(MiniReturn, MainStaysAwayWhenTheSettingsOfTheStripAreLeft) {
    for (forms::Control *way : {static_cast<forms::Control *>(&app.playSetForm().qd),
                                static_cast<forms::Control *>(&app.playSetForm().qx)}) {
        app.MenuForm().playSet.choose();
        ASSERT_TRUE(app.playSetForm().visible());
        click(*way);
        EXPECT_FALSE(app.playSetForm().visible());
        EXPECT_FALSE(main().visible());
        EXPECT_TRUE(main().enabled());
        EXPECT_TRUE(app.miniForm().visible());
        EXPECT_EQ(main().left(), 6000);
    }
}

TEST_F(MiniReturn, MainComesForwardWhenTheSettingsAreLeftWithoutTheStrip) {
    click(app.miniForm().mini_Button);
    main().hide();
    main().get_Focus();
    EXPECT_TRUE(main().visible());
}

TEST_F(MiniReturn, TheStripHasNoMenuWhileItsPlayIsDisabled) {
    app.miniForm().playButton.setEnabled(false);
    app.miniForm().on().MouseUp({forms::rightButton, 0, 1, 1}); // an unscripted popup fails
    app.miniForm().playButton.setEnabled(true);
    app.miniForm().on().MouseUp({forms::leftButton, 0, 1, 1});
    windows.expectPopup("menu", "");
    app.miniForm().on().MouseUp({forms::rightButton, 0, 1, 1});
}

TEST_F(MainWindow, TheNewsHintSpeaksWhenThereIsNoNetworkAndShowsAgain) {
    fake.internet.connectedState = 0;
    main().welcome.setVisible(true);
    bool hidden = false;
    windows.expectMsgBox(boxOf(app.Language().msg_No_Network, platform::MsgBoxIcon::Critical,
                               app.Language().msg_Error),
                         platform::MsgBoxResult::Ok, [&] { hidden = !main().welcome.visible(); });
    click(main().welcome);
    EXPECT_TRUE(hidden);
    EXPECT_TRUE(main().welcome.visible());
}

} // namespace
} // namespace velmora
