// The input box that renaming and searching share.

#include "tests/unit/playlist_window/list_fixture.h"

namespace velmora {
namespace {

class InputBox : public ListTest {
protected:
    listControl_Form &box = app.listControl_Form();
};

TEST_F(InputBox, OkEmptiesItAndCancelDoesNot) {
    list.Search_Click();
    box.jieGuo.setText(u"text");
    clickOn(box.Cancel);
    EXPECT_EQ(box.jieGuo.text(), u"text");
    EXPECT_EQ(box.title.caption(), app.Language().msg_Find_Title);
    EXPECT_EQ(box.listControl_Result, u"");
    list.Search_Click();
    EXPECT_EQ(box.jieGuo.text(), u"");
    box.jieGuo.setText(u"text");
    clickOn(box.OK);
    EXPECT_EQ(box.listControl_Result, u"text");
    EXPECT_EQ(box.title.caption(), u"");
    EXPECT_EQ(box.showText.caption(), u"");
    EXPECT_EQ(box.jieGuo.text(), u"");
    EXPECT_FALSE(box.visible());
}

TEST_F(InputBox, ItsCloseAndTheWindowManagersAreCancel) {
    for (const bool byButton : {true, false}) {
        list.Search_Click();
        EXPECT_FALSE(app.Main().enabled());
        byButton ? box.close.on().Click() : box.closeRequested();
        EXPECT_FALSE(box.visible());
        EXPECT_TRUE(app.Main().enabled());
        EXPECT_TRUE(list.enabled());
        EXPECT_EQ(box.listControl_Result, u"");
    }
}

TEST_F(InputBox, IsReadyToTypeWhereverItWasLeft) {
    list.Search_Click();
    EXPECT_EQ(box.activeControl(), &box.jieGuo);
    box.setFocus(&box.Cancel);
    clickOn(box.Cancel);
    list.Search_Click();
    EXPECT_EQ(box.activeControl(), &box.jieGuo);
}

TEST_F(InputBox, OffersAtMostAHundredCharactersOfAName) {
    addRow(u"/m/01." + std::u16string(150, u'n') + u".mp3");
    names.setSelected(0, true);
    list.Alter_Click();
    EXPECT_EQ(box.jieGuo.text(), std::u16string(100, u'n'));
}

TEST_F(InputBox, OffersANameWithoutTheBlanksAtItsEnds) {
    addRow(u"/m/01. Love Song .mp3");
    names.setSelected(0, true);
    list.Alter_Click();
    EXPECT_EQ(box.jieGuo.text(), u"Love Song");
}

TEST_F(InputBox, TheResultOfTheUseBeforeIsForgotten) {
    addRow(u"/m/a.mp3");
    names.setSelected(0, true);
    box.listControl_Result = u"old";
    list.Alter_Click();
    EXPECT_EQ(box.listControl_Result, u"");
    box.listControl_Result = u"old";
    list.Search_Click();
    EXPECT_EQ(box.listControl_Result, u"");
}

TEST_F(InputBox, ARenamedTrackThatWasNotPlayingStaysClosed) {
    addRow(u"/m/a.mp3");
    openAndPlay(u"/m/a.mp3");
    app.player().pause_Sub();
    list.Alter_Click();
    box.jieGuo.setText(u"b");
    clickOn(box.OK);
    EXPECT_EQ(pathRows(), Texts{u"/m/b.mp3"});
    EXPECT_FALSE(media.isOpen());
}

// --- the window ----------------------------------------------------------------------------------

TEST_F(InputBox, ARightReleaseOnTheListsTitleOpensNoMenu) {
    list.title.on().MouseUp({forms::rightButton, 0, 0, 0}); // an unscripted popup fails the test
    list.title_ICO.on().MouseUp({forms::rightButton, 0, 0, 0});
    names.on().MouseUp({forms::leftButton, 0, 0, 0});
    EXPECT_FALSE(list.topmost());
}

} // namespace
} // namespace velmora
