// What the main window keeps and shows of others: the lit list button, the answers of its drag.

#include "tests/unit/playback/main_window_fixture.h"

#include "playback/MenuForm.h"
#include "playback/miniForm.h"
#include "ui/formSet.h"

namespace velmora {
namespace {

using forms::Picture;

class ListButton : public MainWindow {
protected:
    Picture look() { return app.Main().playListButton.picture(); }
    void expectLit() {
        EXPECT_EQ(look(), Picture::list_on);
        EXPECT_EQ(main().playList_Shown, -1);
    }
    void expectDark() {
        EXPECT_EQ(look(), Picture::list);
        EXPECT_EQ(main().playList_Shown, 0);
    }
};

TEST_F(ListButton, IsLitWhileTheListIsOpen) {
    expectDark();
    click(main().playListButton);
    expectLit();
    click(main().playListButton);
    expectDark();
}

TEST_F(ListButton, IsLitWhenTheListIsShownForThePlayingTrack) {
    click(main().song_GoTo_List);
    expectLit();
}

TEST_F(ListButton, GoesDarkWithTheListsOwnClose) {
    click(main().playListButton);
    click(app.playList_Form().close);
    expectDark();
}

TEST_F(ListButton, GoesDarkWithF8) {
    click(main().playListButton);
    app.formSet().form_KeyDown(119, 0, u"main");
    expectDark();
}

TEST_F(ListButton, GoesDarkWhenMainIsMinimised) {
    click(main().playListButton);
    click(main().minimizeButton);
    expectDark();
}

TEST_F(ListButton, StaysLitThroughTheMiniMode) {
    main().show();
    click(main().playListButton);
    click(main().mini_Button);
    expectLit();
    main().playListButton.setPicture(Picture::list);
    click(app.miniForm().mini_Button);
    expectLit();
}

TEST_F(ListButton, StaysDarkThroughTheMiniModeWithoutTheList) {
    main().show();
    click(main().mini_Button);
    click(app.miniForm().mini_Button);
    expectDark();
}

TEST_F(MainWindow, DragKeepsWhatTheWindowSystemAnswered) {
    app.playList_Form();
    main().on().MouseDown({forms::leftButton, 0, 1, 1});
    EXPECT_EQ(main().topmost_Main, 1);
    EXPECT_EQ(main().topmost_PlayList, 1);
    main().topmost_Main = 7;
    main().topmost_PlayList = 7;
    main().on().MouseDown({forms::rightButton, 0, 1, 1});
    EXPECT_EQ(main().topmost_Main, 7);
    main().title.on().MouseUp({forms::leftButton, 0, 1, 1});
    EXPECT_EQ(main().topmost_Main, 1);
    EXPECT_EQ(main().topmost_PlayList, 1);
}

TEST_F(MainWindow, RightReleaseOpensTheMenuOnTheTitleAndItsIconToo) {
    for (forms::ControlEvents *area : {&main().title.on(), &main().title_ICO.on()}) {
        windows.expectPopup("menu", "");
        area->MouseUp({forms::rightButton, 0, 1, 1});
        area->MouseUp({forms::leftButton, 0, 1, 1});
    }
}

TEST_F(MainWindow, DoubleClickOnTheIconNeedsNoPlayEither) {
    main().show();
    main().playButton.setEnabled(false);
    main().title_ICO.on().DblClick();
    EXPECT_TRUE(app.miniForm().visible());
}

TEST_F(MainWindow, TheListIsHiddenOnlyAfterMainIsCentred) {
    click(main().playListButton);
    main().setLeft(123);
    windows.workAreaFails = true;
    click(main().playListButton);
    EXPECT_EQ(main().left(), 123) << "no place without a work area";
    EXPECT_FALSE(app.playList_Form().visible());
}

TEST_F(MainWindow, SeekingNeitherMovesNorShortensTheFill) {
    play();
    main().load_Played.setWidth(321);
    release(main().load_Played_BG, 500);
    EXPECT_EQ(main().load_Played.width(), 321) << "the tick sets it";
}

} // namespace
} // namespace velmora
