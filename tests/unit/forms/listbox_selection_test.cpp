#include "tests/unit/forms/selection_fixture.h"

namespace velmora::forms {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// --- by code ---------------------------------------------------------------------------

TEST_F(SelectionTest, WritingASelectionTrueMakesTheRowCurrentAndFalseDoesNot) {
    list.setMultiSelect(true);
    list.setSelected(3, true);
    EXPECT_EQ(list.listIndex(), 3);
    list.setSelected(5, false);
    list.setSelected(3, false);
    EXPECT_EQ(list.listIndex(), 3);
    EXPECT_THAT(chosen(), IsEmpty());
}

TEST_F(SelectionTest, ASimpleListHoldsOneSelection) {
    list.setSelected(1, true);
    list.setSelected(4, true);
    EXPECT_THAT(chosen(), ElementsAre(4));
}

TEST_F(SelectionTest, SelectingByCodeRaisesClickInASimpleListWhenItChangesSomething) {
    list.setSelected(1, true);
    EXPECT_EQ(clicks(), 1);
    list.setSelected(1, true);
    EXPECT_EQ(clicks(), 1);
    list.setSelected(1, false);
    EXPECT_EQ(clicks(), 1);
}

TEST_F(SelectionTest, SelectingByCodeRaisesNoClickInAnExtendedList) {
    list.setMultiSelect(true);
    list.setSelected(1, true);
    EXPECT_EQ(clicks(), 0);
}

TEST_F(SelectionTest, WritingTheCurrentRowOfASimpleListSelectsItAndRaisesClick) {
    list.setListIndex(2);
    EXPECT_THAT(chosen(), ElementsAre(2));
    EXPECT_EQ(clicks(), 1);
    list.setListIndex(2);
    EXPECT_EQ(clicks(), 1);
}

TEST_F(SelectionTest, WritingNoCurrentRowDeselectsASimpleListWithoutAClick) {
    list.setListIndex(2);
    list.setListIndex(-1);
    EXPECT_THAT(chosen(), IsEmpty());
    EXPECT_EQ(clicks(), 1);
}

TEST_F(SelectionTest, WritingTheCurrentRowOfAnExtendedListSelectsNothing) {
    list.setMultiSelect(true);
    list.setListIndex(2);
    EXPECT_EQ(list.listIndex(), 2);
    EXPECT_THAT(chosen(), IsEmpty());
}

TEST_F(SelectionTest, SelectingARowThatIsNotThereRaises) {
    EXPECT_EQ(errorOf([&] { list.setSelected(8, true); }), invalidCall);
    EXPECT_EQ(errorOf([&] { list.setSelected(-1, false); }), invalidCall);
    EXPECT_EQ(errorOf([&] { list.setListIndex(8); }), invalidValue);
    EXPECT_EQ(errorOf([&] { list.setListIndex(-2); }), invalidValue);
}

TEST_F(SelectionTest, SelectingByCodeInAnExtendedListLeavesTheTopRow) {
    list.setMultiSelect(true);
    for (int i = 0; i < 40; ++i)
        list.addItem(u"more");
    list.setSelected(40, true);
    EXPECT_EQ(list.topIndex(), 0);
    list.setListIndex(41);
    EXPECT_EQ(list.topIndex(), 0);
}

TEST_F(SelectionTest, TheOneSelectedRowOfASimpleListComesIntoViewAheadOfItsClick) {
    list.setDesignRows(17);
    for (int i = 0; i < 40; ++i)
        list.addItem(u"more");
    std::int16_t topAtClick = 0;
    list.on().Click = [&] { topAtClick = list.topIndex(); };
    list.setSelected(40, true);
    EXPECT_EQ(list.topIndex(), 24);
    EXPECT_EQ(topAtClick, 24);
    list.setListIndex(20);
    EXPECT_EQ(list.topIndex(), 20);
    list.setTopIndex(0);
    list.setListIndex(20);
    EXPECT_EQ(list.topIndex(), 4) << "the row was selected already";
    list.setTopIndex(0);
    list.setSelected(20, true);
    EXPECT_EQ(list.topIndex(), 4);
    list.setSelected(30, false);
    list.setListIndex(-1);
    EXPECT_EQ(list.topIndex(), 4);
}

TEST_F(SelectionTest, AnUnchangedSelectionDrawsNothing) {
    list.setMultiSelect(true);
    list.setSelected(1, true);
    auto &window = shown();
    list.setSelected(1, true);
    list.setSelected(2, false);
    list.setListIndex(1);
    EXPECT_THAT(window.told, IsEmpty());
}

TEST_F(SelectionTest, ANewSelectionOrCurrentRowIsDrawn) {
    list.setMultiSelect(true);
    auto &window = shown();
    const auto drawn = [&] {
        const bool isDrawn =
            std::any_of(window.told.begin(), window.told.end(),
                        [](const auto &told) { return told.change == Change::Selection; });
        window.told.clear();
        return isDrawn;
    };
    list.setSelected(1, true);
    EXPECT_TRUE(drawn());
    list.setListIndex(2);
    EXPECT_TRUE(drawn());
    userClick(3);
    EXPECT_TRUE(drawn());
    list.userMoved(4, ctrlMask);
    EXPECT_TRUE(drawn());
}

TEST_F(SelectionTest, ShiftStartsAtTheRowThatCodeChoseLastThoughAClickSetAnother) {
    list.setMultiSelect(true);
    userClick(6);
    list.setSelected(2, true);
    userClick(4, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(2, 3, 4));
    userClick(6);
    list.setListIndex(1);
    userClick(3, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(1, 2, 3));
}

// --- by the user -----------------------------------------------------------------------

TEST_F(SelectionTest, AClickSelectsItsRowAlone) {
    list.setMultiSelect(true);
    userClick(1);
    userClick(4);
    EXPECT_THAT(chosen(), ElementsAre(4));
    EXPECT_EQ(list.listIndex(), 4);
    EXPECT_EQ(clicks(), 2);
}

TEST_F(SelectionTest, AClickOnTheSelectedRowIsStillAClick) {
    userClick(4);
    userClick(4);
    EXPECT_EQ(clicks(), 2);
}

TEST_F(SelectionTest, CtrlTurnsOneRowAndKeepsTheOthers) {
    list.setMultiSelect(true);
    userClick(1);
    userClick(3, ctrlMask);
    userClick(5, ctrlMask);
    EXPECT_THAT(chosen(), ElementsAre(1, 3, 5));
    userClick(3, ctrlMask);
    EXPECT_THAT(chosen(), ElementsAre(1, 5));
    EXPECT_EQ(list.listIndex(), 3);
}

TEST_F(SelectionTest, ShiftSelectsFromTheAnchorBothWays) {
    list.setMultiSelect(true);
    userClick(3);
    userClick(6, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(3, 4, 5, 6));
    userClick(1, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(1, 2, 3));
    EXPECT_EQ(list.listIndex(), 1);
}

TEST_F(SelectionTest, ShiftStartsAtTheRowThatCodeSelected) {
    list.setMultiSelect(true);
    list.setSelected(2, true);
    userClick(4, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(2, 3, 4));
}

TEST_F(SelectionTest, ShiftWithoutAnAnchorSelectsTheRowAlone) {
    list.setMultiSelect(true);
    userClick(4, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(4));
    userClick(6, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(4, 5, 6));
}

TEST_F(SelectionTest, CtrlAndShiftAddAStretch) {
    list.setMultiSelect(true);
    userClick(0);
    userClick(3, ctrlMask);
    userClick(5, static_cast<std::int16_t>(ctrlMask | shiftMask));
    EXPECT_THAT(chosen(), ElementsAre(0, 3, 4, 5));
}

TEST_F(SelectionTest, TheAnchorFollowsItsRow) {
    list.setMultiSelect(true);
    userClick(3);
    list.addItem(u"above", 0);
    userClick(6, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(4, 5, 6));
}

TEST_F(SelectionTest, TheFirstRowIsAnAnchorAsAnyOther) {
    list.setMultiSelect(true);
    userClick(0);
    list.userMoved(3, ctrlMask);
    userClick(5, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST_F(SelectionTest, ShiftWithoutAnAnchorStartsAtTheCurrentRowThoughItBeTheFirst) {
    list.setMultiSelect(true);
    list.userMoved(0, ctrlMask);
    userClick(2, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(0, 1, 2));
}

TEST_F(SelectionTest, ADragSelectsFromThePressedRow) {
    list.setMultiSelect(true);
    userClick(2);
    userDrag(3);
    userDrag(4);
    EXPECT_THAT(chosen(), ElementsAre(2, 3, 4));
    userDrag(1);
    EXPECT_THAT(chosen(), ElementsAre(1, 2));
}

TEST_F(SelectionTest, ADragThatStaysOnItsRowRaisesNothing) {
    list.setMultiSelect(true);
    userClick(2);
    userDrag(2);
    EXPECT_EQ(clicks(), 1);
    userDrag(3);
    EXPECT_EQ(clicks(), 2);
}

TEST_F(SelectionTest, ADragWithCtrlAddsAndGivesBackWhatItLeaves) {
    list.setMultiSelect(true);
    userClick(5);
    userClick(1, ctrlMask);
    userDrag(3, ctrlMask);
    EXPECT_THAT(chosen(), ElementsAre(1, 2, 3, 5));
    userDrag(6, ctrlMask);
    EXPECT_THAT(chosen(), ElementsAre(1, 2, 3, 4, 5, 6));
    userDrag(2, ctrlMask);
    EXPECT_THAT(chosen(), ElementsAre(1, 2, 5));
}

TEST_F(SelectionTest, CodeThatMakesTheFirstRowCurrentRaisesClickToo) {
    userClick(5);
    const auto before = clicks();
    list.setListIndex(0);
    EXPECT_EQ(clicks(), before + 1);
    list.setListIndex(-1);
    EXPECT_EQ(clicks(), before + 1);
}

TEST_F(SelectionTest, ADragWithCtrlForgetsWhatItWouldGiveBackOnceRowsHaveMoved) {
    const auto dragAfter = [this](const std::function<void()> &meanwhile) {
        list.setMultiSelect(true);
        userClick(5);
        userClick(1, ctrlMask);
        meanwhile();
        userDrag(3, ctrlMask);
    };
    dragAfter([this] { list.removeItem(7); });
    EXPECT_THAT(chosen(), ElementsAre(1, 2, 3)) << "a plain drag from here on";
    dragAfter([this] { list.addItem(u"new"); });
    EXPECT_THAT(chosen(), ElementsAre(1, 2, 3));
    dragAfter([this] {
        list.clear();
        for (int row = 0; row < 9; ++row)
            list.addItem(u"other");
    });
    EXPECT_THAT(chosen(), testing::Not(testing::Contains(5)));
}

TEST_F(SelectionTest, ADragWithCtrlFromASelectedRowTakesAway) {
    list.setMultiSelect(true);
    userClick(1);
    userClick(4, shiftMask);
    userClick(2, ctrlMask);
    userDrag(3, ctrlMask);
    EXPECT_THAT(chosen(), ElementsAre(1, 4));
}

TEST_F(SelectionTest, ADragWithCtrlToTheFirstRowTakesItAndGivesItBack) {
    list.setMultiSelect(true);
    userClick(3, ctrlMask);
    userDrag(0, ctrlMask);
    EXPECT_THAT(chosen(), ElementsAre(0, 1, 2, 3));
    userDrag(2, ctrlMask);
    EXPECT_THAT(chosen(), ElementsAre(2, 3));
}

TEST_F(SelectionTest, ADragBehindAnotherChoiceGivesBackNothingOfAnEarlierOneWithCtrl) {
    list.setMultiSelect(true);
    userClick(7);
    userClick(1, ctrlMask);
    userClick(3, shiftMask);
    userDrag(4);
    EXPECT_THAT(chosen(), ElementsAre(1, 2, 3, 4)) << "behind Shift";
    userClick(7);
    userClick(1, ctrlMask);
    userClick(3);
    userDrag(4);
    EXPECT_THAT(chosen(), ElementsAre(3, 4)) << "behind a click";
    userClick(7);
    userClick(1, ctrlMask);
    list.userMoved(5, 0);
    userDrag(6);
    EXPECT_THAT(chosen(), ElementsAre(5, 6)) << "behind a key";
}

TEST_F(SelectionTest, ADragInASimpleListMovesTheSelection) {
    userClick(2);
    userDrag(5);
    EXPECT_THAT(chosen(), ElementsAre(5));
}

TEST_F(SelectionTest, ModifiersMeanNothingInASimpleList) {
    userClick(2);
    userClick(5, ctrlMask);
    userClick(5, ctrlMask);
    EXPECT_THAT(chosen(), ElementsAre(5));
    userClick(1, shiftMask);
    EXPECT_THAT(chosen(), ElementsAre(1));
}

TEST_F(SelectionTest, AClickWhereNoRowIsDoesNothing) {
    userClick(2);
    userClick(8);
    userClick(-1);
    EXPECT_THAT(chosen(), ElementsAre(2));
    EXPECT_EQ(clicks(), 1);
}

TEST_F(SelectionTest, AClickQueuedForADisabledListIsDropped) {
    list.setEnabled(false);
    userClick(2);
    list.userMoved(2, 0);
    list.userDoubleClicked(2);
    list.userScrolled(2);
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(chosen(), IsEmpty());
}

TEST_F(SelectionTest, TheUsersChoiceComesIntoView) {
    for (int i = 0; i < 40; ++i)
        list.addItem(u"more");
    list.userMoved(30, 0);
    EXPECT_EQ(list.topIndex(), 14);
    list.userMoved(2, 0);
    EXPECT_EQ(list.topIndex(), 2);
}

TEST_F(SelectionTest, ARightClickChoosesARowThatIsNotSelectedAloneWhateverKeysAreHeld) {
    for (const bool multi : {true, false}) {
        list.setMultiSelect(multi);
        userClick(1);
        userClick(2, ctrlMask);
        const int before = clicks();
        list.userRightClicked(5);
        EXPECT_THAT(chosen(), ElementsAre(5));
        EXPECT_EQ(list.listIndex(), 5);
        EXPECT_EQ(clicks(), before + 1) << "what follows the choice follows this one, too";
        userClick(7, shiftMask); // from the row of the right click on
        EXPECT_EQ(chosen().front(), multi ? 5 : 7);
    }
}

TEST_F(SelectionTest, ARightClickOnASelectedRowChangesNothing) {
    list.setMultiSelect(true);
    userClick(1);
    userClick(4, shiftMask);
    const int before = clicks();
    list.userRightClicked(2);
    EXPECT_THAT(chosen(), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(list.listIndex(), 4);
    EXPECT_EQ(clicks(), before);
}

TEST_F(SelectionTest, ARightClickBesideTheRowsOrInADisabledListChangesNothing) {
    list.setMultiSelect(true);
    userClick(1);
    list.userRightClicked(8);
    list.userRightClicked(-1);
    list.setEnabled(false);
    list.userRightClicked(3);
    EXPECT_THAT(chosen(), ElementsAre(1));
}

TEST_F(SelectionTest, ASecondPressChoosesItsRowWhenAnotherOneHasBecomeCurrent) {
    list.setMultiSelect(true);
    userClick(3);
    list.setSelected(3, false);
    list.setSelected(6, true);
    int current = -1;
    list.on().DblClick = [&] { current = list.listIndex(); };
    list.userDoubleClicked(3);
    EXPECT_EQ(current, 3);
    EXPECT_THAT(chosen(), ElementsAre(3));
}

TEST_F(SelectionTest, ASecondPressOnTheCurrentRowLeavesTheSelection) {
    list.setMultiSelect(true);
    userClick(1);
    userClick(3, ctrlMask);
    list.userDoubleClicked(3);
    EXPECT_THAT(chosen(), ElementsAre(1, 3));
}

TEST_F(SelectionTest, ADoubleClickIsRaisedOnARow) {
    userClick(3);
    log.clear();
    list.userDoubleClicked(3);
    EXPECT_EQ(log, Log{"list double"});
    list.userDoubleClicked(8);
    list.userDoubleClicked(-1);
    EXPECT_EQ(log, Log{"list double"});
}

TEST_F(SelectionTest, ADoubleClickIsRaisedOnAListWithoutRows) {
    list.clear();
    list.userDoubleClicked(-1);
    EXPECT_EQ(log, Log{"list double"});
}

TEST_F(SelectionTest, TheClickHandlerSeesTheNewSelection) {
    int seen = -1;
    list.on().Click = [&] { seen = list.listIndex(); };
    userClick(6);
    EXPECT_EQ(seen, 6);
}

TEST_F(SelectionTest, TheClickHandlerMayEmptyTheList) {
    list.on().Click = [&] { list.clear(); };
    userClick(6);
    EXPECT_EQ(list.listCount(), 0);
    EXPECT_EQ(list.listIndex(), -1);
}

} // namespace velmora::forms
